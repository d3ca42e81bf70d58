// Records built, saved and loaded: two columns of texts, beside the least that the machine can do (one block
// of text with offsets, fwrite and fread of the same bytes), a hand-written vector of rows with the same
// file, and SQLite, LevelDB and protobuf.  Each way's answer is checked before it is timed.

#include <array>
#include <map>
#include <set>

#include "core/string.h"
#include "engine/engine_data.h"
#include "record_peer.h"
#include "support.h"

namespace {

using bench::RecordPeer;
using bench::require;
using bench::Texts;

constexpr std::int32_t columns[] = {7, 8};
constexpr std::size_t number = 0, price = 1;  // of columns and of Texts::at

std::vector<char> readFile(const std::string& place) {
    std::vector<char> bytes(std::filesystem::file_size(place));
    std::FILE* const file = std::fopen(place.c_str(), "rb");
    require(std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size(), "fread");
    std::fclose(file);
    return bytes;
}

void writeFile(const std::string& place, std::string_view bytes) {
    std::FILE* const file = std::fopen(place.c_str(), "wb");
    require(std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size(), "fwrite");
    std::fclose(file);
}

class Ours : public RecordPeer {
  public:
    void build(const Texts& texts) override {
        record_ = std::make_unique<tarnEngineData>();
        MOLTVARIANT value;
        value.tag = tagText;
        for (std::int32_t row = 0; row < texts.rows; ++row) {
            for (const std::size_t column : {number, price}) {
                value.payload.text = const_cast<char*>(texts.at(row, column));
                record_->storeMultiData(columns[column], row, &value, 0);
            }
        }
    }
    void save(const std::string& place) override { require(record_->saveData(place.c_str()) == 1, "saving"); }
    void load(const std::string& place) override {
        record_ = std::make_unique<tarnEngineData>();
        require(record_->loadData(place.c_str(), loadReplace) == 1, "loading");
    }
    bool holds(const Texts& texts) override {
        MOLTVARIANT view;
        for (std::int32_t row = 0; row < texts.rows; ++row) {
            for (const std::size_t column : {number, price}) {
                if (record_->getMultiData(columns[column], row, &view) < 0) return false;
                if (std::strcmp(view.payload.text, texts.at(row, column)) != 0) return false;
            }
        }
        return record_->getNumMulti() == texts.rows;
    }
    void clear() override { record_.reset(); }

  private:
    std::unique_ptr<tarnEngineData> record_;
};

// The least with the same use: rows of two texts that can be read, replaced and added, and our file's bytes.
class RowsOfStrings : public RecordPeer {
  public:
    void build(const Texts& texts) override {
        for (std::int32_t row = 0; row < texts.rows; ++row) {
            rows_.push_back({{texts.number(row), texts.price(row)}});
        }
    }
    void save(const std::string& place) override {
        std::string bytes = "@";
        putWords(bytes, {12, 1, 2});
        std::uint32_t offset = 0;
        for (const std::size_t column : {number, price}) {
            putWords(bytes, {static_cast<std::uint32_t>(columns[column]), 1,
                             static_cast<std::uint32_t>(rows_.size()), offset});
            for (const Row& row : rows_) offset += static_cast<std::uint32_t>(row[column].size()) + 9;
        }
        bytes.reserve(bytes.size() + offset);
        for (const std::size_t column : {number, price}) {
            for (const Row& row : rows_) {
                const std::string& text = row[column];
                putWords(bytes, {tagText, static_cast<std::uint32_t>(text.size() + 1)});
                bytes.append(text.c_str(), text.size() + 1);
            }
        }
        writeFile(place, bytes);
    }
    void load(const std::string& place) override {
        const std::vector<char> bytes = readFile(place);
        rows_.resize(word(bytes, 13 + 8));
        std::size_t at = 13 + 2 * 16;
        for (const std::size_t column : {number, price}) {
            for (Row& row : rows_) {
                require(bytes.size() - at >= 8, "a prefix");
                const std::size_t size = word(bytes, at + 4);
                at += 8;
                require(size > 0 && bytes.size() - at >= size, "a text");
                row[column].assign(&bytes[at], size - 1);
                at += size;
            }
        }
    }
    bool holds(const Texts& texts) override {
        if (std::cmp_not_equal(rows_.size(), texts.rows)) return false;
        for (std::int32_t row = 0; row < texts.rows; ++row) {
            const Row& loaded = rows_[static_cast<std::size_t>(row)];
            if (loaded[0] != texts.number(row) || loaded[1] != texts.price(row)) return false;
        }
        return true;
    }
    void clear() override { rows_ = {}; }

  private:
    using Row = std::array<std::string, 2>;

    static void putWords(std::string& bytes, std::initializer_list<std::uint32_t> words) {
        for (const std::uint32_t word : words)
            bytes.append(reinterpret_cast<const char*>(&word), sizeof word);
    }
    static std::uint32_t word(const std::vector<char>& bytes, std::size_t at) {
        std::uint32_t result = 0;
        std::memcpy(&result, &bytes[at], sizeof result);
        return result;
    }

    std::vector<Row> rows_;
};

// The same texts in one block with offsets: no value by itself, and nothing can be replaced.
class TextBlock : public RecordPeer {
  public:
    void build(const Texts& texts) override {
        for (std::int32_t row = 0; row < texts.rows; ++row) {
            for (const std::size_t column : {number, price}) {
                const char* const text = texts.at(row, column);
                offsets_.push_back(static_cast<std::uint32_t>(block_.size()));
                block_.insert(block_.end(), text, text + std::strlen(text) + 1);
            }
        }
        benchmark::DoNotOptimize(offsets_.data());
    }
    void save(const std::string& place) override { writeFile(place, {block_.data(), block_.size()}); }
    void load(const std::string& place) override { block_ = readFile(place); }
    bool holds(const Texts& texts) override { return block_ == texts.block; }
    void clear() override {
        block_ = {};
        offsets_ = {};
    }

  private:
    std::vector<char> block_;
    std::vector<std::uint32_t> offsets_;
};

// The bytes of our file, written and read in one piece into memory that is there already.
class PlainFile : public RecordPeer {
  public:
    void build(const Texts& texts) override {
        const bench::Folder folder;
        Ours ours;
        ours.build(texts);
        ours.save(folder.file("ours"));
        written_ = bench::contentOf(folder.file("ours"));
        read_.resize(written_.size());
    }
    void save(const std::string& place) override { writeFile(place, written_); }
    void load(const std::string& place) override {
        std::FILE* const file = std::fopen(place.c_str(), "rb");
        require(std::fread(read_.data(), 1, read_.size(), file) == read_.size(), "fread");
        std::fclose(file);
        benchmark::DoNotOptimize(read_.data());
    }
    bool holds(const Texts&) override { return read_ == written_; }
    void clear() override {}

  private:
    std::string written_, read_;
};

template <typename Peer>
std::unique_ptr<RecordPeer> make() {
    return std::make_unique<Peer>();
}

using Maker = std::unique_ptr<RecordPeer> (*)();

const Texts& textsOf(const benchmark::State& state) {
    static std::map<std::int64_t, Texts> made;
    const auto rows = state.range(0);
    return made.try_emplace(rows, static_cast<std::int32_t>(rows)).first->second;
}

// Times a step, and not what comes before it.
template <typename Before, typename Step>
void time(benchmark::State& state, Before before, Step step) {
    for (auto _ : state) {
        state.PauseTiming();
        before();
        state.ResumeTiming();
        step();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Builds, saves and loads once, and checks what came back.
void prepare(RecordPeer& peer, const Texts& texts, const std::string& place) {
    peer.build(texts);
    peer.save(place);
    peer.clear();
    peer.load(place);
    require(peer.holds(texts), "what was loaded");
}

// The same, once for each peer and size, so that the heap is left alone before most repetitions.
void check(Maker maker, const Texts& texts) {
    static std::set<std::pair<Maker, std::int32_t>> checked;
    if (!checked.emplace(maker, texts.rows).second) return;
    const bench::Folder folder;
    prepare(*maker(), texts, folder.file("rows"));
}

void timeBuild(benchmark::State& state, Maker maker) {
    const Texts& texts = textsOf(state);
    check(maker, texts);
    const auto peer = maker();
    time(
        state, [&] { peer->clear(); }, [&] { peer->build(texts); });
}

void timeSave(benchmark::State& state, Maker maker) {
    const Texts& texts = textsOf(state);
    check(maker, texts);
    const bench::Folder folder;
    const std::string place = folder.file("rows");
    const auto peer = maker();
    peer->build(texts);
    time(
        state, [&] { std::filesystem::remove_all(place); }, [&] { peer->save(place); });
}

void timeLoad(benchmark::State& state, Maker maker) {
    const Texts& texts = textsOf(state);
    const bench::Folder folder;
    const std::string place = folder.file("rows");
    const auto peer = maker();
    prepare(*peer, texts, place);
    time(
        state, [&] { peer->clear(); }, [&] { peer->load(place); });
}

using Timed = void (*)(benchmark::State&, Maker);

void add(const char* job, Timed timed, std::initializer_list<std::pair<const char*, Maker>> ways) {
    for (const auto& [who, maker] : ways) {
        benchmark::RegisterBenchmark((std::string(job) + '/' + who).c_str(), timed, maker)
            ->Arg(1000)
            ->Arg(32'000)
            ->Arg(1'000'000)
            ->Unit(benchmark::kMicrosecond);
    }
}

}  // namespace

int main(int argc, char** argv) {
    add("record_build", timeBuild,
        {{"ours", make<Ours>},
         {"text_block", make<TextBlock>},
         {"rows_of_strings", make<RowsOfStrings>},
         {"sqlite", bench::makeSqlite},
         {"leveldb", bench::makeLeveldb},
         {"protobuf", bench::makeProtobuf}});
    add("record_save", timeSave,
        {{"ours", make<Ours>},
         {"fwrite", make<PlainFile>},
         {"rows_of_strings", make<RowsOfStrings>},
         {"sqlite", bench::makeSqlite},
         {"sqlite_backup", bench::makeSqliteBackup},
         {"leveldb", bench::makeLeveldb},
         {"protobuf", bench::makeProtobuf}});
    add("record_load", timeLoad,
        {{"ours", make<Ours>},
         {"fread", make<PlainFile>},
         {"rows_of_strings", make<RowsOfStrings>},
         {"sqlite", bench::makeSqlite},
         {"leveldb", bench::makeLeveldb},
         {"protobuf", bench::makeProtobuf}});
    return bench::run(argc, argv,
                      {{"SQLite", bench::sqliteVersion()},
                       {"LevelDB", bench::leveldbVersion()},
                       {"protobuf", bench::protobufVersion()}});
}
