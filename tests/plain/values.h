#pragma once

// Values for tests and fuzz targets: made in one call, destroyed with the object, compared to the bottom, and shown
// as a text.

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/number_text.h"
#include "core/string.h"
#include "core/variant.h"

namespace tarntest {

// A value that destroys its content at the end.  Copies are deep, so that tables may hold such values.
struct Owned : MOLTVARIANT {
    Owned() = default;
    explicit Owned(const MOLTVARIANT* source) : MOLTVARIANT(source) {}
    Owned(const Owned& other) : MOLTVARIANT(&other) {}
    Owned(Owned&& other) noexcept : MOLTVARIANT(other) { other.initContent(nullptr); }
    Owned& operator=(Owned other) noexcept {
        std::swap<MOLTVARIANT>(*this, other);
        return *this;
    }
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
    const std::int32_t whole = tarn::cutToLong(value);
    switch (tag) {
        case tagFloat: made.payload.floatValue = static_cast<float>(value); break;
        case tagDouble: made.payload.doubleValue = value; break;
        case tagShort:
        case tagUShort: made.payload.ushortValue = static_cast<std::uint16_t>(whole); break;
        case tagByte:
        case tagChar: made.payload.byteValue = static_cast<std::uint8_t>(whole); break;
        default: made.payload.longValue = whole; break;
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

// Sixteen bytes; those after the given ones are 0.
inline Owned block(std::string_view bytes) {
    Owned made;
    made.payload.block = new unsigned char[16]();
    std::copy(bytes.begin(), bytes.end(), made.payload.block);
    made.tag = tagBlock;
    return made;
}

// A pointer form that holds no pointer, by its tag alone.
inline Owned nothing(std::int32_t tag) {
    Owned made;
    made.tag = tag;
    return made;
}

// A value of eight bytes that are no number.
inline Owned eightBytes(std::int32_t tag, std::string_view bytes) {
    Owned made = nothing(tag);
    std::copy(bytes.begin(), bytes.end(), made.payload.plain);
    return made;
}

// A container's element: a value, or none where the container has a NULL.
using Element = std::optional<Owned>;
inline const Element none;

inline MOLTVARIANT* releaseCopy(const Element& element) {
    return element.has_value() ? Owned(*element).release() : nullptr;
}

inline Owned vectorOf(const std::vector<Owned>& elements) {
    Owned made = nothing(tagVector);
    made.payload.vector = new MOLTVARIANT*[elements.size() + 1]();
    for (std::size_t i = 0; i < elements.size(); ++i) made.payload.vector[i] = Owned(elements[i]).release();
    return made;
}

inline Owned listOf(const std::vector<Element>& elements) {
    Owned made = nothing(tagList);
    made.payload.list = new tarnTList<MOLTVARIANT*>;
    for (const Element& element : elements) made.payload.list->add(releaseCopy(element));
    return made;
}

// Cells by their rows, and fields by their ids, in the order in which they are added.
using Keyed = std::vector<std::pair<std::int32_t, Element>>;

inline Owned columnOf(const Keyed& cells) {
    Owned made = nothing(tagMulti);
    made.payload.multi = new multiColumn{new nodeList};
    for (const auto& [row, cell] : cells) made.payload.multi->nodes->add(releaseCopy(cell), row);
    return made;
}

inline Owned recordOf(const Keyed& fields) {
    Owned made = nothing(tagRecord);
    made.payload.record = new tarnFieldList;
    for (const auto& [id, field] : fields) made.payload.record->add(id, releaseCopy(field));
    return made;
}

// ----------------------------------------------------------------------------- what a value holds, as a text

inline std::string escaped(std::string_view bytes) {
    std::string shown = "\"";
    for (const char c : bytes) {
        if (c >= ' ' && c <= '~' && c != '"' && c != '\\') {
            shown += c;
        } else {
            shown += "\\" + std::to_string(static_cast<unsigned char>(c)) + ";";
        }
    }
    return shown + '"';
}

// The shortest text that reads back as the same number.
inline std::string shortest(double number) {
    char digits[40] = {};
    return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}

inline std::string readable(const MOLTVARIANT* value);

inline std::string readableElements(const MOLTVARIANT& value) {
    const auto& payload = value.payload;
    std::string elements;
    const auto add = [&](const std::string& key, const MOLTVARIANT* element) {
        elements += (elements.empty() ? "" : ", ") + key + readable(element);
    };
    const auto keyed = [](std::int32_t key) { return std::to_string(key) + ": "; };
    if (value.tag == tagVector) {
        for (MOLTVARIANT** entry = payload.vector; *entry != nullptr; ++entry) add("", *entry);
    } else if (value.tag == tagList) {
        for (std::int32_t i = 0; i < payload.list->count; ++i) add("", payload.list->getAt(i));
    } else if (value.tag == tagMulti && payload.multi->nodes != nullptr) {
        const nodeList& nodes = *payload.multi->nodes;
        for (std::int32_t i = 0; i < nodes.count; ++i)
            add(keyed(nodes.cells[i]->key.number), nodes.cells[i]->value);
    } else if (value.tag == tagRecord) {
        const tarnFieldList& fields = *payload.record;
        for (std::int32_t i = 0; i < fields.count; ++i)
            add(keyed(fields.ids->getAt(i)), fields.values->getAt(i));
    }
    return "[" + elements + "]";
}

inline std::string readableUnits(const char16_t* unit) {
    std::string units;
    for (; *unit != 0; ++unit) {
        units += *unit < 128 ? std::string(1, static_cast<char>(*unit)) : "<" + std::to_string(*unit) + ">";
    }
    return escaped(units);
}

inline std::string readableContent(const MOLTVARIANT& value) {
    const auto& payload = value.payload;
    const auto bytes = [](const unsigned char* data, std::size_t count) {
        return escaped({reinterpret_cast<const char*>(data), count});
    };
    switch (value.tag) {
        case tagByte: return std::to_string(payload.byteValue);
        case tagShort: return std::to_string(payload.shortValue);
        case tagLong:
        case tagWord:
        case tagNumber: return std::to_string(payload.longValue);
        case tagFloat: return shortest(static_cast<double>(payload.floatValue));
        case tagDouble: return shortest(payload.doubleValue);
        case tagChar: return std::to_string(payload.charValue);
        case tagUShort: return std::to_string(payload.ushortValue);
        case tagText: return escaped(payload.text);
        case tagWideText: return readableUnits(payload.wideText);
        case tagBlob: return bytes(payload.blob.data, static_cast<std::size_t>(payload.blob.length));
        case tagBlock: return bytes(payload.block, 16);
        case tagString: return escaped(payload.string->text);
        case tagVector:
        case tagList:
        case tagMulti:
        case tagRecord: return readableElements(value);
        default: return bytes(payload.plain, sizeof payload.plain);
    }
}

// Everything that a value holds, for people: `double 12.5`, `text "abc"`, `column [0: long 7, 4: empty]`.
// Two values have the same text just if they hold the same.
inline std::string readable(const MOLTVARIANT* value) {
    constexpr const char* names[] = {
        "empty", "byte",   "short", "long",      "float", "double", "character", "unsigned short",
        "word",  "",       "text",  "wide text", "",      "vector", "number",    "blob",
        "block", "string", "",      "",          "list",  "column", "record"};
    if (value == nullptr) return "none";
    if (value->tag == tagEmpty) return "empty";
    const bool isNamed = value->tag > 0 && value->tag <= tagRecord && *names[value->tag] != '\0';
    const std::string name = isNamed ? names[value->tag] : "tag " + std::to_string(value->tag);
    const bool isNumber = value->tag < tagText || value->tag == tagNumber;
    const bool isPointer = isNamed && !isNumber && value->tag != tagBlob;
    return name + ' ' + (isPointer && value->payload.text == nullptr ? "NULL" : readableContent(*value));
}

inline bool operator==(const Owned& a, const MOLTVARIANT& b) {
    return readable(&a) == readable(&b);
}

}  // namespace tarntest
