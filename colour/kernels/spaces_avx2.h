// Colour spaces that are faster in steps of their own than by vectorised plain code, for AVX2.
#pragma once

#include "colour/kernels/pixels.h"

namespace zkr::kernels {
namespace {

// Two of four pixels as four words each: both bytes of a word are those of its channel.
constexpr Places DoubledChannels(size_t pair) {
    return MakePlaces([=](size_t i) {
        const size_t pixel = pair * 2 + i % 16 / 8, channel = i % 8 / 2;
        return channel < 3 ? i / 16 * highOffsetOf<3> + pixel * 3 + channel : None;
    });
}

// Nothing, blue and red of two pixels of four words, where luma and differences lie in the target.
constexpr Places BlueAndRed(size_t vector) {
    return MakePlaces([=](size_t i) {
        const size_t byte = Rotated(i, 3, vector), word = byte / 2 % 3;
        return byte < 12 && word > 0 ? byte / 6 * 8 + (word - 1) * 4 + byte % 2 : None;
    });
}

// Luma of two of four pixels, and twice the upper word, its negative.
constexpr Places LumaThrice(size_t vector) {
    return MakePlaces([=](size_t i) {
        const size_t byte = Rotated(i, 3, vector), word = byte / 2 % 3;
        return byte < 12 ? (vector % 2 * 2 + byte / 6) * 4 + (word > 0 ? 2 : 0) + byte % 2 : None;
    });
}

struct LumaStep {
    static constexpr size_t sourceBits = 24;
    static constexpr size_t targetBits = 48;
    static constexpr size_t reach = UnitPixels;

    static constexpr Places doubled[2] = {DoubledChannels(0), DoubledChannels(1)};
    static constexpr Places blueAndRed[4] = {BlueAndRed(0), BlueAndRed(1), BlueAndRed(2), BlueAndRed(3)};
    static constexpr Places lumaThrice[4] = {LumaThrice(0), LumaThrice(1), LumaThrice(2), LumaThrice(3)};

    // To14 of channels whose byte stands twice: the upper bits, and one more for 255.
    static __m256i To14(__m256i channels) {
        const __m256i full = _mm256_cmpeq_epi16(channels, _mm256_set1_epi16(-1));
        return _mm256_sub_epi16(_mm256_srli_epi16(channels, 2), full);
    }
    // Of four pixels in each half. The quotient by 1000 is a product in floating point: exact for every odd
    // number up to 16384001, and an even number has the quotient of the odd one behind it.
    static __m256i Luma(__m256i first, __m256i second) {
        const __m256i weights = _mm256_set1_epi64x(114 | 587 << 16 | int64_t{299} << 32);
        const __m256 a = _mm256_castsi256_ps(_mm256_madd_epi16(first, weights));
        const __m256 b = _mm256_castsi256_ps(_mm256_madd_epi16(second, weights));
        const __m256i blueAndGreen = _mm256_castps_si256(_mm256_shuffle_ps(a, b, 0x88));
        const __m256i red = _mm256_castps_si256(_mm256_shuffle_ps(a, b, 0xDD));
        const __m256i odd = _mm256_or_si256(_mm256_add_epi32(blueAndGreen, red), _mm256_set1_epi32(1));
        return _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(odd), _mm256_set1_ps(0.00099999993F)));
    }
    static __m256i Differences(__m256i channels, __m256i lumas, size_t vector) {
        return _mm256_add_epi16(_mm256_shuffle_epi8(channels, Load(blueAndRed[vector])),
                                _mm256_shuffle_epi8(lumas, Load(lumaThrice[vector])));
    }
    void operator()(uint8_t* target, const uint8_t* source) const {
        for (size_t half = 0; half < 2; ++half, source += 48, target += 96) {
            __m256i four[4];
            for (size_t i = 0; i < 4; i += 2) {
                const uint8_t* place = source + i * 6;
                const __m256i pixels = LoadHalves(place, place + 24 - highOffsetOf<3>);
                const __m256i first = To14(_mm256_shuffle_epi8(pixels, Load(doubled[0])));
                const __m256i second = To14(_mm256_shuffle_epi8(pixels, Load(doubled[1])));
                const __m256i luma = Luma(first, second);
                const __m256i lumas = _mm256_sub_epi32(luma, _mm256_slli_epi32(luma, 16));
                four[i] = Differences(first, lumas, i);
                four[i + 1] = Differences(second, lumas, i + 1);
            }
            Store96(target, four);
        }
    }
};

// The two spans do not overlap, so that the row can be walked from its start, which memory is faster at.
[[gnu::flatten]] void RgbToLuma(const uint8_t* source, uint8_t* target, size_t pixels) {
    RunForwards(LumaStep(), source, target, pixels);
}

} // namespace
} // namespace zkr::kernels
