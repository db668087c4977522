// The fillings of one bitmap with another at its size. All rows of the target are written, in the order in which the
// source is walked; a result other than code::Success leaves part of it written. Views differ in the order of rows at
// most.
#pragma once

#include "core/exact_rows.h"
#include "core/row_walk.h"
#include "zkr13n/bitmap.h"

namespace zkr {

[[nodiscard]] ReturnCode FillNearest(BitmapHandle& source, BitmapHandle& target);
[[nodiscard]] ReturnCode FillBlended(BitmapHandle& source, BitmapHandle& target, bool isSpline);
// Of two bitmaps of 1 bit.
[[nodiscard]] ReturnCode FillKeepingStrokes(BitmapHandle& source, BitmapHandle& target);

// Calls make(row) for each row of the target, which leaves the row where `bytes` is.
template <typename Make>
[[nodiscard]] ReturnCode FillRows(BitmapHandle& source, BitmapHandle& target, const uint8_t* bytes,
                                  Make make) {
    const bool isMirrored = source.ViewPerspective != target.ViewPerspective;
    const auto visit = [&](int32_t row) {
        const ReturnCode result = make(row);
        if (result != code::Success) return result;
        const int32_t place = isMirrored ? target.Height - 1 - row : row;
        return WriteExactly(target, bytes, place, 0, target.BytesPerLine);
    };
    return RowWalk(target).With(source).Reporting(StatusReceiver::Status()).Run(target.Height, visit);
}

} // namespace zkr
