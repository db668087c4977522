// Set operations on the runs of two regions.
#pragma once

#include "regions/run_store.h"

namespace zkr {

[[nodiscard]] ReturnCode IntersectRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b);
[[nodiscard]] ReturnCode UniteRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b);
[[nodiscard]] ReturnCode SubtractRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b);
[[nodiscard]] ReturnCode XorRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b);

} // namespace zkr
