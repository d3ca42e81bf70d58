// The text form of a record: it loads, in all three modes, what the plain reader of docs/file-formats.md
// reads.  The first byte of an input is the mode, the rest is the file.

#include <cstdlib>

#include "fuzz/property.h"
#include "fuzz/record_file.h"

namespace {

using tarnfuzz::PlainFile;
using tarntest::Owned;

std::int32_t number(const std::string& text) {
    const long long read = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<std::int32_t>(std::clamp<long long>(read, INT32_MIN, INT32_MAX));
}

Owned valueOf(std::int32_t code, const std::string& text) {
    Owned value;
    switch (code) {
        case 2: return tarntest::number(tagShort, static_cast<std::int16_t>(number(text)));
        case 3: return tarntest::number(tagLong, number(text));
        case 4: value.payload.floatValue = static_cast<float>(std::strtod(text.c_str(), nullptr)); break;
        case 5: value.payload.doubleValue = std::strtod(text.c_str(), nullptr); break;
        case 12: return tarntest::number(tagChar, static_cast<signed char>(text.c_str()[0]));
        case 15: return tarntest::text(text.c_str());
        case 21: return tarntest::number(tagNumber, number(text));
        default: return value;
    }
    value.tag = code;
    return value;
}

// The tokens of a text, of which the last one may lack its `^`.
struct Tokens {
    std::vector<std::string> all;
    bool lastIsOpen = false;
    std::size_t next = 0;

    explicit Tokens(const std::string& text) : lastIsOpen(!text.empty() && text.back() != '^') {
        for (std::size_t begin = 0; (begin = text.find_first_not_of('^', begin)) != std::string::npos;) {
            const std::size_t end = std::min(text.find('^', begin), text.size());
            all.push_back(text.substr(begin, end - begin));
            begin = end;
        }
    }
    [[nodiscard]] bool hasNext() const { return next < all.size(); }
    [[nodiscard]] bool hasClosed() const { return next + (lastIsOpen ? 1 : 0) < all.size(); }
};

// Answers false for a token that is no field.
bool splitField(const std::string& token, std::int32_t& id, Owned& value) {
    const std::size_t first = token.find('|');
    const std::size_t second = first == std::string::npos ? first : token.find('|', first + 1);
    if (second == std::string::npos) return false;
    id = number(token);
    value = valueOf(number(token.substr(first + 1)), token.substr(second + 1));
    return true;
}

// For a record with fields they are passed over unparsed.
bool readFields(Tokens& tokens, bool wanted, PlainFile& file) {
    if (!tokens.hasNext() || tokens.all[tokens.next][0] != '#') return false;
    for (std::int32_t left = number(tokens.all[tokens.next++].substr(1)); left > 0; --left) {
        PlainFile::Field field{};
        if (!tokens.hasNext()) return false;
        const std::string& token = tokens.all[tokens.next++];
        if (!wanted) continue;
        if (!splitField(token, field.id, field.value)) return false;
        file.fields.push_back(std::move(field));
    }
    return true;
}

bool readRows(Tokens& tokens, PlainFile& file) {
    if (!tokens.hasNext() || tokens.all[tokens.next][0] != '#') return false;
    const std::string header = tokens.all[tokens.next++];
    if (header.find('|') == std::string::npos) return false;
    const std::int32_t rows = number(header.substr(header.find('|') + 1));
    std::int32_t row = -1, firstId = 0;
    for (bool isFirst = true; tokens.hasClosed(); isFirst = false) {
        const std::string& token = tokens.all[tokens.next];
        if (isFirst || number(token) == firstId) {
            if (++row >= rows) return true;
            firstId = number(token);
        }
        PlainFile::Cell cell{0, row, {}};
        ++tokens.next;
        if (!splitField(token, cell.id, cell.value)) return false;
        file.cells.push_back(std::move(cell));
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tarnfuzz::MemoryFile target;
    tarnfuzz::Input input(data, size);
    const auto mode = static_cast<eLoadType>(input.byte() % 3);
    const std::string bytes = input.rest();
    if (bytes.starts_with('@')) return 0;  // the other form
    target.fill(bytes);
    PlainFile files[2];
    for (const bool empty : {true, false}) {
        Tokens tokens(bytes.c_str());
        PlainFile& file = files[empty ? 0 : 1];
        file.inOrder = readFields(tokens, empty, file) && readRows(tokens, file);
    }
    tarnfuzz::checkLoading(target.path(), bytes.size(), 40, files[0], files[1], mode);
    return 0;
}
