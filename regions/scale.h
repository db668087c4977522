// Regions scaled by a fraction on each axis, in place.
#pragma once

#include "regions/run_store.h"

namespace zkr {

struct RegionScale {
    int32_t XNumerator, XDenominator, YNumerator, YDenominator;
};

// Rounds coordinates up. Numerators and denominators lose low bits where products would not fit 32 bits.
[[nodiscard]] ReturnCode ScaleRegion(RegionHandle* region, const RegionScale& scale);

// For drawing: rows are rounded up or down, and the fractions stay whole.
[[nodiscard]] ReturnCode ScaleRegionForDisplay(RegionHandle* region, const RegionScale& scale,
                                               bool roundsUpY);

} // namespace zkr
