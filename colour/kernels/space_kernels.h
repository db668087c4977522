// The kernels that take rows of one colour space to another, each to or from RGB.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

enum class Space : uint8_t { LumaDifferences, Cmyk, Hsv, Hls, Yiq, Cmy, Count };

inline constexpr size_t SpaceCount = static_cast<size_t>(Space::Count);

// The spans do not overlap, or begin at the same place where the target's pixels are no wider.
using SpaceKernel = void (*)(const uint8_t* source, uint8_t* target, size_t pixels);

struct SpaceKernels {
    SpaceKernel FromRgb[2][SpaceCount]; // first those of the 8-bit class
    SpaceKernel ToRgb[2][SpaceCount];
};

} // namespace zkr::kernels
