// The quarter turn of a run-compressed bitmap, from lists to lists.
#pragma once

#include "geometry/row_progress.h"
#include "zkr13n/bitmap.h"

namespace zkr::geometry {

// How often TurnRuns visits each row of the source.
inline constexpr int32_t RunPasses = 2;

// Fills target, a blank run-compressed bitmap of the turned dimensions. It holds a few words for each of the
// target's rows beside the lists themselves.
[[nodiscard]] ReturnCode TurnRuns(BitmapHandle& target, BitmapHandle& source, bool clockwise,
                                  RowProgress& progress);

} // namespace zkr::geometry
