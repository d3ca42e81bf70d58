#pragma once

// Settings of a program: one ini file, or keys of the registry.  Both classes are thin: they add defaults and
// the deletion of whole subtrees to what the system's profile and registry operations do.
//
//   tarnIniFile ini("client");                        // client.ini in the current directory
//   ini.writeIniInt("window", "width", 640);          // 1
//   std::int32_t width;
//   ini.readIniInt("window", "width", 800, width);    // 1, and width is 640
//
// Every operation answers 1 for success and 0 otherwise, and says nothing more of a failure.
//
// Where this isn't Windows itself, an ini file is a file of that name with `/` for every `\`, and the
// registry lies in the user's data folder (docs/registry-folder.md).  A program on Windows sees these
// differences: there, a file whose path has no folder is looked for in the Windows folder and not in the
// current one, a name counts in any case, and below HKEY_LOCAL_MACHINE only an administrator may write.
//
// Threads: nothing is shared or kept between calls, and one object belongs to one thread at a time.
// Processes that write the same file or key wait for each other and lose nothing.

#include <cstdint>

#include "core/export.h"
#include "core/string.h"
#include "platform/win32.h"

// One ini file.  Its path is the directory, one backslash, the name and ".ini", without a look at what the
// directory or the name hold already: client.ini becomes client.ini.ini.
//
// Names of sections and keys count in any case.  A file or section that isn't there reads as a missing key,
// and so does a file that can't be read; a write makes the file, but no directory.
class TARN_EXPORT tarnIniFile {
  public:
    // Keeps the name and takes the directory that is current now; a later change of it doesn't move the file.
    // A current directory of more than 255 characters, or none, can't be kept: the path is then .\name.ini,
    // which does follow a change.  NULL counts as an empty name.
    explicit tarnIniFile(const char* name);
    tarnIniFile(const tarnIniFile&) = delete;
    tarnIniFile& operator=(const tarnIniFile&) = delete;
    ~tarnIniFile();

    // Moves to the file of the same name in another directory.  NULL counts as an empty text.
    void setIniFileDirectory(const char* directory);

    // Reads a text into a buffer of `size` bytes; what doesn't fit is cut.  A NULL section or key lists the
    // names instead, each with its NUL and one more behind the last.
    //   defaultText  copied whole, whatever `size` says, where nothing was read; NULL leaves an empty text
    // Answers 0 where nothing was read: for a missing key and for an empty value alike.
    // Bad input: a size below 1 reads nothing, a NULL buffer gets nothing.
    int readIniString(const char* section, const char* key, const char* defaultText, char* buffer,
                      std::int32_t size);
    // A NULL text removes the key, a NULL key the section.
    int writeIniString(const char* section, const char* key, const char* text);

    // Reads the number that the value begins with.
    //   value  out: the number, or the default
    // Answers 0 where the default was taken: for a missing key, an empty value, and a stored -286331154.
    int readIniInt(const char* section, const char* key, int defaultValue, std::int32_t& value);
    // Writes the number as decimal text.
    int writeIniInt(const char* section, const char* key, int value);

    // Reads a block of just `size` bytes, which lies in the file as hexadecimal text with a checksum.
    //   defaultData  `size` bytes that are copied where there is no such block; NULL copies none
    int readIniStruct(const char* section, const char* key, const void* defaultData, void* buffer,
                      std::int32_t size);
    // NULL data removes the key.
    int writeIniStruct(const char* section, const char* key, const void* data, std::int32_t size);

  private:
    tarnString path_;
    tarnString name_;
};

// One root of the registry, and at most one open key below it, whose values can be read and written.
//
//   tarnRegistry settings(HKEY_CURRENT_USER);
//   settings.openKey("Software\\Client", 1);          // 1
//   settings.set("Width", 640);                       // 1
//
// Without an open key every operation on values answers 0.
class TARN_EXPORT tarnRegistry {
  public:
    // The root is the caller's and is never closed here.
    explicit tarnRegistry(HKEY root);
    tarnRegistry(const tarnRegistry&) = delete;
    tarnRegistry& operator=(const tarnRegistry&) = delete;
    ~tarnRegistry();

    // Opens the key of that name below the root; with `create` not 0 it is made if need be, with the class
    // text "MOLT Settings".  A key that is open already isn't closed by this but forgotten, also when the
    // new one can't be opened: call closeKey first.  A NULL name changes nothing.
    int openKey(const char* name, int create);
    // Closes the open key.
    int closeKey();

    // Deletes a key below the open key, which must have no keys below it.
    int deleteSubKey(const char* name);
    // Deletes all keys below the key of that name, which is taken from the root and stays with its values.
    // Answers 0 only if there is no such key: single keys that can't be deleted aren't told.
    int deleteSubKeyTree(const char* name);
    // Deletes a value of the open key.
    int deleteValue(const char* name);
    // Waits until the open key is on the disk.
    int flushKey();

    // Stores a number, 32 bits.
    int set(const char* name, std::uint32_t value);
    // Stores a text with its NUL if `length` is 0; otherwise a list of texts of `length` bytes, which has to
    // hold all their NULs and one more.  NULL stores nothing.
    int set(const char* name, const char* text, std::uint32_t length);
    // Stores `length` bytes.
    int setBinary(const char* name, const char* data, std::uint32_t length);

    // Read a value of any type if it fits, and answer 0, with the out argument as it was, if not.  How many
    // bytes came isn't told.
    int get(const char* name, std::uint32_t& value);
    int get(const char* name, char* buffer, std::uint32_t length);
    int getBinary(const char* name, char* buffer, std::uint32_t length);

  private:
    HKEY key_ = nullptr;
    HKEY root_;
};
