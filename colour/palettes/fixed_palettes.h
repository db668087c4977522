// The constant colour tables: the fixed palettes of 1 to 8 bits per pixel, the default targets of the
// library, and the cube of 216 colours. The layout of their indices is relied on by code that cuts an index
// out of the bits of a colour.
#pragma once

#include "zkr13n/platform_types.h"

#include <array>
#include <cstdint>
#include <span>

namespace zkr {

namespace fixed_palettes {

// The value of level i of n, evenly spread from 0 to 255 and rounded.
constexpr uint8_t Level(uint32_t i, uint32_t n) {
    return static_cast<uint8_t>((2 * 255 * i + (n - 1)) / (2 * (n - 1)));
}

constexpr RGBQUAD Gray(uint8_t level) {
    return {level, level, level, 0};
}

// The classic sixteen: the eight dark colours with bit 0 red, bit 1 green, bit 2 blue; the bright ones after
// them, where a light gray takes the place of black.
constexpr RGBQUAD Sixteen(uint32_t index) {
    if (index == 8) return Gray(0xC0);
    const uint8_t full = index < 8 ? 0x80 : 0xFF;
    const auto channel = [&](uint32_t bit) { return (index >> bit & 1) != 0 ? full : uint8_t{0}; };
    return {channel(2), channel(1), channel(0), 0};
}

// An index whose lowest bits are the level of blue, the next of green, the highest of red.
constexpr RGBQUAD Sliced(uint32_t index, uint32_t blueBits, uint32_t greenBits, uint32_t redBits) {
    const auto level = [](uint32_t field, uint32_t bits) {
        return Level(field & ((1u << bits) - 1), 1u << bits);
    };
    return {level(index, blueBits), level(index >> blueBits, greenBits),
            level(index >> (blueBits + greenBits), redBits), 0};
}

constexpr RGBQUAD Entry(uint32_t bits, uint32_t index) {
    switch (bits) {
    case 1: return Gray(Level(index, 2));
    case 2: return Gray(Level(index, 4));
    case 3: return Sliced(index, 1, 1, 1);
    case 4: return Sixteen(index);
    case 5: return Sliced(index, 1, 2, 2);
    case 6: return Sliced(index, 2, 2, 2);
    case 7: return Sliced(index, 2, 3, 2);
    default: return Sliced(index, 2, 3, 3);
    }
}

// All eight, one after the other: that of n bits begins at 2^n - 2.
inline constexpr auto All = [] {
    std::array<RGBQUAD, 510> table{};
    for (uint32_t bits = 1; bits <= 8; ++bits) {
        for (uint32_t i = 0; i < 1u << bits; ++i)
            table[(1u << bits) - 2 + i] = Entry(bits, i);
    }
    return table;
}();

} // namespace fixed_palettes

// The 2^bits entries of the palette of 1 to 8 bits.
constexpr std::span<const RGBQUAD> FixedPalette(int32_t bits) {
    const size_t entries = size_t{1} << bits;
    return {fixed_palettes::All.data() + entries - 2, entries};
}

// Entry 36 r + 6 g + b for levels of 0 to 5 of 51 each; the entries from 216 on are black.
inline constexpr auto CubePalette216 = [] {
    std::array<RGBQUAD, 256> table{};
    for (uint32_t i = 0; i < 216; ++i) {
        table[i] = {static_cast<uint8_t>(i % 6 * 51), static_cast<uint8_t>(i / 6 % 6 * 51),
                    static_cast<uint8_t>(i / 36 * 51), 0};
    }
    return table;
}();

} // namespace zkr
