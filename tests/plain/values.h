#pragma once

// Values for tests and fuzz targets: made in one call, destroyed with the object, and told to the bottom.
//
// A value is told as its tag, a colon and its content: 3:42 a long, 10:abc a text, 10:NULL a text that isn't
// there, 13:[10:a,13:[],3:1] a vector of three, 20:[none] a list whose one element is missing.  A column and a
// record have each element's row or id in front: 21:[0=3:7,4=3:9].

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <utility>

#include "base/byte_order.h"
#include "core/string.h"
#include "core/variant.h"

namespace tarntest {

// A value that destroys its content at the end, for values of any tag that a test builds by hand.
struct Owned : MOLTVARIANT {
    Owned() = default;
    explicit Owned(const MOLTVARIANT* source) : MOLTVARIANT(source) {}
    Owned(Owned&& other) noexcept : MOLTVARIANT(other) { other.initContent(nullptr); }
    Owned& operator=(Owned&& other) noexcept { return std::swap<MOLTVARIANT>(*this, other), *this; }
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

inline Owned text(const char* content, std::int32_t tag = tagText) {
    Owned made;
    if (tag == tagString) {
        made.payload.string = content == nullptr ? nullptr : new tarnString(content);
    } else {
        made.payload.text = content == nullptr ? nullptr : newstr(content);
    }
    made.tag = tag;
    return made;
}

inline Owned wideText(std::u16string_view content) {
    Owned made;
    made.payload.wideText = new char16_t[content.size() + 1]();
    content.copy(made.payload.wideText, content.size());
    made.tag = tagWideText;
    return made;
}

inline Owned blob(std::string_view bytes) {
    Owned made;
    made.payload.blob = {new unsigned char[bytes.size()], static_cast<std::int32_t>(bytes.size())};
    std::copy(bytes.begin(), bytes.end(), made.payload.blob.data);
    made.tag = tagBlob;
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
