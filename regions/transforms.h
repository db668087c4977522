// Transforms between a bitmap's coordinates and those of a caller, whose picture may be seen in another view, scaled
// and moved. The way in and the way out are no inverses of each other: each takes its steps in its own order.
#pragma once

#include "regions/run_store.h"

namespace zkr {

// A view, and fractions without a zero below them.
bool IsValidXform(const RegionXform& xform);

// The transform that stands for none: the bitmap's own view, unscaled, unmoved.
RegionXform NeutralXform(const BitmapHandle& bitmap);

// From the caller's coordinates to the bitmap's: offset, scale, view. On failure the region may have been moved.
[[nodiscard]] ReturnCode TransformRegionIn(const BitmapHandle* bitmap, const RegionXform* xform,
                                           RegionHandle* region);

// From the bitmap's coordinates to the caller's: view, scale, offset.
[[nodiscard]] ReturnCode TransformRegionOut(const BitmapHandle* bitmap, const RegionXform* xform,
                                            RegionHandle* region);

// As TransformRegionOut for one rectangle; what leaves 32 bits stands at their end.
[[nodiscard]] ReturnCode TransformRect(const BitmapHandle* bitmap, const RegionXform* xform, RECT* rectangle);

} // namespace zkr
