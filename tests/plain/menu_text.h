#pragma once

// A menu tree written as a menu text, which reads back as the same tree, for tests and fuzz targets.

#include <string>

#include "present/menu.h"

namespace tarnplain {

// Keywords are written in full and every popup has its END.
inline std::string menuTextOf(const tarnMenuDef& node) {
    if (node.kind == tarn::menuSeparator && node.id == -1 && node.label == nullptr)
        return "MENUITEM,SEPARATOR";
    std::string label = "NULL";
    if (node.label != nullptr) label.assign(node.label, static_cast<std::size_t>(node.labelLength));
    if (label.empty()) label = ' ';
    const std::string entry = label + ',' + std::to_string(node.number);
    if (node.kind == tarn::menuItem) {
        const std::string extra = *node.extra == '\0' ? " " : node.extra;
        return "MENUITEM," + entry + ',' + std::to_string(node.id) + ',' + extra;
    }
    std::string text = "POPUP," + entry;
    for (std::int32_t i = 0; i < node.childCount; ++i) text += ',' + menuTextOf(*node.getChild(i));
    return text + ",END";
}

}  // namespace tarnplain
