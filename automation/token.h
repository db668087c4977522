// The block that the handle of a bitmap stands for: that of an object, and those that clients hand in.
#pragma once

#include "platform/memory.h"
#include "zkr13n/raster_values.h"

namespace zkr::automation {

class TokenBlock {
  public:
    TokenBlock() = default;
    ~TokenBlock();
    TokenBlock(const TokenBlock&) = delete;
    TokenBlock& operator=(const TokenBlock&) = delete;

    // False where memory is short. The block is empty until it is filled.
    bool Make();
    void Fill(BitmapHandle* record, decltype(BitmapToken::OwnerNotify) notify, void* owner);
    intptr_t Handle() const { return reinterpret_cast<intptr_t>(block_); }
    // Null before Make. The block stays locked, so that the address is good as long as the block.
    BitmapToken* Token() { return token_; }

  private:
    HGLOBAL block_ = nullptr;
    BitmapToken* token_ = nullptr;
};

// A handle that a client hands in, resolved and locked for a scope.
class LockedToken {
  public:
    explicit LockedToken(intptr_t handle);
    ~LockedToken();
    LockedToken(const LockedToken&) = delete;
    LockedToken& operator=(const LockedToken&) = delete;

    // False for a handle that is none, or whose block is no token.
    explicit operator bool() const { return token_ != nullptr; }
    BitmapToken* operator->() const { return token_; }
    BitmapToken* get() const { return token_; }

  private:
    HGLOBAL block_;
    BitmapToken* token_ = nullptr;
};

} // namespace zkr::automation
