#pragma once

/// @file
/// The keyed data file as an object: records by a pair of keys, each a row of values, with reports of loads and
/// saves.  It is a tarnIndexDataFile (store/index_data_file.h), which raw() answers.
///
///     tarn::KeyedFile file;
///     if (const auto loaded = file.load("client.dat"); !loaded) log(loaded.message("client.dat"));
///     file.set({7, 0}, 1, "abc");
///     for (std::int32_t i = 0; i < file.size({7, 0}); ++i) show(file.at({7, 0}, i));
///     if (const auto saved = file.save("client.dat"); !saved) log(saved.message("client.dat"));
///
/// Threads: no shared state, and one object belongs to one thread at a time, also for its questions: a search
/// remembers its last hit.

#include <compare>
#include <cstdint>
#include <string_view>

#include "core/export.h"
#include "core/value.h"
#include "store/index_data_file.h"
#include "store/load_report.h"

namespace tarn {

/// What a record is known by.
struct RecordKey {
    std::int32_t id, type;
    friend auto operator<=>(const RecordKey&, const RecordKey&) = default;
};

/// A set of records.
class KeyedFile {
  public:
    /// Replaces the set by a file's content.  What is read is what tarnIndexDataFile::readIndexDataFile reads.
    /// - Answers an error for everything that it reads as an empty value or leaves out: a file of another kind
    ///   (`wrongForm`) or that ends too soon (`truncated`), counts that can't be (`badHeader`, `badIndex`), a pair
    ///   of keys that is there twice (`badIndex`), a value of more than 8 bytes or of a tag without a form
    ///   (`badItem`), vectors nested more than 64 deep (`tooDeep`).  Bytes behind the last value are `skipped`.
    ///   `fields` counts the records, `values` those that aren't empty.
    /// - `onDamage`: after an error, `restore` leaves the set as it was, `keep` what was read, nothing for a file
    ///   that can't be read.
    TARN_EXPORT LoadReport load(std::string_view fileName, OnDamage onDamage = OnDamage::restore,
                                const ProgressFunction& progress = {});

    /// Saves the set under a temporary name in the same folder and replaces the old file.
    /// - Bad input: a failure leaves the old file and no temporary one; `noForm` is a value of tag 16, 20, 21 or
    ///   22, also inside a vector.  Only after `cantReplace` the new file may be there already, where the folder
    ///   couldn't be written through to the disk.
    [[nodiscard]] TARN_EXPORT SaveReport save(std::string_view fileName,
                                              Durability durability = Durability::durable) const;

    /// Answers whether the record exists.
    [[nodiscard]] TARN_EXPORT bool contains(RecordKey key) const;
    /// Answers how many values the record has, 0 for one that isn't there.
    [[nodiscard]] TARN_EXPORT std::int32_t size(RecordKey key) const;
    /// Answers a value, nothing for one that was never stored and for a place that isn't there.  The view is
    /// valid until the value is replaced, or the set loaded again or destroyed.
    [[nodiscard]] TARN_EXPORT ValueView at(RecordKey key, std::int32_t repeat) const;
    /// Stores a copy of a value.  The record is made, and gets as many places, as needed.
    /// - Bad input: a repeat below 0, and 2^31 - 1, change nothing.
    TARN_EXPORT void set(RecordKey key, std::int32_t repeat, const Value& value);

    /// Answers the set for functions of the documented interface.
    [[nodiscard]] tarnIndexDataFile& raw() noexcept { return file_; }

  private:
    mutable tarnIndexDataFile file_;
};

}  // namespace tarn
