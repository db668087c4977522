// Walks over the source and makes the target's rows by dithering or conversion.
#include "colour/convert/colour_resolution_rows.h"

#include "colour/dither/dither_state.h"
#include "colour/gray/gray_window.h"
#include "colour/gray/level_table.h"
#include "core/exact_rows.h"
#include "core/predicates.h"
#include "core/row_walk.h"
#include "core/scratch.h"
#include "core/sizes.h"
#include "zkr13n/convert.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

namespace zkr {

namespace {

// Calls make(first, count) for so many rows of the source at once, which leaves the target's in `rows`, and
// hands these on one by one.
template <typename Make>
ReturnCode PassRows(BitmapHandle& source, BitmapHandle& form, BitmapHandle* stored, uint8_t* rows,
                    int32_t atOnce, const RowReceiver& receiver, Make make) {

    const int32_t groups = source.Height / atOnce + (source.Height % atOnce != 0 ? 1 : 0);
    return RowWalk(source).With(form).Reporting(StatusReceiver::Status()).Run(groups, [&](int32_t group) {
        const int32_t first = group * atOnce;
        const int32_t count = std::min(atOnce, source.Height - first);
        ReturnCode result = make(first, count);
        uint8_t* row = rows;
        for (int32_t y = first; y < first + count && result == code::Success; ++y) {
            if (receiver.Callback != nullptr) result = receiver.Callback(&form, row, 1, receiver.UserData);
            if (result == code::Success && stored != nullptr)
                result = WriteExactly(*stored, row, y, 0, stored->BytesPerLine);
            row += form.BytesPerLine;
        }
        return result;
    });
}

// Rows are taken together only where nobody can tell: callbacks come between rows, and files, or other storage
// that can fail, see them read and written in turn.
int32_t RowsAtOnce(const BitmapHandle& source, const BitmapHandle& form, const RowReceiver& receiver) {
    const bool isWatched = receiver.Callback != nullptr || StatusReceiver::Status().Callback != nullptr;
    if (isWatched || !LiesInMemory(source)) return 1;
    const auto together = static_cast<int32_t>(RowsTogether(*static_cast<DitherState*>(source.DitherData)));
    return FitsSize(RowsBytes(source, together)) && FitsSize(RowsBytes(form, together)) ? together : 1;
}

// Bits and bytes of a row behind its last pixel, where pixels of a wider form have been.
void ClearTail(const BitmapHandle& form, uint8_t* row) {
    const uint64_t bits = static_cast<uint64_t>(form.Width) * static_cast<uint32_t>(form.BitsPerPixel);
    if (bits % 8 != 0) {
        const uint8_t unused = UnusedInLastByte(form.BitsPerPixel, static_cast<size_t>(form.Width));
        row[bits / 8] = static_cast<uint8_t>(row[bits / 8] & ~unused);
    }
    const size_t end = static_cast<size_t>((bits + 7) / 8);
    if (end < form.BytesPerLine) std::memset(row + end, 0, form.BytesPerLine - end);
}

} // namespace

ReturnCode ResolveByDithering(BitmapHandle& source, BitmapHandle& form, BitmapHandle* stored,
                              const RowReceiver& receiver) {
    auto& state = *static_cast<DitherState*>(source.DitherData);
    const int32_t atOnce = RowsAtOnce(source, form, receiver);
    const auto targetBytes = static_cast<size_t>(RowsBytes(form, atOnce));
    ScratchBuffer<uint8_t> from(static_cast<size_t>(RowsBytes(source, atOnce)));
    ScratchBuffer<uint8_t> rows(targetBytes);
    if (!from || !rows) return code::OutOfMemory;
    std::memset(rows.data(), 0, targetBytes);
    return PassRows(source, form, stored, rows.data(), atOnce, receiver, [&](int32_t first, int32_t count) {
        uint8_t* row = from.data();
        for (int32_t y = first; y < first + count; ++y, row += source.BytesPerLine) {
            const ReturnCode result = ReadExactly(source, row, y, 0, source.BytesPerLine);
            if (result != code::Success) return result;
        }
        DitherRowsTogether(state, source, from.data(), rows.data(), form.BytesPerLine,
                           static_cast<size_t>(count));
        return code::Success;
    });
}

ReturnCode ResolveByConversion(BitmapHandle& source, BitmapHandle& form, BitmapHandle* stored,
                               const RGBQUAD* palette, const RowReceiver& receiver) {
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
    return PassRows(source, form, stored, row.data(), 1, receiver, [&](int32_t y, int32_t) {
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
