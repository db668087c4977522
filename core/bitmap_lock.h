// Holds a bitmap locked for a scope, so that its rows can be reached whatever its storage class.
#pragma once

#include "zkr13n/storage.h"

namespace zkr {

class BitmapLock {
  public:
    explicit BitmapLock(BitmapHandle* bitmap) : bitmap_(bitmap), previous_(Z_LockBitmap(bitmap)) {}
    ~BitmapLock() { Z_UnlockBitmap(bitmap_, previous_); }
    BitmapLock(const BitmapLock&) = delete;
    BitmapLock& operator=(const BitmapLock&) = delete;

  private:
    BitmapHandle* bitmap_;
    int32_t previous_;
};

} // namespace zkr
