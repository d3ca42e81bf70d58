#pragma once

// What the functions of fintext/ make of a text in the caller's buffer.

#include "tests/support.h"

namespace tarntest {

// By a function that changes a text, to which NULL is nothing.
std::string changed(auto change, const char* text, auto... arguments) {
    char buffer[200];
    std::strcpy(buffer, text);
    change(nullptr, arguments...);
    change(buffer, arguments...);
    return buffer;
}

// By a function that reads a source and writes a target, which may be one buffer.  Without a source or a
// target nothing is written.
std::string written(auto write, const char* source, auto... arguments) {
    char inPlace[1500];
    std::strcpy(inPlace, source);
    write(inPlace, inPlace, arguments...);
    char target[1500] = "another text";
    write(source, target, arguments...);
    write(nullptr, target, arguments...);
    write(source, nullptr, arguments...);
    EXPECT_STREQ(target, inPlace) << "from " << source;
    return target;
}

}  // namespace tarntest
