// A menu tree with a report: the file is read first, so that a failure leaves the tree alone.
// Tests: tests/present/menu_tree_test.cpp.

#include "present/menu_tree.h"

#include <cstring>
#include <utility>

#include "present/menu_builder.h"
#include "store/file_tools.h"
#include "store/reported_file.h"
#include "store/whole_file.h"

namespace tarn {

LoadReport MenuTree::load(std::string_view fileName, Scrambled scrambled, const ProgressFunction& progress) {
    LoadReport report;
    ReportedFile file = readReported(fileName, 2, longestSigned, progress, report);
    if (file.data == nullptr) return report;
    if (scrambled == Scrambled::yes) unscramble(file.data.get(), static_cast<std::int32_t>(file.size));

    auto parser = std::make_unique<tarnMenuParser>();
    parser->buffer = file.data.release();
    const std::size_t length = std::strlen(parser->buffer);
    buildMenu(*parser, parser->buffer, report);
    if (length < file.size && report.skipped++ == 0) report.skippedAt = length;
    parser_ = std::move(parser);
    return report;
}

HMENU MenuTree::createMenu() {
    if (parser_ == nullptr) return nullptr;
    parser_->root->createMenu();
    return parser_->root->menu;
}

}  // namespace tarn
