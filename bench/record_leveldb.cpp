// LevelDB: a batch in memory, written to a new database in one piece without waiting for the disk, and a scan
// of all rows into vectors.  The key is the row in big-endian order, the value both texts with a NUL between.

#include <leveldb/db.h>
#include <leveldb/write_batch.h>

#include "record_peer.h"
#include "support.h"

namespace bench {

namespace {

void check(const leveldb::Status& status) {
    require(status.ok(), status.ToString().c_str());
}

std::unique_ptr<leveldb::DB> open(const std::string& place) {
    leveldb::Options options;
    options.create_if_missing = true;
    options.compression = leveldb::kNoCompression;
    leveldb::DB* database = nullptr;
    check(leveldb::DB::Open(options, place, &database));
    return std::unique_ptr<leveldb::DB>(database);
}

class Leveldb : public RecordPeer {
  public:
    void build(const Texts& texts) override {
        for (std::int32_t row = 0; row < texts.rows; ++row) {
            const char key[] = {static_cast<char>(row >> 24), static_cast<char>(row >> 16),
                                static_cast<char>(row >> 8), static_cast<char>(row)};
            const char* const number = texts.number(row);
            const char* const price = texts.price(row);  // behind the number and its NUL
            batch_.Put({key, sizeof key},
                       {number, static_cast<std::size_t>(price - number) + std::strlen(price)});
        }
    }
    void save(const std::string& place) override { check(open(place)->Write({}, &batch_)); }
    void load(const std::string& place) override {
        const auto database = open(place);
        leveldb::ReadOptions options;
        options.fill_cache = false;
        const std::unique_ptr<leveldb::Iterator> scan(database->NewIterator(options));
        for (scan->SeekToFirst(); scan->Valid(); scan->Next()) {
            const std::string_view both(scan->value().data(), scan->value().size());
            const std::size_t end = both.find('\0');
            loaded_.numbers.emplace_back(both.substr(0, end));
            loaded_.prices.emplace_back(both.substr(end + 1));
        }
        check(scan->status());
    }
    bool holds(const Texts& texts) override { return loaded_.holds(texts); }
    void clear() override {
        batch_ = {};
        loaded_ = {};
    }

  private:
    leveldb::WriteBatch batch_;
    Columns loaded_;
};

}  // namespace

std::unique_ptr<RecordPeer> makeLeveldb() {
    return std::make_unique<Leveldb>();
}

std::string leveldbVersion() {
    return std::to_string(leveldb::kMajorVersion) + '.' + std::to_string(leveldb::kMinorVersion);
}

}  // namespace bench
