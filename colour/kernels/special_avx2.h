// Steps of 32 pixels for AVX2 that are faster than the meeting of a reader and a writer.
#pragma once

#include "colour/kernels/pixels_avx2.h"

namespace zkr::kernels {
namespace {

// Colours among each other, with the change of order left to the side that shuffles its bytes anyway: the
// other is given with its ordering left, and both are told whether the orders differ.
template <class Reader, class Writer> struct ReorderOnce : ConvertStep<Reader, Writer> {
    static RowParameters Relative(RowParameters p) {
        p.SourceIsRgb = p.TargetIsRgb = p.SourceIsRgb != p.TargetIsRgb;
        return p;
    }
    explicit ReorderOnce(const RowParameters& p) : ConvertStep<Reader, Writer>(Relative(p)) {}
};

// 24 bits in the other order.
struct Swap24 {
    static constexpr size_t sourceBits = 24;
    static constexpr size_t targetBits = 24;
    static constexpr size_t reach = UnitPixels;

    __m256i swap[4];

    explicit Swap24(const RowParameters&) {
        for (size_t i = 0; i < 4; ++i)
            swap[i] = ReorderShuffle<3, 3, 1, 4>(true, i);
    }
    void operator()(uint8_t* target, const uint8_t* source) const {
        __m256i four[4];
        for (size_t i = 0; i < 4; ++i)
            four[i] = _mm256_shuffle_epi8(LoadHalves(source + i * 12, source + 44 + i * 12), swap[i]);
        Store96(target, four);
    }
};

// Channels of eight bits to words. The 24 bytes of eight pixels become three halves of vectors of eight words
// each, which find all their channels, in either order, in the 16 bytes from 0, 6 and 8 on.
constexpr Places WidenedChannels(size_t vector, bool swap) {
    constexpr size_t loadedFrom[3] = {0, 6, 8};
    return MakePlaces([&](size_t i) {
        const size_t half = (vector * 2 + i / 16) % 3;
        const size_t channel = half * 8 + i % 16 / 2;
        return channel / 3 * 3 + Ordered(channel % 3, swap) - loadedFrom[half];
    });
}

struct Widen24 {
    static constexpr size_t sourceBits = 24;
    static constexpr size_t targetBits = 48;
    static constexpr size_t reach = UnitPixels;

    __m256i shuffle[3];

    explicit Widen24(const RowParameters& p) {
        static constexpr Places places[2][3] = {
            {WidenedChannels(0, false), WidenedChannels(1, false), WidenedChannels(2, false)},
            {WidenedChannels(0, true), WidenedChannels(1, true), WidenedChannels(2, true)}};
        for (size_t i = 0; i < 3; ++i)
            shuffle[i] = Load(places[p.SourceIsRgb != p.TargetIsRgb][i]);
    }
    void operator()(uint8_t* target, const uint8_t* source) const {
        for (size_t i = 0; i < 2; ++i, source += 48, target += 96) {
            Store(target, _mm256_shuffle_epi8(LoadHalves(source, source + 6), shuffle[0]));
            Store(target + 32, _mm256_shuffle_epi8(LoadHalves(source + 8, source + 24), shuffle[1]));
            Store(target + 64, _mm256_shuffle_epi8(LoadHalves(source + 30, source + 32), shuffle[2]));
        }
    }
};

// The high bytes of words, order kept.
struct Narrow48 {
    static constexpr size_t sourceBits = 48;
    static constexpr size_t targetBits = 24;
    static constexpr size_t reach = UnitPixels;

    explicit Narrow48(const RowParameters&) {}
    void operator()(uint8_t* target, const uint8_t* source) const {
        __m256i bytes[3];
        for (size_t i = 0; i < 3; ++i) {
            const __m256i low = _mm256_srli_epi16(Load(source + i * 64), 8);
            const __m256i high = _mm256_srli_epi16(Load(source + i * 64 + 32), 8);
            bytes[i] = _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xD8);
        }
        for (size_t i = 0; i < 3; ++i)
            Store(target + i * 32, bytes[i]);
    }
};

void Convert48To24(const uint8_t* source, uint8_t* target, size_t pixels, const RowParameters& parameters) {
    const bool sameOrder = parameters.SourceIsRgb == parameters.TargetIsRgb;
    const RowKernel kernel = sameOrder ? RunStep<Narrow48> : ConvertRow<ReadDeepHigh<3>, WriteColour<3>>;
    kernel(source, target, pixels, parameters);
}

// Each gray level three times. The bytes of a vector of the target come from eleven pixels, which lie in the
// sixteen from 0, 8 or 16 on.
struct SpreadGray {
    static constexpr size_t sourceBits = 8;
    static constexpr size_t targetBits = 24;
    static constexpr size_t reach = UnitPixels;

    static constexpr Places places[3] = {MakePlaces([](size_t i) { return i / 3; }),
                                         MakePlaces([](size_t i) { return (i + 32) / 3 - 8; }),
                                         MakePlaces([](size_t i) { return (i + 64) / 3 - 16; })};

    explicit SpreadGray(const RowParameters&) {}
    void operator()(uint8_t* target, const uint8_t* source) const {
        for (size_t i = 0; i < 3; ++i) {
            const __m256i levels = _mm256_broadcastsi128_si256(LoadHalf(source + i * 8));
            Store(target + i * 32, _mm256_shuffle_epi8(levels, Load(places[i])));
        }
    }
};

// Gray values of at most eight bits that are not scaled.
struct NarrowGrayValues {
    static constexpr size_t sourceBits = 16;
    static constexpr size_t targetBits = 8;
    static constexpr size_t reach = UnitPixels;

    __m128i shift;
    __m256i mask;

    explicit NarrowGrayValues(const RowParameters& p)
        : shift(_mm_cvtsi32_si128(static_cast<int>(p.Shift))),
          mask(_mm256_set1_epi16(static_cast<short>(p.Mask & 0xFF))) {}
    __m256i Values(const uint8_t* source) const {
        return _mm256_and_si256(_mm256_srl_epi16(Load(source), shift), mask);
    }
    void operator()(uint8_t* target, const uint8_t* source) const {
        const __m256i bytes = _mm256_packus_epi16(Values(source), Values(source + 32));
        Store(target, _mm256_permute4x64_epi64(bytes, 0xD8));
    }
};

void ConvertGrayValuesToGray8(const uint8_t* source, uint8_t* target, size_t pixels,
                              const RowParameters& parameters) {
    if (parameters.Scale.Whole == 1 && parameters.Scale.Fraction == 0) {
        RunUnits(NarrowGrayValues(parameters), source, target, pixels, parameters.Ahead);
    } else {
        ConvertRow<ReadGrayValue, WriteGray8>(source, target, pixels, parameters);
    }
}

constexpr void SetSpecialKernels(ConvertKernels& kernels) {
    const auto set = [&kernels](Source source, Target target, RowKernel kernel) {
        kernels.Convert[static_cast<size_t>(source)][static_cast<size_t>(target)] = kernel;
    };
    using Left32 = WriteColour<4, Alpha::Used, Ordering::Left>;
    using From16 = ReadColour16<Ordering::Left, Alpha::Ignored>;
    set(Source::Index8, Target::Colour32, RunStep<ReorderOnce<ReadIndex8, Left32>>);
    set(Source::Colour24, Target::Colour24, RunStep<Swap24>);
    set(Source::Colour24, Target::Colour32, RunStep<ReorderOnce<ReadColour<3>, Left32>>);
    set(Source::Colour24, Target::Colour16,
        RunStep<ReorderOnce<ReadColour<3>, WriteColour16<Ordering::Left>>>);
    set(Source::Colour32, Target::Colour24,
        RunStep<ReorderOnce<ReadColour<4, Ordering::Left>, WriteColour<3>>>);
    set(Source::Colour16, Target::Colour24, RunStep<ReorderOnce<From16, WriteColour<3>>>);
    set(Source::Colour24, Target::Deep48, RunStep<Widen24>);
    set(Source::Deep48, Target::Colour24, Convert48To24);
    set(Source::Gray8, Target::Colour24, RunStep<SpreadGray>);
    set(Source::GrayValue, Target::Gray8, ConvertGrayValuesToGray8);
}

} // namespace
} // namespace zkr::kernels
