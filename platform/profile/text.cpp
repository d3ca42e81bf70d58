// One pass over the text, line by line and without a model of it: a reader stops at its key, and an editor
// only has to know where one line or one value begins and ends.  The time is in proportion to the text's
// length. Tests: tests/platform/profile_text_test.cpp.

#include "platform/profile/text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <initializer_list>
#include <numeric>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "base/ascii.h"

namespace tarn::profile {

namespace {

constexpr auto npos = std::string_view::npos;

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

bool isSameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return toLower(x) == toLower(y); });
}

// Most lines are refused after a few characters, for the comparison begins at the name's end, where the names
// of one file differ rather than in front.
bool startsWithName(std::string_view text, std::string_view name) {
    if (text.size() < name.size()) return false;
    for (std::size_t i = name.size(); i > 0; --i) {
        if (toLower(text[i - 1]) != toLower(name[i - 1])) return false;
    }
    return true;
}

// ---------------------------------------------------------------------------------------------------- lines

bool isLineEnd(char character) {
    return character == '\n' || character == '\r';
}

constexpr std::size_t blockSize = 64;

// Answers one bit for each of 64 characters, set where a line ends.
std::uint64_t lineEndBits(const char* block) {
    std::uint64_t bits = 0;
#if defined(__SSE2__)
    for (std::size_t i = 0; i < blockSize; i += sizeof(__m128i)) {
        __m128i part;
        std::memcpy(&part, block + i, sizeof part);
        const __m128i ends = _mm_or_si128(_mm_cmpeq_epi8(part, _mm_set1_epi8('\n')),
                                          _mm_cmpeq_epi8(part, _mm_set1_epi8('\r')));
        bits |= std::uint64_t{static_cast<unsigned>(_mm_movemask_epi8(ends))} << i;
    }
#else
    for (std::size_t i = 0; i < blockSize; ++i) bits |= std::uint64_t{isLineEnd(block[i])} << i;
#endif
    return bits;
}

enum class Kind { blank, comment, head, entry };

struct Line {
    std::size_t begin = 0, end = 0;  // in the text, line end included
    std::string_view content;        // from the first character that isn't blank to the line's last

    [[nodiscard]] Kind kind() const {
        if (content.empty()) return Kind::blank;
        if (content.front() == ';') return Kind::comment;
        return content.front() == '[' ? Kind::head : Kind::entry;
    }
    // The name of a section's head.
    [[nodiscard]] std::string_view section() const {
        return trimmed(content.substr(1, std::min(content.rfind(']'), content.size()) - 1));
    }
    [[nodiscard]] bool isKey() const { return kind() == Kind::entry && content.find('=') != npos; }
    [[nodiscard]] std::string_view key() const { return trimmed(content.substr(0, content.find('='))); }
    // The value of a key without its blanks.
    [[nodiscard]] std::string_view value() const { return trimmed(content.substr(content.find('=') + 1)); }
};

class Lines {
  public:
    explicit Lines(std::string_view text) : text_(text) {}

    bool next(Line& line) {
        const char* const limit = text_.data() + text_.size();
        const char* const begin = text_.data() + position_;
        if (begin == limit) return false;
        const char* end = std::find_if(begin, limit, isLineEnd);
        const char* const first = std::find_if_not(begin, end, isSpace);
        line.begin = position_;
        line.content = {first, static_cast<std::size_t>(end - first)};
        if (end != limit && *end++ == '\r' && end != limit && *end == '\n') ++end;
        position_ = line.end = static_cast<std::size_t>(end - text_.data());
        return true;
    }

    // Steps over lines, as fast as possible, to one that `wanted` accepts.  It is given the text from the
    // line's first character on that isn't blank.
    template <typename Wanted>
    void skipTo(Wanted wanted) {
        const auto isWanted = [&](std::size_t begin) {
            std::size_t first = begin;
            while (first < text_.size() && isSpace(text_[first]) && !isLineEnd(text_[first])) ++first;
            return wanted(text_.substr(first));
        };
        if (isWanted(position_)) return;
        for (std::size_t base = position_; base < text_.size(); base += blockSize) {
            char padded[blockSize] = {};
            const char* block = text_.data() + base;
            if (text_.size() - base < blockSize) {
                block = static_cast<const char*>(std::memcpy(padded, block, text_.size() - base));
            }
            std::uint64_t bits = lineEndBits(block);
            bits &= ~(bits >> 1);  // of CR LF, and of empty lines, the last
            for (; bits != 0; bits &= bits - 1) {
                const std::size_t begin = base + static_cast<std::size_t>(std::countr_zero(bits)) + 1;
                if (!isWanted(begin)) continue;
                position_ = begin;
                return;
            }
        }
        position_ = text_.size();
    }

    // Steps to the head of the first section of that name.
    bool find(std::string_view section, Line& head) {
        const std::string_view name = trimmed(section);
        for (;;) {
            skipTo([](std::string_view content) { return content.starts_with('['); });
            if (!next(head)) return false;
            if (isSameName(head.section(), name)) return true;
        }
    }
    // Steps to the next line of the present section.
    bool nextInSection(Line& line) { return next(line) && line.kind() != Kind::head; }

  private:
    std::string_view text_;
    std::size_t position_ = 0;
};

std::string_view lineEndOf(std::string_view text) {
    const std::size_t first = text.find_first_of("\r\n");
    if (first == npos) return "\r\n";
    return text.substr(first, text.substr(first, 2) == "\r\n" ? 2 : 1);
}

std::string spliced(std::string_view text, std::size_t begin, std::size_t end, std::string_view piece) {
    std::string result;
    result.reserve(text.size() - (end - begin) + piece.size());
    result.append(text.substr(0, begin)).append(piece).append(text.substr(end));
    return result;
}

// Answers the text with whole lines put in at a line's begin or at the text's end.
std::string withLines(std::string_view text, std::size_t at, std::initializer_list<std::string> lines) {
    const std::string_view lineEnd = lineEndOf(text);
    std::string piece;
    if (at != 0 && text[at - 1] != '\n' && text[at - 1] != '\r') piece += lineEnd;
    for (const std::string& line : lines) piece.append(line) += lineEnd;
    return spliced(text, at, at, piece);
}

// Answers the text with another value behind a key's `=`, or nothing where it is the same.  The blanks around
// the old value stay, unless the new one brings its own.
std::optional<std::string> withValueOf(std::string_view text, const Line& line, std::string_view value) {
    std::string_view old = line.value();
    if (trimmed(value).size() != value.size()) {
        old = text.substr(line.begin, line.end - line.begin);
        old.remove_prefix(old.find('=') + 1);
        old = old.substr(0, old.find_last_not_of("\r\n") + 1);
    }
    if (old == value) return std::nullopt;
    const auto begin = static_cast<std::size_t>(old.data() - text.data());
    return spliced(text, begin, begin + old.size(), value);
}

// --------------------------------------------------------------------------------------------------- digits

int digitOf(char character) {
    if (isDigit(character)) return character - '0';
    const char letter = toLower(character);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : 16;
}

unsigned char sumOf(std::span<const unsigned char> bytes) {
    return static_cast<unsigned char>(std::accumulate(bytes.begin(), bytes.end(), 0U));
}

}  // namespace

std::optional<std::string_view> findValue(std::string_view text, std::string_view section,
                                          std::string_view key) {
    const std::string_view name = trimmed(key);
    Lines lines(text);
    Line line;
    if (!lines.find(section, line)) return std::nullopt;
    do {
        lines.skipTo([&](std::string_view content) {
            return startsWithName(content, name) || content.starts_with('[');
        });
        if (!lines.nextInSection(line)) return std::nullopt;
    } while (!line.isKey() || !isSameName(line.key(), name));
    return line.value();
}

std::string_view withoutQuotes(std::string_view value) {
    const bool quoted =
        value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.front() == value.back();
    return quoted ? value.substr(1, value.size() - 2) : value;
}

std::string listSections(std::string_view text) {
    std::string names;
    Lines lines(text);
    for (Line line; lines.next(line);) {
        if (line.kind() == Kind::head && !line.section().empty()) names.append(line.section()) += '\0';
    }
    return names;
}

std::string listKeys(std::string_view text, std::string_view section) {
    std::string names;
    Lines lines(text);
    Line line;
    if (!lines.find(section, line)) return names;
    while (lines.nextInSection(line)) {
        if (line.isKey() && !line.key().empty()) names.append(line.key()) += '\0';
    }
    return names;
}

std::optional<std::string> withValue(std::string_view text, std::string_view section, std::string_view key,
                                     std::string_view value) {
    const std::string name(trimmed(key));
    const std::string newLine = std::string(name).append("=").append(value);
    Lines lines(text);
    Line line;
    if (!lines.find(section, line)) {
        return withLines(text, text.size(), {std::string("[").append(trimmed(section)) += ']', newLine});
    }
    std::size_t behind = line.end;
    while (lines.nextInSection(line)) {
        if (line.kind() != Kind::blank) behind = line.end;
        if (line.kind() != Kind::entry || !isSameName(line.key(), name)) continue;
        if (line.isKey()) return withValueOf(text, line, value);
        const auto end = static_cast<std::size_t>(line.content.data() - text.data()) + line.key().size();
        return spliced(text, end, end, std::string("=").append(value));
    }
    return withLines(text, behind, {newLine});
}

std::optional<std::string> withoutKey(std::string_view text, std::string_view section, std::string_view key) {
    const std::string_view name = trimmed(key);
    Lines lines(text);
    Line line;
    if (!lines.find(section, line)) return std::nullopt;
    while (lines.nextInSection(line)) {
        if (line.kind() == Kind::entry && isSameName(line.key(), name)) {
            return spliced(text, line.begin, line.end, {});
        }
    }
    return std::nullopt;
}

std::optional<std::string> withoutSection(std::string_view text, std::string_view section) {
    Lines lines(text);
    Line line;
    if (!lines.find(section, line)) return std::nullopt;
    std::string result(text.substr(0, line.begin));
    result.reserve(text.size());
    std::size_t behind = line.end;
    while (lines.nextInSection(line)) {
        behind = line.end;
        if (line.kind() != Kind::entry) result.append(text.substr(line.begin, line.end - line.begin));
    }
    return result.append(text.substr(behind));
}

std::uint32_t toInteger(std::string_view value) {
    while (!value.empty() && value.front() >= '\0' && value.front() <= ' ') value.remove_prefix(1);
    const bool negative = value.starts_with('-');
    if (negative || value.starts_with('+')) value.remove_prefix(1);
    std::uint32_t radix = 10;
    static constexpr struct {
        std::string_view prefix;
        std::uint32_t radix;
    } rows[] = {{"0x", 16}, {"0o", 8}, {"0b", 2}};
    for (const auto& row : rows) {
        if (!value.starts_with(row.prefix)) continue;
        radix = row.radix;
        value.remove_prefix(row.prefix.size());
        break;
    }
    std::uint32_t number = 0;  // may wrap
    for (const char character : value) {
        const auto digit = static_cast<std::uint32_t>(digitOf(character));
        if (digit >= radix) break;
        number = number * radix + digit;
    }
    return negative ? 0 - number : number;
}

std::string toHexadecimal(std::span<const unsigned char> bytes) {
    std::string text;
    text.reserve(2 * bytes.size() + 2);
    const auto append = [&](unsigned char byte) {
        constexpr const char* digits = "0123456789ABCDEF";
        text += digits[byte >> 4];
        text += digits[byte & 15];
    };
    std::for_each(bytes.begin(), bytes.end(), append);
    append(sumOf(bytes));
    return text;
}

bool fromHexadecimal(std::string_view value, std::span<unsigned char> bytes) {
    if (value.size() % 2 != 0 || value.size() / 2 != bytes.size() + 1) return false;
    if (!std::all_of(value.begin(), value.end(), [](char digit) { return digitOf(digit) < 16; }))
        return false;
    const auto byteAt = [&](std::size_t index) {
        return static_cast<unsigned char>(digitOf(value[2 * index]) << 4 | digitOf(value[2 * index + 1]));
    };
    unsigned char sum = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) sum = static_cast<unsigned char>(sum + byteAt(i));
    if (sum != byteAt(bytes.size())) return false;
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = byteAt(i);
    return true;
}

}  // namespace tarn::profile
