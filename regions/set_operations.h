// Set operations on the runs of two regions.
#pragma once

#include "regions/run_store.h"

namespace zkr {

ReturnCode IntersectRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b);
ReturnCode UniteRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b);
ReturnCode SubtractRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b);
ReturnCode XorRegions(OwnedRegion& result, const RegionHandle& a, const RegionHandle& b);

} // namespace zkr
