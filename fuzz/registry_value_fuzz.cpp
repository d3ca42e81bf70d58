// Registry files, those of values and of keys: the reader takes just what the plain reader of the told form
// takes, and what it takes is written to the same bytes.  Then the file stands in a registry.

#include <sys/stat.h>

#include <algorithm>

#include "fuzz/property.h"
#include "platform/registry/record.h"
#include "platform/win32.h"

namespace {

using tarn::registry::Record;
using tarn::registry::RecordKind;
using tarnfuzz::require;

std::uint32_t wordAt(const std::string& bytes, std::size_t at) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word += std::uint32_t{static_cast<unsigned char>(bytes[at + i])} << (8 * i);
    return word;
}

std::uint32_t plainChecksum(const std::string& bytes) {
    std::uint64_t hash = 0x811C9DC5;  // FNV-1a
    for (std::size_t i = 8; i < bytes.size(); ++i)
        hash = (hash ^ static_cast<unsigned char>(bytes[i])) * 0x01000193 % (std::uint64_t{1} << 32);
    return static_cast<std::uint32_t>(hash);
}

// A file of the told form, as docs/registry-folder.md has it.
bool isWhole(const std::string& bytes, RecordKind kind) {
    if (bytes.size() < 20 || bytes.substr(0, 4) != (kind == RecordKind::key ? "TRK1" : "TRV1")) return false;
    const std::uint64_t told = std::uint64_t{20} + wordAt(bytes, 12) + wordAt(bytes, 16);
    return told == bytes.size() && wordAt(bytes, 4) == plainChecksum(bytes);
}

// Puts the right mark and checksum into a file, which no change by chance would give.
void seal(std::string& bytes, RecordKind kind) {
    if (bytes.size() < 20) return;
    bytes.replace(0, 4, kind == RecordKind::key ? "TRK1" : "TRV1");
    const std::uint32_t sum = plainChecksum(bytes);
    for (unsigned i = 0; i < 4; ++i) bytes[4 + i] = static_cast<char>(sum >> (8 * i));
}

void checkRecord(const std::string& bytes, RecordKind kind, bool whole) {
    Record record{77, "name", "data"};
    const tarnfuzz::MemoryWatch watch;
    require(decodeRecord(kind, bytes, record) == whole, "just what is whole is taken");
    watch.requireWithin(16, bytes.size());
    if (!whole) return require(record.type == 77 && record.name + record.data == "namedata", "or left alone");
    const std::size_t nameLength = wordAt(bytes, 12);
    require(record.type == wordAt(bytes, 8) && record.name == bytes.substr(20, nameLength) &&
                record.data == bytes.substr(20 + nameLength),
            "what is taken stands in the file");
    tarnfuzz::requireSame(encodeRecord(kind, record), bytes, "and is written to the same bytes");
}

// A registry of this process in memory, with one key "x" that holds a value "x" and a key "x"; their files
// are the inputs.  It goes with the process; libFuzzer runs no destructors, so that tools/fuzz_target gives
// and removes the folder there.
class Registry {
  public:
    Registry() {
        const char* const given = std::getenv("TARN_FUZZ_DATA");
        data_ = given != nullptr ? given : "/dev/shm/tarnutil-fuzz-" + std::to_string(::getpid());
        ::mkdir(data_.c_str(), 0700);
        ::setenv("XDG_DATA_HOME", data_.c_str(), 1);
        char classText[] = "";
        HKEY below = nullptr;
        RegCreateKeyExA(HKEY_USERS, "x", 0, classText, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr);
        RegCreateKeyExA(key_, "x", 0, classText, 0, KEY_ALL_ACCESS, nullptr, &below, nullptr);
        RegCloseKey(below);
    }
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;
    ~Registry() {
        RegCloseKey(key_);
        const std::string folder = data_ + "/tarnutil/registry/HKEY_USERS";
        for (const char* file : {"/k-x/k-x/key", "/k-x/v-x", "/k-x/key", "/k-x/.new", "/k-x/k-x/.new"})
            ::unlink((folder + file).c_str());
        for (const char* part : {"/tarnutil/registry/HKEY_USERS/k-x/k-x", "/tarnutil/registry/HKEY_USERS/k-x",
                                 "/tarnutil/registry/HKEY_USERS", "/tarnutil/registry", "/tarnutil", ""})
            ::rmdir((data_ + part).c_str());
    }

    [[nodiscard]] HKEY key() const { return key_; }
    void put(RecordKind kind, const std::string& bytes) const {
        const std::string path =
            data_ + "/tarnutil/registry/HKEY_USERS/k-x/" + (kind == RecordKind::key ? "k-x/key" : "v-x");
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        require(::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
                "the file takes the input");
        ::close(file);
    }

  private:
    std::string data_;
    HKEY key_ = nullptr;
};

void checkValueCalls(HKEY key, const std::string& bytes, bool good, DWORD room) {
    const std::string data = good ? bytes.substr(20 + wordAt(bytes, 12)) : "";
    const std::unique_ptr<BYTE[]> buffer(new BYTE[room]);
    DWORD type = 0, count = room;
    const LSTATUS code = RegQueryValueExA(key, "X", nullptr, &type, buffer.get(), &count);
    if (!good) return require(code == 1015, "a damaged value is refused");
    require(code == (data.size() > room ? 234 : 0) && count == data.size(), "a value comes if there is room");
    require(type == wordAt(bytes, 8), "with its type");
    require(code != 0 || std::equal(data.begin(), data.end(), buffer.get(),
                                    [](char a, BYTE b) { return static_cast<BYTE>(a) == b; }),
            "and its bytes");
}

void checkKeyCalls(HKEY key, const std::string& bytes, bool good, DWORD room) {
    const std::string classText = good ? bytes.substr(20 + wordAt(bytes, 12)) : "";
    HKEY below = nullptr, again = nullptr;  // a handle of its own, since one remembers what it has listed
    RegOpenKeyExA(key, "", 0, KEY_ALL_ACCESS, &again);
    const LSTATUS code = RegOpenKeyExA(key, "X", 0, KEY_ALL_ACCESS, &below);
    require(code == (good ? 0 : 1015), "just a whole key opens");
    char name[300];
    require(RegEnumKeyA(again, 0, name, sizeof name) == 0, "and is listed, as a damaged one is");
    RegCloseKey(again);
    if (!good) return;
    const std::unique_ptr<char[]> text(new char[room]);
    DWORD count = room;
    const LSTATUS told = RegQueryInfoKeyA(below, text.get(), &count, nullptr, nullptr, nullptr, nullptr,
                                          nullptr, nullptr, nullptr, nullptr, nullptr);
    require(told == (classText.size() < room ? 0 : 234) && count == classText.size(), "with its class");
    require(told != 0 || std::memcmp(text.get(), classText.c_str(), classText.size() + 1) == 0, "text");
    RegCloseKey(below);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Registry registry;
    tarnfuzz::Input input(data, size);
    const unsigned choice = input.byte();
    const DWORD room = input.byte();
    std::string bytes = input.rest();
    const RecordKind kind = (choice & 1) != 0 ? RecordKind::key : RecordKind::value;
    if ((choice & 2) == 0) seal(bytes, kind);
    const bool whole = isWhole(bytes, kind);
    checkRecord(bytes, kind, whole);
    if (!whole && (choice & 4) == 0) return 0;  // few of the damaged ones, for the files take their time

    const std::string name = whole ? bytes.substr(20, wordAt(bytes, 12)) : "";
    const bool good = name == "x" || name == "X";
    registry.put(kind, bytes);
    (kind == RecordKind::key ? checkKeyCalls : checkValueCalls)(registry.key(), bytes, good, room);
    return 0;
}
