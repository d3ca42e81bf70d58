// An ini file on the system's profile operations, which answer a default for what isn't there.  A value that is
// equal to the default is read again with another, so that absent and empty are two things.
// Tests: tests/store/client_settings_test.cpp.

#include <algorithm>
#include <charconv>
#include <string>

#include "base/ascii.h"
#include "store/client_settings.h"

namespace tarn {

namespace {

// Calls a reader with a growing buffer until the text fits with so many bytes to spare.
template <class Read>
std::string readWhole(std::size_t spare, Read read) {
    std::string buffer(256, '\0');
    for (;;) {
        const std::size_t length = read(buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length + spare < buffer.size()) {
            buffer.resize(length);
            return buffer;
        }
        buffer.resize(2 * buffer.size());
    }
}

struct Key {
    std::string path, section, key;

    // Whether the names are such that they could be in a file.
    [[nodiscard]] bool isPossible() const {
        constexpr std::string_view lineEnds("\r\n\0", 3);
        return path.find('\0') == std::string::npos && section.find_first_of(lineEnds) == std::string::npos &&
               key.find_first_of(lineEnds) == std::string::npos && !key.empty();
    }
    // Whether what is written under the names is found under them.
    [[nodiscard]] bool isWritable() const {
        return isPossible() && section.find(']') == std::string::npos && key.find('=') == std::string::npos &&
               key.front() != '[' && key.front() != ';';
    }
    [[nodiscard]] std::string read(const char* defaultText) const {
        return readWhole(1, [&](char* buffer, DWORD size) {
            return GetPrivateProfileStringA(section.c_str(), key.c_str(), defaultText, buffer, size,
                                            path.c_str());
        });
    }
};

bool isMissing(DWORD code) {
    return code == ERROR_SUCCESS || code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
}

Setting<std::string> readText(const Key& key) {
    if (!key.isPossible()) return {};
    std::string value = key.read("1");
    if (value == "1") {
        SetLastError(ERROR_SUCCESS);
        value = key.read("2");
        const DWORD code = GetLastError();
        if (value == "2") return {isMissing(code) ? SettingState::absent : SettingState::unreadable, {}};
    }
    return {value.empty() ? SettingState::empty : SettingState::found, std::move(value)};
}

std::vector<std::string> cutList(std::string_view list) {
    std::vector<std::string> names;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find('\0'), list.size());
        names.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return names;
}

int radixOf(std::string_view prefix) {
    if (prefix == "0x") return 16;
    if (prefix == "0o") return 8;
    return prefix == "0b" ? 2 : 10;
}

// The whole text as a number.
std::optional<std::int32_t> wholeNumber(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    const int radix = radixOf(text.substr(0, 2));
    if (radix != 10) text.remove_prefix(2);
    std::int64_t magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, radix);
    const bool isWhole = error == std::errc() && end == text.data() + text.size() && text.front() != '-';
    const std::int64_t number = isNegative ? -magnitude : magnitude;
    if (!isWhole || !std::in_range<std::int32_t>(number)) return std::nullopt;
    return static_cast<std::int32_t>(number);
}

// A text as it has to be written so that it reads back.
std::string quoted(std::string_view text) {
    if (text.empty()) return {};
    const bool isInQuotes =
        text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
    if (!isInQuotes && !isSpace(text.front()) && !isSpace(text.back())) return std::string(text);
    return '"' + std::string(text) + '"';
}

}  // namespace

const char* toText(SettingState state) {
    switch (state) {
        case SettingState::found: return "found";
        case SettingState::empty: return "empty";
        case SettingState::absent: return "absent";
        case SettingState::malformed: return "malformed";
        case SettingState::unreadable: return "unreadable";
    }
    return "unknown";
}

Ini::Ini(std::string_view name) {
    path_ = readWhole(1, [](char* buffer, DWORD size) { return GetCurrentDirectoryA(size, buffer); });
    if (path_.empty()) path_ = ".";
    path_.append("\\").append(name).append(".ini");
}

Ini Ini::at(std::string path) {
    Ini ini;
    ini.path_ = std::move(path);
    return ini;
}

Setting<std::string> Ini::text(std::string_view section, std::string_view key) const {
    return readText({path_, std::string(section), std::string(key)});
}

Setting<std::int32_t> Ini::number(std::string_view section, std::string_view key) const {
    const auto found = text(section, key);
    if (!found) return {found.state, 0};
    const auto number = wholeNumber(found.value);
    return number ? Setting<std::int32_t>{SettingState::found, *number}
                  : Setting<std::int32_t>{SettingState::malformed, 0};
}

Setting<std::vector<std::byte>> Ini::bytes(std::string_view section, std::string_view key) const {
    const auto found = text(section, key);
    if (!found) return {found.state, {}};
    const std::size_t size = found.value.size() / 2;  // one more than there are bytes, for the sum
    std::vector<std::byte> bytes(size);
    const Key names{path_, std::string(section), std::string(key)};
    const bool isRight =
        size > 0 && GetPrivateProfileStructA(names.section.c_str(), names.key.c_str(), bytes.data(),
                                             static_cast<UINT>(size - 1), path_.c_str()) != FALSE;
    if (!isRight) return {SettingState::malformed, {}};
    bytes.pop_back();
    return {SettingState::found, std::move(bytes)};
}

std::vector<std::string> Ini::sections() const {
    if (path_.find('\0') != std::string::npos) return {};
    return cutList(readWhole(2, [&](char* buffer, DWORD size) {
        return GetPrivateProfileStringA(nullptr, nullptr, "", buffer, size, path_.c_str());
    }));
}

std::vector<std::string> Ini::keys(std::string_view section) const {
    const Key names{path_, std::string(section), "any"};
    if (!names.isPossible()) return {};
    return cutList(readWhole(2, [&](char* buffer, DWORD size) {
        return GetPrivateProfileStringA(names.section.c_str(), nullptr, "", buffer, size, path_.c_str());
    }));
}

bool Ini::set(std::string_view section, std::string_view key, std::string_view text) {
    const Key names{path_, std::string(section), std::string(key)};
    if (!names.isWritable() || text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
        return false;
    return WritePrivateProfileStringA(names.section.c_str(), names.key.c_str(), quoted(text).c_str(),
                                      path_.c_str()) != FALSE;
}

bool Ini::set(std::string_view section, std::string_view key, std::int32_t number) {
    return set(section, key, std::string_view(std::to_string(number)));
}

bool Ini::erase(std::string_view section, std::string_view key) {
    const Key names{path_, std::string(section), std::string(key)};
    if (readText(names).state == SettingState::absent) return true;
    return WritePrivateProfileStringA(names.section.c_str(), names.key.c_str(), nullptr, path_.c_str()) !=
           FALSE;
}

}  // namespace tarn
