#pragma once

// A menu tree written as a menu text, which reads back as the same tree, for tests and fuzz targets.

#include <string>

#include "present/menu.h"

namespace tarnplain {

// Keywords are written in full and every popup has its END.
inline std::string menuTextOf(const tarnMenuDef& node) {
    if (node.kind == menuSeparator && node.id == -1 && node.label == nullptr) return "MENUITEM,SEPARATOR";
    std::string label = "NULL";
    if (node.label != nullptr) label.assign(node.label, static_cast<std::size_t>(node.labelLength));
    if (label.empty()) label = ' ';
    const std::string entry = label + ',' + std::to_string(node.number);
    if (node.kind == menuItem) {
        const std::string extra = *node.extra == '\0' ? " " : node.extra;
        return "MENUITEM," + entry + ',' + std::to_string(node.id) + ',' + extra;
    }
    std::string text = "POPUP," + entry;
    for (std::int32_t i = 0; i < node.childCount; ++i) text += ',' + menuTextOf(*node.getChild(i));
    return text + ",END";
}

class MenuReader {
  public:
    explicit MenuReader(const std::string& text) : tokens_(menuTokens(text)) {}

    MenuNode root() {
        while (left() > 0 && !takes("POPUP")) ++next_;
        MenuNode root = head();
        fill(root);
        return root;
    }

  private:
    [[nodiscard]] std::size_t left() const { return tokens_.size() - next_; }
    // Passes over the next token if it is the beginning of a keyword.
    bool takes(std::string_view keyword) {
        const bool isKeyword = left() > 0 && keyword.starts_with(tokens_[next_]);
        next_ += isKeyword ? 1 : 0;
        return isKeyword;
    }
    std::int32_t number() {
        const long long read = std::strtoll(tokens_[next_++].c_str(), nullptr, 10);
        return static_cast<std::int32_t>(std::clamp<long long>(read, INT32_MIN, INT32_MAX));
    }
    MenuNode head() {
        MenuNode node = popup({}, -1);
        if (left() > 0) node.label = tokens_[next_++];
        if (left() > 0) node.number = number();
        return node;
    }
    // Up to the popup's END; what is cut short ends the text.
    void fill(MenuNode& popup) {
        while (left() > 0 && !takes("END")) {
            const bool isItem = takes("MENUITEM");
            const bool isPopup = !isItem && takes("POPUP");
            if (isItem && takes("SEPARATOR")) {
                popup.children.push_back(separator());
            } else if ((isItem && left() < 4) || (isPopup && left() < 2)) {
                next_ = tokens_.size();
            } else if (isItem || isPopup) {
                popup.children.push_back(head());
                if (isItem) fillItem(popup.children.back());
                if (isPopup) fill(popup.children.back());
            } else {
                ++next_;
            }
        }
    }
    void fillItem(MenuNode& item) {
        item.kind = tarn::menuItem;
        item.id = number();
        item.extra = tokens_[next_++];
    }

    std::vector<std::string> tokens_;
    std::size_t next_ = 0;
};

}  // namespace tarnplain
