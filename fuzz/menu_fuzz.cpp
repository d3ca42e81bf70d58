// Menu texts, plain and scrambled: both give the tree that the plain reader tells; its menus are made, its
// items found, and everything goes again.

#include <algorithm>
#include <vector>

#include "fuzz/property.h"
#include "platform/host.h"
#include "present/menu.h"
#include "store/file_tools.h"
#include "tests/plain/menu_shape.h"
#include "tests/plain/scramble.h"

namespace {

using tarnfuzz::require;
using Tokens = std::vector<std::string>;

Tokens tokensOf(const std::string& text) {
    Tokens tokens;
    for (std::size_t begin = 0; (begin = text.find_first_not_of(",\n\t\r", begin)) != std::string::npos;) {
        const std::size_t end = std::min(text.find_first_of(",\n\t\r", begin), text.size());
        std::string token = text.substr(begin, end - begin);
        token.erase(0, std::min(token.find_first_not_of(' '), token.size()));
        tokens.push_back(token.erase(token.find_last_not_of(' ') + 1));
        begin = end;
    }
    return tokens;
}

bool isKeyword(const std::string& token, std::string_view keyword) {
    return keyword.starts_with(token);
}

std::string numberShown(const std::string& token) {
    return std::to_string(
        std::clamp<long long>(std::strtoll(token.c_str(), nullptr, 10), INT32_MIN, INT32_MAX));
}

// The tree of a text, in the words of tarnplain::shape.
std::string plainShape(const Tokens& tokens) {
    std::size_t next = 0;
    while (next < tokens.size() && !isKeyword(tokens[next], "POPUP")) ++next;
    const auto left = [&] { return tokens.size() - next; };
    if (next < tokens.size()) ++next;
    std::string out = left() > 0 ? tokens[next++] : "?";
    out += '#' + (left() > 0 ? numberShown(tokens[next++]) : "-1") + '(';
    int depth = 0;
    while (left() > 0) {
        const std::string& token = tokens[next++];
        if (isKeyword(token, "END")) {
            if (depth-- == 0) return out + ')';
            out += ") ";
        } else if (isKeyword(token, "MENUITEM")) {
            if (left() > 0 && isKeyword(tokens[next], "SEPARATOR")) {
                ++next;
                out += "- ";
            } else if (left() < 4) {
                break;
            } else {
                out +=
                    tokens[next] + '#' + numberShown(tokens[next + 1]) + '=' + numberShown(tokens[next + 2]);
                out += '\'' + tokens[next + 3] + "' ";
                next += 4;
            }
        } else if (isKeyword(token, "POPUP")) {
            if (left() < 2) break;
            out += tokens[next] + '#' + numberShown(tokens[next + 1]) + '(';
            next += 2;
            ++depth;
        }
    }
    for (; depth > 0; --depth) out += ") ";
    return out + ')';
}

// Every item below leads, by its id, to the first node that has it, and every label to a child.
void checkFinds(tarnMenuDef& root) {
    for (std::int32_t i = 0; i < root.childCount; ++i) {
        tarnMenuDef& child = *root.getChild(i);
        const tarnMenuDef* const found = root.find(child.id);
        require(found != nullptr && found->id == child.id, "an item is found by its id");
        if (child.label == nullptr || child.labelLength == 0) continue;
        const std::int32_t index = root.find(child.label);
        require(index >= 0 && index <= i, "a child is found by its label");
    }
}

void checkTree(const tarnfuzz::MemoryFile& file, std::size_t size, int scrambled,
               const std::string& expected) {
    const std::int32_t before = tarn::openHandles();
    {
        const tarnfuzz::MemoryWatch watch;
        tarnMenuParser parser;
        tarnMenuDef* root = parser.getMenuDef(file.path(), scrambled);
        watch.requireWithin(80, size);
        require(root != nullptr && root->kind == 1, "there is a root");
        tarnfuzz::requireSame(tarnplain::shape(*root), expected, "the tree is the told one");
        root->createMenu();
        require(GetMenuItemCount(root->menu) == root->childCount, "every child has an entry");
        checkFinds(*root);
        root = parser.getMenuDef(file.path(), scrambled);
        tarnfuzz::requireSame(tarnplain::shape(*root), expected, "a second reading is equal");
    }
    require(tarn::openHandles() == before, "no menu is left over");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tarnfuzz::MemoryFile file;
    const std::string text = tarnfuzz::Input(data, size).rest();
    const std::string expected = plainShape(tokensOf(text.c_str()));
    file.fill(text);
    checkTree(file, text.size(), 0, expected);

    // Every file is the scrambled form of some text.
    std::string scrambled = text, plainly = text;
    scramble(scrambled.data(), static_cast<std::int32_t>(scrambled.size()));
    tarnplain::scramble(plainly, plainly.size());
    require(scrambled == plainly, "scrambling takes the told steps");
    file.fill(scrambled);
    checkTree(file, text.size(), 1, expected);
    return 0;
}
