// 32-bit lanes, four for each row of pixels that is in them: one for each channel of a pixel. And what error
// diffusion does on them. Where the instruction set has no instruction of its own for it the compiler makes do
// with plain ones.
#pragma once

#include "colour/kernels/dither_rows.h"

#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

#if defined(__AVX2__)
inline constexpr size_t RowsInLanes = 2; // at most
#else
inline constexpr size_t RowsInLanes = 1;
#endif

template <size_t rows> struct LanesOf {
    typedef int32_t Errors __attribute__((vector_size(16 * rows)));
    typedef uint32_t Sums __attribute__((vector_size(16 * rows))); // sums that nobody reads may wrap
};
template <size_t rows> using ErrorLanes = typename LanesOf<rows>::Errors;
template <size_t rows> using SumLanes = typename LanesOf<rows>::Sums;
typedef uint8_t ChannelLanes __attribute__((vector_size(4)));

template <class V> inline auto AsErrors(V lanes) {
    return reinterpret_cast<ErrorLanes<sizeof(V) / 16>>(lanes);
}
template <class V> inline auto AsSums(V lanes) {
    return reinterpret_cast<SumLanes<sizeof(V) / 16>>(lanes);
}

// The lanes of so many rows, by what `of` has for each of them; and those of one row.
template <size_t rows, class Of> inline auto SideBySide(Of of) {
    if constexpr (rows == 1)
        return of(0);
    else
        return __builtin_shufflevector(of(0), of(1), 0, 1, 2, 3, 4, 5, 6, 7);
}
template <class V> inline auto LanesOfRow(V lanes, size_t row) {
    if constexpr (sizeof(V) == 16)
        return lanes;
    else
        return row == 0 ? __builtin_shufflevector(lanes, lanes, 0, 1, 2, 3)
                        : __builtin_shufflevector(lanes, lanes, 4, 5, 6, 7);
}

template <class V> inline V LoadLanes(const void* place) {
    V lanes;
    std::memcpy(&lanes, place, sizeof lanes);
    return lanes;
}
inline SumLanes<1> LoadCell(const int32_t (&cell)[4]) {
    return LoadLanes<SumLanes<1>>(cell);
}
template <class V> inline void StoreCell(int32_t (&cell)[4], V lanes) {
    static_assert(sizeof lanes == sizeof cell);
    std::memcpy(cell, &lanes, sizeof lanes);
}

// The channels of a pixel of four bytes.
inline ErrorLanes<1> Channels(uint32_t quad) {
#if defined(__SSE4_1__)
    return reinterpret_cast<ErrorLanes<1>>(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(static_cast<int>(quad))));
#else
    return __builtin_convertvector(LoadLanes<ChannelLanes>(&quad), ErrorLanes<1>);
#endif
}

// What follows exists for one row, and where lanes have room for two for two. Clamped channels are from 0 to
// 255: in lanes, and as a pixel of four bytes for each row. Products are of lanes that fit 16 bits: the upper
// half of the product of unsigned numbers, or the whole one of signed numbers.
template <size_t rows> struct ClampedChannels;

#if defined(__SSE2__)

template <> struct ClampedChannels<1> {
    ErrorLanes<1> Lanes;
    __m128i Bytes; // the pixel of four bytes, four times

    uint32_t Quad(size_t) const { return static_cast<uint32_t>(_mm_cvtsi128_si32(Bytes)); }
};

inline __m128i Register(ErrorLanes<1> lanes) {
    return reinterpret_cast<__m128i>(lanes);
}
inline ErrorLanes<1> Lanes(__m128i lanes) {
    return reinterpret_cast<ErrorLanes<1>>(lanes);
}

inline ClampedChannels<1> Clamp(ErrorLanes<1> lanes) {
    const __m128i words = _mm_packs_epi32(Register(lanes), Register(lanes));
    const __m128i bytes = _mm_packus_epi16(words, words);
#if defined(__SSE4_1__)
    return {Lanes(_mm_cvtepu8_epi32(bytes)), bytes};
#else
    const __m128i zero = _mm_setzero_si128();
    return {Lanes(_mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero)), bytes};
#endif
}

// 2 red + 5 green + blue in all lanes of a row.
inline ErrorLanes<1> WeighedSum(const ClampedChannels<1>& channels) {
    const __m128i words = _mm_unpacklo_epi8(channels.Bytes, _mm_setzero_si128());
    const __m128i pairs = _mm_madd_epi16(words, _mm_set1_epi64x(0x0000'0002'0005'0001));
    return Lanes(_mm_add_epi32(pairs, _mm_shuffle_epi32(pairs, 0xB1)));
}

inline ErrorLanes<1> UpperProduct(ErrorLanes<1> lanes, int32_t factor) {
    return Lanes(_mm_mulhi_epu16(Register(lanes), _mm_set1_epi32(factor)));
}
inline ErrorLanes<1> Product(ErrorLanes<1> lanes, int32_t factor) {
    return Lanes(_mm_madd_epi16(Register(lanes), _mm_set1_epi32(factor & 0xFFFF)));
}

#else

template <> struct ClampedChannels<1> {
    ErrorLanes<1> Lanes;
    uint32_t Pixel;

    uint32_t Quad(size_t) const { return Pixel; }
};

inline ClampedChannels<1> Clamp(ErrorLanes<1> lanes) {
    const ErrorLanes<1> clamped = lanes < 0 ? lanes ^ lanes : lanes > 255 ? (lanes ^ lanes) + 255 : lanes;
    const ChannelLanes channels = __builtin_convertvector(clamped, ChannelLanes);
    uint32_t quad;
    std::memcpy(&quad, &channels, sizeof quad);
    return {clamped, quad};
}
inline ErrorLanes<1> WeighedSum(const ClampedChannels<1>& channels) {
    const ErrorLanes<1> lanes = channels.Lanes;
    return (lanes ^ lanes) + (2 * lanes[2] + 5 * lanes[1] + lanes[0]);
}
inline ErrorLanes<1> UpperProduct(ErrorLanes<1> lanes, int32_t factor) {
    return lanes * factor >> 16;
}
inline ErrorLanes<1> Product(ErrorLanes<1> lanes, int32_t factor) {
    return lanes * factor;
}

#endif

#if defined(__SSSE3__)

inline ErrorLanes<1> Absolute(ErrorLanes<1> lanes) {
    return Lanes(_mm_abs_epi32(Register(lanes)));
}
inline ErrorLanes<1> WithSign(ErrorLanes<1> magnitudes, ErrorLanes<1> signs) {
    return Lanes(_mm_sign_epi32(Register(magnitudes), Register(signs)));
}

#else

inline ErrorLanes<1> WithSign(ErrorLanes<1> magnitudes, ErrorLanes<1> signs) {
    return (magnitudes ^ signs >> 31) - (signs >> 31);
}
inline ErrorLanes<1> Absolute(ErrorLanes<1> lanes) {
    return WithSign(lanes, lanes);
}

#endif

#if defined(__AVX2__)

template <> struct ClampedChannels<2> {
    ErrorLanes<2> Lanes;
    __m256i Bytes;

    uint32_t Quad(size_t row) const {
        return static_cast<uint32_t>(
            _mm_cvtsi128_si32(row == 0 ? _mm256_castsi256_si128(Bytes) : _mm256_extracti128_si256(Bytes, 1)));
    }
};

inline __m256i Register(ErrorLanes<2> lanes) {
    return reinterpret_cast<__m256i>(lanes);
}
inline ErrorLanes<2> Lanes(__m256i lanes) {
    return reinterpret_cast<ErrorLanes<2>>(lanes);
}

inline ClampedChannels<2> Clamp(ErrorLanes<2> lanes) {
    const __m256i words = _mm256_packs_epi32(Register(lanes), Register(lanes));
    const __m256i bytes = _mm256_packus_epi16(words, words);
    const __m256i apart = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, -1, -1, -1, 1, -1, -1, -1, 2, -1, -1, -1, 3, -1, -1, -1));
    return {Lanes(_mm256_shuffle_epi8(bytes, apart)), bytes};
}
inline ErrorLanes<2> WeighedSum(const ClampedChannels<2>& channels) {
    const __m256i words = _mm256_unpacklo_epi8(channels.Bytes, _mm256_setzero_si256());
    const __m256i pairs = _mm256_madd_epi16(words, _mm256_set1_epi64x(0x0000'0002'0005'0001));
    return Lanes(_mm256_add_epi32(pairs, _mm256_shuffle_epi32(pairs, 0xB1)));
}
inline ErrorLanes<2> UpperProduct(ErrorLanes<2> lanes, int32_t factor) {
    return Lanes(_mm256_mulhi_epu16(Register(lanes), _mm256_set1_epi32(factor)));
}
inline ErrorLanes<2> Product(ErrorLanes<2> lanes, int32_t factor) {
    return Lanes(_mm256_madd_epi16(Register(lanes), _mm256_set1_epi32(factor & 0xFFFF)));
}
inline ErrorLanes<2> Absolute(ErrorLanes<2> lanes) {
    return Lanes(_mm256_abs_epi32(Register(lanes)));
}
inline ErrorLanes<2> WithSign(ErrorLanes<2> magnitudes, ErrorLanes<2> signs) {
    return Lanes(_mm256_sign_epi32(Register(magnitudes), Register(signs)));
}

#endif

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
constexpr Reciprocal Reciprocals[] = {
    {16, 4, 0, 0}, {32, 5, 0, 0}, {42, 0, 3121, 1}, {48, 0, 10923, 3}, {200, 1, 5243, 3}};

constexpr Reciprocal ReciprocalOf(int32_t divisor) {
    for (const Reciprocal& reciprocal : Reciprocals)
        if (reciprocal.Divisor == divisor) return reciprocal;
    return {};
}

// Divides values of magnitudes up to 255 times the divisor, truncating towards zero.
template <int32_t divisor, class V> inline auto Divide(V sums) {
    constexpr Reciprocal r = ReciprocalOf(divisor);
    static_assert(r.Divisor == divisor && r.IsExact());
    auto magnitudes = Absolute(AsErrors(sums));
    if constexpr (r.ShiftBefore != 0) magnitudes >>= r.ShiftBefore;
    if constexpr (r.Multiplier != 0) magnitudes = UpperProduct(magnitudes, r.Multiplier);
    if constexpr (r.ShiftAfter != 0) magnitudes >>= r.ShiftAfter;
    return WithSign(magnitudes, AsErrors(sums));
}

// A sum that the compiler may not take apart to add its terms in another order.
template <class V> inline V Sum(V early, V late) {
    return AsSums(AsErrors(early) + AsErrors(late));
}

// source + (early + late) / divisor, in few steps from late on. Dividing by a power of two rounds down, which
// is put right for negative sums by adding the divisor less one beforehand.
template <int32_t divisor, class E, class V> inline E AddQuotient(E source, V early, V late) {
    constexpr int32_t shift = ReciprocalOf(divisor).ShiftBefore;
    if constexpr (divisor != 1 << shift) {
        return source + Divide<divisor>(early + late);
    } else {
        const V base = AsSums(source << shift) + early;
        const E down = AsErrors(Sum(base, late)) >> shift;
        const E up = AsErrors(Sum(base + (divisor - 1), late)) >> shift;
        return -AsErrors(early) > AsErrors(late) ? up : down;
    }
}

// Of lanes from -255 to 255.
template <int32_t weight, class V> inline V Times(V lanes) {
    constexpr auto magnitude = static_cast<uint32_t>(weight < 0 ? -weight : weight);
    if constexpr (std::has_single_bit(magnitude)) {
        const V product = lanes << std::countr_zero(magnitude);
        return weight < 0 ? -product : product;
    } else {
        return AsSums(Product(AsErrors(lanes), weight));
    }
}

} // namespace
} // namespace zkr::kernels
