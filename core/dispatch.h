// The process-wide table through which core and geometry reach the region operations without knowing their
// code. A slot may be empty: no region is then assumed.
#pragma once

#include "zkr13n/bitmap.h"

namespace zkr {

struct DispatchTable {
    // Puts a copy of source's region, moved by (dx, dy), into destination, whose Region field is overwritten
    // and not freed.
    ReturnCode (*CopyBitmapRegion)(BitmapHandle* destination, BitmapHandle* source, int32_t dx, int32_t dy);
    // Releases a bitmap's region and clears its field.
    ReturnCode (*FreeBitmapRegion)(BitmapHandle* bitmap);
};

extern DispatchTable dispatch;

void ClearDispatch();

} // namespace zkr
