// The compressed class: 1-bit rows as run lists in a private heap. A read expands a part of a row, a write
// builds the row anew in the scratch row and then asks the heap for its place, so that a heap without memory
// leaves the row as it was.
#include "core/storage/compressed.h"

#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/storage/storage_class.h"
#include "zkr13n/allocation.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <cstring>

namespace zkr::storage {

namespace {

uint64_t ListBytes(uint64_t words) {
    return words * sizeof(uint16_t);
}

uint64_t BlockBytes(int32_t height) {
    return sizeof(CompressedBlock) + static_cast<uint64_t>(height) * sizeof(RowEntry);
}

// The scratch row, and the list of a blank row behind it.
bool MakeLists(CompressedBlock& block, int32_t width) {
    const uint64_t scratchWords = runs::MostWords(width);
    const uint64_t blankWords = static_cast<uint64_t>(width) / runs::LongestRun * 2 + 1;
    const uint64_t bytes = ListBytes(scratchWords + blankWords);
    if (!FitsSize(bytes)) return false;
    block.ScratchRow = static_cast<uint16_t*>(Z_Malloc(static_cast<size_t>(bytes)));
    if (block.ScratchRow == nullptr) return false;
    block.BlankRowRuns = block.ScratchRow + scratchWords;
    block.Width = width;
    runs::RunWriter writer(block.BlankRowRuns, false);
    writer.Append(static_cast<uint64_t>(width), false);
    block.BlankRowLength = writer.Words();
    return true;
}

void ReleaseBlock(CompressedBlock* block) {
    block->Heap.Release();
    Z_Free(block->ScratchRow);
    Z_OsFree(block);
}

void Release(BitmapHandle& bitmap) {
    if (bitmap.Addr == nullptr) return;
    ReleaseBlock(CompressedBlockOf(bitmap));
    static_cast<void>(UpdatePlainSize(bitmap));
}

// Size follows whatever may have made the heap grow.
void RefreshSize(BitmapHandle& bitmap) {
    bitmap.Size = CompressedBlockOf(bitmap)->Heap.Size();
}

// Calls move(row, first pixel, pixels, buffer, bytes) for the piece of a transfer in each row that it
// touches; false ends the transfer for want of memory. Rows lie BytesPerLine apart in the buffer, and what
// runs past the last row stops there.
template <typename Byte, typename Move>
ReturnCode WalkPieces(BitmapHandle& bitmap, Byte* buffer, int32_t row, int32_t column, uint32_t bytes,
                      Move move) {
    const auto width = static_cast<uint32_t>(bitmap.Width);
    uint32_t first = static_cast<uint32_t>(column) & ~7u;
    if (bitmap.Addr == nullptr) return code::InvalidBitmap;
    if (first >= width) return code::InvalidArgument;
    for (uint32_t left = bytes; left > 0 && row >= 0 && row < bitmap.Height; ++row) {
        const uint32_t piece = std::min(left, bitmap.BytesPerLine - first / 8);
        const auto pixels = static_cast<uint32_t>(std::min<uint64_t>(uint64_t{piece} * 8, width - first));
        if (!move(row, first, pixels, buffer, piece)) return code::OutOfMemory;
        buffer += piece;
        left -= piece;
        first = 0;
    }
    return static_cast<ReturnCode>(bytes);
}

ReturnCode Read(BitmapHandle& bitmap, uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes) {
    const auto expand = [&bitmap](int32_t index, uint32_t first, uint32_t pixels, uint8_t* to,
                                  uint32_t piece) {
        const RunList list = RunsOf(bitmap, index);
        std::memset(to, 0, piece);
        runs::ExpandRuns(list.Runs, list.Words, first, to, pixels);
        return true;
    };
    return WalkPieces(bitmap, buffer, row, column, bytes, expand);
}

// The old list of a row that is written whole is of no use to the new one: its memory goes first.
bool WriteWholeRow(BitmapHandle& bitmap, int32_t row, const uint8_t* source) {
    CompressedBlock& block = *CompressedBlockOf(bitmap);
    RowEntry& entry = block.Rows()[row];
    runs::RunWriter writer(block.ScratchRow, false);
    writer.AppendBits(source, 0, static_cast<uint32_t>(bitmap.Width));
    const uint64_t bytes = ListBytes(writer.Words());
    const uint32_t offset =
        entry.Offset == 0 ? block.Heap.Allocate(bytes) : block.Heap.Replace(entry.Offset, bytes);
    if (offset == 0) return false;
    entry = {offset, writer.Words()};
    std::memcpy(block.Heap.Payload(offset), block.ScratchRow, static_cast<size_t>(bytes));
    RefreshSize(bitmap);
    return true;
}

ReturnCode Write(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes) {
    const auto splice = [&bitmap](int32_t index, uint32_t first, uint32_t pixels, const uint8_t* from,
                                  uint32_t) {
        if (pixels == static_cast<uint32_t>(bitmap.Width)) return WriteWholeRow(bitmap, index, from);
        RowRebuild rebuild(bitmap, index);
        rebuild.KeepTo(first);
        rebuild.PutBits(from, 0, pixels);
        return rebuild.Store();
    };
    return WalkPieces(bitmap, buffer, row, column, bytes, splice);
}

// Rows that go are lost even where the block cannot be resized.
ReturnCode ChangeHeight(BitmapHandle& bitmap, int32_t height) {
    CompressedBlock* block = CompressedBlockOf(bitmap);
    if (block == nullptr) return code::InvalidBitmap;
    const int32_t kept = std::min(bitmap.Height, height);
    for (int32_t row = kept; row < bitmap.Height; ++row) {
        RowEntry& entry = block->Rows()[row];
        if (entry.Offset != 0) block->Heap.Free(entry.Offset);
    }
    bitmap.Height = kept;
    RefreshSize(bitmap);

    const uint64_t bytes = BlockBytes(height);
    if (!FitsSize(bytes)) return code::OutOfMemory;
    block = static_cast<CompressedBlock*>(Z_OsReAlloc(block, static_cast<size_t>(bytes)));
    if (block == nullptr) return code::OutOfMemory;
    std::fill(block->Rows() + kept, block->Rows() + height, RowEntry{});
    bitmap.Addr = block;
    bitmap.Height = height;
    return code::Success;
}

// Runs change(heap) and tells whether it went well.
template <typename Change> int32_t ChangeHeap(BitmapHandle* bitmap, Change change) {
    if (!IsAllocated(bitmap) || !IsCompressed(*bitmap) || bitmap->Addr == nullptr)
        return code::InvalidArgument;
    const bool changed = change(CompressedBlockOf(*bitmap)->Heap);
    RefreshSize(*bitmap);
    return changed ? 1 : 0;
}

// The sum is one of words, unlike Size at all other times.
ReturnCode UpdateSize(BitmapHandle& bitmap) {
    CompressedBlock* const block = CompressedBlockOf(bitmap);
    if (block == nullptr) return code::InvalidBitmap;
    size_t words = 0;
    for (int32_t row = 0; row < bitmap.Height; ++row)
        words += block->Rows()[row].Length;
    bitmap.Size = words;
    return code::Success;
}

} // namespace

ReturnCode BuildCompressed(BitmapHandle& bitmap) {
    const uint64_t bytes = BlockBytes(bitmap.Height);
    if (!FitsSize(bytes)) return code::OutOfMemory;
    auto* const block = static_cast<CompressedBlock*>(Z_OsAllocInit(static_cast<size_t>(bytes), 1));
    if (block == nullptr) return code::OutOfMemory;
    if (!MakeLists(*block, bitmap.Width) || !block->Heap.Make(RowsBytes(bitmap, bitmap.Height))) {
        ReleaseBlock(block);
        return code::OutOfMemory;
    }
    bitmap.Addr = block;
    RefreshSize(bitmap);
    return code::Success;
}

RunList RunsOf(const BitmapHandle& bitmap, int32_t row) {
    CompressedBlock& block = *CompressedBlockOf(bitmap);
    const RowEntry entry = block.Rows()[row];
    if (entry.Offset == 0) return {block.BlankRowRuns, block.BlankRowLength};
    return {static_cast<const uint16_t*>(block.Heap.Payload(entry.Offset)), entry.Length};
}

bool StoreRunList(BitmapHandle& bitmap, int32_t row, RunList list) {
    CompressedBlock& block = *CompressedBlockOf(bitmap);
    RowEntry& entry = block.Rows()[row];
    const uint64_t bytes = ListBytes(list.Words);
    uint32_t offset = entry.Offset;
    if (offset == 0)
        offset = block.Heap.Allocate(bytes);
    else if (entry.Length != list.Words)
        offset = block.Heap.Resize(offset, bytes);
    if (offset == 0) return false;
    entry = {offset, list.Words};
    std::memcpy(block.Heap.Payload(offset), list.Runs, static_cast<size_t>(bytes));
    RefreshSize(bitmap);
    return true;
}

bool RowRebuild::Store() {
    if (position_ == 0) return true;
    KeepTo(static_cast<uint32_t>(bitmap_.Width));
    return StoreRunList(bitmap_, row_, {CompressedBlockOf(bitmap_)->ScratchRow, writer_.Words()});
}

bool MirrorRow(BitmapHandle& bitmap, int32_t row) {
    CompressedBlock& block = *CompressedBlockOf(bitmap);
    if (IsBlank(bitmap, row)) return true;
    RunList list = RunsOf(bitmap, row);
    uint32_t words = runs::MirroredWords(list.Runs, list.Words);
    if (words > runs::MostWords(bitmap.Width)) {
        // A list from outside that spends words on empty runs is written the short way first.
        RowRebuild rebuild(bitmap, row);
        rebuild.KeepTo(static_cast<uint32_t>(bitmap.Width));
        if (!rebuild.Store()) return false;
        list = RunsOf(bitmap, row);
        words = runs::MirroredWords(list.Runs, list.Words);
    }
    runs::MirrorRuns(list.Runs, list.Words, block.ScratchRow);
    return StoreRunList(bitmap, row, {block.ScratchRow, words});
}

const StorageClass Compressed = {
    .MemoryType = MemoryCompressed,
    .Release = Release,
    .Read = Read,
    .Write = Write,
    .ReachRow = [](BitmapHandle&, int32_t) -> uint8_t* { return nullptr; },
    .ChangeHeight = ChangeHeight,
    .UpdateSize = UpdateSize,
};

} // namespace zkr::storage

int32_t Z_CALL Z_TrimBitmapHeap(BitmapHandle* bitmap) {
    return zkr::storage::ChangeHeap(bitmap, [](zkr::storage::PrivateHeap& heap) { return heap.Trim(); });
}

int32_t Z_CALL Z_GrowBitmapHeap(BitmapHandle* bitmap, uint32_t bytes) {
    return zkr::storage::ChangeHeap(bitmap,
                                    [bytes](zkr::storage::PrivateHeap& heap) { return heap.Grow(bytes); });
}
