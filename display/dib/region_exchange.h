// The form in which regions are exchanged: a packed device-independent bitmap of 1 bit, white where the region is.
#pragma once

#include "zkr13n/bitmap.h"

namespace zkr::dib {

// A block of global memory of the bitmap's region, of the whole bitmap where it has none. Null where memory is short.
HGLOBAL RegionToBlock(BitmapHandle& bitmap);

// Sets the bitmap's region by the white pixels of such a block, or of one of any other depth. The block is not changed.
// On failure the region is as it was.
[[nodiscard]] ReturnCode RegionFromBlock(BitmapHandle& bitmap, HGLOBAL handle);

} // namespace zkr::dib
