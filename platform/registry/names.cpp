// Letters, digits and a few signs are written as they are, every other byte as % and two digits, so that no
// name leads out of its folder or is hidden in it.  What gets too long for a file name keeps its first part,
// for people, and ends in `~` and the SHA-256 of the whole name; no short form has that sign.
//
// Tests: tests/platform/registry_test.cpp.

#include "platform/registry/names.h"

#include <algorithm>
#include <charconv>

#include "base/ascii.h"
#include "platform/registry/sha256.h"

namespace tarn::registry {

namespace {

// On disk.
constexpr std::string_view keyPrefix = "k-";
constexpr std::string_view valuePrefix = "v-";
constexpr std::size_t longestPlain = 200;
constexpr std::size_t keptOfLong = 100;
constexpr std::size_t digestLength = 64;

// Of a folded name.
bool isPlain(char character) {
    return isLetter(character) || isDigit(character) || character == '-' || character == '.' ||
           character == '_';
}

std::string entryOf(std::string_view prefix, std::string_view name) {
    constexpr const char* digits = "0123456789abcdef";
    const std::string folded = foldedName(name);
    std::string entry(prefix);
    for (const char character : folded) {
        if (isPlain(character)) {
            entry += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            entry.append({'%', digits[byte >> 4], digits[byte & 15]});
        }
    }
    if (entry.size() - prefix.size() <= longestPlain) return entry;
    return entry.substr(0, prefix.size() + keptOfLong) + '~' + sha256(folded);
}

// Answers whether this is what a long name's entry has behind its prefix.
bool isLongForm(std::string_view body) {
    if (body.size() != keptOfLong + 1 + digestLength || body[keptOfLong] != '~') return false;
    const std::string_view digest = body.substr(keptOfLong + 1);
    return std::all_of(digest.begin(), digest.end(), isHexDigit) && foldedName(body) == body;
}

// Undoes entryOf for a short form; what is no form at all answers some other name than that of an entry.
std::string nameOf(std::string_view body) {
    std::string name;
    while (!body.empty()) {
        unsigned byte = 0;
        const char* const digits = body.data() + 1;
        const bool isEncoded = body.size() > 2 && body[0] == '%' &&
                               std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        name += isEncoded ? static_cast<char>(byte) : body[0];
        body.remove_prefix(isEncoded ? 3 : 1);
    }
    return name;
}

bool isEntry(std::string_view prefix, std::string_view entry) {
    if (!entry.starts_with(prefix)) return false;
    const std::string_view body = entry.substr(prefix.size());
    return isLongForm(body) || entryOf(prefix, nameOf(body)) == entry;
}

}  // namespace

std::string foldedName(std::string_view name) {
    std::string folded(name);
    std::transform(folded.begin(), folded.end(), folded.begin(), toLower);
    return folded;
}

std::string keyEntry(std::string_view name) {
    return entryOf(keyPrefix, name);
}
std::string valueEntry(std::string_view name) {
    return entryOf(valuePrefix, name);
}

bool isKeyEntry(std::string_view entry) {
    return isEntry(keyPrefix, entry) && isKeyName(nameSpelledBy(entry));
}
bool isValueEntry(std::string_view entry) {
    return isEntry(valuePrefix, entry);
}

bool isKeyName(std::string_view name) {
    return !name.empty() && name.size() <= longestKeyName &&
           name.find_first_of(std::string_view("\\\0", 2)) == std::string_view::npos;
}

std::string nameSpelledBy(std::string_view keyEntry) {
    const std::string_view body = keyEntry.substr(keyPrefix.size());
    return isLongForm(body) ? std::string(body) : nameOf(body);
}
std::string entrySpelling(std::string_view name) {
    return isLongForm(name) ? std::string(keyPrefix).append(name) : "";
}

}  // namespace tarn::registry
