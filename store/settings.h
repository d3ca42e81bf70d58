#pragma once

/// @file
/// Settings of a program: one ini file, or keys of the registry.  Both classes are thin: they add defaults
/// and the deletion of whole subtrees to what the system's profile and registry operations do.
///
///     tarnIniFile ini("client");                        // client.ini in the current directory
///     ini.writeIniInt("window", "width", 640);          // 1
///     std::int32_t width;
///     ini.readIniInt("window", "width", 800, width);    // 1, and width is 640
///
/// Every operation answers 1 for success and 0 otherwise, without a reason.
///
/// Where this isn't Windows itself, an ini file is a file of that name with `/` for every `\`, and the
/// registry is in the user's data folder (docs/registry-folder.md).  A program on Windows sees these
/// differences: there, a file whose path has no folder is searched for in the Windows folder and not in the
/// current one, the case of its name doesn't count, and below HKEY_LOCAL_MACHINE only an administrator may
/// write.
///
/// Threads: nothing is shared or kept between calls, and one object belongs to one thread at a time.
/// Processes that write the same file or key wait for each other and lose nothing; a write that has waited
/// for five seconds answers 0.

#include <cstdint>

#include "core/export.h"
#include "core/string.h"
#include "platform/win32.h"

/// One ini file.  Its path is always the directory, one backslash, the name and ".ini": the name client.ini
/// makes client.ini.ini.
///
/// The case of the names of sections and keys doesn't count.  A file or section that isn't there reads as a
/// missing key, and so does a file that can't be read; a write makes the file, but no directory.
class TARN_EXPORT tarnIniFile {
  public:
    /// Keeps the name and takes the directory that is current now; a later change of it doesn't move the
    /// file.  A current directory of more than 255 characters, or none, can't be kept: the file is then
    /// name.ini in whatever directory is current.  NULL counts as an empty name.
    explicit tarnIniFile(const char* name);
    tarnIniFile(const tarnIniFile&) = delete;
    tarnIniFile& operator=(const tarnIniFile&) = delete;
    ~tarnIniFile();

    /// Moves to the file of the same name in another directory.  NULL counts as an empty text.
    void setIniFileDirectory(const char* directory);

    /// Reads a text into a buffer of `size` bytes; what doesn't fit is cut.  A NULL section or key reads the
    /// names instead, each with its NUL and one more behind the last.
    /// - `defaultText`: copied whole, whatever `size` is, if nothing was read; NULL leaves an empty text
    /// - Answers 0 if nothing was read: for a missing key and for an empty value alike.
    /// - Bad input: a size below 1 reads nothing; nothing is written to a NULL buffer.
    int readIniString(const char* section, const char* key, const char* defaultText, char* buffer,
                      std::int32_t size);
    /// Writes a text.  A NULL text removes the key, a NULL key the section.
    int writeIniString(const char* section, const char* key, const char* text);

    /// Reads the number that the value begins with.
    /// - `value`: out, the number or the default
    /// - Answers 0 if the default was taken: for a missing key, an empty value, and a stored -286331154.
    int readIniInt(const char* section, const char* key, int defaultValue, std::int32_t& value);
    /// Writes a number as decimal text.
    int writeIniInt(const char* section, const char* key, int value);

    /// Reads a block of exactly `size` bytes, which is hexadecimal text with a checksum in the file.
    /// - `defaultData`: `size` bytes that are copied if there is no such block; NULL copies none
    /// - Answers 0 if there is no such block.
    int readIniStruct(const char* section, const char* key, const void* defaultData, void* buffer,
                      std::int32_t size);
    /// Writes a block of `size` bytes.  NULL data removes the key.
    int writeIniStruct(const char* section, const char* key, const void* data, std::int32_t size);

  private:
    tarnString path_;
    tarnString name_;
};

/// One root of the registry, and at most one open key below it, whose values are read and written.
///
///     tarnRegistry settings(HKEY_CURRENT_USER);
///     settings.openKey("Software\\Client", 1);          // 1
///     settings.set("Width", 640);                       // 1
///
/// Without an open key every operation on values answers 0.
class TARN_EXPORT tarnRegistry {
  public:
    /// Takes a root, which stays the caller's and is never closed here.
    explicit tarnRegistry(HKEY root);
    tarnRegistry(const tarnRegistry&) = delete;
    tarnRegistry& operator=(const tarnRegistry&) = delete;
    ~tarnRegistry();

    /// Opens the key of that name below the root; with `create` not 0 it is made if it is missing, with the
    /// class text "MOLT Settings".  A key that is open already is forgotten without being closed, also if the
    /// new one can't be opened: call closeKey first.  A NULL name changes nothing.
    int openKey(const char* name, int create);
    /// Closes the open key.
    int closeKey();

    /// Deletes a key below the open key, which must have no keys below it.
    int deleteSubKey(const char* name);
    /// Deletes all keys below the key of that name, which is a name below the root; that key itself stays
    /// with its values.
    /// - Answers 0 only if there is no such key: keys that can't be deleted aren't reported.
    int deleteSubKeyTree(const char* name);
    /// Deletes a value of the open key.
    int deleteValue(const char* name);
    /// Waits until the open key and the keys above it are on the disk.  Until then a power cut may undo what
    /// was stored, whole: a value is the former one or the new one.
    int flushKey();

    /// Stores a number, 32 bits.
    int set(const char* name, std::uint32_t value);
    /// Stores a text, or a list of texts.  NULL stores nothing.
    /// - `length`: 0 for a single text, which is stored with its NUL; otherwise the bytes of the list, with
    ///   the NUL of each text and one more
    int set(const char* name, const char* text, std::uint32_t length);
    /// Stores `length` bytes.
    int setBinary(const char* name, const char* data, std::uint32_t length);

    /// Reads a value of any type if it has at most 4 bytes; otherwise `value` stays and the answer is 0.
    int get(const char* name, std::uint32_t& value);
    /// Reads a value of any type if it fits into the buffer; otherwise the buffer stays and the answer is 0.
    /// How many bytes were read isn't reported.
    int get(const char* name, char* buffer, std::uint32_t length);
    /// The same as `get` into a buffer.
    int getBinary(const char* name, char* buffer, std::uint32_t length);

  private:
    HKEY key_ = nullptr;
    HKEY root_;
};
