#pragma once

// The layer's own file form of registry keys and values; programs use the operations of platform/win32.h.
// docs/registry-folder.md describes the form byte by byte.
//
// Threads: both functions only read their arguments.

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::registry {

constexpr std::size_t longestValueName = 16383;
constexpr std::size_t largestValue = 1U << 20;
constexpr std::size_t smallestLargeValue = 4096;  // from here on the file has the faster checksum

enum class RecordKind { key, value };

struct Record {
    std::uint32_t type = 0;  // of a value; 0 for a key
    std::string name;        // as it was spelled
    std::string data;        // of a value; the class text of a key
};

constexpr std::size_t recordHeader = 20;
constexpr std::size_t largestRecord = recordHeader + longestValueName + largestValue;

std::string encodeRecord(RecordKind kind, const Record& record);

// Answers false, and leaves the record alone, for bytes that encodeRecord didn't make: a wrong mark, lengths
// that don't fit the bytes, a wrong checksum.
bool decodeRecord(RecordKind kind, std::string_view bytes, Record& record);

}  // namespace tarn::registry
