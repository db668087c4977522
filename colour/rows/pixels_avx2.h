// Readers and writers of 32 pixels at a time for AVX2. What they hand over is the same as in pixels_plain.h:
// colours of four bytes (blue, green, red, alpha from the lowest), deep colours of four words, or gray
// values, here as vectors that hold the pixels in their order. No reader or writer goes beyond its 32 pixels.
#pragma once

#include "colour/rows/row_kernel.h"
#include "colour/rows/units_avx2.h"

namespace zkr::rows {
namespace {

struct Colours {
    __m256i Eight[4];
};
struct DeepColours {
    __m256i Four[8];
};
struct GrayLevels {
    __m256i Eight[4];
};

// Puts vectors of eight values of at most 16 bits next to each other.
inline __m256i PackWords(__m256i low, __m256i high) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi32(low, high), 0xD8);
}
// Words that were joined from pairs of such vectors, as bytes in the order of the pixels.
inline __m256i JoinBytes(__m256i low, __m256i high) {
    return _mm256_permutevar8x32_epi32(_mm256_packus_epi16(low, high),
                                       _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}
inline __m256i PackBytes(const __m256i (&eight)[4]) {
    return JoinBytes(_mm256_packus_epi32(eight[0], eight[1]), _mm256_packus_epi32(eight[2], eight[3]));
}

// Whether a reader or writer brings red and blue into the order that the parameters tell, or leaves them as
// they are; see special_avx2.h.
enum class Ordering { Done, Left };

// The channel that stands at a place of a pixel, or the place of a channel: the exchange of red and blue goes
// both ways.
constexpr size_t Ordered(size_t channel, bool isRgb) {
    return isRgb && channel < 3 ? 2 - channel : channel;
}

// The shuffle that lays out pixels of some channels, of so many bytes each, as pixels of other channels. In
// the high half of the vector the pixels begin so many bytes later.
template <size_t fromChannels, size_t toChannels, size_t channelBytes>
constexpr Places Reorder(bool isRgb, size_t highOffset) {
    constexpr size_t widest = fromChannels > toChannels ? fromChannels : toChannels;
    constexpr size_t pixels = 16 / (widest * channelBytes);
    return MakePlaces([&](size_t i) {
        const size_t pixel = i % 16 / (toChannels * channelBytes);
        const size_t channel = Ordered(i % 16 / channelBytes % toChannels, isRgb);
        if (pixel >= pixels || channel >= fromChannels) return size_t{none};
        return i / 16 * highOffset + (pixel * fromChannels + channel) * channelBytes + i % channelBytes;
    });
}

// For both orders.
template <size_t fromChannels, size_t toChannels, size_t channelBytes, size_t highOffset = 0>
inline __m256i ReorderShuffle(bool isRgb) {
    static constexpr Places places[2] = {Reorder<fromChannels, toChannels, channelBytes>(false, highOffset),
                                         Reorder<fromChannels, toChannels, channelBytes>(true, highOffset)};
    return Load(places[isRgb]);
}

// Readers

struct ReadBits1 {
    static constexpr size_t bits = 1;
    __m256 zero, one;
    explicit ReadBits1(const RowParameters& p) {
        uint32_t entries[2];
        std::memcpy(entries, p.Table, sizeof entries);
        zero = _mm256_castsi256_ps(_mm256_set1_epi32(static_cast<int>(entries[0] & 0xFFFFFF)));
        one = _mm256_castsi256_ps(_mm256_set1_epi32(static_cast<int>(entries[1] & 0xFFFFFF)));
    }
    Colours operator()(const uint8_t* source) const {
        Colours colours;
        const __m256i toSign = _mm256_setr_epi32(24, 25, 26, 27, 28, 29, 30, 31);
        for (size_t i = 0; i < 4; ++i) {
            const __m256i signs = _mm256_sllv_epi32(_mm256_set1_epi32(source[i]), toSign);
            colours.Eight[i] = _mm256_castps_si256(_mm256_blendv_ps(zero, one, _mm256_castsi256_ps(signs)));
        }
        return colours;
    }
};

inline __m128i PaletteEntry(const uint8_t* palette, size_t index) {
    int entry;
    std::memcpy(&entry, palette + index * 4, 4);
    return _mm_cvtsi32_si128(entry);
}
inline __m128i FourEntries(const uint8_t* palette, const uint8_t* indices) {
    const __m128i low =
        _mm_unpacklo_epi32(PaletteEntry(palette, indices[0]), PaletteEntry(palette, indices[1]));
    const __m128i high =
        _mm_unpacklo_epi32(PaletteEntry(palette, indices[2]), PaletteEntry(palette, indices[3]));
    return _mm_unpacklo_epi64(low, high);
}

// Single loads, which common processors do faster than gathering.
struct ReadIndex8 {
    static constexpr size_t bits = 8;
    const uint8_t* palette;
    explicit ReadIndex8(const RowParameters& p) : palette(static_cast<const uint8_t*>(p.Table)) {}
    Colours operator()(const uint8_t* source) const {
        Colours colours;
        for (size_t i = 0; i < 4; ++i) {
            const __m128i low = FourEntries(palette, source + i * 8);
            const __m128i high = FourEntries(palette, source + i * 8 + 4);
            colours.Eight[i] = _mm256_and_si256(_mm256_setr_m128i(low, high), _mm256_set1_epi32(0xFFFFFF));
        }
        return colours;
    }
};

struct ReadGray8 {
    static constexpr size_t bits = 8;
    static constexpr Places places = MakePlaces([](size_t i) { return i % 4 < 3 ? i / 4 : none; });
    __m256i replicate = Load(places);
    explicit ReadGray8(const RowParameters&) {}
    Colours operator()(const uint8_t* source) const {
        Colours colours;
        for (size_t i = 0; i < 4; ++i) {
            const __m128i bytes = LoadQuarter(source + i * 8);
            colours.Eight[i] = _mm256_shuffle_epi8(_mm256_broadcastq_epi64(bytes), replicate);
        }
        return colours;
    }
};

struct ReadGrayValue {
    static constexpr size_t bits = 16;
    __m128i shift;
    __m256i mask;
    explicit ReadGrayValue(const RowParameters& p)
        : shift(_mm_cvtsi32_si128(static_cast<int>(p.Shift))),
          mask(_mm256_set1_epi32(static_cast<int>(p.Mask))) {}
    GrayLevels operator()(const uint8_t* source) const {
        GrayLevels levels;
        for (size_t i = 0; i < 4; ++i) {
            const __m256i words = _mm256_cvtepu16_epi32(LoadHalf(source + i * 16));
            levels.Eight[i] = _mm256_and_si256(_mm256_srl_epi32(words, shift), mask);
        }
        return levels;
    }
};

struct ReadGrayColour : ReadGrayValue {
    static constexpr Places places = MakePlaces([](size_t i) { return i % 4 < 3 ? i % 16 / 4 * 4 : none; });
    __m256i replicate = Load(places);
    using ReadGrayValue::ReadGrayValue;
    Colours operator()(const uint8_t* source) const {
        const GrayLevels levels = ReadGrayValue::operator()(source);
        Colours colours;
        for (size_t i = 0; i < 4; ++i)
            colours.Eight[i] = _mm256_shuffle_epi8(levels.Eight[i], replicate);
        return colours;
    }
};

struct ReadGrayLookup : ReadGrayValue {
    const int* palette;
    explicit ReadGrayLookup(const RowParameters& p)
        : ReadGrayValue(p), palette(static_cast<const int*>(p.Table)) {}
    Colours operator()(const uint8_t* source) const {
        const GrayLevels levels = ReadGrayValue::operator()(source);
        Colours colours;
        for (size_t i = 0; i < 4; ++i)
            colours.Eight[i] = _mm256_and_si256(_mm256_i32gather_epi32(palette, levels.Eight[i], 4),
                                                _mm256_set1_epi32(0xFFFFFF));
        return colours;
    }
};

inline __m256i Masked(__m256i value, uint32_t mask) {
    return _mm256_and_si256(value, _mm256_set1_epi32(static_cast<int>(mask)));
}

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
    Colours operator()(const uint8_t* source) const {
        Colours colours;
        for (size_t i = 0; i < 4; i += 2) {
            const __m256i words = _mm256_permute4x64_epi64(Load(source + i * 16), 0xD8);
            Widen(words, colours.Eight[i], colours.Eight[i + 1]);
        }
        return colours;
    }
};

template <size_t channels, Ordering ordering = Ordering::Done> struct ReadColour {
    static constexpr size_t bits = channels * 8;
    __m256i order;
    explicit ReadColour(const RowParameters& p)
        : order(ReorderShuffle < channels, 4, 1, channels == 3 ? 4 : 0 > (p.SourceIsRgb)) {}
    Colours operator()(const uint8_t* source) const {
        Colours colours;
        for (size_t i = 0; i < 4; ++i) {
            const uint8_t* place = source + i * bits;
            colours.Eight[i] = channels == 3 ? Load24(place) : Load(place);
            if (channels == 3 || ordering == Ordering::Done)
                colours.Eight[i] = _mm256_shuffle_epi8(colours.Eight[i], order);
        }
        return colours;
    }
};

template <size_t channels> struct ReadDeep {
    static constexpr size_t bits = channels * 16;
    __m256i order;
    explicit ReadDeep(const RowParameters& p)
        : order(ReorderShuffle < channels, 4, 2, channels == 3 ? 4 : 0 > (p.SourceIsRgb)) {}
    DeepColours operator()(const uint8_t* source) const {
        DeepColours colours;
        for (size_t i = 0; i < 8; ++i) {
            const uint8_t* place = source + i * bits / 2;
            colours.Four[i] = _mm256_shuffle_epi8(channels == 3 ? Load24(place) : Load(place), order);
        }
        return colours;
    }
};

template <size_t channels, Alpha alpha = Alpha::Used> struct ReadDeepHigh : ReadDeep<channels> {
    using ReadDeep<channels>::ReadDeep;
    Colours operator()(const uint8_t* source) const {
        const DeepColours deep = ReadDeep<channels>::operator()(source);
        Colours colours;
        for (size_t i = 0; i < 4; ++i) {
            const __m256i low = _mm256_srli_epi16(deep.Four[i * 2], 8);
            const __m256i high = _mm256_srli_epi16(deep.Four[i * 2 + 1], 8);
            colours.Eight[i] = _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xD8);
            if (alpha == Alpha::Ignored) colours.Eight[i] = Masked(colours.Eight[i], 0xFFFFFF);
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
constexpr uint32_t grayWeights = 0x020501;
constexpr uint32_t swappedWeights = 0x020105;

inline GrayLevels GrayOf(const Colours& colours, uint32_t weights) {
    GrayLevels levels;
    for (size_t i = 0; i < 4; ++i) {
        const __m256i sums = WeightedSums(colours.Eight[i], weights);
        levels.Eight[i] = _mm256_srli_epi32(_mm256_add_epi32(sums, _mm256_set1_epi32(4)), 3);
    }
    return levels;
}

// The sums of sixteen colours as words, in which multiplying by 1 / 8 rounds as (sum + 4) >> 3 does.
inline __m256i GrayWordsOf(__m256i low, __m256i high) {
    const __m256i sums = _mm256_packs_epi32(WeightedSums(low, grayWeights), WeightedSums(high, grayWeights));
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
        const __m256 low = _mm256_castsi256_ps(GrayOfFour(deep.Four[i * 2]));
        const __m256 high = _mm256_castsi256_ps(GrayOfFour(deep.Four[i * 2 + 1]));
        levels.Eight[i] =
            _mm256_permute4x64_epi64(_mm256_castps_si256(_mm256_shuffle_ps(low, high, 0x88)), 0xD8);
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
            scaled.Eight[i] = (*this)(levels.Eight[i]);
        return scaled;
    }
};

struct WriteGray8 {
    static constexpr size_t bits = 8;
    Scaler scale;
    explicit WriteGray8(const RowParameters& p) : scale(p.Scale, 0xFF) {}
    void operator()(uint8_t* target, const Colours& colours) const {
        const __m256i low = GrayWordsOf(colours.Eight[0], colours.Eight[1]);
        const __m256i high = GrayWordsOf(colours.Eight[2], colours.Eight[3]);
        Store(target, JoinBytes(low, high));
    }
    void operator()(uint8_t* target, const GrayLevels& levels) const {
        Store(target, PackBytes(scale(levels).Eight));
    }
};

struct WriteGrayWords {
    static constexpr size_t bits = 16;
    Scaler scale;
    explicit WriteGrayWords(const RowParameters& p) : scale(p.Scale, 0xFFFF) {}
    void operator()(uint8_t* target, const GrayLevels& levels) const {
        const GrayLevels scaled = scale(levels);
        Store(target, PackWords(scaled.Eight[0], scaled.Eight[1]));
        Store(target + 32, PackWords(scaled.Eight[2], scaled.Eight[3]));
    }
    void operator()(uint8_t* target, const Colours& colours) const {
        (*this)(target, GrayOf(colours, grayWeights));
    }
    void operator()(uint8_t* target, const DeepColours& colours) const { (*this)(target, GrayOf(colours)); }
};

struct WriteSwappedGray : WriteGrayWords {
    using WriteGrayWords::WriteGrayWords;
    void operator()(uint8_t* target, const Colours& colours) const {
        WriteGrayWords::operator()(target, GrayOf(colours, swappedWeights));
    }
};

template <Ordering ordering = Ordering::Done> struct WriteColour16 {
    static constexpr size_t bits = 16;
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
        Store(target, PackWords(Packed(colours.Eight[0]), Packed(colours.Eight[1])));
        Store(target + 32, PackWords(Packed(colours.Eight[2]), Packed(colours.Eight[3])));
    }
};

template <size_t channels, Alpha alpha = Alpha::Used, Ordering ordering = Ordering::Done> struct WriteColour {
    static constexpr size_t bits = channels * 8;
    __m256i order;
    explicit WriteColour(const RowParameters& p) : order(ReorderShuffle<4, channels, 1>(p.TargetIsRgb)) {}
    void operator()(uint8_t* target, const Colours& colours) const {
        __m256i eight[4];
        for (size_t i = 0; i < 4; ++i)
            eight[i] = channels == 4 && ordering == Ordering::Left
                           ? colours.Eight[i]
                           : _mm256_shuffle_epi8(colours.Eight[i], order);
        if constexpr (channels == 3) return Store96(target, eight[0], eight[1], eight[2], eight[3]);
        const __m256i alphaMask = _mm256_set1_epi32(static_cast<int>(0xFF000000));
        for (size_t i = 0; i < 4; ++i) {
            uint8_t* place = target + i * 32;
            if (alpha == Alpha::Ignored) eight[i] = _mm256_blendv_epi8(eight[i], Load(place), alphaMask);
            Store(place, eight[i]);
        }
    }
};

// Words of deep pixels, both bytes of each from the byte of its channel.
constexpr Places SpreadBytes(size_t channels, bool isRgb) {
    return MakePlaces([&](size_t i) {
        const size_t pixel = i % 16 / (channels * 2);
        return pixel < 2 ? pixel * 4 + Ordered(i % 16 / 2 % channels, isRgb) : none;
    });
}

template <size_t channels, Alpha alpha = Alpha::Used> struct WriteDeep {
    static constexpr size_t bits = channels * 16;
    static constexpr size_t pixelBytes = channels * 2;
    static constexpr Places replicated = MakePlaces([](size_t i) {
        const size_t byte = i % 16 % pixelBytes;
        return i % 16 < 2 * pixelBytes && byte < 6 ? i % 16 / pixelBytes * 4 + byte % 2 : none;
    });
    static constexpr Places spreadPlaces[2] = {SpreadBytes(channels, false), SpreadBytes(channels, true)};
    __m256i order, spread;
    __m256i replicate = Load(replicated);
    Scaler scale;
    explicit WriteDeep(const RowParameters& p)
        : order(ReorderShuffle<4, channels, 2>(p.TargetIsRgb)), spread(Load(spreadPlaces[p.TargetIsRgb])),
          scale(p.Scale, 0xFFFF) {}

    // Eight vectors of four pixels in the layout of the target.
    void Put(uint8_t* target, const __m256i (&four)[8]) const {
        if constexpr (channels == 3) {
            Store96(target, four[0], four[1], four[2], four[3]);
            return Store96(target + 96, four[4], four[5], four[6], four[7]);
        }
        const __m256i alphaMask = _mm256_set1_epi64x(static_cast<long long>(0xFFFF000000000000));
        for (size_t i = 0; i < 8; ++i) {
            uint8_t* place = target + i * 32;
            Store(place,
                  alpha == Alpha::Ignored ? _mm256_blendv_epi8(four[i], Load(place), alphaMask) : four[i]);
        }
    }
    // Vectors of eight narrow pixels, each spread over two of four by a shuffle that takes the low half of
    // the bytes of its half.
    void PutSpread(uint8_t* target, const __m256i (&eight)[4], __m256i shuffle) const {
        __m256i four[8];
        for (size_t i = 0; i < 4; ++i) {
            const __m256i low = _mm256_permute4x64_epi64(eight[i], 0x50);
            const __m256i high = _mm256_permute4x64_epi64(eight[i], 0xFA);
            four[i * 2] = _mm256_shuffle_epi8(low, shuffle);
            four[i * 2 + 1] = _mm256_shuffle_epi8(high, shuffle);
        }
        Put(target, four);
    }
    void operator()(uint8_t* target, const DeepColours& colours) const {
        __m256i four[8];
        for (size_t i = 0; i < 8; ++i)
            four[i] = _mm256_shuffle_epi8(colours.Four[i], order);
        Put(target, four);
    }
    void operator()(uint8_t* target, const Colours& colours) const {
        PutSpread(target, colours.Eight, spread);
    }
    void operator()(uint8_t* target, const GrayLevels& levels) const {
        PutSpread(target, scale(levels).Eight, replicate);
    }
};

template <class Reader, class Writer> struct ConvertStep {
    static constexpr size_t sourceBits = Reader::bits;
    static constexpr size_t targetBits = Writer::bits;
    static constexpr size_t reach = unitPixels;

    Reader read;
    Writer write;

    explicit ConvertStep(const RowParameters& p) : read(p), write(p) {}
    void operator()(uint8_t* target, const uint8_t* source) const { write(target, read(source)); }
};

template <class Reader, class Writer> constexpr RowKernel ConvertRow = RunStep<ConvertStep<Reader, Writer>>;

} // namespace
} // namespace zkr::rows
