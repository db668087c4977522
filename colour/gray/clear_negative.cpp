// Removes negative values from a bitmap of signed data: two's complement in the pixel's own width.
#include "colour/pixels/colour_value.h"
#include "core/attachments.h"
#include "core/exact_rows.h"
#include "core/predicates.h"
#include "core/row_walk.h"
#include "core/scratch.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <cstring>
#include <span>

namespace zkr {

namespace {

template <typename Unit> void ClearUnits(std::span<uint8_t> row) {
    constexpr Unit sign = Unit{1} << (sizeof(Unit) * 8 - 1);
    for (size_t i = 0; i + sizeof(Unit) <= row.size(); i += sizeof(Unit)) {
        Unit unit;
        std::memcpy(&unit, row.data() + i, sizeof unit);
        if ((unit & sign) != 0) unit = 0;
        std::memcpy(row.data() + i, &unit, sizeof unit);
    }
}

// Takes two pixels at a time in steps of six bytes, so that it meets other bits than those of the pixels: the
// low 12 bits of a step's first word, and the high 12 bits of its second word. What would lie behind the row
// is left out.
void Clear12(std::span<uint8_t> row, size_t pixels) {
    for (size_t step = 0; pixels > 0 && step + 1 < row.size(); step += 6) {
        uint8_t* place = row.data() + step;
        if ((place[1] & 0x08) != 0) {
            place[0] = 0;
            place[1] &= 0xF0;
        }
        if (pixels == 1) break;
        if (step + 3 < row.size() && (place[3] & 0x80) != 0) {
            place[2] &= 0x0F;
            place[3] = 0;
        }
        pixels -= 2;
    }
}

using RowClearer = void (*)(std::span<uint8_t> row, size_t pixels);

// The bytes of a pixel row that take part go to the clearer.
RowClearer ClearerOf(const BitmapHandle& bitmap) {
    switch (bitmap.BitsPerPixel) {
    case 12: return Clear12;
    case 16:
        return [](std::span<uint8_t> row, size_t pixels) { ClearUnits<uint16_t>(row.first(pixels * 2)); };
    case 48:
    case 64: return [](std::span<uint8_t> row, size_t) { ClearUnits<uint16_t>(row); };
    default: return [](std::span<uint8_t> row, size_t) { ClearUnits<uint8_t>(row); };
    }
}

ReturnCode ClearPalette(BitmapHandle& bitmap) {
    RGBQUAD entries[256];
    const uint32_t count = Z_GetBitmapPaletteEntries(&bitmap, 0, std::min(bitmap.ColorsUsed, 256u), entries);
    if (count == 0) return code::Success;
    for (uint32_t i = 0; i < count; ++i)
        for (uint8_t* channel : {&entries[i].rgbBlue, &entries[i].rgbGreen, &entries[i].rgbRed})
            if ((*channel & 0x80) != 0) *channel = 0;
    BitmapHandle made = bitmap; // the old palette goes when there is a new one
    const ReturnCode result = Z_CreateBitmapPalette(&made, entries, count);
    if (result != code::Success) return result;
    ReleasePalette(bitmap);
    bitmap.Palette = made.Palette;
    bitmap.ColorsUsed = made.ColorsUsed;
    return code::Success;
}

ReturnCode ClearRows(BitmapHandle& bitmap, ScratchRow& row) {
    const RowClearer clear = ClearerOf(bitmap);
    return RowWalk(bitmap).Reporting(StatusReceiver::Status()).Run(bitmap.Height, [&](int32_t y) {
        const ReturnCode read = ReadExactly(bitmap, row.data(), y, 0, bitmap.BytesPerLine);
        if (read != code::Success) return read;
        clear({row.data(), bitmap.BytesPerLine}, static_cast<size_t>(bitmap.Width));
        return WriteExactly(bitmap, row.data(), y, 0, bitmap.BytesPerLine);
    });
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_ClearNegativePixels(BitmapHandle* bitmap) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    ScratchRow row(*bitmap);
    if (!row) return code::OutOfMemory;
    const bool isColour16 = bitmap->BitsPerPixel == 16 && bitmap->Order != Z_ORDER_GRAY;
    if (!HasFlag(*bitmap, flag::Signed) || isColour16) {
        ReportDone(StatusReceiver::Status());
        return code::Success;
    }
    bitmap->Flags &= ~flag::Signed;
    if (bitmap->BitsPerPixel > 8) return ClearRows(*bitmap, row);
    const ReturnCode result = ClearPalette(*bitmap);
    if (result == code::Success) ReportDone(StatusReceiver::Status());
    return result;
}
