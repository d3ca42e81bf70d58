#pragma once

// What the fuzz targets share: a property that has to hold, and a file with the input.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace tarnfuzz {

inline void require(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "violated: %s\n", property);
    std::abort();
}

// A file of this process in memory; `name` tells several apart.
inline std::string file(const char* name) {
    return "/dev/shm/tarnutil-fuzz-" + std::to_string(::getpid()) + name;
}

inline void fill(const std::string& path, const std::uint8_t* data, std::size_t size) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

inline std::string contentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace tarnfuzz
