// Row transfer for those who must not lose a byte: as Z_GetBitmapRowCol and Z_PutBitmapRowCol, but the result
// is code::Success when all bytes have moved and a code otherwise, in tiles too. A transfer that comes back
// short without a code is told as `shortfall`.
#pragma once

#include "core/return_codes.h"
#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr {

[[nodiscard]] ReturnCode ReadExactly(BitmapHandle& bitmap, uint8_t* buffer, int32_t row, int32_t column,
                                     uint32_t bytes, ReturnCode shortfall = code::ReadFailed);
[[nodiscard]] ReturnCode WriteExactly(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row,
                                      int32_t column, uint32_t bytes);

} // namespace zkr
