#pragma once

// The checksums of registry records on disk; programs have no need of them.
//
// Threads: the functions only read their argument.

#include <cstdint>
#include <string_view>

namespace tarn::registry {

// FNV-1a with 32 bits: one byte after the other, each waiting for a multiplication.
// Source: Fowler, Noll, Vo, Eastlake, The FNV Non-Cryptographic Hash Algorithm, section 2.
std::uint32_t fnv1a(std::string_view bytes);

// XXH32 with seed 0: sixteen bytes at a time, in four sums that don't wait for each other.
// Source: Collet, xxHash fast digest algorithm, version 0.1.1, "XXH32 algorithm description".
std::uint32_t xxh32(std::string_view bytes);

}  // namespace tarn::registry
