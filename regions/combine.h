// How a new region comes to a bitmap.
#pragma once

#include "regions/run_store.h"

namespace zkr {

// Merges a region, given in the coordinates of a transform, with a bitmap's present one under a mode Z_RGN_.... It
// takes the record over, whatever the result; a null record removes the present region under any mode. The present
// region stands until all else has gone well.
[[nodiscard]] ReturnCode CombineRegion(BitmapHandle* bitmap, const RegionXform* xform, RegionHandle* record,
                                       uint32_t mode);

// Puts a copy of source's region, moved and cut to destination, into destination, whose Region field is overwritten
// and not freed. Both may be the same record.
[[nodiscard]] ReturnCode CopyBitmapRegion(BitmapHandle* destination, BitmapHandle* source, int32_t dx,
                                          int32_t dy);

} // namespace zkr
