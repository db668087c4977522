// Access to a bitmap's data. Only global memory has to be locked for it; every other class is always
// accessible.
#include "core/flags.h"
#include "core/return_codes.h"
#include "platform/memory.h"
#include "zkr13n/storage.h"

using namespace zkr;

void Z_CALL Z_AccessBitmap(BitmapHandle* bitmap) {
    if (bitmap == nullptr || !HasFlag(*bitmap, flag::Global) || HasFlag(*bitmap, flag::Locked)) return;
    auto* block = static_cast<uint8_t*>(platform::GlobalLock(bitmap->StorageHandle));
    if (block == nullptr) return;
    bitmap->Addr = block + bitmap->AlignOffset;
    bitmap->Flags |= flag::Locked;
}

void Z_CALL Z_ReleaseBitmap(BitmapHandle* bitmap) {
    if (bitmap == nullptr || !HasFlag(*bitmap, flag::Global) || !HasFlag(*bitmap, flag::Locked)) return;
    platform::GlobalUnlock(bitmap->StorageHandle);
    bitmap->Addr = nullptr;
    bitmap->Flags &= ~flag::Locked;
}

int32_t Z_CALL Z_LockBitmap(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (HasFlag(*bitmap, flag::Locked)) return 1;
    Z_AccessBitmap(bitmap);
    return 0;
}

void Z_CALL Z_UnlockBitmap(BitmapHandle* bitmap, int32_t previous) {
    if (previous == 0) Z_ReleaseBitmap(bitmap);
}
