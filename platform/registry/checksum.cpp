// Two published hashes, step by step as their sources describe them.
//
// Tests: tests/platform/sha256_test.cpp.

#include "platform/registry/checksum.h"

#include <array>
#include <bit>

#include "base/byte_order.h"

namespace tarn::registry {

namespace {

constexpr std::uint32_t prime1 = 0x9E3779B1, prime2 = 0x85EBCA77, prime3 = 0xC2B2AE3D, prime4 = 0x27D4EB2F,
                        prime5 = 0x165667B1;
constexpr std::size_t wordSize = 4;

std::uint32_t takeWord(std::string_view& bytes) {
    const std::uint32_t word = loadWord(reinterpret_cast<const unsigned char*>(bytes.data()));
    bytes.remove_prefix(wordSize);
    return word;
}

// Sums up the whole stripes of 16 bytes, and takes them away.
std::uint32_t takeStripes(std::string_view& bytes) {
    std::array<std::uint32_t, 4> sums = {prime1 + prime2, prime2, 0, 0 - prime1};
    while (bytes.size() >= sums.size() * wordSize) {
        for (std::uint32_t& sum : sums) sum = std::rotl(sum + takeWord(bytes) * prime2, 13) * prime1;
    }
    return std::rotl(sums[0], 1) + std::rotl(sums[1], 7) + std::rotl(sums[2], 12) + std::rotl(sums[3], 18);
}

// Spreads every bit over all others.
std::uint32_t avalanche(std::uint32_t hash) {
    hash = (hash ^ hash >> 15) * prime2;
    hash = (hash ^ hash >> 13) * prime3;
    return hash ^ hash >> 16;
}

}  // namespace

std::uint32_t fnv1a(std::string_view bytes) {
    std::uint32_t hash = 2166136261U;
    for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
    return hash;
}

std::uint32_t xxh32(std::string_view bytes) {
    const auto length = static_cast<std::uint32_t>(bytes.size());
    std::uint32_t hash = (length < 16 ? prime5 : takeStripes(bytes)) + length;
    while (bytes.size() >= wordSize) hash = std::rotl(hash + takeWord(bytes) * prime3, 17) * prime4;
    for (const char byte : bytes)
        hash = std::rotl(hash + static_cast<unsigned char>(byte) * prime5, 11) * prime1;
    return avalanche(hash);
}

}  // namespace tarn::registry
