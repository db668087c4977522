// What all kernels of row conversion share: their signature, their parameters, and the table of kernels that
// each instruction set fills. A kernel takes spans of pixels that both begin on a byte and gives spans of
// pixels; it allocates nothing and cannot fail. The two spans do not overlap, or begin at the same place: a
// kernel whose pixels grow walks from the end. No byte outside the two spans is touched, and bits of the last
// byte behind the last pixel stay as they were.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

// Turns a gray value v into (v * (Whole + Fraction / 2^32)) << Shift. The factor is rounded up, which makes
// the truncated product exact for every value that the kernels meet; see MakeGrayScale.
struct GrayScale {
    uint32_t Whole = 1;
    uint32_t Fraction = 0;
    uint32_t Shift = 0;
};

// The scale v * multiplier / divisor, truncated, for values up to 65535 and below 2^32 / divisor, then
// shifted left.
static constexpr GrayScale MakeGrayScale(uint32_t multiplier, uint32_t divisor, uint32_t shift = 0) {
    const uint64_t factor = ((static_cast<uint64_t>(multiplier) << 32) + divisor - 1) / divisor;
    return {static_cast<uint32_t>(factor >> 32), static_cast<uint32_t>(factor), shift};
}

// Stretches values up to a mask to a limit; values that can go beyond the limit already are left alone.
static constexpr GrayScale StretchGray(uint32_t limit, uint32_t mask) {
    if (mask >= limit) return {};
    return MakeGrayScale(limit, mask == 0 ? 1 : mask);
}

static constexpr uint32_t ApplyGrayScale(const GrayScale& scale, uint32_t value) {
    const auto product = static_cast<uint64_t>(value) * scale.Fraction;
    return (value * scale.Whole + static_cast<uint32_t>(product >> 32)) << scale.Shift;
}

struct RowParameters {
    const void* Table = nullptr; // palette entries (blue, green, red, ignored) or a map of bytes, by kernel
    uint32_t Mask = 0;           // a gray pixel's value is (pixel >> Shift) & Mask
    uint32_t Shift = 0;
    GrayScale Scale = {};
    bool SourceIsRgb = false; // red lies in the low position; else blue
    bool TargetIsRgb = false;
    ptrdiff_t Ahead = 0; // from the source to memory that the cache is asked for meanwhile, as to a next row
};

// The map that leaves indices of up to 7 bits as they are.
static constexpr std::array<uint8_t, 128> IdentityMap = [] {
    std::array<uint8_t, 128> map{};
    for (uint8_t i = 0; i < map.size(); ++i)
        map[i] = i;
    return map;
}();

using RowKernel = void (*)(const uint8_t* source, uint8_t* target, size_t pixels,
                           const RowParameters& parameters);

// Forms of a source span. Where a kernel is given a palette, the reserved bytes of its entries play no part.
enum class Source : uint8_t {
    Bits1,      // one bit a pixel, an index into a palette of two entries
    Index8,     // bytes, indices into a palette of Mask + 1 entries
    Gray8,      // bytes, gray levels
    GrayValue,  // words with a gray value in a window
    GrayLookup, // words with an index into a palette in a window
    Colour16,   // words of three five-bit channels and one bit of alpha
    Colour24,
    Colour32,
    Deep48, // words for each channel
    Deep64,
    Count
};

// Forms of a target span. The forms named Opaque leave the alpha of the target as it was.
enum class Target : uint8_t {
    Gray8,       // bytes; gray values are scaled
    GrayWords,   // words, scaled
    SwappedGray, // as GrayWords with the weights of green and blue exchanged
    Colour16,
    Colour24,
    Colour32,
    Colour32Opaque,
    Deep48, // gray values are scaled
    Deep64,
    Deep64Opaque,
    Count
};

inline constexpr size_t SourceForms = static_cast<size_t>(Source::Count);
inline constexpr size_t TargetForms = static_cast<size_t>(Target::Count);

struct ConvertKernels {
    RowKernel Convert[SourceForms][TargetForms]; // null where a pair is never asked for
    RowKernel Unpack[8];                         // by bits 1 to 7: to bytes, through a map of 2^bits bytes
    RowKernel Pack[8];                           // by bits 1 to 7: from bytes
    RowKernel Unpack12;                          // to words
    RowKernel Pack12;                            // from words, of which the low 12 bits are taken
    RowKernel MapBytes;                          // bytes to bytes, through a map of 256
};

static constexpr RowKernel PairOf(const ConvertKernels& kernels, Source source, Target target) {
    return kernels.Convert[static_cast<size_t>(source)][static_cast<size_t>(target)];
}

// The form of pixels of 16 bits and more in the orders of colour.
static constexpr Source ColourForm(int32_t bits) {
    switch (bits) {
    case 16: return Source::Colour16;
    case 24: return Source::Colour24;
    case 32: return Source::Colour32;
    case 48: return Source::Deep48;
    default: return Source::Deep64;
    }
}

} // namespace zkr::kernels
