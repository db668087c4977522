// Combinations told pixel by pixel, in whole numbers: what flags mean, what a pixel becomes, and which pixels of a
// rectangle are written in which order of rows.
#pragma once

#include "geometry/picture.h"
#include "zkr13n/combine.h"
#include "zkr13n/flip.h"
#include "zkr13n/gray.h"
#include "zkr13n/region.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/views.h"

#include <algorithm>
#include <optional>

namespace zkr::test {

struct Meaning {
    unsigned Table = 0;          // bit 2 s + d is the result
    std::optional<int> Operator; // from 0 for ADD on, where samples are worked on
    bool NotSource = false, NotTarget = false, NotResult = false;
    bool ReadsSource = false, ReadsTarget = false;
};

inline unsigned OfField(unsigned field, unsigned bit) {
    return field == 0 ? bit : field == 1 ? 1 - bit : field - 2;
}

inline unsigned OfBits(unsigned op, unsigned s, unsigned d) {
    switch (op) {
    case 0:
    case 6:
    case 10: return s & d;
    case 2: return s ^ d;
    case 4: return d > s;
    case 5: return s > d;
    case 7: return d;
    case 8: return s;
    default: return s | d;
    }
}

// Nothing for words that are no flags.
inline std::optional<Meaning> MeaningOf(uint32_t flags, bool bitonal) {
    const unsigned source = flags & 15, target = flags >> 4 & 15, op = flags >> 8 & 15, result = flags >> 12;
    if (source > 3 || target > 3 || op > 11 || result > 3) return {};
    Meaning meaning;
    for (unsigned s : {0u, 1u})
        for (unsigned d : {0u, 1u})
            meaning.Table |= OfField(result, OfBits(op, OfField(source, s), OfField(target, d)))
                             << (2 * s + d);
    const auto bit = [&](unsigned s, unsigned d) { return meaning.Table >> (2 * s + d) & 1; };
    const bool onSource = bit(0, 0) != bit(1, 0) || bit(0, 1) != bit(1, 1);
    const bool onTarget = bit(0, 0) != bit(0, 1) || bit(1, 0) != bit(1, 1);
    meaning.ReadsSource = onSource, meaning.ReadsTarget = onTarget;
    const bool divides = op == 7 || op == 8;
    if (bitonal || op < 3 || (!onSource && !onTarget) || ((!onSource || !onTarget) && !divides))
        return meaning;
    meaning.ReadsSource = meaning.ReadsTarget = true;
    meaning.Operator = static_cast<int>(op) - 3;
    meaning.NotSource = source == 1, meaning.NotTarget = target == 1, meaning.NotResult = result == 1;
    return meaning;
}

inline uint64_t Operated(int op, uint64_t s, uint64_t d, uint64_t m) {
    switch (op) {
    case 0: return std::min(s + d, m);
    case 1: return d > s ? d - s : 0;
    case 2: return s > d ? s - d : 0;
    case 3: return m == 0 ? 0 : s * d / m;
    case 4: return s == 0 ? m : std::min(d * m / s, m);
    case 5: return d == 0 ? m : std::min(s * m / d, m);
    case 6: return (s + d) >> 1;
    case 7: return std::min(s, d);
    default: return std::max(s, d);
    }
}

// A sample whose words, while it is inverted, have so many bits.
inline uint64_t Sample(const Meaning& meaning, uint64_t s, uint64_t d, uint64_t maximum, int wordBits) {
    const uint64_t all = (uint64_t{1} << wordBits) - 1;
    if (!meaning.Operator) {
        uint64_t result = 0;
        for (int bit = 0; bit < wordBits; ++bit)
            result |= uint64_t{meaning.Table >> ((s >> bit & 1) * 2 + (d >> bit & 1)) & 1} << bit;
        return result;
    }
    if (meaning.NotSource) s ^= all;
    if (meaning.NotTarget) d ^= all;
    const uint64_t result = Operated(*meaning.Operator, s, d, maximum) & all;
    return meaning.NotResult ? result ^ all : result;
}

struct GrayBits {
    uint32_t Mask = 0;
    int32_t Shift = 0;

    explicit GrayBits(const BitmapHandle& bitmap) {
        Z_GetGrayParams(bitmap.BitsPerPixel, bitmap.BitsPerPixel, bitmap.LowBit, bitmap.HighBit, nullptr,
                        &Mask, &Shift);
    }
    uint64_t Read(uint64_t pixel) const { return pixel >> Shift & Mask; }
};

// What a pixel becomes, as it is written.
inline uint64_t Pixel(const Meaning& meaning, const BitmapHandle& target, uint64_t d,
                      const BitmapHandle* source, uint64_t s) {
    const int bits = target.BitsPerPixel;
    if (bits == 12 || (bits == 16 && target.Order == 2)) {
        const GrayBits to(target);
        if (source != nullptr) s = GrayBits(*source).Read(s);
        return (Sample(meaning, s, to.Read(d), to.Mask, 16) & to.Mask) << to.Shift;
    }
    const int sample = bits < 8 ? bits : bits == 16 ? 5 : bits > 32 ? 16 : 8;
    const int colours = bits == 16 ? 15 : bits == 32 ? 24 : bits == 64 ? 48 : bits; // alpha stays
    const uint64_t maximum = (uint64_t{1} << sample) - 1;
    uint64_t result = d >> (colours - 1) >> 1 << (colours - 1) << 1;
    for (int at = 0; at < colours; at += sample)
        result |= Sample(meaning, s >> at & maximum, d >> at & maximum, maximum, sample) << at;
    return result;
}

// Of storage pixels: those that a bitmap's region, or its rectangle, holds.
inline bool Holds(BitmapHandle& bitmap, int64_t x, int64_t y) {
    return x >= 0 && y >= 0 && x < bitmap.Width && y < bitmap.Height &&
           Z_IsPtInBitmapRgn(&bitmap, static_cast<int32_t>(y), static_cast<int32_t>(x)) != 0;
}

struct Places {
    RECT Target, Source; // in view 0, of the same size
};

// The target after the call. The two may be one bitmap.
inline Picture Combined(BitmapHandle& target, BitmapHandle* source, const Places& places, uint32_t flags) {
    const Meaning meaning = *MeaningOf(flags, target.BitsPerPixel == 1);
    RECT to = places.Target, from = places.Source;
    Z_RectToBitmap(&target, 0, &to);
    Picture result = Picture::Of(target);
    const bool keeps = !meaning.Operator && meaning.Table == 10;
    if (keeps || to.left >= to.right || to.top >= to.bottom) return result;

    Bitmap turned;
    BitmapHandle* given = source;
    bool mirrors = false;
    Picture sources;
    if (meaning.ReadsSource) {
        const int32_t view = target.ViewPerspective, other = source->ViewPerspective;
        Z_RectToBitmap(source, 0, &from);
        mirrors = view != other && (view == 0 || view == 2) && (other == 0 || other == 2);
        if (view != other && !mirrors) {
            Z_RectFromBitmap(source, static_cast<uint32_t>(view), &from);
            EXPECT_EQ(Z_IntChangeBitmapViewPerspective(&turned, source, view, 7), 1);
            given = &turned;
        }
        sources = Picture::Of(*given);
    }
    const int64_t dx = from.left - to.left,
                  dy = (mirrors ? given->Height - int64_t{from.bottom} : from.top) - to.top;
    const auto sourceRow = [&](int64_t y) { return mirrors ? given->Height - 1 - (y + dy) : y + dy; };
    const auto written = [&](int64_t x, int64_t y) {
        return Holds(target, x, y) && (!meaning.ReadsSource || Holds(*given, x + dx, sourceRow(y)));
    };
    // The first column that is written goes by the bounds of all that both regions let through.
    int32_t left = std::max<int32_t>(to.left, 0), regionLeft = target.Width;
    for (int32_t y = 0; y < target.Height; ++y)
        for (int32_t x = 0; x < regionLeft; ++x)
            if (Holds(target, x, y) &&
                (!meaning.ReadsSource || given->Region == nullptr || Holds(*given, x + dx, sourceRow(y))))
                regionLeft = x;
    left = std::max(left, regionLeft);
    if (meaning.ReadsSource) left = static_cast<int32_t>(std::max<int64_t>(left, -dx));

    const int32_t top = std::max<int32_t>(to.top, 0), bottom = std::min<int32_t>(to.bottom, target.Height);
    const bool upwards = meaning.ReadsSource && dy < 0;
    for (int32_t i = top; i < bottom; ++i) {
        const int32_t y = upwards ? bottom - 1 - (i - top) : i;
        if (&target == given) sources = result;
        for (int32_t x = std::max<int32_t>(to.left, 0); x < std::min<int32_t>(to.right, target.Width); ++x) {
            if (!written(x, y) || (target.BitsPerPixel == 2 && left % 4 == 2 && x == left + 1)) continue;
            const uint64_t s = meaning.ReadsSource
                                   ? sources.At(static_cast<int>(x + dx), static_cast<int>(sourceRow(y)))
                                   : 0;
            uint64_t& d = result.Pixels[static_cast<size_t>(y * result.Width + x)];
            d = Pixel(meaning, target, d, meaning.ReadsSource ? given : nullptr, s);
        }
    }
    return result;
}

} // namespace zkr::test
