// Menu texts, plain and scrambled: the tree builds, its menus are made and everything goes again.

#include "fuzz/property.h"
#include "platform/host.h"
#include "present/menu.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string input = tarnfuzz::file(".mnu");
    tarnfuzz::fill(input, data + 1, size - 1);
    const std::int32_t before = tarn::openHandles();
    {
        tarnMenuParser parser;
        tarnMenuDef* const root = parser.getMenuDef(input.c_str(), data[0] & 1);
        tarnfuzz::require(root != nullptr && root->kind == 1, "there is a root");
        root->createMenu();
        tarnfuzz::require(GetMenuItemCount(root->menu) == root->childCount, "every child has an entry");
    }
    tarnfuzz::require(tarn::openHandles() == before, "no menu is left over");
    return 0;
}
