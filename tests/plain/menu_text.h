#pragma once

// A slow plain reader of menu texts, for tests and fuzz targets.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "tests/plain/menu_shape.h"

namespace tarnplain {

inline std::vector<std::string> menuTokens(const std::string& text) {
    std::vector<std::string> tokens;
    for (std::size_t begin = 0; (begin = text.find_first_not_of(",\n\t\r", begin)) != std::string::npos;) {
        const std::size_t end = std::min(text.find_first_of(",\n\t\r", begin), text.size());
        std::string token = text.substr(begin, end - begin);
        token.erase(0, std::min(token.find_first_not_of(' '), token.size()));
        tokens.push_back(token.erase(token.find_last_not_of(' ') + 1));
        begin = end;
    }
    return tokens;
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
