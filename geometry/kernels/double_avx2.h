// Rows of twice the width in vectors. There every other pixel is a source pixel, and those between are halfway.
#pragma once

#include "geometry/kernels/resample.h"
#include "geometry/kernels/resample_avx2.h"
#include "geometry/kernels/spline_avx2.h"

#include <array>

namespace zkr::kernels {

namespace {

// For bytes `from` to `from + 16` of pixels by turns out of two registers: where each comes from, of those that this one
// has.
template <size_t pixelBytes> constexpr std::array<int8_t, 16> Turns(size_t from, size_t whose) {
    std::array<int8_t, 16> places = {};
    for (size_t i = 0; i < 16; ++i) {
        const size_t pixel = (from + i) / pixelBytes, byte = (from + i) % pixelBytes;
        const size_t place = pixel / 2 * pixelBytes + byte;
        places[i] = pixel % 2 == whose && place < 16 ? static_cast<int8_t>(place) : int8_t{-1};
    }
    return places;
}
template <size_t pixelBytes> __m128i TakeTurns(size_t from, size_t whose) {
    const std::array<int8_t, 16> places = Turns<pixelBytes>(from, whose);
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(places.data()));
}

// The means of samples, rounded down.
template <typename Sample> __m128i Halfway(__m128i a, __m128i b) {
    const __m128i odd = _mm_xor_si128(a, b);
    if constexpr (sizeof(Sample) == 1)
        return _mm_sub_epi8(_mm_avg_epu8(a, b), _mm_and_si128(odd, _mm_set1_epi8(1)));
    else
        return _mm_sub_epi16(_mm_avg_epu16(a, b), _mm_and_si128(odd, _mm_set1_epi16(1)));
}

// The first column that is a source pixel with the halfway one behind it; the count where there is none.
bool AreTwo(const LinearColumn& a, const LinearColumn& b) {
    return a.First == b.First && a.Weight == 0 && b.Weight != 0;
}
bool AreTwo(const SplineColumn& a, const SplineColumn& b) {
    return a.First == b.First && a.T == 0 && b.T != 0;
}
template <class Column> size_t FirstOfTwo(const Column* columns, size_t count) {
    size_t i = 0;
    while (i + 1 < count && !AreTwo(columns[i], columns[i + 1]))
        ++i;
    return i + 1 < count ? i : count;
}

// The first column is a source pixel. A store may pass the last column that is made, but no column that there is.
template <typename Sample, size_t channels>
size_t LinearDoubled(const uint8_t* source, uint32_t base, const LinearColumn* columns, size_t count,
                     uint8_t* target) {
    constexpr size_t pixelBytes = channels * sizeof(Sample), pixels = 16 / pixelBytes;
    const __m128i lowHere = TakeTurns<pixelBytes>(0, 0), lowBetween = TakeTurns<pixelBytes>(0, 1);
    const __m128i highHere = TakeTurns<pixelBytes>(16, 0), highBetween = TakeTurns<pixelBytes>(16, 1);
    if (count == 0) return 0;
    const size_t end = (size_t{columns[count - 1].Second - base} + 1) * pixelBytes;
    size_t at = size_t{columns[0].First - base} * pixelBytes, i = 0;
    for (; at + pixelBytes + 16 <= end && (count - i) * pixelBytes >= 32;
         at += pixels * pixelBytes, i += pixels * 2) {
        const __m128i here = Load16(source + at);
        const __m128i between = Halfway<Sample>(here, Load16(source + at + pixelBytes));
        uint8_t* const to = target + i * pixelBytes;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_or_si128(_mm_shuffle_epi8(here, lowHere),
                                                                      _mm_shuffle_epi8(between, lowBetween)));
        _mm_storeu_si128(
            reinterpret_cast<__m128i*>(to + 16),
            _mm_or_si128(_mm_shuffle_epi8(here, highHere), _mm_shuffle_epi8(between, highBetween)));
    }
    return i;
}

// Likewise, two source pixels at a time with what lies behind each.
template <typename Sample, size_t channels>
size_t SplineDoubled(const uint8_t* source, const float* m, uint32_t base, const SplineColumn* columns,
                     size_t count, uint8_t* target) {
    constexpr size_t pixelBytes = channels * sizeof(Sample);
    if (count < 2) return 0;
    const size_t end = (size_t{columns[count - 1].Second - base} + 1) * pixelBytes;
    const SplineColumn& between = columns[1];
    const __m256 a = _mm256_set1_ps(between.A), t = _mm256_set1_ps(between.T),
                 firstM = _mm256_set1_ps(between.FirstM), secondM = _mm256_set1_ps(between.SecondM),
                 half = _mm256_set1_ps(0.5f);
    const __m128i lowHere = TakeTurns<pixelBytes>(0, 0), lowBetween = TakeTurns<pixelBytes>(0, 1);
    const __m128i highHere = TakeTurns<pixelBytes>(16, 0), highBetween = TakeTurns<pixelBytes>(16, 1);
    const __m128i packed = channels == 4
                               ? _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, -1, -1, -1, -1, -1, -1, -1, -1)
                               : _mm_setr_epi8(0, 1, 2, 4, 5, 6, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m128i packedWords = channels == 4
                                    ? _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15)
                                    : _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1);
    size_t pixel = columns[0].First - base, i = 0;
    for (; (pixel + 2) * pixelBytes + 16 <= end && (count - i) * pixelBytes >= 32; pixel += 2, i += 4) {
        const uint8_t* const from = source + pixel * pixelBytes;
        const __m256 first = _mm256_cvtepi32_ps(TwoPixels<Sample>(from, from + pixelBytes));
        const __m256 second = _mm256_cvtepi32_ps(TwoPixels<Sample>(from + pixelBytes, from + 2 * pixelBytes));
        __m256 value = _mm256_add_ps(_mm256_mul_ps(a, first), _mm256_mul_ps(t, second));
        value = _mm256_add_ps(value, _mm256_mul_ps(firstM, _mm256_loadu_ps(m + pixel * Places)));
        value = _mm256_add_ps(value, _mm256_mul_ps(secondM, _mm256_loadu_ps(m + (pixel + 1) * Places)));
        const __m256i whole = _mm256_cvttps_epi32(_mm256_add_ps(value, half));
        const __m128i low = _mm256_castsi256_si128(whole), high = _mm256_extracti128_si256(whole, 1);
        __m128i made;
        if constexpr (sizeof(Sample) == 1) {
            const __m128i words = _mm_packs_epi32(low, high);
            made = _mm_shuffle_epi8(_mm_packus_epi16(words, words), packed);
        } else {
            made = _mm_shuffle_epi8(_mm_packus_epi32(low, high), packedWords);
        }
        const __m128i here = Load16(from);
        uint8_t* const to = target + i * pixelBytes;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                         _mm_or_si128(_mm_shuffle_epi8(here, lowHere), _mm_shuffle_epi8(made, lowBetween)));
        if constexpr (pixelBytes > 4)
            _mm_storeu_si128(
                reinterpret_cast<__m128i*>(to + 16),
                _mm_or_si128(_mm_shuffle_epi8(here, highHere), _mm_shuffle_epi8(made, highBetween)));
    }
    return i;
}

} // namespace

} // namespace zkr::kernels
