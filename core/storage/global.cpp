// The class of bitmaps whose data is a block of global memory, taken over from outside. Addr is valid while
// the block is locked.
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/storage/plain_rows.h"
#include "core/storage/storage_class.h"
#include "platform/memory.h"
#include "zkr13n/storage.h"

namespace zkr::storage {

namespace {

void Release(BitmapHandle& bitmap) {
    Z_ReleaseBitmap(&bitmap);
    platform::GlobalFree(bitmap.StorageHandle);
}

ReturnCode ChangeHeight(BitmapHandle& bitmap, int32_t height) {
    const uint64_t bytes = PlainBytes(bitmap, height);
    if (!FitsSize(bytes)) return code::OutOfMemory;
    HGLOBAL block = platform::GlobalReAlloc(bitmap.StorageHandle, static_cast<size_t>(bytes),
                                            GMEM_MOVEABLE | GMEM_ZEROINIT);
    if (block == nullptr) return code::OutOfMemory;
    bitmap.StorageHandle = block;
    SetPlainHeight(bitmap, height, bytes);
    return code::Success;
}

} // namespace

const StorageClass Global = {
    .MemoryType = MemoryConventional,
    .Release = Release,
    .Read = ReadMemoryRow,
    .Write = WriteMemoryRow,
    .ReachRow = ReachMemoryRow,
    .ChangeHeight = ChangeHeight,
    .UpdateSize = UpdatePlainSize,
};

} // namespace zkr::storage
