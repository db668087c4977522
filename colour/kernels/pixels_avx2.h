// Readers and writers of 32 pixels at a time for AVX2. What they hand over is the same as in pixels_plain.h:
// colours of four bytes (blue, green, red, alpha from the lowest), deep colours of four words, or gray
// values, here as vectors with as many pixels in each half. How far apart the pixels of the two halves lie is
// for the writer to say, so that what it puts out comes together without crossing the halves; the pixels of
// each half are in their order. No reader or writer goes beyond its 32 pixels.
#pragma once

#include "colour/kernels/row_kernel.h"
#include "colour/kernels/units_avx2.h"

namespace zkr::kernels {
namespace {

struct Colours {
    __m256i Four[4];
};
struct DeepColours {
    __m256i Two[8];
};
struct GrayLevels {
    __m256i Four[4];
};

// The first pixel of a vector that holds as many pixels in each half, those of the high half so many pixels
// apart from those of the low half.
template <size_t apart> constexpr size_t FirstPixel(size_t vector, size_t perHalf) {
    return vector * perHalf / apart * (2 * apart) + vector * perHalf % apart;
}

template <size_t apartBytes> inline __m256i LoadApart(const uint8_t* place) {
    return apartBytes == 16 ? Load(place) : LoadHalves(place, place + apartBytes);
}

// Sixteen words, the lower four of each half for one vector of pixels, the upper four for the next.
template <size_t apart> inline __m256i LoadWords(const uint8_t* source, size_t vector) {
    const uint8_t* place = source + FirstPixel<apart>(vector, 4) * 2;
    const __m256i words = LoadApart < apart == 16 ? 32 : 16 > (place);
    return apart == 4 ? _mm256_permute4x64_epi64(words, 0xD8) : words;
}

// Whether a reader or writer brings red and blue into the order that the parameters tell, or leaves them as
// they are; see special_avx2.h.
enum class Ordering { Done, Left };

// The channel that stands at a place of a pixel, or the place of a channel: the exchange of red and blue goes
// both ways.
constexpr size_t Ordered(size_t channel, bool isRgb) {
    return isRgb && channel < 3 ? 2 - channel : channel;
}

// The byte of a half that belongs at a place of it: pixels of three channels are rotated for Store96, each of
// four vectors in its own way.
constexpr size_t Rotated(size_t place, size_t channels, size_t vector) {
    return (place + (channels == 3 ? vector % 4 * 4 : 0)) % 16;
}

// The shuffle that lays out pixels of some channels, of so many bytes each, as pixels of other channels. In
// the high half of the vector the pixels begin so many bytes later.
template <size_t fromChannels, size_t toChannels, size_t channelBytes>
constexpr Places Reorder(bool isRgb, size_t highOffset, size_t vector) {
    constexpr size_t widest = fromChannels > toChannels ? fromChannels : toChannels;
    constexpr size_t pixels = 16 / (widest * channelBytes);
    return MakePlaces([&](size_t i) {
        const size_t byte = Rotated(i, toChannels, vector);
        const size_t pixel = byte / (toChannels * channelBytes);
        const size_t channel = Ordered(byte / channelBytes % toChannels, isRgb);
        if (pixel >= pixels || channel >= fromChannels) return size_t{None};
        return i / 16 * highOffset + (pixel * fromChannels + channel) * channelBytes + byte % channelBytes;
    });
}

template <size_t fromChannels, size_t toChannels, size_t channelBytes, size_t highOffset = 0>
inline __m256i ReorderShuffle(bool isRgb, size_t vector = 0) {
    static constexpr auto make = [](bool rgb, size_t i) {
        return Reorder<fromChannels, toChannels, channelBytes>(rgb, highOffset, i);
    };
    static constexpr Places places[2][4] = {{make(false, 0), make(false, 1), make(false, 2), make(false, 3)},
                                            {make(true, 0), make(true, 1), make(true, 2), make(true, 3)}};
    return Load(places[isRgb][vector % 4]);
}

// Pixels of three channels are loaded four bytes early for the high half, so that nothing behind the last of
// them is read.
template <size_t channels> constexpr size_t highOffsetOf = channels == 3 ? 4 : 0;

// Readers

inline __m256i Masked(__m256i value, uint32_t mask) {
    return _mm256_and_si256(value, _mm256_set1_epi32(static_cast<int>(mask)));
}

struct ReadBits1 {
    static constexpr size_t bits = 1;
    __m256 zero, one;
    explicit ReadBits1(const RowParameters& p) {
        uint32_t entries[2];
        std::memcpy(entries, p.Table, sizeof entries);
        zero = _mm256_castsi256_ps(_mm256_set1_epi32(static_cast<int>(entries[0] & 0xFFFFFF)));
        one = _mm256_castsi256_ps(_mm256_set1_epi32(static_cast<int>(entries[1] & 0xFFFFFF)));
    }
    template <size_t apart> Colours Take(const uint8_t* source) const {
        uint32_t bits32;
        std::memcpy(&bits32, source, 4);
        const __m256i pixels = _mm256_set1_epi32(static_cast<int>(__builtin_bswap32(bits32)));
        constexpr int high = apart;
        const __m256i steps = _mm256_setr_epi32(0, 1, 2, 3, high, high + 1, high + 2, high + 3);
        Colours colours;
        for (size_t i = 0; i < 4; ++i) {
            const __m256i first = _mm256_set1_epi32(static_cast<int>(FirstPixel<apart>(i, 4)));
            const __m256i signs = _mm256_sllv_epi32(pixels, _mm256_add_epi32(first, steps));
            colours.Four[i] = _mm256_castps_si256(_mm256_blendv_ps(zero, one, _mm256_castsi256_ps(signs)));
        }
        return colours;
    }
};

// Single loads, which common processors do faster than gathering, from a copy of the palette that can be read
// behind its end.
struct ReadIndex8 {
    static constexpr size_t bits = 8;
    alignas(32) uint8_t entries[256 * 4 + 16];
    explicit ReadIndex8(const RowParameters& p) {
        const __m256i order = ReorderShuffle<4, 4, 1>(p.SourceIsRgb);
        const auto* palette = static_cast<const uint8_t*>(p.Table);
        const size_t count = p.Mask + size_t{1};
        uint8_t few[32];
        if (count < 8) palette = static_cast<const uint8_t*>(std::memcpy(few, palette, count * 4));
        for (size_t i = 0; i < count; i += 8)
            Store(entries + i * 4, _mm256_shuffle_epi8(Masked(Load(palette + i * 4), 0xFFFFFF), order));
    }
    // The second entry of a pair comes with what follows it in memory: that spares an instruction.
    __m128i Two(size_t indices) const {
        return _mm_unpacklo_epi32(LoadEighth(entries + (indices & 0xFF) * 4),
                                  LoadHalf(entries + (indices >> 8 & 0xFF) * 4));
    }
    __m128i Four(const uint8_t* source) const {
        uint32_t indices;
        std::memcpy(&indices, source, 4);
        return _mm_unpacklo_epi64(Two(indices), Two(indices >> 16));
    }
    template <size_t apart> Colours Take(const uint8_t* source) const {
        Colours colours;
        for (size_t i = 0; i < 4; ++i) {
            const uint8_t* place = source + FirstPixel<apart>(i, 4);
            colours.Four[i] = _mm256_setr_m128i(Four(place), Four(place + apart));
        }
        return colours;
    }
};

struct ReadGray8 {
    static constexpr size_t bits = 8;
    explicit ReadGray8(const RowParameters&) {}
    template <size_t apart> Colours Take(const uint8_t* source) const {
        Colours colours;
        for (size_t i = 0; i < 4; ++i) {
            const uint8_t* place = source + FirstPixel<apart>(i, 4);
            const __m256i levels = _mm256_setr_m128i(LoadEighth(place), LoadEighth(place + apart));
            colours.Four[i] = _mm256_shuffle_epi8(levels, Load(places));
        }
        return colours;
    }
    static constexpr Places places = MakePlaces([](size_t i) { return i % 4 < 3 ? i % 16 / 4 : None; });
};

struct ReadGrayValue {
    static constexpr size_t bits = 16;
    __m128i shift;
    __m256i mask;
    explicit ReadGrayValue(const RowParameters& p)
        : shift(_mm_cvtsi32_si128(static_cast<int>(p.Shift))),
          mask(_mm256_set1_epi32(static_cast<int>(p.Mask))) {}
    template <size_t apart> GrayLevels Take(const uint8_t* source) const {
        const __m256i zero = _mm256_setzero_si256();
        GrayLevels levels;
        for (size_t i = 0; i < 4; i += 2) {
            const __m256i words = LoadWords<apart>(source, i);
            levels.Four[i] = Value(_mm256_unpacklo_epi16(words, zero));
            levels.Four[i + 1] = Value(_mm256_unpackhi_epi16(words, zero));
        }
        return levels;
    }
    __m256i Value(__m256i pixels) const { return _mm256_and_si256(_mm256_srl_epi32(pixels, shift), mask); }
};

struct ReadGrayColour : ReadGrayValue {
    static constexpr Places places = MakePlaces([](size_t i) { return i % 4 < 3 ? i % 16 / 4 * 4 : None; });
    __m256i replicate = Load(places);
    using ReadGrayValue::ReadGrayValue;
    template <size_t apart> Colours Take(const uint8_t* source) const {
        const GrayLevels levels = ReadGrayValue::Take<apart>(source);
        Colours colours;
        for (size_t i = 0; i < 4; ++i)
            colours.Four[i] = _mm256_shuffle_epi8(levels.Four[i], replicate);
        return colours;
    }
};

struct ReadGrayLookup : ReadGrayValue {
    const int* palette;
    explicit ReadGrayLookup(const RowParameters& p)
        : ReadGrayValue(p), palette(static_cast<const int*>(p.Table)) {}
    template <size_t apart> Colours Take(const uint8_t* source) const {
        const GrayLevels levels = ReadGrayValue::Take<apart>(source);
        Colours colours;
        for (size_t i = 0; i < 4; ++i)
            colours.Four[i] = _mm256_and_si256(_mm256_i32gather_epi32(palette, levels.Four[i], 4),
                                               _mm256_set1_epi32(0xFFFFFF));
        return colours;
    }
};

template <Ordering ordering = Ordering::Done, Alpha alpha = Alpha::Used> struct ReadColour16 {
    static constexpr size_t bits = 16;
    __m256i order;
    explicit ReadColour16(const RowParameters& p) : order(ReorderShuffle<4, 4, 1>(p.SourceIsRgb)) {}
    // A field widens to a byte by 33 / 4, which is (c << 3) | (c >> 2), here as the upper half of a product
    // of words whose factor takes the place of the field into account.
    void Widen(__m256i words, __m256i& low, __m256i& high) const {
        const __m256i first = _mm256_mulhi_epu16(_mm256_slli_epi16(words, 11), _mm256_set1_epi16(264));
        const __m256i middle = _mm256_and_si256(words, _mm256_set1_epi16(0x3E0));
        const __m256i second = _mm256_mulhi_epu16(middle, _mm256_set1_epi16(16896));
        const __m256i top = _mm256_and_si256(words, _mm256_set1_epi16(0x7C00));
        const __m256i third = _mm256_mulhi_epu16(top, _mm256_set1_epi16(528));
        const __m256i lower = _mm256_or_si256(first, _mm256_slli_epi16(second, 8));
        const __m256i full = _mm256_slli_epi16(_mm256_srai_epi16(words, 15), 8);
        const __m256i upper = alpha == Alpha::Used ? _mm256_or_si256(third, full) : third;
        low = _mm256_unpacklo_epi16(lower, upper);
        high = _mm256_unpackhi_epi16(lower, upper);
        if (ordering == Ordering::Left) return;
        low = _mm256_shuffle_epi8(low, order);
        high = _mm256_shuffle_epi8(high, order);
    }
    template <size_t apart> Colours Take(const uint8_t* source) const {
        Colours colours;
        for (size_t i = 0; i < 4; i += 2)
            Widen(LoadWords<apart>(source, i), colours.Four[i], colours.Four[i + 1]);
        return colours;
    }
};

template <size_t channels, Ordering ordering = Ordering::Done> struct ReadColour {
    static constexpr size_t bits = channels * 8;
    static constexpr size_t highOffset = highOffsetOf<channels>;
    __m256i order;
    explicit ReadColour(const RowParameters& p)
        : order(ReorderShuffle<channels, 4, 1, highOffset>(p.SourceIsRgb)) {}
    template <size_t apart> Colours Take(const uint8_t* source) const {
        Colours colours;
        for (size_t i = 0; i < 4; ++i) {
            const uint8_t* place = source + FirstPixel<apart>(i, 4) * channels;
            colours.Four[i] = LoadApart<apart * channels - highOffset>(place);
            if (channels == 3 || ordering == Ordering::Done)
                colours.Four[i] = _mm256_shuffle_epi8(colours.Four[i], order);
        }
        return colours;
    }
};

template <size_t channels> struct ReadDeep {
    static constexpr size_t bits = channels * 16;
    static constexpr size_t highOffset = highOffsetOf<channels>;
    __m256i order;
    explicit ReadDeep(const RowParameters& p)
        : order(ReorderShuffle<channels, 4, 2, highOffset>(p.SourceIsRgb)) {}
    template <size_t apart> DeepColours Take(const uint8_t* source) const {
        DeepColours colours;
        for (size_t i = 0; i < 8; ++i) {
            const uint8_t* place = source + FirstPixel<apart>(i, 2) * channels * 2;
            colours.Two[i] = _mm256_shuffle_epi8(LoadApart<apart * channels * 2 - highOffset>(place), order);
        }
        return colours;
    }
};

template <size_t channels, Alpha alpha = Alpha::Used> struct ReadDeepHigh : ReadDeep<channels> {
    using ReadDeep<channels>::ReadDeep;
    template <size_t apart> Colours Take(const uint8_t* source) const {
        const DeepColours deep = ReadDeep<channels>::template Take<apart>(source);
        Colours colours;
        for (size_t i = 0; i < 4; ++i) {
            const __m256i low = _mm256_srli_epi16(deep.Two[i * 2], 8);
            const __m256i high = _mm256_srli_epi16(deep.Two[i * 2 + 1], 8);
            colours.Four[i] = _mm256_packus_epi16(low, high);
            if (alpha == Alpha::Ignored) colours.Four[i] = Masked(colours.Four[i], 0xFFFFFF);
        }
        return colours;
    }
};

// Writers

// Grays of colours by the weights of blue, green and red, before rounding.
inline __m256i WeightedSums(__m256i colours, uint32_t weights) {
    const __m256i pairs = _mm256_maddubs_epi16(colours, _mm256_set1_epi32(static_cast<int>(weights)));
    return _mm256_madd_epi16(pairs, _mm256_set1_epi16(1));
}
constexpr uint32_t GrayWeights = 0x020501;
constexpr uint32_t SwappedWeights = 0x020105;

inline GrayLevels GrayOf(const Colours& colours, uint32_t weights) {
    GrayLevels levels;
    for (size_t i = 0; i < 4; ++i) {
        const __m256i sums = WeightedSums(colours.Four[i], weights);
        levels.Four[i] = _mm256_srli_epi32(_mm256_add_epi32(sums, _mm256_set1_epi32(4)), 3);
    }
    return levels;
}

// The sums of sixteen colours as words, in which multiplying by 1 / 8 rounds as (sum + 4) >> 3 does.
inline __m256i GrayWordsOf(__m256i low, __m256i high) {
    const __m256i sums = _mm256_packs_epi32(WeightedSums(low, GrayWeights), WeightedSums(high, GrayWeights));
    return _mm256_mulhrs_epi16(sums, _mm256_set1_epi16(4096));
}

// Four grays in the low halves of four lanes of 64 bits.
inline __m256i GrayOfFour(__m256i deep) {
    const __m256i word = _mm256_set1_epi64x(0xFFFF);
    const __m256i blue = _mm256_and_si256(deep, word);
    const __m256i green = _mm256_and_si256(_mm256_srli_epi64(deep, 16), word);
    const __m256i red = _mm256_and_si256(_mm256_srli_epi64(deep, 32), word);
    const __m256i greens = _mm256_add_epi32(_mm256_slli_epi32(green, 2), green);
    const __m256i rest =
        _mm256_add_epi32(_mm256_slli_epi32(red, 1), _mm256_add_epi32(blue, _mm256_set1_epi64x(4)));
    return _mm256_srli_epi32(_mm256_add_epi32(greens, rest), 3);
}
inline GrayLevels GrayOf(const DeepColours& deep) {
    GrayLevels levels;
    for (size_t i = 0; i < 4; ++i) {
        const __m256 low = _mm256_castsi256_ps(GrayOfFour(deep.Two[i * 2]));
        const __m256 high = _mm256_castsi256_ps(GrayOfFour(deep.Two[i * 2 + 1]));
        levels.Four[i] = _mm256_castps_si256(_mm256_shuffle_ps(low, high, 0x88));
    }
    return levels;
}

// ApplyGrayScale for eight values, cut to the bits of a mask.
struct Scaler {
    __m256i whole, fraction, mask;
    __m128i shift;
    Scaler(const GrayScale& scale, uint32_t cut)
        : whole(_mm256_set1_epi32(static_cast<int>(scale.Whole))),
          fraction(_mm256_set1_epi32(static_cast<int>(scale.Fraction))),
          mask(_mm256_set1_epi32(static_cast<int>(cut))),
          shift(_mm_cvtsi32_si128(static_cast<int>(scale.Shift))) {}
    __m256i operator()(__m256i values) const {
        const __m256i even = _mm256_srli_epi64(_mm256_mul_epu32(values, fraction), 32);
        const __m256i odd = _mm256_mul_epu32(_mm256_srli_epi64(values, 32), fraction);
        const __m256i product = _mm256_blend_epi32(even, odd, 0xAA);
        const __m256i sum = _mm256_add_epi32(_mm256_mullo_epi32(values, whole), product);
        return _mm256_and_si256(_mm256_sll_epi32(sum, shift), mask);
    }
    GrayLevels operator()(const GrayLevels& levels) const {
        GrayLevels scaled;
        for (size_t i = 0; i < 4; ++i)
            scaled.Four[i] = (*this)(levels.Four[i]);
        return scaled;
    }
};

struct WriteGray8 {
    static constexpr size_t bits = 8;
    static constexpr size_t apart = 16;
    Scaler scale;
    explicit WriteGray8(const RowParameters& p) : scale(p.Scale, 0xFF) {}
    void operator()(uint8_t* target, const Colours& colours) const {
        const __m256i low = GrayWordsOf(colours.Four[0], colours.Four[1]);
        const __m256i high = GrayWordsOf(colours.Four[2], colours.Four[3]);
        Store(target, _mm256_packus_epi16(low, high));
    }
    void operator()(uint8_t* target, const GrayLevels& levels) const {
        const GrayLevels scaled = scale(levels);
        const __m256i low = _mm256_packus_epi32(scaled.Four[0], scaled.Four[1]);
        const __m256i high = _mm256_packus_epi32(scaled.Four[2], scaled.Four[3]);
        Store(target, _mm256_packus_epi16(low, high));
    }
};

struct WriteGrayWords {
    static constexpr size_t bits = 16;
    static constexpr size_t apart = 8;
    Scaler scale;
    explicit WriteGrayWords(const RowParameters& p) : scale(p.Scale, 0xFFFF) {}
    void operator()(uint8_t* target, const GrayLevels& levels) const {
        const GrayLevels scaled = scale(levels);
        Store(target, _mm256_packus_epi32(scaled.Four[0], scaled.Four[1]));
        Store(target + 32, _mm256_packus_epi32(scaled.Four[2], scaled.Four[3]));
    }
    void operator()(uint8_t* target, const Colours& colours) const {
        (*this)(target, GrayOf(colours, GrayWeights));
    }
    void operator()(uint8_t* target, const DeepColours& colours) const { (*this)(target, GrayOf(colours)); }
};

struct WriteSwappedGray : WriteGrayWords {
    using WriteGrayWords::WriteGrayWords;
    void operator()(uint8_t* target, const Colours& colours) const {
        WriteGrayWords::operator()(target, GrayOf(colours, SwappedWeights));
    }
};

template <Ordering ordering = Ordering::Done> struct WriteColour16 {
    static constexpr size_t bits = 16;
    static constexpr size_t apart = 8;
    __m256i order;
    explicit WriteColour16(const RowParameters& p) : order(ReorderShuffle<4, 4, 1>(p.TargetIsRgb)) {}
    // The fields are put together by multiplying and adding: the upper five bits of the channels times 1, 32
    // and 1024, and the upper bit of alpha times 2048.
    __m256i Packed(__m256i colours) const {
        if (ordering == Ordering::Done) colours = _mm256_shuffle_epi8(colours, order);
        const __m256i upper = Masked(colours, 0x80F8F8F8);
        const __m256i pairs = _mm256_maddubs_epi16(upper, _mm256_set1_epi32(0x02012001));
        return _mm256_srli_epi32(_mm256_madd_epi16(pairs, _mm256_set1_epi32(0x04000001)), 3);
    }
    void operator()(uint8_t* target, const Colours& colours) const {
        Store(target, _mm256_packus_epi32(Packed(colours.Four[0]), Packed(colours.Four[1])));
        Store(target + 32, _mm256_packus_epi32(Packed(colours.Four[2]), Packed(colours.Four[3])));
    }
};

template <size_t channels, Alpha alpha = Alpha::Used, Ordering ordering = Ordering::Done> struct WriteColour {
    static constexpr size_t bits = channels * 8;
    static constexpr size_t apart = channels == 3 ? 16 : 4;
    __m256i order[4];
    explicit WriteColour(const RowParameters& p) {
        for (size_t i = 0; i < 4; ++i)
            order[i] = ReorderShuffle<4, channels, 1>(p.TargetIsRgb, i);
    }
    void operator()(uint8_t* target, const Colours& colours) const {
        __m256i four[4];
        for (size_t i = 0; i < 4; ++i)
            four[i] = channels == 4 && ordering == Ordering::Left
                          ? colours.Four[i]
                          : _mm256_shuffle_epi8(colours.Four[i], order[i]);
        if constexpr (channels == 3) return Store96(target, four);
        const __m256i alphaMask = _mm256_set1_epi32(static_cast<int>(0xFF000000));
        for (size_t i = 0; i < 4; ++i) {
            uint8_t* place = target + i * 32;
            if (alpha == Alpha::Ignored) four[i] = _mm256_blendv_epi8(four[i], Load(place), alphaMask);
            Store(place, four[i]);
        }
    }
};

// The shuffle that lays out two of four narrow pixels as deep ones: both bytes of a word come from the byte
// of its channel in colours, from the word in gray values.
constexpr Places SpreadBytes(size_t channels, bool isRgb, size_t vector) {
    return MakePlaces([&](size_t i) {
        const size_t byte = Rotated(i, channels, vector);
        const size_t pixel = byte / (channels * 2);
        return pixel < 2 ? (vector % 2 * 2 + pixel) * 4 + Ordered(byte / 2 % channels, isRgb) : None;
    });
}
constexpr Places SpreadWords(size_t channels, size_t vector) {
    return MakePlaces([&](size_t i) {
        const size_t byte = Rotated(i, channels, vector);
        const size_t pixel = byte / (channels * 2);
        const size_t channel = byte / 2 % channels;
        return pixel < 2 && channel < 3 ? (vector % 2 * 2 + pixel) * 4 + byte % 2 : None;
    });
}

template <size_t channels, Alpha alpha = Alpha::Used> struct WriteDeep {
    static constexpr size_t bits = channels * 16;
    static constexpr size_t apart = channels == 3 ? 8 : 4;
    static constexpr Places spreadPlaces[2][4] = {
        {SpreadBytes(channels, false, 0), SpreadBytes(channels, false, 1), SpreadBytes(channels, false, 2),
         SpreadBytes(channels, false, 3)},
        {SpreadBytes(channels, true, 0), SpreadBytes(channels, true, 1), SpreadBytes(channels, true, 2),
         SpreadBytes(channels, true, 3)}};
    static constexpr Places replicated[4] = {SpreadWords(channels, 0), SpreadWords(channels, 1),
                                             SpreadWords(channels, 2), SpreadWords(channels, 3)};
    __m256i order[4], spread[4], replicate[4];
    Scaler scale;
    explicit WriteDeep(const RowParameters& p) : scale(p.Scale, 0xFFFF) {
        for (size_t i = 0; i < 4; ++i) {
            order[i] = ReorderShuffle<4, channels, 2>(p.TargetIsRgb, i);
            spread[i] = Load(spreadPlaces[p.TargetIsRgb][i]);
            replicate[i] = Load(replicated[i]);
        }
    }

    // Four vectors of two pixels in each half, in the layout of the target.
    void Put(uint8_t* target, const __m256i (&two)[4]) const {
        if constexpr (channels == 3) return Store96(target, two);
        const __m256i alphaMask = _mm256_set1_epi64x(static_cast<long long>(0xFFFF000000000000));
        const auto put = [&](uint8_t* place, __m256i four) {
            if (alpha == Alpha::Ignored) four = _mm256_blendv_epi8(four, Load(place), alphaMask);
            Store(place, four);
        };
        for (size_t i = 0; i < 4; i += 2) {
            put(target + i * 32, _mm256_permute2x128_si256(two[i], two[i + 1], 0x20));
            put(target + i * 32 + 32, _mm256_permute2x128_si256(two[i], two[i + 1], 0x31));
        }
    }
    // Puts 32 pixels, of which each vector of a half has been given by a shuffle of that of the source.
    template <size_t perVector>
    void PutShuffled(uint8_t* target, const __m256i* source, const __m256i (&shuffle)[4]) const {
        for (size_t half = 0; half < 2; ++half) {
            __m256i two[4];
            for (size_t i = 0; i < 4; ++i)
                two[i] = _mm256_shuffle_epi8(source[(half * 4 + i) / perVector], shuffle[i]);
            Put(target + half * channels * 32, two);
        }
    }
    void operator()(uint8_t* target, const DeepColours& colours) const {
        PutShuffled<1>(target, colours.Two, order);
    }
    void operator()(uint8_t* target, const Colours& colours) const {
        PutShuffled<2>(target, colours.Four, spread);
    }
    void operator()(uint8_t* target, const GrayLevels& levels) const {
        PutShuffled<2>(target, scale(levels).Four, replicate);
    }
};

template <class Reader, class Writer> struct ConvertStep {
    static constexpr size_t sourceBits = Reader::bits;
    static constexpr size_t targetBits = Writer::bits;
    static constexpr size_t reach = UnitPixels;

    Reader read;
    Writer write;

    explicit ConvertStep(const RowParameters& p) : read(p), write(p) {}
    void operator()(uint8_t* target, const uint8_t* source) const {
        write(target, read.template Take<Writer::apart>(source));
    }
};

template <class Reader, class Writer> constexpr RowKernel ConvertRow = RunStep<ConvertStep<Reader, Writer>>;

} // namespace
} // namespace zkr::kernels
