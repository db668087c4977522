#include "display/kernels/coverage.h"

#include "kernels/family.h"

#include <bit>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

// 255 * ones / bits, rounded, where bits are a power of two.
template <uint32_t bits> uint8_t LevelOf(uint32_t ones) {
    return static_cast<uint8_t>(256 / bits * ones - (ones > bits / 2));
}

template <size_t side>
uint8_t Square(const uint8_t* const (&rows)[side], bool zeroesAreWhite, size_t square) {
    constexpr size_t each = 8 / side; // squares of a byte
    const size_t shift = (each - 1 - square % each) * side;
    uint32_t ones = 0;
    for (size_t row = 0; row < side; ++row)
        ones += static_cast<uint32_t>(
            std::popcount(static_cast<uint32_t>(rows[row][square / each] >> shift & ((1u << side) - 1))));
    constexpr uint32_t bits = side * side;
    return LevelOf<bits>(zeroesAreWhite ? bits - ones : ones);
}

template <size_t side>
void PlainSquares(const uint8_t* const (&rows)[side], bool zeroesAreWhite, uint8_t* levels, size_t from,
                  size_t squares) {
    for (size_t square = from; square < squares; ++square)
        levels[square] = Square<side>(rows, zeroesAreWhite, square);
}

#if defined(__AVX2__)

void AddBits(const uint8_t* bits, uint32_t weight, uint32_t* sums, size_t groups) {
    const __m256i places = _mm256_setr_epi32(128, 64, 32, 16, 8, 4, 2, 1);
    const __m256i weights = _mm256_set1_epi32(static_cast<int>(weight));
    for (size_t i = 0; i < groups; ++i) {
        if (bits[i] == 0) continue;
        const __m256i byte = _mm256_set1_epi32(bits[i]);
        const __m256i isSet = _mm256_cmpeq_epi32(_mm256_and_si256(byte, places), places);
        auto* sum = reinterpret_cast<__m256i*>(sums + i * 8);
        _mm256_storeu_si256(sum, _mm256_add_epi32(_mm256_loadu_si256(sum), _mm256_and_si256(isSet, weights)));
    }
}

// The ones of each half of 32 bytes, over some rows.
template <size_t side> struct Halves {
    __m256i Upper = _mm256_setzero_si256(), Lower = _mm256_setzero_si256();

    Halves(const uint8_t* const (&rows)[side], size_t byte) {
        const __m256i nibble = _mm256_set1_epi8(15);
        const __m256i counts = _mm256_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4, 0, 1, 1, 2, 1,
                                                2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4);
        for (const uint8_t* row : rows) {
            const __m256i bits = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(row + byte));
            const __m256i upper = _mm256_and_si256(_mm256_srli_epi16(bits, 4), nibble);
            Upper = _mm256_add_epi8(Upper, _mm256_shuffle_epi8(counts, upper));
            Lower = _mm256_add_epi8(Lower, _mm256_shuffle_epi8(counts, _mm256_and_si256(bits, nibble)));
        }
    }
};

template <uint32_t bits> void StoreLevels(__m256i ones, bool zeroesAreWhite, uint8_t* levels) {
    if (zeroesAreWhite) ones = _mm256_sub_epi8(_mm256_set1_epi8(static_cast<char>(bits)), ones);
    __m256i scaled = ones;
    for (uint32_t factor = 256 / bits; factor > 1; factor /= 2)
        scaled = _mm256_add_epi8(scaled, scaled);
    const __m256i isMost = _mm256_cmpgt_epi8(ones, _mm256_set1_epi8(static_cast<char>(bits / 2)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(levels), _mm256_add_epi8(scaled, isMost));
}

void Squares4(const uint8_t* const (&rows)[4], bool zeroesAreWhite, uint8_t* levels, size_t squares) {
    size_t done = 0;
    for (; done + 64 <= squares; done += 64) {
        const Halves<4> halves(rows, done / 2);
        const __m256i low = _mm256_unpacklo_epi8(halves.Upper, halves.Lower);
        const __m256i high = _mm256_unpackhi_epi8(halves.Upper, halves.Lower);
        StoreLevels<16>(_mm256_permute2x128_si256(low, high, 0x20), zeroesAreWhite, levels + done);
        StoreLevels<16>(_mm256_permute2x128_si256(low, high, 0x31), zeroesAreWhite, levels + done + 32);
    }
    PlainSquares<4>(rows, zeroesAreWhite, levels, done, squares);
}

void Squares8(const uint8_t* const (&rows)[8], bool zeroesAreWhite, uint8_t* levels, size_t squares) {
    size_t done = 0;
    for (; done + 32 <= squares; done += 32) {
        const Halves<8> halves(rows, done);
        StoreLevels<64>(_mm256_add_epi8(halves.Upper, halves.Lower), zeroesAreWhite, levels + done);
    }
    PlainSquares<8>(rows, zeroesAreWhite, levels, done, squares);
}

#else

void AddBits(const uint8_t* bits, uint32_t weight, uint32_t* sums, size_t groups) {
    for (size_t i = 0; i < groups; ++i) {
        const uint32_t byte = bits[i];
        if (byte == 0) continue;
        for (uint32_t bit = 0; bit < 8; ++bit)
            sums[i * 8 + bit] += weight & (0u - (byte >> (7 - bit) & 1));
    }
}

void Squares4(const uint8_t* const (&rows)[4], bool zeroesAreWhite, uint8_t* levels, size_t squares) {
    PlainSquares<4>(rows, zeroesAreWhite, levels, 0, squares);
}

void Squares8(const uint8_t* const (&rows)[8], bool zeroesAreWhite, uint8_t* levels, size_t squares) {
    PlainSquares<8>(rows, zeroesAreWhite, levels, 0, squares);
}

#endif

} // namespace

template <>
constinit const CoverageKernels Compiled<CoverageKernels, ThisSet>::Table = {AddBits, Squares4, Squares8};

} // namespace zkr::kernels
