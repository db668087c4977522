// Writing of bitmaps as BMP pictures: what the library makes of them as device-independent bitmaps, in a file.
#pragma once

#include "bitmap.h"

#include <string>

namespace zkr::app {

// dibType is the kind of header, Z_DIB_.... Depths that such files lack become what Z_ConvertToDIB tells.
void WriteBmp(Bitmap& bitmap, const std::string& path, int32_t dibType);

} // namespace zkr::app
