// Rows in units of 32 pixels, for AVX2: loads and stores, and the loop that runs a step over a row. A step
// turns the source of one unit into its target:
//
//     static constexpr size_t sourceBits, targetBits;   // of a pixel
//     static constexpr size_t reach;                    // pixels that must be left in the row for a step
//     explicit Step(const RowParameters& parameters);
//     void operator()(uint8_t* target, const uint8_t* source) const;
//
// A step that reads or writes a little more than its 32 pixels says so by a longer reach. The pixels that are
// left over pass through padded copies.
#pragma once

#include "colour/rows/row_kernel.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

namespace zkr::rows {
namespace {

inline constexpr size_t unitPixels = 32;

inline __m256i Load(const uint8_t* place) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place));
}
inline __m128i LoadHalf(const uint8_t* place) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place));
}
inline __m128i LoadQuarter(const uint8_t* place) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(place));
}
inline void Store(uint8_t* place, __m256i value) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(place), value);
}
inline void StoreHalf(uint8_t* place, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(place), value);
}
inline void StoreQuarter(uint8_t* place, __m128i value) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(place), value);
}

// 24 bytes, of which each half of the vector gets 12: in the low half from its start, in the high half from
// its fifth byte.
inline __m256i Load24(const uint8_t* place) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadHalf(place)), LoadHalf(place + 8), 1);
}

// 48 bytes from two, 96 from four vectors that have 12 at the start of each half.
inline void Store48(uint8_t* place, __m256i a, __m256i b) {
    a = _mm256_permutevar8x32_epi32(a, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 0, 0));
    b = _mm256_permutevar8x32_epi32(b, _mm256_setr_epi32(2, 4, 5, 6, 0, 0, 0, 1));
    Store(place, _mm256_blend_epi32(a, b, 0xC0));
    StoreHalf(place + 32, _mm256_castsi256_si128(b));
}
inline void Store96(uint8_t* place, __m256i a, __m256i b, __m256i c, __m256i d) {
    a = _mm256_permutevar8x32_epi32(a, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 0, 0));
    b = _mm256_permutevar8x32_epi32(b, _mm256_setr_epi32(2, 4, 5, 6, 0, 0, 0, 1));
    c = _mm256_permutevar8x32_epi32(c, _mm256_setr_epi32(5, 6, 0, 0, 0, 1, 2, 4));
    d = _mm256_permutevar8x32_epi32(d, _mm256_setr_epi32(0, 0, 0, 1, 2, 4, 5, 6));
    Store(place, _mm256_blend_epi32(a, b, 0xC0));
    Store(place + 32, _mm256_blend_epi32(b, c, 0xF0));
    Store(place + 64, _mm256_blend_epi32(c, d, 0xFC));
}

// A byte shuffle within the halves of a vector: the place in its half that each byte comes from, none for
// zero.
struct Places {
    uint8_t Place[32];
};
constexpr uint8_t none = 0x80;

template <class PlaceOf> constexpr Places MakePlaces(PlaceOf placeOf) {
    Places places{};
    for (size_t i = 0; i < 32; ++i)
        places.Place[i] = static_cast<uint8_t>(placeOf(i));
    return places;
}
inline __m256i Load(const Places& places) {
    return Load(places.Place);
}

// The bits of the last byte that hold no pixel: two pixels of 12 bits fill their middle byte from below, all
// others from above.
constexpr uint8_t UnusedBits(size_t pixels, size_t bits) {
    if (pixels * bits % 8 == 0) return 0;
    return static_cast<uint8_t>(bits == 12 ? 0xF0 : 0xFF >> (pixels * bits % 8));
}

template <class Step>
inline void RunPadded(const Step& step, uint8_t* target, const uint8_t* source, size_t pixels) {
    constexpr size_t widestPixel = 8;
    uint8_t paddedSource[unitPixels * widestPixel] = {};
    uint8_t paddedTarget[unitPixels * widestPixel];
    const size_t targetBytes = (pixels * Step::targetBits + 7) / 8;
    std::memcpy(paddedSource, source, (pixels * Step::sourceBits + 7) / 8);
    std::memcpy(paddedTarget, target, targetBytes);
    step(paddedTarget, paddedSource);
    const uint8_t unused = UnusedBits(pixels, Step::targetBits);
    uint8_t& last = paddedTarget[targetBytes - 1];
    last = static_cast<uint8_t>((last & ~unused) | (target[targetBytes - 1] & unused));
    std::memcpy(target, paddedTarget, targetBytes);
}

template <class Step> void RunUnits(const Step& step, const uint8_t* source, uint8_t* target, size_t pixels) {
    constexpr size_t sourceBytes = unitPixels * Step::sourceBits / 8;
    constexpr size_t targetBytes = unitPixels * Step::targetBits / 8;
    for (; pixels >= Step::reach; pixels -= unitPixels, source += sourceBytes, target += targetBytes)
        step(target, source);
    for (; pixels > unitPixels; pixels -= unitPixels, source += sourceBytes, target += targetBytes)
        RunPadded(step, target, source, unitPixels);
    if (pixels > 0) RunPadded(step, target, source, pixels);
}

// The kernel of a step that is made from the parameters of the row.
template <class Step>
void RunStep(const uint8_t* source, uint8_t* target, size_t pixels, const RowParameters& parameters) {
    RunUnits(Step(parameters), source, target, pixels);
}

} // namespace
} // namespace zkr::rows
