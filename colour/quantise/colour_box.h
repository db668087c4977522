// A part of a histogram's colours, and what is known of it. It lies in one piece in the histogram's list.
//
// A population is at most 32768, so that the pixels of a box are at most 2^30 and fit 32 bits; sums of
// channels (up to 31) and of their squares reach 2^35 and 2^40 and are kept in 64 bits, where none of them
// can wrap whatever the size of the picture.
#pragma once

#include "colour/quantise/histogram.h"

namespace zkr {

// Sums over colours, each as often as it occurs.
struct ColourSums {
    uint32_t Weight; // pixels; colours that are listed have at least one
    uint64_t Sum[ChannelCount];
    uint64_t Squares[ChannelCount];

    void Add(uint32_t key, uint32_t population);
    ColourSums Without(const ColourSums& part) const;
};

struct ColourBox {
    uint32_t First; // place in the list
    uint32_t Count; // distinct colours
    uint32_t Mean[ChannelCount];
    uint32_t ChannelVariance[ChannelCount];
    uint32_t Variance; // of all channels
    ColourSums Sums;

    // Takes sums over, and what follows from them: means and variances, cut to whole numbers. A box without
    // pixels has none of either.
    void SetSums(const ColourSums& sums);

    // The channel of the largest variance.
    int32_t WidestChannel() const;
};

} // namespace zkr
