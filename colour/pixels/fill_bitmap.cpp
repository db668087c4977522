// Fills of whole bitmaps, or of what their region holds: one prepared row, of which each row of the bitmap
// takes its segments.
#include "colour/pixels/fill_row.h"
#include "core/bitmap_lock.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/progress.h"
#include "core/region_rows.h"
#include "core/return_codes.h"
#include "core/row_copy.h"
#include "core/scratch.h"
#include "core/segments.h"
#include "zkr13n/fill.h"

#include <cstring>

namespace zkr {

namespace {

// Rows of a file are reported one by one, all others as one. A row that the storage does not take is not reported.
ReturnCode WriteRows(BitmapHandle& bitmap, const uint8_t* pixels, RegionRows& region) {
    if (region.rows() == 0) return code::Success;
    const bool eachRow = HasFlag(bitmap, flag::Disk);
    Progress progress(StatusReceiver::Status(), eachRow ? region.rows() : 1);
    ReturnCode status = progress.Begin();
    for (int32_t index = 0; index < region.rows() && status == code::Success; ++index) {
        const int32_t row = region.top() + index;
        std::span<const uint32_t> segments;
        static_cast<void>(region.SegmentsOf(row, segments));
        static_cast<void>(StreamSegments(bitmap, pixels, row, segments));
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
    RegionRows region(*bitmap, RowFailures::Ignored);
    const ReturnCode result = region.Begin();
    if (result != code::Success) return result;
    if (region.IsEmpty() && emptyRegion == EmptyRegion::Refused) return code::Success;

    ScratchRow row(*bitmap);
    if (!row) return code::OutOfMemory;
    const BitmapLock lock(bitmap);
    prepare(row.data());
    return WriteRows(*bitmap, row.data(), region);
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
