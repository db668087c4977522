// The rows of a combination: a rectangle of the target and one of the same size of the source, clipped to both bitmaps
// and their regions, and combined row by row.
#pragma once

#include "core/return_codes.h"
#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr::geometry {

// Rectangles in storage coordinates of each, anywhere.
struct CombinedAreas {
    int64_t TargetLeft, TargetTop;
    int64_t Width, Height; // 0 and less are nothing
    int64_t SourceLeft, SourceTop;
};

// The source is that of a code which reads one, of the target's depth and order, and of a view that differs in the
// order of its rows at most; else null.
[[nodiscard]] ReturnCode CombineAreas(BitmapHandle& target, BitmapHandle* source, const CombinedAreas& areas,
                                      uint32_t code);

// The reports of an operation that has nothing to do.
[[nodiscard]] ReturnCode ReportNothingDone();

} // namespace zkr::geometry
