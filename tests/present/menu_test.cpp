// Token parser and menu trees: present/token_parser.cpp, present/menu_parser.cpp,
// present/menu_definition.cpp.

#include <chrono>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "present/menu.h"
#include "store/file_tools.h"
#include "tests/support.h"

#if !defined(_WIN32)
#include "platform/host.h"
#endif

namespace {

constexpr const char* orders = "POPUP,File,7,MENUITEM,Open,2,100,Open a file,MENUITEM,SEPARATOR,END";
constexpr const char* ordersShape = "File#7(Open#2=100'Open a file' -)";

// A parser that has read this text from a file.
struct Menu {
    tarnMenuParser parser;
    tarnMenuDef* root;

    explicit Menu(const std::string& text, bool scrambled = false) {
        const tarntest::TemporaryFolder folder;
        std::string stored = text;
        if (scrambled) scramble(stored.data(), static_cast<std::int32_t>(stored.size()));
        tarntest::fill(folder.file("menu"), stored);
        root = parser.getMenuDef(folder.file("menu").c_str(), scrambled ? 1 : 0);
    }
};

// A tree in one line: a popup label#number(children), an item label#number=id'extra', a separator -.
std::string shape(const tarnMenuDef& node) {
    if (node.kind == 3) return "-";
    const std::string label = node.label == nullptr ? "?" : std::string(node.label);
    EXPECT_EQ(node.labelLength, node.label == nullptr ? 0 : static_cast<std::int32_t>(label.size()));
    std::string text = label + '#' + std::to_string(node.number);
    if (node.kind == 2) return text + '=' + std::to_string(node.id) + '\'' + node.extra + '\'';
    text += '(';
    for (std::int32_t i = 0; i < node.childCount; ++i) {
        EXPECT_EQ(node.getChild(i)->parent, &node);
        text += (i == 0 ? "" : " ") + shape(*node.getChild(i));
    }
    return text + ')';
}

TEST(MenuText, EveryFormOfTheGrammarGivesItsTree) {
    const struct {
        std::string text;
        const char* shape;
    } rows[] = {
        {orders, ordersShape},
        {"x, ENDS ,POPUPS,popup,POPUP File,\n" + std::string(orders), ordersShape},
        {"POPUP\r\n\r\n\tFile\r\n7\nMENUITEM\n  Open  ,,2\t100\nOpen a file\nwhat\nMENUITEM\nSEPARATOR\nEND",
         ordersShape},
        {std::string(orders) + ",MENUITEM,SEPARATOR,END,POPUP,b,2", ordersShape},
        {"P,Buy Stock,x,M,\"a,-5,12abc,b\",E", "Buy Stock#0(\"a#-5=12'b\"')"},
        {"POP,a,1,ME,S,MENU,SE,M,SEP,MENUITEM,SEPARATORS,1,2,3", "a#1(- - - SEPARATORS#1=2'3')"},
        {"P,a,1,P,b,2,P,c,3,E,M,S,E,M,x,1,2,3,E,M,S", "a#1(b#2(c#3() -) x#1=2'3')"},
        {"P,a,1, ,M,S", "a#1()"},  // a blank token ends like END
        {" ,a,1,M,S", "a#1(-)"},   // and begins like POPUP
        {"P,a,99999999999,M,b,-99999999999,0,c", "a#2147483647(b#-2147483648=0'c')"},
        {"", "?#-1()"},
        {",\n\t\r", "?#-1()"},
        {"nothing, here", "?#-1()"},
        {"P", "?#-1()"},
        {"P,a", "a#-1()"},
        {std::string("P,a,1\0,M,S", 10), "a#1()"},  // the text ends at a NUL
    };
    for (const auto& row : rows) {
        const Menu menu(row.text);
        EXPECT_EQ(shape(*menu.root), row.shape) << row.text;
        EXPECT_EQ(menu.root->parent, nullptr);
        EXPECT_EQ(menu.parser.head, menu.parser.tokens);
    }
    const Menu scrambled(orders, true);
    EXPECT_EQ(shape(*scrambled.root), ordersShape);
}

TEST(MenuText, WhatCanNotBeReadIsAMenuWithNothingInIt) {
    tarnMenuParser parser;
    const tarntest::TemporaryFolder folder;
    const std::string names[] = {folder.file("missing"), folder.path().string()};
    for (const char* name : {names[0].c_str(), names[1].c_str(), static_cast<const char*>(nullptr)}) {
        const tarnMenuDef* root = parser.getMenuDef(name, 0);
        EXPECT_EQ(shape(*root), "?#-1()");
        EXPECT_EQ(root->kind, 1);
        EXPECT_EQ(parser.head, nullptr);
    }
    tarntest::fill(folder.file("menu"), orders);
    EXPECT_EQ(shape(*parser.getMenuDef(folder.file("menu").c_str(), 0)), ordersShape);
}

// The grammar again, as it is told: by recursion over a vector of tokens.
class PlainReader {
  public:
    explicit PlainReader(std::string text) {
        for (char* token = std::strtok(text.data(), ",\n\t\r"); token != nullptr;
             token = std::strtok(nullptr, ",\n\t\r")) {
            std::string trimmed(token);
            trimmed.erase(0, std::min(trimmed.find_first_not_of(' '), trimmed.size()));
            trimmed.erase(trimmed.find_last_not_of(' ') + 1);
            tokens_.push_back(trimmed);
        }
    }

    std::string read() {
        while (next_ < tokens_.size() && !is("POPUP")) ++next_;
        ++next_;
        if (tokens_.size() < next_ + 2) return next_ < tokens_.size() ? tokens_[next_] + "#-1()" : "?#-1()";
        return popup();
    }

  private:
    bool is(const char* keyword) const {
        return std::strncmp(tokens_[next_].c_str(), keyword, tokens_[next_].size()) == 0;
    }
    std::string take() { return tokens_[next_++]; }
    std::string number() { return std::to_string(std::atol(take().c_str())); }

    std::string popup() {
        std::string text = take();
        text += '#' + number() + '(';
        std::string gap;
        const auto add = [&](const std::string& entry) {
            text += gap + entry;
            gap = " ";
        };
        while (next_ < tokens_.size()) {
            const bool end = is("END"), item = is("MENUITEM"), below = is("POPUP");
            ++next_;
            if (end) break;
            const std::size_t left = tokens_.size() - std::min(next_, tokens_.size());
            if (item && left > 0 && is("SEPARATOR")) {
                ++next_;
                add("-");
            } else if (item ? left < 4 : below && left < 2) {
                next_ = tokens_.size();
            } else if (item) {
                std::string entry = take();
                entry += '#' + number();
                entry += '=' + number();
                add(entry + '\'' + take() + '\'');
            } else if (below) {
                add(popup());
            }
        }
        return text + ')';
    }

    std::vector<std::string> tokens_;
    std::size_t next_ = 0;
};

TEST(MenuText, RandomTextsReadAsThePlainRecursionReadsThem) {
    const char* const pieces[] = {"P,", "POPUP\n", "M,",      "MENUITEM\t", "S,",    "SEPARATOR,",
                                  "E,", "END\r\n", " ,",      "a b,",       " 12 ,", "-7,",
                                  "x",  ",",       "POPUPS,", "  "};
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        std::string text = "POPUP,root,1,";
        for (auto length = random() % 60; length > 0; --length) text += pieces[random() % std::size(pieces)];
        const Menu menu(text);
        ASSERT_EQ(shape(*menu.root), PlainReader(text).read()) << text;
    }
    for (std::size_t end = 0; end <= std::strlen(orders); ++end) {
        const std::string cut(orders, end);
        const Menu menu(cut);
        ASSERT_EQ(shape(*menu.root), PlainReader(cut).read()) << cut;
    }
}

TEST(TokenParser, TokensAreTrimmedAndLieInTheText) {
    tarnParser parser;
    char text[] = "\n Open ,,Buy Stock\t   \rx";
    const struct {
        const char* text;
        std::ptrdiff_t place;
    } rows[] = {{"Open", 2}, {"Buy Stock", 9}, {"", 22}, {"x", 23}};
    const _link* token = parser.parseTokens(text);
    EXPECT_EQ(token, parser.tokens);
    for (const auto& row : rows) {
        ASSERT_NE(token, nullptr);
        EXPECT_STREQ(token->text, row.text);
        EXPECT_EQ(token->length, std::strlen(row.text));
        EXPECT_EQ(token->text - text, row.place);
        token = token->next;
    }
    EXPECT_EQ(token, nullptr);
    EXPECT_EQ(tarnParser().parseTokens(nullptr), nullptr);
}

TEST(MenuTree, ChildrenKeepTheirOrderAndTheirToldCapacity) {
    std::string text = "P,root,0";
    for (int i = 0; i < 40; ++i) text += ",M,item,0," + std::to_string(i) + ",x";
    Menu menu(text);
    tarnMenuDef& root = *menu.root;
    EXPECT_EQ(root.childCapacity, 48);
    EXPECT_EQ(root.getChild(0)->childCapacity, 0);
    for (std::int32_t i = 0; i < 40; ++i) EXPECT_EQ(root.getChild(i)->id, i);
    EXPECT_EQ(root.getChild(-1), nullptr);
    EXPECT_EQ(root.getChild(40), nullptr);

    Menu other("P,other,0,M,S");
    tarnMenuDef* const separator = other.root->getChild(0);
    tarnMenuDef* const seventh = root.getChild(7);
    root.replaceChild(separator, seventh);  // no child: nothing
    root.replaceChild(seventh, nullptr);
    root.addChild(nullptr);
    EXPECT_EQ(root.getChild(7), seventh);
    root.replaceChild(seventh, separator);
    other.root->replaceChild(separator, seventh);
    EXPECT_EQ(root.getChild(7)->kind, 3);
    EXPECT_EQ(other.root->find(7), seventh);
    EXPECT_EQ(root.find(7), nullptr);
    const auto adopt = [&root] {
        Menu made("");  // its root goes over to the tree
        root.addChild(std::exchange(made.parser.root, nullptr));
    };
    while (root.childCount < 48) adopt();
    EXPECT_EQ(root.childCapacity, 48);
    adopt();
    EXPECT_EQ(root.childCapacity, 64);
    EXPECT_EQ(root.getChild(39)->id, 39);
}

TEST(MenuTree, SearchesTakeTheFirstInTheOrderOfTheText) {
    const Menu menu(
        "P,root,0, M,Fi,1,5,a, P,Deep,2,M,File,3,9,b,M,x,4,5,c,E, M,File,6,9,d, M, S, M,File Menu,7,8,e");
    tarnMenuDef& root = *menu.root;
    const struct { std::int32_t id, number; } ids[] = {{5, 1}, {9, 3}, {8, 7}, {-1, 0}};
    for (const auto& row : ids) EXPECT_EQ(root.find(row.id)->number, row.number);
    EXPECT_EQ(root.find(77), nullptr);
    const struct {
        const char* text;
        std::int32_t index;
    } texts[] = {{"FILE MENU", 0}, {"deep end", 1}, {"Dee", -1}, {"", -1}, {nullptr, -1}, {"x", -1}};
    for (const auto& row : texts) EXPECT_EQ(root.find(row.text), row.index);
    root.getChild(0)->labelLength = 0;
    EXPECT_EQ(root.find("file menu"), 2) << "a child without a label is passed over";
}

// What the entry at a position says: its data, its id and its kind.
MENUITEMINFOA entryOf(HMENU menu, int position) {
    MENUITEMINFOA info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_DATA | MIIM_ID | MIIM_FTYPE | MIIM_SUBMENU;
    EXPECT_TRUE(GetMenuItemInfoA(menu, static_cast<UINT>(position), TRUE, &info));
    return info;
}

void expectEntries(const tarnMenuDef& node) {
    ASSERT_EQ(GetMenuItemCount(node.menu), node.childCount);
    for (std::int32_t i = 0; i < node.childCount; ++i) {
        const tarnMenuDef& child = *node.getChild(i);
        const MENUITEMINFOA entry = entryOf(node.menu, i);
        EXPECT_EQ(entry.dwItemData, reinterpret_cast<ULONG_PTR>(&child));
        EXPECT_EQ(entry.fType, MFT_OWNERDRAW);
        EXPECT_EQ(entry.hSubMenu, child.menu);
        if (child.kind == 1) {
            expectEntries(child);
        } else {
            EXPECT_EQ(static_cast<std::int32_t>(entry.wID), child.kind == 2 ? child.id : 0);
        }
    }
}

TEST(MenuTree, EveryEntryIsOwnerDrawnAndLeadsToItsNode) {
    HMENU gone = nullptr, below = nullptr;
    {
        Menu menu("P,root,0,M,a,1,5,x,P,b,2,M,S,M,c,3,-6,y,P,empty,0,E,E,M,S,M,d,4,7,z");
        tarnMenuDef& root = *menu.root;
        root.createMenu();
        expectEntries(root);
        gone = root.menu;
        root.createMenu();
        expectEntries(root);
        EXPECT_EQ(GetMenuItemCount(gone), -1) << "the first menu is released";

        tarnMenuDef* const last = root.getChild(3);
        --root.childCount;
        delete last;
        expectEntries(root);
        gone = root.menu;
        below = root.getChild(1)->getChild(2)->menu;
        EXPECT_EQ(GetMenuItemCount(below), 0);
    }
    EXPECT_EQ(GetMenuItemCount(gone), -1);
    EXPECT_EQ(GetMenuItemCount(below), -1);
}

#if !defined(_WIN32)

std::string repeated(const char* piece, int count) {
    std::string text = "P,root,0,";
    for (int i = 0; i < count; ++i) text += piece;
    return text;
}

TEST(MenuTree, DeepAndWideTreesCostTheirNodesAlone) {
    constexpr int many = 200'000;
    const struct {
        const char* piece;
        std::int32_t children;
    } rows[] = {
        {"P,a,1,", 1}, {"M,S,", many}, {"M,a,1,2,b,", many}, {"P,a,1,M,S,E,", many}, {"P,a,1,M,S,", 1}};
    const std::int32_t before = tarn::openHandles();
    for (const auto& row : rows) {
        const auto start = std::chrono::steady_clock::now();
        {
            Menu menu(repeated(row.piece, many) + "M,a,1,77,b");
            EXPECT_EQ(menu.root->childCount - (row.children == 1 ? 0 : 1), row.children);
            menu.root->createMenu();
            EXPECT_NE(menu.root->find(77), nullptr);
        }
        EXPECT_EQ(tarn::openHandles(), before) << row.piece;
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
        EXPECT_LT(seconds.count(), 20.0) << row.piece << ": a search for each entry would take minutes";
    }
}

#endif

}  // namespace
