// What the storage classes have in common: the sizes of storage that lies in one piece.
#include "core/storage/storage_class.h"

#include "core/return_codes.h"
#include "core/sizes.h"

namespace zkr::storage {

uint64_t PlainBytes(const BitmapHandle& bitmap, int32_t height) {
    return bitmap.AlignOffset + RowsBytes(bitmap, height);
}

void SetPlainHeight(BitmapHandle& bitmap, int32_t height, uint64_t bytes) {
    bitmap.Size = static_cast<size_t>(bytes);
    bitmap.Height = height;
    bitmap.CurrentRow = 0;
    bitmap.CurrentRowOffset = 0;
}

ReturnCode UpdatePlainSize(BitmapHandle& bitmap) {
    bitmap.Size = static_cast<size_t>(RowsBytes(bitmap, bitmap.Height));
    return code::Success;
}

} // namespace zkr::storage
