// Rows of storage that lies in one piece, in memory or in a file: the row cache of the record, and the
// transfer that the memory classes share.
#pragma once

#include "core/flags.h"
#include "core/return_codes.h"
#include "core/row_copy.h"
#include "core/sizes.h"
#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>

namespace zkr::storage {

// The byte offset of a row. Neighbours of the row last reached cost an addition.
inline size_t LocateRow(BitmapHandle& bitmap, int32_t row) {
    const auto target = static_cast<uint32_t>(row);
    const uint32_t current = bitmap.CurrentRow;
    size_t offset = bitmap.CurrentRowOffset;
    if (target == current) return offset;
    if (target == current + 1)
        offset += bitmap.BytesPerLine;
    else if (target + 1 == current)
        offset -= bitmap.BytesPerLine;
    else
        offset = static_cast<size_t>(target) * bitmap.BytesPerLine;
    bitmap.CurrentRow = target;
    bitmap.CurrentRowOffset = offset;
    return offset;
}

[[nodiscard]] inline ReturnCode ReadMemory(BitmapHandle& bitmap, uint8_t* buffer, int32_t row,
                                           ptrdiff_t columnOffset, uint32_t bytes) {
    const size_t offset = LocateRow(bitmap, row);
    const auto* data = static_cast<const uint8_t*>(bitmap.Addr);
    if (data == nullptr) return code::InvalidBitmap;
    CopyFromBitmap(buffer, data + offset + columnOffset, bytes);
    return static_cast<ReturnCode>(bytes);
}

[[nodiscard]] inline ReturnCode WriteMemory(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row,
                                            ptrdiff_t columnOffset, uint32_t bytes) {
    const size_t offset = LocateRow(bitmap, row);
    auto* data = static_cast<uint8_t*>(bitmap.Addr);
    if (data == nullptr) return code::InvalidBitmap;
    const Readers readers = HasFlag(bitmap, flag::UserData) ? Readers::Anyone : Readers::ThisProcess;
    CopyToBitmap(data + offset + columnOffset, buffer, bytes, bitmap.Size, readers);
    return static_cast<ReturnCode>(bytes);
}

// The same in the form of the storage interface.
[[nodiscard]] ReturnCode ReadMemoryRow(BitmapHandle& bitmap, uint8_t* buffer, int32_t row, int32_t column,
                                       uint32_t bytes);
[[nodiscard]] ReturnCode WriteMemoryRow(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row,
                                        int32_t column, uint32_t bytes);
uint8_t* ReachMemoryRow(BitmapHandle& bitmap, int32_t row);

} // namespace zkr::storage
