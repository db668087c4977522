// A quarter turn into a new bitmap, for those who go on from there.
#pragma once

#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr::geometry {

// Makes result of source, turned: as Z_DupBitmapNewDim leaves it with the flags `owned`, its pixels apart. The region
// is not turned. On failure the result is the caller's to free.
[[nodiscard]] ReturnCode MakeQuarterTurn(BitmapHandle& result, BitmapHandle& source, int32_t direction,
                                         uint32_t owned, uint32_t start, uint32_t end);

} // namespace zkr::geometry
