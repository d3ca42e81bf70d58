// The nodes of a menu tree: their children, their menus, their end.
//
// A tree may be as deep as its text is long, so nothing here recurses.  The walks down keep a list of what is
// still to be visited; the sweep of a tear-down, which must not allocate, keeps its way back in the tree
// itself: the slot of the child that it is in holds the node above.
// Tests: tests/present/menu_test.cpp.

#include <algorithm>
#include <bit>
#include <utility>
#include <vector>

#include "platform/win32.h"
#include "present/menu.h"

namespace {

constexpr std::int32_t growth = 16;

// The slots of the array behind `childCapacity`: a power of two, so that adding n children costs O(n).
std::size_t allocatedSlots(std::int32_t capacity) {
    return std::bit_ceil(static_cast<std::size_t>(capacity));
}

}  // namespace

tarnMenuDef::~tarnMenuDef() {
    releaseBelow();
    delete[] children;
    if (menu != nullptr) {
        DestroyMenu(menu);
    } else if (parent != nullptr && parent->menu != nullptr) {
        DeleteMenu(parent->menu, static_cast<UINT>(id), MF_BYCOMMAND);
    }
}

// Deletes all nodes below, children first.  `labelLength`, which nobody reads any more, counts the children
// visited.  A node that is deleted with its parent leaves its entry in the parent's menu, which is destroyed
// too: removing the entries one by one would search the menu once for each.
void tarnMenuDef::releaseBelow() {
    tarnMenuDef* above = nullptr;
    tarnMenuDef* node = this;
    labelLength = 0;
    while (true) {
        if (node->labelLength < node->childCount) {
            tarnMenuDef* const child = std::exchange(node->children[node->labelLength++], above);
            above = std::exchange(node, child);
            node->labelLength = 0;
            continue;
        }
        if (node == this) return;
        tarnMenuDef* const done = std::exchange(node, above);
        above = node->children[node->labelLength - 1];
        done->childCount = 0;
        done->parent = nullptr;  // one that came from another tree may outlive its parent there
        delete done;
    }
}

void tarnMenuDef::addChild(tarnMenuDef* child) {
    if (child == nullptr) return;
    if (childCount >= childCapacity) {
        const std::size_t wanted = allocatedSlots(childCapacity + growth);
        if (children == nullptr || wanted > allocatedSlots(childCapacity)) {
            auto** const grown = new tarnMenuDef*[wanted];
            std::copy_n(children, childCount, grown);
            delete[] children;
            children = grown;
        }
        childCapacity += growth;
    }
    children[childCount++] = child;
}

void tarnMenuDef::replaceChild(tarnMenuDef* oldChild, tarnMenuDef* newChild) {
    if (oldChild == nullptr || newChild == nullptr) return;
    auto** const end = children + childCount;
    auto** const place = std::find(children, end, oldChild);
    if (place != end) *place = newChild;
}

tarnMenuDef* tarnMenuDef::getChild(std::int32_t index) const {
    return index < 0 || index >= childCount ? nullptr : children[index];
}

tarnMenuDef* tarnMenuDef::find(std::int32_t wantedId) {
    std::vector<tarnMenuDef*> pending{this};  // the next one in the text is last
    while (!pending.empty()) {
        tarnMenuDef* const node = pending.back();
        if (node->id == wantedId) return node;
        pending.pop_back();
        const auto firstChild = std::make_reverse_iterator(node->children);
        pending.insert(pending.end(), std::make_reverse_iterator(node->children + node->childCount),
                       firstChild);
    }
    return nullptr;
}

std::int32_t tarnMenuDef::find(const char* text) const {
    if (text == nullptr) return -1;
    for (std::int32_t i = 0; i < childCount; ++i) {
        const tarnMenuDef& child = *children[i];
        if (child.label == nullptr || child.labelLength <= 0) continue;
        if (_strnicmp(text, child.label, static_cast<std::size_t>(child.labelLength)) == 0) return i;
    }
    return -1;
}

void tarnMenuDef::createMenu() {
    renewMenu();
    std::vector<tarnMenuDef*> unfilled{this};
    while (!unfilled.empty()) {
        const tarnMenuDef* const node = unfilled.back();
        unfilled.pop_back();
        for (std::int32_t i = 0; i < node->childCount; ++i) {
            tarnMenuDef* const child = node->children[i];
            if (child->kind == tarn::menuPopup) {
                child->renewMenu();
                unfilled.push_back(child);
            }
            node->appendEntry(*child);
        }
    }
}

void tarnMenuDef::renewMenu() {
    if (menu != nullptr) DestroyMenu(menu);
    menu = CreatePopupMenu();
}

void tarnMenuDef::appendEntry(tarnMenuDef& child) const {
    const char* const data = reinterpret_cast<const char*>(&child);
    switch (child.kind) {
        case tarn::menuPopup:
            AppendMenuA(menu, MF_POPUP | MF_OWNERDRAW, reinterpret_cast<ULONG_PTR>(child.menu), data);
            break;
        case tarn::menuItem: AppendMenuA(menu, MF_OWNERDRAW, static_cast<UINT>(child.id), data); break;
        case tarn::menuSeparator: AppendMenuA(menu, MF_OWNERDRAW, 0, data); break;
        default: break;
    }
}
