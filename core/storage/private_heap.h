// The private heap of a run-compressed bitmap: one piece of memory in which rows lie as blocks at multiples
// of 4 bytes. It may move whenever it grows, so that everything in it is an offset from its start, and 0
// means none. Its size is what the bitmap tells as Size: growth, splits, merges and trimming are exact.
//
// Invariants: blocks follow one another without a gap from FirstBlock to LastBlock, behind which a trimmed
// heap has room that belongs to none; no two neighbours are free; all free blocks are on the free list.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::storage {

struct HeapHeader {
    uint32_t HeapSize;  // bytes
    uint32_t LastBlock; // in address order
    uint32_t FreeHead;  // first on the free list
};

struct HeapBlock {
    uint32_t PrevBlock; // in address order
    uint32_t NextBlock;
    uint32_t InUse; // 1 or 0
    uint32_t FreePrev;
    uint32_t FreeNext;
    uint32_t PayloadSize; // bytes behind this header, a multiple of 4
};

static_assert(sizeof(HeapHeader) == 12 && sizeof(HeapBlock) == 24);

class PrivateHeap {
  public:
    static constexpr uint32_t FirstBlock = sizeof(HeapHeader);

    // Makes the heap of a bitmap whose rows take so many bytes in plain storage, all of it one free block.
    bool Make(uint64_t plainBytes);
    void Release();

    uint32_t Size() const { return header_->HeapSize; }
    // The payload of a block, until the next call that allocates.
    void* Payload(uint32_t offset) { return &Block(offset) + 1; }

    // Each gives the offset of the block, or 0 when memory is short; a block that there was is whole then.
    uint32_t Allocate(uint64_t bytes);
    uint32_t Resize(uint32_t offset, uint64_t bytes);
    // As Free and Allocate: the content of the block is lost.
    uint32_t Replace(uint32_t offset, uint64_t bytes);

    void Free(uint32_t offset);

    // Makes room for a block of so many bytes at the end. The heap never shrinks here.
    bool Grow(uint64_t bytes);
    // Cuts a free last block to a short one; false when there is none to cut or memory cannot be resized.
    bool Trim();

    const HeapHeader& Header() const { return *header_; }
    HeapBlock& Block(uint32_t offset) const {
        return *reinterpret_cast<HeapBlock*>(reinterpret_cast<uint8_t*>(header_) + offset);
    }

  private:
    bool IsFree(uint32_t offset) const { return offset != 0 && Block(offset).InUse == 0; }
    bool MoveTo(uint64_t size);
    uint32_t FirstFit(uint64_t bytes) const;
    void Take(uint32_t offset, uint64_t bytes);
    void Reclaim(uint32_t offset, uint32_t bytes);
    void Split(uint32_t offset, uint64_t bytes);
    void InsertBehind(uint32_t previous, uint32_t payload);
    void AbsorbNext(uint32_t offset);
    void PutOnFreeList(uint32_t offset);
    void TakeOffFreeList(uint32_t offset);

    HeapHeader* header_;
};

} // namespace zkr::storage
