// Rows of a bitmap as they would lie in storage of another view perspective, without moving a pixel.
#pragma once

#include "core/exact_rows.h"
#include "core/return_codes.h"
#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>

namespace zkr {

class ViewedRows {
  public:
    // A bitmap whose pixels are whole bytes, and the view wanted. Equal values need not be views.
    ViewedRows(BitmapHandle& bitmap, int32_t viewPerspective);

    bool IsValid() const { return isValid_; }
    int32_t Width() const { return isTurned_ ? bitmap_.Height : bitmap_.Width; }
    int32_t Height() const { return isTurned_ ? bitmap_.Width : bitmap_.Height; }

    // The first bytes of a row of the wanted view; the buffer holds a whole row of either view.
    [[nodiscard]] ReturnCode Read(uint8_t* buffer, int32_t row, uint32_t bytes);

  private:
    [[nodiscard]] ReturnCode ReadColumn(uint8_t* buffer, int32_t column, uint32_t bytes);

    BitmapHandle& bitmap_;
    bool isValid_ = true;
    bool isTurned_ = false;     // rows of the one are columns of the other
    bool reversesRows_ = false; // of the bitmap, against the axis of the wanted view that they become
    bool reversesColumns_ = false;
};

} // namespace zkr
