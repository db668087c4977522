// The disk class: the whole bitmap in one temporary file, a byte longer than its data.
#include "core/files.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/storage/plain_rows.h"
#include "core/storage/storage_class.h"
#include "core/storage/temporary_file.h"
#include "zkr13n/files.h"
#include "zkr13n/storage.h"

#include <limits>

namespace zkr::storage {

namespace {

intptr_t FileOf(const BitmapHandle& bitmap) {
    return reinterpret_cast<intptr_t>(bitmap.StorageHandle);
}

uint64_t PlaceOf(BitmapHandle& bitmap, int32_t row, int32_t column) {
    return LocateRow(bitmap, row) + static_cast<uint64_t>(ColumnOffset(bitmap.BitsPerPixel, column));
}

void Release(BitmapHandle& bitmap) {
    Z_OsClose(FileOf(bitmap), 0);
}

ReturnCode Read(BitmapHandle& bitmap, uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes) {
    return static_cast<ReturnCode>(ReadAt(FileOf(bitmap), PlaceOf(bitmap, row, column), buffer, bytes));
}

ReturnCode Write(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes) {
    return static_cast<ReturnCode>(WriteAt(FileOf(bitmap), PlaceOf(bitmap, row, column), buffer, bytes));
}

uint8_t* ReachRow(BitmapHandle&, int32_t) {
    return nullptr;
}

ReturnCode ChangeHeight(BitmapHandle& bitmap, int32_t height) {
    const uint64_t bytes = PlainBytes(bitmap, height);
    if (bytes > static_cast<uint64_t>(std::numeric_limits<intptr_t>::max()) ||
        SetFileLength(FileOf(bitmap), static_cast<intptr_t>(bytes)) != 0)
        return code::OutOfMemory;
    SetPlainHeight(bitmap, height, bytes);
    return code::Success;
}

} // namespace

ReturnCode BuildDisk(BitmapHandle& bitmap) {
    const intptr_t file = CreateTemporaryFile(bitmap.Size);
    if (file == NoFile) return code::OutOfMemory;
    const uint8_t zero = 0;
    const int64_t written = WriteAt(file, bitmap.Size, &zero, 1);
    if (written != 1) {
        Z_OsClose(file, 0);
        return written == code::SeekFailed ? code::OutOfMemory : code::WriteFailed;
    }
    SeekTo(file, 0);
    bitmap.StorageHandle = reinterpret_cast<HANDLE>(file);
    bitmap.Addr = nullptr;
    return code::Success;
}

const StorageClass Disk = {
    .MemoryType = MemoryDisk,
    .Release = Release,
    .Read = Read,
    .Write = Write,
    .ReachRow = ReachRow,
    .ChangeHeight = ChangeHeight,
    .UpdateSize = UpdatePlainSize,
};

} // namespace zkr::storage
