// The codec by the byte permutations of AVX-512, which look up a whole register at once: 48 bytes or one
// piece of 64 characters at a time.  Masks keep every load and store within the bytes that are meant, also
// for what is shorter.

#include <array>
#include <cstdint>

#include "store/uu_codec_paths.h"

#if TARN_X86_VECTORS

namespace tarn {
namespace {

constexpr std::size_t vectorBytes = 48;
constexpr std::size_t vectorCharacters = 64;
static_assert(vectorCharacters == decodedPiece);

constexpr std::uint8_t outside = 0x80;

// The values of the characters below 128, `outside` for those that aren't in the alphabet.
constexpr std::array<std::uint8_t, 128> valuesOf(std::string_view characters) {
    std::array<std::uint8_t, 128> values{};
    values.fill(outside);
    for (std::size_t i = 0; i < characters.size(); ++i) {
        values[static_cast<unsigned char>(characters[i])] = static_cast<std::uint8_t>(i);
    }
    return values;
}
constexpr auto standardValues = valuesOf(standardCharacters);
constexpr auto variantValues = valuesOf(variantCharacters);

using Bytes = std::array<std::uint8_t, 64>;

// Encoding: the order that gives each four values their three bytes b0 b1 b2 as b1 b0 b2 b1, so that a
// rotation of eight such bytes brings every six bits to the end of one byte.
constexpr Bytes spreadOrder() {
    Bytes order{};
    for (std::size_t i = 0; i < order.size(); ++i) {
        constexpr std::uint8_t within[]{1, 0, 2, 1};
        order[i] = static_cast<std::uint8_t>(i / 4 * 3 + within[i % 4]);
    }
    return order;
}
constexpr Bytes spread = spreadOrder();

// Decoding: a group's 24 bits stand in 32, the lowest byte first.
constexpr Bytes gatherOrder() {
    Bytes order{};
    for (std::size_t i = 0; i < vectorBytes; ++i) order[i] = static_cast<std::uint8_t>(i / 3 * 4 + 2 - i % 3);
    return order;
}
constexpr Bytes gather = gatherOrder();

TARN_AVX512 inline __m512i load(const void* bytes) {
    return _mm512_loadu_si512(bytes);
}

constexpr __mmask64 everything = ~__mmask64{0};  // for the masked forms: g++ warns of its unmasked ones

constexpr __mmask64 firstBytes(std::size_t count) {
    return count >= 64 ? everything : (__mmask64{1} << count) - 1;
}

struct Values {
    __m512i values;
    __mmask64 outsiders;
};

TARN_AVX512 inline Values valuesOfCharacters(__m512i characters, __m512i low, __m512i high) {
    const __m512i values = _mm512_permutex2var_epi8(low, characters, high);  // by the lower seven bits
    return {values, _mm512_movepi8_mask(_mm512_or_si512(characters, values))};
}

TARN_AVX512 inline __m512i bytesOfValues(__m512i values) {
    const __m512i pairs = _mm512_maddubs_epi16(values, _mm512_set1_epi32(0x01400140));
    const __m512i groups = _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
    return _mm512_maskz_permutexvar_epi8(everything, load(gather.data()), groups);
}

}  // namespace

TARN_AVX512 std::size_t encodeByAvx512(const unsigned char* source, std::size_t length, char* target,
                                       bool standard) {
    const __m512i characters = load((standard ? standardCharacters : variantCharacters).data());
    const __m512i order = load(spread.data());
    const __m512i rotations = _mm512_set1_epi64(0x3036242A1016040A);
    const std::size_t groups = length / 3;
    for (std::size_t left = groups; left > 0;) {
        const std::size_t taken = left < 16 ? left : 16;
        const __m512i bytes = _mm512_maskz_loadu_epi8(firstBytes(3 * taken), source);
        const __m512i values = _mm512_maskz_multishift_epi64_epi8(
            everything, rotations, _mm512_maskz_permutexvar_epi8(everything, order, bytes));
        _mm512_mask_storeu_epi8(target, firstBytes(4 * taken),
                                _mm512_maskz_permutexvar_epi8(everything, values, characters));
        left -= taken;
        source += vectorBytes;
        target += vectorCharacters;
    }
    return 3 * groups;
}

TARN_AVX512 std::size_t decodeByAvx512(const char* text, std::size_t length, unsigned char* target,
                                       bool standard) {
    const auto& table = standard ? standardValues : variantValues;
    const __m512i low = load(table.data()), high = load(table.data() + 64);
    std::size_t done = 0;
    for (; length - done >= decodedPiece; done += decodedPiece, target += vectorBytes) {
        const Values piece = valuesOfCharacters(load(text + done), low, high);
        if (piece.outsiders != 0) break;
        const __m512i bytes = bytesOfValues(piece.values);  // 48 of them, by plain stores: masks cost more
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target),
                            _mm512_maskz_extracti64x4_epi64(0xF, bytes, 0));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + 32),
                         _mm512_maskz_extracti32x4_epi32(0xF, bytes, 2));
    }
    return done;
}

TARN_AVX512 std::size_t decodeGroupsByAvx512(const char* piece, std::size_t length, unsigned char* target,
                                             bool standard) {
    const auto& table = standard ? standardValues : variantValues;
    // What the mask leaves out is 0, which is outside the alphabet.
    const Values found = valuesOfCharacters(_mm512_maskz_loadu_epi8(firstBytes(length), piece),
                                            load(table.data()), load(table.data() + 64));
    const std::size_t count =
        found.outsiders == 0 ? vectorCharacters : static_cast<std::size_t>(__builtin_ctzll(found.outsiders));
    _mm512_mask_storeu_epi8(target, firstBytes(count / 4 * 3), bytesOfValues(found.values));
    return count / 4 * 4;
}

}  // namespace tarn

#else

std::size_t tarn::encodeByAvx512(const unsigned char*, std::size_t, char*, bool) {
    return 0;
}
std::size_t tarn::decodeByAvx512(const char*, std::size_t, unsigned char*, bool) {
    return 0;
}
std::size_t tarn::decodeGroupsByAvx512(const char*, std::size_t, unsigned char*, bool) {
    return 0;
}

#endif
