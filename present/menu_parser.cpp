// The grammar of menu texts, as one loop over the tokens that knows the popup it is in.
// Tests: tests/present/menu_test.cpp.

#include <cstring>
#include <memory>
#include <utility>

#include "core/number_text.h"
#include "present/menu.h"

namespace {

// A token is a keyword if it is the beginning of it.
bool matches(const _link* token, const char* keyword) {
    return std::strncmp(token->text, keyword, token->length) == 0;
}

}  // namespace

namespace tarn {

class MenuBuilder {
  public:
    explicit MenuBuilder(const _link* head) : next_(head) {}

    static tarnMenuDef* newRoot() {
        auto* const root = new tarnMenuDef(nullptr);
        root->kind = menuPopup;
        return root;
    }

    // The root takes as much of its label and number as there is.
    void fill(tarnMenuDef& root) {
        while (next_ != nullptr && !matches(next_, "POPUP")) next_ = next_->next;
        if (next_ == nullptr) return;
        next_ = next_->next;
        if (next_ != nullptr) setLabel(root, take());
        if (next_ != nullptr) root.number = readLong(take()->text);

        tarnMenuDef* popup = &root;
        while (next_ != nullptr) {
            const _link* const token = take();
            if (matches(token, "END")) {
                if (popup == &root) return;
                popup = popup->parent;
            } else if (matches(token, "MENUITEM")) {
                addItem(*popup);
            } else if (matches(token, "POPUP")) {
                popup = addPopup(*popup);
            }
        }
    }

  private:
    const _link* take() {
        const _link* const token = next_;
        next_ = token->next;
        return token;
    }

    // Whether `count` tokens are left; if not, the text ends here.
    bool atLeast(int count) {
        const _link* token = next_;
        for (; count > 0 && token != nullptr; --count) token = token->next;
        if (count > 0) next_ = nullptr;
        return count == 0;
    }

    static void setLabel(tarnMenuDef& node, const _link* token) {
        node.label = token->text;
        node.labelLength = static_cast<std::int32_t>(token->length);
    }

    static tarnMenuDef* addNode(tarnMenuDef& popup, MenuKind kind) {
        std::unique_ptr<tarnMenuDef> node(new tarnMenuDef(&popup));
        node->kind = kind;
        popup.addChild(node.get());
        return node.release();
    }

    void addItem(tarnMenuDef& popup) {
        if (next_ == nullptr) return;
        if (matches(next_, "SEPARATOR")) {
            take();
            addNode(popup, menuSeparator);
            return;
        }
        if (!atLeast(4)) return;
        tarnMenuDef* const item = addNode(popup, menuItem);
        setLabel(*item, take());
        item->number = readLong(take()->text);
        item->id = readLong(take()->text);
        item->extra = take()->text;
    }

    // Answers the popup whose entries come next.
    tarnMenuDef* addPopup(tarnMenuDef& popup) {
        if (!atLeast(2)) return &popup;
        tarnMenuDef* const below = addNode(popup, menuPopup);
        setLabel(*below, take());
        below->number = readLong(take()->text);
        return below;
    }

    const _link* next_;
};

}  // namespace tarn

tarnMenuParser::~tarnMenuParser() {
    delete root;
}

tarnMenuDef* tarnMenuParser::getMenuDef(const char* fileName, int scrambled) {
    delete std::exchange(root, nullptr);
    head = nullptr;
    releaseTokens();
    head = parseTokens(loadFile(fileName, scrambled));
    root = tarn::MenuBuilder::newRoot();
    tarn::MenuBuilder(head).fill(*root);
    return root;
}
