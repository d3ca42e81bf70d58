// Loading a record: telling the two forms of a file apart, and reading the text form.  The text is cut at
// each `^` as it is walked, and every token is looked at once.

#include <cstring>
#include <memory>

#include "core/number_text.h"
#include "core/string.h"
#include "engine/engine_data.h"
#include "engine/record_loader.h"
#include "platform/win32.h"
#include "store/whole_file.h"

using tarn::OwnedValue;
using tarn::readLong;

namespace {

constexpr char separator = '^';
constexpr char divider = '|';
constexpr char headerMark = '#';
constexpr char indexedFileMark = '@';

// The tokens of a text, which it cuts up; runs of separators count as one.
class TokenCursor {
  public:
    explicit TokenCursor(char* text) : rest_(text) {}

    // The next token, or NULL.  What stands behind the last separator is the last token.
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

// A value of the tag that a type code stands for, from its text; empty for a code without a text form.
OwnedValue valueOf(std::int32_t code, const char* text) {
    struct TypeCode {
        std::int32_t code, tag;
    };
    static constexpr TypeCode codes[] = {{2, tagShort}, {3, tagLong},  {4, tagFloat},  {5, tagDouble},
                                         {12, tagChar}, {15, tagText}, {21, tagNumber}};
    OwnedValue value(new MOLTVARIANT);
    for (const TypeCode& known : codes) {
        if (known.code != code) continue;
        value->payload.text = newstr(text);
        value->tag = tagText;
        convertFromString(value.get(), known.tag);
    }
    return value;
}

struct Field {
    std::int32_t id = 0;
    OwnedValue value;  // NULL for a token that is no field
};

// A field is the id, the type code and the value's text, with dividers between; the text may hold more of
// them.
Field parseField(const char* token) {
    Field field;
    const char* const first = token == nullptr ? nullptr : std::strchr(token, divider);
    const char* const second = first == nullptr ? nullptr : std::strchr(first + 1, divider);
    if (second == nullptr) return field;
    field.id = readLong(token);
    field.value = valueOf(readLong(first + 1), second + 1);
    return field;
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
        Field field = parseField(token);
        if (field.value == nullptr) return false;
        loader.storeField(field.id, std::move(field.value));
    }
    return true;
}

// A row ends before the next field with the id of its first one.
bool loadRow(TokenCursor& tokens, tarn::RecordLoader& loader, std::int32_t row) {
    const char* next = tokens.peekClosed();
    const std::int32_t firstId = readLong(next);
    do {
        Field field = parseField(tokens.next());
        if (field.value == nullptr) return false;
        loader.storeCell(field.id, row, std::move(field.value));
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
    const HANDLE file = CreateFileA(fileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 0;
    char beginning[2] = {};
    DWORD bytesRead = 0;
    const bool readable = GetFileSize(file, nullptr) != INVALID_FILE_SIZE &&
                          ReadFile(file, beginning, sizeof beginning, &bytesRead, nullptr) != 0;
    CloseHandle(file);
    if (!readable) return 0;
    return beginning[0] == indexedFileMark ? loadBinaryData(fileName, mode) : loadTextData(fileName, mode);
}
