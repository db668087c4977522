// The class of bitmaps whose data the caller owns: the library never frees, moves or resizes it.
#include "core/return_codes.h"
#include "core/storage/plain_rows.h"
#include "core/storage/storage_class.h"
#include "zkr13n/storage.h"

namespace zkr::storage {

namespace {

// A block of global memory that the caller keeps is at least not left locked.
void Release(BitmapHandle& bitmap) {
    Z_ReleaseBitmap(&bitmap);
}

ReturnCode ChangeHeight(BitmapHandle&, int32_t) {
    return code::InvalidArgument;
}

} // namespace

const StorageClass User = {
    .MemoryType = MemoryConventional,
    .Release = Release,
    .Read = ReadMemoryRow,
    .Write = WriteMemoryRow,
    .ReachRow = ReachMemoryRow,
    .ChangeHeight = ChangeHeight,
    .UpdateSize = UpdatePlainSize,
};

} // namespace zkr::storage
