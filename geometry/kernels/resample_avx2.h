// Columns of rows in vectors. What is worked out for a pixel is what the plain kernels work out, operation by operation;
// several pixels or channels go side by side. Each function makes as many columns from the first on as vectors can, reads
// no byte behind the pixels that the columns need, and says how many it has made.
#pragma once

#include "geometry/kernels/resample.h"
#include "geometry/kernels/samples.h"

#include <immintrin.h>

namespace zkr::kernels {

namespace {

__m128i Load8(const uint8_t* from) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
}
__m128i Load16(const uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
void Store8(uint8_t* to, __m128i value) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), value);
}
__m256i InBothLanes(const void* from) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(from)));
}
__m256i Lanes(__m128i low, __m128i high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

// So many columns from the first on begin where a load of `bytes` stays within `end` bytes of the source.
template <size_t pixelBytes, class Column>
size_t ColumnsWithin(const Column* columns, size_t count, uint32_t base, size_t bytes, size_t end) {
    while (count > 0 && size_t{columns[count - 1].First - base} * pixelBytes + bytes > end)
        --count;
    return count;
}

// Four pixels of 8-bit samples: both source pixels of each, sample beside sample, by their weights.
template <size_t channels>
size_t LinearBytes(const uint8_t* source, uint32_t base, const LinearColumns& columns, size_t count,
                   uint8_t* target) {
    const __m256i beside =
        channels == 4
            ? _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15))
            : _mm256_broadcastsi128_si256(
                  _mm_setr_epi8(0, 3, 1, 4, 2, 5, -1, -1, 8, 11, 9, 12, 10, 13, -1, -1));
    const __m256i pairs = _mm256_setr_epi8(0, 2, 0, 2, 0, 2, 0, 2, 4, 6, 4, 6, 4, 6, 4, 6, 8, 10, 8, 10, 8,
                                           10, 8, 10, 12, 14, 12, 14, 12, 14, 12, 14);
    const __m256i words = _mm256_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 4, 5, 4, 5, 4, 5, 4, 5, 8, 9, 8, 9, 8, 9,
                                           8, 9, 12, 13, 12, 13, 12, 13, 12, 13);
    const __m256i packed = channels == 4
                               ? _mm256_broadcastsi128_si256(
                                     _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, -1, -1, -1, -1, -1, -1, -1, -1))
                               : _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 2, 4, 8, 10, 12, -1, -1, -1, -1,
                                                                           -1, -1, -1, -1, -1, -1));
    size_t i = 0;
    for (; i + 4 < count; i += 4) { // a store may pass the fourth pixel
        const auto pixels = [&](size_t k) {
            return Load8(source + size_t{columns.At[i + k].First - base} * channels);
        };
        const __m256i both =
            Lanes(_mm_unpacklo_epi64(pixels(0), pixels(1)), _mm_unpacklo_epi64(pixels(2), pixels(3)));
        const __m256i weights = _mm256_shuffle_epi8(InBothLanes(columns.Pairs + i), pairs);
        const __m256i reciprocals = _mm256_shuffle_epi8(InBothLanes(columns.Reciprocals + i), words);
        const __m256i sums = _mm256_maddubs_epi16(_mm256_shuffle_epi8(both, beside), weights);
        const __m256i made = _mm256_shuffle_epi8(_mm256_mulhi_epu16(sums, reciprocals), packed);
        Store8(target + i * channels, _mm256_castsi256_si128(made));
        Store8(target + (i + 2) * channels, _mm256_extracti128_si256(made, 1));
    }
    return i;
}

// Two pixels of 16-bit samples, which are worked on as if they were signed. Sums are so short that the quotient in single
// precision cannot pass a whole number that it should not pass, once it is moved up by half a step.
template <size_t channels>
size_t LinearWords(const uint8_t* source, uint32_t base, const LinearColumns& columns, size_t count,
                   uint8_t* target) {
    const __m256i beside =
        channels == 4
            ? _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15))
            : _mm256_broadcastsi128_si256(
                  _mm_setr_epi8(0, 1, 6, 7, 2, 3, 8, 9, 4, 5, 10, 11, -1, -1, -1, -1));
    const __m256i sign = _mm256_set1_epi16(-0x8000);
    const __m256 half = _mm256_set1_ps(0.5f);
    size_t i = 0;
    for (; i + 2 < count; i += 2) { // a store may pass the second pixel
        const auto pixels = [&](size_t k) {
            return Load16(source + size_t{columns.At[i + k].First - base} * channels * 2);
        };
        const __m256i both = _mm256_xor_si256(_mm256_shuffle_epi8(Lanes(pixels(0), pixels(1)), beside), sign);
        const __m256i weights = Lanes(_mm_set1_epi32(static_cast<int32_t>(columns.Pairs[i])),
                                      _mm_set1_epi32(static_cast<int32_t>(columns.Pairs[i + 1])));
        const __m256 inverses =
            _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_broadcast_ss(columns.Inverses + i)),
                                 _mm_broadcast_ss(columns.Inverses + i + 1), 1);
        const __m256 sums = _mm256_cvtepi32_ps(_mm256_madd_epi16(both, weights));
        const __m256 quotients = _mm256_floor_ps(_mm256_mul_ps(_mm256_add_ps(sums, half), inverses));
        const __m256i whole = _mm256_cvttps_epi32(quotients);
        const __m256i made = _mm256_xor_si256(_mm256_packs_epi32(whole, whole), sign);
        Store8(target + i * channels * 2, _mm256_castsi256_si128(made));
        Store8(target + (i + 1) * channels * 2, _mm256_extracti128_si256(made, 1));
    }
    return i;
}

template <typename Sample, size_t channels>
size_t LinearVectors(const uint8_t* source, uint32_t base, const LinearColumns& columns, size_t count,
                     uint8_t* target) {
    constexpr size_t pixelBytes = channels * sizeof(Sample), loaded = 8 * sizeof(Sample);
    if (count == 0) return 0;
    const size_t end = (size_t{columns.At[count - 1].Second - base} + 1) * pixelBytes;
    count = ColumnsWithin<pixelBytes>(columns.At, count, base, loaded, end);
    if constexpr (sizeof(Sample) == 1) return LinearBytes<channels>(source, base, columns, count, target);
    return LinearWords<channels>(source, base, columns, count, target);
}

// Up to four samples of a pixel.
template <typename Sample> __m256d Pixel(const uint8_t* from) {
    if constexpr (sizeof(Sample) == 1)
        return _mm256_cvtepi32_pd(
            _mm_cvtepu8_epi32(_mm_cvtsi32_si128(static_cast<int32_t>(Load<uint32_t>(from, 0)))));
    else
        return _mm256_cvtepi32_pd(_mm_cvtepu16_epi32(Load8(from)));
}

// The last loaded pixel may have no weight and lie behind those that are needed; the caller sees to it that it may be read.
template <typename Sample, size_t channels>
size_t AveragePixels(const uint8_t* source, uint32_t base, const AverageColumns& columns, size_t count,
                     uint8_t* target) {
    constexpr size_t pixelBytes = channels * sizeof(Sample);
    const __m128i packed = sizeof(Sample) == 1
                               ? _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)
                               : _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1);
    const size_t whole = columns.Whole;
    size_t i = 0;
    for (; i + 1 < count; ++i) { // a store may pass the pixel
        const uint8_t* at = source + size_t{columns.Places[i] - base} * pixelBytes;
        __m256d sum = _mm256_mul_pd(Pixel<Sample>(at), _mm256_broadcast_sd(columns.First + i));
        at += pixelBytes;
        for (const uint8_t* const end = at + whole * pixelBytes; at != end; at += pixelBytes)
            sum = _mm256_add_pd(sum, Pixel<Sample>(at));
        sum = _mm256_add_pd(sum, _mm256_mul_pd(Pixel<Sample>(at), _mm256_broadcast_sd(columns.Middle + i)));
        at += pixelBytes;
        sum = _mm256_add_pd(sum, _mm256_mul_pd(Pixel<Sample>(at), _mm256_broadcast_sd(columns.Last + i)));
        const __m128i mean = _mm256_cvttpd_epi32(_mm256_div_pd(sum, _mm256_broadcast_sd(columns.Total + i)));
        const __m128i made = _mm_shuffle_epi8(mean, packed);
        if constexpr (sizeof(Sample) == 1) {
            const auto word = static_cast<uint32_t>(_mm_cvtsi128_si32(made));
            std::memcpy(target + i * pixelBytes, &word, sizeof word);
        } else {
            Store8(target + i * pixelBytes, made);
        }
    }
    return i;
}

// Four pixels of one 8-bit sample, of at most eight source pixels each.
inline constexpr uint32_t MostGatheredPixels = 8;

template <uint32_t whole>
size_t AverageGray(const uint8_t* source, uint32_t base, const AverageColumns& columns, size_t count,
                   uint8_t* target) {
    const __m128i packed = _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const auto pixels = [&](size_t k) { return Load8(source + (columns.Places[i + k] - base)); };
        const __m128i one = _mm_unpacklo_epi8(pixels(0), pixels(1)),
                      two = _mm_unpacklo_epi8(pixels(2), pixels(3));
        // The same source pixel of all four columns in each four bytes.
        const __m128i first = _mm_unpacklo_epi16(one, two), second = _mm_unpackhi_epi16(one, two);
        const auto pixel = [&](uint32_t k) {
            const __m128i from = k < 4 ? first : second;
            const __m128i bytes = k % 4 == 0   ? from
                                  : k % 4 == 1 ? _mm_srli_si128(from, 4)
                                  : k % 4 == 2 ? _mm_srli_si128(from, 8)
                                               : _mm_srli_si128(from, 12);
            return _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(bytes));
        };
        __m256d sum = _mm256_mul_pd(pixel(0), _mm256_loadu_pd(columns.First + i));
        for (uint32_t k = 1; k <= whole; ++k)
            sum = _mm256_add_pd(sum, pixel(k));
        sum = _mm256_add_pd(sum, _mm256_mul_pd(pixel(whole + 1), _mm256_loadu_pd(columns.Middle + i)));
        sum = _mm256_add_pd(sum, _mm256_mul_pd(pixel(whole + 2), _mm256_loadu_pd(columns.Last + i)));
        const __m128i mean = _mm256_cvttpd_epi32(_mm256_div_pd(sum, _mm256_loadu_pd(columns.Total + i)));
        const auto word = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_shuffle_epi8(mean, packed)));
        std::memcpy(target + i, &word, sizeof word);
    }
    return i;
}

template <typename Sample, size_t channels>
size_t AverageVectors(const uint8_t* source, uint32_t base, const AverageColumns& columns, size_t count,
                      uint8_t* target) {
    constexpr size_t pixelBytes = channels * sizeof(Sample);
    if (count == 0) return 0;
    const AverageColumn& last = columns.At[count - 1];
    const size_t end = (size_t{last.First - base} + last.Whole + (last.LastWeight != 0 ? 2 : 1)) * pixelBytes;
    count = count < columns.Steady ? count : columns.Steady;
    if constexpr (channels > 1) {
        const size_t loaded = (size_t{columns.Whole} + 2) * pixelBytes + 4 * sizeof(Sample);
        count = ColumnsWithin<pixelBytes>(columns.At, count, base, loaded, end);
        return AveragePixels<Sample, channels>(source, base, columns, count, target);
    } else if constexpr (sizeof(Sample) == 1) {
        if (columns.Whole + 3 > MostGatheredPixels) return 0;
        count = ColumnsWithin<1>(columns.At, count, base, MostGatheredPixels, end);
        switch (columns.Whole) {
        case 0: return AverageGray<0>(source, base, columns, count, target);
        case 1: return AverageGray<1>(source, base, columns, count, target);
        case 2: return AverageGray<2>(source, base, columns, count, target);
        case 3: return AverageGray<3>(source, base, columns, count, target);
        case 4: return AverageGray<4>(source, base, columns, count, target);
        default: return AverageGray<5>(source, base, columns, count, target);
        }
    }
    return 0;
}

// Sixteen samples at a time, so that their sums stay in registers; gives how many are made.
template <typename Sample>
size_t AverageRowVectors(const uint8_t* const* rows, const double* weights, size_t count, double total,
                         uint8_t* target, size_t samples) {
    constexpr size_t four = 4 * sizeof(Sample);
    const __m256d divisor = _mm256_set1_pd(total);
    size_t i = 0;
    for (; i + 16 <= samples; i += 16) {
        const size_t at = i * sizeof(Sample);
        __m256d sums[4];
        for (size_t p = 0; p < 4; ++p)
            sums[p] = _mm256_mul_pd(Pixel<Sample>(rows[0] + at + p * four), _mm256_broadcast_sd(weights));
        for (size_t k = 1; k < count; ++k) {
            const __m256d weight = _mm256_broadcast_sd(weights + k);
            for (size_t p = 0; p < 4; ++p)
                sums[p] =
                    _mm256_add_pd(sums[p], _mm256_mul_pd(Pixel<Sample>(rows[k] + at + p * four), weight));
        }
        __m128i means[4];
        for (size_t p = 0; p < 4; ++p)
            means[p] = _mm256_cvttpd_epi32(_mm256_div_pd(sums[p], divisor));
        const __m128i low = _mm_packus_epi32(means[0], means[1]), high = _mm_packus_epi32(means[2], means[3]);
        auto* const to = reinterpret_cast<__m128i*>(target + at);
        if constexpr (sizeof(Sample) == 1) {
            _mm_storeu_si128(to, _mm_packus_epi16(low, high));
        } else {
            _mm_storeu_si128(to, low);
            _mm_storeu_si128(to + 1, high);
        }
    }
    return i;
}

} // namespace

} // namespace zkr::kernels
