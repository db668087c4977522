// What the ordered methods compare colours with, and how far thresholds move a colour before it is matched.
#pragma once

#include <cstdint>

namespace zkr::kernels {

inline constexpr int32_t ThresholdSide = 8;

struct ThresholdMatrix {
    uint8_t Rows[ThresholdSide][ThresholdSide];
};

// Dispersed dots. The sixth value of the second row and the largest value are as they are on purpose: this is
// not quite a permutation of the multiples of four.
inline constexpr ThresholdMatrix DispersedDots = {{
    {0, 128, 32, 160, 8, 136, 40, 168},
    {192, 64, 224, 96, 200, 72, 232, 104},
    {48, 176, 16, 144, 56, 184, 24, 152},
    {236, 112, 208, 80, 244, 120, 216, 88},
    {12, 140, 44, 172, 4, 132, 36, 164},
    {204, 76, 232, 108, 196, 68, 228, 100},
    {60, 188, 28, 156, 52, 180, 20, 148},
    {248, 124, 220, 92, 240, 116, 212, 84},
}};

// Dots that grow from clusters.
inline constexpr ThresholdMatrix ClusteredDots = {{
    {112, 40, 72, 104, 144, 176, 208, 136},
    {88, 8, 16, 48, 192, 232, 240, 168},
    {56, 24, 0, 80, 160, 224, 248, 200},
    {96, 64, 32, 120, 128, 216, 184, 152},
    {148, 180, 212, 140, 116, 44, 76, 108},
    {196, 236, 244, 172, 92, 12, 20, 52},
    {164, 228, 252, 204, 60, 28, 4, 84},
    {132, 220, 188, 156, 100, 68, 36, 124},
}};

// The move of a channel that a threshold m gives where the palette is as fine as that of so many bits per
// pixel; none for other numbers of bits.
static constexpr int32_t ThresholdShift(int32_t m, int32_t bits) {
    switch (bits) {
    case 1: return m - 128;
    case 2: return (m >> 1) - 64;
    case 3: return m / 3 - 42;
    case 4: return (m >> 2) - 32;
    case 5: return m / 5 - 25;
    case 6: return m / 6 - 21;
    case 7: return m / 7 - 18;
    case 8: return (m >> 3) - 16;
    default: return 0;
    }
}

} // namespace zkr::kernels
