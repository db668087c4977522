// What other graphics calls ask of palettes.
#pragma once

#include "platform/portable/pixel_rows.h"

namespace zkr::platform {

// An entry of a palette, or of the default one where the handle is no live palette; indices wrap.
ColourWord LogicalColour(HPALETTE palette, UINT index);
int DescribePalette(HPALETTE palette, int size, void* out); // what GetObjectA gives
// What pixels of 1, 4 and 8 bits stand for where nothing else is known.
void DefaultColours(int bitsPerPixel, PALETTEENTRY* out);

} // namespace zkr::platform
