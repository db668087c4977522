// Row transfer: the hot path of all processing. Nothing is checked here. A row that lies in one piece of
// memory is copied at once; every other class is reached through its interface.
#include "zkr13n/rows.h"
#include "core/exact_rows.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/row_ahead.h"
#include "core/sizes.h"
#include "core/storage/plain_rows.h"
#include "core/storage/storage_class.h"

namespace zkr {

namespace {

// The row cache follows every access to storage that lies in one piece, of a record without any class too.
ReturnCode NoStorage(BitmapHandle& bitmap, int32_t row) {
    storage::LocateRow(bitmap, row);
    return code::OutOfMemory;
}

// Tiles always tell the count asked for: neither a transfer that runs past the last row nor a failing file is
// reported.
ReturnCode AsTold(const storage::StorageClass& storageClass, ReturnCode moved, uint32_t bytes) {
    return &storageClass == &storage::Tiled ? static_cast<ReturnCode>(bytes) : moved;
}

ReturnCode ReadElsewhere(BitmapHandle& bitmap, void* buffer, int32_t row, int32_t column, uint32_t bytes) {
    const storage::StorageClass* storageClass = storage::ClassOf(bitmap);
    if (storageClass == nullptr) return NoStorage(bitmap, row);
    return AsTold(*storageClass,
                  storageClass->Read(bitmap, static_cast<uint8_t*>(buffer), row, column, bytes), bytes);
}

ReturnCode WriteElsewhere(BitmapHandle& bitmap, const void* buffer, int32_t row, int32_t column,
                          uint32_t bytes) {
    const storage::StorageClass* storageClass = storage::ClassOf(bitmap);
    if (storageClass == nullptr) return NoStorage(bitmap, row);
    return AsTold(*storageClass,
                  storageClass->Write(bitmap, static_cast<const uint8_t*>(buffer), row, column, bytes),
                  bytes);
}

// Where the row behind the given one lies, or the one before it where the rows are walked upwards.
uintptr_t NextOnTheWay(const BitmapHandle& bitmap, uint32_t previous) {
    const uintptr_t here = reinterpret_cast<uintptr_t>(bitmap.Addr) + bitmap.CurrentRowOffset;
    return bitmap.CurrentRow + 1 == previous ? here - bitmap.BytesPerLine : here + bitmap.BytesPerLine;
}

// Counts above 0x7FFFFFFF look like codes, so that they are compared first.
ReturnCode WhetherAllMoved(ReturnCode moved, uint32_t bytes, ReturnCode failure) {
    if (static_cast<uint32_t>(moved) == bytes) return code::Success;
    return moved < 0 ? moved : failure;
}

} // namespace

ReturnCode ReadExactly(BitmapHandle& bitmap, uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes,
                       ReturnCode shortfall) {
    const storage::StorageClass* storageClass = storage::ClassOf(bitmap);
    if (storageClass == nullptr) return NoStorage(bitmap, row);
    return WhetherAllMoved(storageClass->Read(bitmap, buffer, row, column, bytes), bytes, shortfall);
}

ReturnCode WriteExactly(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row, int32_t column,
                        uint32_t bytes) {
    const storage::StorageClass* storageClass = storage::ClassOf(bitmap);
    if (storageClass == nullptr) return NoStorage(bitmap, row);
    return WhetherAllMoved(storageClass->Write(bitmap, buffer, row, column, bytes), bytes, code::WriteFailed);
}

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_GetBitmapRow(BitmapHandle* bitmap, void* buffer, int32_t row, uint32_t bytes) {
    if (!LiesInMemory(*bitmap)) [[unlikely]]
        return ReadElsewhere(*bitmap, buffer, row, 0, bytes);
    const uint32_t previous = bitmap->CurrentRow;
    const ReturnCode result = storage::ReadMemory(*bitmap, static_cast<uint8_t*>(buffer), row, 0, bytes);
    if (bytes >= SmallestNotedRow && bitmap->Size >= SmallestStreamedBitmap)
        NoteRowAhead(buffer, NextOnTheWay(*bitmap, previous));
    return result;
}

ReturnCode Z_CALL Z_PutBitmapRow(BitmapHandle* bitmap, const void* buffer, int32_t row, uint32_t bytes) {
    if (LiesInMemory(*bitmap)) [[likely]]
        return storage::WriteMemory(*bitmap, static_cast<const uint8_t*>(buffer), row, 0, bytes);
    return WriteElsewhere(*bitmap, buffer, row, 0, bytes);
}

ReturnCode Z_CALL Z_GetBitmapRowCol(BitmapHandle* bitmap, void* buffer, int32_t row, int32_t column,
                                    uint32_t bytes) {
    if (LiesInMemory(*bitmap)) [[likely]]
        return storage::ReadMemory(*bitmap, static_cast<uint8_t*>(buffer), row,
                                   ColumnOffset(bitmap->BitsPerPixel, column), bytes);
    return ReadElsewhere(*bitmap, buffer, row, column, bytes);
}

ReturnCode Z_CALL Z_PutBitmapRowCol(BitmapHandle* bitmap, const void* buffer, int32_t row, int32_t column,
                                    uint32_t bytes) {
    if (LiesInMemory(*bitmap)) [[likely]]
        return storage::WriteMemory(*bitmap, static_cast<const uint8_t*>(buffer), row,
                                    ColumnOffset(bitmap->BitsPerPixel, column), bytes);
    return WriteElsewhere(*bitmap, buffer, row, column, bytes);
}
