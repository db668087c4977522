// Kernels of the nearest-colour search: one colour against a palette, all colours of a small cube against a
// palette, and rows of pixels through such cubes once they are known.
//
// The rule of the search: black and white go to an end of the palette that is exactly so; else the entry at
// the least distance (sum of the squared differences of red, green and blue), the first such entry, which a
// later one of the same distance displaces only when it shares the target's colour class. An exact match ends
// the search.
#pragma once

#include "zkr13n/platform_types.h"

namespace zkr::kernels {

// A cube is 8 x 8 x 8 colours. In its table of winners the colour of steps (r, g, b) from the cube's darkest
// corner stands at r * 64 + g * 8 + b.
inline constexpr int32_t CubeSide = 8;
inline constexpr int32_t CubeColours = 512;

// Cubes of adjacent colours tile the colour space: 32 each way. The cube of a colour is numbered by the upper
// five bits of red, green and blue, red uppermost.
inline constexpr int32_t CubesInSpace = 32768;

// A cube number above this marks a cube that has no table of winners.
inline constexpr uint16_t LastKnownCube = 0x7FFF;

struct CubeCorner {
    int32_t Red;
    int32_t Green;
    int32_t Blue;
    int32_t Step; // between neighbouring colours of the cube
};

struct MatchKernels {
    // The index of the entry nearest to a colour with channels of 0 to 255; -1 when there are no entries.
    int32_t (*Find)(const RGBQUAD* palette, int32_t entries, int32_t red, int32_t green, int32_t blue);

    // The indices of the entries nearest to each colour of a cube; entries are 1 to 256.
    void (*FindForCube)(const RGBQUAD* palette, int32_t entries, const CubeCorner& corner, uint8_t* winners);

    // Turns pixels of four bytes (blue, green, red, ignored) into indices, until a pixel comes whose cube is
    // not known; blocks[n] is the place of cube n in winners, counted in cubes, or above LastKnownCube.
    // Returns the pixels done, which may stop up to 7 short of the first unknown one.
    size_t (*LookUp)(const uint8_t* quads, uint8_t* indices, size_t pixels, const uint16_t* blocks,
                     const uint8_t* winners);
};

} // namespace zkr::kernels
