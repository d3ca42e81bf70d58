// Registry files, those of values and of keys: the reader takes just what the plain reader of
// docs/registry-folder.md takes, and what it takes is written to the same bytes.  Then the file is put into a
// registry.

#include <sys/stat.h>

#include "base/byte_order.h"
#include "fuzz/property.h"
#include "platform/registry/record.h"
#include "platform/win32.h"

namespace {

using tarn::registry::RecordKind;
using tarnfuzz::require;

std::uint32_t wordAt(const std::string& bytes, std::size_t at) {
    return tarn::loadWord(reinterpret_cast<const unsigned char*>(&bytes[at]));
}

std::uint32_t plainChecksum(const std::string& bytes) {
    std::uint64_t hash = 0x811C9DC5;  // FNV-1a
    for (const char byte : bytes.substr(8))
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x01000193 % (std::uint64_t{1} << 32);
    return static_cast<std::uint32_t>(hash);
}

bool isWhole(const std::string& bytes, const std::string& mark) {
    return bytes.size() >= 20 && bytes.starts_with(mark) && wordAt(bytes, 4) == plainChecksum(bytes) &&
           std::uint64_t{20} + wordAt(bytes, 12) + wordAt(bytes, 16) == bytes.size();
}

// Puts the right mark and checksum into a file, which no change by chance would give.
void seal(std::string& bytes, const std::string& mark) {
    bytes.replace(0, 4, mark);
    tarn::storeWord(reinterpret_cast<unsigned char*>(&bytes[4]), plainChecksum(bytes));
}

void checkRecord(const std::string& bytes, RecordKind kind, bool whole) {
    tarn::registry::Record record{77, "name", "data"};
    const tarnfuzz::MemoryWatch watch;
    require(decodeRecord(kind, bytes, record) == whole, "just what is whole is taken");
    watch.requireWithin(16, bytes.size());
    const std::size_t nameLength = whole ? wordAt(bytes, 12) : 0;
    require(record.type == (whole ? wordAt(bytes, 8) : 77), "with its type");
    tarnfuzz::requireSame(record.name, whole ? bytes.substr(20, nameLength) : "name", "its name");
    tarnfuzz::requireSame(record.data, whole ? bytes.substr(20 + nameLength) : "data", "and its data");
    if (whole) tarnfuzz::requireSame(encodeRecord(kind, record), bytes, "and is written to the same bytes");
}

// A registry of this process in memory, with one key "x" that holds a value "x" and a key "x"; their files
// are the inputs.  libFuzzer runs no destructors, so that tools/fuzz_target gives and removes the folder
// there.
struct Registry {
    std::string data;
    HKEY key = nullptr;

    Registry() {
        const char* const given = std::getenv("TARN_FUZZ_DATA");
        data = given != nullptr ? given : "/dev/shm/tarnutil-fuzz-" + std::to_string(::getpid());
        ::setenv("XDG_DATA_HOME", data.c_str(), 1);
        ::mkdir(data.c_str(), 0700);
        RegCreateKeyExA(HKEY_USERS, "x\\x", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        RegCloseKey(key);
        RegOpenKeyExA(HKEY_USERS, "x", 0, KEY_ALL_ACCESS, &key);
    }
    ~Registry() {
        RegCloseKey(key);
        require(std::system(("rm -r '" + data + "'").c_str()) == 0, "the folder is removed");
    }

    void put(RecordKind kind, const std::string& bytes) const {
        const std::string path =
            data + "/tarnutil/registry/HKEY_USERS/k-x/" + (kind == RecordKind::key ? "k-x/key" : "v-x");
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        require(::write(file, bytes.data(), bytes.size()) >= 0, "the file takes the input");
        ::close(file);
    }
};

// A value's data and a key's class come if the file is whole, has the right name and there is room.
void checkCalls(HKEY key, RecordKind kind, const std::string* data, DWORD room) {
    const std::unique_ptr<char[]> buffer(new char[room]);
    DWORD count = room;
    LSTATUS code = ERROR_SUCCESS;
    if (kind == RecordKind::value) {
        code = RegQueryValueExA(key, "X", nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.get()), &count);
    } else {
        HKEY below = nullptr;
        code = RegOpenKeyExA(key, "X", 0, KEY_ALL_ACCESS, &below);
        if (code == ERROR_SUCCESS)
            code = RegQueryInfoKeyA(below, buffer.get(), &count, nullptr, nullptr, nullptr, nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr);
        RegCloseKey(below);
    }
    if (data == nullptr) return require(code == 1015, "a damaged file is refused");
    const bool hasRoom = data->size() + (kind == RecordKind::key ? 1 : 0) <= room;
    require(code == (hasRoom ? 0 : 234), "data come if there is room");
    require(count == data->size(), "with their length");
    if (hasRoom) tarnfuzz::requireSame({buffer.get(), count}, *data, "and their bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Registry registry;
    tarnfuzz::Input input(data, size);
    const unsigned choice = input.byte();
    const DWORD room = input.byte();
    std::string bytes = input.rest();
    const RecordKind kind = (choice & 1) != 0 ? RecordKind::key : RecordKind::value;
    const std::string mark = kind == RecordKind::key ? "TRK1" : "TRV1";
    if ((choice & 2) == 0 && bytes.size() >= 20) seal(bytes, mark);
    const bool whole = isWhole(bytes, mark);
    checkRecord(bytes, kind, whole);
    if (!whole && (choice & 4) == 0) return 0;  // few of the damaged ones, for the files take their time

    const std::string name = whole ? bytes.substr(20, wordAt(bytes, 12)) : "";
    registry.put(kind, bytes);
    const std::string content = whole ? bytes.substr(20 + name.size()) : "";
    checkCalls(registry.key, kind, name == "x" || name == "X" ? &content : nullptr, room);
    return 0;
}
