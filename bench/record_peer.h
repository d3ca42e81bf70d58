#pragma once

// What can build, save and load the rows that the record benchmarks work on: our record, the least that the
// machine can do, and the peers.  Each row is two texts, its number and a price.

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bench {

// The texts of all cells, row by row, in one block with offsets.
struct Texts {
    std::int32_t rows;
    std::vector<char> block;
    std::vector<std::uint32_t> offsets;

    explicit Texts(std::int32_t count) : rows(count) {
        char text[24];
        for (std::int32_t row = 0; row < rows; ++row) {
            for (const char* const format : {"%d", "price %d"}) {
                const int length = std::snprintf(text, sizeof text, format, row);
                offsets.push_back(static_cast<std::uint32_t>(block.size()));
                block.insert(block.end(), text, text + length + 1);
            }
        }
    }
    [[nodiscard]] const char* at(std::int32_t row, std::size_t column) const {
        return &block[offsets[static_cast<std::size_t>(row) * 2 + column]];
    }
    [[nodiscard]] const char* number(std::int32_t row) const { return at(row, 0); }
    [[nodiscard]] const char* price(std::int32_t row) const { return at(row, 1); }
};

// The two columns as a program would hold them: what a scan of a database is read into.
struct Columns {
    std::vector<std::string> numbers, prices;

    [[nodiscard]] bool holds(const Texts& texts) const {
        if (std::cmp_not_equal(numbers.size(), texts.rows) || numbers.size() != prices.size()) return false;
        for (std::int32_t row = 0; row < texts.rows; ++row) {
            const auto index = static_cast<std::size_t>(row);
            if (numbers[index] != texts.number(row) || prices[index] != texts.price(row)) return false;
        }
        return true;
    }
};

// One way to keep the rows.  `place` is the name of a file or folder of its own.  None waits for the disk,
// since a record's file isn't synchronised either.
class RecordPeer {
  public:
    RecordPeer() = default;
    RecordPeer(const RecordPeer&) = delete;
    RecordPeer& operator=(const RecordPeer&) = delete;
    virtual ~RecordPeer() = default;

    virtual void build(const Texts& texts) = 0;
    // Saves what was built, to a place where nothing is.
    virtual void save(const std::string& place) = 0;
    virtual void load(const std::string& place) = 0;
    // These two aren't timed: whether what was loaded is right, and forgetting what was built and loaded.
    [[nodiscard]] virtual bool holds(const Texts& texts) = 0;
    virtual void clear() = 0;
};

std::unique_ptr<RecordPeer> makeSqlite();
std::unique_ptr<RecordPeer> makeSqliteBackup();
std::unique_ptr<RecordPeer> makeLeveldb();
std::unique_ptr<RecordPeer> makeProtobuf();

std::string sqliteVersion();
std::string leveldbVersion();
std::string protobufVersion();

}  // namespace bench
