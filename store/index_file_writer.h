#pragma once

// Internal: writes an indexed data file.  Users want tarnIndexDataFile in store/index_data_file.h; the engine
// record saves itself through this writer too, straight from its fields.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/variant.h"
#include "store/file_handle.h"
#include "store/index_data_file.h"
#include "store/whole_file.h"

namespace tarn {

// Adds up how long a file becomes, of the same calls that write it.
class IndexFileMeasure {
  public:
    explicit IndexFileMeasure(std::size_t records);

    void beginRecord() {}
    void writeValue(const MOLTVARIANT* value);
    void writeEmptyValues(std::int32_t count);

    [[nodiscard]] std::uint64_t length() const { return length_; }

  private:
    std::uint64_t length_;
};

// Call order: beginRecord before the values of each record of `index`, writeValue for each of its values,
// finish.  After a failure, and a file that becomes longer than a reader takes is one, everything else does
// nothing, and finish answers false.
class IndexFileWriter {
  public:
    // Creates the file, or cuts it to nothing, and writes what is in front of the values.  `index` gives all
    // records in order; it takes the offsets and has to outlive the writer.
    IndexFileWriter(const char* fileName, std::vector<_IndexRecord>& index);
    IndexFileWriter(const IndexFileWriter&) = delete;
    IndexFileWriter& operator=(const IndexFileWriter&) = delete;
    ~IndexFileWriter() = default;

    // False if the file couldn't be created: nothing was touched then.
    [[nodiscard]] bool isOpen() const { return file_.isOpen(); }

    void beginRecord();
    // NULL writes an empty value.
    void writeValue(const MOLTVARIANT* value);
    // None for a count below 1.
    void writeEmptyValues(std::int32_t count);
    bool finish();

  private:
    // Room for at most a chunk in the buffer, to be filled at once.
    unsigned char* reserve(std::size_t bytes) {
        if (bytes > chunk - used_) flush();
        used_ += bytes;
        return buffer_.get() + used_ - bytes;
    }
    void write(const void* bytes, std::size_t count);
    void writeWord(std::uint32_t word);
    void putPrefix(unsigned char* place, std::int32_t tag, std::uint32_t size);
    void writePrefix(std::int32_t tag, std::uint32_t size);
    void writeText(std::int32_t tag, const char* text);
    void writeWideText(const char16_t* text);
    void writeVector(const MOLTVARIANT& value);
    void writePlain(const MOLTVARIANT& value);
    void writeIndex();
    void writeOut(const unsigned char* bytes, std::size_t count);
    void flush();

    static constexpr std::size_t chunk = 65536;

    FileHandle file_;
    bool good_;
    std::vector<_IndexRecord>& index_;
    std::size_t records_ = 0;   // begun
    std::uint32_t offset_ = 0;  // of the next value, as an index record counts it
    std::uint64_t length_ = 0;  // of what was written
    std::size_t used_ = 0;
    std::unique_ptr<unsigned char[]> buffer_;
};

// Adding up the lengths of all values costs a third of a save.  It is worth that where their number alone
// makes a long file, and costs nothing where they are few; else large texts and blobs alone make a file too
// long.
bool isWorthMeasuring(const std::vector<_IndexRecord>& index);

// Writes a whole file, but none longer than a reader takes.  `putValues` gives the measure or the writer that
// it is handed the values of all records of `index`, which takes the offsets.
template <class PutValues>
bool writeIndexFile(const char* fileName, std::vector<_IndexRecord>& index, const PutValues& putValues) {
    IndexFileMeasure measure(index.size());
    if (isWorthMeasuring(index)) putValues(measure);
    if (measure.length() > longestReadable) return false;
    IndexFileWriter writer(fileName, index);
    if (!writer.isOpen()) return false;
    putValues(writer);
    return writer.finish();
}

}  // namespace tarn
