// What a depth is, told once: what its pixels mean and how they lie in a row. Kernel files enter this header, so that
// its functions have internal linkage.
#pragma once

#include "zkr13n/bitmap.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zkr {

enum class PixelKind : uint8_t {
    None,   // no depth
    Index,  // into a palette
    Gray,   // a gray value
    Colour, // three channels of up to 8 bits; 16 bits are gray where the order says so
    Deep    // three channels of 16 bits
};

enum class Packing : uint8_t {
    Bytes,    // whole bytes, the lowest first
    TopFirst, // from the top bit of each byte on; pixels can cross the borders of bytes
    Pairs     // two pixels in three bytes, from the lowest bit on
};

struct Depth {
    int32_t Bits;
    PixelKind Kind;
    Packing Packed;
    int32_t NaturalOrder; // of a new bitmap
    int32_t AlphaBits;    // the uppermost of a pixel, in the orders of colour
};

inline constexpr Depth Depths[] = {
    {1, PixelKind::Index, Packing::TopFirst, Z_ORDER_RGB, 0},
    {2, PixelKind::Index, Packing::TopFirst, Z_ORDER_RGB, 0},
    {3, PixelKind::Index, Packing::TopFirst, Z_ORDER_RGB, 0},
    {4, PixelKind::Index, Packing::TopFirst, Z_ORDER_RGB, 0},
    {5, PixelKind::Index, Packing::TopFirst, Z_ORDER_RGB, 0},
    {6, PixelKind::Index, Packing::TopFirst, Z_ORDER_RGB, 0},
    {7, PixelKind::Index, Packing::TopFirst, Z_ORDER_RGB, 0},
    {8, PixelKind::Index, Packing::Bytes, Z_ORDER_RGB, 0},
    {12, PixelKind::Gray, Packing::Pairs, Z_ORDER_GRAY, 0},
    {16, PixelKind::Colour, Packing::Bytes, Z_ORDER_BGR, 1},
    {24, PixelKind::Colour, Packing::Bytes, Z_ORDER_BGR, 0},
    {32, PixelKind::Colour, Packing::Bytes, Z_ORDER_BGR, 8},
    {48, PixelKind::Deep, Packing::Bytes, Z_ORDER_BGR, 0},
    {64, PixelKind::Deep, Packing::Bytes, Z_ORDER_BGR, 16},
};

inline constexpr int32_t MostBits = 64;

// By bits; those that no bitmap has are of no kind.
inline constexpr std::array<Depth, MostBits + 1> DepthsByBits = [] {
    std::array<Depth, MostBits + 1> depths{};
    for (const Depth& depth : Depths)
        depths[static_cast<size_t>(depth.Bits)] = depth;
    return depths;
}();

static constexpr const Depth& DepthOf(int32_t bits) {
    return DepthsByBits[bits >= 0 && bits <= MostBits ? static_cast<size_t>(bits) : 0];
}

static constexpr bool IsSupportedDepth(int32_t bits) {
    return DepthOf(bits).Kind != PixelKind::None;
}

static constexpr bool IsDeep(int32_t bits) {
    return DepthOf(bits).Kind == PixelKind::Deep;
}

// Pixels of up to so many bits are indices into a palette, which has at most so many entries.
inline constexpr int32_t MostIndexedBits = 8;
inline constexpr uint32_t MostEntries = 1u << MostIndexedBits;

// The bits of a row's last byte that hold no pixel.
static constexpr uint8_t UnusedInLastByte(int32_t bits, size_t pixels) {
    const auto used = static_cast<uint32_t>(pixels % 8 * static_cast<size_t>(bits) % 8);
    if (used == 0) return 0;
    return static_cast<uint8_t>(DepthOf(bits).Packed == Packing::Pairs ? 0xFF << used : 0xFF >> used);
}

} // namespace zkr
