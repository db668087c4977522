// Rows in units of 32 pixels, for AVX2: loads and stores, and the loop that runs a step over a row. A step
// turns the source of one unit into its target:
//
//     static constexpr size_t sourceBits, targetBits;   // of a pixel
//     static constexpr size_t reach;                    // pixels that must be left in the row for a step
//     explicit Step(const RowParameters& parameters);
//     void operator()(uint8_t* target, const uint8_t* source) const;
//
// A step that reads a little more than its 32 pixels, or writes more where pixels do not grow, says so by a
// longer reach. The pixels that are left over pass through padded copies.
#pragma once

#include "colour/kernels/row_kernel.h"
#include "core/depth.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

namespace zkr::kernels {
namespace {

inline constexpr size_t UnitPixels = 32;

inline __m256i Load(const uint8_t* place) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place));
}
inline __m128i LoadHalf(const uint8_t* place) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place));
}
inline __m128i LoadQuarter(const uint8_t* place) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(place));
}
inline __m128i LoadEighth(const uint8_t* place) {
    int bytes;
    std::memcpy(&bytes, place, 4);
    return _mm_cvtsi32_si128(bytes);
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

inline __m256i LoadHalves(const uint8_t* low, const uint8_t* high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadHalf(low)), LoadHalf(high), 1);
}

// 24 bytes, of which each half of the vector gets 12: in the low half from its start, in the high half from
// its fifth byte.
inline __m256i Load24(const uint8_t* place) {
    return LoadHalves(place, place + 8);
}

// 48 bytes from two vectors that have 12 at the start of each half.
inline void Store48(uint8_t* place, __m256i a, __m256i b) {
    a = _mm256_permutevar8x32_epi32(a, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 0, 0));
    b = _mm256_permutevar8x32_epi32(b, _mm256_setr_epi32(2, 4, 5, 6, 0, 0, 0, 1));
    Store(place, _mm256_blend_epi32(a, b, 0xC0));
    StoreHalf(place + 32, _mm256_castsi256_si128(b));
}

// 96 bytes from four vectors with 12 in each half, of which the low halves make the first 48 bytes, the high
// halves the others. The bytes of the i-th are rotated within their half, so that the one at place p is the
// (p + 4 * i) % 16-th: so they stand where they are wanted.
inline void Store96(uint8_t* place, const __m256i (&rotated)[4]) {
    const __m256i first = _mm256_blend_epi32(rotated[0], rotated[1], 0x88);
    const __m256i second = _mm256_blend_epi32(rotated[1], rotated[2], 0xCC);
    const __m256i third = _mm256_blend_epi32(rotated[2], rotated[3], 0xEE);
    Store(place, _mm256_permute2x128_si256(first, second, 0x20));
    Store(place + 32, _mm256_blend_epi32(third, first, 0xF0));
    Store(place + 64, _mm256_permute2x128_si256(second, third, 0x31));
}

// A byte shuffle within the halves of a vector: the place in its half that each byte comes from, None for
// zero.
struct Places {
    uint8_t Place[32];
};
constexpr uint8_t None = 0x80;

template <class PlaceOf> constexpr Places MakePlaces(PlaceOf placeOf) {
    Places places{};
    for (size_t i = 0; i < 32; ++i)
        places.Place[i] = static_cast<uint8_t>(placeOf(i));
    return places;
}
inline __m256i Load(const Places& places) {
    return Load(places.Place);
}

template <class Step>
[[gnu::noinline]] void RunPadded(const Step& step, uint8_t* target, const uint8_t* source, size_t pixels) {
    constexpr size_t widestPixel = 8;
    uint8_t paddedSource[UnitPixels * widestPixel] = {};
    uint8_t paddedTarget[UnitPixels * widestPixel];
    const size_t targetBytes = (pixels * Step::targetBits + 7) / 8;
    std::memcpy(paddedSource, source, (pixels * Step::sourceBits + 7) / 8);
    std::memcpy(paddedTarget, target, targetBytes);
    step(paddedTarget, paddedSource);
    const uint8_t unused = UnusedInLastByte(static_cast<int32_t>(Step::targetBits), pixels);
    uint8_t& last = paddedTarget[targetBytes - 1];
    last = static_cast<uint8_t>((last & ~unused) | (target[targetBytes - 1] & unused));
    std::memcpy(target, paddedTarget, targetBytes);
}

// Asks the cache for memory at some distance from the source of a row, a little with each unit. Memory gives
// about five bytes a cycle, and most of what is asked for faster than that is never brought; so of wide
// pixels only the first part of the row is asked for. At a distance of 0 that is at hand already.
template <class Step> class Requests {
  public:
    Requests(const uint8_t* source, ptrdiff_t distance)
        : place_(reinterpret_cast<uintptr_t>(source) + static_cast<uintptr_t>(distance)) {}
    void AskForMore() {
        _mm_prefetch(reinterpret_cast<const char*>(place_), _MM_HINT_T0);
        place_ += bytes;
    }

  private:
    static constexpr size_t cacheLine = 64;
    static constexpr size_t narrower = std::min(Step::sourceBits, Step::targetBits) * UnitPixels / 8;
    static constexpr size_t bytes = std::min(cacheLine, narrower);
    uintptr_t place_;
};

template <class Step>
void RunForwards(const Step& step, const uint8_t* source, uint8_t* target, size_t pixels,
                 ptrdiff_t ahead = 0) {
    constexpr size_t sourceBytes = UnitPixels * Step::sourceBits / 8;
    constexpr size_t targetBytes = UnitPixels * Step::targetBits / 8;
    Requests<Step> requests(source, ahead);
    for (; pixels >= Step::reach; pixels -= UnitPixels, source += sourceBytes, target += targetBytes) {
        step(target, source);
        requests.AskForMore();
    }
    for (; pixels > UnitPixels; pixels -= UnitPixels, source += sourceBytes, target += targetBytes)
        RunPadded(step, target, source, UnitPixels);
    if (pixels > 0) RunPadded(step, target, source, pixels);
}

// For pixels that grow. In place the target of one of the first units can reach into its own source, so these
// units are read from a copy.
template <class Step>
void RunBackwards(const Step& step, const uint8_t* source, uint8_t* target, size_t pixels, ptrdiff_t ahead) {
    constexpr size_t sourceBytes = UnitPixels * Step::sourceBits / 8;
    constexpr size_t targetBytes = UnitPixels * Step::targetBits / 8;
    constexpr size_t copiedUnits = (targetBytes - 1) / (targetBytes - sourceBytes);
    static_assert(Step::reach <= 2 * UnitPixels);
    const size_t rest = pixels % UnitPixels;
    size_t units = pixels / UnitPixels;
    if (rest > 0) RunPadded(step, target + units * targetBytes, source + units * sourceBytes, rest);
    if (units > 0 && UnitPixels + rest < Step::reach) {
        --units;
        RunPadded(step, target + units * targetBytes, source + units * sourceBytes, UnitPixels);
    }
    const size_t apart = source == target ? std::min(units, copiedUnits) : 0;
    const uint8_t* from = source + units * sourceBytes;
    uint8_t* to = target + units * targetBytes;
    const uint8_t* const last = source + apart * sourceBytes;
    Requests<Step> requests(source, ahead);
#pragma GCC unroll 2 // for the shortest of the steps
    while (from != last) {
        from -= sourceBytes;
        to -= targetBytes;
        step(to, from);
        requests.AskForMore();
    }
    uint8_t copy[copiedUnits * sourceBytes + UnitPixels];
    std::memcpy(copy, source, apart * sourceBytes);
    for (size_t unit = 0; unit < apart; ++unit)
        step(target + unit * targetBytes, copy + unit * sourceBytes);
}

// Flattened, since a step that is called hands its vectors over in memory.
template <class Step>
[[gnu::flatten]] void RunUnits(const Step& step, const uint8_t* source, uint8_t* target, size_t pixels,
                               ptrdiff_t ahead) {
    if constexpr (Step::targetBits > Step::sourceBits) {
        RunBackwards(step, source, target, pixels, ahead);
    } else {
        RunForwards(step, source, target, pixels, ahead);
    }
}

// The kernel of a step that is made from the parameters of the row.
template <class Step>
void RunStep(const uint8_t* source, uint8_t* target, size_t pixels, const RowParameters& parameters) {
    RunUnits(Step(parameters), source, target, pixels, parameters.Ahead);
}

} // namespace
} // namespace zkr::kernels
