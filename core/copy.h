// What copies of bitmaps are made of, and the copy that a bitmap is rebuilt by.
#pragma once

#include "zkr13n/bitmap.h"

#include <optional>

namespace zkr {

// As Z_CopyBitmapData, but a row that cannot be read or written ends the copy, and its code is the result.
[[nodiscard]] ReturnCode CopyBitmapDataExactly(BitmapHandle* destination, BitmapHandle* source);

// Makes target, a record that holds nothing, a bitmap like source but of other dimensions and without its
// pixels, with a palette and a region of its own: in the source's storage class, or of a memory type. On
// failure target owns nothing.
[[nodiscard]] ReturnCode MakeEmptyCopy(BitmapHandle& target, BitmapHandle& source, int32_t width,
                                       int32_t height, std::optional<int32_t> memoryType);

} // namespace zkr
