// Fills of whole bitmaps, or of what their region holds: one prepared row, of which each row of the bitmap
// takes its segments. Regions are reached through the dispatch table; an empty slot stands for no region.
#include "colour/fill_row.h"
#include "core/bitmap_lock.h"
#include "core/dispatch.h"
#include "core/flags.h"
#include "core/progress.h"
#include "core/return_codes.h"
#include "core/row_copy.h"
#include "core/scratch.h"
#include "core/segments.h"
#include "zkr13n/fill.h"

#include <algorithm>
#include <cstring>

namespace zkr {

namespace {

constexpr uint32_t EntriesOfWholeRow = 2;

struct RowRange {
    int32_t Top;
    int32_t Bottom; // behind the last row
};

// The rows that the region's bounds share with the bitmap.
ReturnCode FindRows(BitmapHandle& bitmap, RowRange& rows) {
    rows = {0, bitmap.Height};
    if (dispatch.GetBitmapRgnBounds == nullptr) return code::Success;
    RECT bounds = {};
    const ReturnCode result = dispatch.GetBitmapRgnBounds(&bitmap, nullptr, &bounds);
    if (result != code::Success) return result;
    const bool touches = bounds.left < bounds.right && bounds.left < bitmap.Width && bounds.right > 0;
    rows.Top = std::max<int32_t>(bounds.top, 0);
    rows.Bottom = touches ? std::min<int32_t>(bounds.bottom, bitmap.Height) : rows.Top;
    return code::Success;
}

ReturnCode FindMostEntries(BitmapHandle& bitmap, uint32_t& entries) {
    entries = EntriesOfWholeRow;
    if (dispatch.GetBitmapClipSegmentsMax == nullptr) return code::Success;
    return dispatch.GetBitmapClipSegmentsMax(&bitmap, &entries);
}

// A row that the storage does not take is not reported.
void WriteSegments(BitmapHandle& bitmap, const uint8_t* pixels, int32_t row, uint32_t* segments) {
    uint32_t entries = EntriesOfWholeRow;
    if (dispatch.GetBitmapClipSegments != nullptr) {
        if (dispatch.GetBitmapClipSegments(&bitmap, row, segments, &entries) != code::Success) return;
    } else {
        segments[0] = 0;
        segments[1] = static_cast<uint32_t>(bitmap.Width);
    }
    StreamSegments(bitmap, pixels, row, {segments, entries});
}

// Rows of a file are reported one by one, all others as one.
ReturnCode WriteRows(BitmapHandle& bitmap, const uint8_t* pixels, RowRange rows, uint32_t* segments) {
    if (rows.Top >= rows.Bottom) return code::Success;
    const bool eachRow = HasFlag(bitmap, flag::Disk);
    Progress progress(StatusReceiver::Status(), eachRow ? rows.Bottom - rows.Top : 1);
    ReturnCode status = progress.Begin();
    for (int32_t row = rows.Top; row < rows.Bottom && status == code::Success; ++row) {
        WriteSegments(bitmap, pixels, row, segments);
        if (eachRow) status = progress.Step();
    }
    EndStream();
    return status == code::Success && !eachRow ? progress.Step() : status;
}

enum class EmptyRegion { Refused, Walked };

// Calls prepare(row) for the row that is written everywhere.
template <typename Prepare>
ReturnCode FillWith(BitmapHandle* bitmap, EmptyRegion emptyRegion, Prepare prepare) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    RowRange rows;
    uint32_t entries;
    ReturnCode result = FindRows(*bitmap, rows);
    if (result == code::Success) result = FindMostEntries(*bitmap, entries);
    if (result != code::Success) return result;
    if (entries == 0 && emptyRegion == EmptyRegion::Refused) return code::Success;

    ScratchRow row(*bitmap);
    ScratchBuffer<uint32_t> segments(std::max(entries, EntriesOfWholeRow));
    if (!row || !segments) return code::OutOfMemory;
    const BitmapLock lock(bitmap);
    prepare(row.data());
    return WriteRows(*bitmap, row.data(), rows, segments.data());
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_FillBitmap(BitmapHandle* bitmap, uint32_t colour) {
    return FillWith(bitmap, EmptyRegion::Refused,
                    [=](uint8_t* row) { FillRowWithColor(*bitmap, colour, row, bitmap->Width); });
}

ReturnCode Z_CALL Z_ClearBitmap(BitmapHandle* bitmap) {
    return FillWith(bitmap, EmptyRegion::Walked,
                    [=](uint8_t* row) { std::memset(row, 0, bitmap->BytesPerLine); });
}
