// A target without libFuzzer: it runs on every file of the folder that it is given, so that each compiler and
// preset replays the seeds.

#include <dirent.h>
#include <malloc.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <new>
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

std::string contentOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::string> filesOf(const std::string& folder) {
    std::vector<std::string> files;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), ::closedir);
    if (stream == nullptr) return files;
    while (const dirent* const entry = ::readdir(stream.get())) {
        if (entry->d_name[0] != '.') files.push_back(folder + '/' + entry->d_name);
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

int main(int count, char** arguments) {
    const std::vector<std::string> files = filesOf(count == 2 ? arguments[1] : "");
    for (const std::string& file : files) {
        std::fprintf(stderr, "%s\n", file.c_str());
        const std::string content = contentOf(file);
        // A block of just these bytes, as libFuzzer gives it.
        const tarnfuzz::Text input(content);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.get()), content.size());
    }
    std::fprintf(stderr, "%zu seeds\n", files.size());
    return files.empty() ? 1 : 0;
}
