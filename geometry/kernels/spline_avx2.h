// Splines of rows in vectors, of three or four channels. Derivatives take four places a pixel.
//
// Both passes over a row hang on what they have made of the pixel before, so that one row keeps a processor waiting. A row
// is therefore cut into four parts that run side by side. A part begins some pixels early with any state: what it has
// begun with dies away by a factor of about four a pixel. At the seam its state has to be the very one that the part before
// ends with, bit by bit; where it is not, the row is done again in one piece.
#pragma once

#include "geometry/kernels/resample.h"
#include "geometry/kernels/resample_avx2.h"

namespace zkr::kernels {

namespace {

inline constexpr size_t PartCount = 4;
inline constexpr size_t WarmUp = 48; // pixels that a part begins early
inline constexpr size_t Places = DerivativePlaces;

// A pixel of each of two parts.
template <typename Sample> __m256i TwoPixels(const uint8_t* low, const uint8_t* high) {
    if constexpr (sizeof(Sample) == 1)
        return _mm256_cvtepu8_epi32(
            _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int32_t>(Load<uint32_t>(low, 0))),
                               _mm_cvtsi32_si128(static_cast<int32_t>(Load<uint32_t>(high, 0)))));
    else
        return _mm256_cvtepu16_epi32(_mm_unpacklo_epi64(Load8(low), Load8(high)));
}
__m256 LoadTwo(const float* low, const float* high) {
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(low)), _mm_loadu_ps(high), 1);
}
void StoreTwo(float* low, float* high, __m256 value) {
    _mm_storeu_ps(low, _mm256_castps256_ps128(value));
    _mm_storeu_ps(high, _mm256_extractf128_ps(value, 1));
}

// The states of the parts 0 and 1, and 2 and 3.
struct States {
    __m256 Pairs[2];

    __m128 Of(size_t part) const {
        return part % 2 == 0 ? _mm256_castps256_ps128(Pairs[part / 2])
                             : _mm256_extractf128_ps(Pairs[part / 2], 1);
    }
};

// Whether the parts end as those behind them have begun; the fourth channel of three is none.
template <size_t channels> bool Meet(const States& ends, const States& begins) {
    constexpr int32_t wanted = (1 << channels) - 1;
    int32_t same = wanted;
    for (size_t part = 0; part + 1 < PartCount; ++part)
        same &= _mm_movemask_ps(_mm_castsi128_ps(
            _mm_cmpeq_epi32(_mm_castps_si128(ends.Of(part)), _mm_castps_si128(begins.Of(part + 1)))));
    return same == wanted;
}

// Pixels of one part without those that it begins early, where `pixels` are to be done: none where that does not pay.
inline size_t PartLength(size_t pixels) {
    return pixels >= WarmUp * (PartCount + 2) ? (pixels - WarmUp) / PartCount : 0;
}

// Eliminates from pixel 1 on, and gives the first pixel that is left to do; 1 where the parts did not come together.
template <typename Sample, size_t channels>
size_t EliminateParts(const uint8_t* source, size_t pixels, float* m, float* u) {
    constexpr size_t pixelBytes = channels * sizeof(Sample);
    const size_t length = pixels < 6 ? 0 : PartLength(pixels - 5); // loads pass the pixel
    if (length == 0) return 1;
    const __m256 minusOne = _mm256_set1_ps(-1.0f), four = _mm256_set1_ps(4.0f);
    struct Pair {
        const uint8_t* Low;
        const uint8_t* High;
        float *LowM, *HighM, *LowU, *HighU;
        __m256i Before, Here;
        __m256 M, U;
    } pairs[2];
    for (size_t p = 0; p < 2; ++p) {
        const size_t low = 1 + 2 * p * length, high = low + length;
        pairs[p] = {source + (low + 1) * pixelBytes,
                    source + (high + 1) * pixelBytes,
                    m + low * Places,
                    m + high * Places,
                    u + low * Places,
                    u + high * Places,
                    TwoPixels<Sample>(source + (low - 1) * pixelBytes, source + (high - 1) * pixelBytes),
                    TwoPixels<Sample>(source + low * pixelBytes, source + high * pixelBytes),
                    _mm256_setzero_ps(),
                    _mm256_setzero_ps()};
    }
    const auto run = [&](size_t count) {
        for (size_t i = 0; i < count; ++i)
            for (Pair& pair : pairs) {
                const __m256i next = TwoPixels<Sample>(pair.Low, pair.High);
                const __m256i sum =
                    _mm256_sub_epi32(_mm256_add_epi32(next, pair.Before), _mm256_slli_epi32(pair.Here, 1));
                const __m256 flat = _mm256_castsi256_ps(_mm256_cmpeq_epi32(sum, _mm256_setzero_si256()));
                const __m256i bend = _mm256_add_epi32(_mm256_slli_epi32(sum, 2), _mm256_slli_epi32(sum, 1));
                pair.M = _mm256_andnot_ps(flat, _mm256_div_ps(minusOne, _mm256_add_ps(pair.M, four)));
                pair.U = _mm256_andnot_ps(
                    flat, _mm256_mul_ps(_mm256_sub_ps(pair.U, _mm256_cvtepi32_ps(bend)), pair.M));
                StoreTwo(pair.LowM, pair.HighM, pair.M);
                StoreTwo(pair.LowU, pair.HighU, pair.U);
                pair.Before = pair.Here;
                pair.Here = next;
                pair.Low += pixelBytes, pair.High += pixelBytes;
                pair.LowM += Places, pair.HighM += Places, pair.LowU += Places, pair.HighU += Places;
            }
    };
    // What a part writes before its beginning the part before overwrites later, for it is no shorter.
    run(WarmUp);
    const States beginM = {{pairs[0].M, pairs[1].M}}, beginU = {{pairs[0].U, pairs[1].U}};
    run(length);
    const bool meet = Meet<channels>({{pairs[0].M, pairs[1].M}}, beginM) &&
                      Meet<channels>({{pairs[0].U, pairs[1].U}}, beginU);
    return meet ? 1 + WarmUp + PartCount * length : 1;
}

inline constexpr size_t DidNotMeet = SIZE_MAX;

// From pixel `last` back, in place, and gives the first pixel that is left to do, or DidNotMeet.
template <size_t channels> size_t SubstituteParts(size_t last, float* m, const float* u) {
    const size_t length = PartLength(last);
    if (length == 0) return last;
    struct Pair {
        float *LowM, *HighM;
        const float *LowU, *HighU;
        __m256 Behind;

        void Step() {
            Behind = _mm256_add_ps(_mm256_mul_ps(LoadTwo(LowM, HighM), Behind), LoadTwo(LowU, HighU));
        }
        void Move() { LowM -= Places, HighM -= Places, LowU -= Places, HighU -= Places; }
    } pairs[2];
    for (size_t p = 0; p < 2; ++p) {
        const size_t low = last - 2 * p * length, high = low - length;
        const float* const behind = m + (last + 1) * Places;
        pairs[p] = {m + low * Places, m + high * Places, u + low * Places, u + high * Places,
                    LoadTwo(behind, behind)};
    }
    // What comes before a part's beginning belongs to the part before.
    for (size_t i = 0; i < WarmUp; ++i)
        for (Pair& pair : pairs) {
            pair.Step();
            if (&pair == pairs) _mm_storeu_ps(pair.LowM, _mm256_castps256_ps128(pair.Behind));
            pair.Move();
        }
    const States begins = {{pairs[0].Behind, pairs[1].Behind}};
    for (size_t i = 0; i < length; ++i)
        for (Pair& pair : pairs) {
            pair.Step();
            StoreTwo(pair.LowM, pair.HighM, pair.Behind);
            pair.Move();
        }
    return Meet<channels>({{pairs[0].Behind, pairs[1].Behind}}, begins) ? last - WarmUp - PartCount * length
                                                                        : DidNotMeet;
}

// Two pixels: their samples side by side, their factors, and the derivatives of both source pixels of each.
template <typename Sample, size_t channels>
size_t EvaluateVectors(const uint8_t* source, const float* m, uint32_t base, const SplineColumn* columns,
                       size_t count, uint8_t* target) {
    constexpr size_t pixelBytes = channels * sizeof(Sample), loaded = 8 * sizeof(Sample);
    if (count == 0) return 0;
    const size_t end = (size_t{columns[count - 1].Second - base} + 1) * pixelBytes;
    count = ColumnsWithin<pixelBytes>(columns, count, base, loaded, end);
    const __m128i firstAndSecond =
        channels == 4 ? _mm_setr_epi8(0, 1, 2, 3, 8, 9, 10, 11, 4, 5, 6, 7, 12, 13, 14, 15)
                      : _mm_setr_epi8(0, 1, 2, -1, 8, 9, 10, -1, 3, 4, 5, -1, 11, 12, 13, -1);
    const __m128i packed = channels == 4
                               ? _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, -1, -1, -1, -1, -1, -1, -1, -1)
                               : _mm_setr_epi8(0, 1, 2, 4, 5, 6, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m256 half = _mm256_set1_ps(0.5f);
    size_t i = 0;
    for (; i + 3 < count; i += 2) { // a store may pass the second pixel
        const SplineColumn &low = columns[i], &high = columns[i + 1];
        const size_t lowPixel = low.First - base, highPixel = high.First - base;
        const __m256 factors = LoadTwo(&low.A, &high.A);
        __m256i first, second;
        if constexpr (sizeof(Sample) == 1) {
            const __m128i both = _mm_shuffle_epi8(_mm_unpacklo_epi64(Load8(source + lowPixel * pixelBytes),
                                                                     Load8(source + highPixel * pixelBytes)),
                                                  firstAndSecond);
            first = _mm256_cvtepu8_epi32(both);
            second = _mm256_cvtepu8_epi32(_mm_srli_si128(both, 8));
        } else {
            const __m128i lowBoth = Load16(source + lowPixel * pixelBytes),
                          highBoth = Load16(source + highPixel * pixelBytes);
            first = _mm256_cvtepu16_epi32(_mm_unpacklo_epi64(lowBoth, highBoth));
            second = _mm256_cvtepu16_epi32(
                _mm_unpacklo_epi64(_mm_srli_si128(lowBoth, static_cast<int>(pixelBytes)),
                                   _mm_srli_si128(highBoth, static_cast<int>(pixelBytes))));
        }
        const float *const lowM = m + lowPixel * Places, *const highM = m + highPixel * Places;
        __m256 value = _mm256_mul_ps(_mm256_permute_ps(factors, 0x00), _mm256_cvtepi32_ps(first));
        value =
            _mm256_add_ps(value, _mm256_mul_ps(_mm256_permute_ps(factors, 0x55), _mm256_cvtepi32_ps(second)));
        value = _mm256_add_ps(value, _mm256_mul_ps(_mm256_permute_ps(factors, 0xAA), LoadTwo(lowM, highM)));
        value = _mm256_add_ps(
            value, _mm256_mul_ps(_mm256_permute_ps(factors, 0xFF), LoadTwo(lowM + Places, highM + Places)));
        const __m256i whole = _mm256_cvttps_epi32(_mm256_add_ps(value, half));
        const __m128i lowWhole = _mm256_castsi256_si128(whole),
                      highWhole = _mm256_extracti128_si256(whole, 1);
        if constexpr (sizeof(Sample) == 1) {
            const __m128i words = _mm_packs_epi32(lowWhole, highWhole);
            Store8(target + i * pixelBytes, _mm_shuffle_epi8(_mm_packus_epi16(words, words), packed));
        } else {
            const __m128i words = _mm_packus_epi32(lowWhole, highWhole);
            Store8(target + i * pixelBytes, words);
            Store8(target + (i + 1) * pixelBytes, _mm_srli_si128(words, 8));
        }
    }
    return i;
}

// What the rows are weighted by between the two inner ones of four.
struct RowFactors {
    float First, Second, FirstM, SecondM;
};

// Eight samples between four rows: bends of the inner ones, as whole numbers, the second of them six times.
__m256i BetweenRows(__m256i first, __m256i second, __m256i firstBend, __m256i secondBend,
                    const RowFactors& factors) {
    const __m256 bend = _mm256_mul_ps(_mm256_cvtepi32_ps(firstBend), _mm256_set1_ps(1.5f));
    const __m256 secondM =
        _mm256_mul_ps(_mm256_sub_ps(_mm256_cvtepi32_ps(secondBend), bend), _mm256_set1_ps(0.266667f));
    const __m256 firstM = _mm256_sub_ps(bend, _mm256_mul_ps(secondM, _mm256_set1_ps(0.25f)));
    __m256 value = _mm256_add_ps(_mm256_mul_ps(_mm256_set1_ps(factors.First), _mm256_cvtepi32_ps(first)),
                                 _mm256_mul_ps(_mm256_set1_ps(factors.Second), _mm256_cvtepi32_ps(second)));
    value = _mm256_add_ps(value, _mm256_mul_ps(_mm256_set1_ps(factors.FirstM), firstM));
    value = _mm256_add_ps(value, _mm256_mul_ps(_mm256_set1_ps(factors.SecondM), secondM));
    return _mm256_cvttps_epi32(_mm256_add_ps(value, _mm256_set1_ps(0.5f)));
}

// Sixteen 8-bit samples at a time; gives how many are made.
size_t SplineRowBytes(const uint8_t* const rows[4], const RowFactors& factors, uint8_t* target,
                      size_t samples) {
    const auto words = [](const uint8_t* from) { return _mm256_cvtepu8_epi16(Load16(from)); };
    const auto low = [](__m256i x) { return _mm256_cvtepi16_epi32(_mm256_castsi256_si128(x)); };
    const auto high = [](__m256i x) { return _mm256_cvtepi16_epi32(_mm256_extracti128_si256(x, 1)); };
    size_t i = 0;
    for (; i + 16 <= samples; i += 16) {
        const __m256i a = words(rows[0] + i), b = words(rows[1] + i), c = words(rows[2] + i),
                      d = words(rows[3] + i);
        const __m256i firstBend = _mm256_sub_epi16(_mm256_add_epi16(a, c), _mm256_add_epi16(b, b));
        const __m256i secondBend = _mm256_mullo_epi16(
            _mm256_sub_epi16(_mm256_add_epi16(d, b), _mm256_add_epi16(c, c)), _mm256_set1_epi16(6));
        const __m256i lower = BetweenRows(low(b), low(c), low(firstBend), low(secondBend), factors);
        const __m256i upper = BetweenRows(high(b), high(c), high(firstBend), high(secondBend), factors);
        const __m256i packed = _mm256_permute4x64_epi64(_mm256_packs_epi32(lower, upper), 0xD8);
        const __m128i made =
            _mm_packus_epi16(_mm256_castsi256_si128(packed), _mm256_extracti128_si256(packed, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i), made);
    }
    return i;
}

} // namespace

} // namespace zkr::kernels
