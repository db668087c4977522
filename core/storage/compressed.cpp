// The compressed class, 1-bit rows held as runs in a private heap. It cannot be built, so that no bitmap is
// ever of this class; a record that claims to be one is refused everywhere.
#include "core/return_codes.h"
#include "core/storage/storage_class.h"
#include "zkr13n/storage.h"

namespace zkr::storage {

ReturnCode BuildCompressed(BitmapHandle&) {
    return code::OutOfMemory;
}

const StorageClass Compressed = {
    .MemoryType = MemoryCompressed,
    .Release = [](BitmapHandle&) {},
    .Read = [](BitmapHandle&, uint8_t*, int32_t, int32_t, uint32_t) { return code::InvalidBitmap; },
    .Write = [](BitmapHandle&, const uint8_t*, int32_t, int32_t, uint32_t) { return code::InvalidBitmap; },
    .ReachRow = [](BitmapHandle&, int32_t) -> uint8_t* { return nullptr; },
    .ChangeHeight = [](BitmapHandle&, int32_t) { return code::OutOfMemory; },
    .UpdateSize = [](BitmapHandle&) { return code::InvalidBitmap; },
};

} // namespace zkr::storage
