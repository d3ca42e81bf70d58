// One pass over the text, line by line and without a model of it: a reader stops at its key, and an editor
// only has to know where one line or one value begins and ends.  The time goes with the text's length.

#include "platform/profile_text.h"

#include <algorithm>
#include <charconv>
#include <numeric>

namespace tarn::profile {

namespace {

constexpr auto npos = std::string_view::npos;

bool isBlank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

char folded(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

bool isSameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return folded(x) == folded(y); });
}

// Tells most lines from the one that is looked for, without a look at the whole line.
bool startsWithName(std::string_view text, std::string_view name) {
    return text.size() >= name.size() && isSameName(text.substr(0, name.size()), name);
}

// ---------------------------------------------------------------------------------------------------- lines

enum class Kind { blank, comment, head, entry };

struct Line {
    std::size_t begin = 0, end = 0;  // in the text, line end included
    std::string_view content;        // without the blanks at its ends
    Kind kind = Kind::blank;

    // The name of a section's head.
    [[nodiscard]] std::string_view section() const {
        return trimmed(content.substr(1, std::min(content.rfind(']'), content.size()) - 1));
    }
    [[nodiscard]] std::string_view key() const { return trimmed(content.substr(0, content.find('='))); }
    [[nodiscard]] bool isKey() const { return kind == Kind::entry && content.find('=') != npos; }
    // The value of a key without its blanks.
    [[nodiscard]] std::string_view value() const { return trimmed(content.substr(content.find('=') + 1)); }
};

// A CR that isn't followed by a LF is rare, and looking for it in every line would cost as much as the lines.
bool holdsLoneReturn(std::string_view text) {
    bool found = !text.empty() && text.back() == '\r';
    for (std::size_t i = 0; i + 1 < text.size(); ++i) found |= (text[i] == '\r') & (text[i + 1] != '\n');
    return found;
}

Kind kindOf(std::string_view content) {
    if (content.empty()) return Kind::blank;
    if (content.front() == ';') return Kind::comment;
    return content.front() == '[' ? Kind::head : Kind::entry;
}

class Lines {
  public:
    explicit Lines(std::string_view text) : text_(text), loneReturns_(holdsLoneReturn(text)) {}

    bool next(Line& line) {
        if (position_ == text_.size()) return false;
        line.begin = position_;
        std::size_t last =
            loneReturns_ ? text_.find_first_of("\r\n", position_) : text_.find('\n', position_);
        if (last != npos && text_.substr(last, 2) == "\r\n") ++last;
        position_ = line.end = last == npos ? text_.size() : last + 1;
        line.content = trimmed(text_.substr(line.begin, line.end - line.begin));
        line.kind = kindOf(line.content);
        return true;
    }

    // Steps to the head of the first section of that name.
    bool find(std::string_view section, Line& head) {
        const std::string_view name = trimmed(section);
        while (next(head)) {
            if (head.kind == Kind::head && isSameName(head.section(), name)) return true;
        }
        return false;
    }
    // Steps to the next line of the section that it stands in.
    bool nextInSection(Line& line) { return next(line) && line.kind != Kind::head; }

  private:
    std::string_view text_;
    std::size_t position_ = 0;
    bool loneReturns_;
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
    if (character >= '0' && character <= '9') return character - '0';
    const char letter = folded(character);
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
    while (lines.nextInSection(line)) {
        if (startsWithName(line.content, name) && line.isKey() && isSameName(line.key(), name)) {
            return line.value();
        }
    }
    return std::nullopt;
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
        if (line.kind == Kind::head && !line.section().empty()) names.append(line.section()) += '\0';
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
        if (line.kind != Kind::blank) behind = line.end;
        if (line.kind != Kind::entry || !isSameName(line.key(), name)) continue;
        if (line.isKey()) return withValueOf(text, line, value);
        const auto end = static_cast<std::size_t>(line.content.data() - text.data()) + line.content.size();
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
        if (line.kind == Kind::entry && isSameName(line.key(), name)) {
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
        if (line.kind != Kind::entry) result.append(text.substr(line.begin, line.end - line.begin));
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
