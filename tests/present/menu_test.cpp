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
    const char* const file = "POPUP,File,7,MENUITEM,Open,2,100,Open a file,MENUITEM,SEPARATOR,END";
    const struct {
        const char* text;
        const char* tree;
    } rows[] = {
        {file, file},
        {"x, ENDS ,POPUPS,popup,POPUP File,\n"
         "POPUP\r\n\r\n\tFile\r\n7\n"
         "MENUITEM\n  Open  ,,2\t100\nOpen a file\nwhat\n"
         "MENUITEM\nSEPARATOR\nEND,b",
         file},
        {"P,Buy Stock,x,M,\"a,-5,12abc,b\",E", "POPUP,Buy Stock,0,MENUITEM,\"a,-5,12,b\",END"},
        {"P,a,1,P,b,2,P,c,3,E,M,S,E,M,E,1,2,E,M,S,E,M,S",
         "POPUP,a,1,POPUP,b,2,POPUP,c,3,END,MENUITEM,SEPARATOR,END,MENUITEM,E,1,2,E,MENUITEM,SEPARATOR,END"},
        {"POP,a,1,ME,S,MENU,SE,MENUITEM,SEPARATORS,1,2,3",
         "POPUP,a,1,MENUITEM,SEPARATOR,MENUITEM,SEPARATOR,MENUITEM,SEPARATORS,1,2,3,END"},
        {"P,a,99999999999,M,b,-99999999999,0,c", "POPUP,a,2147483647,MENUITEM,b,-2147483648,0,c,END"},
        // A blank token begins like POPUP and ends like END.
        {" ,a,1,M,S, ,M,S", "POPUP,a,1,MENUITEM,SEPARATOR,END"},
        // An entry that is cut short ends the text.
        {"P,a,1,M,b,2,3", "POPUP,a,1,END"},
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
    for (char* const text : {second, static_cast<char*>(nullptr)}) EXPECT_EQ(parser.parseTokens(text), head);
    std::string tokens;
    for (const _link* token = head; token != nullptr; token = token->next)
        tokens += std::string(token->text, token->length) + ";";
    EXPECT_EQ(tokens, "a b;c;d;");
}

TEST(MenuTree, NodesAreFoundInTheOrderOfTheText) {
    const Menu menu("P,root,0,M,Fi,1,5,a,P,Deep,2,M,File,3,9,b,M,x,4,5,c,E,M,File,6,9,d,M,S,M,Fill,7,8,e");
    const struct { std::int32_t id, number; } ids[] = {{5, 1}, {9, 3}, {8, 7}, {-1, 0}};
    for (const auto& each : ids) EXPECT_EQ(menu.root->find(each.id)->number, each.number) << each.id;
    EXPECT_EQ(menu.root->find(77), nullptr);
    const struct {
        const char* text;
        std::int32_t index;
    } labels[] = {{"FILE MENU", 0}, {"deep end", 1}, {"Dee", -1}, {"", -1}, {nullptr, -1}};
    for (const auto& each : labels) EXPECT_EQ(menu.root->find(each.text), each.index) << each.index;
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
        const std::int32_t ids[] = {-1, -1, child.id, 0};  // by the kind
        EXPECT_EQ(GetMenuItemID(node.menu, i), static_cast<UINT>(ids[child.kind]));
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
    EXPECT_EQ(GetMenuItemCount(root.menu), 3) << "an item takes its entry away";
    expectEntries(root);
}

TEST(MenuTree, ChildrenKeepTheirOrderWhileTheArrayGrowsAndOneIsReplaced) {
    std::string text = "P,root,0";
    for (int i = 0; i < 50; ++i) text += ",M,a," + std::to_string(i) + ",1,x";
    const Menu menu(text);
    tarnMenuDef& root = *menu.root;
    EXPECT_EQ(root.childCapacity, 64);
    for (std::int32_t i = 0; i < 50; ++i) EXPECT_EQ(root.getChild(i)->number, i);
    for (const std::int32_t outside : {-1, 50}) EXPECT_EQ(root.getChild(outside), nullptr);
    tarnMenuDef *const second = root.getChild(1), *const third = root.getChild(2);
    root.replaceChild(&root, second);
    EXPECT_EQ(root.getChild(1), second) << "no child, no change";
    root.replaceChild(second, third);
    EXPECT_EQ(root.getChild(1), third);
    root.replaceChild(third, second);
    const Menu other("P,b,2,M,S");
    tarnMenuDef* const moved = other.root->children[--other.root->childCount];
    root.addChild(moved);
    root.addChild(nullptr);
    EXPECT_EQ(root.childCount, 51);
    EXPECT_EQ(root.getChild(50), moved);
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
