#pragma once

// Values for tests, made from the notation in which tests/plain/values.h tells them.

#include "tests/plain/values.h"
#include "tests/support.h"

// What a failed expectation shows of a value.
inline void PrintTo(const MOLTVARIANT& value, std::ostream* stream) {
    *stream << tarntest::readable(&value);
}

namespace tarntest {

inline void PrintTo(const Owned& value, std::ostream* stream) {
    *stream << readable(&value);
}

// The elements of a notation in brackets.
inline std::vector<std::string> elementsOf(const std::string& content) {
    std::vector<std::string> elements;
    std::string element;
    int depth = 0;
    for (const char c : content) {
        depth += c == '[' ? 1 : c == ']' ? -1 : 0;
        const bool ends = (c == ',' && depth == 1) || (c == ']' && depth == 0);
        if (ends && !element.empty()) elements.push_back(std::exchange(element, ""));
        if (!ends && (c != '[' || depth > 1)) element += c;
    }
    return elements;
}

// The value of a notation.
inline Owned valueOf(const std::string& notation) {
    const std::size_t colon = notation.find(':');
    if (colon == std::string::npos) return {};
    const std::string content = notation.substr(colon + 1);
    const std::int32_t tag = std::atoi(notation.c_str());
    const bool isContainer = tag == tagVector || tag >= tagList;
    if (tag == tagText || tag == tagString) return text(content == "NULL" ? nullptr : content.c_str(), tag);
    if (tag == tagBlob) return blob(content);
    if (tag == tagWideText && content != "NULL")
        return wideText(std::u16string(content.begin(), content.end()));
    if (!isContainer && tag != tagBlock && tag != tagWideText) return number(tag, numberOf(content.c_str()));

    Owned made;
    auto& payload = made.payload;
    made.tag = tag;
    if (content == "NULL") return made;
    std::vector<std::pair<std::int32_t, MOLTVARIANT*>> elements;  // with the row or id in front
    for (const std::string& each : elementsOf(isContainer ? content : "")) {
        const std::string element = each.substr(each.find('=') < each.find(':') ? each.find('=') + 1 : 0);
        elements.emplace_back(std::atoi(each.c_str()),
                              element == "none" ? nullptr : valueOf(element).release());
    }
    if (tag == tagBlock) {
        std::copy_n(content.begin(), 16, payload.block = new unsigned char[16]);
    } else if (tag == tagVector) {
        MOLTVARIANT** next = payload.vector = new MOLTVARIANT*[elements.size() + 1]();
        for (const auto& [key, element] : elements) *next++ = element;
    } else if (tag == tagList) {
        payload.list = new tarnTList<MOLTVARIANT*>;
        for (const auto& [key, element] : elements) payload.list->add(element);
    } else if (tag == tagMulti) {
        payload.multi = new multiColumn{new nodeList};
        for (const auto& [key, element] : elements) payload.multi->nodes->add(element, key);
    } else {
        payload.record = new tarnFieldList;
        for (const auto& [key, element] : elements) payload.record->add(key, element);
    }
    return made;
}

}  // namespace tarntest
