// Steps of 32 pixels for AVX2 that are faster than the meeting of a reader and a writer.
#pragma once

#include "colour/rows/pixels_avx2.h"

namespace zkr::rows {
namespace {

// Indices to colours of 24 or 32 bits, four pixels to a store. The entries wait in the order of the target.
template <size_t channels> struct LookUpColours {
    static constexpr size_t sourceBits = 8;
    static constexpr size_t targetBits = channels * 8;
    static constexpr size_t reach =
        unitPixels + (channels == 3 ? 2 : 0); // the last store goes four bytes too far

    alignas(32) uint8_t entries[256 * 4];
    __m128i join = _mm256_castsi256_si128(ReorderShuffle<4, 3, 1>(false));

    explicit LookUpColours(const RowParameters& p) {
        const __m256i order = ReorderShuffle<4, 4, 1>(p.TargetIsRgb);
        const auto* palette = static_cast<const uint8_t*>(p.Table);
        const size_t count = p.Mask + size_t{1};
        uint8_t few[32];
        if (count < 8) palette = static_cast<const uint8_t*>(std::memcpy(few, palette, count * 4));
        for (size_t i = 0; i < count; i += 8)
            Store(entries + i * 4, _mm256_shuffle_epi8(Masked(Load(palette + i * 4), 0xFFFFFF), order));
    }
    void operator()(uint8_t* target, const uint8_t* source) const {
        for (size_t i = 0; i < unitPixels; i += 4) {
            const __m128i four = FourEntries(entries, source + i);
            StoreHalf(target + i * channels, channels == 3 ? _mm_shuffle_epi8(four, join) : four);
        }
    }
};

// Colours among each other, with the change of order left to the side that shuffles its bytes anyway: the
// other is given with its ordering left, and both are told whether the orders differ.
template <class Reader, class Writer> struct ReorderOnce : ConvertStep<Reader, Writer> {
    static RowParameters Relative(const RowParameters& p) {
        const bool differs = p.SourceIsRgb != p.TargetIsRgb;
        return {.SourceIsRgb = differs, .TargetIsRgb = differs};
    }
    explicit ReorderOnce(const RowParameters& p) : ConvertStep<Reader, Writer>(Relative(p)) {}
};

// 24 bits in the other order.
struct Swap24 {
    static constexpr size_t sourceBits = 24;
    static constexpr size_t targetBits = 24;
    static constexpr size_t reach = unitPixels;

    __m256i swap = ReorderShuffle<3, 3, 1, 4>(true);

    explicit Swap24(const RowParameters&) {}
    void operator()(uint8_t* target, const uint8_t* source) const {
        __m256i eight[4];
        for (size_t i = 0; i < 4; ++i)
            eight[i] = _mm256_shuffle_epi8(Load24(source + i * 24), swap);
        Store96(target, eight[0], eight[1], eight[2], eight[3]);
    }
};

inline __m256i LoadHalves(const uint8_t* low, const uint8_t* high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadHalf(low)), LoadHalf(high), 1);
}

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
    static constexpr size_t reach = unitPixels;

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
    static constexpr size_t reach = unitPixels;

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
    static constexpr size_t reach = unitPixels;

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
    static constexpr size_t reach = unitPixels;

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
        RunUnits(NarrowGrayValues(parameters), source, target, pixels);
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
    set(Source::Index8, Target::Colour24, RunStep<LookUpColours<3>>);
    set(Source::Index8, Target::Colour32, RunStep<LookUpColours<4>>);
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
} // namespace zkr::rows
