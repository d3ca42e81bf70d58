// Scrambling by the forms of scramble_forms.h.  Span by span, one shuffle and one addition are enough: all
// spans but the first lie side by side and are independent of each other.  Byte 15 is in the first two, so
// that the order of these counts.  Block by block it takes three shuffles, but every block is loaded and
// stored where it lies.
// Tests: tests/store/scramble_test.cpp.

#include "store/scramble.h"

#include <algorithm>
#include <cstring>

#include "store/file_tools.h"
#include "store/scramble_forms.h"

namespace tarn {
namespace {

constexpr SpanForm scrambledSpan(Direction::scrambling);
constexpr SpanForm unscrambledSpan(Direction::unscrambling);

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

// Moves all spans, the first one before all the others or behind them.  It isn't inlined, so that short
// buffers don't pay for it.
template <Direction direction, typename MoveSpans>
[[gnu::noinline]] void moveSpanBySpan(unsigned char* data, std::size_t blocks, MoveSpans moveRest) {
    constexpr std::size_t secondSpan = scrambleBlock - 1;
    constexpr bool forward = direction == Direction::scrambling;
    if (forward) moveSpans(data, 1, scrambledSpan);
    moveRest(data + secondSpan, blocks - 1, forward ? scrambledSpan : unscrambledSpan);
    if (!forward) moveSpans(data, 1, unscrambledSpan);
}

#if TARN_X86_VECTORS

constexpr auto scrambledBlocks = blockKinds(Direction::scrambling);
constexpr auto unscrambledBlocks = blockKinds(Direction::unscrambling);

TARN_SSSE3 inline __m128i load(const void* bytes) {
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

TARN_SSSE3 inline void moveBlock(unsigned char* data, __m128i before, __m128i own, __m128i after,
                                 const BlockForm& form) {
    const __m128i neighbours = _mm_or_si128(_mm_shuffle_epi8(before, load(form.before.data())),
                                            _mm_shuffle_epi8(after, load(form.after.data())));
    // A byte that comes from a neighbour is 0 here, plus what is added to it.
    const __m128i moved = _mm_add_epi8(_mm_shuffle_epi8(own, load(form.own.data())), load(form.add.data()));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(data), _mm_add_epi8(moved, neighbours));
}

// The next call loads what this one stores in the same pieces, so that no load waits for two stores to meet
// in memory.  For short buffers that makes the difference.
template <Direction direction>
TARN_SSSE3 void moveBlockByBlock(unsigned char* data, std::size_t blocks) {
    constexpr const auto& kinds = direction == Direction::scrambling ? scrambledBlocks : unscrambledBlocks;
    const BlockKind* kind = kinds.data();
    __m128i before = _mm_setzero_si128();
    __m128i own = load(data);
    for (; blocks > 1; --blocks, data += scrambleBlock) {
        const __m128i after = load(data + scrambleBlock);
        moveBlock(data, before, own, after, kind->inner);
        before = own;
        own = after;
        if (kind != &kinds.back()) ++kind;
    }
    moveBlock(data, before, own, _mm_setzero_si128(), kind->last);
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

template <Direction direction>
void translate(char* data, std::size_t size, [[maybe_unused]] VectorLevel level) {
    const std::size_t blocks = size / scrambleBlock;
    if (blocks == 0) return;
    auto* const bytes = reinterpret_cast<unsigned char*>(data);
#if TARN_X86_VECTORS
    if (level >= VectorLevel::avx2 && blocks >= longBuffer) {
        return moveSpanBySpan<direction>(bytes, blocks, moveSpansByAvx2);
    }
    if (level != VectorLevel::none) return moveBlockByBlock<direction>(bytes, blocks);
#endif
    moveSpanBySpan<direction>(bytes, blocks, moveSpans);
}

}  // namespace

void scrambleBytes(char* data, std::size_t size, VectorLevel level) {
    translate<Direction::scrambling>(data, size, level);
}

void unscrambleBytes(char* data, std::size_t size, VectorLevel level) {
    translate<Direction::unscrambling>(data, size, level);
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
