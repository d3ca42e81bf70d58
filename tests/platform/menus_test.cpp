// Menus read back: platform/menus.cpp, and the system's own on Windows.

#include <cstddef>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "tests/support.h"

#if !defined(_WIN32)
#include "platform/host.h"
#endif

namespace {

void addItem(HMENU menu, UINT id, const void* data = nullptr) {
    ASSERT_TRUE(AppendMenuA(menu, MF_OWNERDRAW, id, static_cast<const char*>(data)));
}

void addPopup(HMENU menu, HMENU below, const void* data = nullptr) {
    ASSERT_TRUE(AppendMenuA(menu, MF_POPUP | MF_OWNERDRAW, reinterpret_cast<ULONG_PTR>(below),
                            static_cast<const char*>(data)));
}

// The ids of a menu in order, those of a sub-menu in brackets; a popup that is gone below shows as "()".
std::string shape(HMENU menu) {
    std::string text;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        if (!text.empty()) text += ' ';
        const HMENU below = GetSubMenu(menu, i);
        text += below == nullptr              ? std::to_string(static_cast<int>(GetMenuItemID(menu, i)))
                : GetMenuItemCount(below) < 0 ? "()"
                                              : "[" + shape(below) + "]";
    }
    return text;
}

// 1, [2, 3, [4], 5], 3, 0 and a popup of nothing.
struct Tree {
    HMENU root = CreatePopupMenu(), middle = CreatePopupMenu(), deep = CreatePopupMenu(),
          empty = CreatePopupMenu();
    int mark = 0;

    Tree() {
        addItem(deep, 4);
        addItem(middle, 2);
        addItem(middle, 3, &mark);
        addPopup(middle, deep);
        addItem(middle, 5);
        addItem(root, 1);
        addPopup(root, middle, &mark);
        addItem(root, 3);
        addItem(root, 0);
        addPopup(root, empty);
    }
    ~Tree() { DestroyMenu(root); }
};

UINT handleId(HMENU menu) {
    return static_cast<UINT>(reinterpret_cast<ULONG_PTR>(menu));
}

TEST(Menus, EntriesReadBackAsTheyWereAppended) {
    Tree tree;
    EXPECT_EQ(shape(tree.root), "1 [2 3 [4] 5] 3 0 []");
    EXPECT_EQ(GetMenuItemID(tree.root, 1), static_cast<UINT>(-1));
    EXPECT_EQ(GetMenuItemID(tree.root, 9), static_cast<UINT>(-1));
    EXPECT_EQ(GetMenuItemID(tree.root, -1), static_cast<UINT>(-1));
    EXPECT_EQ(GetSubMenu(tree.root, 0), nullptr);
    EXPECT_EQ(GetMenuState(tree.root, 0, MF_BYPOSITION), MF_OWNERDRAW);
    EXPECT_EQ(GetMenuState(tree.root, 1, MF_BYPOSITION), MF_POPUP | 4U << 8);
    EXPECT_EQ(GetMenuState(tree.root, 4, MF_BYCOMMAND), MF_OWNERDRAW);
    EXPECT_EQ(GetMenuState(tree.root, 77, MF_BYCOMMAND), static_cast<UINT>(-1));

    const UINT sizes[] = {sizeof(MENUITEMINFOA), offsetof(MENUITEMINFOA, hbmpItem)};
    for (const UINT size : sizes) {
        MENUITEMINFOA info{};
        info.cbSize = size;
        info.fMask = MIIM_TYPE | MIIM_ID | MIIM_DATA | MIIM_SUBMENU | MIIM_STATE;
        ASSERT_TRUE(GetMenuItemInfoA(tree.root, 1, TRUE, &info));
        EXPECT_EQ(info.fType, MFT_OWNERDRAW);
        EXPECT_EQ(info.wID, handleId(tree.middle));
        EXPECT_EQ(info.hSubMenu, tree.middle);
        EXPECT_EQ(info.dwItemData, reinterpret_cast<ULONG_PTR>(&tree.mark));
        info.fMask = MIIM_DATA;
        info.wID = 99;
        ASSERT_TRUE(GetMenuItemInfoA(tree.root, 3, FALSE, &info));
        EXPECT_EQ(info.dwItemData, reinterpret_cast<ULONG_PTR>(&tree.mark))
            << "the 3 of the sub-menu stands first";
        EXPECT_EQ(info.wID, 99U) << "what isn't asked for stays";
    }
    MENUITEMINFOA info{};
    info.cbSize = sizeof info;
    SetLastError(0);
    EXPECT_FALSE(GetMenuItemInfoA(tree.root, 5, TRUE, &info));
    EXPECT_EQ(GetLastError(), ERROR_MENU_ITEM_NOT_FOUND);
    info.cbSize = 12;
    EXPECT_FALSE(GetMenuItemInfoA(tree.root, 0, TRUE, &info));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(Menus, TextsAreCutToTheRoomThatIsGiven) {
    const HMENU menu = CreatePopupMenu();
    char text[] = "Orders";
    ASSERT_TRUE(AppendMenuA(menu, MF_STRING | MF_GRAYED, 7, text));
    text[0] = '?';
    char buffer[] = "????????";
    MENUITEMINFOA info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STRING | MIIM_STATE;
    ASSERT_TRUE(GetMenuItemInfoA(menu, 7, FALSE, &info));
    EXPECT_EQ(info.cch, 6U);
    EXPECT_NE(info.fState & MF_GRAYED, 0U);
    info.dwTypeData = buffer;
    info.cch = 4;
    ASSERT_TRUE(GetMenuItemInfoA(menu, 7, FALSE, &info));
    EXPECT_EQ(std::string(buffer, 3), "Ord");
    EXPECT_EQ(std::string(buffer + 4), "????");
    DestroyMenu(menu);
}

TEST(Menus, DeletionByCommandTakesTheFirstDepthFirst) {
    const struct {
        UINT id;
        BOOL found;
        const char* left;
    } rows[] = {{3, TRUE, "1 [2 [4] 5] 3 0 []"},
                {4, TRUE, "1 [2 3 [] 5] 3 0 []"},
                {1, TRUE, "[2 3 [4] 5] 3 0 []"},
                {0, TRUE, "1 [2 3 [4] 5] 3 []"},
                {static_cast<UINT>(-1), FALSE, "1 [2 3 [4] 5] 3 0 []"},
                {77, FALSE, "1 [2 3 [4] 5] 3 0 []"}};
    for (const auto& row : rows) {
        Tree tree;
        EXPECT_EQ(DeleteMenu(tree.root, row.id, MF_BYCOMMAND), row.found) << row.id;
        EXPECT_EQ(shape(tree.root), row.left) << row.id;
    }
    Tree tree;
    EXPECT_TRUE(DeleteMenu(tree.root, handleId(tree.deep), MF_BYCOMMAND));
    EXPECT_EQ(shape(tree.root), "1 [2 3 5] 3 0 []");
    EXPECT_EQ(GetMenuItemCount(tree.deep), -1) << "a popup's menu goes with its entry";
    EXPECT_TRUE(DeleteMenu(tree.root, 1, MF_BYPOSITION));
    EXPECT_EQ(shape(tree.root), "1 3 0 []");
    EXPECT_EQ(GetMenuItemCount(tree.middle), -1);
    EXPECT_FALSE(DeleteMenu(tree.root, 4, MF_BYPOSITION));
}

TEST(Menus, AMenuThatIsGoneIsNowhere) {
    Tree tree;
    EXPECT_TRUE(DestroyMenu(tree.middle)) << "the parent's entry stays";
    EXPECT_EQ(GetMenuItemCount(tree.deep), -1);
    EXPECT_EQ(shape(tree.root), "1 () 3 0 []");
    EXPECT_EQ(GetSubMenu(tree.root, 1), tree.middle);
    EXPECT_TRUE(DeleteMenu(tree.root, 3, MF_BYCOMMAND)) << "the search goes past it";
    EXPECT_FALSE(DestroyMenu(tree.middle));
    EXPECT_FALSE(AppendMenuA(tree.middle, MF_OWNERDRAW, 1, nullptr));
    EXPECT_EQ(GetMenuItemCount(nullptr), -1);
    EXPECT_FALSE(DestroyMenu(nullptr));
    EXPECT_FALSE(AppendMenuA(tree.root, MF_POPUP, reinterpret_cast<ULONG_PTR>(tree.root), nullptr));
}

#if !defined(_WIN32)

TEST(Menus, ThousandsOfLevelsAndRingsNeedNoStack) {
    const std::int32_t before = tarn::openHandles();
    std::vector<HMENU> chain{CreatePopupMenu()};
    for (int i = 0; i < 200'000; ++i) {
        chain.push_back(CreatePopupMenu());
        addPopup(chain[chain.size() - 2], chain.back());
    }
    addItem(chain.back(), 7);
    EXPECT_EQ(tarn::openHandles(), before + static_cast<std::int32_t>(chain.size()));
    EXPECT_TRUE(DeleteMenu(chain.front(), 7, MF_BYCOMMAND));
    EXPECT_EQ(GetMenuItemCount(chain.back()), 0);
    addPopup(chain[2], chain[1]);
    EXPECT_FALSE(DeleteMenu(chain.front(), 7, MF_BYCOMMAND)) << "a ring is walked once";
    EXPECT_TRUE(DestroyMenu(chain.front()));
    EXPECT_EQ(tarn::openHandles(), before);
}

TEST(Menus, AnOldHandleDoesNotNameANewMenu) {
    const HMENU old = CreatePopupMenu();
    DestroyMenu(old);
    for (int i = 0; i < 100'000; ++i) {
        const HMENU menu = CreatePopupMenu();
        ASSERT_NE(menu, old);
        DestroyMenu(menu);
    }
    EXPECT_FALSE(DeleteObject(CreatePopupMenu())) << "another family's handle";
}

#endif

}  // namespace
