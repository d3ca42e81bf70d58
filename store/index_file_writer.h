#pragma once

// Internal: writes an indexed data file.  Users want tarnIndexDataFile in store/index_data_file.h; the engine
// record saves itself through this writer too, straight from its fields.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/variant.h"
#include "store/file_handle.h"
#include "store/index_data_file.h"
#include "store/load_report.h"
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
// finish.  After a failure everything else does nothing, and finish answers false.
//
// A file that would become longer than a reader takes is such a failure, and leaves what has its name
// untouched.  So the first 64 MiB are held in memory, and what becomes longer is measured before the file is
// created: adding up all lengths costs a third of a save.
class IndexFileWriter {
  public:
    using Measure = std::function<std::uint64_t()>;

    // `index` gives all records in order and takes the offsets, `measure` answers the length of the whole
    // file.  The name and the index have to outlive the writer.
    IndexFileWriter(const char* fileName, std::vector<_IndexRecord>& index, Measure measure);
    IndexFileWriter(const IndexFileWriter&) = delete;
    IndexFileWriter& operator=(const IndexFileWriter&) = delete;
    ~IndexFileWriter() = default;

    void beginRecord();
    // NULL writes an empty value.
    void writeValue(const MOLTVARIANT* value);
    // None for a count below 1.
    void writeEmptyValues(std::int32_t count);
    // Answers whether the file is whole.
    //   isFlushed  also writes it through to the disk
    bool finish(bool isFlushed = false);

    // After finish: what failed.
    [[nodiscard]] const SaveReport& report() const { return report_; }

  private:
    // A chunk that waits for the file to be created.
    struct Piece {
        std::unique_ptr<unsigned char[]> bytes;
        std::size_t size;
    };

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
    void require(bool isDone, SaveError error);
    void createFile(std::uint64_t length);
    void writeOut(const unsigned char* bytes, std::size_t count);
    void flush();

    static constexpr std::size_t chunk = 65536;
    static constexpr std::size_t mostHeld = 1024;  // chunks

    const char* fileName_;
    std::vector<_IndexRecord>& index_;
    Measure measure_;
    std::optional<FileHandle> file_;  // once it is created
    SaveReport report_;
    std::vector<Piece> held_;
    std::size_t records_ = 0;   // begun
    std::uint32_t offset_ = 0;  // of the next value, as an index record counts it
    std::size_t used_ = 0;
    std::unique_ptr<unsigned char[]> buffer_;
};

// Writes a whole file, but none longer than a reader takes.  `putValues` gives the values of all records of
// `index` to the measure or the writer that it is handed; `index` takes the offsets.
template <class PutValues>
SaveReport writeIndexFile(const char* fileName, std::vector<_IndexRecord>& index, const PutValues& putValues,
                          bool isFlushed) {
    IndexFileWriter writer(fileName, index, [&] {
        IndexFileMeasure measure(index.size());
        putValues(measure);
        return measure.length();
    });
    putValues(writer);
    writer.finish(isFlushed);
    return writer.report();
}
template <class PutValues>
bool writeIndexFile(const char* fileName, std::vector<_IndexRecord>& index, const PutValues& putValues) {
    return static_cast<bool>(writeIndexFile(fileName, index, putValues, false));
}

}  // namespace tarn
