#include "colour/pixels/viewed_rows.h"

#include "core/row_access.h"
#include "core/views.h"
#include "zkr13n/convert.h"

#include <algorithm>
#include <cstring>

namespace zkr {

ViewedRows::ViewedRows(BitmapHandle& bitmap, int32_t viewPerspective) : bitmap_(bitmap) {
    if (bitmap.ViewPerspective == viewPerspective) return;
    isValid_ = IsView(bitmap.ViewPerspective) && IsView(viewPerspective);
    if (!isValid_) return;
    const ViewParts own = PartsOf(bitmap.ViewPerspective), wanted = PartsOf(viewPerspective);
    isTurned_ = own.IsTurned != wanted.IsTurned;
    const bool againstX = own.ReversesX != wanted.ReversesX, againstY = own.ReversesY != wanted.ReversesY;
    reversesColumns_ = own.IsTurned ? againstY : againstX;
    reversesRows_ = own.IsTurned ? againstX : againstY;
}

ReturnCode ViewedRows::Read(uint8_t* buffer, int32_t row, uint32_t bytes) {
    if (isTurned_) return ReadColumn(buffer, reversesColumns_ ? bitmap_.Width - 1 - row : row, bytes);
    const int32_t source = reversesRows_ ? bitmap_.Height - 1 - row : row;
    if (!reversesColumns_) return ReadExactly(bitmap_, buffer, source, 0, bytes);
    const ReturnCode result = ReadExactly(bitmap_, buffer, source, 0, bitmap_.BytesPerLine);
    if (result == code::Success) Z_MirrorLine(buffer, bitmap_.Width, bitmap_.BitsPerPixel);
    return result;
}

ReturnCode ViewedRows::ReadColumn(uint8_t* buffer, int32_t column, uint32_t bytes) {
    const auto pixelBytes = static_cast<uint32_t>(bitmap_.BitsPerPixel / 8);
    for (uint32_t done = 0; done < bytes; done += pixelBytes) {
        const auto index = static_cast<int32_t>(done / pixelBytes);
        const int32_t row = reversesRows_ ? bitmap_.Height - 1 - index : index;
        const ReturnCode result =
            ReadExactly(bitmap_, buffer + done, row, column, std::min(pixelBytes, bytes - done));
        if (result != code::Success) return result;
    }
    return code::Success;
}

} // namespace zkr
