// The codec by AVX2, 24 bytes and 32 characters at a time, after W. Muła and D. Lemire, "Faster Base64
// Encoding and Decoding using AVX2 Instructions" (2018).  Two sets of tables are worked out from the alphabet
// by the compiler:
//
//   encoding   The values fall into 14 classes: A-Z, a-z, each digit, and each of the two last characters.
//              A class has one distance from value to character; a saturated subtraction finds the class.
//   decoding   Columns are low nibbles of characters, rows high ones.  A character is in the alphabet if its
//              column's set holds the bit of its row.  A row has one distance from character to value, but
//              column 15, where / ? and _ are, has distances of its own.
//
// Tests: tests/store/uu_codec_test.cpp.

#include <array>
#include <cstdint>

#include "store/uu_codec_paths.h"

#if TARN_X86_VECTORS

namespace tarn {
namespace {

using Lane = std::array<std::uint8_t, 16>;

constexpr unsigned lastColumn = 15;
constexpr std::uint8_t apart = 8;  // in a column's set, and no row's bit: the column has its own distances

constexpr std::uint8_t bitOfRow(unsigned row) {
    constexpr Lane bits{0, 0, 1, 2, 4, 16, 32, 64};  // both alphabets lie in rows 2 to 7
    return bits[row];
}

struct VectorTables {
    Lane classDistances{};  // encoding
    Lane columns{};         // decoding: the set of each column
    Lane rows{};            // the bit of each row
    Lane rowDistances{};    // by row, and by row + 8 in column 15

    constexpr explicit VectorTables(std::string_view characters) {
        const auto distance = [&](std::size_t value) {
            return static_cast<std::uint8_t>(static_cast<unsigned char>(characters[value]) - value);
        };
        classDistances[0] = distance(0);
        for (std::size_t i = 1; i <= 13; ++i) classDistances[i] = distance(i + 50);
        for (unsigned row = 0; row < 8; ++row) rows[row] = bitOfRow(row);
        columns[lastColumn] = apart;
        for (std::size_t value = 0; value < alphabetSize; ++value) {
            const auto character = static_cast<unsigned char>(characters[value]);
            const unsigned row = character >> 4;
            const unsigned column = character & 15U;
            columns[column] = static_cast<std::uint8_t>(columns[column] | bitOfRow(row));
            rowDistances[row | (columns[column] & apart)] = static_cast<std::uint8_t>(0 - distance(value));
        }
    }
};

constexpr VectorTables standardTables(standardCharacters);
constexpr VectorTables variantTables(variantCharacters);

constexpr std::size_t vectorBytes = 24;
constexpr std::size_t vectorCharacters = 32;

TARN_AVX2 inline __m256i bothLanes(const Lane& lane) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(lane.data())));
}

// The 24 bytes as 32 values of 6 bits.  Each half takes twelve of the sixteen bytes that it loads: the lower
// half the first twelve, the upper one the last, so that no byte outside the 24 is read.
TARN_AVX2 inline __m256i valuesOfBytes(const unsigned char* source) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + 8));
    const __m256i order = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10,  //
                                           5, 4, 6, 5, 8, 7, 9, 8, 11, 10, 12, 11, 14, 13, 15, 14);
    const __m256i bytes = _mm256_shuffle_epi8(_mm256_set_m128i(high, low), order);
    // Multiplying shifts each field of six bits to the end of its byte.
    const __m256i first = _mm256_mulhi_epu16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x0FC0FC00)),
                                             _mm256_set1_epi32(0x04000040));
    const __m256i second = _mm256_mullo_epi16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x003F03F0)),
                                              _mm256_set1_epi32(0x01000010));
    return _mm256_or_si256(first, second);
}

TARN_AVX2 inline __m256i charactersOfValues(__m256i values, __m256i distances) {
    const __m256i isNoCapital = _mm256_cmpgt_epi8(values, _mm256_set1_epi8(25));  // -1 or 0
    const __m256i classes = _mm256_sub_epi8(_mm256_subs_epu8(values, _mm256_set1_epi8(51)), isNoCapital);
    return _mm256_add_epi8(values, _mm256_shuffle_epi8(distances, classes));
}

struct Values {
    __m256i values;
    __m256i member;  // 0 in each byte whose character is outside the alphabet
};

TARN_AVX2 inline Values valuesOfCharacters(const char* text, __m256i columns, __m256i rows,
                                           __m256i distances) {
    const __m256i characters = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
    const __m256i row = _mm256_and_si256(_mm256_srli_epi32(characters, 4), _mm256_set1_epi8(15));
    const __m256i set = _mm256_shuffle_epi8(columns, characters);  // empty for bytes of 0x80 and above
    const __m256i place = _mm256_or_si256(row, _mm256_and_si256(set, _mm256_set1_epi8(apart)));
    return {_mm256_add_epi8(characters, _mm256_shuffle_epi8(distances, place)),
            _mm256_and_si256(set, _mm256_shuffle_epi8(rows, row))};
}

// The 32 values as 24 bytes, with 8 bytes of no meaning behind them.
TARN_AVX2 inline __m256i bytesOfValues(__m256i values) {
    const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
    const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
    const __m256i order = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,  //
                                           2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(groups, order),
                                       _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
}

TARN_AVX2 inline void putBytes(unsigned char* target, __m256i bytes, bool exactly) {
    if (!exactly) return _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), bytes);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm256_castsi256_si128(bytes));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(target + 16), _mm256_extracti128_si256(bytes, 1));
}

}  // namespace

TARN_AVX2 std::size_t encodeByAvx2(const unsigned char* source, std::size_t length, char* target,
                                   bool standard) {
    const __m256i distances = bothLanes((standard ? standardTables : variantTables).classDistances);
    std::size_t done = 0;
    for (; length - done >= vectorBytes; done += vectorBytes, target += vectorCharacters) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target),
                            charactersOfValues(valuesOfBytes(source + done), distances));
    }
    return done;
}

TARN_AVX2 std::size_t decodeByAvx2(const char* text, std::size_t length, unsigned char* target,
                                   bool standard) {
    static_assert(decodedPiece == 2 * vectorCharacters);
    const VectorTables& tables = standard ? standardTables : variantTables;
    const __m256i columns = bothLanes(tables.columns);
    const __m256i rows = bothLanes(tables.rows);
    const __m256i distances = bothLanes(tables.rowDistances);
    std::size_t done = 0;
    for (; length - done >= decodedPiece; done += decodedPiece, target += 2 * vectorBytes) {
        const Values first = valuesOfCharacters(text + done, columns, rows, distances);
        const Values second = valuesOfCharacters(text + done + vectorCharacters, columns, rows, distances);
        const __m256i least = _mm256_min_epu8(first.member, second.member);
        if (_mm256_movemask_epi8(_mm256_cmpeq_epi8(least, _mm256_setzero_si256())) != 0) break;
        putBytes(target, bytesOfValues(first.values), false);
        const bool isLast = length - done < 2 * decodedPiece;
        putBytes(target + vectorBytes, bytesOfValues(second.values), isLast);
    }
    return done;
}

}  // namespace tarn

#else

std::size_t tarn::encodeByAvx2(const unsigned char*, std::size_t, char*, bool) {
    return 0;
}
std::size_t tarn::decodeByAvx2(const char*, std::size_t, unsigned char*, bool) {
    return 0;
}

#endif
