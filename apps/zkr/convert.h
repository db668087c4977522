// Conversion of bitmaps from one pixel format to another, row by row through the library.
#pragma once

#include "bitmap.h"

#include <vector>

namespace zkr::app {

// Converts rows in place. The buffer of RowBuffer() has room for a row of either format.
class RowConverter {
  public:
    RowConverter(const std::string& name, const PixelFormat& from, const PixelFormat& to, int width);

    uint8_t* RowBuffer() { return row_.data(); }
    void Convert();

  private:
    const std::string& name_;
    const PixelFormat& from_;
    const PixelFormat& to_;
    int width_;
    std::vector<uint8_t> row_;
};

// A copy of `source` in another format and storage class.
Bitmap Converted(Bitmap& source, const PixelFormat& format, const Storage& storage);

} // namespace zkr::app
