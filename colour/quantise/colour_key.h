// Colours of 15 bits, the upper five of red, green and blue from the highest: the keys of histograms, and
// where a colour's cell stands in a match table.
#pragma once

#include "zkr13n/platform_types.h"

#include <cstdint>

namespace zkr {

inline constexpr uint32_t ColourKeys = 32768;

inline constexpr int32_t ChannelCount = 3; // red, green, blue: ties between them are decided in this order

constexpr uint32_t ChannelOf(uint32_t key, int32_t channel) {
    return key >> (10 - 5 * channel) & 31;
}

constexpr uint8_t WidenChannel(uint32_t fiveBits) {
    return static_cast<uint8_t>(fiveBits << 3 | fiveBits >> 2);
}

} // namespace zkr
