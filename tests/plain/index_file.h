#pragma once

// A slow plain reader of an indexed data file (docs/file-formats.md), for tests and fuzz targets.  It walks
// over the file by copies of its parts; what isn't there ends the file.

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/plain/values.h"

namespace tarnplain {

using tarntest::Owned;

struct IndexRecord {
    std::int32_t id, type;
    std::int32_t repeats;       // that it answers
    std::vector<Owned> values;  // those of its places that the file has

    [[nodiscard]] std::size_t places() const { return static_cast<std::size_t>(std::max(repeats, 0)); }
};

class IndexReader {
  public:
    explicit IndexReader(std::string file) : rest_(std::move(file)) {}

    std::vector<IndexRecord> records() {
        std::vector<IndexRecord> records;
        try {
            index(records);
            for (IndexRecord& record : records) {
                for (std::size_t i = 0; i < record.places() && !rest_.empty(); ++i) {
                    record.values.emplace_back();
                    record.values.back() = value(1, true);
                }
            }
        } catch (const EndOfFile&) {  // the value that isn't whole is empty
        }
        return records;
    }

  private:
    struct EndOfFile {};

    std::string take(std::uint64_t bytes) {
        if (bytes > rest_.size()) throw EndOfFile();
        std::string front = rest_.substr(0, static_cast<std::size_t>(bytes));
        rest_.erase(0, front.size());
        return front;
    }
    std::uint32_t word() { return tarn::loadWord(reinterpret_cast<const unsigned char*>(take(4).data())); }
    std::int32_t number() { return static_cast<std::int32_t>(word()); }

    void index(std::vector<IndexRecord>& records);
    Owned value(int depth, bool isKept);
    Owned vectorOf(std::uint32_t count, int depth, bool isKept);
    static Owned valueOf(std::int32_t tag, std::string bytes);

    std::string rest_;
    std::uint64_t places_ = 0;  // that are left for all repeats and elements together
};

inline void IndexReader::index(std::vector<IndexRecord>& records) {
    take(1);
    const std::uint32_t headerSize = word();
    std::string header = take(std::uint64_t{headerSize} - 4);
    header.resize(8);
    const std::uint64_t count = tarn::loadWord(reinterpret_cast<const unsigned char*>(&header[4]));
    IndexReader block(take(16 * count));
    places_ = 1'000'000 + rest_.size() / 8;
    while (!block.rest_.empty()) {
        IndexRecord record{block.number(), block.number(), block.number(), {}};
        block.take(4);
        const bool isKnown = std::any_of(records.begin(), records.end(), [&](const IndexRecord& other) {
            return other.id == record.id && other.type == record.type;
        });
        if (isKnown) continue;
        if (record.repeats > 0)
            record.repeats = static_cast<std::int32_t>(std::min<std::uint64_t>(places_, record.places()));
        places_ -= record.places();
        records.push_back(std::move(record));
    }
}

// A value isn't kept where its vector lies too deep.
inline Owned IndexReader::value(int depth, bool isKept) {
    const std::string prefix = take(8);
    IndexReader words(prefix);
    const std::int32_t tag = words.number();
    if (tag == tagVector) return vectorOf(word(), depth, isKept);
    const std::uint32_t size = tag == tagBlob ? word() : words.word();
    const std::string bytes = take(size);
    return isKept ? valueOf(tag, bytes) : Owned();
}

inline Owned IndexReader::vectorOf(std::uint32_t count, int depth, bool isKept) {
    constexpr int deepest = 64;
    isKept = isKept && depth <= deepest;
    if (isKept && (count > places_ || count > rest_.size() / 8)) throw EndOfFile();
    if (isKept) places_ -= count;
    std::vector<Owned> elements;
    for (std::uint32_t i = 0; i < count; ++i) elements.push_back(value(depth + 1, isKept));
    return isKept ? tarntest::vectorOf(elements) : Owned();
}

inline Owned IndexReader::valueOf(std::int32_t tag, std::string bytes) {
    Owned value;
    switch (tag) {
        case tagBlock:
        case tagList:
        case tagMulti:
        case tagRecord: return value;
        case tagBlob: return tarntest::blob(bytes);
        case tagText: return tarntest::text(bytes.empty() ? nullptr : bytes.c_str());
        case tagString: return tarntest::text(bytes.c_str(), tagString);
        case tagWideText: {
            std::u16string units;
            for (std::size_t i = 1; i < bytes.size(); i += 2) {
                const auto low = static_cast<unsigned char>(bytes[i - 1]);
                units += static_cast<char16_t>(low | static_cast<unsigned char>(bytes[i]) << 8);
            }
            return units.empty() ? tarntest::nothing(tagWideText) : tarntest::wideText(units);
        }
        default:
            bytes.resize(8);
            std::memcpy(value.payload.plain, bytes.data(), 8);
            value.tag = tag;
            return value;
    }
}

}  // namespace tarnplain
