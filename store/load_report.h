#pragma once

/// @file
/// What became of a load or a save: how far it came, how much it took, and what stopped it where.  The loaders
/// of records, keyed files and menus answer a LoadReport, the savers a SaveReport.
///
///     const tarn::LoadReport loaded = menu.load("orders.mnu");
///     if (!loaded) show(loaded.message("orders.mnu"));
///     // orders.mnu: byte 88 of 120: item 14: the file ends within it
///
/// Threads: no shared state.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/export.h"

namespace tarn {

/// What stopped a load.
enum class LoadError : std::int32_t {
    none = 0,
    cancelled,  ///< the progress function said so, or threw
    badName,    ///< the name is empty or has a NUL in it
    cantOpen,   ///< LoadReport::system has the code
    cantRead,   ///< likewise
    tooLarge,   ///< for the form, or for the memory that a reader takes for a file of this size
    wrongForm,  ///< no file of this kind
    truncated,  ///< the file ends within something
    badHeader,  ///< counts that can't be
    badIndex,   ///< the index names more than there is, or a pair of keys twice
    badItem,    ///< a field, a value or an entry that isn't one
    tooDeep,    ///< nested deeper than the reader goes
};

/// Answers what is wrong as half a sentence: "the file ends within it".
/// - Owner: the library.  A number that is none of the errors answers "unknown".
[[nodiscard]] TARN_EXPORT const char* toText(LoadError error);

/// What a load came to.  It is true if there is nothing wrong.
struct [[nodiscard]] LoadReport {
    LoadError error = LoadError::none;  ///< the first
    std::uint32_t system = 0;           ///< Win32 code
    std::uint64_t offset =
        0;  ///< of the first byte that isn't right, where the value that isn't whole begins; the
            ///< bytes read if all are
    std::uint64_t fileSize = 0;
    std::int32_t item = -1;       ///< the field, index record or token at that place, from 0; -1 is none
    std::int32_t id = 0;          ///< its id, where it has one
    std::int32_t row = -1;        ///< its row or repeat, -1 where it has none
    std::int32_t fields = 0;      ///< taken, or the index records
    std::int32_t columns = 0;     ///< taken
    std::int32_t rows = 0;        ///< taken
    std::int64_t values = 0;      ///< taken: cells and fields, without gaps, or the entries of a menu
    std::int64_t skipped = 0;     ///< passed over without an error: tokens, or bytes behind the last value
    std::uint64_t skippedAt = 0;  ///< offset of the first of them

    explicit operator bool() const noexcept { return error == LoadError::none; }

    /// Answers a line for people, without a line end.  After an error it says where that is, and what the
    /// system says: `half.txt: byte 8997 of 9000: field 336, row 279: the file ends within it`.  Otherwise it
    /// counts what was taken.
    /// - `fileName`: stands in front, unless it is empty
    [[nodiscard]] TARN_EXPORT std::string message(std::string_view fileName) const;
};

/// How far a load is, in bytes.
struct LoadProgress {
    std::uint64_t done, total;
};

/// What a progress function wants.
enum class Next : std::int32_t { goOn = 0, cancel };

/// Is called behind each 64 KiB of a file and at its end, and may show a line or cancel the load.  An exception
/// out of it cancels the load too and is dropped.
using ProgressFunction = std::function<Next(const LoadProgress&)>;

/// What a failed load leaves behind.
enum class OnDamage : std::int32_t {
    restore = 0,  ///< everything as it was before the call
    keep,         ///< what was read up to the damage, as the functions without a report do
};

/// What stopped a save.  After `noForm`, `tooLarge` and `tooDeep` nothing was written.
enum class SaveError : std::int32_t {
    none = 0,
    badName,      ///< the name is empty or has a NUL in it
    cantCreate,   ///< the temporary file; SaveReport::system has the code
    cantWrite,    ///< likewise
    cantReplace,  ///< the old file by the new one, or the folder doesn't reach the disk
    noForm,       ///< a value that the file's form can't hold
    tooLarge,     ///< more than readers take: 2^32 - 2 bytes, 2^31 - 2 in 32-bit code
    tooDeep,      ///< vectors nested more than 64 deep
};

/// Answers what is wrong as half a sentence.
/// - Owner: the library.  A number that is none of the errors answers "unknown".
[[nodiscard]] TARN_EXPORT const char* toText(SaveError error);

/// What a save came to.  It is true if the file is written.
struct [[nodiscard]] SaveReport {
    SaveError error = SaveError::none;
    std::uint32_t system = 0;  ///< Win32 code
    std::int32_t id = 0;       ///< of the first value without a form in the file
    std::int32_t row = -1;     ///< its row or repeat, -1 where it has none

    explicit operator bool() const noexcept { return error == SaveError::none; }

    /// Answers a line for people, as LoadReport does.
    [[nodiscard]] TARN_EXPORT std::string message(std::string_view fileName) const;
};

/// How a file is replaced.  A reader, and a crash of the program, sees the old file or the new one, whole.
enum class Durability : std::int32_t {
    replaced = 0,  ///< a crash of the system may lose or undo it
    durable,       ///< it is on the disk when the call returns
};

}  // namespace tarn
