#pragma once

// A menu tree as plain structs, for tests and fuzz targets: written in a table, read from a tree of the
// library's, compared, and printed as a table has it.

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "present/menu.h"

namespace tarnplain {

struct MenuNode {
    std::int32_t kind;
    std::optional<std::string> label, extra;  // none for NULL
    std::int32_t number = -1, id = -1;
    std::vector<MenuNode> children;

    bool operator==(const MenuNode& other) const = default;
};

using MenuNodes = std::vector<MenuNode>;

inline MenuNode popup(std::optional<std::string> label, std::int32_t number, MenuNodes children = {}) {
    return {tarn::menuPopup, std::move(label), {}, number, -1, std::move(children)};
}
inline MenuNode item(std::string label, std::int32_t number, std::int32_t id, std::string extra) {
    return {tarn::menuItem, std::move(label), std::move(extra), number, id, {}};
}
inline MenuNode separator() {
    return {tarn::menuSeparator, {}, {}, -1, -1, {}};
}

inline MenuNode treeOf(const tarnMenuDef& node) {
    MenuNode tree{node.kind, {}, {}, node.number, node.id, {}};
    if (node.label != nullptr) tree.label.emplace(node.label, static_cast<std::size_t>(node.labelLength));
    if (node.extra != nullptr) tree.extra = node.extra;
    for (std::int32_t i = 0; i < node.childCount; ++i) tree.children.push_back(treeOf(*node.getChild(i)));
    return tree;
}

inline std::string readable(const MenuNode& node) {
    const auto quoted = [](const auto& text) { return text ? '"' + *text + '"' : "nullptr"; };
    if (node.kind == tarn::menuSeparator && node == separator()) return "separator()";
    const bool isPopup = node.kind == tarn::menuPopup;
    std::string shown = isPopup ? "popup(" : node.kind == tarn::menuItem ? "item(" : "other(";
    shown += quoted(node.label) + ", " + std::to_string(node.number);
    if (node.id != -1 || node.extra) shown += ", " + std::to_string(node.id) + ", " + quoted(node.extra);
    const char* between = ", {";
    for (const MenuNode& child : node.children) shown += std::exchange(between, ", ") + readable(child);
    return shown + (node.children.empty() ? ")" : "})");
}

}  // namespace tarnplain
