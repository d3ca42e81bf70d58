#pragma once

// All steps of scrambling in one, worked out by the compiler from the table; users want store/file_tools.h.
//
// Scrambling takes sixteen steps over each span of 16 bytes: "swap byte k and byte T[k], add T[k] to both".
// No step looks at a byte's value, so that any number of them moves each byte to a fixed place and adds a
// fixed number to it.  The form of a buffer has both for each place; it is found by taking the steps over a
// buffer of places instead of values.
//
// Threads: constants only.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "store/scramble.h"

namespace tarn {

enum class Direction { scrambling, unscrambling };

// Byte i of a buffer becomes its earlier byte from[i], plus add[i] modulo 256.
template <std::size_t blocks>
struct BufferForm {
    std::array<std::uint8_t, blocks * scrambleBlock> from{};
    std::array<std::uint8_t, blocks * scrambleBlock> add{};

    constexpr explicit BufferForm(Direction direction) {
        for (std::size_t i = 0; i < from.size(); ++i) from[i] = static_cast<std::uint8_t>(i);
        constexpr std::size_t steps = blocks * scrambleBlock;
        const bool forward = direction == Direction::scrambling;
        for (std::size_t i = 0; i < steps; ++i) {
            const std::size_t step = forward ? i : steps - 1 - i;
            takeStep(spanStart(step / scrambleBlock), step % scrambleBlock, forward ? +1 : -1);
        }
    }

  private:
    // Span 0 covers bytes 0 to 15 and every later one begins a byte before its block.
    static constexpr std::size_t spanStart(std::size_t block) {
        return block * scrambleBlock - (block == 0 ? 0 : 1);
    }

    constexpr void takeStep(std::size_t span, std::size_t k, int sign) {
        const std::uint8_t entry = scrambleTable[k];
        const std::size_t p = span + k;
        const std::size_t q = span + entry;
        std::swap(from[p], from[q]);
        std::swap(add[p], add[q]);
        add[p] = static_cast<std::uint8_t>(add[p] + sign * entry);
        add[q] = static_cast<std::uint8_t>(add[q] + sign * entry);
    }
};

using SpanForm = BufferForm<1>;  // span 0 alone is a buffer of one block; all other spans have the same form

// How one block of a buffer comes from itself and its two neighbours: three shuffles, each of which gives 0
// where a byte comes from another block, and an addition.
struct BlockForm {
    using Lane = std::array<std::uint8_t, scrambleBlock>;
    Lane before{};
    Lane own{};
    Lane after{};
    Lane add{};

    template <std::size_t blocks>
    constexpr BlockForm(const BufferForm<blocks>& buffer, std::size_t block) {
        constexpr std::uint8_t zero = 0x80;
        for (Lane* lane : {&before, &own, &after}) lane->fill(zero);
        for (std::size_t i = 0; i < scrambleBlock; ++i) {
            const std::size_t place = block * scrambleBlock + i;
            const std::size_t source = buffer.from[place] / scrambleBlock;
            Lane& lane = source < block ? before : source > block ? after : own;
            lane[i] = buffer.from[place] % scrambleBlock;
            add[i] = buffer.add[place];
        }
    }
};

// The form of a block that another one follows, and that of the last block.
struct BlockKind {
    BlockForm inner;
    BlockForm last;
};

// The kinds of block 0, of block 1 and of every later block.  The first two differ because spans 0 and 1
// overlap.
constexpr std::array<BlockKind, 3> blockKinds(Direction direction) {
    const BufferForm<4> whole(direction);
    return {{{BlockForm(whole, 0), BlockForm(BufferForm<1>(direction), 0)},
             {BlockForm(whole, 1), BlockForm(BufferForm<2>(direction), 1)},
             {BlockForm(whole, 2), BlockForm(BufferForm<3>(direction), 2)}}};
}

// ------------------------------------------------------------------------------- what the table guarantees

namespace scrambleproof {

constexpr SpanForm scrambled(Direction::scrambling);
constexpr SpanForm unscrambled(Direction::unscrambling);

template <typename Property>
constexpr bool everywhere(Property property) {
    for (std::size_t i = 0; i < scrambleBlock; ++i) {
        if (!property(i)) return false;
    }
    return true;
}

constexpr bool areApart(std::size_t a, std::size_t b) {
    return a > b + 1 || b > a + 1;
}

constexpr bool areDistinct(std::array<std::uint8_t, scrambleBlock> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end();
}

// A permutation without a fixed point.
static_assert(areDistinct(scrambleTable));
static_assert(everywhere([](std::size_t i) {
    return scrambleTable[i] < scrambleBlock && scrambleTable[i] != i;
}));
// Every byte moves, by two places or more.
static_assert(everywhere([](std::size_t i) { return areApart(scrambled.from[i], i); }));
// Neighbours are parted.
static_assert(everywhere([](std::size_t i) {
    return i == 0 || areApart(scrambled.from[i], scrambled.from[i - 1]);
}));
// Equal bytes come out different, and other than they were.
static_assert(areDistinct(scrambled.add));
static_assert(everywhere([](std::size_t i) { return scrambled.add[i] != 0; }));
// Scrambling twice isn't the way back, not for any byte.
static_assert(everywhere([](std::size_t i) { return scrambled.from[scrambled.from[i]] != i; }));
// The way back is.
static_assert(everywhere([](std::size_t i) {
    const std::size_t middle = unscrambled.from[i];
    return scrambled.from[middle] == i && (scrambled.add[middle] + unscrambled.add[i]) % 256 == 0;
}));

}  // namespace scrambleproof
}  // namespace tarn
