// Menu texts: a menu of the input's choice has its tree, and the tree of any text, written as a text again,
// reads back as the same one, plain and scrambled.  Its menus are made, its items are found, and everything
// is released again.

#include "fuzz/property.h"
#include "platform/host.h"
#include "present/menu.h"
#include "store/file_tools.h"
#include "tests/plain/menu_text.h"

namespace {

using tarnfuzz::require;
using tarnfuzz::requireSame;

// The id of an item leads to the first node that has it, and its label to a child.
void checkFinds(tarnMenuDef& root) {
    for (std::int32_t i = 0; i < root.childCount; ++i) {
        const tarnMenuDef& child = *root.getChild(i);
        const tarnMenuDef* const found = root.find(child.id);
        require(found != nullptr && found->id == child.id, "an item is found by its id");
        if (child.label == nullptr || child.labelLength == 0) continue;
        const std::int32_t index = root.find(child.label);
        require(index >= 0 && index <= i, "a child is found by its label");
    }
}

// A menu with an entry, or an END, for each byte.
std::string menuOf(tarnfuzz::Input input) {
    std::string text = "POPUP,root,0";
    int depth = 1;
    for (int entries = 0; entries < 100 && !input.isEmpty(); ++entries) {
        const unsigned byte = input.byte();
        const std::string number = ',' + std::to_string(byte);
        if (byte % 4 == 0) text += ",MENUITEM,SEPARATOR";
        if (byte % 4 == 1) text += ",MENUITEM,END of an item" + number + number + "0,POPUP";
        if (byte % 4 == 2) text += ",POPUP,MENU" + number;
        if (byte % 4 == 3 && depth > 1) text += ",END";
        depth += byte % 4 == 2 ? 1 : byte % 4 == 3 && depth > 1 ? -1 : 0;
    }
    for (; depth > 0; --depth) text += ",END";
    return text;
}

// Answers the tree as a text.
std::string checkTree(const std::string& bytes, int scrambled) {
    static const tarnfuzz::MemoryFile file;
    file.fill(bytes);
    const std::int32_t before = tarn::openHandles();
    std::string text;
    {
        const tarnfuzz::MemoryWatch watch;
        tarnMenuParser parser;
        tarnMenuDef* const root = parser.getMenuDef(file.path(), scrambled);
        watch.requireWithin(80, bytes.size());
        text = tarnplain::menuTextOf(*root);
        root->createMenu();
        require(GetMenuItemCount(root->menu) == root->childCount, "every child has an entry");
        checkFinds(*root);
    }
    require(tarn::openHandles() == before, "no menu is left over");
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string menu = menuOf({data, size});
    std::string lines = menu;
    std::replace(lines.begin(), lines.end(), ',', ",\n\t\r"[size % 4]);
    requireSame(checkTree(lines, 0), menu, "a menu has its tree");

    const std::string text = tarnfuzz::Input(data, size).rest();
    const std::string tree = checkTree(text, 0);
    requireSame(checkTree(tree, 0), tree, "a tree that is written reads back");
    std::string scrambled = text;
    scramble(scrambled.data(), static_cast<std::int32_t>(scrambled.size()));
    requireSame(checkTree(scrambled, 1), tree, "a scrambled text has the same tree");
    return 0;
}
