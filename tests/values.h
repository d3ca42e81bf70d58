#pragma once

// Values for tests: made from a short notation, destroyed with the object, and compared in it.
//
// A value is its tag, a colon and its content: 3:42 a long, 10:abc a text, 10:NULL a text that isn't there,
// 13:[10:a,13:[],3:1] a vector of three, 20:[none] a list whose one element is missing.  A column and a
// record have each element's row or id in front: 21:[0=3:7,4=3:9].

#include <charconv>

#include "core/byte_order.h"
#include "core/string.h"
#include "core/variant.h"
#include "tests/support.h"

namespace tarntest {

// A value that destroys its content at the end, for values of any tag that a test builds by hand.
struct Owned : MOLTVARIANT {
    Owned() = default;
    explicit Owned(const MOLTVARIANT* source) : MOLTVARIANT(source) {}
    Owned(Owned&& other) noexcept : MOLTVARIANT(other) { other.initContent(nullptr); }
    ~Owned() { destroyContent(); }

    // Gives the value away, as a value made by new.
    MOLTVARIANT* release() {
        auto* const value = new MOLTVARIANT(*static_cast<const MOLTVARIANT*>(this));
        initContent(nullptr);
        return value;
    }
};

inline Owned number(std::int32_t tag, double value) {
    Owned made;
    made.tag = tag;
    const auto whole = static_cast<std::int32_t>(value);
    switch (tag) {
        case tagFloat: made.payload.floatValue = static_cast<float>(value); break;
        case tagDouble: made.payload.doubleValue = value; break;
        case tagShort:
        case tagUShort: made.payload.ushortValue = static_cast<std::uint16_t>(whole); break;
        case tagByte:
        case tagChar: made.payload.byteValue = static_cast<std::uint8_t>(whole); break;
        case tagLong:
        case tagWord:
        case tagNumber: made.payload.longValue = whole; break;
        default: tarn::storeWord(made.payload.plain, static_cast<std::uint32_t>(whole)); break;
    }
    return made;
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
    Owned made = number(std::atoi(notation.c_str()), numberOf(content.c_str()));
    auto& payload = made.payload;
    if (made.tag >= tagText && made.tag != tagNumber)  // until there is something to own
        std::memset(static_cast<void*>(&payload), 0, sizeof payload);
    std::vector<std::pair<std::int32_t, MOLTVARIANT*>> elements;  // with the row or id in front
    if (made.tag == tagVector || made.tag >= tagList) {
        for (const std::string& each : elementsOf(content)) {
            const std::string element = each.substr(each.find('=') < each.find(':') ? each.find('=') + 1 : 0);
            elements.emplace_back(std::atoi(each.c_str()),
                                  element == "none" ? nullptr : valueOf(element).release());
        }
    }
    if (content == "NULL") return made;
    if (made.tag == tagText) {
        payload.text = newstr(content.c_str());
    } else if (made.tag == tagString) {
        payload.string = new tarnString(content.c_str());
    } else if (made.tag == tagBlock) {
        std::copy_n(content.begin(), 16, payload.block = new unsigned char[16]);
    } else if (made.tag == tagBlob) {
        payload.blob = {new unsigned char[content.size()], static_cast<std::int32_t>(content.size())};
        std::copy(content.begin(), content.end(), payload.blob.data);
    } else if (made.tag == tagWideText) {
        payload.wideText = new char16_t[content.size() + 1]();
        std::copy(content.begin(), content.end(), payload.wideText);
    } else if (made.tag == tagVector) {
        MOLTVARIANT** next = payload.vector = new MOLTVARIANT*[elements.size() + 1]();
        for (const auto& [key, element] : elements) *next++ = element;
    } else if (made.tag == tagList) {
        payload.list = new tarnTList<MOLTVARIANT*>;
        for (const auto& [key, element] : elements) payload.list->add(element);
    } else if (made.tag == tagMulti) {
        payload.multi = new multiColumn{new nodeList};
        for (const auto& [key, element] : elements) payload.multi->nodes->add(element, key);
    } else if (made.tag == tagRecord) {
        payload.record = new tarnFieldList;
        for (const auto& [key, element] : elements) payload.record->add(key, element);
    }
    return made;
}

// Everything that a value holds, in the notation: equal texts mean equal values.
inline std::string describe(const MOLTVARIANT* value) {
    if (value == nullptr) return "none";
    const std::string tag = std::to_string(value->tag) + ":";
    const auto& payload = value->payload;
    if (value->tag >= tagText && value->tag != tagNumber && payload.text == nullptr) return tag + "NULL";
    std::string list;
    const auto exactly = [](double real) {
        char digits[40] = {};
        return std::string(digits, std::to_chars(digits, digits + sizeof digits, real).ptr);
    };
    const auto add = [&](const std::string& element) { list += (list.empty() ? "" : ",") + element; };
    const auto bytes = [&](const unsigned char* data, std::int32_t size) {
        return tag + std::string(reinterpret_cast<const char*>(data), static_cast<std::size_t>(size));
    };
    switch (value->tag) {
        case tagShort: return tag + std::to_string(payload.shortValue);
        case tagUShort: return tag + std::to_string(payload.ushortValue);
        case tagByte: return tag + std::to_string(payload.byteValue);
        case tagChar: return tag + std::to_string(payload.charValue);
        case tagFloat: return tag + exactly(static_cast<double>(payload.floatValue));
        case tagDouble: return tag + exactly(payload.doubleValue);
        case tagLong:
        case tagWord:
        case tagNumber: return tag + std::to_string(payload.longValue);
        case tagText: return tag + payload.text;
        case tagString: return tag + payload.string->text;
        case tagBlob: return bytes(payload.blob.data, payload.blob.length);
        case tagBlock: return bytes(payload.block, 16);
        case tagWideText:
            for (const char16_t c : std::u16string(payload.wideText))
                list += c < 128 ? std::string(1, static_cast<char>(c)) : "<" + std::to_string(c) + ">";
            return tag + list;
        case tagVector:
            for (MOLTVARIANT** e = payload.vector; *e != nullptr; ++e) add(describe(*e));
            break;
        case tagList:
            for (std::int32_t i = 0; i < payload.list->count; ++i) add(describe(payload.list->getAt(i)));
            break;
        case tagMulti:
            for (std::int32_t i = 0; i < payload.multi->nodes->count; ++i) {
                const nodeCell& cell = *payload.multi->nodes->cells[i];
                add(std::to_string(cell.key.number) + "=" + describe(cell.value));
            }
            break;
        case tagRecord:
            for (std::int32_t i = 0; i < payload.record->count; ++i)
                add(std::to_string(payload.record->ids->getAt(i)) + "=" +
                    describe(payload.record->values->getAt(i)));
            break;
        default:
            return tag + std::to_string(static_cast<std::int64_t>(tarn::loadLittleEndian(payload.plain, 8)));
    }
    return tag + "[" + list + "]";
}

}  // namespace tarntest
