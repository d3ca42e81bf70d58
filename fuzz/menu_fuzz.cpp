// Menu texts, plain and scrambled: both give the tree of the plain reader; its menus are made, its items are
// found, and everything is released again.

#include "fuzz/property.h"
#include "platform/host.h"
#include "present/menu.h"
#include "store/file_tools.h"
#include "tests/plain/menu_text.h"
#include "tests/plain/scramble.h"

namespace {

using tarnfuzz::require;

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

void requireTree(const tarnMenuDef& root, const tarnplain::MenuNode& expected) {
    tarnfuzz::requireSame(readable(tarnplain::treeOf(root)), readable(expected),
                          "the tree is that of the text");
}

void checkTree(const std::string& bytes, int scrambled, const tarnplain::MenuNode& expected) {
    static const tarnfuzz::MemoryFile file;
    file.fill(bytes);
    const std::int32_t before = tarn::openHandles();
    {
        const tarnfuzz::MemoryWatch watch;
        tarnMenuParser parser;
        tarnMenuDef* root = parser.getMenuDef(file.path(), scrambled);
        watch.requireWithin(80, bytes.size());
        requireTree(*root, expected);
        root->createMenu();
        require(GetMenuItemCount(root->menu) == root->childCount, "every child has an entry");
        checkFinds(*root);
        root = parser.getMenuDef(file.path(), scrambled);
        requireTree(*root, expected);  // a second time
    }
    require(tarn::openHandles() == before, "no menu is left over");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = tarnfuzz::Input(data, size).rest();
    const tarnplain::MenuNode expected = tarnplain::MenuReader(text.c_str()).root();
    checkTree(text, 0, expected);
    std::string scrambled = text;  // and every file is the scrambled form of some text
    tarnplain::scramble(scrambled, scrambled.size());
    checkTree(scrambled, 1, expected);
    return 0;
}
