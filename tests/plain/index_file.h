#pragma once

// A slow plain reader of an indexed data file (docs/file-formats.md), for tests and fuzz targets.  It walks
// over the file by copies of its parts; what isn't there ends the file.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "store/index_format.h"
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
            readIndex(records);
            for (IndexRecord& record : records) {
                for (std::size_t i = 0; i < record.places() && !rest_.empty(); ++i) {
                    record.values.emplace_back();
                    record.values.back() = value(1);
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
    std::uint64_t integer(std::size_t width) {
        return tarn::loadLittleEndian(reinterpret_cast<const unsigned char*>(take(width).data()), width);
    }
    std::uint32_t word() { return static_cast<std::uint32_t>(integer(4)); }
    std::int32_t number() { return static_cast<std::int32_t>(word()); }

    void readIndex(std::vector<IndexRecord>& records) {
        take(1);
        IndexReader header(take(std::uint64_t{word()} - 4) + std::string(8, '\0'));
        header.word();
        IndexReader block(take(std::uint64_t{16} * header.word()));
        places_ = 1'000'000 + rest_.size() / 8;
        while (!block.rest_.empty()) {
            IndexRecord record{block.number(), block.number(), block.number(), {}};
            block.take(4);
            const auto isSame = [&](const auto& it) { return it.id == record.id && it.type == record.type; };
            if (std::any_of(records.begin(), records.end(), isSame)) continue;
            const auto places = std::min<std::uint64_t>(places_, record.places());
            if (record.repeats > 0) record.repeats = static_cast<std::int32_t>(places);
            places_ -= places;
            records.push_back(std::move(record));
        }
    }

    Owned value(int depth) {
        const std::int32_t tag = number();
        const std::uint32_t size = word();
        if (tag == tagVector) return vectorOf(word(), depth);
        const std::string bytes = take(tag == tagBlob ? word() : size);
        if (tag == tagBlock || (tag >= tagList && tag <= tagRecord)) return {};
        if (tag == tagBlob) return tarntest::blob(bytes);
        if (tag == tagString) return tarntest::text(bytes.c_str(), tagString);
        if (tag == tagText) return tarntest::text(bytes.empty() ? nullptr : bytes.c_str());
        if (tag == tagWideText) return wideTextOf(IndexReader(bytes));
        Owned plain = tarntest::eightBytes(tag, bytes.substr(0, 8));
        tarn::indexfile::exchangePayload(plain.payload.plain, tag);
        return plain;
    }
    static Owned wideTextOf(IndexReader bytes) {
        std::u16string units;
        while (bytes.rest_.size() > 1) units += static_cast<char16_t>(bytes.integer(2));
        return units.empty() ? tarntest::nothing(tagWideText) : tarntest::wideText(units);
    }
    // A vector that lies too deep is passed over, whatever it promises.
    Owned vectorOf(std::uint32_t count, int depth) {
        const bool isKept = depth <= 64;
        if (isKept && (count > places_ || count > rest_.size() / 8)) throw EndOfFile();
        if (isKept) places_ -= count;
        std::vector<Owned> elements;
        for (std::uint32_t i = 0; i < count; ++i) elements.push_back(value(depth + 1));
        return isKept ? tarntest::vectorOf(elements) : Owned();
    }

    std::string rest_;
    std::uint64_t places_ = 0;  // that are left for all repeats and elements together
};

}  // namespace tarnplain
