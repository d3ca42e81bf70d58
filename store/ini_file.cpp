// One ini file on the system's profile operations.  Defaults are kept from the system and filled in here, so
// that the result can say whether there was a value.  Tests: tests/store/ini_file_test.cpp.

#include <cstring>

#include "store/settings.h"

namespace {

constexpr std::uint32_t missing = 0xEEEEEEEE;  // the default that the system gets for numbers

DWORD roomOf(std::int32_t size) {
    return size > 0 ? static_cast<DWORD>(size) : 0;
}

void buildPath(tarnString& path, const char* directory, const tarnString& name) {
    tarnString built(directory);
    built.append("\\");
    built.append(name.text);
    built.append(".ini");
    path = built;  // in one step, so that without memory the old path stays
}

}  // namespace

tarnIniFile::tarnIniFile(const char* name) : name_(name) {
    char directory[256];
    const DWORD length = GetCurrentDirectoryA(sizeof directory, directory);
    const bool isWhole = length > 0 && length < sizeof directory;
    buildPath(path_, isWhole ? directory : ".", name_);
}

tarnIniFile::~tarnIniFile() = default;

void tarnIniFile::setIniFileDirectory(const char* directory) {
    buildPath(path_, directory, name_);
}

int tarnIniFile::readIniString(const char* section, const char* key, const char* defaultText, char* buffer,
                               std::int32_t size) {
    if (buffer == nullptr) return 0;
    const DWORD count = GetPrivateProfileStringA(section, key, "", buffer, roomOf(size), path_.text);
    if (count == 0 && defaultText != nullptr) std::memmove(buffer, defaultText, std::strlen(defaultText) + 1);
    return count > 0 ? 1 : 0;
}

int tarnIniFile::writeIniString(const char* section, const char* key, const char* text) {
    return WritePrivateProfileStringA(section, key, text, path_.text) > 0 ? 1 : 0;
}

int tarnIniFile::readIniInt(const char* section, const char* key, int defaultValue, std::int32_t& value) {
    const UINT number = GetPrivateProfileIntA(section, key, static_cast<std::int32_t>(missing), path_.text);
    value = number == missing ? defaultValue : static_cast<std::int32_t>(number);
    return number == missing ? 0 : 1;
}

int tarnIniFile::writeIniInt(const char* section, const char* key, int value) {
    tarnString digits;
    digits.assign(std::int32_t{value});
    return writeIniString(section, key, digits.text);
}

int tarnIniFile::readIniStruct(const char* section, const char* key, const void* defaultData, void* buffer,
                               std::int32_t size) {
    if (buffer == nullptr || size < 0) return 0;
    if (GetPrivateProfileStructA(section, key, buffer, roomOf(size), path_.text) > 0) return 1;
    if (defaultData != nullptr) std::memmove(buffer, defaultData, static_cast<std::size_t>(size));
    return 0;
}

int tarnIniFile::writeIniStruct(const char* section, const char* key, const void* data, std::int32_t size) {
    if (size < 0) return 0;
    // The system only reads the data, though it doesn't say so.
    return WritePrivateProfileStructA(section, key, const_cast<void*>(data), roomOf(size), path_.text) > 0
               ? 1
               : 0;
}
