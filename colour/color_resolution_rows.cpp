// Walks over the source and makes the target's rows by dithering or conversion.
#include "colour/color_resolution_rows.h"

#include "colour/gray_window.h"
#include "colour/level_table.h"
#include "core/exact_rows.h"
#include "core/row_walk.h"
#include "zkr13n/convert.h"
#include "zkr13n/dither.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

namespace zkr {

namespace {

// Calls make(y) for each row of the source, which leaves the target's row in `row`, and hands that on.
template <typename Make>
ReturnCode PassRows(BitmapHandle& source, BitmapHandle& form, BitmapHandle* stored, uint8_t* row,
                    const RowReceiver& receiver, Make make) {
    const BitmapLock lock(&form);
    return WalkRows(&source, source.Height, StatusReceiver::Status(), [&](int32_t y) {
        ReturnCode result = make(y);
        if (result == code::Success && receiver.Callback != nullptr)
            result = receiver.Callback(&form, row, 1, receiver.UserData);
        if (result == code::Success && stored != nullptr)
            result = WriteExactly(*stored, row, y, 0, stored->BytesPerLine);
        return result;
    });
}

// Bits and bytes of a row behind its last pixel, where pixels of a wider form have been.
void ClearTail(const BitmapHandle& form, uint8_t* row) {
    const uint64_t bits = static_cast<uint64_t>(form.Width) * static_cast<uint32_t>(form.BitsPerPixel);
    const auto whole = static_cast<size_t>(bits / 8);
    if (bits % 8 != 0)
        row[whole] &= static_cast<uint8_t>(form.BitsPerPixel == 12 ? 0x0F : 0xFF00 >> bits % 8);
    const size_t end = static_cast<size_t>((bits + 7) / 8);
    if (end < form.BytesPerLine) std::memset(row + end, 0, form.BytesPerLine - end);
}

} // namespace

ReturnCode DitherRows(BitmapHandle& source, BitmapHandle& form, BitmapHandle* stored,
                      const RowReceiver& receiver) {
    ScratchRow from(source);
    ScratchRow row(form);
    if (!from || !row) return code::OutOfMemory;
    std::memset(row.data(), 0, form.BytesPerLine);
    return PassRows(source, form, stored, row.data(), receiver, [&](int32_t y) {
        const ReturnCode result = ReadExactly(source, from.data(), y, 0, source.BytesPerLine);
        return result == code::Success ? Z_DitherLine(&source, from.data(), row.data()) : result;
    });
}

ReturnCode ConvertRows(BitmapHandle& source, BitmapHandle& form, BitmapHandle* stored, const RGBQUAD* palette,
                       const RowReceiver& receiver) {
    const bool isGray = HasGrayWords(source);
    const GrayWindow window =
        MakeGrayWindow(source.BitsPerPixel, source.BitsPerPixel, source.LowBit, source.HighBit);
    const LevelTable levels(source, window.Mask);
    const size_t rowBytes =
        Z_CalcConvertSize(source.Width, source.BitsPerPixel, form.Width, form.BitsPerPixel);
    ScratchBuffer<uint8_t> row(rowBytes);
    if (!levels || !row) return code::OutOfMemory;
    std::memset(row.data(), 0, rowBytes); // not all conversions write all bytes: gray leaves alpha alone
    RGBQUAD entries[256] = {};
    if (source.BitsPerPixel <= 8) Z_GetBitmapPaletteEntries(&source, 0, 256, entries);
    const uint32_t flags = isGray ? Z_CONVERT_SOURCE_WINDOW : 0;
    return PassRows(source, form, stored, row.data(), receiver, [&](int32_t y) {
        ReturnCode result = ReadExactly(source, row.data(), y, 0, source.BytesPerLine);
        if (result != code::Success) return result;
        result = Z_ConvertBufferExt(row.data(), source.Width, source.BitsPerPixel, form.BitsPerPixel,
                                    isGray ? Z_ORDER_GRAY : source.Order, form.Order,
                                    isGray ? levels.Entries() : entries, palette, flags, source.LowBit,
                                    source.HighBit);
        ClearTail(form, row.data());
        return result;
    });
}

} // namespace zkr
