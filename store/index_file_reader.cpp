// Reading an indexed data file.  The file is read whole and walked once, in sequence, by a cursor that never
// passes the end.  What the file promises is held against what it has: every value takes at least 8 bytes, so
// a budget of one place for each 8 bytes, and some to spare, runs down over all repeats and all vectors.
// Tests: tests/store/index_data_file_test.cpp.

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>

#include "base/byte_order.h"
#include "core/string.h"
#include "core/value_owner.h"
#include "platform/win32.h"
#include "store/index_data_file.h"
#include "store/index_format.h"
#include "store/whole_file.h"

namespace {

using namespace tarn::indexfile;
using tarn::loadWord;
using tarn::OwnedValue;

constexpr int deepestVector = 64;
constexpr std::uint64_t sparePlaces = 1'000'000;

using Bytes = std::span<const unsigned char>;

std::int32_t signedWord(const unsigned char* bytes) {
    return static_cast<std::int32_t>(loadWord(bytes));
}

// The values of the data block, one after the other.
class ValueReader {
  public:
    ValueReader(Bytes content, std::uint64_t places) : rest_(content), places_(places) {}

    // Fills an empty value.  A value that isn't whole leaves it empty and ends the content.
    void read(MOLTVARIANT& value) {
        if (!readValue(value, 1)) end(value);
    }
    [[nodiscard]] bool atEnd() const { return rest_.empty(); }

  private:
    void end(MOLTVARIANT& value) {
        value.destroyContent();
        rest_ = {};
    }

    // Takes bytes from the front of the rest, which has to have as many.
    const unsigned char* take(std::size_t count) {
        const unsigned char* const bytes = rest_.data();
        rest_ = rest_.subspan(count);
        return bytes;
    }

    bool readValue(MOLTVARIANT& value, int depth);
    bool readText(MOLTVARIANT& value, std::int32_t tag, std::size_t size);
    bool readWideText(MOLTVARIANT& value, std::size_t size);
    bool readVector(MOLTVARIANT& value, int depth);
    bool readBlob(MOLTVARIANT& value);
    bool readPlain(MOLTVARIANT& value, std::int32_t tag, std::size_t size);
    bool passOver(std::uint64_t values);

    Bytes rest_;
    std::uint64_t places_;
};

// The readers of one form answer whether the value is whole.

bool ValueReader::readValue(MOLTVARIANT& value, int depth) {
    if (rest_.size() < prefixSize) return false;
    const unsigned char* const prefix = take(prefixSize);
    const std::int32_t tag = signedWord(prefix);
    const std::size_t size = loadWord(prefix + wordSize);
    if (tag == tagVector) return readVector(value, depth);
    if (tag == tagBlob) return readBlob(value);
    if (size > rest_.size()) return false;
    if (tag == tagText || tag == tagString) return readText(value, tag, size);
    if (tag == tagWideText) return readWideText(value, size);
    return readPlain(value, tag, size);
}

bool ValueReader::readText(MOLTVARIANT& value, std::int32_t tag, std::size_t size) {
    const auto* const bytes = reinterpret_cast<const char*>(take(size));
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

bool ValueReader::readWideText(MOLTVARIANT& value, std::size_t size) {
    const unsigned char* const bytes = take(size);
    const std::size_t units = size / 2;
    if (units != 0) {
        value.payload.wideText = new char16_t[units + 1]();
        for (std::size_t i = 0; i < units; ++i) {
            value.payload.wideText[i] = static_cast<char16_t>(tarn::loadLittleEndian(bytes + 2 * i, 2));
        }
    }
    value.tag = tagWideText;
    return true;
}

bool ValueReader::readVector(MOLTVARIANT& value, int depth) {
    if (rest_.size() < wordSize) return false;
    const std::uint32_t count = loadWord(take(wordSize));
    if (depth > deepestVector) return passOver(count);
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

bool ValueReader::readBlob(MOLTVARIANT& value) {
    if (rest_.size() < wordSize) return false;
    const std::uint32_t length = loadWord(take(wordSize));
    if (length > rest_.size() || length > INT32_MAX) return false;
    value.payload.blob.data = new unsigned char[length];
    value.payload.blob.length = static_cast<std::int32_t>(length);
    value.tag = tagBlob;
    std::copy_n(take(length), length, value.payload.blob.data);
    return true;
}

bool ValueReader::readPlain(MOLTVARIANT& value, std::int32_t tag, std::size_t size) {
    unsigned char payload[payloadSize] = {};
    std::copy_n(take(size), std::min(size, payloadSize), payload);
    if (hasNoForm(tag)) return true;
    exchangePayload(payload, tag);
    std::memcpy(value.payload.plain, payload, payloadSize);
    value.tag = tag;
    return true;
}

// Walks over values without keeping them, vectors of any depth included.
bool ValueReader::passOver(std::uint64_t values) {
    for (; values > 0; --values) {
        if (rest_.size() < prefixSize) return false;
        const unsigned char* const prefix = take(prefixSize);
        const std::int32_t tag = signedWord(prefix);
        std::size_t size = loadWord(prefix + wordSize);
        if (tag == tagVector || tag == tagBlob) {
            if (rest_.size() < wordSize) return false;
            const std::uint32_t count = loadWord(take(wordSize));
            size = tag == tagBlob ? count : 0;
            if (tag == tagVector) values += count;
        }
        if (size > rest_.size()) return false;
        take(size);
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

int tarnIndexDataFile::readIndexDataFile(const char* fileName) {
    clearIndexData();
    const tarn::WholeFile file =
        tarn::readWholeFile(fileName, 0, FILE_ATTRIBUTE_NORMAL, 0, tarn::longestUnsigned);
    if (file.data == nullptr) return 0;
    readContent(reinterpret_cast<const unsigned char*>(file.data.get()), file.size);
    return 1;
}

void tarnIndexDataFile::readContent(const unsigned char* content, std::size_t size) {
    header_ = {};
    Bytes rest(content, size);
    if (rest.empty() || rest.front() != marker) return;
    rest = rest.subspan(1);

    // The header is as long as its own first word says, up to the three words that it has.
    unsigned char header[headerSize] = {};
    std::copy_n(rest.data(), std::min(rest.size(), wordSize), header);
    const std::size_t stated = loadWord(header);
    std::copy_n(rest.data(), std::min({rest.size(), stated, sizeof header}), header);
    header_ = {signedWord(header), signedWord(header + 4), signedWord(header + 8)};
    const std::size_t recordCount = loadWord(header + 8);
    if (recordCount == 0 || stated > rest.size()) return;
    rest = rest.subspan(stated);

    if (recordCount > rest.size() / indexRecordSize) return;
    std::vector<_IndexRecord> index = readIndex(rest.first(recordCount * indexRecordSize));
    rest = rest.subspan(recordCount * indexRecordSize);

    std::uint64_t places = rest.size() / prefixSize + sparePlaces;
    records_.reserve(index.size());
    for (_IndexRecord& record : index) {
        const std::uint64_t promised = static_cast<std::uint64_t>(std::max(record.repeats, 0));
        if (promised > places) record.repeats = static_cast<std::int32_t>(places);
        const auto repeats = static_cast<std::size_t>(std::min(promised, places));
        places -= repeats;
        records_.push_back({record, std::vector<MOLTVARIANT*>(repeats)});
    }

    ValueReader reader(rest, places);
    for (Record& record : records_) {
        for (MOLTVARIANT*& value : record.values) {
            if (reader.atEnd()) return;
            value = new MOLTVARIANT;
            reader.read(*value);
        }
    }
}
