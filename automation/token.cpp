#include "automation/token.h"

#include <cstddef>
#include <cstring>

namespace zkr::automation {

namespace {

constexpr char Magic[4] = {'z', 'i', 'r', 'c'};

static_assert(offsetof(BitmapToken, BlockSize) == 4 && offsetof(BitmapToken, Record) == 8);
static_assert(sizeof(BitmapToken) == 8 + 4 * sizeof(void*));

} // namespace

TokenBlock::~TokenBlock() {
    if (block_ == nullptr) return;
    platform::GlobalUnlock(block_);
    platform::GlobalFree(block_);
}

bool TokenBlock::Make() {
    block_ = platform::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(BitmapToken));
    if (block_ == nullptr) return false;
    token_ = static_cast<BitmapToken*>(platform::GlobalLock(block_));
    return token_ != nullptr;
}

void TokenBlock::Fill(BitmapHandle* record, decltype(BitmapToken::OwnerNotify) notify, void* owner) {
    std::memcpy(token_->Magic, Magic, sizeof Magic);
    token_->BlockSize = sizeof(BitmapToken);
    token_->Record = record;
    token_->OwnerNotify = notify;
    token_->Owner = owner;
    token_->OwnerUser = 0;
}

LockedToken::LockedToken(intptr_t handle) : block_(reinterpret_cast<HGLOBAL>(handle)) {
    if (block_ == nullptr || platform::GlobalSize(block_) < sizeof(BitmapToken)) return;
    auto* token = static_cast<BitmapToken*>(platform::GlobalLock(block_));
    if (token == nullptr) return;
    // A plain address may lock as if it were a block; it is one only if the block at it has this handle.
    if (platform::GlobalHandle(token) == block_ && std::memcmp(token->Magic, Magic, sizeof Magic) == 0 &&
        token->Record != nullptr) {
        token_ = token;
    } else {
        platform::GlobalUnlock(block_);
    }
}

LockedToken::~LockedToken() {
    if (token_ != nullptr) platform::GlobalUnlock(block_);
}

} // namespace zkr::automation
