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
std::vector<_IndexRecord> readIndex(Bytes block) {
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
      rest_(reinterpret_cast<const unsigned char*>(file_.data.get()), file_.size) {
    if (!readHead()) rest_ = {};
}

// Answers false for a file without values.
bool IndexFileReader::readHead() {
    if (rest_.empty() || rest_.front() != marker) return false;
    rest_ = rest_.subspan(1);

    // The header is as long as its own first word says, up to the three words that it has.
    unsigned char header[headerSize] = {};
    std::copy_n(rest_.data(), std::min(rest_.size(), wordSize), header);
    const std::size_t stated = loadWord(header);
    std::copy_n(rest_.data(), std::min({rest_.size(), stated, sizeof header}), header);
    header_ = {signedWord(header), signedWord(header + 4), signedWord(header + 8)};
    const std::size_t recordCount = loadWord(header + 8);
    if (recordCount == 0 || stated > rest_.size()) return false;
    rest_ = rest_.subspan(stated);

    if (recordCount > rest_.size() / indexRecordSize) return false;
    records_ = readIndex(rest_.first(recordCount * indexRecordSize));
    rest_ = rest_.subspan(recordCount * indexRecordSize);

    places_ = rest_.size() / prefixSize + sparePlaces;
    for (_IndexRecord& record : records_) {
        const std::uint64_t promised = static_cast<std::uint64_t>(std::max(record.repeats, 0));
        if (promised > places_) record.repeats = static_cast<std::int32_t>(places_);
        places_ -= std::min(promised, places_);
    }
    return true;
}

void IndexFileReader::read(MOLTVARIANT& value) {
    if (readValue(value, 1)) return;
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
    if (depth > deepestVector) return passOver(rest_, count);
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
    header_ = {file.header().size, file.header().version, file.header().recordCount};
    records_.reserve(file.records().size());
    for (const _IndexRecord& record : file.records()) {
        const auto repeats = static_cast<std::size_t>(std::max(record.repeats, 0));
        records_.push_back({record, std::vector<MOLTVARIANT*>(repeats)});
    }
    for (Record& record : records_) {
        for (MOLTVARIANT*& value : record.values) {
            if (file.atEnd()) return 1;
            value = new MOLTVARIANT;
            file.read(*value);
        }
    }
    return 1;
}
