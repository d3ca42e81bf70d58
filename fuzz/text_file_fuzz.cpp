// The text form of a record: it loads, in all three modes, what the plain reader of docs/file-formats.md
// reads.  The first byte of an input is the mode, the rest is the file.

#include "fuzz/property.h"
#include "fuzz/record_file.h"

namespace {

using tarnfuzz::PlainFile;
using tarnfuzz::wholeNumber;
using tarntest::Owned;

Owned valueOf(std::int32_t code, const std::string& text) {
    const double real = std::strtod(text.c_str(), nullptr);
    switch (code) {
        case 2: return tarntest::number(tagShort, static_cast<std::int16_t>(wholeNumber(text)));
        case 3: return tarntest::number(tagLong, wholeNumber(text));
        case 4: return tarntest::number(tagFloat, real);
        case 5: return tarntest::number(tagDouble, real);
        case 12: return tarntest::number(tagChar, static_cast<signed char>(text.c_str()[0]));
        case 15: return tarntest::text(text.c_str());
        case 21: return tarntest::number(tagNumber, wholeNumber(text));
        default: return {};
    }
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
    [[nodiscard]] bool hasHeader() const { return hasNext() && all[next][0] == '#'; }
};

// Answers false for a token that is no field.
bool splitField(const std::string& token, std::int32_t& id, Owned& value) {
    const std::size_t first = token.find('|');
    const std::size_t second = first == std::string::npos ? first : token.find('|', first + 1);
    if (second == std::string::npos) return false;
    id = wholeNumber(token);
    value = valueOf(wholeNumber(token.substr(first + 1)), token.substr(second + 1));
    return true;
}

// For a record with fields they are passed over unparsed.
bool readFields(Tokens& tokens, bool isWanted, PlainFile& file) {
    if (!tokens.hasHeader()) return false;
    for (std::int32_t left = wholeNumber(tokens.all[tokens.next++].substr(1)); left > 0; --left) {
        if (!tokens.hasNext()) return false;
        const std::string& token = tokens.all[tokens.next++];
        std::pair<std::int32_t, Owned> field;
        if (isWanted && !splitField(token, field.first, field.second)) return false;
        if (isWanted) file.fields.push_back(std::move(field));
    }
    return true;
}

bool readRows(Tokens& tokens, PlainFile& file) {
    if (!tokens.hasHeader()) return false;
    const std::string header = tokens.all[tokens.next++];
    if (header.find('|') == std::string::npos) return false;
    const std::int32_t rows = wholeNumber(header.substr(header.find('|') + 1));
    std::int32_t row = -1, firstId = 0;
    for (; tokens.hasClosed(); ++tokens.next) {
        const std::string& token = tokens.all[tokens.next];
        if (row < 0 || wholeNumber(token) == firstId) {
            if (++row >= rows) return true;
            firstId = wholeNumber(token);
        }
        PlainFile::Cell cell{0, row, {}};
        if (!splitField(token, cell.id, cell.value)) return false;
        file.cells.push_back(std::move(cell));
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tarnfuzz::MemoryFile target;
    tarnfuzz::Input input(data, size);
    const unsigned choice = input.byte();
    const std::string bytes = input.rest();
    if (bytes.starts_with('@')) return 0;  // the other form
    if (choice == 'r') {
        tarnfuzz::checkGrowth(bytes);
        return 0;
    }
    target.fill(bytes);
    PlainFile files[2];
    for (const bool isEmpty : {true, false}) {
        Tokens tokens(bytes.c_str());
        PlainFile& file = files[isEmpty ? 0 : 1];
        file.isWhole = readFields(tokens, isEmpty, file) && readRows(tokens, file);
    }
    tarnfuzz::checkLoading(target.path(), 40, bytes.size(), 0, files[0], files[1],
                           static_cast<eLoadType>(choice % 3));
    return 0;
}
