// A block of global memory that is locked for a scope.
#pragma once

#include "platform/memory.h"

#include <cstddef>
#include <cstdint>

namespace zkr::dib {

class LockedBlock {
  public:
    explicit LockedBlock(HGLOBAL block)
        : block_(block), data_(static_cast<uint8_t*>(platform::GlobalLock(block))) {}
    ~LockedBlock() {
        if (data_ != nullptr) platform::GlobalUnlock(block_);
    }
    LockedBlock(const LockedBlock&) = delete;
    LockedBlock& operator=(const LockedBlock&) = delete;

    uint8_t* Data() const { return data_; } // null for what is no block with memory
    size_t Bytes() const { return platform::GlobalSize(block_); }

  private:
    HGLOBAL block_;
    uint8_t* data_;
};

} // namespace zkr::dib
