// Bitmaps from device-independent ones.
#pragma once

#include "display/dib/dib_header.h"

namespace zkr::dib {

// The converting road: makes a bitmap with storage of its own. At most so many bytes of bits are read; those of rows
// and planes are there. On failure the record owns nothing.
[[nodiscard]] ReturnCode ConvertPixels(BitmapHandle& bitmap, const uint8_t* data, const Header& header,
                                       const uint8_t* bits, size_t bytes);

// Reads the header of a packed block of so many bytes and makes all tests of it.
[[nodiscard]] ReturnCode ReadPacked(const uint8_t* data, size_t bytes, Header& header);

// The pixels of such a block.
[[nodiscard]] ReturnCode ConvertPacked(BitmapHandle& bitmap, const uint8_t* data, const Header& header,
                                       size_t bytes);

} // namespace zkr::dib
