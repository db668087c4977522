// Both go through the library's own operations; a filled rectangle is one row of the colour, put into each
// of its rows as a segment.
#include "edit.h"

#include "failure.h"
#include "progress.h"

#include "zkr13n/copy.h"
#include "zkr13n/fill.h"
#include "zkr13n/rows.h"

#include <vector>

namespace zkr::app {

namespace {

void CheckInside(const Bitmap& bitmap, const Rectangle& area) {
    const bool inside = area.left >= 0 && area.top >= 0 && area.width > 0 && area.height > 0 &&
                        area.width <= bitmap.Width() - area.left && area.height <= bitmap.Height() - area.top;
    if (!inside) throw Failure(bitmap.Name(), "the rectangle leaves the picture of " + SizeOf(bitmap));
}

} // namespace

void Crop(Bitmap& bitmap, const Rectangle& part) {
    CheckInside(bitmap, part);
    Check(Z_TrimBitmap(bitmap.Handle(), part.left, part.top, part.width, part.height), bitmap.Name());
}

void Fill(Bitmap& bitmap, uint32_t colour) {
    if (bitmap.Format().alpha) return Fill(bitmap, colour, {0, 0, bitmap.Width(), bitmap.Height()});
    Check(Z_FillBitmap(bitmap.Handle(), colour), bitmap.Name());
}

void Fill(Bitmap& bitmap, uint32_t colour, const Rectangle& part) {
    CheckInside(bitmap, part);
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
