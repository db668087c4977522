// The copy that a bitmap is rebuilt by.
#pragma once

#include "zkr13n/bitmap.h"

namespace zkr {

// As Z_CopyBitmapData, but a row that cannot be read or written ends the copy, and its code is the result.
ReturnCode CopyBitmapDataExactly(BitmapHandle* destination, BitmapHandle* source);

} // namespace zkr
