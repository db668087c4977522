// The control block of a run-compressed bitmap, its rows as run lists, and how a row gets another list.
//
// Invariants: the list of a row has Width pixels and at most MostWords(Width) words; a row without one is
// blank; no other block of the heap is in use.
#pragma once

#include "core/flags.h"
#include "core/runs/run_list.h"
#include "core/storage/private_heap.h"
#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>

namespace zkr::storage {

struct RowEntry {
    uint32_t Offset; // of the heap block with the row's list, 0 for a blank row
    uint32_t Length; // 16-bit words
};

struct alignas(8) CompressedBlock {
    uint16_t* ScratchRow;   // room for the longest list that a row can have
    uint16_t* BlankRowRuns; // the list of a blank row, in the same memory
    uint32_t BlankRowLength;
    int32_t Width; // that the lists were made for; the record's own may have become smaller
    PrivateHeap Heap;

    RowEntry* Rows() { return reinterpret_cast<RowEntry*>(this + 1); }
};

// Null for a record that claims the class and has nothing of it.
inline CompressedBlock* CompressedBlockOf(const BitmapHandle& bitmap) {
    return static_cast<CompressedBlock*>(bitmap.Addr);
}

inline bool IsCompressed(const BitmapHandle& bitmap) {
    return HasFlag(bitmap, flag::Compressed);
}

// A row's list, until the next call that changes the bitmap.
struct RunList {
    const uint16_t* Runs;
    uint32_t Words;

    runs::RunReader Reader() const { return {Runs, Words}; }
};
RunList RunsOf(const BitmapHandle& bitmap, int32_t row);

// Whether a row has no list of its own.
inline bool IsBlank(const BitmapHandle& bitmap, int32_t row) {
    return CompressedBlockOf(bitmap)->Rows()[row].Offset == 0;
}

// Whether lists can be longer than the record's width tells.
inline bool HasWiderLists(const BitmapHandle& bitmap) {
    return CompressedBlockOf(bitmap)->Width > bitmap.Width;
}

// Gives a row another list, which lies outside the heap. False when memory is short; the row is as it was
// then.
bool StoreRunList(BitmapHandle& bitmap, int32_t row, RunList list);

// Builds a row anew from left to right, of pixels that it has and of new ones.
class RowRebuild {
  public:
    RowRebuild(BitmapHandle& bitmap, int32_t row)
        : bitmap_(bitmap), row_(row), old_(RunsOf(bitmap, row).Reader()),
          writer_(CompressedBlockOf(bitmap)->ScratchRow, false) {}

    // Pixels of the new row so far.
    uint32_t Position() const { return position_; }

    // Keeps the old pixels up to a column.
    void KeepTo(uint32_t column) {
        writer_.AppendRuns(old_, column - position_);
        position_ = column;
    }
    void PutBits(const uint8_t* source, uint32_t skip, uint32_t pixels) {
        writer_.AppendBits(source, skip, pixels);
        Pass(pixels);
    }
    void PutRuns(runs::RunReader& source, uint32_t pixels) {
        writer_.AppendRuns(source, pixels);
        Pass(pixels);
    }

    // Keeps the rest, and stores the row unless all of it is kept. False when memory is short; the row is as
    // it was then.
    bool Store();

  private:
    void Pass(uint32_t pixels) {
        old_.Skip(pixels);
        position_ += pixels;
    }

    BitmapHandle& bitmap_;
    int32_t row_;
    runs::RunReader old_;
    runs::RunWriter writer_;
    uint32_t position_ = 0;
};

// Mirrors a row left to right where it lies. False when memory is short; the row is as it was then.
bool MirrorRow(BitmapHandle& bitmap, int32_t row);

} // namespace zkr::storage
