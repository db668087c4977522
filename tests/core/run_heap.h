// Looks a run-compressed bitmap through: its heap block by block, its free list, and its rows.
#pragma once

#include "core/storage/compressed.h"
#include "core/test_bitmaps.h"

#include <set>

namespace zkr::test {

inline void ExpectFreeList(const storage::PrivateHeap& heap, const std::set<uint32_t>& free) {
    std::set<uint32_t> listed;
    uint32_t previous = 0;
    for (uint32_t offset = heap.Header().FreeHead; offset != 0; offset = heap.Block(offset).FreeNext) {
        ASSERT_TRUE(listed.insert(offset).second) << "the free list is a ring";
        ASSERT_EQ(heap.Block(offset).FreePrev, previous);
        previous = offset;
    }
    EXPECT_EQ(listed, free);
}

inline void ExpectConsistent(BitmapHandle& bitmap) {
    const storage::PrivateHeap& heap = storage::CompressedBlockOf(bitmap)->Heap;
    std::set<uint32_t> used, free, rows;
    uint32_t previous = 0, end = storage::PrivateHeap::FirstBlock;
    for (uint32_t offset = end; offset != 0; offset = heap.Block(previous).NextBlock) {
        const storage::HeapBlock& block = heap.Block(offset);
        ASSERT_EQ(offset, end) << "a gap";
        ASSERT_EQ(block.PrevBlock, previous);
        ASSERT_EQ(block.PayloadSize % 4, 0u);
        ASSERT_FALSE(block.InUse == 0 && free.count(previous) != 0) << "free neighbours";
        (block.InUse != 0 ? used : free).insert(offset);
        previous = offset;
        end = offset + 24 + block.PayloadSize;
        ASSERT_LE(end, heap.Size());
    }
    EXPECT_EQ(heap.Header().LastBlock, previous);
    ExpectFreeList(heap, free);

    for (int32_t row = 0; row < bitmap.Height; ++row) {
        const storage::RowEntry entry = storage::CompressedBlockOf(bitmap)->Rows()[row];
        const storage::RunList list = storage::RunsOf(bitmap, row);
        ASSERT_TRUE(runs::IsRow(list.Runs, list.Words, bitmap.Width)) << "row " << row;
        if (entry.Offset == 0) continue;
        ASSERT_TRUE(rows.insert(entry.Offset).second) << "rows that share a block";
        ASSERT_GE(heap.Block(entry.Offset).PayloadSize, entry.Length * 2);
    }
    EXPECT_EQ(rows, used) << "blocks in use and rows are not the same";
    EXPECT_EQ(bitmap.Size, heap.Size());
}

} // namespace zkr::test
