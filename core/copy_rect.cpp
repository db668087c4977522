// Rectangles of a bitmap as bitmaps of their own, exact to the pixel at every depth and phase. What of the
// rectangle lies outside the source keeps the new bitmap's fresh content.
#include "core/attachments.h"

#include "core/copy.h"
#include "core/exact_rows.h"
#include "core/predicates.h"

#include "core/rectangle.h"
#include "core/replacement.h"
#include "core/return_codes.h"
#include "core/row_walk.h"
#include "core/scratch.h"
#include "core/sizes.h"
#include "core/storage/storage_class.h"
#include "zkr13n/copy.h"
#include "zkr13n/rows.h"

#include <algorithm>

namespace zkr {

namespace {

// Of the source; it may hang over its edges.
struct Place {
    int32_t Left, Top, Width, Height;
};

ReturnCode MoveRegion(BitmapHandle& target, BitmapHandle& source, const Place& place) {
    ReleaseRegion(target);
    const auto negative = [](int32_t offset) {
        return static_cast<int32_t>(0u - static_cast<uint32_t>(offset));
    };
    return CopyRegion(target, source, negative(place.Left), negative(place.Top));
}

// The source's pixels are taken from the last column before them that begins with a byte, whatever the depth.
struct SourcePixels {
    SourcePixels(const BitmapHandle& bitmap, const Cut& columns)
        : First(static_cast<uint32_t>(columns.From) % 8), Column(columns.From - static_cast<int32_t>(First)),
          Bytes(static_cast<uint32_t>((First + columns.Count) * bitmap.BitsPerPixel + 7) / 8) {}

    // A row's pixels where they stand in memory, else in the buffer; null when they cannot be read.
    const uint8_t* Fetch(BitmapHandle& bitmap, int32_t row, uint8_t* buffer) const {
        const storage::StorageClass* storageClass = storage::ClassOf(bitmap);
        const uint8_t* data = storageClass == nullptr ? nullptr : storageClass->ReachRow(bitmap, row);
        if (data != nullptr) return data + ColumnOffset(bitmap.BitsPerPixel, Column);
        return ReadExactly(bitmap, buffer, row, Column, Bytes) == code::Success ? buffer : nullptr;
    }

    uint32_t First; // of the columns wanted, counted from Column
    int32_t Column; // the first one fetched
    uint32_t Bytes;
};

// Rows that cannot be moved are not reported. The steps are those of the whole height asked for.
ReturnCode CopyRows(BitmapHandle& target, BitmapHandle& source, const Cut& columns, const Cut& rows,
                    int32_t height, const SourcePixels& pixels, uint8_t* buffer) {

    const uint32_t segment[] = {pixels.First, pixels.First + static_cast<uint32_t>(columns.Count)};
    const auto offset = static_cast<int32_t>(columns.Offset - pixels.First);
    return RowWalk(source)
        .With(target)
        .Reporting(StatusReceiver::Copy(), {}, height)
        .Run(static_cast<int32_t>(rows.Count), [&](int32_t row) {
            if (const uint8_t* data = pixels.Fetch(source, rows.From + row, buffer))
                Z_PutBitmapRowSegments(&target, data, static_cast<int32_t>(rows.Offset) + row, offset,
                                       segment, 2, 0);
            return code::Success;
        });
}

// How far a target has come: a copy that was stopped leaves the rows that it has done.
struct Copied {
    ReturnCode Status;
    bool HasPixels; // or would have had, before the stop
};

Copied CopyInto(BitmapHandle& target, BitmapHandle& source, const Place& place) {
    const ReturnCode moved = MoveRegion(target, source, place);
    if (moved != code::Success) return {moved, false};
    const Cut columns(place.Left, place.Width, source.Width);
    const Cut rows(place.Top, place.Height, source.Height);
    if (columns.Count == 0 || rows.Count == 0) return {code::Success, false};
    const SourcePixels pixels(source, columns);
    ScratchBuffer<uint8_t> buffer(pixels.Bytes);
    if (!buffer) return {code::OutOfMemory, false};
    return {CopyRows(target, source, columns, rows, place.Height, pixels, buffer.data()), true};
}

// Without a destination the rectangle takes the source's place, unless it has nothing of the source.
ReturnCode CopyRectangle(BitmapHandle* destination, BitmapHandle* source, const Place& place,
                         std::optional<int32_t> memoryType) {
    if (!IsAllocated(source)) return code::InvalidArgument;
    BitmapReplacement replacement(source, Z_DUP_DATA | Z_DUP_PALETTE | Z_DUP_REGION);
    const bool replaces = destination == nullptr || destination == source;
    BitmapHandle& target = replaces ? replacement.record() : *destination;
    const ReturnCode made = MakeEmptyCopy(target, *source, place.Width, place.Height, memoryType);
    if (made != code::Success) return made;
    const Copied copied = CopyInto(target, *source, place);
    if (replaces && copied.HasPixels) replacement.Commit();
    if (!replaces && !copied.HasPixels && copied.Status != code::Success) Z_FreeBitmap(&target);
    return copied.Status;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_CopyBitmapRect(BitmapHandle* destination, BitmapHandle* source, int32_t left, int32_t top,
                                   int32_t width, int32_t height) {
    return CopyRectangle(destination, source, {left, top, width, height}, std::nullopt);
}

ReturnCode Z_CALL Z_CopyBitmapRect2(BitmapHandle* destination, BitmapHandle* source, int32_t left,
                                    int32_t top, int32_t width, int32_t height, int32_t memoryType) {
    return CopyRectangle(destination, source, {left, top, width, height}, memoryType);
}

ReturnCode Z_CALL Z_TrimBitmap(BitmapHandle* bitmap, int32_t left, int32_t top, int32_t width,
                               int32_t height) {
    if (!IsAllocated(bitmap)) return code::InvalidArgument;
    const Cut columns(left, width, bitmap->Width), rows(top, height, bitmap->Height);
    return Z_CopyBitmapRect(nullptr, bitmap, columns.From, rows.From, static_cast<int32_t>(columns.Count),
                            static_cast<int32_t>(rows.Count));
}
