// Menus read back: platform/menus.cpp, and the system's own on Windows.

#include "tests/support.h"

namespace {

constexpr UINT none = ~0U;

UINT handleId(HMENU menu) {
    return static_cast<UINT>(reinterpret_cast<ULONG_PTR>(menu));
}

void addItem(HMENU menu, UINT id) {
    ASSERT_TRUE(AppendMenuA(menu, MF_OWNERDRAW, id, reinterpret_cast<const char*>(ULONG_PTR{id} + 1000)));
}

HMENU addPopup(HMENU menu, HMENU below = CreatePopupMenu()) {
    EXPECT_TRUE(AppendMenuA(menu, MF_POPUP | MF_OWNERDRAW, reinterpret_cast<ULONG_PTR>(below), nullptr));
    return below;
}

// The ids of a menu in order, those of a sub-menu in brackets; a popup whose menu is gone looks empty.
std::string shape(HMENU menu) {
    std::string text;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        const HMENU below = GetSubMenu(menu, i);
        const int id = static_cast<int>(GetMenuItemID(menu, i));
        text += (i == 0 ? "" : " ") + (below == nullptr ? std::to_string(id) : "[" + shape(below) + "]");
    }
    return text;
}

struct Tree {
    HMENU root = CreatePopupMenu(), middle = nullptr, deep = nullptr;

    Tree() {
        addItem(root, 1);
        middle = addPopup(root);
        for (const auto& [menu, id] : {std::pair{middle, 2U}, {middle, 3U}, {root, 3U}, {root, 0U}})
            addItem(menu, id);
        addItem(deep = addPopup(middle), 4);
    }
    ~Tree() { DestroyMenu(root); }
};

TEST(Menus, EntriesReadBackAsTheyWereAppended) {
    Tree tree;
    EXPECT_EQ(shape(tree.root), "1 [2 3 [4]] 3 0");
    for (const int position : {1, 9, -1}) EXPECT_EQ(GetMenuItemID(tree.root, position), none);
    EXPECT_EQ(GetMenuState(tree.root, 0, MF_BYPOSITION), MF_OWNERDRAW);
    EXPECT_EQ(GetMenuState(tree.root, 1, MF_BYPOSITION), MF_POPUP | 3U << 8);
    EXPECT_EQ(GetMenuState(tree.root, 77, MF_BYCOMMAND), none);
    MENUITEMINFOA info{};
    const auto told = [&](std::size_t size, UINT mask, UINT item, BOOL byPosition) {
        info.cbSize = static_cast<UINT>(size), info.fMask = mask;
        return GetMenuItemInfoA(tree.root, item, byPosition, &info) ? 0 : GetLastError();
    };
    for (const std::size_t size : {sizeof info, offsetof(MENUITEMINFOA, hbmpItem)}) {
        EXPECT_EQ(told(size, MIIM_ID, 1, TRUE) + told(size, MIIM_DATA, 4, FALSE), 0U);
        EXPECT_EQ(info.dwItemData, 1004U);
        EXPECT_EQ(info.wID, handleId(tree.middle)) << "what isn't asked for stays";
    }
    EXPECT_EQ(told(sizeof info, MIIM_ID, 4, TRUE), ERROR_MENU_ITEM_NOT_FOUND);
    EXPECT_EQ(told(12, MIIM_ID, 0, TRUE), ERROR_INVALID_PARAMETER);
}

TEST(Menus, DeletionByCommandTakesTheFirstDepthFirst) {
    tarntest::expectAnswers(
        "delete:3|1 [2 [4]] 3 0;4|1 [2 3 []] 3 0;1|[2 3 [4]] 3 0;0|1 [2 3 [4]] 3;-1|no 1 [2 3 [4]] 3 0",
        [](auto&, auto& cells) {
            const Tree tree;
            const BOOL gone = DeleteMenu(tree.root, static_cast<UINT>(std::stoi(cells[0])), MF_BYCOMMAND);
            return (gone ? "" : "no ") + shape(tree.root);
        });
    Tree tree;
    EXPECT_TRUE(DeleteMenu(tree.root, handleId(tree.deep), MF_BYCOMMAND));
    EXPECT_EQ(GetMenuItemCount(tree.deep), -1) << "a popup's menu goes with its entry";
    EXPECT_TRUE(DeleteMenu(tree.root, 1, MF_BYPOSITION) && !DeleteMenu(tree.root, 3, MF_BYPOSITION));
    EXPECT_TRUE(shape(tree.root) == "1 3 0" && GetMenuItemCount(tree.middle) == -1);
}

TEST(Menus, AMenuThatIsGoneIsNowhere) {
    Tree tree;
    EXPECT_TRUE(DestroyMenu(tree.middle)) << "the parent's entry stays";
    EXPECT_TRUE(GetMenuItemCount(tree.deep) == -1 && shape(tree.root) == "1 [] 3 0");
    EXPECT_TRUE(DeleteMenu(tree.root, 3, MF_BYCOMMAND)) << "the search goes past it";
    EXPECT_FALSE(DestroyMenu(tree.middle) || DestroyMenu(nullptr));
    EXPECT_FALSE(AppendMenuA(tree.middle, MF_OWNERDRAW, 1, nullptr));
    EXPECT_FALSE(AppendMenuA(tree.root, MF_POPUP, reinterpret_cast<ULONG_PTR>(tree.root), nullptr));
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
    for (const HMENU old : chain) EXPECT_TRUE(!DestroyMenu(old) && DestroyMenu(CreatePopupMenu()));
}

#endif

}  // namespace
