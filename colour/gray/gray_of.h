// The one gray of a colour, and the ramp of grays.
#pragma once

#include "zkr13n/platform_types.h"

namespace zkr {

constexpr uint8_t GrayOf(uint32_t red, uint32_t green, uint32_t blue) {
    return static_cast<uint8_t>((2 * red + 5 * green + blue + 4) >> 3);
}
constexpr uint8_t GrayOf(const RGBQUAD& entry) {
    return GrayOf(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
}

// Entry i of a gray ramp of n entries, n at least 2.
constexpr RGBQUAD GrayRampEntry(uint32_t i, uint32_t n) {
    const uint8_t level = static_cast<uint8_t>(i * 255 / (n - 1));
    return {level, level, level, 0};
}

inline void WriteGrayRamp(RGBQUAD* destination, uint32_t entries) {
    for (uint32_t i = 0; i < entries; ++i)
        destination[i] = GrayRampEntry(i, entries);
}

} // namespace zkr
