// The row transfer of the memory classes in the form of the storage interface.
#include "core/storage/plain_rows.h"

namespace zkr::storage {

ReturnCode ReadMemoryRow(BitmapHandle& bitmap, uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes) {
    return ReadMemory(bitmap, buffer, row, ColumnOffset(bitmap.BitsPerPixel, column), bytes);
}

ReturnCode WriteMemoryRow(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row, int32_t column,
                          uint32_t bytes) {
    return WriteMemory(bitmap, buffer, row, ColumnOffset(bitmap.BitsPerPixel, column), bytes);
}

uint8_t* ReachMemoryRow(BitmapHandle& bitmap, int32_t row) {
    const size_t offset = LocateRow(bitmap, row);
    return bitmap.Addr == nullptr ? nullptr : static_cast<uint8_t*>(bitmap.Addr) + offset;
}

} // namespace zkr::storage
