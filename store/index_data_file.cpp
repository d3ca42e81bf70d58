// The records in memory.  A search is a scan of the keys; since records are mostly filled and read in their
// order, the place of the last hit and the one behind it are looked at first.
// Tests: tests/store/index_data_file_test.cpp.

#include "store/index_data_file.h"

#include <algorithm>

#include "core/string.h"
#include "core/value_owner.h"

using tarn::copyOf;
using tarn::OwnedValue;

tarnIndexDataFile::tarnIndexDataFile() : header_{} {}

tarnIndexDataFile::~tarnIndexDataFile() {
    clearIndexData();
}

void tarnIndexDataFile::clearIndexData() {
    for (const Record& record : records_) {
        for (MOLTVARIANT* const value : record.values) {
            const OwnedValue released(value);
        }
    }
    records_.clear();
    lastFound_ = 0;
}

std::int32_t tarnIndexDataFile::findIndexRecord(std::int32_t id, std::int32_t type) {
    const auto matches = [&](const Record& record) {
        return record.index.id == id && record.index.type == type;
    };
    const auto count = static_cast<std::int32_t>(records_.size());
    for (std::int32_t place = lastFound_; place < std::min(lastFound_ + 2, count); ++place) {
        if (matches(records_[static_cast<std::size_t>(place)])) return lastFound_ = place;
    }
    const auto found = std::find_if(records_.begin(), records_.end(), matches);
    return found == records_.end() ? -1 : lastFound_ = static_cast<std::int32_t>(found - records_.begin());
}

tarnIndexDataFile::Record* tarnIndexDataFile::findRecord(std::int32_t id, std::int32_t type) {
    const std::int32_t place = findIndexRecord(id, type);
    return place < 0 ? nullptr : &records_[static_cast<std::size_t>(place)];
}

void tarnIndexDataFile::addIndexRecord(std::int32_t id, std::int32_t type, std::int32_t repeats) {
    if (findIndexRecord(id, type) >= 0) return;
    records_.push_back(
        {{id, type, repeats, -1}, std::vector<MOLTVARIANT*>(static_cast<std::size_t>(std::max(repeats, 0)))});
}

std::int32_t tarnIndexDataFile::updateIndexRecord(std::int32_t id, std::int32_t type, std::int32_t repeats) {
    Record* const record = findRecord(id, type);
    if (record == nullptr) return 0;
    if (repeats > record->index.repeats) {
        // A record that was made with a negative number gets as many values as the difference.
        const auto further =
            static_cast<std::uint32_t>(repeats) - static_cast<std::uint32_t>(record->index.repeats);
        record->values.resize(record->values.size() + further);
        record->index.repeats = repeats;
    }
    return 1;
}

int tarnIndexDataFile::checkIndexRecord(std::int32_t id, std::int32_t type) {
    return findIndexRecord(id, type) >= 0 ? 1 : 0;
}

int tarnIndexDataFile::store(std::int32_t id, std::int32_t type, std::int32_t repeat,
                             const MOLTVARIANT* value) {
    Record* const record = findRecord(id, type);
    if (record == nullptr) return 0;
    if (repeat < 0 || static_cast<std::size_t>(repeat) >= record->values.size()) return 1;
    MOLTVARIANT*& place = record->values[static_cast<std::size_t>(repeat)];
    OwnedValue copy = copyOf(value);
    const OwnedValue old(place);
    place = copy.release();
    return 1;
}

int tarnIndexDataFile::addDataRecord(std::int32_t id, std::int32_t type, std::int32_t repeat,
                                     const char* text) {
    char empty[] = "";
    MOLTVARIANT value;
    value.tag = tagText;
    // Only read: the set makes its own copy.
    value.payload.text = text == nullptr ? empty : const_cast<char*>(text);
    return store(id, type, repeat, &value);
}

int tarnIndexDataFile::addDataRecord(std::int32_t id, std::int32_t type, std::int32_t repeat,
                                     const MOLTVARIANT* value) {
    return store(id, type, repeat, value);
}

int tarnIndexDataFile::getDataRecord(std::int32_t id, std::int32_t type, std::int32_t repeat, char** text) {
    if (text == nullptr) return checkIndexRecord(id, type);
    *text = nullptr;
    MOLTVARIANT* value = nullptr;
    const int exists = getDataRecord(id, type, repeat, &value);
    if (value != nullptr) *text = convertToString(value);
    return exists;
}

int tarnIndexDataFile::getDataRecord(std::int32_t id, std::int32_t type, std::int32_t repeat,
                                     MOLTVARIANT** value) {
    Record* const record = findRecord(id, type);
    if (record == nullptr) return 0;
    if (value == nullptr) return 1;
    *value = nullptr;
    if (repeat < 0 || static_cast<std::size_t>(repeat) >= record->values.size()) return 1;
    MOLTVARIANT*& place = record->values[static_cast<std::size_t>(repeat)];
    if (place == nullptr) place = new MOLTVARIANT;
    *value = place;
    return 1;
}

std::int32_t tarnIndexDataFile::getNumberRepeats(std::int32_t id, std::int32_t type) {
    const Record* const record = findRecord(id, type);
    return record == nullptr ? 0 : record->index.repeats;
}

std::int32_t tarnIndexDataFile::getNumberIndexRecords(std::int32_t type) {
    return static_cast<std::int32_t>(
        std::count_if(records_.begin(), records_.end(),
                      [type](const Record& record) { return record.index.type == type; }));
}
