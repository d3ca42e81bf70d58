// The indexed data file: the set reads what the plain reader reads, within its memory, and so does the
// record, in all three modes.  The first byte of an input is the mode, the rest is the file behind its
// marker.

#include "fuzz/property.h"
#include "fuzz/record_file.h"
#include "store/index_data_file.h"
#include "tests/plain/index_file.h"

namespace {

using tarnfuzz::require;
using tarnplain::IndexReader;
using tarnplain::IndexRecord;
using Records = std::vector<IndexRecord>;

std::size_t placesOf(const Records& records) {
    std::size_t places = 0;
    for (const IndexRecord& record : records) places += record.places();
    return places;
}

void checkSet(tarnIndexDataFile& set, const Records& records) {
    for (const IndexRecord& record : records) {
        require(set.checkIndexRecord(record.id, record.type) == 1, "a record is there");
        require(set.getNumberRepeats(record.id, record.type) == record.repeats, "with its repeats");
        const tarntest::Owned none;  // in the places that were promised alone
        const std::size_t end = std::min(record.places(), record.values.size() + 2);
        for (std::size_t i = 0; i < end; ++i) {
            MOLTVARIANT* value = nullptr;
            set.getDataRecord(record.id, record.type, static_cast<std::int32_t>(i), &value);
            const bool isThere = i < record.values.size();
            tarnfuzz::requireSame(tarntest::readable(value),
                                  tarntest::readable(isThere ? &record.values[i] : &none), "and its values");
        }
    }
}

// What is saved has the same records in the same order, and saves to the same bytes once it is loaded.
void checkSavedSet(tarnIndexDataFile& set, const Records& records) {
    static const tarnfuzz::MemoryFile saved;
    require(set.writeIndexDataFile(saved.path()) == 1, "a set saves");
    const std::string once = saved.content();
    const Records read = IndexReader(once).records();
    const bool isInOrder = std::equal(
        read.begin(), read.end(), records.begin(), records.end(),
        [](const IndexRecord& a, const IndexRecord& b) { return a.id == b.id && a.type == b.type; });
    require(isInOrder, "what is saved has all records in their order");
    tarnIndexDataFile loaded;
    require(loaded.readIndexDataFile(saved.path()) == 1, "a saved set loads");
    checkSet(loaded, records);
    require(loaded.writeIndexDataFile(saved.path()) == 1, "and saves again");
    require(saved.content() == once, "to the same bytes");
}

// What the record makes of the set: a field of each type 0, a column of each type 1 with any cell.
tarnfuzz::PlainFile fileOf(Records records) {
    tarnfuzz::PlainFile file;
    for (IndexRecord& record : records) {
        if (record.type != 0 || record.repeats <= 0) continue;
        if (record.values.empty()) record.values.emplace_back();
        file.fields.emplace_back(record.id, std::move(record.values[0]));
    }
    for (IndexRecord& record : records) {
        if (record.type != 1) continue;
        for (std::size_t row = 0; row < record.values.size(); ++row) {
            if (record.values[row].tag == tagEmpty) continue;
            file.cells.push_back({record.id, static_cast<std::int32_t>(row), std::move(record.values[row])});
        }
    }
    return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tarnfuzz::MemoryFile file;
    tarnfuzz::Input input(data, size);
    const auto mode = static_cast<eLoadType>(input.byte() % 3);
    const std::string bytes = '@' + input.rest();
    Records records = IndexReader(bytes).records();
    const std::size_t places = placesOf(records);
    const std::size_t promised = places * sizeof(void*);
    file.fill(bytes);

    tarnIndexDataFile set;
    const tarnfuzz::MemoryWatch watch;
    require(set.readIndexDataFile(file.path()) == 1, "any file is read");
    watch.requireWithin(32, bytes.size(), promised);
    checkSet(set, records);
    // Of the files that promise much a third goes on into a record.
    constexpr std::size_t mostPlaces = 20'000;
    if (places > mostPlaces && mode != loadAppend) return 0;
    if (places <= mostPlaces) checkSavedSet(set, records);
    const tarnfuzz::PlainFile meant = fileOf(std::move(records));
    tarnfuzz::checkLoading(file.path(), 32, bytes.size(), promised, meant, meant, mode);
    return 0;
}
