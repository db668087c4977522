// Quarter turns: each row of the source becomes a column of the result. Rows are taken in bands, so that the result
// grows by whole bytes and by more than one pixel of a row at a time. A result that does not lie in memory is made
// band by band in a buffer, and the source is gone through once for each.
#include "geometry/rotate/quarter_turn.h"

#include "core/bitmap_lock.h"
#include "core/exact_rows.h"
#include "core/predicates.h"
#include "core/replacement.h"
#include "core/return_codes.h"
#include "core/row_access.h"
#include "core/scratch.h"
#include "core/views.h"
#include "geometry/kernels/turn_kernels.h"
#include "geometry/rotate/turn_region.h"
#include "geometry/rotate/turn_runs.h"
#include "geometry/row_progress.h"
#include "kernels/family.h"
#include "zkr13n/rotate.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zkr::geometry {

namespace {

// Bands of both bitmaps begin at multiples of this, where a byte begins at every depth.
constexpr int32_t BandUnit = 8;

constexpr int32_t ToUnits(int32_t pixels) {
    return std::max(pixels / BandUnit * BandUnit, BandUnit);
}

// Rows of a bitmap for as long as it is locked: where they lie in memory, or else by transfer.
struct RowPlace {
    explicit RowPlace(BitmapHandle& bitmap)
        : Bitmap(bitmap), First(LiesInMemory(bitmap) ? ReachRow(bitmap, 0) : nullptr) {}

    uint8_t* At(int32_t row) const { return First + static_cast<size_t>(row) * Bitmap.BytesPerLine; }

    BitmapHandle& Bitmap;
    uint8_t* First; // null where they do not lie in one piece
};

class Turn {
  public:
    Turn(BitmapHandle& target, BitmapHandle& source, bool clockwise)
        : target_(target), source_(source), clockwise_(clockwise), bits_(source.BitsPerPixel),
          isStreamed_(IsStreamed(target_)),
          bandRows_(isStreamed_ ? Kernels().StreamedRows : RowsOfBand(source)),
          bandColumns_(isStreamed_ ? source.Width : ColumnsOfBand(target_, source_)),
          rows_(source_.First != nullptr ? 1 : static_cast<size_t>(bandRows_) * source.BytesPerLine),
          band_(target_.First != nullptr ? 1 : static_cast<size_t>(bandColumns_) * target.BytesPerLine),
          pending_(isStreamed_ ? static_cast<size_t>(bandColumns_) * kernels::LineBytes : 1) {}

    explicit operator bool() const { return rows_ && band_ && pending_; }

    int32_t Passes() const { return (source_.Bitmap.Width - 1) / bandColumns_ + 1; }

    ReturnCode Run(RowProgress& progress) {
        ReturnCode status = code::Success;
        for (int32_t x = 0; x < source_.Bitmap.Width && status == code::Success; x += columns_) {
            columns_ = std::min(bandColumns_, source_.Bitmap.Width - x);
            if (target_.First == nullptr)
                std::memset(band_.data(), 0, static_cast<size_t>(columns_) * target_.Bitmap.BytesPerLine);
            status = TurnColumns(x, progress);
            if (status == code::Success && target_.First == nullptr) status = StoreBand(x);
        }
        return status;
    }

  private:
    static const kernels::TurnKernels& Kernels() { return kernels::Chosen<kernels::TurnKernels>(); }

    // What is larger than caches are goes past them.
    static bool IsStreamed(const RowPlace& target) {
        constexpr size_t larger = size_t{16} << 20;
        return Kernels().StreamedRows != 0 && target.First != nullptr && target.Bitmap.BitsPerPixel >= 24 &&
               target.Bitmap.Size >= larger;
    }
    // Enough rows for whole lines of cache in the result.
    static int32_t RowsOfBand(const BitmapHandle& source) {
        constexpr uint32_t enough = 1u << 20;
        const int32_t most = source.BitsPerPixel == 1 ? 512 : 64;
        const uint32_t rows = enough / std::max(source.BytesPerLine, 1u);
        return ToUnits(static_cast<int32_t>(std::min<uint32_t>(rows, static_cast<uint32_t>(most))));
    }
    // Between rows in memory the band is one that stays in cache until all of it has been made: memory that is new costs
    // much when it is first touched, and again when it comes back. In a buffer it is what a small bitmap may take when
    // it is turned as a whole.
    static int32_t ColumnsOfBand(const RowPlace& target, const RowPlace& source) {
        constexpr uint32_t ofCache = 1u << 20, ofBuffer = 18000000;
        constexpr int32_t unit = 128; // whole tiles of every kernel, and lines of the source
        if (target.First != nullptr && source.First == nullptr) return target.Bitmap.Height;
        const uint32_t bytes = target.First != nullptr ? ofCache : ofBuffer;
        const auto fitting = static_cast<int32_t>(bytes / std::max(target.Bitmap.BytesPerLine, 1u));
        const int32_t columns =
            target.First != nullptr ? std::max(fitting / unit, 1) * unit : ToUnits(fitting);
        return std::min(columns, target.Bitmap.Height);
    }

    int32_t SourceRow(int32_t y) const { return clockwise_ ? source_.Bitmap.Height - 1 - y : y; }
    int32_t TargetRow(int32_t x) const { return clockwise_ ? x : source_.Bitmap.Width - 1 - x; }
    size_t BytesTo(int32_t pixel) const { return static_cast<size_t>(int64_t{pixel} * bits_ / 8); }

    ReturnCode TurnColumns(int32_t x, RowProgress& progress) {
        const auto turn = Kernels().Of(bits_);
        kernels::TurnBlock block{};
        block.Columns = static_cast<size_t>(columns_);
        block.Bits = bits_;
        block.Pending = isStreamed_ ? pending_.data() : nullptr;
        ReturnCode status = code::Success;
        for (int32_t y = 0, rows; y < source_.Bitmap.Height && status == code::Success; y += rows) {
            rows = std::min(bandRows_, source_.Bitmap.Height - y);
            status = FetchRows(x, y, rows, block);
            if (status != code::Success) break;
            PlaceColumns(x, y, block);
            block.IsFirst = y == 0;
            if (rows < bandRows_ && !block.IsFirst) WritePending(block);
            turn(block);
            for (int32_t row = 0; row < rows && status == code::Success; ++row)
                status = progress.Visit();
        }
        if (status == code::Success && source_.Bitmap.Height % bandRows_ == 0) {
            PlaceColumns(x, source_.Bitmap.Height, block);
            WritePending(block);
        }
        return status;
    }

    ReturnCode FetchRows(int32_t x, int32_t y, int32_t rows, kernels::TurnBlock& block) {
        const auto stride = static_cast<ptrdiff_t>(source_.Bitmap.BytesPerLine);
        block.Rows = static_cast<size_t>(rows);
        if (source_.First != nullptr) {
            block.Source = source_.At(SourceRow(y)) + BytesTo(x);
            block.SourceStride = clockwise_ ? -stride : stride;
            return code::Success;
        }
        const auto bytes = static_cast<uint32_t>((int64_t{columns_} * bits_ + 7) / 8);
        block.Source = rows_.data();
        block.SourceStride = stride;
        ReturnCode status = code::Success;
        for (int32_t row = 0; row < rows && status == code::Success; ++row)
            status = ReadExactly(source_.Bitmap, rows_.data() + row * stride, SourceRow(y + row), x, bytes);
        return status;
    }

    // Where column y of the result begins, in row x of it and the following ones.
    void PlaceColumns(int32_t x, int32_t y, kernels::TurnBlock& block) {
        const auto stride = static_cast<ptrdiff_t>(target_.Bitmap.BytesPerLine);
        const bool inMemory = target_.First != nullptr;
        block.Target = (inMemory ? target_.At(TargetRow(x)) : band_.data()) + BytesTo(y);
        block.TargetStride = inMemory && !clockwise_ ? -stride : stride;
    }

    // The beginnings of the lines of cache in which the placed block begins.
    void WritePending(const kernels::TurnBlock& block) {
        if (!isStreamed_) return;
        uint8_t* to = block.Target;
        for (size_t column = 0; column < block.Columns; ++column, to += block.TargetStride) {
            const size_t bytes = reinterpret_cast<uintptr_t>(to) % kernels::LineBytes;
            std::memcpy(to - bytes, block.Pending + column * kernels::LineBytes, bytes);
        }
    }

    // Strips are best written from the first row on.
    ReturnCode StoreBand(int32_t x) {
        ReturnCode status = code::Success;
        for (int32_t i = 0; i < columns_ && status == code::Success; ++i) {
            const int32_t column = clockwise_ ? i : columns_ - 1 - i;
            const uint8_t* const row =
                band_.data() + static_cast<size_t>(column) * target_.Bitmap.BytesPerLine;
            status = WriteExactly(target_.Bitmap, row, TargetRow(x + column), 0, target_.Bitmap.BytesPerLine);
        }
        return status;
    }

    RowPlace target_, source_;
    bool clockwise_;
    int32_t bits_;
    bool isStreamed_;
    int32_t bandRows_, bandColumns_;
    int32_t columns_ = 0; // of the band at hand
    ScratchBuffer<uint8_t> rows_, band_;
    ScratchBuffer<uint8_t> pending_; // of lines of cache
};

ReturnCode TurnPlain(BitmapHandle& target, BitmapHandle& source, bool clockwise, uint32_t start,
                     uint32_t end) {
    const BitmapLock lockSource(&source);
    const BitmapLock lockTarget(&target);
    Turn turn(target, source, clockwise);
    if (!turn) return code::OutOfMemory;
    RowProgress progress(start, end, source.Height, turn.Passes());
    const ReturnCode status = progress.Begin();
    return status == code::Success ? turn.Run(progress) : status;
}

ReturnCode TurnInto(BitmapHandle& target, BitmapHandle& source, int32_t direction, uint32_t start,
                    uint32_t end) {
    const bool clockwise = (direction != 0) != IsMirroredView(source.ViewPerspective);
    if (!HasFlag(source, flag::Compressed) || !HasFlag(target, flag::Compressed))
        return TurnPlain(target, source, clockwise, start, end);
    RowProgress progress(start, end, source.Height, RunPasses);
    const ReturnCode status = progress.Begin();
    return status == code::Success ? TurnRuns(target, source, clockwise, progress) : status;
}

} // namespace

ReturnCode MakeQuarterTurn(BitmapHandle& result, BitmapHandle& source, int32_t direction, uint32_t owned,
                           uint32_t start, uint32_t end) {
    const ReturnCode status =
        Z_DupBitmapNewDim(&result, &source, source.Height, source.Width, source.BitsPerPixel, owned);
    if (status != code::Success) return status;
    std::swap(result.XResolution, result.YResolution);
    return TurnInto(result, source, direction, start, end);
}

} // namespace zkr::geometry

using namespace zkr;

ReturnCode Z_CALL Z_RotateBitmap90(BitmapHandle* bitmap, int32_t direction, uint32_t start, uint32_t end) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    BitmapReplacement replacement(bitmap);
    BitmapHandle& result = replacement.record();
    ReturnCode status = geometry::MakeQuarterTurn(result, *bitmap, direction, Z_DUP_DATA, start, end);
    if (status == code::Success)
        status = geometry::TurnRegion(result, *bitmap, direction == 0 ? -9000 : 9000);
    if (status == code::Success) replacement.Commit();
    return status;
}
