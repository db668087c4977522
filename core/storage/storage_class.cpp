// Which class a record's flags stand for.
#include "core/storage/storage_class.h"

#include "core/return_codes.h"
#include "core/sizes.h"

namespace zkr::storage {

const StorageClass* ClassOf(const BitmapHandle& bitmap) {
    if (HasFlag(bitmap, flag::Compressed)) return &Compressed;
    if (HasFlag(bitmap, flag::Tiled)) return &Tiled;
    if (HasFlag(bitmap, flag::SuperCompressed)) return &SuperCompressed;
    if (HasFlag(bitmap, flag::Memory)) {
        if (HasFlag(bitmap, flag::UserData)) return &User;
        return HasFlag(bitmap, flag::Global) ? &Global : &Conventional;
    }
    return HasFlag(bitmap, flag::Disk) ? &Disk : nullptr;
}

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
