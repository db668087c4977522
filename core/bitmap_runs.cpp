// Compressed rows in and out of bitmaps. A run-compressed bitmap hands its lists over as they are; rows of
// any other class go through a row of packed bits. What a caller hands in is looked through before anything
// is stored.
#include "core/bitmap_lock.h"
#include "core/exact_rows.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/runs/exchanged_row.h"
#include "core/storage/compressed.h"
#include "zkr13n/allocation.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zkr {

namespace {

using runs::CountWords;
using storage::IsCompressed;
using storage::RunList;
using storage::RunsOf;

// The row of packed bits: the caller's buffer or one of its own, and none for a run-compressed bitmap.
class WorkRow {
  public:
    WorkRow(const BitmapHandle& bitmap, void* given)
        : isNeeded_(!IsCompressed(bitmap)),
          own_(isNeeded_ && given == nullptr ? Z_Malloc(bitmap.BytesPerLine) : nullptr),
          data_(static_cast<uint8_t*>(given != nullptr ? given : own_)) {}
    ~WorkRow() { Z_Free(own_); }
    WorkRow(const WorkRow&) = delete;
    WorkRow& operator=(const WorkRow&) = delete;

    explicit operator bool() const { return data_ != nullptr || !isNeeded_; }
    uint8_t* data() { return data_; }

  private:
    bool isNeeded_;
    void* own_;
    uint8_t* data_;
};

ReturnCode CheckRow(const BitmapHandle* bitmap, const uint16_t* buffer, int32_t row) {
    if (!IsAllocated(bitmap) || (IsCompressed(*bitmap) && bitmap->Addr == nullptr))
        return code::InvalidBitmap;
    return buffer == nullptr || row < 0 ? code::InvalidArgument : code::Success;
}

ReturnCode CheckPlace(const BitmapHandle* bitmap, const uint16_t* buffer, int32_t row, int32_t column) {
    const ReturnCode status = CheckRow(bitmap, buffer, row);
    if (status != code::Success) return status;
    const bool inside = row < bitmap->Height && column >= 0 && column < bitmap->Width;
    return inside ? code::Success : code::InvalidArgument;
}

int32_t RowsFrom(const BitmapHandle& bitmap, int32_t row, int32_t rows) {
    return static_cast<int32_t>(std::min<int64_t>(rows, int64_t{bitmap.Height} - row));
}

RunList ListIn(const uint16_t* row) {
    return {row + CountWords, runs::RunCountOf(row)};
}

bool AreRows(const uint16_t* row, int32_t rows, int32_t width) {
    for (; rows > 0; --rows, row = runs::NextRow(row))
        if (!runs::IsRow(ListIn(row).Runs, ListIn(row).Words, width)) return false;
    return true;
}

// Calls move(row, column, pixels) for the part of each row that a stretch of pixels touches, as long as it
// succeeds.
template <typename Move>
ReturnCode WalkPixels(const BitmapHandle& bitmap, int32_t row, int32_t column, int32_t pixels, Move move) {
    ReturnCode status = code::Success;
    for (; pixels > 0 && row < bitmap.Height && status == code::Success; ++row, column = 0) {
        const int32_t piece = std::min(pixels, bitmap.Width - column);
        status = move(row, column, static_cast<uint32_t>(piece));
        pixels -= piece;
    }
    return status;
}

void GiveList(uint16_t* destination, RunList list) {
    runs::SetRunCount(destination, list.Words);
    std::memcpy(destination + CountWords, list.Runs, list.Words * sizeof(uint16_t));
}

// Lists of a width that the bitmap does not have any more are cut.
void GiveStoredRow(BitmapHandle& bitmap, uint16_t* destination, int32_t row) {
    if (!storage::HasWiderLists(bitmap)) return GiveList(destination, RunsOf(bitmap, row));
    runs::RunWriter writer(destination + CountWords, false);
    runs::RunReader reader = RunsOf(bitmap, row).Reader();
    writer.AppendRuns(reader, static_cast<uint32_t>(bitmap.Width));
    runs::SetRunCount(destination, writer.Words());
}

ReturnCode GiveRow(BitmapHandle& bitmap, uint8_t* work, uint16_t* destination, int32_t row) {
    if (IsCompressed(bitmap)) {
        GiveStoredRow(bitmap, destination, row);
        return code::Success;
    }
    const ReturnCode status = ReadExactly(bitmap, work, row, 0, bitmap.BytesPerLine, code::WriteFailed);
    if (status == code::Success) Z_CompressRow(destination, work, 0, bitmap.Width);
    return status;
}

ReturnCode TakeRow(BitmapHandle& bitmap, uint8_t* work, const uint16_t* source, int32_t row) {
    if (IsCompressed(bitmap))
        return storage::StoreRunList(bitmap, row, ListIn(source)) ? code::Success : code::OutOfMemory;
    std::memset(work, 0, bitmap.BytesPerLine);
    Z_ExpandRow(source, work, 0, bitmap.Width);
    return WriteExactly(bitmap, work, row, 0, bitmap.BytesPerLine);
}

// The whole of a row that has no list. Only every other length is written; the caller has put zeros between.
void GiveBlankRow(uint16_t* destination, int32_t width) {
    constexpr int32_t longestRun = 32767;
    uint32_t words = 1;
    uint16_t* run = destination + CountWords;
    for (; width > longestRun; width -= longestRun, run += 2, words += 2)
        *run = longestRun;
    *run = static_cast<uint16_t>(width);
    runs::SetRunCount(destination, words);
}

void GiveWholeRow(BitmapHandle& bitmap, uint16_t* destination, int32_t row) {
    if (storage::IsBlank(bitmap, row))
        GiveBlankRow(destination, bitmap.Width);
    else
        GiveStoredRow(bitmap, destination, row);
}

ReturnCode GivePixels(BitmapHandle& bitmap, uint8_t* work, runs::RunWriter& writer, int32_t row,
                      int32_t column, uint32_t pixels) {
    const auto start = static_cast<uint32_t>(column);
    if (IsCompressed(bitmap)) {
        const RunList list = RunsOf(bitmap, row);
        runs::RunReader reader = list.Reader();
        reader.Skip(start);
        // The first row begins with the run that holds the column, the following ones with their first word.
        const bool begins = writer.IsEmpty();
        writer.AppendWords(begins ? reader.Word() : list.Runs, list.Runs + list.Words,
                           begins && reader.Ones(), begins ? reader.Behind() : 0, pixels);
        return code::Success;
    }
    const uint32_t bytes = (start % 8 + pixels + 7) / 8;
    const ReturnCode status = ReadExactly(bitmap, work, row, column, bytes, code::WriteFailed);
    if (status == code::Success) writer.AppendBits(work, start % 8, pixels);
    return status;
}

// Puts pixels of a list from one of its pixels on into a part of a row.
ReturnCode TakePixels(BitmapHandle& bitmap, uint8_t* work, RunList list, uint32_t from, int32_t row,
                      int32_t column, uint32_t pixels) {
    if (IsCompressed(bitmap)) {
        runs::RunReader reader = list.Reader();
        reader.Skip(from);
        storage::RowRebuild rebuild(bitmap, row);
        rebuild.KeepTo(static_cast<uint32_t>(column));
        rebuild.PutRuns(reader, pixels);
        return rebuild.Store() ? code::Success : code::OutOfMemory;
    }
    const uint32_t segment[] = {0, pixels};
    std::memset(work, 0, bitmap.BytesPerLine);
    runs::ExpandRuns(list.Runs, list.Words, from, work, pixels);
    return Z_PutBitmapRowSegments(&bitmap, work, row, column, segment, 2, 0);
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_GetBitmapRowCompressed(BitmapHandle* bitmap, void* workBuffer, uint16_t* destination,
                                           int32_t row, int32_t rows) {
    ReturnCode status = CheckRow(bitmap, destination, row);
    if (status != code::Success) return status;
    rows = RowsFrom(*bitmap, row, rows);
    if (rows <= 0) return code::Success;
    WorkRow work(*bitmap, workBuffer);
    if (!work) return code::OutOfMemory;
    const BitmapLock lock(bitmap);
    for (int32_t last = row + rows; row < last && status == code::Success; ++row) {
        status = GiveRow(*bitmap, work.data(), destination, row);
        if (status == code::Success) destination += CountWords + runs::RunCountOf(destination);
    }
    return status;
}

ReturnCode Z_CALL Z_PutBitmapRowCompressed(BitmapHandle* bitmap, void* workBuffer, const uint16_t* source,
                                           int32_t row, int32_t rows) {
    ReturnCode status = CheckRow(bitmap, source, row);
    if (status != code::Success) return status;
    rows = RowsFrom(*bitmap, row, rows);
    if (rows <= 0) return code::Success;
    if (!AreRows(source, rows, bitmap->Width)) return code::InvalidArgument;
    WorkRow work(*bitmap, workBuffer);
    if (!work) return code::OutOfMemory;
    const BitmapLock lock(bitmap);
    for (int32_t last = row + rows; row < last && status == code::Success; ++row) {
        status = TakeRow(*bitmap, work.data(), source, row);
        source = runs::NextRow(source);
    }
    return status;
}

ReturnCode Z_CALL Z_GetBitmapRowColCompressed(BitmapHandle* bitmap, void* workBuffer, uint16_t* destination,
                                              int32_t row, int32_t column, int32_t width) {
    ReturnCode status = CheckPlace(bitmap, destination, row, column);
    if (status != code::Success || width <= 0) return status;
    if (IsCompressed(*bitmap) && column == 0 && width == bitmap->Width) {
        GiveWholeRow(*bitmap, destination, row);
        return code::Success;
    }
    WorkRow work(*bitmap, workBuffer);
    if (!work) return code::OutOfMemory;
    const BitmapLock lock(bitmap);
    runs::RunWriter writer(destination + CountWords, false);
    status = WalkPixels(*bitmap, row, column, width, [&](int32_t index, int32_t first, uint32_t pixels) {
        return GivePixels(*bitmap, work.data(), writer, index, first, pixels);
    });
    runs::SetRunCount(destination, writer.Words());
    return status;
}

ReturnCode Z_CALL Z_PutBitmapRowColCompressed(BitmapHandle* bitmap, void* workBuffer, const uint16_t* source,
                                              int32_t row, int32_t column, int32_t width) {
    ReturnCode status = CheckPlace(bitmap, source, row, column);
    if (status != code::Success || width <= 0) return status;
    if (!AreRows(source, 1, width)) return code::InvalidArgument;
    if (IsCompressed(*bitmap) && column == 0 && width == bitmap->Width)
        return TakeRow(*bitmap, nullptr, source, row);
    WorkRow work(*bitmap, workBuffer);
    if (!work) return code::OutOfMemory;
    const BitmapLock lock(bitmap);
    uint32_t from = 0;
    return WalkPixels(*bitmap, row, column, width, [&](int32_t index, int32_t first, uint32_t pixels) {
        const uint32_t place = std::exchange(from, from + pixels);
        return TakePixels(*bitmap, work.data(), ListIn(source), place, index, first, pixels);
    });
}
