// Rows where they stand in memory, or in a buffer of BytesPerLine bytes where the storage gives no address.
#pragma once

#include "core/exact_rows.h"
#include "core/return_codes.h"
#include "core/storage/storage_class.h"

namespace zkr {

inline uint8_t* ReachRow(BitmapHandle& bitmap, int32_t row) {
    const storage::StorageClass* storageClass = storage::ClassOf(bitmap);
    return storageClass == nullptr ? nullptr : storageClass->ReachRow(bitmap, row);
}

// The bytes of a row, valid until the next access to the bitmap.
[[nodiscard]] inline ReturnCode FetchRow(BitmapHandle& bitmap, int32_t row, uint8_t* buffer,
                                         const uint8_t*& data) {
    data = ReachRow(bitmap, row);
    if (data != nullptr) return code::Success;
    data = buffer;
    return ReadExactly(bitmap, buffer, row, 0, bitmap.BytesPerLine);
}

// Calls make(bytes) for a place where a row is to be made, and brings the row home.
template <typename Make>
[[nodiscard]] ReturnCode StoreRow(BitmapHandle& bitmap, int32_t row, uint8_t* buffer, Make make) {
    if (uint8_t* data = ReachRow(bitmap, row)) {
        make(data);
        return code::Success;
    }
    make(buffer);
    return WriteExactly(bitmap, buffer, row, 0, bitmap.BytesPerLine);
}

} // namespace zkr
