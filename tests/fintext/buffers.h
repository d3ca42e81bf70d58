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

// By a function that reads a source and writes a target: in place, and over what that left, which has to come
// to the same.  Without a source or a target nothing is written.
std::string written(auto write, const char* source, auto... arguments) {
    char buffer[1500];
    std::strcpy(buffer, source);
    write(buffer, buffer, arguments...);
    const std::string inPlace = buffer;
    write(source, buffer, arguments...);
    write(nullptr, buffer, arguments...);
    write(source, nullptr, arguments...);
    EXPECT_EQ(buffer, inPlace) << "from " << source;
    return buffer;
}

}  // namespace tarntest
