// Token parser and menu trees: present/token_parser.cpp, present/menu_parser.cpp,
// present/menu_definition.cpp.

#include "present/menu.h"
#include "store/file_tools.h"
#include "tests/plain/menu_shape.h"
#include "tests/support.h"

namespace {

using tarnplain::shape;

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

std::string answerOf(const std::string& function, const std::vector<std::string>& cells) {
    const Menu menu(cells[0], function == "scrambled" ? 1 : 0);
    if (function == "id") return std::to_string(menu.root->find(std::stoi(cells[1]))->number);
    return function == "label" ? std::to_string(menu.root->find(cells[1].c_str())) : shape(*menu.root);
}

TEST(MenuText, EveryFormOfTheGrammarGivesItsTree) {
    tarntest::expectAnswers(menuTexts, answerOf);
    EXPECT_EQ(shape(*tarnMenuParser().getMenuDef(nullptr, 1)), "?#-1()");
}

TEST(MenuTree, EveryEntryIsOwnerDrawnAndLeadsToItsNode) {
    Menu menu("P,root,0,M,a,1,5,x,P,b,2,M,S,M,c,3,-6,y,E,M,S,M,d,4,7,z");
    tarnMenuDef &root = *menu.root, *const last = root.getChild(3);
    root.createMenu();
    const HMENU first = root.menu;
    root.createMenu();  // the first menu is released
    EXPECT_TRUE(GetMenuItemCount(first) == -1 && GetMenuItemCount(root.menu) == 4);
    for (std::int32_t i = 0; i < 4; ++i) {
        MENUITEMINFOA entry{};
        entry.cbSize = sizeof entry;
        entry.fMask = MIIM_DATA | MIIM_FTYPE;
        GetMenuItemInfoA(root.menu, static_cast<UINT>(i), TRUE, &entry);
        EXPECT_EQ(entry.dwItemData, reinterpret_cast<ULONG_PTR>(root.getChild(i)));
        EXPECT_TRUE(entry.fType == MFT_OWNERDRAW && GetSubMenu(root.menu, i) == root.getChild(i)->menu);
    }
    tarnMenuDef* const inner = root.getChild(1)->getChild(1);
    root.replaceChild(last, inner);
    EXPECT_TRUE(root.getChild(3) == inner && root.getChild(4) == nullptr && root.childCapacity == 16);
    root.replaceChild(inner, last);
    EXPECT_EQ(root.find(nullptr), -1);
    delete root.children[--root.childCount];
    EXPECT_EQ(GetMenuItemCount(root.menu), 3) << "an item takes its entry away";
}

#if !defined(_WIN32)

TEST(MenuTree, DeepAndWideTreesCostTheirNodesAlone) {
    const std::int32_t before = tarn::openHandles();
    for (const char* piece : {"P,a,1,", "M,S,", "M,a,1,2,b,", "P,a,1,M,S,E,", "P,a,1,M,S,"}) {
        std::string text = "P,root,0,";
        for (int i = 0; i < 200'000; ++i) text += piece;
        const Menu menu(text + "M,a,1,77,b");
        menu.root->createMenu();
        EXPECT_NE(menu.root->find(77), nullptr) << piece;
    }
    EXPECT_EQ(tarn::openHandles(), before);  // a search for each entry would take minutes
}

#endif

}  // namespace
