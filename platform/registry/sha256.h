#pragma once

// The layer's own SHA-256 (FIPS 180-4, section 6.2), for file names of registry names that are too long for
// one; programs have no need of it.
//
// Threads: the function only reads its argument.

#include <string>
#include <string_view>

namespace tarn {

// Answers the digest as 64 lower-case hexadecimal digits.
std::string sha256(std::string_view message);

}  // namespace tarn
