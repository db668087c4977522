// Copies of whole bitmaps, from any storage class to any other, row by row.
#include "zkr13n/copy.h"

#include "core/copy.h"
#include "core/exact_rows.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/row_walk.h"
#include "core/runs/exchanged_row.h"
#include "core/runs/run_list.h"
#include "core/scratch.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/locks.h"

#include <algorithm>
#include <cstring>

namespace zkr {

namespace {

// A destination of other dimensions gets the rows and bytes that both bitmaps have; longer rows of it end in
// zeros.
ReturnCode CopyRows(BitmapHandle* destination, BitmapHandle* source, RowFailures failures) {
    const uint32_t rowBytes = std::max(destination->BytesPerLine, source->BytesPerLine);
    ScratchBuffer<uint8_t> row(rowBytes);
    if (!row) return code::OutOfMemory;
    std::memset(row.data(), 0, rowBytes);
    const auto copyRow = [&](int32_t index) {
        const ReturnCode read = ReadExactly(*source, row.data(), index, 0, source->BytesPerLine);
        const ReturnCode written =
            WriteExactly(*destination, row.data(), index, 0, destination->BytesPerLine);
        if (failures == RowFailures::Ignored) return code::Success;
        return read == code::Success ? written : read;
    };
    return RowWalk(*source)
        .With(*destination)
        .Reporting(StatusReceiver::Copy())
        .Run(std::min(destination->Height, source->Height), copyRow);
}

// Rows of runs go from heap to heap as they are.
ReturnCode CopyRuns(BitmapHandle* destination, BitmapHandle* source) {
    ScratchBuffer<uint16_t> row(runs::CountWords + static_cast<size_t>(runs::MostWords(source->Width)));
    if (!row) return code::OutOfMemory;
    const auto copyRow = [&](int32_t index) {
        const ReturnCode read = Z_GetBitmapRowCompressed(source, nullptr, row.data(), index, 1);
        if (read != code::Success) return read;
        return Z_PutBitmapRowCompressed(destination, nullptr, row.data(), index, 1);
    };
    return RowWalk(*source)
        .Reporting(StatusReceiver::Copy())
        .Run(std::min(destination->Height, source->Height), copyRow);
}

ReturnCode CopyData(BitmapHandle* destination, BitmapHandle* source, RowFailures failures) {
    if (!IsAllocated(source) || !IsAllocated(destination)) return code::InvalidBitmap;
    if (destination == source) return code::Success;
    const bool bothRuns = HasFlag(*source, flag::Compressed) && HasFlag(*destination, flag::Compressed);
    if (bothRuns && source->Width == destination->Width) return CopyRuns(destination, source);
    return CopyRows(destination, source, failures);
}

} // namespace

ReturnCode CopyBitmapDataExactly(BitmapHandle* destination, BitmapHandle* source) {
    return CopyData(destination, source, RowFailures::Returned);
}

ReturnCode MakeEmptyCopy(BitmapHandle& target, BitmapHandle& source, int32_t width, int32_t height,
                         std::optional<int32_t> memoryType) {
    constexpr uint32_t attachments = Z_DUP_PALETTE | Z_DUP_REGION;
    const uint32_t data = memoryType ? 0 : Z_DUP_DATA;
    ReturnCode result =
        Z_DupBitmapNewDim(&target, &source, width, height, source.BitsPerPixel, attachments | data);
    if (result != code::Success || !memoryType) return result;
    result = Z_AllocateBitmap(&target, *memoryType);
    if (result != code::Success) Z_FreeDuplicateBitmap(&target, attachments);
    return result;
}

} // namespace zkr

using namespace zkr;

namespace {

ReturnCode CopyWhole(BitmapHandle& destination, BitmapHandle& source, std::optional<int32_t> memoryType) {
    ReturnCode status = MakeEmptyCopy(destination, source, source.Width, source.Height, memoryType);
    if (status != code::Success) return status;
    status = Z_CopyBitmapData(&destination, &source);
    if (status != code::Success) Z_FreeBitmap(&destination);
    return status;
}

} // namespace

ReturnCode Z_CALL Z_CopyBitmapData(BitmapHandle* destination, BitmapHandle* source) {
    return CopyData(destination, source, RowFailures::Ignored);
}

ReturnCode Z_CALL Z_CopyBitmap(BitmapHandle* destination, BitmapHandle* source) {
    if (destination == nullptr || !IsAllocated(source)) return code::InvalidArgument;
    if (destination == source) return code::Success;
    if (HasFlag(*source, flag::Compressed) && Z_IsSupportLocked(Z_SUPPORT_DOCUMENT) != 0)
        return code::DocumentLocked;
    return CopyWhole(*destination, *source, std::nullopt);
}

ReturnCode Z_CALL Z_CopyBitmap2(BitmapHandle* destination, BitmapHandle* source, int32_t memoryType) {
    if (destination == nullptr || !IsAllocated(source)) return code::InvalidArgument;
    return destination == source ? code::Success : CopyWhole(*destination, *source, memoryType);
}
