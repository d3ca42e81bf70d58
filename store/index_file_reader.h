#pragma once

// Internal: reads an indexed data file.  Users want tarnIndexDataFile in store/index_data_file.h; the engine
// record loads itself through this reader too, straight into its fields.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "core/variant.h"
#include "store/index_data_file.h"
#include "store/load_report.h"
#include "store/whole_file.h"

namespace tarn {

// Call order: read for each value of each record, in their order, until the content ends; finish for a reader
// with a report.
class IndexFileReader {
  public:
    // Reads a file whole, without a report.
    explicit IndexFileReader(const char* fileName);
    // Reads bytes that outlive the reader.  What is wrong with them, and how many values were taken, is added to
    // the report, which outlives the reader too.
    IndexFileReader(std::span<const unsigned char> content, LoadReport& report);
    IndexFileReader(const IndexFileReader&) = delete;
    IndexFileReader& operator=(const IndexFileReader&) = delete;

    // Whether the file could be read at all; one of another kind has no records.
    [[nodiscard]] bool isRead() const { return file_.data != nullptr; }

    struct Header {
        std::int32_t size, version, recordCount;
    };
    [[nodiscard]] const Header& header() const { return header_; }

    // The index, each pair of keys once.  As many values as `repeats` says belong to a record, none if it is
    // negative; what is above the reader's budget has been cut off.
    [[nodiscard]] const std::vector<_IndexRecord>& records() const { return records_; }

    // Values from here on are empty.
    [[nodiscard]] bool atEnd() const { return rest_.empty(); }

    // Fills an empty value.  A value that isn't whole leaves it empty and ends the content.
    void read(MOLTVARIANT& value);

    // Reports values that the file lacks, or bytes that it has behind the last one.
    void finish();

    // How many of the next values, at most `most`, will be there and not empty, as long as the file is sound.
    [[nodiscard]] std::int32_t countFilled(std::int32_t most) const;

  private:
    using Bytes = std::span<const unsigned char>;

    bool readHead();
    bool readHeader();
    void limitRepeats();
    void report(LoadError error, const unsigned char* at);
    void reportRecord(LoadError error, const unsigned char* at, std::size_t index, std::int32_t id);
    void findValues();
    bool readValue(MOLTVARIANT& value, int depth);
    bool readText(MOLTVARIANT& value, std::int32_t tag, std::size_t size);
    bool readWideText(MOLTVARIANT& value, std::size_t size);
    bool readVector(MOLTVARIANT& value, int depth);
    bool readBlob(MOLTVARIANT& value);
    bool readPlain(MOLTVARIANT& value, std::int32_t tag, std::size_t size);

    WholeFile file_;
    LoadReport dropped_;  // of a reader without a report
    LoadReport& report_;
    Bytes content_;
    Header header_{};
    std::vector<_IndexRecord> records_;
    Bytes rest_;                // of the content, from the next value on
    std::uint64_t places_ = 0;  // that are left of the budget
    std::size_t record_ = 0;    // whose value comes next
    std::int32_t left_ = 0;     // of its values
};

}  // namespace tarn
