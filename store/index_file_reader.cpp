// Reading an indexed data file.  The file is read whole and walked once, in sequence, by a cursor that never
// passes the end.  What the file promises is held against what it has: every value takes at least 8 bytes, so
// a budget of one place for each 8 bytes, and some to spare, runs down over all repeats and all vectors.
// Tests: tests/store/index_data_file_test.cpp.

#include "store/index_file_reader.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "base/byte_order.h"
#include "core/string.h"
#include "platform/win32.h"
#include "store/index_format.h"

namespace tarn {

using namespace indexfile;

namespace {

constexpr int deepestVector = 64;
constexpr std::uint64_t sparePlaces = 1'000'000;

using Bytes = std::span<const unsigned char>;

std::int32_t signedWord(const unsigned char* bytes) {
    return static_cast<std::int32_t>(loadWord(bytes));
}

// Takes bytes from the front of the rest, which has to have as many.
const unsigned char* take(Bytes& rest, std::size_t count) {
    const unsigned char* const bytes = rest.data();
    rest = rest.subspan(count);
    return bytes;
}

// Walks over values without keeping them, vectors of any depth included.  Answers whether they are whole.
bool passOver(Bytes& rest, std::uint64_t values) {
    for (; values > 0; --values) {
        if (rest.size() < prefixSize) return false;
        const unsigned char* const prefix = take(rest, prefixSize);
        const std::int32_t tag = signedWord(prefix);
        std::size_t size = loadWord(prefix + wordSize);
        if (tag == tagVector || tag == tagBlob) {
            if (rest.size() < wordSize) return false;
            const std::uint32_t count = loadWord(take(rest, wordSize));
            size = tag == tagBlob ? count : 0;
            if (tag == tagVector) values += count;
        }
        if (size > rest.size()) return false;
        take(rest, size);
    }
    return true;
}

// The records of an index block, each pair of keys once, in their order.
//   firstRepeated  out: the place of the first record whose keys are there already, or the number of records
std::vector<_IndexRecord> readIndex(Bytes block, std::size_t& firstRepeated) {
    std::vector<_IndexRecord> records;
    records.reserve(block.size() / indexRecordSize);
    for (; !block.empty(); block = block.subspan(indexRecordSize)) {
        const unsigned char* const bytes = block.data();
        records.push_back(
            {signedWord(bytes), signedWord(bytes + 4), signedWord(bytes + 8), signedWord(bytes + 12)});
    }
    std::vector<std::uint32_t> order(records.size());
    for (std::uint32_t i = 0; i < order.size(); ++i) order[i] = i;
    const auto keys = [&](std::uint32_t i) { return std::pair(records[i].id, records[i].type); };
    std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        return std::pair(keys(a), a) < std::pair(keys(b), b);
    });
    std::vector<bool> repeated(records.size());
    for (std::size_t i = 1; i < order.size(); ++i) repeated[order[i]] = keys(order[i]) == keys(order[i - 1]);
    firstRepeated =
        static_cast<std::size_t>(std::find(repeated.begin(), repeated.end(), true) - repeated.begin());
    std::size_t kept = 0;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (!repeated[i]) records[kept++] = records[i];
    }
    records.resize(kept);
    return records;
}

}  // namespace

IndexFileReader::IndexFileReader(const char* fileName)
    : file_(readWholeFile(fileName, 0, FILE_ATTRIBUTE_NORMAL, 0, longestUnsigned)),
      report_(dropped_),
      content_(reinterpret_cast<const unsigned char*>(file_.data.get()), file_.size),
      rest_(content_) {
    if (!readHead()) rest_ = {};
}

IndexFileReader::IndexFileReader(std::span<const unsigned char> content, LoadReport& report)
    : report_(report), content_(content), rest_(content) {
    report_.fileSize = report_.offset = content.size();
    if (!readHead()) rest_ = {};
}

// ------------------------------------------------------------------------------------------------ reports

// The first error counts.
void IndexFileReader::report(LoadError error, const unsigned char* at) {
    if (report_.error != LoadError::none) return;
    report_.error = error;
    report_.offset = static_cast<std::uint64_t>(at - content_.data());
    if (record_ >= records_.size()) return;
    report_.item = static_cast<std::int32_t>(record_);
    report_.id = records_[record_].id;
    report_.row = records_[record_].repeats - left_;
}

void IndexFileReader::reportRecord(LoadError error, const unsigned char* at, std::size_t index,
                                   std::int32_t id) {
    if (report_.error != LoadError::none) return;
    report(error, at);
    report_.item = static_cast<std::int32_t>(index);
    report_.id = id;
    report_.row = -1;
}

// Goes on to the first record from here on that has values.
void IndexFileReader::findValues() {
    while (record_ < records_.size() && records_[record_].repeats <= 0) ++record_;
    if (record_ < records_.size()) left_ = records_[record_].repeats;
}

void IndexFileReader::finish() {
    if (record_ < records_.size()) return report(LoadError::truncated, content_.data() + content_.size());
    if (report_.error != LoadError::none || rest_.empty()) return;
    report_.skipped = static_cast<std::int64_t>(rest_.size());
    report_.skippedAt = content_.size() - rest_.size();
}

// --------------------------------------------------------------------------------------------------- head

// The header is as long as its own first word says, up to the three words that it has.  Answers false for a file
// without values.
bool IndexFileReader::readHeader() {
    if (rest_.empty() || rest_.front() != marker) {
        report(LoadError::wrongForm, content_.data());
        return false;
    }
    take(rest_, sizeof marker);
    unsigned char header[headerSize] = {};
    std::copy_n(rest_.data(), std::min(rest_.size(), wordSize), header);
    const std::size_t stated = loadWord(header);
    std::copy_n(rest_.data(), std::min({rest_.size(), stated, sizeof header}), header);
    header_ = {signedWord(header), signedWord(header + 4), signedWord(header + 8)};
    if (rest_.size() < headerSize) report(LoadError::truncated, rest_.data());
    if (stated < headerSize || stated > rest_.size()) report(LoadError::badHeader, rest_.data());
    if (header_.recordCount == 0 || stated > rest_.size()) return false;
    take(rest_, stated);
    return true;
}

bool IndexFileReader::readHead() {
    if (!readHeader()) return false;
    const auto recordCount = static_cast<std::uint32_t>(header_.recordCount);
    const std::size_t whole = rest_.size() / indexRecordSize;
    if (recordCount > whole) {
        reportRecord(LoadError::truncated, rest_.data() + whole * indexRecordSize, whole, 0);
        return false;
    }
    const unsigned char* const block = take(rest_, recordCount * indexRecordSize);
    std::size_t firstRepeated = recordCount;
    records_ = readIndex({block, recordCount * indexRecordSize}, firstRepeated);
    if (firstRepeated < recordCount) {
        const unsigned char* const at = block + firstRepeated * indexRecordSize;
        reportRecord(LoadError::badIndex, at, firstRepeated, signedWord(at));
    }
    report_.fields = static_cast<std::int32_t>(records_.size());
    limitRepeats();
    findValues();
    return true;
}

void IndexFileReader::limitRepeats() {
    places_ = rest_.size() / prefixSize + sparePlaces;
    for (std::size_t i = 0; i < records_.size(); ++i) {
        _IndexRecord& record = records_[i];
        const std::uint64_t promised = static_cast<std::uint64_t>(std::max(record.repeats, 0));
        if (promised > places_) {
            // No record is left out of the block in front, or that has been reported already.
            const std::size_t behind = (records_.size() - i) * indexRecordSize;
            reportRecord(LoadError::badIndex, rest_.data() - behind, i, record.id);
            record.repeats = static_cast<std::int32_t>(places_);
        }
        places_ -= std::min(promised, places_);
    }
}

// ------------------------------------------------------------------------------------------------- values

void IndexFileReader::read(MOLTVARIANT& value) {
    const unsigned char* const begin = rest_.data();
    if (readValue(value, 1)) {
        if (value.tag != tagEmpty) ++report_.values;
        if (--left_ > 0) return;
        ++record_;
        return findValues();
    }
    report(LoadError::truncated, begin);
    value.destroyContent();
    rest_ = {};
}

std::int32_t IndexFileReader::countFilled(std::int32_t most) const {
    Bytes rest = rest_;
    std::int32_t filled = 0;
    for (; most > 0 && rest.size() >= prefixSize; --most) {
        const std::int32_t tag = signedWord(rest.data());
        if (!passOver(rest, 1)) break;
        if (tag != tagEmpty) ++filled;
    }
    return filled;
}

// The readers of one form answer whether the value is whole.

bool IndexFileReader::readValue(MOLTVARIANT& value, int depth) {
    if (rest_.size() < prefixSize) return false;
    const unsigned char* const prefix = take(rest_, prefixSize);
    const std::int32_t tag = signedWord(prefix);
    const std::size_t size = loadWord(prefix + wordSize);
    if (tag == tagVector) return readVector(value, depth);
    if (tag == tagBlob) return readBlob(value);
    if (size > rest_.size()) return false;
    if (tag == tagText || tag == tagString) return readText(value, tag, size);
    if (tag == tagWideText) return readWideText(value, size);
    return readPlain(value, tag, size);
}

bool IndexFileReader::readText(MOLTVARIANT& value, std::int32_t tag, std::size_t size) {
    const auto* const bytes = reinterpret_cast<const char*>(take(rest_, size));
    std::unique_ptr<char[]> text;
    if (size != 0) {
        text.reset(new char[size + (bytes[size - 1] == '\0' ? 0 : 1)]);
        std::memcpy(text.get(), bytes, size);
        if (bytes[size - 1] != '\0') text[size] = '\0';
    }
    if (tag == tagText) {
        value.payload.text = text.release();
    } else {
        value.payload.string = new tarnString(text.get());
    }
    value.tag = tag;
    return true;
}

bool IndexFileReader::readWideText(MOLTVARIANT& value, std::size_t size) {
    const unsigned char* const bytes = take(rest_, size);
    const std::size_t units = size / 2;
    if (units != 0) {
        value.payload.wideText = new char16_t[units + 1]();
        for (std::size_t i = 0; i < units; ++i) {
            value.payload.wideText[i] = static_cast<char16_t>(loadLittleEndian(bytes + 2 * i, 2));
        }
    }
    value.tag = tagWideText;
    return true;
}

bool IndexFileReader::readVector(MOLTVARIANT& value, int depth) {
    if (rest_.size() < wordSize) return false;
    const std::uint32_t count = loadWord(take(rest_, wordSize));
    if (depth > deepestVector) {
        report(LoadError::tooDeep, rest_.data() - prefixSize - wordSize);
        return passOver(rest_, count);
    }
    if (count > places_ || count > rest_.size() / prefixSize) return false;
    places_ -= count;
    value.payload.vector = new MOLTVARIANT*[std::size_t{count} + 1]();
    value.tag = tagVector;
    for (std::uint32_t i = 0; i < count; ++i) {
        value.payload.vector[i] = new MOLTVARIANT;
        if (!readValue(*value.payload.vector[i], depth + 1)) return false;
    }
    return true;
}

bool IndexFileReader::readBlob(MOLTVARIANT& value) {
    if (rest_.size() < wordSize) return false;
    const std::uint32_t length = loadWord(take(rest_, wordSize));
    if (length > rest_.size() || length > INT32_MAX) return false;
    value.payload.blob.data = new unsigned char[length];
    value.payload.blob.length = static_cast<std::int32_t>(length);
    value.tag = tagBlob;
    std::copy_n(take(rest_, length), length, value.payload.blob.data);
    return true;
}

bool IndexFileReader::readPlain(MOLTVARIANT& value, std::int32_t tag, std::size_t size) {
    if (hasNoForm(tag) || size > payloadSize) report(LoadError::badItem, rest_.data() - prefixSize);
    unsigned char payload[payloadSize] = {};
    std::copy_n(take(rest_, size), std::min(size, payloadSize), payload);
    if (hasNoForm(tag)) return true;
    exchangePayload(payload, tag);
    std::memcpy(value.payload.plain, payload, payloadSize);
    value.tag = tag;
    return true;
}

}  // namespace tarn

int tarnIndexDataFile::readIndexDataFile(const char* fileName) {
    clearIndexData();
    tarn::IndexFileReader file(fileName);
    if (!file.isRead()) return 0;
    readRecords(file);
    return 1;
}

void tarnIndexDataFile::readRecords(tarn::IndexFileReader& file) {
    header_ = {file.header().size, file.header().version, file.header().recordCount};
    records_.reserve(file.records().size());
    for (const _IndexRecord& record : file.records()) {
        const auto repeats = static_cast<std::size_t>(std::max(record.repeats, 0));
        records_.push_back({record, std::vector<MOLTVARIANT*>(repeats)});
    }
    for (Record& record : records_) {
        for (MOLTVARIANT*& value : record.values) {
            if (file.atEnd()) return;
            value = new MOLTVARIANT;
            file.read(*value);
        }
    }
}
