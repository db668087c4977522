// Four 32-bit lanes, one for each channel of a pixel, with what error diffusion does on them. Where the
// instruction set has no instruction of its own for it the compiler makes do with plain ones.
#pragma once

#include "colour/rows/dither_rows.h"

#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace zkr::rows {
namespace {

typedef int32_t ErrorLanes __attribute__((vector_size(16)));
typedef uint32_t SumLanes __attribute__((vector_size(16))); // sums that nobody reads may wrap
typedef uint8_t ChannelLanes __attribute__((vector_size(4)));

template <class V> inline V LoadLanes(const void* place) {
    V lanes;
    std::memcpy(&lanes, place, sizeof lanes);
    return lanes;
}
inline SumLanes LoadCell(const int32_t (&cell)[4]) {
    return LoadLanes<SumLanes>(cell);
}
inline void StoreCell(int32_t (&cell)[4], SumLanes lanes) {
    std::memcpy(cell, &lanes, sizeof lanes);
}

// The channels of a pixel of four bytes.
inline ErrorLanes Channels(uint32_t quad) {
#if defined(__SSE4_1__)
    return reinterpret_cast<ErrorLanes>(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(static_cast<int>(quad))));
#else
    return __builtin_convertvector(LoadLanes<ChannelLanes>(&quad), ErrorLanes);
#endif
}

// Channels from 0 to 255, in lanes and as a pixel of four bytes.
struct ClampedChannels {
    ErrorLanes Lanes;
    uint32_t Quad;
#if defined(__SSE2__)
    __m128i FourTimes; // the pixel of four bytes
#endif
};

inline ClampedChannels Clamp(ErrorLanes lanes) {
#if defined(__SSE2__)
    const __m128i words = _mm_packs_epi32(reinterpret_cast<__m128i>(lanes), reinterpret_cast<__m128i>(lanes));
    const __m128i bytes = _mm_packus_epi16(words, words);
    const auto quad = static_cast<uint32_t>(_mm_cvtsi128_si32(bytes));
#if defined(__SSE4_1__)
    return {reinterpret_cast<ErrorLanes>(_mm_cvtepu8_epi32(bytes)), quad, bytes};
#else
    const __m128i zero = _mm_setzero_si128();
    return {reinterpret_cast<ErrorLanes>(_mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero)), quad,
            bytes};
#endif
#else
    const ErrorLanes clamped = lanes < 0 ? lanes ^ lanes : lanes > 255 ? (lanes ^ lanes) + 255 : lanes;
    const ChannelLanes channels = __builtin_convertvector(clamped, ChannelLanes);
    uint32_t quad;
    std::memcpy(&quad, &channels, sizeof quad);
    return {clamped, quad};
#endif
}

// 2 red + 5 green + blue in all lanes.
inline ErrorLanes WeighedSum(const ClampedChannels& channels) {
#if defined(__SSE2__)
    const __m128i words = _mm_unpacklo_epi8(channels.FourTimes, _mm_setzero_si128());
    const __m128i pairs = _mm_madd_epi16(words, _mm_set1_epi64x(0x0000'0002'0005'0001));
    return reinterpret_cast<ErrorLanes>(_mm_add_epi32(pairs, _mm_shuffle_epi32(pairs, 0xB1)));
#else
    const ErrorLanes lanes = channels.Lanes;
    return (lanes ^ lanes) + (2 * lanes[2] + 5 * lanes[1] + lanes[0]);
#endif
}

// Division by multiplication, for values up to 255 times the divisor, which fit 16 bits: the upper half of
// the product of two 16-bit numbers, with a shift before and after.
struct Reciprocal {
    int32_t Divisor;
    int32_t ShiftBefore;
    int32_t Multiplier; // 0 for a shift alone
    int32_t ShiftAfter;

    constexpr int32_t Apply(int32_t value) const {
        const int32_t shifted = value >> ShiftBefore;
        return (Multiplier == 0 ? shifted : shifted * Multiplier >> 16) >> ShiftAfter;
    }
    constexpr bool IsExact() const {
        if (Multiplier > 0xFFFF) return false;
        for (int32_t value = 0; value <= 255 * Divisor; ++value)
            if (Apply(value) != value / Divisor) return false;
        return true;
    }
};
constexpr Reciprocal reciprocals[] = {
    {16, 4, 0, 0}, {32, 5, 0, 0}, {42, 0, 3121, 1}, {48, 0, 10923, 3}, {200, 1, 5243, 3}};

constexpr Reciprocal ReciprocalOf(int32_t divisor) {
    for (const Reciprocal& reciprocal : reciprocals)
        if (reciprocal.Divisor == divisor) return reciprocal;
    return {};
}

// Divides values of magnitudes up to 255 times the divisor, truncating towards zero.
template <int32_t divisor> inline ErrorLanes Divide(SumLanes sums) {
    constexpr Reciprocal r = ReciprocalOf(divisor);
    static_assert(r.Divisor == divisor && r.IsExact());
    const auto values = reinterpret_cast<ErrorLanes>(sums);
#if defined(__SSSE3__)
    auto magnitudes = reinterpret_cast<ErrorLanes>(_mm_abs_epi32(reinterpret_cast<__m128i>(values)));
#else
    const ErrorLanes signs = values >> 31;
    ErrorLanes magnitudes = (values ^ signs) - signs;
#endif
    if constexpr (r.ShiftBefore != 0) magnitudes >>= r.ShiftBefore;
    if constexpr (r.Multiplier != 0) {
#if defined(__SSE2__)
        magnitudes = reinterpret_cast<ErrorLanes>(
            _mm_mulhi_epu16(reinterpret_cast<__m128i>(magnitudes), _mm_set1_epi32(r.Multiplier)));
#else
        magnitudes = magnitudes * r.Multiplier >> 16;
#endif
    }
    if constexpr (r.ShiftAfter != 0) magnitudes >>= r.ShiftAfter;
#if defined(__SSSE3__)
    return reinterpret_cast<ErrorLanes>(
        _mm_sign_epi32(reinterpret_cast<__m128i>(magnitudes), reinterpret_cast<__m128i>(values)));
#else
    return (magnitudes ^ signs) - signs;
#endif
}

// A sum that the compiler may not take apart to add its terms in another order.
inline SumLanes Sum(SumLanes early, SumLanes late) {
    return reinterpret_cast<SumLanes>(reinterpret_cast<ErrorLanes>(early) +
                                      reinterpret_cast<ErrorLanes>(late));
}

// source + (early + late) / divisor, in few steps from late on. Dividing by a power of two rounds down, which
// is put right for negative sums by adding the divisor less one beforehand.
template <int32_t divisor> inline ErrorLanes AddQuotient(ErrorLanes source, SumLanes early, SumLanes late) {
    constexpr int32_t shift = ReciprocalOf(divisor).ShiftBefore;
    if constexpr (divisor != 1 << shift) {
        return source + Divide<divisor>(early + late);
    } else {
        const SumLanes base = reinterpret_cast<SumLanes>(source << shift) + early;
        const auto down = reinterpret_cast<ErrorLanes>(Sum(base, late)) >> shift;
        const auto up = reinterpret_cast<ErrorLanes>(Sum(base + (divisor - 1), late)) >> shift;
        return -reinterpret_cast<ErrorLanes>(early) > reinterpret_cast<ErrorLanes>(late) ? up : down;
    }
}

// Of lanes from -255 to 255.
template <int32_t weight> inline SumLanes Times(SumLanes lanes) {
    constexpr auto magnitude = static_cast<uint32_t>(weight < 0 ? -weight : weight);
    if constexpr (std::has_single_bit(magnitude)) {
        const SumLanes product = lanes << std::countr_zero(magnitude);
        return weight < 0 ? -product : product;
    } else {
#if defined(__SSE2__)
        return reinterpret_cast<SumLanes>(
            _mm_madd_epi16(reinterpret_cast<__m128i>(lanes), _mm_set1_epi32(weight & 0xFFFF)));
#else
        return lanes * static_cast<uint32_t>(weight);
#endif
    }
}

} // namespace
} // namespace zkr::rows
