// The works of resizing, and their sizes.
#pragma once

#include "pictures.h"

#include <cstdint>

namespace bench {

enum ResizeWork {
    NearestReduced = 2800, // numbers below 3000 are those of the works
    NearestDoubled,
    AreaReduced24,
    AreaReduced48,
    AreaReducedGray,
    AreaEighth24,
    LinearDoubled24,
    LinearDoubled32,
    LinearDoubled48,
    SplineDoubled24,
    SplineDoubled48,
    StrokesQuarter,
    StrokesReduced,
    StrokesDoubled,
    StreamNearest,
    StreamArea,
    StreamLinear,
    StreamSpline
};

inline constexpr int32_t ReducedWidth = 1516, ReducedHeight = 1137;         // 0.37 of the photograph
inline constexpr int32_t ReducedPageWidth = 2976, ReducedPageHeight = 4210; // 0.3 of the page

} // namespace bench
