// Token parser and menu trees: present/token_parser.cpp, present/menu_parser.cpp,
// present/menu_definition.cpp.

#include <memory>
#include <utility>

#include "present/menu.h"
#include "store/file_tools.h"
#include "tests/support.h"

namespace {

constexpr char menuTexts[] =
#include "tests/present/menus.txt"
    ;

// A parser that has read this text from a file.
struct Menu {
    tarnMenuParser parser;
    tarnMenuDef* root;

    explicit Menu(std::string text, int scrambled = 0) {
        const tarntest::TemporaryFolder folder;
        if (scrambled != 0) scramble(text.data(), static_cast<std::int32_t>(text.size()));
        tarntest::fill(folder.file("menu"), text);
        root = parser.getMenuDef(folder.file("menu").c_str(), scrambled);
    }
};

std::string shape(const tarnMenuDef& node) {
    if (node.kind == 3) return "-";
    std::string text =
        node.label == nullptr ? "?" : std::string(node.label, static_cast<std::size_t>(node.labelLength));
    text += '#' + std::to_string(node.number);
    if (node.kind == 2) return text + '=' + std::to_string(node.id) + '\'' + node.extra + '\'';
    text += '(';
    for (std::int32_t i = 0; i < node.childCount; ++i) {
        EXPECT_EQ(node.getChild(i)->parent, &node);
        text += shape(*node.getChild(i)) + ' ';
    }
    return text + ')';
}

TEST(MenuText, EveryFormOfTheGrammarGivesItsTree) {
    for (const int scrambled : {0, 1})
        tarntest::expectAnswers(menuTexts,
                                [=](auto&, auto& cells) { return shape(*Menu(cells[0], scrambled).root); });
    EXPECT_EQ(shape(*Menu(std::string("P,a,1\0,M,S", 10)).root), "a#1()") << "the text ends at a NUL";
    const Menu blanks("P,\t root ,");
    EXPECT_EQ(blanks.parser.head->next->text - blanks.parser.buffer, 4) << "a token lies in the text";
    tarnMenuParser parser;
    for (const char* missing : {static_cast<const char*>(nullptr), "."})
        EXPECT_EQ(shape(*parser.getMenuDef(missing, 1)), "?#-1()");
}

TEST(MenuTree, ChildrenKeepTheirOrderAndTheirToldCapacity) {
    std::string text = "P,root,0";
    for (int i = 0; i < 40; ++i) text += ",M,item,0," + std::to_string(i) + ",x";
    Menu menu(text), other("P,other,0,M,S");
    tarnMenuDef& root = *menu.root;
    tarnMenuDef *const separator = other.root->getChild(0), *const seventh = root.getChild(7);
    root.replaceChild(separator, seventh);  // no child: nothing
    root.replaceChild(seventh, nullptr);
    root.addChild(nullptr);
    for (std::int32_t i = 0; i < 40; ++i) EXPECT_EQ(root.getChild(i)->id, i);
    EXPECT_TRUE(root.getChild(-1) == nullptr && root.getChild(40) == nullptr);
    root.replaceChild(seventh, separator);
    other.root->replaceChild(separator, seventh);
    EXPECT_EQ(root.getChild(7), separator);
    while (root.childCount < 49) {
        EXPECT_EQ(root.childCapacity, 48);
        Menu made("");
        root.addChild(std::exchange(made.parser.root, nullptr));
    }
    EXPECT_EQ(root.childCapacity, 64);
    root.replaceChild(separator, seventh);  // back to their parents, which they still name
    other.root->replaceChild(seventh, separator);
}

TEST(MenuTree, SearchesTakeTheFirstInTheOrderOfTheText) {
    const Menu menu(
        "P,root,0, M,Fi,1,5,a, P,Deep,2,M,File,3,9,b,M,x,4,5,c,E, M,File,6,9,d, M, S, M,File Menu,7,8,e");
    for (const auto& [id, number] : {std::pair(5, 1), {9, 3}, {8, 7}, {-1, 0}})
        EXPECT_EQ(menu.root->find(id)->number, number);
    EXPECT_EQ(menu.root->find(77), nullptr);
    for (const auto& [text, index] : {std::pair("FILE MENU", 0), {"deep end", 1}, {"Dee", -1}, {nullptr, -1}})
        EXPECT_EQ(menu.root->find(text), index);
    menu.root->getChild(0)->labelLength = 0;
    EXPECT_EQ(menu.root->find("file menu"), 2) << "a child without a label is passed over";
}

void expectEntries(const tarnMenuDef& node) {
    ASSERT_EQ(GetMenuItemCount(node.menu), node.childCount);
    for (std::int32_t i = 0; i < node.childCount; ++i) {
        const tarnMenuDef& child = *node.getChild(i);
        MENUITEMINFOA entry{};
        entry.cbSize = sizeof entry;
        entry.fMask = MIIM_DATA | MIIM_FTYPE;
        EXPECT_TRUE(GetMenuItemInfoA(node.menu, static_cast<UINT>(i), TRUE, &entry));
        EXPECT_TRUE(entry.dwItemData == reinterpret_cast<ULONG_PTR>(&child) && entry.fType == MFT_OWNERDRAW);
        EXPECT_EQ(GetSubMenu(node.menu, i), child.menu);
        EXPECT_EQ(static_cast<std::int32_t>(GetMenuItemID(node.menu, i)), child.kind == 3 ? 0 : child.id);
        if (child.kind == 1) expectEntries(child);
    }
}

TEST(MenuTree, EveryEntryIsOwnerDrawnAndLeadsToItsNode) {
    Menu menu("P,root,0,M,a,1,5,x,P,b,2,M,S,M,c,3,-6,y,P,empty,0,E,E,M,S,M,d,4,7,z");
    tarnMenuDef& root = *menu.root;
    root.createMenu();
    std::vector<HMENU> menus{root.menu};
    root.createMenu();  // the first menu is released
    delete root.children[--root.childCount];
    expectEntries(root);  // the item took its entry away
    menus.insert(menus.end(), {root.menu, root.getChild(1)->getChild(2)->menu});
    delete std::exchange(menu.parser.root, nullptr);
    for (const HMENU gone : menus) EXPECT_EQ(GetMenuItemCount(gone), -1);
}

#if !defined(_WIN32)

TEST(MenuTree, DeepAndWideTreesCostTheirNodesAlone) {
    const std::int32_t before = tarn::openHandles();
    for (const char* piece : {"P,a,1,", "M,S,", "M,a,1,2,b,", "P,a,1,M,S,E,", "P,a,1,M,S,"}) {
        std::string text = "P,root,0,";
        for (int i = 0; i < 200'000; ++i) text += piece;
        auto menu = std::make_unique<Menu>(text + "M,a,1,77,b");
        menu->root->createMenu();
        EXPECT_NE(menu->root->find(77), nullptr);
        menu.reset();
        EXPECT_EQ(tarn::openHandles(), before) << piece;  // a search for each entry would take minutes
    }
}

#endif

}  // namespace
