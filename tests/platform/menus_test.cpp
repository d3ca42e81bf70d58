// Menus read back: platform/menus.cpp, and the system's own on Windows.

#include "tests/support.h"

namespace {

constexpr UINT none = ~0U;

void addItem(HMENU menu, UINT id) {
    EXPECT_TRUE(AppendMenuA(menu, MF_OWNERDRAW, id, reinterpret_cast<const char*>(ULONG_PTR{id} + 1000)));
}

HMENU addPopup(HMENU menu, HMENU below = CreatePopupMenu()) {
    EXPECT_TRUE(AppendMenuA(menu, MF_POPUP | MF_OWNERDRAW, reinterpret_cast<ULONG_PTR>(below), nullptr));
    return below;
}

using Counts = std::array<int, 3>;

// Item 1, a popup (2, 3, a popup (4)), 3 and 0.
struct Tree {
    HMENU root = CreatePopupMenu(), middle = CreatePopupMenu(), deep = CreatePopupMenu();

    Tree() {
        addItem(root, 1);
        addPopup(root, middle);
        for (const UINT id : {3U, 0U}) addItem(root, id);
        for (const UINT id : {2U, 3U}) addItem(middle, id);
        addPopup(middle, deep);
        addItem(deep, 4);
    }
    ~Tree() { DestroyMenu(root); }

    [[nodiscard]] Counts counts() const {
        return {GetMenuItemCount(root), GetMenuItemCount(middle), GetMenuItemCount(deep)};
    }
};

TEST(Menus, EntriesReadBackAsFarAsTheyAreAskedFor) {
    const Tree tree;
    EXPECT_TRUE(AppendMenuA(tree.deep, MF_STRING | MF_GRAYED, 5, "Open"));
    EXPECT_EQ(GetMenuItemID(tree.root, 4), none);
    EXPECT_EQ(GetMenuState(tree.root, 0, MF_BYPOSITION), MF_OWNERDRAW);
    EXPECT_EQ(GetMenuState(tree.root, 1, MF_BYPOSITION), MF_POPUP | 3U << 8);
    EXPECT_EQ(GetMenuState(tree.root, 5, MF_BYCOMMAND), MF_GRAYED);
    MENUITEMINFOA info{};
    info.cbSize = offsetof(MENUITEMINFOA, hbmpItem);
    info.fMask = MIIM_DATA;
    info.wID = 77;
    info.fState = 77;
    info.hSubMenu = tree.root;
    EXPECT_TRUE(GetMenuItemInfoA(tree.root, 4, FALSE, &info));
    EXPECT_EQ(info.dwItemData, 1004U);
    EXPECT_EQ(info.wID, 77U) << "not asked for";
    EXPECT_EQ(info.fState, 77U) << "not asked for";
    EXPECT_EQ(info.hSubMenu, nullptr) << "not asked for";
    char text[] = "untouched";
    info.fMask = MIIM_TYPE;
    info.dwTypeData = text;
    info.cch = 4;
    EXPECT_TRUE(GetMenuItemInfoA(tree.root, 5, FALSE, &info));
    if (!tarntest::onWindows) {  // wine fills the room without a terminator
        EXPECT_STREQ(text, "Ope");
        EXPECT_EQ(info.cch, 3U);
    }
    EXPECT_FALSE(GetMenuItemInfoA(tree.root, 4, TRUE, &info));
    EXPECT_EQ(GetLastError(), ERROR_MENU_ITEM_NOT_FOUND);
    info.cbSize = 12;
    EXPECT_FALSE(GetMenuItemInfoA(tree.root, 0, TRUE, &info));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(Menus, DeletionByCommandTakesTheFirstDepthFirst) {
    const struct {
        UINT command;
        Counts left;
    } rows[] = {{3, {4, 2, 1}}, {4, {4, 3, 0}}, {1, {3, 3, 1}}, {0, {3, 3, 1}}, {none, {4, 3, 1}}};
    for (const auto& each : rows) {
        const Tree tree;
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(DeleteMenu(tree.root, each.command, MF_BYCOMMAND), each.command == none ? FALSE : TRUE);
        EXPECT_EQ(tree.counts(), each.left) << each.command;
    }
    EXPECT_TRUE(tarntest::onWindows || GetLastError() == ERROR_MENU_ITEM_NOT_FOUND);  // wine leaves it
}

TEST(Menus, AMenuThatIsGoneIsNowhere) {
    const Tree tree;
    EXPECT_TRUE(DestroyMenu(tree.middle));
    EXPECT_EQ(tree.counts(), (Counts{4, -1, -1})) << "the parent's entry stays";
    EXPECT_TRUE(DeleteMenu(tree.root, 3, MF_BYCOMMAND)) << "the search passes it";
    for (const HMENU gone : {tree.middle, tree.deep, HMENU{}}) EXPECT_FALSE(DestroyMenu(gone));
    EXPECT_FALSE(AppendMenuA(tree.middle, MF_OWNERDRAW, 1, nullptr));
    EXPECT_FALSE(AppendMenuA(tree.root, MF_POPUP, reinterpret_cast<ULONG_PTR>(tree.root), nullptr));
    const Tree other;
    EXPECT_TRUE(DeleteMenu(other.root, 1, MF_BYPOSITION));
    EXPECT_EQ(other.counts(), (Counts{3, -1, -1})) << "a popup's menu is destroyed with its entry";
}

#if !defined(_WIN32)

TEST(Menus, ThousandsOfLevelsAndRingsNeedNoStack) {
    const std::int32_t before = tarn::openHandles();
    std::vector<HMENU> chain{CreatePopupMenu()};
    while (chain.size() < 200'000) chain.push_back(addPopup(chain.back()));
    addItem(chain.back(), 7);
    addPopup(chain[2], chain[1]);
    EXPECT_TRUE(DeleteMenu(chain.front(), 7, MF_BYCOMMAND));
    EXPECT_FALSE(DeleteMenu(chain.front(), 7, MF_BYCOMMAND));
    EXPECT_TRUE(DestroyMenu(chain.front()));
    EXPECT_EQ(tarn::openHandles(), before);
    for (const HMENU old : chain) {
        EXPECT_FALSE(DestroyMenu(old));
        EXPECT_TRUE(DestroyMenu(CreatePopupMenu()));
    }
}

#endif

}  // namespace
