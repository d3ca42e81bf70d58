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

struct ProfileSection {
    std::string name;
    std::vector<std::pair<std::string, std::string>> keys;  // with their values

    friend bool operator==(const ProfileSection&, const ProfileSection&) = default;
};

// All sections in the file's order.  What comes before the first one is dropped.
inline std::vector<ProfileSection> sectionsOf(const std::string& text) {
    std::vector<ProfileSection> sections;
    for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1) {
        end = std::min(text.find_first_of("\r\n", begin), text.size());
        const std::string line = trimmed(text.substr(begin, end - begin));
        const std::size_t sign = line.find('=');
        if (line[0] == '[') {
            sections.push_back({trimmed(line.substr(1, std::min(line.rfind(']'), line.size()) - 1)), {}});
        } else if (!sections.empty() && line[0] != ';' && sign < line.size()) {
            sections.back().keys.emplace_back(trimmed(line.substr(0, sign)), trimmed(line.substr(sign + 1)));
        }
    }
    return sections;
}

// The section that counts: the first of that name.
inline auto findSection(std::vector<ProfileSection>& sections, const std::string& name) {
    return std::find_if(sections.begin(), sections.end(), [&](const ProfileSection& section) {
        return foldedName(section.name) == foldedName(name);
    });
}

// What findValue has to answer.
inline std::optional<std::string> profileValue(const std::string& text, const std::string& section,
                                               const std::string& key) {
    std::vector<ProfileSection> sections = sectionsOf(text);
    const auto place = findSection(sections, section);
    if (place == sections.end()) return std::nullopt;
    for (const auto& [name, value] : place->keys) {
        if (foldedName(name) == foldedName(key)) return value;
    }
    return std::nullopt;
}

}  // namespace tarnplain
