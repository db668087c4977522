// YUV in vectors for AVX2, sixteen pixels at a time, of which each half of a vector has eight.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {
namespace {

// Words of channels, eight pixels in each half.
struct ChannelWords {
    __m256i Blue, Green, Red;
};

inline __m256i BothHalves(__m128i half) {
    return _mm256_broadcastsi128_si256(half);
}

// Cuts the channels to bytes and puts them side by side.
inline void StorePixels(uint8_t* target, const ChannelWords& words) {
    const __m256i blueGreen = _mm256_packus_epi16(words.Blue, words.Green);
    const __m256i red = _mm256_packus_epi16(words.Red, words.Red);
    const __m256i blueGreenFirst =
        BothHalves(_mm_setr_epi8(0, 8, -1, 1, 9, -1, 2, 10, -1, 3, 11, -1, 4, 12, -1, 5));
    const __m256i redFirst =
        BothHalves(_mm_setr_epi8(-1, -1, 0, -1, -1, 1, -1, -1, 2, -1, -1, 3, -1, -1, 4, -1));
    const __m256i blueGreenLast =
        BothHalves(_mm_setr_epi8(13, -1, 6, 14, -1, 7, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1));
    const __m256i redLast =
        BothHalves(_mm_setr_epi8(-1, 5, -1, -1, 6, -1, -1, 7, -1, -1, -1, -1, -1, -1, -1, -1));
    const __m256i first =
        _mm256_or_si256(_mm256_shuffle_epi8(blueGreen, blueGreenFirst), _mm256_shuffle_epi8(red, redFirst));
    const __m256i last =
        _mm256_or_si256(_mm256_shuffle_epi8(blueGreen, blueGreenLast), _mm256_shuffle_epi8(red, redLast));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm256_castsi256_si128(first));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(target + 16), _mm256_castsi256_si128(last));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target + 24), _mm256_extracti128_si256(first, 1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(target + 40), _mm256_extracti128_si256(last, 1));
}

// Two words as the factors of a pair.
inline __m256i Factors(int low, int high) {
    return _mm256_set1_epi32(
        static_cast<int>(static_cast<uint32_t>(high) << 16 | (static_cast<uint32_t>(low) & 0xFFFF)));
}

// Eighths of thousandfold channels to channels: exact up to 255, and larger above.
inline __m256i By125(__m256i eighths) {
    return _mm256_srli_epi16(_mm256_mulhi_epu16(eighths, _mm256_set1_epi16(static_cast<short>(33555))), 6);
}

// Planes, a chroma sample for `step` pixels of the row. Vector part 0 has the pixels 0 to 3 and 8 to 11, part 1 the
// others, so that they stand in order once they are packed.
template <size_t step> struct PlanarShuffles {
    __m256i Light[2], Chroma[2];

    PlanarShuffles() {
        for (size_t part = 0; part < 2; ++part) {
            alignas(32) int8_t light[32], chroma[32];
            for (size_t lane = 0; lane < 8; ++lane) {
                const size_t pixel = lane / 4 * 8 + part * 4 + lane % 4;
                const auto sample = static_cast<int8_t>(pixel / step * 2);
                const int8_t four[4] = {static_cast<int8_t>(pixel), -1, -1, -1};
                const int8_t pair[4] = {sample, -1, static_cast<int8_t>(sample + 1), -1};
                for (size_t i = 0; i < 4; ++i) {
                    light[lane * 4 + i] = four[i];
                    chroma[lane * 4 + i] = pair[i];
                }
            }
            Light[part] = _mm256_load_si256(reinterpret_cast<const __m256i*>(light));
            Chroma[part] = _mm256_load_si256(reinterpret_cast<const __m256i*>(chroma));
        }
    }
};

// The eighths of one part's channels.
struct EighthsOfPart {
    __m256i Blue, Green, Red;
};

inline EighthsOfPart EighthsOf(__m256i light, __m256i chroma) {
    const __m256i centred = _mm256_sub_epi16(chroma, _mm256_set1_epi16(128));
    const __m256i base =
        _mm256_add_epi32(_mm256_madd_epi16(light, _mm256_set1_epi32(1164)), _mm256_set1_epi32(-16 * 1164));
    const auto channel = [&](int uFactor, int vFactor) {
        const __m256i part = _mm256_madd_epi16(centred, Factors(uFactor, vFactor));
        return _mm256_srai_epi32(_mm256_add_epi32(base, part), 3);
    };
    return {channel(2018, 0), channel(-391, -813), channel(0, 1596)};
}

template <size_t step>
void VectorPlanar(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* target, size_t pixels) {
    const PlanarShuffles<step> shuffles;
    const auto load = [](const uint8_t* plane, size_t sample) {
        if constexpr (step == 2) {
            return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(plane + sample));
        } else {
            int32_t four;
            __builtin_memcpy(&four, plane + sample, sizeof four);
            return _mm_cvtsi32_si128(four);
        }
    };
    for (size_t i = 0; i < pixels; i += 16) {
        const __m256i light = BothHalves(_mm_loadu_si128(reinterpret_cast<const __m128i*>(y + i)));
        const __m256i pairs = BothHalves(_mm_unpacklo_epi8(load(u, i / step), load(v, i / step)));
        const auto part = [&](size_t p) {
            return EighthsOf(_mm256_shuffle_epi8(light, shuffles.Light[p]),
                             _mm256_shuffle_epi8(pairs, shuffles.Chroma[p]));
        };
        const EighthsOfPart a = part(0), b = part(1);
        StorePixels(target + i * 3,
                    {By125(_mm256_packus_epi32(a.Blue, b.Blue)), By125(_mm256_packus_epi32(a.Green, b.Green)),
                     By125(_mm256_packus_epi32(a.Red, b.Red))});
    }
}

// Groups of four bytes for two pixels, eight groups to a vector: a lane of 32 bits is a group.
template <size_t y0, size_t u, size_t y1, size_t v>
void VectorPacked(const uint8_t* source, uint8_t* target, size_t pixels) {
    const auto group = [](int a, int b, int c, int d) {
        return BothHalves(_mm_setr_epi8(static_cast<char>(a), -1, static_cast<char>(b), -1,
                                        static_cast<char>(a + 4), -1, static_cast<char>(b + 4), -1,
                                        static_cast<char>(c), -1, static_cast<char>(d), -1,
                                        static_cast<char>(c + 4), -1, static_cast<char>(d + 4), -1));
    };
    const __m256i lightPlaces = group(y0, y1, y0 + 8, y1 + 8), chromaPlaces = group(u, v, u + 8, v + 8);
    const __m256i twice = BothHalves(_mm_setr_epi8(0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13));
    for (size_t i = 0; i < pixels; i += 16) {
        const __m256i groups = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source + i * 2));
        const __m256i light = _mm256_shuffle_epi8(groups, lightPlaces);
        const __m256i chroma =
            _mm256_sub_epi16(_mm256_shuffle_epi8(groups, chromaPlaces), _mm256_set1_epi16(128));
        // The division truncates towards zero: it divides the magnitude.
        const auto channel = [&](int uFactor, int vFactor) {
            const __m256i thousandfold = _mm256_add_epi32(
                _mm256_madd_epi16(chroma, Factors(uFactor, vFactor)), _mm256_set1_epi32(500));
            const __m256i magnitude = By125(_mm256_srli_epi32(_mm256_abs_epi32(thousandfold), 3));
            const __m256i part = _mm256_shuffle_epi8(_mm256_sign_epi32(magnitude, thousandfold), twice);
            return _mm256_add_epi16(light, part);
        };
        StorePixels(target + i * 3, {channel(1772, 0), channel(-344, -714), channel(0, 1402)});
    }
}

} // namespace
} // namespace zkr::kernels
