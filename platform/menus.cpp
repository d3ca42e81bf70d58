// Menus in memory: each is a list of entries, and an entry may name another menu, which is destroyed with
// this one.  Menus nest to any depth and may even form a ring, so nothing here recurses: a search keeps its
// way back in the menus that it walks through, and a tear-down chains the menus that it has still to release.
// Neither allocates, for both run inside destructors.
// Tests: tests/platform/menus_test.cpp.

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <vector>

#include "platform/handle_table.h"
#include "platform/win32.h"

namespace {

constexpr UINT menuBreaks = 0x60;  // MF_MENUBARBREAK and MF_MENUBREAK
constexpr UINT typeBits = MF_BITMAP | MF_OWNERDRAW | MF_SEPARATOR | menuBreaks;
constexpr UINT stateBits = MF_GRAYED | MF_DISABLED | MF_CHECKED;
constexpr auto notFound = static_cast<UINT>(-1);

struct Entry {
    UINT type;
    UINT state;
    UINT id;  // of a popup: its menu's handle
    HMENU subMenu;
    ULONG_PTR data;
    std::unique_ptr<char[]> text;
};

struct Menu {
    std::vector<Entry> entries;
    std::unique_ptr<Menu> nextToRelease;
    // The search that walks through this menu, or the last one that did.
    std::uint64_t search = 0;
    Menu* above = nullptr;
    std::size_t position = 0;
};

constinit tarn::HandleTable<Menu> menus{tarn::HandleFamily::menu};
constinit std::atomic<std::uint64_t> searches{0};

Menu* findMenu(HMENU handle) {
    Menu* menu = menus.find(handle);
    if (menu == nullptr) SetLastError(ERROR_INVALID_MENU_HANDLE);
    return menu;
}

// The menu and position of an entry; no menu where there is none.
struct Place {
    Menu* menu = nullptr;
    std::size_t position = 0;

    [[nodiscard]] Entry& entry() const { return menu->entries[position]; }
};

// Depth first, a sub-menu before the entries behind it.  A popup is found by its handle when no other entry
// fits.
Place findByCommand(Menu& root, UINT id) {
    const std::uint64_t search = ++searches;
    const auto enter = [search](Menu& menu, Menu* above) {
        menu.search = search;
        menu.above = above;
        menu.position = 0;
        return &menu;
    };
    Place popup;
    Menu* menu = enter(root, nullptr);
    while (menu != nullptr) {
        if (menu->position == menu->entries.size()) {
            menu = menu->above;
            continue;
        }
        const Place place{menu, menu->position++};
        const Entry& entry = place.entry();
        if (entry.subMenu == nullptr) {
            if (entry.id == id) return place;
            continue;
        }
        if (entry.id == id && popup.menu == nullptr) popup = place;
        Menu* below = menus.find(entry.subMenu);
        if (below != nullptr && below->search != search) menu = enter(*below, menu);
    }
    return popup;
}

Place findEntry(HMENU handle, UINT item, bool byPosition) {
    Menu* menu = findMenu(handle);
    if (menu == nullptr) return {};
    Place place;
    if (!byPosition) {
        place = findByCommand(*menu, item);
    } else if (item < menu->entries.size()) {
        place = {menu, item};
    }
    if (place.menu == nullptr) SetLastError(ERROR_MENU_ITEM_NOT_FOUND);
    return place;
}

void releaseTree(std::unique_ptr<Menu> pending) {
    while (pending != nullptr) {
        const std::unique_ptr<Menu> menu = std::move(pending);
        pending = std::move(menu->nextToRelease);
        for (const Entry& entry : menu->entries) {
            std::unique_ptr<Menu> below = menus.close(entry.subMenu);
            if (below == nullptr) continue;
            below->nextToRelease = std::move(pending);
            pending = std::move(below);
        }
    }
}

std::unique_ptr<char[]> copyText(const char* text) {
    if (text == nullptr) return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    auto copy = std::make_unique_for_overwrite<char[]>(size);
    std::memcpy(copy.get(), text, size);
    return copy;
}

// The caller's buffer of `cch` bytes takes what fits; without one `cch` becomes the length.
void giveText(const Entry& entry, MENUITEMINFOA& info) {
    const auto length = static_cast<UINT>(lstrlenA(entry.text.get()));
    if (info.dwTypeData == nullptr || info.cch == 0) {
        info.cch = length;
        return;
    }
    info.cch = std::min(length, info.cch - 1);
    if (info.cch > 0) std::memcpy(info.dwTypeData, entry.text.get(), info.cch);
    info.dwTypeData[info.cch] = '\0';
}

void giveInfo(const Entry& entry, MENUITEMINFOA& info) {
    const UINT mask = info.fMask;
    if ((mask & (MIIM_TYPE | MIIM_FTYPE)) != 0) info.fType = entry.type;
    if ((mask & MIIM_STATE) != 0) info.fState = entry.state;
    if ((mask & MIIM_ID) != 0) info.wID = entry.id;
    if ((mask & MIIM_DATA) != 0) info.dwItemData = entry.data;
    info.hSubMenu = (mask & MIIM_SUBMENU) != 0 ? entry.subMenu : nullptr;
    const bool hasText = (entry.type & (MF_OWNERDRAW | MF_SEPARATOR | MF_BITMAP)) == 0;
    if ((mask & MIIM_STRING) != 0 || ((mask & MIIM_TYPE) != 0 && hasText)) {
        giveText(entry, info);
    } else {
        info.dwTypeData = nullptr;
        info.cch = 0;
    }
}

}  // namespace

HMENU CreatePopupMenu() {
    const auto handle = static_cast<HMENU>(menus.open(std::make_unique<Menu>()));
    if (handle == nullptr) SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return handle;
}

BOOL AppendMenuA(HMENU handle, UINT flags, ULONG_PTR id, const char* content) {
    Menu* menu = findMenu(handle);
    if (menu == nullptr) return FALSE;
    Entry entry{flags & typeBits, flags & stateBits, static_cast<UINT>(id), nullptr, 0, nullptr};
    if ((flags & MF_POPUP) != 0) {
        const auto subMenu = reinterpret_cast<HMENU>(id);
        if (subMenu == handle) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return FALSE;
        }
        if (menus.find(subMenu) != nullptr) entry.subMenu = subMenu;
    }
    if ((flags & MF_OWNERDRAW) != 0) {
        entry.data = reinterpret_cast<ULONG_PTR>(content);
    } else if ((flags & (MF_SEPARATOR | MF_BITMAP)) == 0) {
        entry.text = copyText(content);
    }
    menu->entries.push_back(std::move(entry));
    return TRUE;
}

BOOL DeleteMenu(HMENU handle, UINT item, UINT flags) {
    const Place place = findEntry(handle, item, (flags & MF_BYPOSITION) != 0);
    if (place.menu == nullptr) return FALSE;
    const HMENU subMenu = place.entry().subMenu;
    place.menu->entries.erase(place.menu->entries.begin() + static_cast<std::ptrdiff_t>(place.position));
    releaseTree(menus.close(subMenu));
    return TRUE;
}

BOOL DestroyMenu(HMENU handle) {
    std::unique_ptr<Menu> menu = menus.close(handle);
    if (menu == nullptr) {
        SetLastError(ERROR_INVALID_MENU_HANDLE);
        return FALSE;
    }
    releaseTree(std::move(menu));
    return TRUE;
}

int GetMenuItemCount(HMENU handle) {
    const Menu* menu = findMenu(handle);
    return menu == nullptr ? -1 : static_cast<int>(menu->entries.size());
}

UINT GetMenuItemID(HMENU handle, int position) {
    const Place place = findEntry(handle, static_cast<UINT>(position), true);
    return place.menu == nullptr || place.entry().subMenu != nullptr ? notFound : place.entry().id;
}

HMENU GetSubMenu(HMENU handle, int position) {
    const Place place = findEntry(handle, static_cast<UINT>(position), true);
    return place.menu == nullptr ? nullptr : place.entry().subMenu;
}

UINT GetMenuState(HMENU handle, UINT item, UINT flags) {
    const Place place = findEntry(handle, item, (flags & MF_BYPOSITION) != 0);
    if (place.menu == nullptr) return notFound;
    const Entry& entry = place.entry();
    const UINT bits = entry.type | entry.state;
    if (entry.subMenu == nullptr) return bits;
    const Menu* below = findMenu(entry.subMenu);
    if (below == nullptr) return notFound;
    return MF_POPUP | (bits & 0xFF) | static_cast<UINT>(below->entries.size()) << 8;
}

BOOL GetMenuItemInfoA(HMENU handle, UINT item, BOOL byPosition, MENUITEMINFOA* info) {
    constexpr UINT olderSize = offsetof(MENUITEMINFOA, hbmpItem);
    const bool whole =
        info != nullptr && (info->cbSize == sizeof(MENUITEMINFOA) || info->cbSize == olderSize);
    const bool typeTwice =
        whole && (info->fMask & MIIM_TYPE) != 0 && (info->fMask & (MIIM_STRING | MIIM_FTYPE)) != 0;
    if (!whole || typeTwice) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const Place place = findEntry(handle, item, byPosition != FALSE);
    if (place.menu == nullptr) return FALSE;
    giveInfo(place.entry(), *info);
    return TRUE;
}
