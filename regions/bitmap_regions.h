// Moves of the region that a bitmap has, for bitmaps that are mirrored or change their size.
#pragma once

#include "regions/run_store.h"

namespace zkr {

// Mirrors a bitmap's region top to bottom.
[[nodiscard]] ReturnCode FlipBitmapRegion(BitmapHandle* bitmap);

// For a bitmap that is to become as large as the numerators, and still has its old size.
[[nodiscard]] ReturnCode ScaleBitmapRegion(BitmapHandle* bitmap, int32_t xNumerator, int32_t yNumerator);

} // namespace zkr
