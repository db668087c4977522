// All three moves take pairs of rows from the ends inward, or single rows from the top down, and each is undone by
// being done again. So one loop serves them, and what it has done too much it takes back.
#include "geometry/views/row_moves.h"

#include "core/bitmap_lock.h"
#include "core/exact_rows.h"
#include "core/predicates.h"
#include "core/row_access.h"
#include "core/scratch.h"
#include "core/storage/compressed.h"
#include "geometry/row_progress.h"
#include "zkr13n/convert.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zkr::geometry {

namespace {

void ExchangeBytes(uint8_t* a, uint8_t* b, size_t bytes) {
    uint8_t piece[2048];
    for (size_t size; bytes > 0; a += size, b += size, bytes -= size) {
        size = std::min(bytes, sizeof piece);
        std::memcpy(piece, a, size);
        std::memcpy(a, b, size);
        std::memcpy(b, piece, size);
    }
}

// Each of the classes below moves `count` rows, or pairs of rows (index, Height - 1 - index), from `index` on. The
// middle row may be a pair with itself.

class MemoryRows {
  public:
    MemoryRows(BitmapHandle& bitmap, RowMove move, uint8_t* first)
        : bitmap_(bitmap), move_(move), first_(first) {}

    int32_t GroupRows() const { return 1; }

    ReturnCode Move(int32_t index, int32_t count) {
        for (; count > 0; --count, ++index) {
            uint8_t* const row = RowAt(index);
            uint8_t* const other = RowAt(bitmap_.Height - 1 - index);
            if (move_ != RowMove::Reverse && row != other) ExchangeBytes(row, other, bitmap_.BytesPerLine);
            if (move_ != RowMove::Flip) Mirror(row);
            if (move_ == RowMove::HalfTurn && row != other) Mirror(other);
        }
        return code::Success;
    }

  private:
    uint8_t* RowAt(int32_t row) const { return first_ + static_cast<size_t>(row) * bitmap_.BytesPerLine; }
    void Mirror(uint8_t* row) const { Z_MirrorLine(row, bitmap_.Width, bitmap_.BitsPerPixel); }

    BitmapHandle& bitmap_;
    RowMove move_;
    uint8_t* first_;
};

// Lists change places by their entries.
class RunRows {
  public:
    RunRows(BitmapHandle& bitmap, RowMove move) : bitmap_(bitmap), move_(move) {}

    int32_t GroupRows() const { return 1; }

    ReturnCode Move(int32_t index, int32_t count) {
        for (; count > 0; --count, ++index) {
            const int32_t other = bitmap_.Height - 1 - index;
            if (move_ != RowMove::Flip && !storage::MirrorRow(bitmap_, index)) return code::OutOfMemory;
            if (move_ == RowMove::HalfTurn && index != other && !storage::MirrorRow(bitmap_, other)) {
                storage::MirrorRow(bitmap_, index);
                return code::OutOfMemory;
            }
            storage::RowEntry* const rows = storage::CompressedBlockOf(bitmap_)->Rows();
            if (move_ != RowMove::Reverse) std::swap(rows[index], rows[other]);
        }
        return code::Success;
    }

  private:
    BitmapHandle& bitmap_;
    RowMove move_;
};

// Rows that have to be fetched and brought back. They travel in groups, since rows at both ends of a bitmap lie in
// different strips, tiles or parts of a file.
class FetchedRows {
  public:
    FetchedRows(BitmapHandle& bitmap, RowMove move)
        : bitmap_(bitmap), move_(move), groupRows_(RowsOfGroup(bitmap)), top_(GroupBytes() * 2),
          bottom_(move == RowMove::Reverse ? 0 : GroupBytes() * 2) {}

    explicit operator bool() const { return top_ && (move_ == RowMove::Reverse || bottom_); }
    int32_t GroupRows() const { return groupRows_; }

    ReturnCode Move(int32_t index, int32_t count) {
        const bool pairs = move_ != RowMove::Reverse;
        const int32_t other = bitmap_.Height - index - count;
        ReturnCode status = Read(top_, index, count);
        if (status == code::Success && pairs) status = Read(bottom_, other, count);
        if (status != code::Success) return status;
        status = Write(pairs ? bottom_ : top_, Moved, index, count);
        if (status == code::Success && pairs) status = Write(top_, Moved, other, count);
        if (status == code::Success) return status;
        Write(top_, Kept, index, count);
        if (pairs) Write(bottom_, Kept, other, count);
        return status;
    }

  private:
    // The halves of a buffer: rows as they were read, and as they are to be written.
    static constexpr size_t Kept = 0, Moved = 1;

    static int32_t RowsOfGroup(const BitmapHandle& bitmap) {
        constexpr int32_t most = 16; // rows of a strip
        constexpr uint32_t enough = 1u << 20;
        if (HasFlag(bitmap, flag::SuperCompressed)) return most;
        return static_cast<int32_t>(
            std::clamp<uint32_t>(enough / std::max(bitmap.BytesPerLine, 1u), 1, most));
    }
    size_t GroupBytes() const { return static_cast<size_t>(groupRows_) * bitmap_.BytesPerLine; }

    ReturnCode Read(ScratchBuffer<uint8_t>& buffer, int32_t row, int32_t count) {
        const size_t bytes = bitmap_.BytesPerLine;
        uint8_t* const kept = buffer.data();
        uint8_t* moved = kept + GroupBytes();
        for (int32_t index = 0; index < count; ++index, moved += bytes) {
            uint8_t* const at = kept + static_cast<size_t>(index) * bytes;
            const ReturnCode status = ReadExactly(bitmap_, at, row + index, 0, static_cast<uint32_t>(bytes));
            if (status != code::Success) return status;
        }
        moved = kept + GroupBytes();
        for (int32_t index = 0; index < count; ++index, moved += bytes) {
            const int32_t from = move_ == RowMove::Reverse ? index : count - 1 - index;
            std::memcpy(moved, kept + static_cast<size_t>(from) * bytes, bytes);
            if (move_ != RowMove::Flip) Z_MirrorLine(moved, bitmap_.Width, bitmap_.BitsPerPixel);
        }
        return code::Success;
    }

    ReturnCode Write(ScratchBuffer<uint8_t>& buffer, size_t half, int32_t row, int32_t count) {
        const uint8_t* from = buffer.data() + half * GroupBytes();
        ReturnCode status = code::Success;
        for (; count > 0 && status == code::Success; --count, ++row, from += bitmap_.BytesPerLine)
            status = WriteExactly(bitmap_, from, row, 0, bitmap_.BytesPerLine);
        return status;
    }

    BitmapHandle& bitmap_;
    RowMove move_;
    int32_t groupRows_;
    ScratchBuffer<uint8_t> top_, bottom_;
};

// Moves so many rows or pairs.
template <typename Rows> ReturnCode MoveAll(Rows&& rows, int32_t count, RowProgress& progress) {
    ReturnCode status = progress.Begin();
    for (int32_t index = 0; index < count && status == code::Success;) {
        const int32_t group = std::min(rows.GroupRows(), count - index);
        status = rows.Move(index, group);
        if (status != code::Success) {
            for (; index > 0; --index)
                rows.Move(index - 1, 1);
            return status;
        }
        const int32_t end = index + group;
        for (; index < end && status == code::Success; ++index)
            status = progress.Visit();
        if (index < end) rows.Move(index, end - index);
    }
    return status;
}

int32_t CountOf(const BitmapHandle& bitmap, RowMove move) {
    switch (move) {
    case RowMove::Flip: return bitmap.Height / 2;
    case RowMove::HalfTurn: return bitmap.Height / 2 + bitmap.Height % 2;
    default: return bitmap.Height;
    }
}

} // namespace

ReturnCode MoveRows(BitmapHandle& bitmap, RowMove move, uint32_t start, uint32_t end) {
    const int32_t count = CountOf(bitmap, move);
    if (count <= 0) return code::Success;
    RowProgress progress(start, end, count);
    if (storage::IsCompressed(bitmap)) {
        if (bitmap.Addr == nullptr) return code::InvalidBitmap;
        return MoveAll(RunRows(bitmap, move), count, progress);
    }
    const BitmapLock lock(&bitmap);
    uint8_t* const first = LiesInMemory(bitmap) ? ReachRow(bitmap, 0) : nullptr;
    if (first != nullptr) return MoveAll(MemoryRows(bitmap, move, first), count, progress);
    FetchedRows rows(bitmap, move);
    if (!rows) return code::OutOfMemory;
    return MoveAll(rows, count, progress);
}

} // namespace zkr::geometry
