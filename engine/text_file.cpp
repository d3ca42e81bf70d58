// Loading a record: which of the two forms a file has, and reading the text form.  The text is cut at each
// `^` as it is walked, and every token is looked at once.
// Tests: tests/engine/record_files_test.cpp.

#include <cstring>

#include "core/number_text.h"
#include "core/string.h"
#include "engine/engine_data.h"
#include "engine/record_loader.h"
#include "platform/win32.h"
#include "store/file_handle.h"
#include "store/index_format.h"
#include "store/whole_file.h"

using tarn::OwnedContent;
using tarn::readLong;

namespace {

constexpr char separator = '^';
constexpr char divider = '|';
constexpr char headerMark = '#';

// On disk: the type codes that have a text form.  Those above 5 are older numbers of their tags.
enum TypeCode : std::int32_t {
    codeShort = 2,
    codeLong = 3,
    codeFloat = 4,
    codeDouble = 5,
    codeChar = 12,
    codeText = 15,
    codeNumber = 21,
};

// The tokens of a text, which it cuts up; runs of separators count as one.
class TokenCursor {
  public:
    explicit TokenCursor(char* text) : rest_(text) {}

    // The next token, or NULL.  What follows the last separator is the last token.
    char* next() {
        skipSeparators();
        if (*rest_ == '\0') return nullptr;
        char* const token = rest_;
        rest_ += std::strcspn(rest_, "^");
        if (*rest_ == separator) *rest_++ = '\0';
        return token;
    }

    // The text of the next token if a separator closes it, or NULL.  It stays the next token.
    const char* peekClosed() {
        skipSeparators();
        return *rest_ != '\0' && std::strchr(rest_, separator) != nullptr ? rest_ : nullptr;
    }

  private:
    void skipSeparators() {
        while (*rest_ == separator) ++rest_;
    }

    char* rest_;
};

std::int32_t tagOf(std::int32_t code) {
    switch (code) {
        case codeShort: return tagShort;
        case codeLong: return tagLong;
        case codeFloat: return tagFloat;
        case codeDouble: return tagDouble;
        case codeChar: return tagChar;
        case codeText: return tagText;
        case codeNumber: return tagNumber;
        default: return tagEmpty;
    }
}

// Makes an empty value one of a type code from its text; for a code without a text form it stays empty.
void readValue(std::int32_t code, const char* text, MOLTVARIANT& value) {
    const std::int32_t tag = tagOf(code);
    if (tag == tagEmpty) return;
    value.payload.text = newstr(text);
    value.tag = tagText;
    convertFromString(&value, tag);
}

// A field is the id, the type code and the value's text, with dividers between; the text may hold more of
// them.  Answers false for a token that is no field.
bool readField(const char* token, std::int32_t& id, MOLTVARIANT& value) {
    const char* const first = token == nullptr ? nullptr : std::strchr(token, divider);
    const char* const second = first == nullptr ? nullptr : std::strchr(first + 1, divider);
    if (second == nullptr) return false;
    id = readLong(token);
    readValue(readLong(first + 1), second + 1, value);
    return true;
}

bool isHeader(const char* token) {
    return token != nullptr && *token == headerMark;
}

bool loadFields(TokenCursor& tokens, tarn::RecordLoader& loader) {
    const char* const header = tokens.next();
    if (!isHeader(header)) return false;
    for (std::int32_t left = readLong(header + 1); left > 0; --left) {
        const char* const token = tokens.next();
        if (token == nullptr) return false;
        if (!loader.takesFields()) continue;
        std::int32_t id = 0;
        OwnedContent value;
        if (!readField(token, id, value)) return false;
        loader.storeField(id, value);
    }
    return true;
}

// A row ends before the next field with the id of its first one.
bool loadRow(TokenCursor& tokens, tarn::RecordLoader& loader, std::int32_t row) {
    const char* next = tokens.peekClosed();
    const std::int32_t firstId = readLong(next);
    do {
        std::int32_t id = 0;
        OwnedContent value;
        if (!readField(tokens.next(), id, value)) return false;
        loader.storeCell(id, row, value);
        next = tokens.peekClosed();
    } while (next != nullptr && readLong(next) != firstId);
    return true;
}

bool loadRows(TokenCursor& tokens, tarn::RecordLoader& loader) {
    const char* const header = tokens.next();
    if (!isHeader(header)) return false;
    const char* const count = std::strchr(header, divider);
    if (count == nullptr) return false;
    const std::int32_t rows = readLong(count + 1);
    for (std::int32_t row = 0; row < rows && tokens.peekClosed() != nullptr; ++row) {
        if (!loadRow(tokens, loader, row)) return false;
    }
    return true;
}

// Of an empty file `byte` stays as it is.
bool readFirstByte(const char* fileName, unsigned char& byte) {
    const tarn::FileHandle file(fileName, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL);
    DWORD bytesRead = 0;
    return file.isOpen() && GetFileSize(file.get(), nullptr) != INVALID_FILE_SIZE &&
           ReadFile(file.get(), &byte, 1, &bytesRead, nullptr) != 0;
}

}  // namespace

int tarnEngineData::loadTextData(const char* fileName, eLoadType mode) {
    const tarn::WholeFile file =
        tarn::readWholeFile(fileName, FILE_SHARE_READ, FILE_ATTRIBUTE_NORMAL, 1, tarn::longestUnsigned);
    if (!file.isRead()) return 0;
    tarn::RecordLoader loader(*this, mode);
    TokenCursor tokens(file.data.get());
    return loadFields(tokens, loader) && loadRows(tokens, loader) ? 1 : 0;
}

int tarnEngineData::loadData(const char* fileName, eLoadType mode) {
    if (fileName == nullptr || fields == nullptr) return 0;
    unsigned char first = 0;
    if (!readFirstByte(fileName, first)) return 0;
    return first == tarn::indexfile::marker ? loadBinaryData(fileName, mode) : loadTextData(fileName, mode);
}
