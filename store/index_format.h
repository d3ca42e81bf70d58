#pragma once

// Internal: the numbers of the indexed data file that its writer and its reader share.  docs/file-formats.md
// has the whole layout.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "base/byte_order.h"
#include "core/variant.h"

namespace tarn::indexfile {

constexpr unsigned char marker = '@';
constexpr std::uint32_t headerSize = 12;  // without the marker
constexpr std::uint32_t formatVersion = 1;
constexpr std::size_t wordSize = 4;
constexpr std::size_t indexRecordSize = 16;
constexpr std::size_t prefixSize = 8;   // tag and size of a value
constexpr std::size_t payloadSize = 8;  // of a value without a form of its own

// Tags whose payload is a pointer that no file holds.
inline bool hasNoForm(std::int32_t tag) {
    return tag == tagBlock || tag == tagList || tag == tagMulti || tag == tagRecord;
}

// Bytes at the front of the payload that are one number.
inline std::size_t numberWidth(std::int32_t tag) {
    switch (tag) {
        case tagShort:
        case tagUShort: return 2;
        case tagLong:
        case tagFloat:
        case tagWord:
        case tagNumber: return 4;
        case tagDouble: return 8;
        default: return 1;
    }
}

// Turns a payload from the machine's byte order to the file's, or back: the number in front is little-endian
// in a file, the bytes behind it stay as they are.
inline void exchangePayload(unsigned char (&payload)[payloadSize], std::int32_t tag) {
    if constexpr (std::endian::native == std::endian::big) std::reverse(payload, payload + numberWidth(tag));
}

}  // namespace tarn::indexfile
