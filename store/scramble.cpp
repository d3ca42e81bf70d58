// Scrambling: each span of 16 bytes goes through sixteen steps "swap byte k and byte T[k], add T[k] to both".
// No step looks at a byte's value, so that all of them together move each byte to a fixed place and add a
// fixed number to it: one byte shuffle and one addition, which the compiler works out from the table by
// taking the steps.
//
// Span 0 covers bytes 0 to 15 and span b the 16 bytes from 16 b - 1.  All but the first two lie side by side
// and are independent of each other; byte 15 is in both of those, and there the order counts.

#include "store/scramble.h"

#include <algorithm>
#include <cstring>

#include "store/file_tools.h"

namespace tarn {
namespace {

constexpr SpanForm untouched() {
    SpanForm form;
    for (std::size_t i = 0; i < scrambleBlock; ++i) form.from[i] = static_cast<std::uint8_t>(i);
    return form;
}

// Swaps bytes k and T[k] and adds `sign` times T[k] to both.
constexpr void step(SpanForm& form, std::size_t k, int sign) {
    const std::uint8_t other = scrambleTable[k];
    std::swap(form.from[k], form.from[other]);
    std::swap(form.add[k], form.add[other]);
    for (const std::size_t place : {k, std::size_t{other}}) {
        form.add[place] = static_cast<std::uint8_t>(form.add[place] + sign * other);
    }
}

constexpr SpanForm scrambledSpan() {
    SpanForm form = untouched();
    for (std::size_t k = 0; k < scrambleBlock; ++k) step(form, k, +1);
    return form;
}

constexpr SpanForm unscrambledSpan() {
    SpanForm form = untouched();
    for (std::size_t k = scrambleBlock; k-- > 0;) step(form, k, -1);
    return form;
}

constexpr SpanForm scrambled = scrambledSpan();
constexpr SpanForm unscrambled = unscrambledSpan();

// ------------------------------------------------------------------------------------ what the table is good
// for

constexpr int distance(std::size_t a, std::size_t b) {
    return static_cast<int>(a > b ? a - b : b - a);
}

template <typename Property>
constexpr bool everywhere(std::size_t count, Property property) {
    for (std::size_t i = 0; i < count; ++i) {
        if (!property(i)) return false;
    }
    return true;
}

constexpr bool isPermutation(std::array<std::uint8_t, scrambleBlock> places) {
    std::sort(places.begin(), places.end());
    return everywhere(scrambleBlock, [&](std::size_t i) { return places[i] == i; });
}

constexpr bool areDistinct(std::array<std::uint8_t, scrambleBlock> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end();
}

static_assert(isPermutation(scrambleTable));
static_assert(everywhere(scrambleBlock, [](std::size_t i) { return scrambleTable[i] != i; }));
// Every byte moves, two places or more, and neighbours are parted; equal bytes come out different; and
// scrambling twice isn't the way back.
static_assert(everywhere(scrambleBlock, [](std::size_t i) { return distance(scrambled.from[i], i) >= 2; }));
static_assert(everywhere(scrambleBlock - 1, [](std::size_t i) {
    return distance(scrambled.from[i], scrambled.from[i + 1]) >= 2;
}));
static_assert(areDistinct(scrambled.add) &&
              everywhere(scrambleBlock, [](std::size_t i) { return scrambled.add[i] != 0; }));
static_assert(everywhere(scrambleBlock,
                         [](std::size_t i) { return scrambled.from[scrambled.from[i]] != i; }));
// The way back leads back.
static_assert(everywhere(scrambleBlock, [](std::size_t i) {
    const std::size_t middle = unscrambled.from[i];
    return scrambled.from[middle] == i && (scrambled.add[middle] + unscrambled.add[i]) % 256 == 0;
}));

// --------------------------------------------------------------------------------- the ways, plain and by
// vectors

constexpr std::size_t secondSpan = scrambleBlock - 1;

// Moves `count` spans that lie side by side.
void moveSpans(unsigned char* data, std::size_t count, const SpanForm& form) {
    for (; count > 0; --count, data += scrambleBlock) {
        std::array<unsigned char, scrambleBlock> moved;
        for (std::size_t i = 0; i < scrambleBlock; ++i) {
            moved[i] = static_cast<unsigned char>(data[form.from[i]] + form.add[i]);
        }
        std::memcpy(data, moved.data(), scrambleBlock);
    }
}

#if TARN_X86_VECTORS

TARN_SSSE3 __m128i load(const void* bytes) {
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

TARN_SSSE3 void store(void* bytes, __m128i vector) {
    _mm_storeu_si128(static_cast<__m128i*>(bytes), vector);
}

TARN_SSSE3 __m128i moveSpan(__m128i span, __m128i from, __m128i add) {
    return _mm_add_epi8(_mm_shuffle_epi8(span, from), add);
}

// Takes the buffer block by block, not span by span, and shifts by one byte in registers: what one call
// stored the next one loads in the same pieces, and no load waits for two stores to meet in memory.  That
// decides for short buffers, where the shifting costs little.
template <bool scrambles>
TARN_SSSE3 void moveBlocks(unsigned char* data, std::size_t blocks) {
    constexpr const SpanForm& form = scrambles ? scrambled : unscrambled;
    const __m128i from = load(form.from.data());
    const __m128i add = load(form.add.data());
    __m128i before = load(data);  // ends with the byte in front of the next block, as the next span reads it
    if (scrambles) before = moveSpan(before, from, add);
    __m128i span =
        _mm_slli_si128(before, 1);  // all but its first byte belong to the block that is stored next
    for (std::size_t block = 1; block < blocks; ++block, data += scrambleBlock) {
        const __m128i bytes = load(data + scrambleBlock);
        const __m128i next = moveSpan(_mm_alignr_epi8(bytes, before, secondSpan), from, add);
        __m128i moved = _mm_alignr_epi8(next, span, 1);
        if (!scrambles && block == 1) moved = moveSpan(moved, from, add);  // the way back ends with span 0
        store(data, moved);
        span = next;
        before = bytes;
    }
    __m128i moved = _mm_alignr_epi8(_mm_srli_si128(before, secondSpan), span, 1);
    if (!scrambles && blocks == 1) moved = moveSpan(moved, from, add);
    store(data, moved);
}

constexpr std::size_t longBuffer = 64;  // blocks

TARN_AVX2 void moveSpansByAvx2(unsigned char* data, std::size_t count, const SpanForm& form) {
    const __m256i from = _mm256_broadcastsi128_si256(load(form.from.data()));
    const __m256i add = _mm256_broadcastsi128_si256(load(form.add.data()));
    for (; count >= 2; count -= 2, data += 2 * scrambleBlock) {
        auto* const spans = reinterpret_cast<__m256i*>(data);
        const __m256i shuffled = _mm256_shuffle_epi8(_mm256_loadu_si256(spans), from);
        _mm256_storeu_si256(spans, _mm256_add_epi8(shuffled, add));
    }
    moveSpans(data, count, form);
}

#endif

// Puts span 0 before or behind all the others.  It stays out of line so that short buffers don't pay for it.
template <bool scrambles, typename MoveSpans>
[[gnu::noinline]] void moveInOrder(unsigned char* data, std::size_t blocks, MoveSpans move) {
    if (scrambles) moveSpans(data, 1, scrambled);
    move(data + secondSpan, blocks - 1, scrambles ? scrambled : unscrambled);
    if (!scrambles) moveSpans(data, 1, unscrambled);
}

template <bool scrambles>
void translate(char* data, std::size_t size, VectorLevel level) {
    const std::size_t blocks = size / scrambleBlock;
    if (blocks == 0) return;
    auto* const bytes = reinterpret_cast<unsigned char*>(data);
#if TARN_X86_VECTORS
    if (level >= VectorLevel::avx2 && blocks >= longBuffer) {
        return moveInOrder<scrambles>(bytes, blocks, moveSpansByAvx2);
    }
    if (level != VectorLevel::none) return moveBlocks<scrambles>(bytes, blocks);
#endif
    moveInOrder<scrambles>(bytes, blocks, moveSpans);
}

}  // namespace

void scrambleBytes(char* data, std::size_t size, VectorLevel level) {
    translate<true>(data, size, level);
}

void unscrambleBytes(char* data, std::size_t size, VectorLevel level) {
    translate<false>(data, size, level);
}

}  // namespace tarn

void scramble(char* data, std::int32_t size) {
    if (data == nullptr || size <= 0) return;
    tarn::scrambleBytes(data, static_cast<std::size_t>(size), tarn::vectorLevel());
}

void unscramble(char* data, std::int32_t size) {
    if (data == nullptr || size <= 0) return;
    tarn::unscrambleBytes(data, static_cast<std::size_t>(size), tarn::vectorLevel());
}
