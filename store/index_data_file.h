#pragma once

/// @file
/// A set of keyed records of tagged values in memory, saved to one file and loaded from one.  The engine
/// record's file is such a set; other users keep settings and tables in it.
///
///     tarnIndexDataFile file;
///     file.addIndexRecord(7, 0, 2);            // record (id 7, type 0) with two values
///     file.addDataRecord(7, 0, 1, "abc");      // 1; value 0 stays empty
///     file.writeIndexDataFile("client.dat");   // 1
///
/// A record is known by the pair of `id` and `type`, which is there at most once.  Records keep the order in
/// which they were added, in memory and in the file, so that saving what was just loaded gives the same
/// bytes.  Only a load removes records.  A save writes the whole file anew over the old one, and a save that
/// fails has already destroyed the old content; docs/file-formats.md has the file's bytes.
///
/// Threads: no shared state, and one object belongs to one thread at a time.  A file is open, without
/// sharing, only during the call.

#include <cstdint>
#include <vector>

#include "core/export.h"
#include "core/variant.h"

/// On disk: these four words, little-endian.
struct _IndexRecord {
    std::int32_t id;
    std::int32_t type;
    std::int32_t repeats;  ///< number of values
    std::int32_t offset;   ///< of the first value in the data block; -1 until the first save
};

namespace tarn {
class IndexFileReader;
class KeyedFile;
struct SaveReport;
}  // namespace tarn

/// One set of records.
class TARN_EXPORT tarnIndexDataFile {
  public:
    /// An empty set.
    tarnIndexDataFile();
    tarnIndexDataFile(const tarnIndexDataFile&) = delete;
    tarnIndexDataFile& operator=(const tarnIndexDataFile&) = delete;
    virtual ~tarnIndexDataFile();

    /// @name Records
    /// A missing pair of keys answers 0.
    /// @{

    /// Makes a record of `repeats` empty values, none below 1.  An existing record doesn't change.
    void addIndexRecord(std::int32_t id, std::int32_t type, std::int32_t repeats);

    /// Adds empty values up to `repeats`; a record never shrinks.
    /// - Answers 1 if the record exists.
    std::int32_t updateIndexRecord(std::int32_t id, std::int32_t type, std::int32_t repeats);

    /// Answers 1 if the record exists.
    int checkIndexRecord(std::int32_t id, std::int32_t type);

    /// Stores a copy of a text as a value of tag 10; NULL is an empty text.
    /// - Answers 1 if the record exists, also for a `repeat` out of range, which stores nothing.
    int addDataRecord(std::int32_t id, std::int32_t type, std::int32_t repeat, const char* text);
    /// Stores a deep copy of a value, which may be one that the set holds; NULL is an empty value.
    /// - Answers 1 if the record exists, also for a `repeat` out of range, which stores nothing.
    int addDataRecord(std::int32_t id, std::int32_t type, std::int32_t repeat, const MOLTVARIANT* value);

    /// Reads a value as a text, as convertToString makes it.
    /// - `text`: out, a new text; NULL for a missing record and for a `repeat` out of range
    /// - Answers 1 if the record exists.
    /// - Owner: the caller, delete[].
    int getDataRecord(std::int32_t id, std::int32_t type, std::int32_t repeat, char** text);

    /// Reads a value.
    /// - `value`: out, the stored value itself; NULL for a `repeat` out of range, untouched for a missing
    ///   record
    /// - Answers 1 if the record exists.
    /// - Owner: the set; the value is good until another one is stored in its place, or the set is loaded
    ///   again or destroyed.
    int getDataRecord(std::int32_t id, std::int32_t type, std::int32_t repeat, MOLTVARIANT** value);

    /// Answers the record's `repeats`, a negative one unchanged.
    std::int32_t getNumberRepeats(std::int32_t id, std::int32_t type);

    /// Answers how many records have this type.
    std::int32_t getNumberIndexRecords(std::int32_t type);
    /// @}

    /// @name File
    /// @{

    /// Saves the set.  A value that was never stored takes 16 bytes.  Values of tags 16, 20, 21 and 22 have
    /// no form in a file and are written as empty ones.  Vectors nested deeper than 64 are written whole, but
    /// a reader takes them for empty values.
    /// - Answers 1, or 0 if the file can't be created or a write fails.  What was written until then stays;
    ///   the old content is gone.  It also answers 0 if the file would become longer than readIndexDataFile
    ///   takes; nothing is touched then.
    int writeIndexDataFile(const char* fileName);

    /// Replaces the set by a file's content.  Any content is safe to read:
    /// - A header larger than 12 bytes is skipped to its end.
    /// - An index block that the file doesn't hold whole gives no records.  Of records with the same pair of
    ///   keys only the first is read.
    /// - A value that the file doesn't hold whole reads as an empty value, and so does every one behind it.
    /// - Vectors nest 64 deep; a deeper one reads as an empty value.
    /// - A value of tag 16, 20, 21 or 22 reads as an empty value; of another tag no more than its 8 bytes are
    ///   kept.
    /// - Records may promise a million values more than the file can hold; beyond that `repeats` is cut.
    /// - Answers 0 if the file can't be opened, can't be measured, or is longer than 4 GiB less 16 bytes (in
    ///   a 32-bit program 2 GiB less 1), and 1 in every other case, also for a file of another kind: the set
    ///   is then empty.
    int readIndexDataFile(const char* fileName);
    /// @}

  private:
    friend class tarn::KeyedFile;

    // A value that was never stored is a NULL entry until somebody asks for it.
    struct Record {
        _IndexRecord index;
        std::vector<MOLTVARIANT*> values;
    };

    struct Header {
        std::int32_t size, version, recordCount;
    };

    TARN_HIDDEN void clearIndexData();
    TARN_HIDDEN std::int32_t findIndexRecord(std::int32_t id, std::int32_t type);
    TARN_HIDDEN Record* findRecord(std::int32_t id, std::int32_t type);
    TARN_HIDDEN void readRecords(tarn::IndexFileReader& file);
    TARN_HIDDEN tarn::SaveReport writeRecords(const char* fileName, bool isFlushed);
    TARN_HIDDEN int store(std::int32_t id, std::int32_t type, std::int32_t repeat, const MOLTVARIANT* value);

    std::vector<Record> records_;
    std::int32_t lastFound_ = 0;  // where the next search looks first
    Header header_;               // of the last write or read
};
