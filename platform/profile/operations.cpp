// The profile operations on ini files: names of files, locks and buffers.  What the text means is in
// platform/profile/text.cpp.  Nothing is kept between calls: a read opens the file, passes once over its text
// and stops at the key; a write reads, changes and replaces the file under the lock of its replacement.
// Tests: tests/platform/profile_files_test.cpp, and tests/faults/system_calls_test.cpp for calls that fail.

#define _FILE_OFFSET_BITS 64  // files beyond 2 GiB also in 32-bit code

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/error_codes.h"
#include "platform/files/opening.h"
#include "platform/files/path.h"
#include "platform/files/replacement.h"
#include "platform/profile/encoding.h"
#include "platform/profile/text.h"
#include "platform/win32.h"

namespace {

using namespace tarn::profile;

constexpr std::size_t anyLength = std::numeric_limits<std::size_t>::max();

DWORD load(const std::string& path, Document& document) {
    std::string bytes;
    const DWORD code = tarn::readWhole(AT_FDCWD, path, 0, anyLength, bytes);
    if (code == ERROR_SUCCESS) document = decode(std::move(bytes));
    return code == ERROR_FILE_NOT_FOUND ? tarn::fromErrno(ENOENT, path) : code;
}

// ------------------------------------------------------------------------------------------------- reading

// Looks a key up.  Answers nothing, with the last error set, where there is no such file, section or key.
std::optional<std::string> lookUp(const char* section, const char* key, const char* file) {
    Document document;
    DWORD code = load(tarn::systemPath(file), document);
    if (code == ERROR_SUCCESS) {
        const auto value = findValue(document.text, toDocument(section, document.encoding),
                                     toDocument(key, document.encoding));
        if (value) {
            SetLastError(ERROR_SUCCESS);
            return fromDocument(*value, document.encoding);
        }
        code = ERROR_FILE_NOT_FOUND;
    }
    SetLastError(code);
    return std::nullopt;
}

DWORD deliverText(std::string_view text, char* buffer, DWORD size) {
    if (size == 0) return 0;
    const std::size_t count = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
    if (count < text.size()) SetLastError(ERROR_MORE_DATA);
    return static_cast<DWORD>(count);
}

// As on Windows, a list counts as cut unless the buffer has one byte more than the list needs.
DWORD deliverList(std::string_view names, char* buffer, DWORD size) {
    constexpr DWORD ending = 2;
    if (size < ending) return deliverText("", buffer, size);
    const std::size_t count = std::min<std::size_t>(names.size(), size - ending);
    std::memcpy(buffer, names.data(), count);
    std::fill_n(buffer + count, count < names.size() ? ending : 1, '\0');
    if (count < names.size()) SetLastError(ERROR_MORE_DATA);
    return static_cast<DWORD>(count);
}

// A default as Windows delivers it: no blanks behind it, no quotes around it.
std::string_view defaultOf(const char* text) {
    std::string_view value = text == nullptr ? "" : text;
    value = value.substr(0, value.find_last_not_of(' ') + 1);
    return withoutQuotes(value);
}

// ------------------------------------------------------------------------------------------------- writing

struct Change {
    const char* section;
    const char* key;   // NULL removes the section
    const char* text;  // NULL removes the key
};

std::optional<std::string> changed(const Document& document, const Change& change) {
    const auto encoded = [&](const char* text) { return toDocument(text, document.encoding); };
    const std::string section = encoded(change.section);
    if (change.key == nullptr) return withoutSection(document.text, section);
    if (change.text == nullptr) return withoutKey(document.text, section, encoded(change.key));
    return withValue(document.text, section, encoded(change.key), encoded(change.text));
}

// Keeps other programs from opening the file without sharing, as long as the object lives.
class HeldFile {
  public:
    explicit HeldFile(const std::string& path)
        : error_(tarn::openFile(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, handle_)) {}
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;
    ~HeldFile() {
        if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
    }
    [[nodiscard]] DWORD error() const { return error_; }

  private:
    HANDLE handle_ = INVALID_HANDLE_VALUE;
    DWORD error_;
};

// Writes through to the disk that the file has been replaced.
DWORD flush(const std::string& path) {
    return path.empty() ? ERROR_SUCCESS : tarn::syncFolder(AT_FDCWD, tarn::folderOf(path));
}

DWORD change(const std::string& path, const Change& wanted) {
    constexpr unsigned permissionsOfNew = 0666;
    if (path.empty() || path.back() == '/') return ERROR_PATH_NOT_FOUND;
    if (tarn::isReservedName(path)) return ERROR_INVALID_NAME;
    struct stat former {};
    bool exists = ::stat(path.c_str(), &former) == 0;
    if (!exists && tarn::fromErrno(errno, path) != ERROR_FILE_NOT_FOUND) return tarn::fromErrno(errno, path);

    tarn::Replacement replacement;
    DWORD code = replacement.begin(AT_FDCWD, tarn::temporaryName(path),
                                   exists ? former.st_mode & permissionsOfNew : permissionsOfNew);
    if (code != ERROR_SUCCESS) return code;
    const HeldFile held(path);
    exists = held.error() != ERROR_FILE_NOT_FOUND;
    Document document;
    if (exists) {
        code = held.error() != ERROR_SUCCESS ? held.error() : load(path, document);
        if (code != ERROR_SUCCESS) return code;
        if (::stat(path.c_str(), &former) != 0) return tarn::fromErrno(errno, path);
        if (!S_ISREG(former.st_mode)) return ERROR_ACCESS_DENIED;
    }
    auto text = changed(document, wanted);
    if (!text) return ERROR_SUCCESS;
    document.text = std::move(*text);
    code = replacement.commit(path, encode(document), exists ? &former : nullptr);
    return code != ERROR_SUCCESS ? code : flush(path);
}

}  // namespace

DWORD GetPrivateProfileStringA(const char* section, const char* key, const char* defaultText, char* buffer,
                               DWORD size, const char* file) {
    if (buffer == nullptr) return 0;
    if (section != nullptr && key != nullptr) {
        const auto value = lookUp(section, key, file);
        return deliverText(value ? withoutQuotes(*value) : defaultOf(defaultText), buffer, size);
    }
    Document document;
    const DWORD code = load(tarn::systemPath(file), document);
    SetLastError(code);
    if (section == nullptr) {
        return deliverList(fromDocument(listSections(document.text), document.encoding), buffer, size);
    }
    const std::string keys = listKeys(document.text, toDocument(section, document.encoding));
    if (keys.empty()) return deliverText(defaultOf(defaultText), buffer, size);
    return deliverList(fromDocument(keys, document.encoding), buffer, size);
}

UINT GetPrivateProfileIntA(const char* section, const char* key, std::int32_t defaultValue,
                           const char* file) {
    const auto value = section != nullptr && key != nullptr ? lookUp(section, key, file) : std::nullopt;
    const std::string_view digits = value ? withoutQuotes(*value) : "";
    return digits.empty() ? static_cast<UINT>(defaultValue) : toInteger(digits);
}

BOOL GetPrivateProfileStructA(const char* section, const char* key, void* buffer, UINT size,
                              const char* file) {
    if (section == nullptr || key == nullptr || (buffer == nullptr && size != 0)) return FALSE;
    const auto value = lookUp(section, key, file);
    return value && fromHexadecimal(*value, {static_cast<unsigned char*>(buffer), size}) ? TRUE : FALSE;
}

BOOL WritePrivateProfileStringA(const char* section, const char* key, const char* text, const char* file) {
    if (section == nullptr) {
        const bool isFlush = key == nullptr && text == nullptr;
        SetLastError(isFlush ? flush(tarn::linkedFile(tarn::systemPath(file))) : ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    const DWORD code = change(tarn::linkedFile(tarn::systemPath(file)), {section, key, text});
    if (code != ERROR_SUCCESS) SetLastError(code);
    return code == ERROR_SUCCESS ? TRUE : FALSE;
}

BOOL WritePrivateProfileStructA(const char* section, const char* key, void* data, UINT size,
                                const char* file) {
    if (data == nullptr) return WritePrivateProfileStringA(section, key, nullptr, file);
    const std::string text = toHexadecimal({static_cast<const unsigned char*>(data), size});
    return WritePrivateProfileStringA(section, key, text.c_str(), file);
}
