// Regions moved, mirrored and cut in place. Each keeps the record's address; where a coordinate would leave 32 bits the
// region stays as it is.
#pragma once

#include "regions/run_store.h"

namespace zkr {

// Moves by (dx, dy); a null record is refused.
[[nodiscard]] ReturnCode OffsetRegion(RegionHandle* region, int32_t dx, int32_t dy);

// Mirrors top to bottom within a number of rows.
[[nodiscard]] ReturnCode FlipRegion(RegionHandle* region, int32_t height);

// Mirrors a bitmap's region left to right within the bitmap's width.
[[nodiscard]] ReturnCode ReverseRegion(BitmapHandle* bitmap);

// Takes away what lies outside of a rectangle.
[[nodiscard]] ReturnCode ClipRegion(RegionHandle* region, const PixelRect& rectangle);

// Cuts a bitmap's region to the bitmap, unless its flag says that this is done by those who read it.
[[nodiscard]] ReturnCode ClipToBitmap(const BitmapHandle& bitmap, RegionHandle& region);

} // namespace zkr
