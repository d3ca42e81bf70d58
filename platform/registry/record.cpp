// A header of five words, little-endian, then the name and the data.
//
// Tests: tests/platform/registry_test.cpp, tests/data/stored_files_test.cpp.

#include "platform/registry/record.h"

#include <algorithm>

#include "base/byte_order.h"

namespace tarn::registry {

namespace {

// On disk: "TRK1" and "TRV1", and the places of the words.
constexpr std::uint32_t keyMark = 0x314B5254;
constexpr std::uint32_t valueMark = 0x31565254;
constexpr std::size_t markAt = 0;
constexpr std::size_t checksumAt = 4;
constexpr std::size_t typeAt = 8;
constexpr std::size_t nameLengthAt = 12;
constexpr std::size_t dataLengthAt = 16;

std::uint32_t markOf(RecordKind kind) {
    return kind == RecordKind::key ? keyMark : valueMark;
}

void putWord(std::string& bytes, std::size_t at, std::uint32_t word) {
    storeWord(reinterpret_cast<unsigned char*>(&bytes[at]), word);
}

std::uint32_t wordAt(std::string_view bytes, std::size_t at) {
    return loadWord(reinterpret_cast<const unsigned char*>(&bytes[at]));
}

// FNV-1a of everything behind the checksum.
std::uint32_t checksum(std::string_view bytes) {
    std::uint32_t hash = 2166136261U;
    for (const char byte : bytes.substr(typeAt)) hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
    return hash;
}

}  // namespace

std::string encodeRecord(RecordKind kind, const Record& record) {
    std::string bytes(recordHeader, '\0');
    bytes.reserve(recordHeader + record.name.size() + record.data.size());
    putWord(bytes, markAt, markOf(kind));
    putWord(bytes, typeAt, record.type);
    putWord(bytes, nameLengthAt, static_cast<std::uint32_t>(record.name.size()));
    putWord(bytes, dataLengthAt, static_cast<std::uint32_t>(record.data.size()));
    bytes.append(record.name).append(record.data);
    putWord(bytes, checksumAt, checksum(bytes));
    return bytes;
}

bool decodeRecord(RecordKind kind, std::string_view bytes, Record& record) {
    if (bytes.size() < recordHeader || wordAt(bytes, markAt) != markOf(kind)) return false;
    const std::size_t nameLength = wordAt(bytes, nameLengthAt);
    const std::size_t rest = bytes.size() - recordHeader;
    if (nameLength > rest || wordAt(bytes, dataLengthAt) != rest - nameLength) return false;
    if (wordAt(bytes, checksumAt) != checksum(bytes)) return false;
    record.type = wordAt(bytes, typeAt);
    record.name = bytes.substr(recordHeader, nameLength);
    record.data = bytes.substr(recordHeader + nameLength);
    return true;
}

}  // namespace tarn::registry
