#pragma once

// The values of tests/plain/values.h, as GoogleTest shows them where an expectation fails.

#include "tests/plain/values.h"
#include "tests/support.h"

inline void PrintTo(const MOLTVARIANT& value, std::ostream* stream) {
    *stream << tarntest::readable(&value);
}

namespace tarntest {

inline void PrintTo(const Owned& value, std::ostream* stream) {
    *stream << readable(&value);
}

}  // namespace tarntest
