// What hangs on a bitmap's record besides its data.
#pragma once

#include "zkr13n/bitmap.h"

namespace zkr {

// Releases the palette, in whichever form it is, and clears the field. A record without one is left alone.
void ReleasePalette(BitmapHandle& bitmap);

// Releases the region, where there is one, and clears the field.
void ReleaseRegion(BitmapHandle& bitmap);

// Gives target a copy of source's region, moved by (dx, dy), over whatever its field holds. Nobody may follow what
// a copy that fails leaves there, so that the field is cleared.
[[nodiscard]] ReturnCode CopyRegion(BitmapHandle& target, BitmapHandle& source, int32_t dx, int32_t dy);

} // namespace zkr
