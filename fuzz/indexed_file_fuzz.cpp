// The indexed data file: the set reads what the plain reader of docs/file-formats.md reads, within its
// memory, and so does the record, in all three modes.  The first byte of an input is the mode, the rest is
// the file behind its marker.

#include "engine/engine_data.h"
#include "fuzz/property.h"
#include "fuzz/record_file.h"
#include "store/index_data_file.h"

namespace {

using tarnfuzz::require;
using tarntest::Owned;

struct PlainRecord {
    std::int32_t id, type;
    std::int32_t told;      // repeats that it answers
    std::uint64_t repeats;  // places that it has
    std::vector<Owned> values;
};

// Walks over a file by copies of its parts.  What isn't there ends the file.
class PlainReader {
  public:
    // As a file that is saved holds no more than a long's number, the rest of its payload may be left out.
    explicit PlainReader(std::string file, bool asSaved = false)
        : file_(std::move(file)), asSaved_(asSaved) {}

    std::vector<PlainRecord> records();

  private:
    std::size_t left() { return file_.size() - at_; }
    bool has(std::uint64_t bytes) { return left() >= bytes; }
    std::string take(std::size_t bytes) {
        const std::string front = file_.substr(at_, bytes);
        at_ += front.size();
        return front;
    }
    static std::uint32_t word(const std::string& bytes, std::size_t at = 0) {
        std::uint32_t number = 0;
        for (std::size_t i = 4; i > 0; --i)
            number = number * 256 +
                     (at + i - 1 < bytes.size() ? static_cast<unsigned char>(bytes[at + i - 1]) : 0);
        return number;
    }
    std::vector<PlainRecord> index();
    bool value(Owned& value, int depth, bool kept = true);
    bool vectorElements(Owned& value, int depth, bool kept);

    std::string file_;
    std::size_t at_ = 0;
    bool asSaved_;
    std::uint64_t places_ = 0;
};

std::vector<PlainRecord> PlainReader::index() {
    std::vector<PlainRecord> records;
    take(1);
    const std::size_t headerSize = word(file_, at_);
    const std::string header = file_.substr(at_, std::min<std::size_t>(headerSize, 12));
    const std::uint64_t count = word(header, 8);
    if (!has(headerSize)) return records;
    take(headerSize);
    if (!has(16 * count)) return records;
    const std::string block = take(16 * static_cast<std::size_t>(count));
    places_ = 1'000'000 + left() / 8;
    for (std::size_t at = 0; at < block.size(); at += 16) {
        PlainRecord record{static_cast<std::int32_t>(word(block, at)),
                           static_cast<std::int32_t>(word(block, at + 4)),
                           static_cast<std::int32_t>(word(block, at + 8)),
                           0,
                           {}};
        const auto isSame = [&](const PlainRecord& other) {
            return other.id == record.id && other.type == record.type;
        };
        if (std::any_of(records.begin(), records.end(), isSame)) continue;
        if (record.told > 0)
            record.repeats = std::min<std::uint64_t>(places_, static_cast<std::uint64_t>(record.told));
        if (record.told > 0) record.told = static_cast<std::int32_t>(record.repeats);
        places_ -= record.repeats;
        records.push_back(std::move(record));
    }
    return records;
}

std::vector<PlainRecord> PlainReader::records() {
    std::vector<PlainRecord> records = index();
    for (PlainRecord& record : records) {
        for (std::uint64_t i = 0; i < record.repeats && left() > 0; ++i) {
            Owned read;
            if (!value(read, 1)) {
                read.destroyContent();
                at_ = file_.size();
            }
            record.values.push_back(std::move(read));
        }
    }
    return records;
}

// A value that isn't kept stands in a vector that lies too deep.
bool PlainReader::value(Owned& value, int depth, bool kept) {
    if (!has(8)) return false;
    const std::string prefix = take(8);
    const auto tag = static_cast<std::int32_t>(word(prefix));
    std::size_t size = word(prefix, 4);
    if (tag == tagVector) return vectorElements(value, depth, kept);
    if (tag == tagBlob) {
        if (!has(4)) return false;
        size = word(take(4));
    }
    if (!has(size)) return false;
    std::string bytes = take(size);
    if (!kept || tag == tagBlock || tag == tagList || tag == tagMulti || tag == tagRecord) return true;
    if (tag == tagBlob) {
        value = tarntest::blob(bytes);
    } else if (tag == tagText) {
        value = tarntest::text(size == 0 ? nullptr : bytes.c_str());
    } else if (tag == tagString) {
        value = tarntest::text(bytes.c_str(), tagString);
    } else if (tag == tagWideText) {
        std::u16string units;
        for (std::size_t i = 0; i + 1 < size; i += 2)
            units += static_cast<char16_t>(word(bytes.substr(i, 2)));
        if (size > 1) value = tarntest::wideText(units);
        value.tag = tagWideText;
    } else {
        if (asSaved_ && (tag == tagLong || tag == tagNumber)) bytes.resize(4);
        bytes.resize(8);
        std::memcpy(value.payload.plain, bytes.data(), 8);
        value.tag = tag;
    }
    return true;
}

bool PlainReader::vectorElements(Owned& value, int depth, bool kept) {
    constexpr int deepest = 64;
    if (!has(4)) return false;
    const std::uint64_t count = word(take(4));
    kept = kept && depth <= deepest;
    if (kept && (count > places_ || !has(8 * count))) return false;
    if (kept) places_ -= count;
    std::vector<Owned> elements;
    for (std::uint64_t i = 0; i < count; ++i) {
        Owned element;
        const bool isWhole = this->value(element, depth + 1, kept);
        elements.push_back(std::move(element));
        if (!isWhole) return false;
    }
    if (!kept) return true;
    value.payload.vector = new MOLTVARIANT*[elements.size() + 1]();
    value.tag = tagVector;
    for (std::size_t i = 0; i < elements.size(); ++i) value.payload.vector[i] = elements[i].release();
    return true;
}

// What place `i` of a record holds: an empty value where it was promised alone.
std::string shownAt(const PlainRecord& record, std::size_t i) {
    static const Owned none;
    return tarntest::describe(i < record.values.size() ? &record.values[i] : &none);
}

void checkSet(tarnIndexDataFile& set, const std::vector<PlainRecord>& records) {
    for (const PlainRecord& record : records) {
        require(set.checkIndexRecord(record.id, record.type) == 1, "a record is there");
        require(set.getNumberRepeats(record.id, record.type) == record.told, "with its repeats");
        const std::uint64_t end = std::min<std::uint64_t>(record.repeats, record.values.size() + 2);
        for (std::size_t i = 0; i < end; ++i) {
            MOLTVARIANT* value = nullptr;
            set.getDataRecord(record.id, record.type, static_cast<std::int32_t>(i), &value);
            tarnfuzz::requireSame(tarntest::describe(value), shownAt(record, i), "and its values");
        }
    }
}

// What the record makes of the set: a field of each type 0, a column of each type 1 with any cell.
tarnfuzz::PlainFile fileOf(std::vector<PlainRecord> records) {
    tarnfuzz::PlainFile file;
    for (PlainRecord& record : records) {
        if (record.type != 0 || record.repeats == 0) continue;
        file.fields.push_back({record.id, record.values.empty() ? Owned() : std::move(record.values[0])});
    }
    for (PlainRecord& record : records) {
        if (record.type != 1) continue;
        for (std::size_t row = 0; row < record.values.size(); ++row) {
            if (record.values[row].tag == tagEmpty) continue;
            file.cells.push_back({record.id, static_cast<std::int32_t>(row), std::move(record.values[row])});
        }
    }
    return file;
}

void checkSavedSet(tarnIndexDataFile& set, const std::vector<PlainRecord>& records) {
    static const tarnfuzz::MemoryFile saved;
    require(set.writeIndexDataFile(saved.path()) == 1, "a set saves");
    const std::string once = saved.content();
    const std::vector<PlainRecord> read = PlainReader(once).records();
    require(read.size() == records.size(), "what is saved has all records");
    for (std::size_t i = 0; i < read.size(); ++i) {
        require(read[i].id == records[i].id && read[i].type == records[i].type, "in their order");
        require(read[i].repeats == records[i].repeats, "with their repeats");
        for (std::size_t k = 0; k < read[i].repeats; ++k)
            tarnfuzz::requireSame(shownAt(read[i], k), shownAt(records[i], k), "and their values");
    }
    tarnIndexDataFile loaded;
    require(loaded.readIndexDataFile(saved.path()) == 1, "a saved set loads");
    require(loaded.writeIndexDataFile(saved.path()) == 1, "and saves again");
    require(saved.content() == once, "to the same bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tarnfuzz::MemoryFile file;
    tarnfuzz::Input input(data, size);
    const auto mode = static_cast<eLoadType>(input.byte() % 3);
    const std::string bytes = '@' + input.rest();
    std::vector<PlainRecord> records = PlainReader(bytes).records();
    std::uint64_t places = 0;
    for (const PlainRecord& record : records) places += record.repeats;
    file.fill(bytes);

    tarnIndexDataFile set;
    const tarnfuzz::MemoryWatch watch;
    require(set.readIndexDataFile(file.path()) == 1, "any file is read");
    watch.requireWithin(32, bytes.size());
    checkSet(set, records);
    // Of the files that promise much a third goes on into a record.
    constexpr std::uint64_t mostPlaces = 20'000;
    if (places > mostPlaces && mode != loadAppend) return 0;
    if (places <= mostPlaces) checkSavedSet(set, PlainReader(bytes, true).records());
    const tarnfuzz::PlainFile meant = fileOf(std::move(records));
    tarnfuzz::checkLoading(file.path(), bytes.size(), 32, meant, meant, mode);
    return 0;
}
