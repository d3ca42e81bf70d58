// One open key on the system's registry operations, with the type of each value and just its bytes.
// Tests: tests/store/client_settings_test.cpp.

#include <algorithm>
#include <string>

#include "base/byte_order.h"
#include "store/client_settings.h"

namespace tarn {

namespace {

bool hasNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

bool store(HKEY key, std::string_view name, DWORD type, const void* data, std::size_t size) {
    if (key == nullptr || hasNul(name) || !std::in_range<DWORD>(size)) return false;
    const auto* const bytes = static_cast<const BYTE*>(data);
    return RegSetValueExA(key, std::string(name).c_str(), 0, type, bytes, static_cast<DWORD>(size)) ==
           ERROR_SUCCESS;
}

// Reads a value, however long it is; another process may change it between two calls.
LSTATUS fetch(HKEY key, const std::string& name, RegistryValue& value) {
    value.bytes.resize(64);
    for (;;) {
        auto size = static_cast<DWORD>(value.bytes.size());
        DWORD type = 0;
        const LSTATUS status = RegQueryValueExA(key, name.c_str(), nullptr, &type,
                                                reinterpret_cast<BYTE*>(value.bytes.data()), &size);
        if (status != ERROR_MORE_DATA) {
            value.type = type;
            value.bytes.resize(status == ERROR_SUCCESS ? size : 0);
            return status;
        }
        value.bytes.resize(std::max<std::size_t>(size, 2 * value.bytes.size()));
    }
}

std::string_view charactersOf(const RegistryValue& value) {
    return {reinterpret_cast<const char*>(value.bytes.data()), value.bytes.size()};
}

}  // namespace

std::optional<std::uint32_t> RegistryValue::number() const {
    if (state != SettingState::found || type != REG_DWORD || bytes.size() != 4) return std::nullopt;
    return loadWord(reinterpret_cast<const unsigned char*>(bytes.data()));
}

std::optional<std::string> RegistryValue::text() const {
    if (state != SettingState::found || type != REG_SZ) return std::nullopt;
    const std::string_view characters = charactersOf(*this);
    return std::string(characters.substr(0, characters.find('\0')));
}

std::optional<std::vector<std::string>> RegistryValue::texts() const {
    if (state != SettingState::found || type != REG_MULTI_SZ) return std::nullopt;
    std::vector<std::string> texts;
    std::string_view rest = charactersOf(*this);
    while (!rest.empty() && rest.front() != '\0') {
        const std::size_t end = std::min(rest.find('\0'), rest.size());
        texts.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return texts;
}

RegistryKey RegistryKey::open(HKEY root, std::string_view path) {
    RegistryKey opened;
    if (hasNul(path)) return opened;
    const std::string name(path);
    for (const REGSAM access : {REGSAM{KEY_ALL_ACCESS}, REGSAM{KEY_READ}}) {
        if (RegOpenKeyExA(root, name.c_str(), 0, access, &opened.key_) == ERROR_SUCCESS) break;
        opened.key_ = nullptr;
    }
    return opened;
}

RegistryKey RegistryKey::create(HKEY root, std::string_view path) {
    RegistryKey opened;
    char classText[] = "MOLT Settings";
    if (hasNul(path)) return opened;
    const LSTATUS status =
        RegCreateKeyExA(root, std::string(path).c_str(), 0, classText, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &opened.key_, nullptr);
    if (status != ERROR_SUCCESS) opened.key_ = nullptr;
    return opened;
}

RegistryKey::~RegistryKey() {
    if (key_ != nullptr) RegCloseKey(key_);
}

RegistryValue RegistryKey::value(std::string_view name) const {
    RegistryValue value;
    if (key_ == nullptr || hasNul(name)) return value;
    const LSTATUS status = fetch(key_, std::string(name), value);
    if (status == ERROR_SUCCESS) {
        value.state = SettingState::found;
    } else if (status != ERROR_FILE_NOT_FOUND) {
        value.state = SettingState::unreadable;
    }
    return value;
}

bool RegistryKey::set(std::string_view name, std::uint32_t number) {
    unsigned char bytes[sizeof number];
    storeWord(bytes, number);
    return store(key_, name, REG_DWORD, bytes, sizeof bytes);
}

bool RegistryKey::set(std::string_view name, std::string_view text) {
    return !hasNul(text) && store(key_, name, REG_SZ, std::string(text).c_str(), text.size() + 1);
}

bool RegistryKey::set(std::string_view name, std::span<const std::byte> bytes) {
    return store(key_, name, REG_BINARY, bytes.data(), bytes.size());
}

bool RegistryKey::erase(std::string_view name) {
    if (key_ == nullptr || hasNul(name)) return key_ != nullptr;
    const LSTATUS status = RegDeleteValueA(key_, std::string(name).c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

}  // namespace tarn
