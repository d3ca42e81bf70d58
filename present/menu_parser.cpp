// The grammar of menu texts, as one loop over the tokens that knows the popup it is in.  It builds as much of
// the tree as there is, and reports what isn't whole and what it passes over.
// Tests: tests/present/menu_test.cpp and tests/present/menu_tree_test.cpp.

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "core/number_text.h"
#include "present/menu_builder.h"

namespace {

// A token is a keyword if it is the beginning of it.
bool matches(const _link* token, const char* keyword) {
    return std::strncmp(token->text, keyword, token->length) == 0;
}

}  // namespace

namespace tarn {

class MenuBuilder {
  public:
    // The tokens are parts of the text.
    MenuBuilder(const _link* head, const char* text, LoadReport& report)
        : next_(head), text_(text), report_(report) {}

    static tarnMenuDef* newRoot() {
        auto* const root = new tarnMenuDef(nullptr);
        root->kind = menuPopup;
        return root;
    }

    // The root takes as much of its label and number as there is.
    void fill(tarnMenuDef& root) {
        while (next_ != nullptr && !matches(next_, "POPUP")) skip();
        if (next_ == nullptr) {
            report_.error = LoadError::wrongForm;
            return;
        }
        const Place begin = placeOf(take());
        if (next_ == nullptr || next_->next == nullptr) cut(begin);
        if (next_ != nullptr) setLabel(root, take());
        if (next_ != nullptr) root.number = readLong(take()->text);

        addEntries(root, begin);
        while (next_ != nullptr) skip();  // behind the last END
    }

  private:
    struct Place {
        std::uint64_t offset;
        std::int32_t item;
    };

    // Adds entries up to the root's END, or as far as the text reaches.
    void addEntries(tarnMenuDef& root, Place begin) {
        std::vector<Place> open{begin};
        tarnMenuDef* popup = &root;
        while (next_ != nullptr) {
            if (matches(next_, "END")) {
                take();
                open.pop_back();
                if (popup == &root) return;
                popup = popup->parent;
            } else if (matches(next_, "MENUITEM")) {
                addItem(*popup);
            } else if (matches(next_, "POPUP")) {
                const Place at = placeOf(next_);
                tarnMenuDef* const below = addPopup(*popup);
                if (below == nullptr) break;
                open.push_back(at);
                popup = below;
            } else {
                skip();
            }
        }
        cut(open.back());
    }

    const _link* take() {
        const _link* const token = next_;
        next_ = token->next;
        ++taken_;
        return token;
    }

    // The place of a token that comes next or was taken last.
    [[nodiscard]] Place placeOf(const _link* token) const {
        return {static_cast<std::uint64_t>(token->text - text_), token == next_ ? taken_ : taken_ - 1};
    }

    // Passes over a token outside the grammar.
    void skip() {
        if (report_.skipped++ == 0) report_.skippedAt = placeOf(next_).offset;
        take();
    }

    // Reports that the text ends within what begins there; the first such report counts.
    void cut(Place begin) {
        if (report_.error != LoadError::none) return;
        report_.error = LoadError::truncated;
        report_.offset = begin.offset;
        report_.item = begin.item;
    }

    // Whether `count` tokens are left; if not, the text ends here.
    bool atLeast(int count, Place begin) {
        const _link* token = next_;
        for (; count > 0 && token != nullptr; --count) token = token->next;
        if (count > 0) {
            cut(begin);
            next_ = nullptr;
        }
        return count == 0;
    }

    static void setLabel(tarnMenuDef& node, const _link* token) {
        node.label = token->text;
        node.labelLength = static_cast<std::int32_t>(token->length);
    }

    tarnMenuDef* addNode(tarnMenuDef& popup, MenuKind kind) {
        std::unique_ptr<tarnMenuDef> node(new tarnMenuDef(&popup));
        node->kind = kind;
        popup.addChild(node.get());
        ++report_.values;
        return node.release();
    }

    void addItem(tarnMenuDef& popup) {
        const Place begin = placeOf(take());
        if (next_ != nullptr && matches(next_, "SEPARATOR")) {
            take();
            addNode(popup, menuSeparator);
            return;
        }
        if (!atLeast(4, begin)) return;
        tarnMenuDef* const item = addNode(popup, menuItem);
        setLabel(*item, take());
        item->number = readLong(take()->text);
        item->id = readLong(take()->text);
        item->extra = take()->text;
    }

    // Answers the popup whose entries come next, NULL if the text ends first.
    tarnMenuDef* addPopup(tarnMenuDef& popup) {
        if (!atLeast(2, placeOf(take()))) return nullptr;
        tarnMenuDef* const below = addNode(popup, menuPopup);
        setLabel(*below, take());
        below->number = readLong(take()->text);
        return below;
    }

    const _link* next_;
    const char* text_;
    LoadReport& report_;
    std::int32_t taken_ = 0;
};

void buildMenu(tarnMenuParser& parser, char* text, LoadReport& report) {
    parser.head = parser.parseTokens(text);
    parser.root = MenuBuilder::newRoot();
    MenuBuilder(parser.head, text, report).fill(*parser.root);
}

}  // namespace tarn

tarnMenuParser::~tarnMenuParser() {
    delete root;
}

tarnMenuDef* tarnMenuParser::getMenuDef(const char* fileName, int scrambled) {
    delete std::exchange(root, nullptr);
    head = nullptr;
    releaseTokens();
    tarn::LoadReport dropped;
    tarn::buildMenu(*this, loadFile(fileName, scrambled), dropped);
    return root;
}
