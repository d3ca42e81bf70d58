#pragma once

// Values for tests: made in one call, destroyed with the object, and compared to the bottom.

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/string.h"
#include "core/variant.h"

namespace tarntest {

// A value that destroys its content at the end, for values of any tag that a test builds by hand.
struct Owned : MOLTVARIANT {
    Owned() = default;
    explicit Owned(const MOLTVARIANT* source) : MOLTVARIANT(source) {}
    Owned(Owned&& other) noexcept : MOLTVARIANT(other) { other.initContent(nullptr); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    Owned& operator=(Owned&& other) noexcept { return std::swap<MOLTVARIANT>(*this, other), *this; }
    ~Owned() { destroyContent(); }

    // Gives the value away, as a value made by new.
    MOLTVARIANT* release() {
        auto* const value = new MOLTVARIANT;
        value->assignContent(this);
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
        case tagShort: made.payload.shortValue = static_cast<std::int16_t>(whole); break;
        case tagUShort: made.payload.ushortValue = static_cast<std::uint16_t>(whole); break;
        case tagByte: made.payload.byteValue = static_cast<std::uint8_t>(whole); break;
        case tagChar: made.payload.charValue = static_cast<signed char>(whole); break;
        default: made.payload.longValue = whole; break;
    }
    return made;
}

inline Owned text(const char* value, std::int32_t tag = tagText) {
    Owned made;
    made.tag = tag;
    if (tag == tagString) {
        made.payload.string = value == nullptr ? nullptr : new tarnString(value);
    } else {
        made.payload.text = value == nullptr ? nullptr : newstr(value);
    }
    return made;
}

inline Owned wideText(std::u16string_view value) {
    Owned made;
    made.payload.wideText = new char16_t[value.size() + 1]();
    value.copy(made.payload.wideText, value.size());
    made.tag = tagWideText;
    return made;
}

inline Owned blob(std::string_view bytes) {
    Owned made;
    made.payload.blob.data = new unsigned char[bytes.size()];
    std::memcpy(made.payload.blob.data, bytes.data(), bytes.size());
    made.payload.blob.length = static_cast<std::int32_t>(bytes.size());
    made.tag = tagBlob;
    return made;
}

template <class... Elements>
Owned vectorOf(Elements&&... elements) {
    Owned made;
    made.payload.vector = new MOLTVARIANT* [sizeof...(elements) + 1] { elements.release()..., nullptr };
    made.tag = tagVector;
    return made;
}

template <class... Elements>
Owned listOf(Elements&&... elements) {
    Owned made;
    made.payload.list = new tarnTList<MOLTVARIANT*>;
    made.tag = tagList;
    (made.payload.list->add(elements.release()), ...);
    return made;
}

// Everything that a value holds, as one text: equal texts mean equal values.
inline std::string describe(const MOLTVARIANT* value) {
    if (value == nullptr) return "NULL";
    std::string out = std::to_string(value->tag) + ":";
    const auto& payload = value->payload;
    switch (value->tag) {
        case tagText: return out + (payload.text == nullptr ? "-" : payload.text);
        case tagString: return out + (payload.string == nullptr ? "-" : payload.string->text);
        case tagWideText:
            for (const char16_t* c = payload.wideText; c != nullptr && *c != 0; ++c)
                out += std::to_string(*c) + ",";
            return out + (payload.wideText == nullptr ? "-" : "");
        case tagVector:
            for (MOLTVARIANT** e = payload.vector; e != nullptr && *e != nullptr; ++e)
                out += describe(*e) + ";";
            return out + (payload.vector == nullptr ? "-" : ".");
        case tagBlob:
            return out + std::string(reinterpret_cast<char*>(payload.blob.data),
                                     static_cast<std::size_t>(payload.blob.length));
        case tagBlock: return out + std::string(reinterpret_cast<char*>(payload.block), 16);
        case tagList:
            for (std::int32_t i = 0; i < payload.list->count; ++i)
                out += describe(payload.list->getAt(i)) + ";";
            return out + ".";
        case tagMulti: {
            const nodeList& nodes = *payload.multi->nodes;
            for (std::int32_t i = 0; i < nodes.count; ++i) {
                out +=
                    std::to_string(nodes.cells[i]->key.number) + "=" + describe(nodes.cells[i]->value) + ";";
            }
            return out + ".";
        }
        case tagRecord:
            for (std::int32_t i = 0; i < payload.record->count; ++i) {
                out += std::to_string(payload.record->ids->getAt(i)) + "=" +
                       describe(payload.record->values->getAt(i)) + ";";
            }
            return out + ".";
        default: return out + std::string(reinterpret_cast<const char*>(payload.plain), 8);
    }
}

}  // namespace tarntest
