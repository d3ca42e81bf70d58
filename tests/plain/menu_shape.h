#pragma once

// A menu tree as one text, for tests and fuzz targets: equal texts mean equal trees.

#include <string>
#include <utility>

#include "present/menu.h"

namespace tarnplain {

inline std::string shape(const tarnMenuDef& node, std::string text = {}) {
    if (node.kind == 3) return text += '-';
    text += node.label == nullptr ? "?" : std::string(node.label, static_cast<std::size_t>(node.labelLength));
    text += '#' + std::to_string(node.number);
    if (node.kind == 2) return text += '=' + std::to_string(node.id) + '\'' + node.extra + '\'';
    text += '(';
    for (std::int32_t i = 0; i < node.childCount; ++i) text = shape(*node.getChild(i), std::move(text)) + ' ';
    return text += ')';
}

}  // namespace tarnplain
