// Both go through the library's own operations; a filled rectangle is one row of the colour, put into each
// of its rows as a segment.
#include "edit.h"

#include "failure.h"
#include "progress.h"

#include "zkr13n/copy.h"
#include "zkr13n/fill.h"
#include "zkr13n/rows.h"

#include <algorithm>
#include <vector>

namespace zkr::app {

namespace {

Rectangle Inside(const Bitmap& bitmap, const Rectangle& area) {
    const int64_t right = std::min<int64_t>(int64_t{area.left} + area.width, bitmap.Width());
    const int64_t bottom = std::min<int64_t>(int64_t{area.top} + area.height, bitmap.Height());
    const int left = std::max(area.left, 0), top = std::max(area.top, 0);
    if (right <= left || bottom <= top)
        throw Failure(bitmap.Name(), "the rectangle holds no pixel of the picture");
    return {left, top, static_cast<int>(right - left), static_cast<int>(bottom - top)};
}

} // namespace

void Crop(Bitmap& bitmap, const Rectangle& area) {
    const Rectangle part = Inside(bitmap, area);
    Check(Z_TrimBitmap(bitmap.Handle(), part.left, part.top, part.width, part.height), bitmap.Name());
}

void Fill(Bitmap& bitmap, uint32_t colour) {
    if (bitmap.Format().alpha) return Fill(bitmap, colour, {0, 0, bitmap.Width(), bitmap.Height()});
    Check(Z_FillBitmap(bitmap.Handle(), colour), bitmap.Name());
}

void Fill(Bitmap& bitmap, uint32_t colour, const Rectangle& area) {
    const Rectangle part = Inside(bitmap, area);
    Bitmap row(bitmap.Name(), bitmap.Format(), bitmap.Width(), 1, Storage{});
    Check(Z_FillBitmap(row.Handle(), colour), bitmap.Name());
    std::vector<uint8_t> pixels(row.RowBytes());
    row.GetRow(0, pixels.data());

    constexpr int32_t keepAlpha = 1;
    const uint32_t segment[] = {static_cast<uint32_t>(part.left),
                                static_cast<uint32_t>(part.left + part.width)};
    RowProgress progress(bitmap.Name(), part.height);
    for (int y = part.top; y < part.top + part.height; ++y) {
        Check(Z_PutBitmapRowSegments(bitmap.Handle(), pixels.data(), y, 0, segment, 2, keepAlpha),
              bitmap.Name());
        progress.RowDone();
    }
}

} // namespace zkr::app
