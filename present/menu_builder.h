#pragma once

// Internal: the one reader of menu texts; users want present/menu_tree.h or tarnMenuParser.

#include "present/menu.h"
#include "store/load_report.h"

namespace tarn {

// Cuts a text up in place and makes the parser's tree of it; the parser has neither tokens nor a tree, and the
// text is in its buffer or NULL.  What is wrong with the text, and how much is in it, is added to the report.
void buildMenu(tarnMenuParser& parser, char* text, LoadReport& report);

}  // namespace tarn
