// Ini files: the first three lines of an input are a section, a key and a value, the rest is the file.  Every
// reader answers as the plain one, what is written reads back, and nothing else of the file changes.

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>
#include <vector>

#include "fuzz/property.h"
#include "platform/profile/encoding.h"
#include "platform/profile/text.h"
#include "platform/win32.h"
#include "tests/plain/profile.h"

namespace {

using namespace tarn::profile;
using tarnfuzz::require;
using tarnfuzz::requireSame;

// What a program asks for, as the file spells it.
struct Wanted {
    std::string section, key, value;
};

bool isSame(const std::string& name, const std::string& other) {
    return tarnplain::foldedName(name) == tarnplain::foldedName(other);
}

// Whether a line that is written so reads as just that key.
bool isPlainKey(const std::string& key) {
    const std::string name = tarnplain::trimmed(key);
    return !name.empty() && name[0] != '[' && name[0] != ';' && name.find_first_of("=\r\n") == name.npos;
}

void checkEncoding(const std::string& bytes) {
    const Document document = decode(bytes);
    const bool isOdd = document.encoding == Encoding::utf16 && bytes.size() % 2 != 0;
    requireSame(encode(document), bytes.substr(0, bytes.size() - (isOdd ? 1 : 0)),
                "encoding undoes decoding");
    if (document.encoding != Encoding::utf16) return;
    std::string all;
    for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
    requireSame(fromDocument(toDocument(all, Encoding::utf16), Encoding::utf16), all, "bytes come back");
}

void checkLists(const std::string& text, const Wanted& wanted) {
    std::vector<tarnplain::ProfileSection> all = tarnplain::sectionsOf(text);
    std::string sections, keys;
    for (const auto& section : all) {
        if (!section.name.empty()) sections += section.name + '\0';
    }
    const auto place = tarnplain::findSection(all, wanted.section);
    for (std::size_t i = 0; place != all.end() && i < place->keys.size(); ++i) {
        if (!place->keys[i].first.empty()) keys += place->keys[i].first + '\0';
    }
    requireSame(listSections(text), sections, "sections are listed plainly");
    requireSame(listKeys(text, wanted.section), keys, "keys are listed plainly");
}

std::uint32_t plainInteger(std::string text) {
    std::size_t at = 0;
    while (at < text.size() && text[at] >= 0 && text[at] <= ' ') ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (negative || text[at] == '+')) ++at;
    int radix = 10;
    for (const auto& [prefix, base] : {std::pair("0x", 16), std::pair("0o", 8), std::pair("0b", 2)}) {
        if (text.compare(at, 2, prefix) != 0) continue;
        radix = base;
        at += 2;
        break;
    }
    std::uint32_t number = 0;
    for (; at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])) != 0; ++at) {
        const auto digit = std::strtol(text.substr(at, 1).c_str(), nullptr, 16);
        if (digit >= radix) break;
        number = number * static_cast<std::uint32_t>(radix) + static_cast<std::uint32_t>(digit);
    }
    return negative ? 0 - number : number;
}

void checkValue(const std::string& value) {
    require(toInteger(value) == plainInteger(value), "a number is read plainly");
    const std::string_view bare = withoutQuotes(value);
    const bool isQuoted = bare.size() != value.size();
    require(!isQuoted || value == value[0] + std::string(bare) + value[0], "one pair of equal quotes goes");

    std::vector<unsigned char> bytes(value.size() / 2), back(value.size());
    if (!bytes.empty()) bytes.pop_back();
    if (fromHexadecimal(value, bytes)) {
        std::string upper = value;
        for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        requireSame(toHexadecimal(bytes), upper, "a block is written as it was read");
    }
    const std::vector<unsigned char> block(value.begin(), value.end());
    require(fromHexadecimal(toHexadecimal(block), back) && back == block, "a block reads back");
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end) {
        end = std::min(text.find_first_of("\r\n", begin), text.size() - 1) + 1;
        if (text.compare(end - 1, 2, "\r\n") == 0) ++end;
        lines.push_back(text.substr(begin, end - begin));
    }
    return lines;
}

// At most one line becomes another, which a last line without an end does too, and at most two are new.
bool isSmallChange(const std::string& before, const std::string& after) {
    const std::vector<std::string> old = linesOf(before), now = linesOf(after);
    std::size_t front = 0, back = 0;
    const std::size_t shorter = std::min(old.size(), now.size());
    while (front < shorter && old[front] == now[front]) ++front;
    while (back < shorter - front && old[old.size() - 1 - back] == now[now.size() - 1 - back]) ++back;
    return front + back + 1 >= old.size() && old.size() <= now.size() && now.size() <= old.size() + 2;
}

// A line that is new in its section stands just behind the last one that isn't blank.
void checkPlace(const std::string& before, const std::string& after, const Wanted& wanted) {
    const std::vector<std::string> now = linesOf(after);
    auto sections = tarnplain::sectionsOf(before);
    const bool isNew = now.size() == linesOf(before).size() + 1;
    if (!isNew || tarnplain::findSection(sections, wanted.section) == sections.end()) return;
    const std::string line = tarnplain::trimmed(wanted.key) + '=' + wanted.value;
    auto head = std::find_if(now.begin(), now.end(), [&](const std::string& each) {
        auto named = tarnplain::sectionsOf(each);
        return tarnplain::findSection(named, wanted.section) != named.end();
    });
    auto place = std::find_if(head, now.end(), [&](const std::string& each) {
        return each.substr(0, each.find_first_of("\r\n")) == line;
    });
    require(place != now.end(), "a new line stands in its section");
    require(!tarnplain::trimmed(*std::prev(place)).empty(), "just behind a line that isn't blank");
    while (++place != now.end() && tarnplain::trimmed(*place).empty()) continue;
    require(place == now.end() || tarnplain::trimmed(*place)[0] == '[', "and behind all of them");
}

void checkWriting(const std::string& text, const Wanted& wanted) {
    const auto& [section, key, value] = wanted;
    const std::string written = withValue(text, section, key, value).value_or(text);
    require(tarnplain::profileValue(written, section, key) == tarnplain::trimmed(value),
            "a value that is written reads back");
    require(isSmallChange(text, written), "and no other line changes");
    checkPlace(text, written, wanted);
    const std::string another = withValue(written, section, key, "another").value_or(written);
    require(tarnplain::profileValue(another, section, key) == "another", "a value is replaced");
    if (tarnplain::trimmed(value) == value)
        requireSame(withValue(another, section, key, value).value_or(another), written,
                    "and put back with every other byte as it was");
    const auto removed = withoutKey(written, section, key);
    require(removed && removed->size() < written.size(), "a key that is there is removed");
    auto expected = tarnplain::sectionsOf(written);
    const auto place = tarnplain::findSection(expected, section);
    std::erase_if(place->keys, [&, name = key, isFirst = true](const auto& each) mutable {
        return isSame(each.first, name) && std::exchange(isFirst, false);
    });
    require(tarnplain::sectionsOf(*removed) == expected, "and no other");
}

void checkSectionGoes(const std::string& text, const std::string& section) {
    auto expected = tarnplain::sectionsOf(text);
    const auto place = tarnplain::findSection(expected, section);
    const auto without = withoutSection(text, section);
    require(without.has_value() == (place != expected.end()), "a section that is there is removed");
    if (!without) return;
    expected.erase(place);
    require(tarnplain::sectionsOf(*without) == expected, "and no other");
}

// The way from the file into a program's buffer.
void checkFile(const std::string& bytes, const Wanted& wanted, const std::string& found, unsigned room) {
    static const tarnfuzz::MemoryFile file;
    file.fill(bytes);
    const tarnfuzz::MemoryWatch watch;
    const std::unique_ptr<char[]> buffer(new char[room]);
    const char* const section = wanted.section.c_str();
    const DWORD count =
        GetPrivateProfileStringA(section, wanted.key.c_str(), "", buffer.get(), room, file.path());
    watch.requireWithin(16, bytes.size());
    if (room == 0) return;
    requireSame({buffer.get(), count}, std::string_view(found).substr(0, room - 1), "a buffer has its part");
    require(buffer[count] == '\0', "and a NUL behind it");
    for (const char* name : {static_cast<const char*>(nullptr), section}) {
        const DWORD names = GetPrivateProfileStringA(name, nullptr, "", buffer.get(), room, file.path());
        require(names < room && buffer[names] == '\0', "a list keeps within its buffer");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const Wanted given{input.text(), input.text(), input.text()};
    const unsigned room = input.byte();
    const std::string bytes = input.rest();
    checkEncoding(bytes);

    const Document document = decode(bytes);
    const auto spelled = [&](const std::string& name) { return toDocument(name, document.encoding); };
    const Wanted wanted{spelled(given.section), spelled(given.key), spelled(given.value)};
    const auto found = findValue(document.text, wanted.section, wanted.key);
    const auto expected = tarnplain::profileValue(document.text, wanted.section, wanted.key);
    require(found.has_value() == expected.has_value(), "a key is found where the plain reader finds it");
    if (found) requireSame(*found, *expected, "with the same value");
    checkLists(document.text, wanted);
    checkValue(found ? *expected : given.value);
    checkSectionGoes(document.text, wanted.section);
    const auto isOneLine = [](const std::string& part) { return part.find('\r') == part.npos; };
    if (isPlainKey(wanted.key) && isOneLine(wanted.section) && isOneLine(wanted.value))
        checkWriting(document.text, wanted);
    const std::string text(withoutQuotes(fromDocument(found.value_or(""), document.encoding)));
    checkFile(bytes, given, text, room);
    return 0;
}
