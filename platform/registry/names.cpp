// Letters, digits and a few signs are written as they are, every other byte as % and two digits, so that no name
// leads out of its folder or is hidden in it.  What gets too long for a file name keeps its first part, for people,
// and ends in `~` and the SHA-256 of the whole name; no short form has that sign.
//
// Tests: tests/platform/registry_test.cpp.

#include "platform/registry/names.h"

#include <algorithm>

#include "base/ascii.h"
#include "platform/registry/sha256.h"

namespace tarn::registry {

namespace {

// On disk.
constexpr std::string_view keyPrefix = "k-";
constexpr std::string_view valuePrefix = "v-";
constexpr std::size_t longestPlain = 200;
constexpr std::size_t keptOfLong = 100;

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
    return entry.starts_with(keyPrefix);
}
bool isValueEntry(std::string_view entry) {
    return entry.starts_with(valuePrefix);
}

}  // namespace tarn::registry
