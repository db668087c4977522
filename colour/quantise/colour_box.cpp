// The arithmetic of boxes.
#include "colour/quantise/colour_box.h"

#include <algorithm>

namespace zkr {

void ColourSums::Add(uint32_t key, uint32_t population) {
    Weight += population;
    for (int32_t c = 0; c < ChannelCount; ++c) {
        const uint32_t level = ChannelOf(key, c);
        Sum[c] += level * population;
        Squares[c] += level * level * population;
    }
}

ColourSums ColourSums::Without(const ColourSums& part) const {
    ColourSums rest = *this;
    rest.Weight -= part.Weight;
    for (int32_t c = 0; c < ChannelCount; ++c) {
        rest.Sum[c] -= part.Sum[c];
        rest.Squares[c] -= part.Squares[c];
    }
    return rest;
}

// The squares of the distances from the mean m add up to squares - 2 m sum + m m weight, exactly, since m is
// a whole number: no second pass over the colours is needed.
void ColourBox::SetSums(const ColourSums& sums) {
    Sums = sums;
    Variance = 0;
    if (sums.Weight == 0) return;
    for (int32_t c = 0; c < ChannelCount; ++c) {
        const uint64_t mean = sums.Sum[c] / sums.Weight;
        const uint64_t spread = sums.Squares[c] + mean * mean * sums.Weight - 2 * mean * sums.Sum[c];
        Mean[c] = static_cast<uint32_t>(mean);
        ChannelVariance[c] = static_cast<uint32_t>(spread / sums.Weight);
        Variance += ChannelVariance[c];
    }
}

int32_t ColourBox::WidestChannel() const {
    return static_cast<int32_t>(std::max_element(ChannelVariance, ChannelVariance + ChannelCount) -
                                ChannelVariance);
}

} // namespace zkr
