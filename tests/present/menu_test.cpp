// Menu texts and their trees: present/token_parser.cpp, present/menu_parser.cpp,
// present/menu_definition.cpp.

#include "present/menu.h"
#include "store/file_tools.h"
#include "tests/plain/menu_text.h"
#include "tests/support.h"

namespace {

using tarnplain::menuTextOf;

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

TEST(MenuText, EveryFormOfTheGrammarGivesItsTree) {
    const struct {
        const char* text;
        const char* tree;
    } rows[] = {
        {"x, ENDS ,POPUPS,popup,POPUP File,\n"
         "POPUP\r\n\r\n\tFile\r\n7\n"
         "MENUITEM\n  Open  ,,2\t100\nOpen a file\nwhat\n"
         "MENUITEM\nSEPARATOR\nEND,b",
         "POPUP,File,7,MENUITEM,Open,2,100,Open a file,MENUITEM,SEPARATOR,END"},
        {"P,Buy Stock,x,P,b,2,E,M,\"a,-5,12abc,b\"",
         "POPUP,Buy Stock,0,POPUP,b,2,END,MENUITEM,\"a,-5,12,b\",END"},
        {"POP,a,1,ME,SE,MENUITEM,SEPARATORS,1,2,3",
         "POPUP,a,1,MENUITEM,SEPARATOR,MENUITEM,SEPARATORS,1,2,3,END"},
        {"P,a,99999999999,M,b,-99999999999,0,c", "POPUP,a,2147483647,MENUITEM,b,-2147483648,0,c,END"},
        // A blank token begins like POPUP and ends like END.
        {" ,a,1,M,S, ,M,S", "POPUP,a,1,MENUITEM,SEPARATOR,END"},
        // An entry that is cut short ends the text.
        {"P,a,1,M,P,b,2", "POPUP,a,1,END"},
        {"P,a,1,P,b", "POPUP,a,1,END"},
        {"P,a", "POPUP,a,-1,END"},
        {",\n\t\r", "POPUP,NULL,-1,END"},
    };
    for (const auto& each : rows) {
        for (const int scrambled : {0, 1})
            EXPECT_EQ(menuTextOf(*Menu(each.text, scrambled).root), each.tree) << each.text;
    }
    EXPECT_EQ(menuTextOf(*tarnMenuParser().getMenuDef(nullptr, 1)), "POPUP,NULL,-1,END");
}

TEST(MenuText, TokensOfASecondTextFollowThoseOfTheFirst) {
    tarnParser parser;
    char first[] = " a b ,\t,c", second[] = "d\n";
    const _link* const head = parser.parseTokens(first);
    EXPECT_EQ(parser.parseTokens(second), head);
    EXPECT_EQ(std::string(head->text, head->length), "a b");
    EXPECT_STREQ(head->next->next->text, "d");
}

TEST(MenuTree, ABlankLabelIsNotFoundInsteadOfAnother) {
    const Menu menu("P,root,0,M, ,1,5,a,M,File,2,6,b");
    EXPECT_EQ(menu.root->find("FILE MENU"), 1);
}

// Every child of a popup has an owner-drawn entry that leads to it, and every popup below a menu of its own.
void expectEntries(const tarnMenuDef& node) {
    ASSERT_EQ(GetMenuItemCount(node.menu), node.childCount);
    for (std::int32_t i = 0; i < node.childCount; ++i) {
        const tarnMenuDef& child = *node.getChild(i);
        MENUITEMINFOA entry{};
        entry.cbSize = sizeof entry;
        entry.fMask = MIIM_DATA | MIIM_FTYPE;
        GetMenuItemInfoA(node.menu, static_cast<UINT>(i), TRUE, &entry);
        EXPECT_EQ(entry.dwItemData, reinterpret_cast<ULONG_PTR>(&child));
        EXPECT_EQ(entry.fType, MFT_OWNERDRAW);
        EXPECT_EQ(GetSubMenu(node.menu, i), child.menu);
        EXPECT_EQ(GetMenuItemID(node.menu, i),
                  static_cast<UINT>(child.kind == tarn::menuSeparator ? 0 : child.id));
        if (child.kind == tarn::menuPopup) expectEntries(child);
    }
}

TEST(MenuTree, EveryEntryIsOwnerDrawnAndLeadsToItsNode) {
    Menu menu("P,root,0,M,a,1,5,x,P,b,2,M,S,M,c,3,-6,y,E,M,S,M,d,4,7,z");
    tarnMenuDef& root = *menu.root;
    root.createMenu();
    const HMENU first = root.menu;
    root.createMenu();
    EXPECT_EQ(GetMenuItemCount(first), -1) << "the first menu is released";
    expectEntries(root);
    delete root.children[--root.childCount];
    expectEntries(root);
}

TEST(MenuTree, ChildrenKeepTheirOrderWhileTheArrayGrowsAndOneIsReplaced) {
    std::string text = "P,root,0";
    for (int i = 0; i < 50; ++i) text += ",M,a," + std::to_string(i) + ",1,x";
    const Menu menu(text), other("P,b,2,M,S");
    tarnMenuDef &root = *menu.root, &second = *root.getChild(1), &third = *root.getChild(2);
    root.replaceChild(&root, &third);  // no child, no change
    root.replaceChild(&second, &third);
    EXPECT_EQ(root.getChild(1), &third);
    root.replaceChild(&third, &second);
    tarnMenuDef* const moved = other.root->children[--other.root->childCount];
    root.addChild(moved);
    root.addChild(nullptr);
    for (std::int32_t i = 0; i < 50; ++i) EXPECT_EQ(root.getChild(i)->number, i);
    EXPECT_EQ(root.getChild(50), moved);
    for (const std::int32_t outside : {-1, 51}) EXPECT_EQ(root.getChild(outside), nullptr);
    EXPECT_EQ(root.childCapacity, 64);
}

#if !defined(_WIN32)

TEST(MenuTree, DeepAndWideTreesCostTheirNodesAlone) {
    const std::int32_t before = tarn::openHandles();
    for (const char* piece : {"P,a,1,", "M,S,", "M,a,1,2,b,", "P,a,1,M,S,E,", "P,a,1,M,S,"}) {
        std::string text = "P,root,0,";
        for (int i = 0; i < 100'000; ++i) text += piece;
        const Menu menu(text + "M,a,1,77,b");
        menu.root->createMenu();
        EXPECT_NE(menu.root->find(77), nullptr) << piece;
    }
    EXPECT_EQ(tarn::openHandles(), before);  // a search for each entry would take minutes
}

#endif

}  // namespace
