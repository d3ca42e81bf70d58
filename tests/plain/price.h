#pragma once

// The slow plain form of convertToDouble, for tests and fuzz targets: the text is cleaned first, then parted.

#include <algorithm>
#include <cstdlib>
#include <string>

namespace tarnplain {

// Answers 1 and the number of a price, or 0.
inline int price(const std::string& text, double& number) {
    std::string kept;
    char sign = '+';
    for (const char c : text) {
        if (c == '+' || c == '-') sign = c;
        if (c != '+' && c != '-' && c != ',') kept += c;
    }
    constexpr std::size_t none = std::string::npos;
    if (kept.find_first_not_of("0123456789 ./") != none) return 0;
    if (std::ranges::count(kept, '.') > 1 || std::ranges::count(kept, '/') > 1) return 0;
    kept.erase(0, std::min(kept.find_first_not_of(' '), kept.size()));
    kept = sign + kept.erase(kept.find_last_not_of(' ') + 1);
    const auto read = [&](std::size_t start) {
        char* end = nullptr;
        const double value = std::strtod(&kept[start], &end);
        return end == &kept[start] ? 0.0 : value;  // some libraries keep the sign of a missing number
    };
    const std::size_t slash = kept.find('/');
    const std::size_t blank = kept.find(' ');
    if (slash == none && blank == none) number = read(0);
    if (slash == none) return blank == none ? 1 : 0;
    if (blank == none && kept.find('.') != none) return 0;
    kept[slash] = '\0';
    if (blank != none) kept[blank] = '\0';
    const double below = read(slash + 1);
    const double above = read(blank == none ? 0 : blank + 1);
    if (above == 0 || below == 0) return 0;
    const double fraction = above / below;
    const double whole = blank == none ? 0 : read(0);
    number = blank == none ? fraction : whole < 0 ? whole - fraction : whole + fraction;  // -0 stays
    return 1;
}

}  // namespace tarnplain
