// The process-wide table through which core and geometry reach the region operations without knowing their
// code. A slot may be empty: no region is then assumed.
#pragma once

#include "zkr13n/bitmap.h"

struct RegionXform;

namespace zkr {

struct DispatchTable {
    // Puts a copy of source's region, moved by (dx, dy), into destination, whose Region field is overwritten
    // and not freed.
    ReturnCode (*CopyBitmapRegion)(BitmapHandle* destination, BitmapHandle* source, int32_t dx, int32_t dy);
    // Releases a bitmap's region and clears its field.
    ReturnCode (*FreeBitmapRegion)(BitmapHandle* bitmap);
    // The region's bounds in storage coordinates; without a transform (null) as they stand.
    ReturnCode (*GetBitmapRgnBounds)(BitmapHandle* bitmap, const RegionXform* xform, RECT* bounds);
    // The most entries that GetBitmapClipSegments writes for a row, two for each segment.
    ReturnCode (*GetBitmapClipSegmentsMax)(BitmapHandle* bitmap, uint32_t* entries);
    // The segments of a row, as pairs of columns, the end not included, and how many entries they take.
    ReturnCode (*GetBitmapClipSegments)(BitmapHandle* bitmap, int32_t row, uint32_t* segments,
                                        uint32_t* entries);
    // 1 for a pixel that the region holds, else 0.
    int32_t (*IsPtInBitmapRgn)(BitmapHandle* bitmap, int32_t row, int32_t column);
};

extern DispatchTable dispatch;

void ClearDispatch();

} // namespace zkr
