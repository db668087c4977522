// Pieces of rows, written many rows at a time.
#pragma once

#include "zkr13n/bitmap.h"

#include <cstdint>
#include <span>

namespace zkr {

// As Z_PutBitmapRowSegments without an offset, all bits being written. Long pieces of a large bitmap go to
// memory past the cache: other threads see them once EndStream (core/row_copy.h) has been called.
[[nodiscard]] ReturnCode StreamSegments(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row,
                                        std::span<const uint32_t> segments);

} // namespace zkr
