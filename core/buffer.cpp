// tarnBuffer.  `capacity` grows in the documented steps of 4096 bytes, the block itself by a quarter at
// least.  The bytes that a caller passes may lie in the buffer, so an old block is released only after they
// are copied.  Bytes behind `capacity` are 0.
// Tests: tests/core/string_test.cpp.

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "core/string.h"

namespace {

constexpr std::int32_t step = 4096;
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

std::unique_ptr<unsigned char[]> zeroedBlock(std::int32_t bytes) {
    return std::unique_ptr<unsigned char[]>(new unsigned char[static_cast<std::size_t>(bytes)]());
}

// The capacity that holds `needed` bytes, or -1 where the steps pass 2^31 - 1.
std::int32_t capacityFor(std::int32_t capacity, std::int64_t needed) {
    if (needed <= capacity) return capacity;
    const std::int64_t stepped = capacity + (needed - capacity + step - 1) / step * step;
    return stepped > most ? -1 : static_cast<std::int32_t>(stepped);
}

std::int32_t roomyBlock(std::int32_t capacity, std::int32_t allocated) {
    return static_cast<std::int32_t>(std::min<std::int64_t>(
        most, std::max<std::int64_t>(capacity, std::int64_t{allocated} + allocated / 4)));
}

std::size_t bytesOf(std::int32_t count) {
    return static_cast<std::size_t>(count);
}

}  // namespace

tarnBuffer::tarnBuffer() : tarnBuffer(step) {}

tarnBuffer::tarnBuffer(std::int32_t bytes)
    : length(0), capacity(std::max(bytes, 0)), data(zeroedBlock(capacity).release()), allocated_(capacity) {}

tarnBuffer::tarnBuffer(const void* bytes, std::int32_t count)
    : tarnBuffer(std::max(bytes == nullptr ? 0 : count, step)) {
    if (bytes == nullptr || count < 1) return;
    std::memcpy(data, bytes, bytesOf(count));
    length = count;
}

tarnBuffer::~tarnBuffer() {
    delete[] data;
}

void tarnBuffer::replace(const void* bytes, std::int32_t offset, std::int32_t count) {
    if (bytes == nullptr || offset < 0 || count < 0 || offset > length || count > length - offset) return;
    std::memmove(data + offset, bytes, bytesOf(count));
}

void tarnBuffer::append(const void* bytes, std::int32_t count) {
    if (bytes == nullptr || count < 0) return;
    const std::int32_t grown = capacityFor(capacity, std::int64_t{length} + count);
    if (grown < 0) return;
    if (grown > allocated_) {
        const std::int32_t roomy = roomyBlock(grown, allocated_);
        auto block = zeroedBlock(roomy);
        std::memcpy(block.get(), data, bytesOf(length));
        std::memcpy(block.get() + length, bytes, bytesOf(count));
        delete[] data;
        data = block.release();
        allocated_ = roomy;
    } else {
        std::memmove(data + length, bytes, bytesOf(count));
    }
    capacity = grown;
    length += count;
}

void tarnBuffer::assign(const void* bytes, std::int32_t count) {
    if (bytes == nullptr || count < 0) return;
    const std::int32_t grown = capacityFor(capacity, count);
    if (grown < 0) return;
    if (grown > allocated_) {
        const std::int32_t roomy = roomyBlock(grown, allocated_);
        auto block = zeroedBlock(roomy);
        std::memcpy(block.get(), bytes, bytesOf(count));
        delete[] data;
        data = block.release();
        allocated_ = roomy;
    } else {
        std::memmove(data, bytes, bytesOf(count));
    }
    capacity = grown;
    length = count;
}

void tarnBuffer::prepend(const void* bytes, std::int32_t count) {
    if (bytes == nullptr || count < 0) return;
    const std::int32_t grown = capacityFor(capacity, std::int64_t{length} + count);
    if (grown < 0) return;
    auto block = zeroedBlock(grown);
    std::memcpy(block.get(), bytes, bytesOf(count));
    std::memcpy(block.get() + count, data, bytesOf(length));
    delete[] data;
    data = block.release();
    allocated_ = capacity = grown;
    length += count;
}

void tarnBuffer::removeRange(std::int32_t offset, std::int32_t count) {
    if (count < 1 || offset < 0 || offset >= length) return;
    count = std::min(count, length - offset);
    std::memmove(data + offset, data + offset + count, bytesOf(length - offset - count));
    length -= count;
}

void tarnBuffer::append(const tarnBuffer& other) {
    append(other.data, other.length);
}
void tarnBuffer::assign(const tarnBuffer& other) {
    assign(other.data, other.length);
}
void tarnBuffer::prepend(const tarnBuffer& other) {
    prepend(other.data, other.length);
}
