// A target without libFuzzer: it runs on every file of the folder that it is given and on thousands of inputs
// made of them, so that each compiler and preset tries the same.

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <random>
#include <string>
#include <vector>

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

namespace {

void run(const std::string& content) {
    const tarnfuzz::Text input(content);  // a block of just these bytes, as libFuzzer gives it
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.get()), content.size());
}

// The front of a seed before the rest of another, with some bytes changed; the same ones in each run.
std::string changed(const std::vector<std::string>& seeds, std::mt19937& random) {
    std::string content = seeds[random() % seeds.size()];
    const std::string& other = seeds[random() % seeds.size()];
    const std::size_t cut = random() % (content.size() + 1);
    content = content.substr(0, cut) + other.substr(std::min(cut, other.size()));
    for (unsigned left = content.empty() ? 0 : random() % 8; left > 0; --left)
        content[random() % content.size()] =
            random() % 2 != 0 ? static_cast<char>(random()) : other[random() % (other.size() + 1)];
    return content;
}

}  // namespace

int main(int count, char** arguments) {
    std::vector<std::string> seeds;
    for (const auto& entry : std::filesystem::directory_iterator(count == 2 ? arguments[1] : ".")) {
        std::fprintf(stderr, "%s\n", entry.path().c_str());
        std::ifstream stream(entry.path(), std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
        run(seeds.back());
    }
    std::sort(seeds.begin(), seeds.end());
    std::erase_if(seeds, [](const std::string& seed) { return seed.size() > 2000; });
    std::mt19937 random(1);
    const std::clock_t end = std::clock() + 3 * CLOCKS_PER_SEC;
    int inputs = 0;
    for (; inputs < 50'000 && std::clock() < end && !seeds.empty(); ++inputs) run(changed(seeds, random));
    std::fprintf(stderr, "%zu seeds, %d inputs made of them\n", seeds.size(), inputs);
    return seeds.empty() ? 1 : 0;
}
