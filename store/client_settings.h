#pragma once

/// @file
/// Settings of a program that say whether they are there: tarn::Ini is an ini file, tarn::RegistryKey an open
/// key of the registry.  store/settings.h has the same settings with a default and without a reason.
///
///     tarn::Ini ini("client");                                  // client.ini in the current directory
///     const auto width = ini.number("window", "width");
///     resize(width.value_or(800));
///     if (width.state == tarn::SettingState::malformed) complain();
///
///     tarn::RegistryKey key = tarn::RegistryKey::open(HKEY_CURRENT_USER, "Software\\Client");
///     key.value("Width").number();                              // 640, or nothing
///
/// A text or name with a NUL in it is never written, and reads as one that is absent.
///
/// Threads: nothing is shared, and one object belongs to one thread at a time.  Processes that write the same
/// file or key wait for each other, five seconds at most.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/export.h"
#include "platform/win32.h"

namespace tarn {

/// What a setting is.
enum class SettingState : std::int32_t {
    found = 0,
    empty,      ///< a key of an ini file without a value
    absent,     ///< no such key or value, section, file or registry key
    malformed,  ///< of an ini file: no number, or no bytes with a right checksum
    unreadable  ///< there may be one, but the system can't read it
};

/// Answers the name of the state.
/// - Owner: the library.  A number that is none of the states answers "unknown".
[[nodiscard]] TARN_EXPORT const char* toText(SettingState state);

/// A setting of an ini file; it is true if there is a value.
template <class T>
struct [[nodiscard]] Setting {
    SettingState state = SettingState::absent;
    T value{};  ///< T() unless found

    explicit operator bool() const { return state == SettingState::found; }
    /// Answers the value if it was found, otherwise the other one.
    template <class U>
    [[nodiscard]] T value_or(U&& other) const {
        return *this ? value : static_cast<T>(std::forward<U>(other));
    }
};

/// An ini file.  The case of the names of sections and keys doesn't count.  The file is read and written by
/// each call; it needn't be there, and a write makes it.
class Ini {
  public:
    /// name.ini in the directory that is current now.
    TARN_EXPORT explicit Ini(std::string_view name);
    /// Any file.  A path without a directory is one of the current directory (on Windows of the Windows one).
    TARN_EXPORT static Ini at(std::string path);

    /// Reads a text without the quotes around it.
    TARN_EXPORT Setting<std::string> text(std::string_view section, std::string_view key) const;
    /// Reads a whole number of 32 bits with nothing behind it: decimal, or with 0x, 0o or 0b in front.
    TARN_EXPORT Setting<std::int32_t> number(std::string_view section, std::string_view key) const;
    /// Reads the bytes that tarnIniFile::writeIniStruct wrote, however many there are.
    TARN_EXPORT Setting<std::vector<std::byte>> bytes(std::string_view section, std::string_view key) const;

    /// Answers the names of all sections, in the order of the file; one that is there twice is listed twice.
    [[nodiscard]] TARN_EXPORT std::vector<std::string> sections() const;
    /// Answers the names of a section's keys.
    [[nodiscard]] TARN_EXPORT std::vector<std::string> keys(std::string_view section) const;

    /// Writes a text so that it reads back: one with blanks at its ends, or quotes around it, is put into
    /// quotes.
    /// - Answers whether it was written.
    /// - Bad input: a line break or a NUL anywhere, `=` in a key, `[` or `;` in front of it, an empty key, and
    ///   `]` in a section write nothing.
    [[nodiscard]] TARN_EXPORT bool set(std::string_view section, std::string_view key, std::string_view text);
    /// Writes a number as decimal text.
    [[nodiscard]] TARN_EXPORT bool set(std::string_view section, std::string_view key, std::int32_t number);
    /// Removes a key.  Answers whether it isn't there from now on.
    [[nodiscard]] TARN_EXPORT bool erase(std::string_view section, std::string_view key);

  private:
    Ini() = default;

    std::string path_;
};

/// A value of the registry with its type; it is true if there is one, even one without bytes.
struct [[nodiscard]] RegistryValue {
    SettingState state = SettingState::absent;  ///< found, absent or unreadable
    std::uint32_t type = 0;                     ///< REG_SZ, REG_DWORD, ...
    std::vector<std::byte> bytes;               ///< as they are stored

    explicit operator bool() const { return state == SettingState::found; }
    /// Answers the number of a REG_DWORD of 4 bytes, otherwise nothing.
    [[nodiscard]] TARN_EXPORT std::optional<std::uint32_t> number() const;
    /// Answers the text of a REG_SZ up to its NUL, otherwise nothing.
    [[nodiscard]] TARN_EXPORT std::optional<std::string> text() const;
    /// Answers the texts of a REG_MULTI_SZ up to the first empty one, otherwise nothing.
    [[nodiscard]] TARN_EXPORT std::optional<std::vector<std::string>> texts() const;
};

/// An open key of the registry, closed with the object.  Without an open key values are absent and nothing
/// can be written.
class RegistryKey {
  public:
    /// No key.
    RegistryKey() = default;
    /// Opens a key below a root, for reading alone where writing isn't allowed.
    /// - Answers no key if it isn't there.
    TARN_EXPORT static RegistryKey open(HKEY root, std::string_view path);
    /// Opens a key and makes it, with those above it, where it isn't there.
    TARN_EXPORT static RegistryKey create(HKEY root, std::string_view path);
    explicit operator bool() const { return key_ != nullptr; }
    RegistryKey(RegistryKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
    RegistryKey& operator=(RegistryKey&& other) noexcept {
        std::swap(key_, other.key_);
        return *this;
    }
    /// Closes the key.
    TARN_EXPORT ~RegistryKey();

    /// Reads a value; the empty name is that of the key's default value.
    TARN_EXPORT RegistryValue value(std::string_view name) const;
    /// Writes a REG_DWORD.  Answers whether it was written, as the next two do.
    [[nodiscard]] TARN_EXPORT bool set(std::string_view name, std::uint32_t number);
    /// Writes a REG_SZ.
    [[nodiscard]] TARN_EXPORT bool set(std::string_view name, std::string_view text);
    /// Writes a REG_BINARY.
    [[nodiscard]] TARN_EXPORT bool set(std::string_view name, std::span<const std::byte> bytes);
    /// Removes a value.  Answers whether it isn't there from now on.
    [[nodiscard]] TARN_EXPORT bool erase(std::string_view name);

  private:
    HKEY key_ = nullptr;
};

}  // namespace tarn
