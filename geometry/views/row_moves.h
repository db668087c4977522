// Flip, reverse and half turn of a bitmap's stored rows, in place, in every storage class.
#pragma once

#include "core/return_codes.h"
#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr::geometry {

enum class RowMove {
    Flip,    // rows change places
    Reverse, // each row is mirrored
    HalfTurn // both
};

// Of an allocated bitmap, with reports from start to end to the thread's status callback. A failure of memory or
// storage undoes what was done; what a callback stops stays done as far as it went. The region is not touched.
[[nodiscard]] ReturnCode MoveRows(BitmapHandle& bitmap, RowMove move, uint32_t start, uint32_t end);

} // namespace zkr::geometry
