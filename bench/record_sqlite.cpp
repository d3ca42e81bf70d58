// SQLite: one table of two text columns.  Built in memory by a prepared statement in one transaction, saved
// the same way to a file or by the backup of the database in memory, loaded by a full scan into vectors.
// Without a journal and without waiting for the disk.

#include <sqlite3.h>

#include "record_peer.h"
#include "support.h"

namespace bench {

namespace {

void check(int code, const char* what) {
    require(code == SQLITE_OK || code == SQLITE_DONE || code == SQLITE_ROW, what);
}

class Database {
  public:
    explicit Database(const char* name) {
        check(sqlite3_open(name, &handle_), "opening a database");
        execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF");
    }
    ~Database() { sqlite3_close(handle_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    [[nodiscard]] sqlite3* handle() const { return handle_; }
    void execute(const char* text) { check(sqlite3_exec(handle_, text, nullptr, nullptr, nullptr), text); }

  private:
    sqlite3* handle_ = nullptr;
};

class Statement {
  public:
    Statement(const Database& database, const char* text) {
        check(sqlite3_prepare_v2(database.handle(), text, -1, &handle_, nullptr), text);
    }
    ~Statement() { sqlite3_finalize(handle_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    void bind(int place, const char* text) {
        check(sqlite3_bind_text(handle_, place, text, -1, SQLITE_STATIC), "binding a text");
    }
    bool step() {
        const int code = sqlite3_step(handle_);
        check(code, "a step");
        return code == SQLITE_ROW;
    }
    void reset() { check(sqlite3_reset(handle_), "a reset"); }
    void take(int column, std::vector<std::string>& texts) {
        const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(handle_, column));
        texts.emplace_back(text, static_cast<std::size_t>(sqlite3_column_bytes(handle_, column)));
    }

  private:
    sqlite3_stmt* handle_ = nullptr;
};

constexpr const char* makeTable = "CREATE TABLE rows (number TEXT NOT NULL, price TEXT NOT NULL)";

void insertAll(Database& database, const Texts& texts) {
    database.execute("BEGIN");
    Statement insert(database, "INSERT INTO rows VALUES (?, ?)");
    for (std::int32_t row = 0; row < texts.rows; ++row) {
        insert.bind(1, texts.number(row));
        insert.bind(2, texts.price(row));
        insert.step();
        insert.reset();
    }
    database.execute("COMMIT");
}

class Sqlite : public RecordPeer {
  public:
    Sqlite() { clear(); }
    void build(const Texts& texts) override {
        insertAll(*memory_, texts);
        texts_ = &texts;
    }
    void save(const std::string& place) override {
        Database file(place.c_str());
        file.execute(makeTable);
        insertAll(file, *texts_);
    }
    void load(const std::string& place) override {
        const Database file(place.c_str());
        Statement scan(file, "SELECT number, price FROM rows");
        while (scan.step()) {
            scan.take(0, loaded_.numbers);
            scan.take(1, loaded_.prices);
        }
    }
    bool holds(const Texts& texts) override { return loaded_.holds(texts); }
    void clear() override {
        loaded_ = {};
        memory_ = std::make_unique<Database>(":memory:");
        memory_->execute(makeTable);
    }

  protected:
    std::unique_ptr<Database> memory_;

  private:
    const Texts* texts_ = nullptr;
    Columns loaded_;
};

class SqliteBackup : public Sqlite {
  public:
    void save(const std::string& place) override {
        const Database file(place.c_str());
        sqlite3_backup* const backup = sqlite3_backup_init(file.handle(), "main", memory_->handle(), "main");
        check(sqlite3_backup_step(backup, -1), "a backup");
        check(sqlite3_backup_finish(backup), "the end of a backup");
    }
};

}  // namespace

std::unique_ptr<RecordPeer> makeSqlite() {
    return std::make_unique<Sqlite>();
}

std::unique_ptr<RecordPeer> makeSqliteBackup() {
    return std::make_unique<SqliteBackup>();
}

std::string sqliteVersion() {
    return sqlite3_libversion();
}

}  // namespace bench
