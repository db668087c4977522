// The blocks of a private heap: first fit from a list of free blocks, whose order is last freed, first tried.
#include "core/storage/private_heap.h"

#include "zkr13n/allocation.h"

#include <cstring>

namespace zkr::storage {

namespace {

constexpr uint32_t BlockHeader = sizeof(HeapBlock);
constexpr uint64_t BlockAlignment = 4;

constexpr uint64_t SizeStep = 262144;
constexpr uint64_t LargeHeap = 4194304; // the first size of every heap that one step is too small for
constexpr uint64_t LargestHeap = (uint64_t{1} << 32) - SizeStep; // what offsets can address

// A last block is cut to this payload. Room for one more header stays behind it.
constexpr uint32_t TrimmedPayload = 128;

constexpr uint64_t RoundUp(uint64_t bytes, uint64_t step) {
    return (bytes + step - 1) / step * step;
}

} // namespace

bool PrivateHeap::Make(uint64_t plainBytes) {
    const uint64_t wish = plainBytes / 8 + FirstBlock;
    const uint64_t size = wish > SizeStep ? LargeHeap : SizeStep;
    header_ = static_cast<HeapHeader*>(Z_Calloc(static_cast<size_t>(size), 1));
    if (header_ == nullptr) return false;
    *header_ = {static_cast<uint32_t>(size), FirstBlock, FirstBlock};
    Block(FirstBlock).PayloadSize = static_cast<uint32_t>(size) - FirstBlock - BlockHeader;
    return true;
}

void PrivateHeap::Release() {
    Z_Free(header_);
    header_ = nullptr;
}

uint32_t PrivateHeap::Allocate(uint64_t bytes) {
    bytes = RoundUp(bytes, BlockAlignment);
    uint32_t offset = FirstFit(bytes);
    if (offset == 0 && Grow(bytes)) offset = FirstFit(bytes);
    if (offset != 0) Take(offset, bytes);
    return offset;
}

uint32_t PrivateHeap::Resize(uint32_t offset, uint64_t bytes) {
    bytes = RoundUp(bytes, BlockAlignment);
    HeapBlock& block = Block(offset);
    if (bytes > block.PayloadSize && IsFree(block.NextBlock) &&
        bytes <= uint64_t{block.PayloadSize} + BlockHeader + Block(block.NextBlock).PayloadSize)
        AbsorbNext(offset);
    if (bytes <= block.PayloadSize) {
        Split(offset, bytes);
        return offset;
    }
    const uint32_t moved = Allocate(bytes);
    if (moved == 0) return 0;
    std::memcpy(Payload(moved), Payload(offset), Block(offset).PayloadSize);
    Free(offset);
    return moved;
}

uint32_t PrivateHeap::Replace(uint32_t offset, uint64_t bytes) {
    const uint32_t payload = Block(offset).PayloadSize;
    Free(offset);
    const uint32_t fresh = Allocate(bytes);
    if (fresh == 0) Reclaim(offset, payload);
    return fresh;
}

void PrivateHeap::Free(uint32_t offset) {
    HeapBlock& block = Block(offset);
    block.InUse = 0;
    PutOnFreeList(offset);
    if (IsFree(block.NextBlock)) AbsorbNext(offset);
    if (IsFree(block.PrevBlock)) AbsorbNext(block.PrevBlock);
}

bool PrivateHeap::Grow(uint64_t bytes) {
    const uint32_t last = header_->LastBlock;
    const uint64_t size = header_->HeapSize;
    const uint64_t wanted =
        IsFree(last) ? size + bytes - Block(last).PayloadSize : size + bytes + BlockHeader;
    const uint64_t grown = RoundUp(wanted, SizeStep);
    if (grown <= size) return true;
    if (!MoveTo(grown)) return false;

    const auto room = static_cast<uint32_t>(grown - size);
    if (IsFree(last))
        Block(last).PayloadSize += room;
    else
        InsertBehind(last, room - BlockHeader);
    return true;
}

bool PrivateHeap::Trim() {
    const uint32_t last = header_->LastBlock;
    const uint32_t payload = Block(last).PayloadSize;
    if (!IsFree(last) || payload <= TrimmedPayload) return false;
    if (!MoveTo(uint64_t{header_->HeapSize} - payload + TrimmedPayload + BlockHeader)) return false;
    Block(last).PayloadSize = TrimmedPayload;
    return true;
}

// Gives the heap another size; what the blocks make of it is the caller's business.
bool PrivateHeap::MoveTo(uint64_t size) {
    if (size > LargestHeap) return false;
    void* const moved = Z_Realloc(header_, static_cast<size_t>(size));
    if (moved == nullptr) return false;
    header_ = static_cast<HeapHeader*>(moved);
    header_->HeapSize = static_cast<uint32_t>(size);
    return true;
}

uint32_t PrivateHeap::FirstFit(uint64_t bytes) const {
    uint32_t offset = header_->FreeHead;
    while (offset != 0 && Block(offset).PayloadSize < bytes)
        offset = Block(offset).FreeNext;
    return offset;
}

// Takes a free block into use.
void PrivateHeap::Take(uint32_t offset, uint64_t bytes) {
    TakeOffFreeList(offset);
    Block(offset).InUse = 1;
    Split(offset, bytes);
}

// Takes a block into use again that has been freed a moment ago. Only headers have been written since, so
// that its content is there.
void PrivateHeap::Reclaim(uint32_t offset, uint32_t bytes) {
    uint32_t holder = header_->FreeHead;
    while (holder > offset || offset - holder >= Block(holder).PayloadSize + BlockHeader)
        holder = Block(holder).FreeNext;
    if (holder != offset) Split(holder, offset - holder - BlockHeader);
    Take(offset, bytes);
}

// Cuts a block to so many bytes, unless less than a header and four bytes would be left.
void PrivateHeap::Split(uint32_t offset, uint64_t bytes) {
    HeapBlock& block = Block(offset);
    const auto payload = static_cast<uint32_t>(bytes);
    const uint32_t surplus = block.PayloadSize - payload;
    if (surplus <= BlockHeader) return;
    block.PayloadSize = payload;
    InsertBehind(offset, surplus - BlockHeader);
    if (IsFree(Block(block.NextBlock).NextBlock)) AbsorbNext(block.NextBlock);
}

// Makes a free block where another one ends.
void PrivateHeap::InsertBehind(uint32_t previous, uint32_t payload) {
    HeapBlock& before = Block(previous);
    const uint32_t offset = previous + BlockHeader + before.PayloadSize;
    const uint32_t next = before.NextBlock;
    Block(offset) = {.PrevBlock = previous,
                     .NextBlock = next,
                     .InUse = 0,
                     .FreePrev = 0,
                     .FreeNext = 0,
                     .PayloadSize = payload};
    before.NextBlock = offset;
    (next != 0 ? Block(next).PrevBlock : header_->LastBlock) = offset;
    PutOnFreeList(offset);
}

// Joins a block and the free one behind it.
void PrivateHeap::AbsorbNext(uint32_t offset) {
    HeapBlock& block = Block(offset);
    const uint32_t absorbed = block.NextBlock;
    TakeOffFreeList(absorbed);
    block.PayloadSize += BlockHeader + Block(absorbed).PayloadSize;
    block.NextBlock = Block(absorbed).NextBlock;
    (block.NextBlock != 0 ? Block(block.NextBlock).PrevBlock : header_->LastBlock) = offset;
}

void PrivateHeap::PutOnFreeList(uint32_t offset) {
    HeapBlock& block = Block(offset);
    block.FreePrev = 0;
    block.FreeNext = header_->FreeHead;
    if (block.FreeNext != 0) Block(block.FreeNext).FreePrev = offset;
    header_->FreeHead = offset;
}

void PrivateHeap::TakeOffFreeList(uint32_t offset) {
    const HeapBlock& block = Block(offset);
    (block.FreePrev != 0 ? Block(block.FreePrev).FreeNext : header_->FreeHead) = block.FreeNext;
    if (block.FreeNext != 0) Block(block.FreeNext).FreePrev = block.FreePrev;
}

} // namespace zkr::storage
