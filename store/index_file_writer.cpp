// Writing an indexed data file in one pass.  The index block is in front of the values but needs their
// lengths, so it is written first with offsets of 0 and once more, over itself, when the values are out.
// Everything passes through chunks of memory; only a payload larger than a chunk is written by itself.
// Tests: tests/store/index_data_file_test.cpp.

#include "store/index_file_writer.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "base/byte_order.h"
#include "core/value_text.h"
#include "store/index_format.h"

namespace tarn {

using namespace indexfile;

namespace {

bool isStoredEmpty(const MOLTVARIANT* value) {
    return value == nullptr || hasNoForm(value->tag);
}

std::size_t blobLength(const MOLTVARIANT& blob) {
    const bool empty = blob.payload.blob.data == nullptr || blob.payload.blob.length < 0;
    return empty ? 0 : static_cast<std::size_t>(blob.payload.blob.length);
}

// What texts take in a file, nothing for NULL.
std::uint64_t textBytes(const char* text) {
    return text == nullptr ? 0 : std::strlen(text) + 1;
}
std::uint64_t textBytes(const char16_t* text) {
    return text == nullptr ? 0 : 2 * (std::uint64_t{std::char_traits<char16_t>::length(text)} + 1);
}

template <class Function>
void forEachElement(MOLTVARIANT* const* vector, const Function& function) {
    for (; vector != nullptr && *vector != nullptr; ++vector) function(*vector);
}

// The number in the size word.
std::uint64_t storedSize(const MOLTVARIANT* value) {
    if (isStoredEmpty(value)) return payloadSize;
    switch (value->tag) {
        case tagText:
        case tagString: return textBytes(textOf(*value));
        case tagWideText: return textBytes(value->payload.wideText);
        case tagBlob: return blobLength(*value) + wordSize;
        case tagVector: {
            std::uint64_t size = 0;
            forEachElement(value->payload.vector,
                           [&](const MOLTVARIANT* element) { size += storedSize(element); });
            return size;
        }
        case tagLong:
        case tagNumber: return wordSize;
        default: return payloadSize;
    }
}

// All bytes of a value.
std::uint64_t storedLength(const MOLTVARIANT* value) {
    if (isStoredEmpty(value) || value->tag != tagVector) return prefixSize + storedSize(value);
    std::uint64_t length = prefixSize + wordSize;
    forEachElement(value->payload.vector,
                   [&](const MOLTVARIANT* element) { length += storedLength(element); });
    return length;
}

}  // namespace

IndexFileMeasure::IndexFileMeasure(std::size_t records)
    : length_(sizeof marker + headerSize + std::uint64_t{records} * indexRecordSize) {}

void IndexFileMeasure::writeValue(const MOLTVARIANT* value) {
    length_ += storedLength(value);
}

void IndexFileMeasure::writeEmptyValues(std::int32_t count) {
    if (count > 0) length_ += static_cast<std::uint64_t>(count) * (prefixSize + payloadSize);
}

IndexFileWriter::IndexFileWriter(const char* fileName, std::vector<_IndexRecord>& index, Measure measure)
    : fileName_(fileName), index_(index), measure_(std::move(measure)), buffer_(new unsigned char[chunk]) {
    for (_IndexRecord& record : index_) record.offset = 0;
    writeIndex();
}

void IndexFileWriter::writeIndex() {
    *reserve(1) = marker;
    writeWord(headerSize);
    writeWord(formatVersion);
    writeWord(static_cast<std::uint32_t>(index_.size()));
    for (const _IndexRecord& record : index_) {
        writeWord(static_cast<std::uint32_t>(record.id));
        writeWord(static_cast<std::uint32_t>(record.type));
        writeWord(static_cast<std::uint32_t>(record.repeats));
        writeWord(static_cast<std::uint32_t>(record.offset));
    }
}

void IndexFileWriter::beginRecord() {
    index_[records_++].offset = static_cast<std::int32_t>(offset_);
}

bool IndexFileWriter::finish(bool isFlushed) {
    flush();
    if (!file_.has_value()) createFile(held_.size() * chunk);
    if (report_) require(SetFilePointer(file_->get(), 0, nullptr, FILE_BEGIN) == 0, SaveError::cantWrite);
    writeIndex();
    flush();
    if (report_ && isFlushed) require(FlushFileBuffers(file_->get()) != FALSE, SaveError::cantWrite);
    return static_cast<bool>(report_);
}

// The first failure counts.
void IndexFileWriter::require(bool isDone, SaveError error) {
    if (isDone || !report_) return;
    report_.error = error;
    report_.system = GetLastError();
}

void IndexFileWriter::createFile(std::uint64_t length) {
    const bool isReadable = length <= longestReadable;
    file_.emplace(isReadable ? fileName_ : nullptr, GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    if (isReadable) {
        require(file_->isOpen(), SaveError::cantCreate);
    } else {
        report_.error = SaveError::tooLarge;
    }
    for (const Piece& piece : held_) writeOut(piece.bytes.get(), piece.size);
    held_.clear();
}

void IndexFileWriter::writeOut(const unsigned char* bytes, std::size_t count) {
    if (!file_.has_value()) createFile(measure_());
    if (!report_) return;
    DWORD written = 0;
    const bool isWritten = WriteFile(file_->get(), bytes, static_cast<DWORD>(count), &written, nullptr) != 0;
    if (isWritten && written != count) SetLastError(ERROR_DISK_FULL);
    require(isWritten && written == count, SaveError::cantWrite);
}

void IndexFileWriter::flush() {
    if (used_ == 0) return;
    if (!file_.has_value() && held_.size() < mostHeld) {
        held_.push_back({std::move(buffer_), used_});
        buffer_.reset(new unsigned char[chunk]);
    } else {
        writeOut(buffer_.get(), used_);
    }
    used_ = 0;
}

void IndexFileWriter::write(const void* bytes, std::size_t count) {
    constexpr std::size_t largestPiece = std::size_t{1} << 30;
    if (count <= chunk) {
        if (count != 0) std::memcpy(reserve(count), bytes, count);
        return;
    }
    flush();
    for (std::size_t done = 0; done < count; done += largestPiece) {
        writeOut(static_cast<const unsigned char*>(bytes) + done, std::min(count - done, largestPiece));
    }
}

void IndexFileWriter::writeWord(std::uint32_t word) {
    storeWord(reserve(wordSize), word);
}

void IndexFileWriter::putPrefix(unsigned char* place, std::int32_t tag, std::uint32_t size) {
    storeWord(place, static_cast<std::uint32_t>(tag));
    storeWord(place + wordSize, size);
    offset_ += size + static_cast<std::uint32_t>(prefixSize);
}

void IndexFileWriter::writePrefix(std::int32_t tag, std::uint32_t size) {
    putPrefix(reserve(prefixSize), tag, size);
}

// Texts are most of what records hold: a short one is written in one piece with its prefix.
void IndexFileWriter::writeText(std::int32_t tag, const char* text) {
    constexpr std::size_t shortText = chunk - prefixSize;
    const auto size = static_cast<std::size_t>(textBytes(text));
    if (size == 0 || size > shortText) {
        writePrefix(tag, static_cast<std::uint32_t>(size));
        return write(text, size);
    }
    unsigned char* const place = reserve(prefixSize + size);
    putPrefix(place, tag, static_cast<std::uint32_t>(size));
    std::memcpy(place + prefixSize, text, size);
}

void IndexFileWriter::writeWideText(const char16_t* text) {
    const std::uint64_t size = textBytes(text);
    writePrefix(tagWideText, static_cast<std::uint32_t>(size));
    for (std::uint64_t i = 0; i < size / 2; ++i) storeLittleEndian(reserve(2), text[i], 2);
}

void IndexFileWriter::writeVector(const MOLTVARIANT& value) {
    std::uint32_t length = 0;
    forEachElement(value.payload.vector, [&](const MOLTVARIANT* /*element*/) { ++length; });
    writePrefix(tagVector, static_cast<std::uint32_t>(storedSize(&value)));
    writeWord(length);
    // As an index record counts, a vector is its elements' payloads and three words.
    const std::uint32_t offset = offset_ + static_cast<std::uint32_t>(wordSize);
    forEachElement(value.payload.vector, [&](const MOLTVARIANT* element) { writeValue(element); });
    offset_ = offset;
}

void IndexFileWriter::writePlain(const MOLTVARIANT& value) {
    const bool word = value.tag == tagLong || value.tag == tagNumber;
    unsigned char payload[payloadSize];
    std::memcpy(payload, value.payload.plain, payloadSize);
    exchangePayload(payload, value.tag);
    const std::size_t size = word ? wordSize : payloadSize;
    writePrefix(value.tag, static_cast<std::uint32_t>(size));
    std::memcpy(reserve(size), payload, size);
}

void IndexFileWriter::writeValue(const MOLTVARIANT* value) {
    if (isStoredEmpty(value)) return writePlain(MOLTVARIANT());
    switch (value->tag) {
        case tagText:
        case tagString: return writeText(value->tag, textOf(*value));
        case tagWideText: return writeWideText(value->payload.wideText);
        case tagVector: return writeVector(*value);
        case tagBlob: {
            const std::size_t length = blobLength(*value);
            writePrefix(tagBlob, static_cast<std::uint32_t>(length + wordSize));
            writeWord(static_cast<std::uint32_t>(length));
            return write(value->payload.blob.data, length);
        }
        default: return writePlain(*value);
    }
}

void IndexFileWriter::writeEmptyValues(std::int32_t count) {
    for (; count > 0 && report_; --count) writeValue(nullptr);
}

}  // namespace tarn

int tarnIndexDataFile::writeIndexDataFile(const char* fileName) {
    return writeRecords(fileName, false) ? 1 : 0;
}

tarn::SaveReport tarnIndexDataFile::writeRecords(const char* fileName, bool isFlushed) {
    std::vector<_IndexRecord> index;
    index.reserve(records_.size());
    for (const Record& record : records_) index.push_back(record.index);
    const auto putValues = [this](auto& target) {
        for (const Record& record : records_) {
            target.beginRecord();
            for (const MOLTVARIANT* const value : record.values) target.writeValue(value);
        }
    };
    const tarn::SaveReport report = tarn::writeIndexFile(fileName, index, putValues, isFlushed);
    if (!report) return report;
    header_ = {static_cast<std::int32_t>(tarn::indexfile::headerSize),
               static_cast<std::int32_t>(tarn::indexfile::formatVersion),
               static_cast<std::int32_t>(records_.size())};
    for (std::size_t i = 0; i < index.size(); ++i) records_[i].index.offset = index[i].offset;
    return report;
}
