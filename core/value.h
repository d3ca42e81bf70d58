#pragma once

/// @file
/// Values that release themselves: tarn::Value owns one, tarn::ValueView looks at one, tarn::Text owns a text
/// that the library made, and tarn::adopt takes over what a function of the library leaves to its caller.
///
///     tarn::Value price(12.5);                      // tag 5
///     price.view().get<double>();                   // 12.5
///     price.view().get<std::string_view>();         // nothing: it is no text
///     tarn::Text shown = tarn::adopt(convertToString(price.raw()));   // "12.5", released with `shown`
///
/// A ValueView is a pointer.  It releases nothing, becomes a Value only by a deep copy, and is valid as long
/// as the value that it looks at stays and isn't changed; the same holds for the texts and bytes that it
/// answers.  What would look at a temporary Value or Text doesn't compile.
///
/// Nothing here throws but std::bad_alloc.
///
/// Threads: no shared state; a value and the views of it belong to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "core/export.h"
#include "core/string.h"
#include "core/variant.h"

namespace tarn {

class Value;

/// The number types that a value can be asked for: not bool, and none of the character types.  `signed char`
/// and `unsigned char` are numbers of 8 bits.
template <class T>
concept ReadableNumber = std::is_arithmetic_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char> &&
                         !std::is_same_v<T, wchar_t> && !std::is_same_v<T, char8_t> &&
                         !std::is_same_v<T, char16_t> && !std::is_same_v<T, char32_t>;

/// What ValueView::get can be asked for.
template <class T>
concept Readable = ReadableNumber<T> || std::is_same_v<T, std::string_view> ||
    std::is_same_v<T, std::u16string_view> || std::is_same_v<T, std::span<const std::byte>>;

/// Looks at a value of somebody else's, or at nothing.
class ValueView {
  public:
    /// Looks at nothing.
    constexpr ValueView() noexcept = default;
    ValueView(const MOLTVARIANT& value) noexcept : value_(&value) {}
    /// Looks at nothing if the pointer is NULL.
    explicit ValueView(const MOLTVARIANT* value) noexcept : value_(value) {}
    ValueView(const Value& value) noexcept;
    ValueView(const MOLTVARIANT&&) = delete;
    ValueView(const Value&&) = delete;

    /// Answers whether it looks at a value, which may be an empty one.
    [[nodiscard]] bool exists() const noexcept { return value_ != nullptr; }
    /// Answers the value's tag; of nothing tagEmpty.
    [[nodiscard]] tarnTag tag() const noexcept {
        return value_ == nullptr ? tagEmpty : static_cast<tarnTag>(value_->tag);
    }
    /// Answers whether there is no value, or an empty one.
    [[nodiscard]] bool isEmpty() const noexcept { return tag() == tagEmpty; }
    /// True if a value is there that isn't empty.
    explicit operator bool() const noexcept { return !isEmpty(); }

    /// Answers the value if it is one of just this type, and otherwise nothing.
    /// - A number type: numbers of tags 1 to 8 and 14 that T holds without loss.  An integer has to be in T's
    ///   range, and keep all its digits in a floating T; a double is a float only if every bit fits.  Floating
    ///   numbers are never answered as integers.  A NaN is answered as one.
    /// - `std::string_view`: texts of tags 10 and 17, `std::u16string_view`: those of tag 11.  Nothing for NULL.
    /// - `std::span<const std::byte>`: the bytes of a blob
    template <Readable T>
    [[nodiscard]] std::optional<T> get() const;

    /// Answers any number as a double, and a text with a digit in it as convertToDouble reads it ("12 1/2").
    /// Nothing for an empty text, a dash, and whatever is neither a number nor a text.
    [[nodiscard]] std::optional<double> number() const;

    /// Answers the text that convertToString makes, and an empty one for nothing, empty values, wide texts,
    /// blobs, blocks and containers, for which it would show a part of their payload.  Tags 1 and 7 are
    /// decimal on every machine and whatever else their payload holds.
    [[nodiscard]] std::string text() const;

    /// Answers the value itself, NULL if there is none.
    [[nodiscard]] const MOLTVARIANT* raw() const noexcept { return value_; }

    /// Answers whether both have the same tag and the same content to the last byte: the case of letters
    /// counts, a NaN equals itself, 0 and -0 differ, and a NULL text isn't an empty one.  Containers are
    /// compared element by element, cells in the order of their rows (which sorts the columns).  Nothing,
    /// an empty value and a missing element are equal.  isVarEqual is the looser comparison.
    TARN_EXPORT friend bool operator==(ValueView a, ValueView b);

  private:
    template <ReadableNumber T>
    std::optional<T> getNumber() const;
    [[nodiscard]] TARN_EXPORT std::optional<double> numberOfText() const;

    const MOLTVARIANT* value_ = nullptr;
};

/// Owns a value and releases its content.  It can be moved, and copied only by clone().
class Value {
  public:
    /// An empty value.
    Value() noexcept = default;
    /// A number of tag 5.
    Value(double number) noexcept { set(tagDouble).doubleValue = number; }
    /// A number of tag 4.
    Value(float number) noexcept { set(tagFloat).floatValue = number; }
    /// A number of tag 2.
    Value(std::int16_t number) noexcept { set(tagShort).shortValue = number; }
    /// A number of tag 3.
    Value(std::int32_t number) noexcept { set(tagLong).longValue = number; }
    /// A copy of the text, tag 10.  A NUL ends it, as it ends every text of the library.
    Value(std::string_view text);
    /// A copy of the text, tag 10; NULL makes an empty text.
    Value(const char* text) : Value(std::string_view(text == nullptr ? "" : text)) {}
    Value(const std::string& text) : Value(std::string_view(text)) {}
    /// A blob, tag 15.  More than 2^31 - 1 bytes fail as an allocation does.
    Value(std::span<const std::byte> bytes);
    /// Nothing is converted on the way in: bool, char and integers of other widths don't compile.
    template <class T>
    requires std::is_arithmetic_v<T> Value(T)
    = delete;

    /// Answers a number of a tag that no constructor makes: tagByte, tagChar, tagUShort, tagWord, tagNumber.
    /// - Bad input: any other tag, and a number outside the tag's range, answer nothing.
    [[nodiscard]] static std::optional<Value> ofTag(tarnTag tag, std::int32_t number) noexcept;

    /// A deep copy; of nothing an empty value.
    explicit Value(ValueView source) : value_(source.raw()) {}
    Value(Value&& other) noexcept { swap(other); }
    Value& operator=(Value&& other) noexcept {
        Value(std::move(other)).swap(*this);
        return *this;
    }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { value_.destroyContent(); }

    [[nodiscard]] ValueView view() const& noexcept { return value_; }
    void view() const&& = delete;
    /// Answers a deep copy.
    [[nodiscard]] Value clone() const { return Value(ValueView(value_)); }

    /// As ValueView compares.
    friend bool operator==(const Value& a, const Value& b) { return ValueView(a) == ValueView(b); }

    /// Answers the value for functions that take a MOLTVARIANT.
    /// - Owner: this object, also of what such a function puts into it.
    [[nodiscard]] MOLTVARIANT* raw() noexcept { return &value_; }
    [[nodiscard]] const MOLTVARIANT* raw() const noexcept { return &value_; }
    /// Answers the content and is empty from then on.
    /// - Owner: the caller, destroyContent.
    [[nodiscard]] MOLTVARIANT release() noexcept { return std::exchange(value_, MOLTVARIANT()); }
    void swap(Value& other) noexcept { std::swap(value_, other.value_); }

  private:
    friend Value adopt(MOLTVARIANT&& content) noexcept;

    auto set(std::int32_t tag) noexcept -> decltype(MOLTVARIANT::payload)& {
        value_.tag = tag;
        return value_.payload;
    }

    MOLTVARIANT value_;
};

/// Owns a text that the library made, as newstr, convertToString and getSettlementDate do.
class Text {
  public:
    /// No text.
    Text() noexcept = default;
    /// Takes over a text from new char[]; NULL is no text.
    explicit Text(char* fromLibrary) noexcept : text_(fromLibrary) {}
    /// Answers the text, an empty one if there is none.
    /// - Owner: this object.
    [[nodiscard]] const char* c_str() const noexcept { return text_ ? text_.get() : ""; }
    [[nodiscard]] bool exists() const noexcept { return text_ != nullptr; }
    operator std::string_view() const& noexcept { return c_str(); }
    operator std::string_view() const&& = delete;
    [[nodiscard]] std::string str() const { return c_str(); }
    /// Answers the text, NULL if there is none.
    /// - Owner: the caller, delete[].
    [[nodiscard]] char* release() noexcept { return text_.release(); }

  private:
    std::unique_ptr<char[]> text_;
};

/// Takes over a text that belongs to the caller of a library function.
[[nodiscard]] inline Text adopt(char* text) noexcept {
    return Text(text);
}
/// A constant text isn't the caller's.
Text adopt(const char*) = delete;

/// Takes over the content of a value, which is empty from then on.
[[nodiscard]] inline Value adopt(MOLTVARIANT&& content) noexcept {
    Value value;
    std::swap(value.value_, content);
    return value;
}

// ------------------------------------------------------------------------------------------------- making

inline Value::Value(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    value_.payload.text = new char[text.size() + 1];
    value_.payload.text[text.copy(value_.payload.text, text.size())] = '\0';
    value_.tag = tagText;
}

inline Value::Value(std::span<const std::byte> bytes) {
    const bool canBeCounted = std::in_range<std::int32_t>(bytes.size());
    const auto room = canBeCounted ? bytes.size() : std::size_t{PTRDIFF_MAX};  // which no memory has
    value_.payload.blob.data = new unsigned char[room];
    if (!bytes.empty()) std::memcpy(value_.payload.blob.data, bytes.data(), bytes.size());
    value_.payload.blob.length = static_cast<std::int32_t>(bytes.size());
    value_.tag = tagBlob;
}

inline std::optional<Value> Value::ofTag(tarnTag tag, std::int32_t number) noexcept {
    Value value;
    auto& payload = value.set(tag);
    bool fits = true;
    switch (tag) {
        case tagByte:
            fits = std::in_range<std::uint8_t>(number);
            payload.byteValue = static_cast<std::uint8_t>(number);
            break;
        case tagChar:
            fits = std::in_range<signed char>(number);
            payload.charValue = static_cast<signed char>(number);
            break;
        case tagUShort:
            fits = std::in_range<std::uint16_t>(number);
            payload.ushortValue = static_cast<std::uint16_t>(number);
            break;
        case tagWord:
        case tagNumber: payload.longValue = number; break;
        default: value.set(tagEmpty); return std::nullopt;
    }
    return fits ? std::optional<Value>(std::move(value)) : std::nullopt;
}

// ------------------------------------------------------------------------------------------------- reading

inline ValueView::ValueView(const Value& value) noexcept : value_(value.raw()) {}

/// Answers a number as T, or nothing where T doesn't hold it without loss.
template <ReadableNumber T, ReadableNumber Number>
constexpr std::optional<T> withoutLoss(Number number) noexcept {
    if constexpr (std::is_integral_v<T> && std::is_integral_v<Number>) {
        if (!std::in_range<T>(number)) return std::nullopt;
    } else if constexpr (std::is_integral_v<T>) {
        return std::nullopt;
    } else if constexpr (std::numeric_limits<T>::digits < std::numeric_limits<Number>::digits) {
        const auto exact = static_cast<double>(number);
        const bool isNumber = exact == exact;
        if (isNumber && static_cast<double>(static_cast<T>(number)) != exact) return std::nullopt;
    }
    return static_cast<T>(number);
}

template <ReadableNumber T>
std::optional<T> ValueView::getNumber() const {
    const auto& payload = value_->payload;
    switch (value_->tag) {
        case tagByte: return withoutLoss<T>(payload.byteValue);
        case tagChar: return withoutLoss<T>(payload.charValue);
        case tagShort: return withoutLoss<T>(payload.shortValue);
        case tagLong:
        case tagWord:
        case tagNumber: return withoutLoss<T>(payload.longValue);
        case tagFloat: return withoutLoss<T>(payload.floatValue);
        case tagDouble: return withoutLoss<T>(payload.doubleValue);
        case tagUShort: return withoutLoss<T>(payload.ushortValue);
        default: return std::nullopt;
    }
}

template <Readable T>
std::optional<T> ValueView::get() const {
    if (value_ == nullptr) return std::nullopt;
    const auto& payload = value_->payload;
    if constexpr (std::is_same_v<T, std::string_view>) {
        const char* text = nullptr;
        if (value_->tag == tagText) text = payload.text;
        if (value_->tag == tagString && payload.string != nullptr) text = payload.string->text;
        return text == nullptr ? std::nullopt : std::optional<T>(text);
    } else if constexpr (std::is_same_v<T, std::u16string_view>) {
        const bool isText = value_->tag == tagWideText && payload.wideText != nullptr;
        return isText ? std::optional<T>(payload.wideText) : std::nullopt;
    } else if constexpr (std::is_same_v<T, std::span<const std::byte>>) {
        if (value_->tag != tagBlob) return std::nullopt;
        if (payload.blob.data == nullptr || payload.blob.length < 0) return T();
        return std::as_bytes(std::span(payload.blob.data, static_cast<std::size_t>(payload.blob.length)));
    } else {
        if constexpr (std::is_same_v<T, double>) {
            if (value_->tag == tagDouble) return payload.doubleValue;  // the column of prices
        }
        return getNumber<T>();
    }
}

inline std::optional<double> ValueView::number() const {
    if (tag() == tagText || tag() == tagString) return numberOfText();
    return get<double>();
}

inline std::string ValueView::text() const {
    switch (tag()) {
        case tagEmpty:
        case tagWideText:
        case tagVector:
        case tagBlob:
        case tagBlock:
        case tagList:
        case tagMulti:
        case tagRecord: return {};
        case tagByte:
        case tagUShort: return std::to_string(*get<std::int32_t>());
        default: return adopt(convertToString(value_)).str();
    }
}

}  // namespace tarn
