#pragma once

// Values for tests: made in one call, destroyed with the object, and compared to the bottom.

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

// Everything that a value holds, as one text: equal texts mean equal values.  The payload of a tag without a
// form of its own shows as one number: a long 4 is "3:4", an empty value "0:0".
inline std::string describe(const MOLTVARIANT* value) {
    if (value == nullptr) return "NULL";
    std::string out = std::to_string(value->tag) + ":";
    const auto& payload = value->payload;
    const auto bytes = [&](const unsigned char* data, std::int32_t size) {
        return out.append(reinterpret_cast<const char*>(data), static_cast<std::size_t>(size));
    };
    const auto add = [&](std::int32_t key, const MOLTVARIANT* part) {
        out += std::to_string(key) + "=" + describe(part) + ",";
    };
    std::uint64_t number = 0;
    switch (value->tag) {
        case tagText: return out + (payload.text == nullptr ? "-" : payload.text);
        case tagString: return out + (payload.string == nullptr ? "-" : payload.string->text);
        case tagBlob: return bytes(payload.blob.data, payload.blob.length);
        case tagBlock: return bytes(payload.block, 16);
        case tagWideText:
            for (const char16_t c : std::u16string(payload.wideText == nullptr ? u"-" : payload.wideText))
                out += std::to_string(c) + ",";
            return out;
        case tagVector:
            for (MOLTVARIANT** e = payload.vector; e != nullptr && *e != nullptr; ++e)
                out += describe(*e) + ",";
            return out + (payload.vector == nullptr ? "-" : ".");
        case tagList:
            for (std::int32_t i = 0; i < payload.list->count; ++i) add(i, payload.list->getAt(i));
            return out + ".";
        case tagMulti:
            for (nodeCell **c = payload.multi->nodes->cells, **end = c + payload.multi->nodes->count;
                 c != end; ++c)
                add((*c)->key.number, (*c)->value);
            return out + ".";
        case tagRecord:
            for (std::int32_t i = 0; i < payload.record->count; ++i)
                add(payload.record->ids->getAt(i), payload.record->values->getAt(i));
            return out + ".";
        default: std::memcpy(&number, payload.plain, sizeof number); return out + std::to_string(number);
    }
}

}  // namespace tarntest
