// Row transfer: the hot path of all processing. Nothing is checked here. A row that lies in one piece of
// memory is copied at once; every other class is reached through its interface.
#include "zkr13n/rows.h"
#include "core/flags.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/storage/plain_rows.h"
#include "core/storage/storage_class.h"

namespace zkr {

namespace {

bool IsPlainMemory(const BitmapHandle& bitmap) {
    constexpr uint32_t classes = flag::Compressed | flag::Tiled | flag::SuperCompressed | flag::Memory;
    return (bitmap.Flags & classes) == flag::Memory;
}

ReturnCode ReadElsewhere(BitmapHandle& bitmap, void* buffer, int32_t row, int32_t column, uint32_t bytes) {
    const storage::StorageClass* storageClass = storage::ClassOf(bitmap);
    if (storageClass == nullptr) return code::OutOfMemory;
    return storageClass->Read(bitmap, static_cast<uint8_t*>(buffer), row, column, bytes);
}

ReturnCode WriteElsewhere(BitmapHandle& bitmap, const void* buffer, int32_t row, int32_t column,
                          uint32_t bytes) {
    const storage::StorageClass* storageClass = storage::ClassOf(bitmap);
    if (storageClass == nullptr) return code::OutOfMemory;
    return storageClass->Write(bitmap, static_cast<const uint8_t*>(buffer), row, column, bytes);
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_GetBitmapRow(BitmapHandle* bitmap, void* buffer, int32_t row, uint32_t bytes) {
    if (IsPlainMemory(*bitmap)) [[likely]]
        return storage::ReadMemory(*bitmap, static_cast<uint8_t*>(buffer), row, 0, bytes);
    return ReadElsewhere(*bitmap, buffer, row, 0, bytes);
}

ReturnCode Z_CALL Z_PutBitmapRow(BitmapHandle* bitmap, const void* buffer, int32_t row, uint32_t bytes) {
    if (IsPlainMemory(*bitmap)) [[likely]]
        return storage::WriteMemory(*bitmap, static_cast<const uint8_t*>(buffer), row, 0, bytes);
    return WriteElsewhere(*bitmap, buffer, row, 0, bytes);
}

ReturnCode Z_CALL Z_GetBitmapRowCol(BitmapHandle* bitmap, void* buffer, int32_t row, int32_t column,
                                    uint32_t bytes) {
    if (IsPlainMemory(*bitmap)) [[likely]]
        return storage::ReadMemory(*bitmap, static_cast<uint8_t*>(buffer), row,
                                   ColumnOffset(bitmap->BitsPerPixel, column), bytes);
    return ReadElsewhere(*bitmap, buffer, row, column, bytes);
}

ReturnCode Z_CALL Z_PutBitmapRowCol(BitmapHandle* bitmap, const void* buffer, int32_t row, int32_t column,
                                    uint32_t bytes) {
    if (IsPlainMemory(*bitmap)) [[likely]]
        return storage::WriteMemory(*bitmap, static_cast<const uint8_t*>(buffer), row,
                                    ColumnOffset(bitmap->BitsPerPixel, column), bytes);
    return WriteElsewhere(*bitmap, buffer, row, column, bytes);
}
