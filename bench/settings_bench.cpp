// Settings against the least that the system needs for the same (opening, reading and closing the file; a
// plain write of the whole content with fsync and rename, with and without an fsync of the folder), against
// inih and GLib's key files for ini files, and against SQLite as a store of keys for the registry.  Every job
// opens the file anew, except those of the registry and SQLite, whose key and database stay open.

#include <fcntl.h>
#include <glib.h>
#include <ini.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <vector>

#undef FALSE  // GLib's are macros, the platform's constants
#undef TRUE

#include "store/settings.h"
#include "support.h"

namespace {

using bench::Folder;
using bench::require;

constexpr const char* section = "settings";

std::string keyAt(std::int64_t i) {
    return "key" + std::to_string(i);
}

std::string iniText(std::int64_t keys) {
    std::string text = "[settings]\r\n";
    for (std::int64_t i = 0; i < keys; ++i) text += keyAt(i) + "=value " + std::to_string(i) + "\r\n";
    return text;
}

// Writes, syncs and renames as the smallest program would.
void plainWrite(const std::string& file, std::string_view content) {
    const std::string temporary = file + ".new";
    const int descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const bool written = ::write(descriptor, content.data(), content.size()) == std::ssize(content);
    const bool synced = ::fsync(descriptor) == 0;
    ::close(descriptor);
    require(written && synced && std::rename(temporary.c_str(), file.c_str()) == 0, "a plain write");
}

void syncFolder(const char* folder) {
    const int descriptor = ::open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    require(::fsync(descriptor) == 0, "an fsync of the folder");
    ::close(descriptor);
}

std::int64_t plainRead(const std::string& file, std::string& buffer) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    ::close(descriptor);
    benchmark::DoNotOptimize(buffer.data());
    return count;
}

void openReadClose(benchmark::State& state, const std::string& content) {
    const Folder folder;
    const std::string file = folder.file("x");
    plainWrite(file, content);
    std::string buffer(content.size() + 1, '\0');
    for (auto _ : state) require(plainRead(file, buffer) == std::ssize(content), "a plain read");
}

void writeFsyncRename(benchmark::State& state, const std::string& content, bool withFolder) {
    const Folder folder;
    const std::string file = folder.file("x");
    for (auto _ : state) {
        plainWrite(file, content);
        if (withFolder) syncFolder(folder.name());
    }
}

// --------------------------------------------------------------------------------------- ini files, reading

// Reads the value of a key of the only section into a buffer of 64 bytes, from the file `x.ini` of a folder.
using ReadKey = void (*)(const char* file, const char* key, char* value);

// The object, which opens no file, is made once.
tarnIniFile& iniFileAt(const char* file) {
    static tarnIniFile ini("x");
    static std::string folder;
    if (!std::string_view(file).starts_with(folder) || folder.empty()) {
        folder = std::filesystem::path(file).parent_path();
        ini.setIniFileDirectory(folder.c_str());
    }
    return ini;
}

void readOurs(const char* file, const char* key, char* value) {
    iniFileAt(file).readIniString(section, key, "", value, 64);
}

// It has no way to stop at the key.
void readInih(const char* file, const char* key, char* value) {
    struct Search {
        const char* key;
        char* value;
    } search{key, value};
    const auto handler = [](void* user, const char* found, const char* name, const char* text) {
        const auto* const wanted = static_cast<const Search*>(user);
        if (std::strcmp(name, wanted->key) == 0 && std::strcmp(found, section) == 0) {
            std::snprintf(wanted->value, 64, "%s", text);
        }
        return 1;
    };
    require(ini_parse(file, handler, &search) == 0, "inih");
}

void readGlib(const char* file, const char* key, char* value) {
    GKeyFile* const keys = g_key_file_new();
    require(g_key_file_load_from_file(keys, file, G_KEY_FILE_NONE, nullptr) != FALSE, "GLib");
    gchar* const text = g_key_file_get_string(keys, section, key, nullptr);
    std::snprintf(value, 64, "%s", text);
    g_free(text);
    g_key_file_free(keys);
}

template <ReadKey read>
void iniRead(benchmark::State& state) {
    const Folder folder;
    const std::string file = folder.file("x.ini");
    plainWrite(file, iniText(state.range(0)));
    std::vector<std::string> keys;
    std::vector<std::string> values;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        keys.push_back(keyAt(i));
        values.push_back("value " + std::to_string(i));
    }
    char value[64] = "";
    std::size_t i = 0;
    for (auto _ : state) {
        i = (i + 7919) % keys.size();
        read(file.c_str(), keys[i].c_str(), value);
        require(value == values[i], "a value of the ini file");
    }
}

void iniLimit(benchmark::State& state) {
    openReadClose(state, iniText(state.range(0)));
}

// --------------------------------------------------------------------------------------- ini files, writing

using WriteKey = void (*)(const char* file, const char* key, const char* value);

void writeOurs(const char* file, const char* key, const char* value) {
    require(iniFileAt(file).writeIniString(section, key, value) == 1, "writing a key");
}

// Syncs the file before it takes the other's name, and not the folder.
void writeGlib(const char* file, const char* key, const char* value) {
    GKeyFile* const keys = g_key_file_new();
    require(g_key_file_load_from_file(keys, file, G_KEY_FILE_KEEP_COMMENTS, nullptr) != FALSE, "GLib");
    g_key_file_set_string(keys, section, key, value);
    require(g_key_file_save_to_file(keys, file, nullptr) != FALSE, "GLib's writing");
    g_key_file_free(keys);
}

template <WriteKey write>
void iniWrite(benchmark::State& state) {
    const Folder folder;
    const std::string file = folder.file("x.ini");
    plainWrite(file, iniText(state.range(0)));
    const std::string key = keyAt(state.range(0) / 2);
    std::string value;
    std::int64_t i = 0;
    for (auto _ : state) {
        value = "other " + std::to_string(++i);
        write(file.c_str(), key.c_str(), value.c_str());
    }
    char written[64] = "";
    readOurs(file.c_str(), key.c_str(), written);
    require(value == written, "the written value");
}

template <bool withFolder>
void iniWriteLimit(benchmark::State& state) {
    writeFsyncRename(state, iniText(state.range(0)), withFolder);
}

// ------------------------------------------------------------------------------------------------ registry

std::string valueOf(const benchmark::State& state) {
    return std::string(static_cast<std::size_t>(state.range(0)), 'x');
}

// A store that holds a value of a name.
class Registry {
  public:
    Registry() {
        ::setenv("XDG_DATA_HOME", folder_.name(), 1);
        require(key_.openKey("Software\\bench", 1) == 1, "making a key");
    }
    ~Registry() { key_.closeKey(); }
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    void write(const std::string& data) {
        require(key_.setBinary("value", data.data(), static_cast<std::uint32_t>(data.size())) == 1,
                "writing a value");
    }
    bool read(std::string& buffer) {
        return key_.getBinary("value", buffer.data(), static_cast<std::uint32_t>(buffer.size())) == 1;
    }

  private:
    Folder folder_;
    tarnRegistry key_{HKEY_CURRENT_USER};
};

// One table of names and values, as SQLite comes: each write waits for the disk.
class Sqlite {
  public:
    Sqlite() {
        require(sqlite3_open(folder_.file("keys.db").c_str(), &database_) == SQLITE_OK, "opening a database");
        require(sqlite3_exec(database_, "CREATE TABLE keys (name TEXT PRIMARY KEY, data BLOB) WITHOUT ROWID",
                             nullptr, nullptr, nullptr) == SQLITE_OK,
                "making a table");
        write_ = prepared("INSERT OR REPLACE INTO keys VALUES ('value', ?)");
        read_ = prepared("SELECT data FROM keys WHERE name = 'value'");
    }
    ~Sqlite() {
        sqlite3_finalize(write_);
        sqlite3_finalize(read_);
        sqlite3_close(database_);
    }
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;

    void write(const std::string& data) {
        sqlite3_bind_blob(write_, 1, data.data(), static_cast<int>(data.size()), SQLITE_STATIC);
        require(sqlite3_step(write_) == SQLITE_DONE, "writing a row");
        sqlite3_reset(write_);
    }
    bool read(std::string& buffer) {
        require(sqlite3_step(read_) == SQLITE_ROW, "reading a row");
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(read_, 0));
        std::memcpy(buffer.data(), sqlite3_column_blob(read_, 0), std::min(size, buffer.size()));
        sqlite3_reset(read_);
        return size == buffer.size();
    }

  private:
    sqlite3_stmt* prepared(const char* text) {
        sqlite3_stmt* statement = nullptr;
        require(sqlite3_prepare_v2(database_, text, -1, &statement, nullptr) == SQLITE_OK, text);
        return statement;
    }

    Folder folder_;
    sqlite3* database_ = nullptr;
    sqlite3_stmt* write_ = nullptr;
    sqlite3_stmt* read_ = nullptr;
};

template <typename Store>
void valueRead(benchmark::State& state) {
    Store store;
    const std::string data = valueOf(state);
    store.write(data);
    std::string buffer(data.size(), '\0');
    require(store.read(buffer) && buffer == data, "the value");
    for (auto _ : state) {
        require(store.read(buffer), "the value");
        benchmark::DoNotOptimize(buffer.data());
    }
}

void valueReadLimit(benchmark::State& state) {
    openReadClose(state, valueOf(state));
}

template <typename Store>
void valueWrite(benchmark::State& state) {
    Store store;
    std::string data = valueOf(state);
    for (auto _ : state) {
        ++data[0];
        store.write(data);
    }
    std::string buffer(data.size(), '\0');
    require(store.read(buffer) && buffer == data, "the written value");
}

void valueWriteLimit(benchmark::State& state) {
    writeFsyncRename(state, valueOf(state), false);
}

// ------------------------------------------------------------------------------------------------ running

void keys(benchmark::internal::Benchmark* job) {
    job->Arg(20)->Arg(200)->Arg(2000)->Arg(20'000);
}

void bytes(benchmark::internal::Benchmark* job) {
    job->Arg(16)->Arg(1024)->Arg(65'536);
}

BENCHMARK(iniRead<readOurs>)->Name("ini_read/ours")->Apply(keys);
BENCHMARK(iniLimit)->Name("ini_read/open_read_close")->Apply(keys);
BENCHMARK(iniRead<readInih>)->Name("ini_read/inih")->Apply(keys);
BENCHMARK(iniRead<readGlib>)->Name("ini_read/glib")->Apply(keys);
BENCHMARK(iniWrite<writeOurs>)->Name("ini_write/ours")->Apply(keys)->Iterations(50);
BENCHMARK(iniWriteLimit<false>)->Name("ini_write/write_fsync_rename")->Apply(keys)->Iterations(50);
BENCHMARK(iniWriteLimit<true>)->Name("ini_write/and_folder_fsync")->Apply(keys)->Iterations(50);
BENCHMARK(iniWrite<writeGlib>)->Name("ini_write/glib")->Apply(keys)->Iterations(50);
BENCHMARK(valueRead<Registry>)->Name("registry_read/ours")->Apply(bytes);
BENCHMARK(valueReadLimit)->Name("registry_read/open_read_close")->Apply(bytes);
BENCHMARK(valueRead<Sqlite>)->Name("registry_read/sqlite")->Apply(bytes);
BENCHMARK(valueWrite<Registry>)->Name("registry_write/ours")->Apply(bytes)->Iterations(50);
BENCHMARK(valueWriteLimit)->Name("registry_write/write_fsync_rename")->Apply(bytes)->Iterations(50);
BENCHMARK(valueWrite<Sqlite>)->Name("registry_write/sqlite")->Apply(bytes)->Iterations(50);

}  // namespace

int main(int argc, char** argv) {
    const std::string glib = bench::version(glib_major_version, glib_minor_version, glib_micro_version);
    return bench::run(argc, argv, {{"GLib", glib}, {"SQLite", sqlite3_libversion()}});
}
