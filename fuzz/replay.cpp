// A target without libFuzzer: it runs on every file of the folder that it is given, so that each compiler and
// preset replays the seeds.

#include <malloc.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <string>

#include "fuzz/property.h"

#if !defined(__SANITIZE_ADDRESS__) && !TARN_HAS_FEATURE(address_sanitizer) && \
    !TARN_HAS_FEATURE(memory_sanitizer)

// Without a sanitizer the memory is counted here.

void* operator new(std::size_t size) {
    void* const block = std::malloc(size);
    if (block == nullptr) throw std::bad_alloc();
    tarnfuzz::MemoryWatch::count(static_cast<std::ptrdiff_t>(::malloc_usable_size(block)));
    return block;
}
void operator delete(void* block) noexcept {
    tarnfuzz::MemoryWatch::count(-static_cast<std::ptrdiff_t>(::malloc_usable_size(block)));
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

#endif

int main(int count, char** arguments) {
    int seeds = 0;
    for (const auto& entry : std::filesystem::directory_iterator(count == 2 ? arguments[1] : ".")) {
        std::fprintf(stderr, "%s\n", entry.path().c_str());
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(stream), {}};
        // A block of just these bytes, as libFuzzer gives it.
        const tarnfuzz::Text input(content);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.get()), content.size());
        ++seeds;
    }
    std::fprintf(stderr, "%d seeds\n", seeds);
    return seeds == 0 ? 1 : 0;
}
