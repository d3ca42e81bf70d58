// One open key on the system's registry operations.  The walk that empties a key holds its levels in a list
// of its own and not on the stack, so that a tree may be as deep as the system allows.
//
// Tests: tests/store/registry_test.cpp.

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "base/byte_order.h"
#include "store/settings.h"

namespace {

constexpr REGSAM allAccess = 0xF003F;

int succeeded(LSTATUS status) {
    return status == ERROR_SUCCESS ? 1 : 0;
}

struct KeyCloser {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using OwnedKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

OwnedKey open(HKEY parent, const char* name) {
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExA(parent, name, 0, allAccess, &key);
    return OwnedKey(status == ERROR_SUCCESS ? key : nullptr);
}

const BYTE* bytesOf(const void* data) {
    return static_cast<const BYTE*>(data);
}

int store(HKEY key, const char* name, DWORD type, const void* data, std::size_t length) {
    return succeeded(RegSetValueExA(key, name, 0, type, bytesOf(data), static_cast<DWORD>(length)));
}

int fetch(HKEY key, const char* name, void* buffer, std::uint32_t length) {
    if (buffer == nullptr) return 0;
    DWORD size = length;
    return succeeded(RegQueryValueExA(key, name, nullptr, nullptr, static_cast<BYTE*>(buffer), &size));
}

// A key on the way to the one that is being emptied, with the names below it that were read so far.
struct Level {
    std::string name;
    OwnedKey key;  // NULL while there are too many others
    std::vector<std::string> names;
};

// Opens the key of a level from the one above it.  Beside the top only the last few keys stay open, so that a
// deep tree needs no more handles than a flat one.
void openLevel(std::vector<Level>& levels, std::size_t index) {
    constexpr std::size_t mostOpen = 32;
    levels[index].key = open(levels[index - 1].key.get(), levels[index].name.c_str());
    if (index > mostOpen) levels[index - mostOpen].key.reset();
}

// Deletes all keys below a key, the deepest first.  The names of a key are all read before the first of them
// is deleted, since deleting would shift the numbers that they are asked by.
void emptyKey(OwnedKey top) {
    constexpr DWORD longestName = 1023;
    char name[longestName + 1];
    std::vector<Level> levels;
    levels.push_back({{}, std::move(top), {}});
    while (!levels.empty()) {
        if (!levels.back().key) {
            for (std::size_t i = 1; i < levels.size(); ++i) openLevel(levels, i);
        }
        Level& level = levels.back();
        const auto index = static_cast<DWORD>(level.names.size());
        if (RegEnumKeyA(level.key.get(), index, name, longestName) == ERROR_SUCCESS) {
            level.names.emplace_back(name);
            levels.push_back({name, nullptr, {}});
            openLevel(levels, levels.size() - 1);
            if (!levels.back().key) levels.pop_back();
            continue;
        }
        for (const std::string& each : level.names) RegDeleteKeyA(level.key.get(), each.c_str());
        levels.pop_back();
    }
}

}  // namespace

tarnRegistry::tarnRegistry(HKEY root) : root_(root) {}

tarnRegistry::~tarnRegistry() {
    if (key_ != nullptr) closeKey();
}

int tarnRegistry::openKey(const char* name, int create) {
    if (name == nullptr) return 0;
    key_ = nullptr;
    if (create == 0) {
        key_ = open(root_, name).release();
        return key_ != nullptr ? 1 : 0;
    }
    char classText[] = "MOLT Settings";
    return succeeded(RegCreateKeyExA(root_, name, 0, classText, REG_OPTION_NON_VOLATILE, allAccess, nullptr,
                                     &key_, nullptr));
}

int tarnRegistry::closeKey() {
    const LSTATUS status = RegCloseKey(key_);
    key_ = nullptr;
    return succeeded(status);
}

int tarnRegistry::deleteSubKey(const char* name) {
    return name == nullptr ? 0 : succeeded(RegDeleteKeyA(key_, name));
}

int tarnRegistry::deleteSubKeyTree(const char* name) {
    if (name == nullptr) return 0;
    OwnedKey key = open(root_, name);
    if (!key) return 0;
    emptyKey(std::move(key));
    return 1;
}

int tarnRegistry::deleteValue(const char* name) {
    return succeeded(RegDeleteValueA(key_, name));
}

int tarnRegistry::flushKey() {
    return succeeded(RegFlushKey(key_));
}

int tarnRegistry::set(const char* name, std::uint32_t value) {
    unsigned char bytes[sizeof value];
    tarn::storeWord(bytes, value);
    return store(key_, name, REG_DWORD, bytes, sizeof bytes);
}

int tarnRegistry::set(const char* name, const char* text, std::uint32_t length) {
    if (text == nullptr) return 0;
    return length == 0 ? store(key_, name, REG_SZ, text, std::strlen(text) + 1)
                       : store(key_, name, REG_MULTI_SZ, text, length);
}

int tarnRegistry::setBinary(const char* name, const char* data, std::uint32_t length) {
    return store(key_, name, REG_BINARY, data, length);
}

int tarnRegistry::get(const char* name, std::uint32_t& value) {
    unsigned char bytes[sizeof value];
    tarn::storeWord(bytes, value);  // what a shorter value leaves as it was
    const int answer = fetch(key_, name, bytes, sizeof bytes);
    value = tarn::loadWord(bytes);
    return answer;
}

int tarnRegistry::get(const char* name, char* buffer, std::uint32_t length) {
    return fetch(key_, name, buffer, length);
}

int tarnRegistry::getBinary(const char* name, char* buffer, std::uint32_t length) {
    return fetch(key_, name, buffer, length);
}
