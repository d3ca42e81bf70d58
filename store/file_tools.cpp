// Whole files and their scrambled form: opening, lengths and fallbacks are in whole_file.cpp, the scrambling
// itself in scramble.cpp.
// Tests: tests/store/file_tools_test.cpp.

#include "store/file_tools.h"

#include <algorithm>

#include "store/scramble.h"
#include "store/whole_file.h"

namespace {

constexpr DWORD unshared = 0;
constexpr DWORD sequential = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN;

std::size_t wholeBlocks(std::size_t size) {
    return (size + tarn::scrambleBlock - 1) / tarn::scrambleBlock * tarn::scrambleBlock;
}

}  // namespace

char* readFile(const char* fileName, std::int32_t& size) {
    constexpr std::size_t terminator = 1;
    tarn::WholeFile file = tarn::readWholeFile(fileName, unshared, sequential, terminator);
    size = static_cast<std::int32_t>(file.size);
    return file.data.release();
}

int writeFile(const char* fileName, const char* data, std::int32_t size) {
    if (size < 0 || (data == nullptr && size > 0)) return 0;
    const auto bytes = static_cast<std::size_t>(size);
    return tarn::writeWholeFile(fileName, data, bytes, sequential) == tarn::FileResult::done ? 1 : 0;
}

void translateFile(int direction, const char* source, const char* target) {
    const bool unscrambles = direction == 1;
    const tarn::WholeFile file = tarn::readWholeFile(source, unshared, sequential, tarn::scrambleBlock - 1);
    if (!file.isRead()) return;
    char* const data = file.data.get();
    const std::size_t size = unscrambles ? file.length : wholeBlocks(file.length);
    std::fill(data + file.size, data + size, ' ');
    (unscrambles ? tarn::unscrambleBytes : tarn::scrambleBytes)(data, size, tarn::vectorLevel());
    tarn::writeWholeFile(target, data, size, sequential);
}
