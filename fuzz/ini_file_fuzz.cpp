// Ini files: the first three lines of an input are a section, a key and a value, the rest is the file.  Every
// reader answers as the plain one, what is written reads back, and nothing else of the file changes.

#include <charconv>

#include "fuzz/property.h"
#include "platform/profile/encoding.h"
#include "platform/profile/text.h"
#include "platform/win32.h"
#include "tests/plain/profile.h"

namespace {

using namespace tarn::profile;
using tarnfuzz::require;
using tarnfuzz::requireSame;
using tarnplain::trimmed;

// What a program asks for, as the file spells it.
struct Wanted {
    std::string section, key, value;
};

void checkLists(const std::string& text, const Wanted& wanted) {
    tarnplain::ProfileSections all = tarnplain::sectionsOf(text);
    std::string sections, keys;
    for (const auto& [name, entries] : all) sections += name.empty() ? "" : name + '\0';
    requireSame(listSections(text), sections, "sections are listed as by the plain reader");
    const auto place = tarnplain::findNamed(all, wanted.section);
    const auto without = withoutSection(text, wanted.section);
    require(without.has_value() == (place != all.end()), "a section that is there is removed");
    if (!without) return;
    for (const auto& [key, value] : place->second) keys += key.empty() ? "" : key + '\0';
    requireSame(listKeys(text, wanted.section), keys, "keys are listed as by the plain reader");
    all.erase(place);
    require(tarnplain::sectionsOf(*without) == all, "no other section is removed");
}

// A number ends at the first character that is no digit of its radix.
void checkNumbers(const std::string& text) {
    std::uint32_t number = 0;
    for (const char c : text) number = number * 31 + static_cast<unsigned char>(c);
    const std::pair<std::string, int> radices[] = {{"0b", 2}, {"0o", 8}, {"\t+", 10}, {"0x", 16}};
    for (const auto& [prefix, radix] : radices) {
        char digits[40] = {};
        *std::to_chars(digits, digits + 32, number, radix).ptr = radix == 2 ? '2' : radix == 8 ? '8' : 'g';
        require(toInteger(prefix + digits) == number, "a number is read in its radix");
    }
}

void checkValue(const std::string& value) {
    checkNumbers(value);
    const std::string bare(withoutQuotes(value));
    const bool hasQuotes =
        value.size() > 1 && value[0] == value.back() && (value[0] == '"' || value[0] == '\'');
    requireSame(hasQuotes ? value[0] + bare + value[0] : bare, value, "one pair of equal quotes is removed");
}

// The key is written, replaced, put back and removed.
void checkWriting(const std::string& text, const Wanted& wanted) {
    const auto& [section, key, value] = wanted;
    const std::string written = withValue(text, section, key, value).value_or(text);
    require(tarnplain::profileValue(written, section, key) == trimmed(value), "what is written reads back");
    const std::string another = withValue(written, section, key, "another").value_or(written);
    require(tarnplain::profileValue(another, section, key) == "another", "a value is replaced");
    if (trimmed(value) == value)
        requireSame(withValue(another, section, key, value).value_or(another), written, "and put back");
    const std::string removed = withoutKey(written, section, key).value_or("");
    const bool hasSection = withoutSection(text, section).has_value();
    const bool isEnded = text.find_last_of("\r\n") + 1 == text.size();
    const bool hasBareReturn = text.find('\r') != text.find("\r\n");  // it would join a line feed behind it
    if (!hasSection || !isEnded || hasBareReturn || withoutKey(text, section, key)) return;
    requireSame(removed, text, "a new line is all that changes");
    const auto line = std::mismatch(written.begin(), written.end(), text.begin(), text.end()).first;
    std::string front(written.begin(), line);
    front.erase(front.size() - (front.ends_with("\r\n") ? 2 : 1));
    require(!trimmed(front.substr(front.find_last_of("\r\n") + 1)).empty(), "it comes behind no blank one");
}

// The way from the file into a program's buffer.
void checkFile(const std::string& bytes, const Wanted& wanted, const std::string& found, unsigned room) {
    static const tarnfuzz::MemoryFile file;
    file.fill(bytes);
    const tarnfuzz::Text buffer("", room);
    const tarnfuzz::MemoryWatch watch;
    const DWORD size = GetPrivateProfileStringA(wanted.section.c_str(), wanted.key.c_str(), "", buffer.get(),
                                                room + 1, file.path());
    watch.requireWithin(16, bytes.size());
    requireSame({buffer.get(), size}, std::string_view(found).substr(0, room), "a buffer is filled");
    for (const char* const section : {static_cast<const char*>(nullptr), wanted.section.c_str()})
        GetPrivateProfileStringA(section, nullptr, "", buffer.get(), room + 1, file.path());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const Wanted given{input.text(), input.text(), input.text()};
    const unsigned room = input.byte();
    const std::string bytes = input.rest();
    const Document document = decode(bytes);
    const bool isOdd = document.encoding == Encoding::utf16 && bytes.size() % 2 != 0;
    requireSame(encode(document), bytes.substr(0, bytes.size() - (isOdd ? 1 : 0)),
                "encoding undoes decoding");

    const auto spelled = [&](const std::string& name) { return toDocument(name, document.encoding); };
    const Wanted wanted{spelled(given.section), spelled(given.key), spelled(given.value)};
    requireSame(fromDocument(wanted.value, document.encoding), given.value, "and every byte comes back");
    const auto found = findValue(document.text, wanted.section, wanted.key);
    require(found == tarnplain::profileValue(document.text, wanted.section, wanted.key),
            "a key has its value");
    checkLists(document.text, wanted);
    checkValue(found ? std::string(*found) : given.value);
    const std::string all = wanted.section + wanted.key + wanted.value, name = trimmed(wanted.key);
    const bool isKey = !name.empty() && name[0] != '[' && name[0] != ';' && name.find('=') == name.npos;
    if (isKey && all.find('\r') == all.npos) checkWriting(document.text, wanted);
    checkFile(bytes, given, fromDocument(withoutQuotes(found.value_or("")), document.encoding), room);
    return 0;
}
