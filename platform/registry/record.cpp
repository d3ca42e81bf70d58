// A header of five words, little-endian, then the name and the data.
//
// Tests: tests/platform/registry_test.cpp, tests/data/stored_files_test.cpp.

#include "platform/registry/record.h"

#include <algorithm>

#include "base/byte_order.h"
#include "platform/registry/checksum.h"

namespace tarn::registry {

namespace {

// On disk: "TRK1", "TRV1" and "TRV2", and the places of the words.
constexpr std::uint32_t keyMark = 0x314B5254;
constexpr std::uint32_t valueMark = 0x31565254;
constexpr std::uint32_t largeValueMark = 0x32565254;
constexpr std::size_t markAt = 0;
constexpr std::size_t checksumAt = 4;
constexpr std::size_t typeAt = 8;
constexpr std::size_t nameLengthAt = 12;
constexpr std::size_t dataLengthAt = 16;

std::uint32_t markOf(RecordKind kind, std::size_t dataLength) {
    if (kind == RecordKind::key) return keyMark;
    return dataLength < smallestLargeValue ? valueMark : largeValueMark;
}

void putWord(std::string& bytes, std::size_t at, std::uint32_t word) {
    storeWord(reinterpret_cast<unsigned char*>(&bytes[at]), word);
}

std::uint32_t wordAt(std::string_view bytes, std::size_t at) {
    return loadWord(reinterpret_cast<const unsigned char*>(&bytes[at]));
}

// Of everything behind the checksum.  Only large values take the faster one, so that a program with version
// 1.0.0 of the library reads all others.
std::uint32_t checksum(std::string_view bytes) {
    const std::string_view summed = bytes.substr(typeAt);
    return wordAt(bytes, markAt) == largeValueMark ? xxh32(summed) : fnv1a(summed);
}

}  // namespace

std::string encodeRecord(RecordKind kind, const Record& record) {
    std::string bytes(recordHeader, '\0');
    bytes.reserve(recordHeader + record.name.size() + record.data.size());
    putWord(bytes, markAt, markOf(kind, record.data.size()));
    putWord(bytes, typeAt, record.type);
    putWord(bytes, nameLengthAt, static_cast<std::uint32_t>(record.name.size()));
    putWord(bytes, dataLengthAt, static_cast<std::uint32_t>(record.data.size()));
    bytes.append(record.name).append(record.data);
    putWord(bytes, checksumAt, checksum(bytes));
    return bytes;
}

bool decodeRecord(RecordKind kind, std::string_view bytes, Record& record) {
    if (bytes.size() < recordHeader) return false;
    const std::size_t nameLength = wordAt(bytes, nameLengthAt);
    const std::size_t rest = bytes.size() - recordHeader;
    if (nameLength > rest || wordAt(bytes, dataLengthAt) != rest - nameLength) return false;
    const std::uint32_t mark = wordAt(bytes, markAt);
    const std::uint32_t formerMark = markOf(kind, 0);  // of values of any size in 1.0.0
    if (mark != formerMark && mark != markOf(kind, rest - nameLength)) return false;
    if (wordAt(bytes, checksumAt) != checksum(bytes)) return false;
    record.type = wordAt(bytes, typeAt);
    record.name = bytes.substr(recordHeader, nameLength);
    record.data = bytes.substr(recordHeader + nameLength);
    return true;
}

}  // namespace tarn::registry
