#pragma once

// The slow plain form of the readers in platform/profile/text.h, for tests and fuzz targets.

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace tarnplain {

// Without blanks at the ends.
inline std::string trimmed(std::string part) {
    constexpr const char* blanks = " \t\n\v\f\r";
    part.erase(0, std::min(part.find_first_not_of(blanks), part.size()));
    return part.erase(part.find_last_not_of(blanks) + 1);
}

// As names are compared.
inline std::string foldedName(std::string name) {
    for (char& c : name) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    return trimmed(name);
}

using ProfileKeys = std::vector<std::pair<std::string, std::string>>;  // with their values
using ProfileSections = std::vector<std::pair<std::string, ProfileKeys>>;

// All sections in the file's order.  What comes before the first one is dropped.
inline ProfileSections sectionsOf(const std::string& text) {
    ProfileSections sections;
    for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1) {
        end = std::min(text.find_first_of("\r\n", begin), text.size());
        const std::string line = trimmed(text.substr(begin, end - begin));
        const std::size_t sign = line.find('=');
        if (line[0] == '[') {
            sections.emplace_back(trimmed(line.substr(1, line.rfind(']') - 1)), ProfileKeys());
        } else if (!sections.empty() && line[0] != ';' && sign < line.size()) {
            sections.back().second.emplace_back(trimmed(line.substr(0, sign)),
                                                trimmed(line.substr(sign + 1)));
        }
    }
    return sections;
}

// The section or the key that counts: the first of that name.
inline auto findNamed(const auto& all, const std::string& name) {
    const auto isMeant = [&](const auto& each) { return foldedName(each.first) == foldedName(name); };
    return std::find_if(all.begin(), all.end(), isMeant);
}

// What findValue has to answer.
inline std::optional<std::string> profileValue(const std::string& text, const std::string& section,
                                               const std::string& key) {
    ProfileSections sections = sectionsOf(text);
    sections.emplace_back(section, ProfileKeys());  // that is found where no other is
    const ProfileKeys& keys = findNamed(sections, section)->second;
    const auto place = findNamed(keys, key);
    return place == keys.end() ? std::nullopt : std::optional(place->second);
}

}  // namespace tarnplain
