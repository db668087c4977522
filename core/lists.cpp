// Bitmap lists: a small movable block that counts the items and points at their records. The list owns the
// storage of its items. The handle of the block is the handle of the list; the block itself never moves,
// because it stays locked from its allocation on.
#include "zkr13n/lists.h"

#include "core/return_codes.h"
#include "platform/memory.h"
#include "zkr13n/allocation.h"
#include "zkr13n/copy.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

using namespace zkr;

namespace {

struct ListBlock {
    uint32_t ItemCount;
    BitmapHandle* Items; // null for an empty list
};

// Null for what is not the handle of a list.
ListBlock* BlockOf(BitmapList list) {
    if (list == nullptr || platform::GlobalSize(list) < sizeof(ListBlock)) return nullptr;
    auto* block = static_cast<ListBlock*>(platform::GlobalLock(list));
    if (block != nullptr) platform::GlobalUnlock(list);
    return block;
}

// Null when there are no items to be reached at the index.
ListBlock* BlockWithItem(BitmapList list, uint32_t index) {
    ListBlock* block = BlockOf(list);
    return block != nullptr && index < block->ItemCount ? block : nullptr;
}

size_t Bytes(uint32_t items) {
    return size_t{items} * sizeof(BitmapHandle);
}

bool FitsMemory(uint32_t items) {
    return items <= SIZE_MAX / sizeof(BitmapHandle);
}

// Closes the gap of items that now belong to somebody else. That memory may not shrink does no harm.
void CloseGap(ListBlock& block, uint32_t index, uint32_t count) {
    BitmapHandle* gap = block.Items + index;
    std::memmove(gap, gap + count, Bytes(block.ItemCount - index - count));
    block.ItemCount -= count;
    if (block.ItemCount == 0) {
        Z_OsFree(block.Items);
        block.Items = nullptr;
    } else if (void* shrunk = Z_OsReAlloc(block.Items, Bytes(block.ItemCount)); shrunk != nullptr) {
        block.Items = static_cast<BitmapHandle*>(shrunk);
    }
}

// A list under construction, destroyed unless it is handed over.
class NewList {
  public:
    NewList() : status_(Z_CreateBitmapList(&list_)) {}
    ~NewList() {
        if (list_ != nullptr) Z_DestroyBitmapList(list_);
    }
    NewList(const NewList&) = delete;
    NewList& operator=(const NewList&) = delete;

    ReturnCode status() const { return status_; }
    BitmapList get() const { return list_; }
    ReturnCode HandOver(BitmapList* listOut) {
        *listOut = list_;
        list_ = nullptr;
        return code::Success;
    }

  private:
    BitmapList list_ = nullptr;
    ReturnCode status_;
};

// The item is read anew each time: a callback of the copy before may have changed the list.
ReturnCode AppendCopy(BitmapList list, BitmapList source, uint32_t index) {
    BitmapHandle item;
    BitmapHandle copy;
    ReturnCode status = Z_GetBitmapListItem(source, index, &item);
    if (status == code::Success) status = Z_CopyBitmap(&copy, &item);
    if (status != code::Success) return status;
    status = Z_InsertBitmapListItem(list, UINT32_MAX, &copy);
    if (status != code::Success) Z_FreeBitmap(&copy);
    return status;
}

} // namespace

ReturnCode Z_CALL Z_CreateBitmapList(BitmapList* listOut) {
    if (listOut == nullptr) return code::InvalidArgument;
    *listOut = nullptr;
    void* block = Z_OsAllocInit(sizeof(ListBlock), 1);
    if (block == nullptr) return code::OutOfMemory;
    *listOut = platform::GlobalHandle(block);
    return code::Success;
}

ReturnCode Z_CALL Z_DestroyBitmapList(BitmapList list) {
    ListBlock* block = BlockOf(list);
    if (block == nullptr) return code::InvalidArgument;
    Z_DeleteBitmapListItems(list, 0, UINT32_MAX);
    Z_OsFree(block);
    return code::Success;
}

ReturnCode Z_CALL Z_GetBitmapListCount(BitmapList list, uint32_t* countOut) {
    const ListBlock* block = BlockOf(list);
    if (block == nullptr || countOut == nullptr) return code::InvalidArgument;
    *countOut = block->ItemCount;
    return code::Success;
}

ReturnCode Z_CALL Z_GetBitmapListItem(BitmapList list, uint32_t index, BitmapHandle* bitmap) {
    const ListBlock* block = BlockWithItem(list, index);
    if (block == nullptr || bitmap == nullptr) return code::InvalidArgument;
    *bitmap = block->Items[index];
    return code::Success;
}

ReturnCode Z_CALL Z_SetBitmapListItem(BitmapList list, uint32_t index, const BitmapHandle* bitmap) {
    const ListBlock* block = BlockWithItem(list, index);
    if (block == nullptr) return code::InvalidArgument;
    block->Items[index] = bitmap != nullptr ? *bitmap : BitmapHandle{};
    return code::Success;
}

ReturnCode Z_CALL Z_InsertBitmapListItem(BitmapList list, uint32_t index, const BitmapHandle* bitmap) {
    ListBlock* block = BlockOf(list);
    if (block == nullptr) return code::InvalidArgument;
    const uint32_t count = block->ItemCount;
    if (count == UINT32_MAX || !FitsMemory(count + 1)) return code::OutOfMemory;
    void* grown = Z_OsReAlloc(block->Items, Bytes(count + 1));
    if (grown == nullptr) return code::OutOfMemory;
    block->Items = static_cast<BitmapHandle*>(grown);
    block->ItemCount = count + 1;
    BitmapHandle* place = block->Items + std::min(index, count);
    std::memmove(place + 1, place, Bytes(count - std::min(index, count)));
    *place = bitmap != nullptr ? *bitmap : BitmapHandle{};
    return code::Success;
}

ReturnCode Z_CALL Z_RemoveBitmapListItem(BitmapList list, uint32_t index, BitmapHandle* bitmapOut) {
    ListBlock* block = BlockWithItem(list, index);
    if (block == nullptr) return code::InvalidArgument;
    if (bitmapOut != nullptr) *bitmapOut = block->Items[index];
    CloseGap(*block, index, 1);
    return code::Success;
}

ReturnCode Z_CALL Z_DeleteBitmapListItems(BitmapList list, uint32_t index, uint32_t count) {
    const ListBlock* block = BlockWithItem(list, index);
    if (block == nullptr || count == 0) return code::InvalidArgument;
    const uint32_t end = index + std::min(count, block->ItemCount - index);
    for (uint32_t last = end; last-- > index;) { // from the end, where fewest items have to move
        BitmapHandle item;
        const ReturnCode status = Z_RemoveBitmapListItem(list, last, &item);
        if (status != code::Success) return status;
        Z_FreeBitmap(&item);
    }
    return code::Success;
}

ReturnCode Z_CALL Z_CopyBitmapListItems(BitmapList* listOut, BitmapList list, uint32_t index,
                                        uint32_t count) {
    const ListBlock* block = BlockWithItem(list, index);
    if (block == nullptr || count == 0 || listOut == nullptr) return code::InvalidArgument;
    NewList copies;
    if (copies.status() != code::Success) return copies.status();
    const uint32_t end = index + std::min(count, block->ItemCount - index);
    for (uint32_t item = index; item < end; ++item) {
        const ReturnCode status = AppendCopy(copies.get(), list, item);
        if (status != code::Success) return status;
    }
    return copies.HandOver(listOut);
}

ReturnCode Z_CALL Z_MoveBitmapListItems(BitmapList* listOut, BitmapList list, uint32_t index,
                                        uint32_t count) {
    ListBlock* block = BlockOf(list);
    if (block == nullptr || index > block->ItemCount || count == 0 || listOut == nullptr)
        return code::InvalidArgument;
    NewList moved;
    if (moved.status() != code::Success) return moved.status();
    count = std::min(count, block->ItemCount - index);
    if (count != 0) {
        ListBlock* target = BlockOf(moved.get());
        if (target == nullptr) return code::OutOfMemory;
        target->Items = static_cast<BitmapHandle*>(Z_OsAlloc(Bytes(count)));
        if (target->Items == nullptr) return code::OutOfMemory;
        target->ItemCount = count;
        std::memcpy(target->Items, block->Items + index, Bytes(count));
        CloseGap(*block, index, count);
    }
    return moved.HandOver(listOut);
}
