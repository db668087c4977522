#include "core/replacement.h"

#include "core/flags.h"
#include "core/storage/storage_class.h"
#include "zkr13n/allocation.h"

#include <utility>

namespace zkr {

void BitmapReplacement::Commit() {
    Z_FreeDuplicateBitmap(target_, owned_);
    Z_CopyBitmapHandle(target_, &record_);
    target_ = nullptr;
}

void BitmapReplacement::CommitStorage() {
    BitmapHandle& target = *std::exchange(target_, nullptr);
    BitmapHandle committed = target;
    committed.StorageHandle = record_.StorageHandle;
    committed.Addr = record_.Addr;
    committed.BytesPerLine = record_.BytesPerLine;
    committed.CurrentRowOffset = record_.CurrentRowOffset;
    committed.CurrentRow = record_.CurrentRow;
    committed.Size = record_.Size;
    committed.AlignOffset = record_.AlignOffset;
    committed.Flags = (target.Flags & ~storage::ClassFlags) | (record_.Flags & storage::ClassFlags);
    Z_OsFree(record_.PaintLUT);
    target.LevelLUT = nullptr; // they stay
    target.PaintLUT = nullptr;
    Z_FreeDuplicateBitmap(&target, Z_DUP_DATA);
    target = committed;
}

} // namespace zkr
