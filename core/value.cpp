// What the views of values can't do in a few instructions: the number of a text, and equality to the last
// byte, which takes two values apart side by side.  NULL counts as an empty value everywhere.
// Tests: tests/core/value_test.cpp.

#include "core/value.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>

namespace tarn {

namespace {

bool isSame(const MOLTVARIANT* a, const MOLTVARIANT* b);

template <class Number>
bool isSameBytes(const Number& a, const Number& b) {
    using Bytes = std::array<std::byte, sizeof(Number)>;
    return std::bit_cast<Bytes>(a) == std::bit_cast<Bytes>(b);
}

// Whether two pointers lead to the same content, or both nowhere.
template <class Content, class Compare>
bool isSameBehind(const Content* a, const Content* b, const Compare& compare) {
    if (a == nullptr || b == nullptr) return a == b;
    return compare(*a, *b);
}

template <class Character>
bool isSameText(const Character* a, const Character* b) {
    return isSameBehind(a, b, [&](const Character&, const Character&) {
        return std::basic_string_view<Character>(a) == std::basic_string_view<Character>(b);
    });
}

bool isSameBlob(const ValueView& a, const ValueView& b) {
    const auto left = *a.get<std::span<const std::byte>>();
    const auto right = *b.get<std::span<const std::byte>>();
    return std::equal(left.begin(), left.end(), right.begin(), right.end());
}

bool isSameVector(MOLTVARIANT* const* a, MOLTVARIANT* const* b) {
    if (a == nullptr || b == nullptr) return a == b;
    for (; *a != nullptr && *b != nullptr; ++a, ++b) {
        if (!isSame(*a, *b)) return false;
    }
    return *a == *b;
}

bool isSameList(const tarnTList<MOLTVARIANT*>& a, const tarnTList<MOLTVARIANT*>& b) {
    if (a.count != b.count) return false;
    for (std::int32_t i = 0; i < a.count; ++i) {
        if (!isSame(a.getAt(i), b.getAt(i))) return false;
    }
    return true;
}

bool isSameColumn(nodeList& a, nodeList& b) {
    if (a.count != b.count) return false;
    a.sort();
    b.sort();
    return std::equal(a.cells, a.cells + a.count, b.cells, [](const nodeCell* left, const nodeCell* right) {
        return left->key.number == right->key.number && isSame(left->value, right->value);
    });
}

bool isSameRecord(const tarnFieldList& a, const tarnFieldList& b) {
    if (a.count != b.count) return false;
    for (std::int32_t i = 0; i < a.count; ++i) {
        if (a.ids->getAt(i) != b.ids->getAt(i)) return false;
        if (!isSame(a.values->getAt(i), b.values->getAt(i))) return false;
    }
    return true;
}

bool isSame(const MOLTVARIANT* a, const MOLTVARIANT* b) {
    const ValueView left(a);
    const ValueView right(b);
    if (left.tag() != right.tag()) return false;
    if (left.isEmpty()) return true;
    const auto& x = a->payload;
    const auto& y = b->payload;
    switch (a->tag) {
        case tagByte:
        case tagChar: return x.byteValue == y.byteValue;
        case tagShort:
        case tagUShort: return x.ushortValue == y.ushortValue;
        case tagLong:
        case tagWord:
        case tagNumber: return x.longValue == y.longValue;
        case tagFloat: return isSameBytes(x.floatValue, y.floatValue);
        case tagText: return isSameText(x.text, y.text);
        case tagWideText: return isSameText(x.wideText, y.wideText);
        case tagVector: return isSameVector(x.vector, y.vector);
        case tagBlob: return isSameBlob(left, right);
        case tagBlock:
            return isSameBehind(x.block, y.block, [](const unsigned char& p, const unsigned char& q) {
                return std::memcmp(&p, &q, 16) == 0;
            });
        case tagString:
            return isSameBehind(x.string, y.string, [](const tarnString& p, const tarnString& q) {
                return isSameText(p.text, q.text);
            });
        case tagList: return isSameBehind(x.list, y.list, isSameList);
        case tagMulti:
            return isSameBehind(x.multi, y.multi, [](const multiColumn& p, const multiColumn& q) {
                if (p.nodes == nullptr || q.nodes == nullptr) return p.nodes == q.nodes;
                return isSameColumn(*p.nodes, *q.nodes);
            });
        case tagRecord: return isSameBehind(x.record, y.record, isSameRecord);
        default: return isSameBytes(x.plain, y.plain);
    }
}

}  // namespace

std::optional<double> ValueView::numberOfText() const {
    const auto text = get<std::string_view>();
    if (!text || text->find_first_of("0123456789") == std::string_view::npos) return std::nullopt;
    double number = 0;
    if (convertToDouble(text->data(), number) == 0) return std::nullopt;
    return number;
}

bool operator==(ValueView a, ValueView b) {
    return isSame(a.raw(), b.raw());
}

}  // namespace tarn
