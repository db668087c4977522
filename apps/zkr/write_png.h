// Writing of bitmaps as PNG pictures.
#pragma once

#include "bitmap.h"

#include <string>

namespace zkr::app {

// Depths that PNG lacks take the next one that holds them: 3, 5, 6 and 7 bits become 8-bit palette pictures,
// 12 becomes 16-bit gray that says so, and 16-bit colour becomes 24. A fourth channel that is no alpha is
// written as opaque.
void WritePng(Bitmap& bitmap, const std::string& path);

} // namespace zkr::app
