// A row is combined where it stands when it is in memory and its bytes, or all but the outermost, are written whole;
// else its result goes through Z_PutBitmapRowSegments, which is exact to the pixel and knows about alpha. Spans of
// packed pixels begin at a pixel that begins a byte, in the source and in the target; where the wanted pixel then has
// another place in the span, the source is moved to the target's phase.
#include "geometry/combine/combine_rows.h"

#include "core/assertion.h"
#include "core/bit_merge.h"
#include "core/bitmap_lock.h"
#include "core/dispatch.h"
#include "core/predicates.h"
#include "core/progress.h"
#include "core/rectangle.h"
#include "core/row_access.h"
#include "core/row_copy.h"
#include "core/scratch.h"
#include "core/views.h"
#include "geometry/combine/merged_region.h"
#include "geometry/combine/row_operation.h"
#include "zkr13n/rows.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>

namespace zkr::geometry {

namespace {

// What is left of the areas. Rows and columns of the source are those of the target and these distances; rows of a
// source that runs the other way are counted from its last one.
struct ClippedAreas {
    PixelRect Target;
    int32_t ColumnsToSource, RowsToSource;
    bool IsMirrored;
};

// Pixels of a row from one that begins a byte.
struct Span {
    Span(int32_t bits, int32_t left, int32_t width) {
        const int32_t step = bits % 8 == 0 ? 1 : bits == 12 || bits == 4 ? 2 : bits == 2 ? 4 : 8;
        Lead = left % step;
        Start = left - Lead;
        Pixels = static_cast<size_t>(Lead) + static_cast<size_t>(width);
        const auto pixelBits = static_cast<uint64_t>(bits);
        Byte = static_cast<size_t>(static_cast<uint64_t>(Start) * pixelBits / 8);
        Bytes = static_cast<size_t>((Pixels * pixelBits + 7) / 8);
    }

    int32_t Start; // column
    int32_t Lead;  // pixels before the wanted ones
    size_t Pixels;
    size_t Byte; // of the row
    size_t Bytes;
};

class CombinedRows {
  public:
    CombinedRows(BitmapHandle& target, BitmapHandle* source, const ClippedAreas& areas, uint32_t code)
        : target_(target), source_(source), areas_(areas), operation_(code, target, source),
          targetSpan_(target.BitsPerPixel, areas.Target.Left, static_cast<int32_t>(areas.Target.Width())),
          sourceSpan_(target.BitsPerPixel, areas.Target.Left + areas.ColumnsToSource,
                      static_cast<int32_t>(areas.Target.Width())),
          keepsAlpha_(DepthOf(target.BitsPerPixel).AlphaBits != 0 && !HasGrayWords(target)),
          skipsSecond_(target.BitsPerPixel == 2 && targetSpan_.Lead == 2) {}

    ReturnCode Begin();
    ReturnCode Combine(int32_t row);

  private:
    ReturnCode FetchSource(int32_t row, const uint8_t*& pixels);
    ReturnCode FindSegments(int32_t row);
    ReturnCode Put(const uint8_t* pixels, int32_t row, int32_t start);
    ReturnCode PutColumns(const uint8_t* pixels, int32_t row, int32_t start, int32_t left, int32_t right);
    const uint8_t* InPhase(const uint8_t* pixels);
    const uint8_t* Apart(const uint8_t* pixels, const uint8_t* row);
    void CombineBits(uint8_t* row, const uint8_t* source);
    void CombineSegments(uint8_t* row, const uint8_t* source);
    bool CombinesInPlace(const uint8_t* row) const;
    size_t Bits() const { return static_cast<size_t>(target_.BitsPerPixel); }

    BitmapHandle& target_;
    BitmapHandle* source_;
    ClippedAreas areas_;
    RowOperation operation_;
    Span targetSpan_, sourceSpan_;
    bool keepsAlpha_;
    bool skipsSecond_; // a mask of edges that never lets the pixel behind the first one through
    std::optional<ScratchBuffer<uint8_t>> sourceRow_, movedRow_, targetRow_, resultRow_;
    std::optional<ScratchBuffer<int32_t>> segmentRoom_;
    std::optional<ScratchBuffer<uint32_t>> putRoom_;
    std::span<const int32_t> segments_;
    int32_t whole_[2] = {};
};

ReturnCode CombinedRows::Begin() {
    uint32_t most = 2;
    if (target_.Region != nullptr) {
        const ReturnCode status = Dispatch().GetBitmapClipSegmentsMax(&target_, &most);
        if (status != code::Success) return status;
    }
    most = std::max(most, 2u);
    targetRow_.emplace(operation_.ReadsTarget() ? targetSpan_.Bytes : 1);
    resultRow_.emplace(targetSpan_.Bytes);
    segmentRoom_.emplace(most);
    putRoom_.emplace(most);
    if (!*targetRow_ || !*resultRow_ || !*segmentRoom_ || !*putRoom_) return code::OutOfMemory;
    whole_[0] = areas_.Target.Left;
    whole_[1] = areas_.Target.Right;
    if (!operation_.ReadsSource()) return code::Success;
    sourceRow_.emplace(sourceSpan_.Bytes);
    movedRow_.emplace(targetSpan_.Bytes);
    if (!*sourceRow_ || !*movedRow_) return code::OutOfMemory;
    std::memset(movedRow_->data(), 0, targetSpan_.Bytes);
    return code::Success;
}

// An address of the source's row would not outlive an access to the target where the two share tiles.
ReturnCode CombinedRows::FetchSource(int32_t row, const uint8_t*& pixels) {
    const int32_t running = row + areas_.RowsToSource;
    const int32_t sourceRow = areas_.IsMirrored ? source_->Height - 1 - running : running;
    if (LiesInMemory(*source_))
        if (const uint8_t* reached = ReachRow(*source_, sourceRow)) {
            pixels = reached + sourceSpan_.Byte;
            return code::Success;
        }
    pixels = sourceRow_->data();
    return ReadExactly(*source_, sourceRow_->data(), sourceRow, sourceSpan_.Start,
                       static_cast<uint32_t>(sourceSpan_.Bytes));
}

// The segments of the row inside the area, or all of it.
ReturnCode CombinedRows::FindSegments(int32_t row) {
    segments_ = whole_;
    if (target_.Region == nullptr) return code::Success;
    uint32_t count = 0;
    int32_t* const columns = segmentRoom_->data();
    const ReturnCode status = Dispatch().GetBitmapClipSegments(&target_, row, columns, &count);
    if (status != code::Success) return status;
    uint32_t kept = 0;
    for (uint32_t i = 0; i + 1 < count; i += 2) {
        const int32_t from = std::max(columns[i], areas_.Target.Left),
                      to = std::min(columns[i + 1], areas_.Target.Right);
        if (from >= to) continue;
        columns[kept] = from;
        columns[kept + 1] = to;
        kept += 2;
    }
    segments_ = {columns, kept};
    return code::Success;
}

// Writes the segments from a buffer whose first pixel belongs to a column.
ReturnCode CombinedRows::Put(const uint8_t* pixels, int32_t row, int32_t start) {
    const int32_t left = areas_.Target.Left, right = areas_.Target.Right;
    if (!skipsSecond_) return PutColumns(pixels, row, start, left, right);
    const ReturnCode status = PutColumns(pixels, row, start, left, left + 1);
    return status == code::Success ? PutColumns(pixels, row, start, left + 2, right) : status;
}

ReturnCode CombinedRows::PutColumns(const uint8_t* pixels, int32_t row, int32_t start, int32_t left,
                                    int32_t right) {
    uint32_t* const entries = putRoom_->data();
    uint32_t count = 0;
    for (size_t i = 0; i < segments_.size(); i += 2) {
        const int32_t from = std::max(segments_[i], left), to = std::min(segments_[i + 1], right);
        if (from >= to) continue;
        entries[count++] = static_cast<uint32_t>(from - start);
        entries[count++] = static_cast<uint32_t>(to - start);
    }
    if (count == 0) return code::Success;
    return Z_PutBitmapRowSegments(&target_, pixels, row, start, entries, count, 1);
}

// The source's pixels where the target's have theirs in a span.
const uint8_t* CombinedRows::InPhase(const uint8_t* pixels) {
    if (sourceSpan_.Lead == targetSpan_.Lead) return pixels;
    const uint64_t count = uint64_t{Bits()} * (targetSpan_.Pixels - static_cast<size_t>(targetSpan_.Lead));
    const BitPlace<uint8_t> to = {movedRow_->data(), static_cast<size_t>(targetSpan_.Lead) * Bits()};
    const BitPlace<const uint8_t> from = {pixels, static_cast<size_t>(sourceSpan_.Lead) * Bits()};
    if (DepthOf(target_.BitsPerPixel).Packed == Packing::Pairs)
        BitMerge<false>(to, from, count).Run();
    else
        BitMerge<true>(to, from, count).Run();
    return movedRow_->data();
}

// The source's pixels, not where the target's row is to be written.
const uint8_t* CombinedRows::Apart(const uint8_t* pixels, const uint8_t* row) {
    const auto from = reinterpret_cast<uintptr_t>(pixels), to = reinterpret_cast<uintptr_t>(row);
    if (row == nullptr || from + sourceSpan_.Bytes <= to || to + targetSpan_.Bytes <= from) return pixels;
    CopyBytes(sourceRow_->data(), pixels, sourceSpan_.Bytes);
    return sourceRow_->data();
}

bool CombinedRows::CombinesInPlace(const uint8_t* row) const {
    if (row == nullptr || keepsAlpha_ || !operation_.IsOfBytes()) return false;
    return Bits() % 8 == 0 || (target_.Region == nullptr && !skipsSecond_);
}

// Bits of the first and last byte outside the area are put back.
void CombinedRows::CombineBits(uint8_t* row, const uint8_t* source) {
    const size_t lead = static_cast<size_t>(targetSpan_.Lead) * Bits(), skipped = lead / 8;
    const size_t bytes = targetSpan_.Bytes - skipped;
    uint8_t* const first = row + skipped;
    uint8_t* const last = first + bytes - 1;
    const auto before = static_cast<uint8_t>(~(0xFFu >> lead % 8));
    const uint8_t behind = UnusedInLastByte(target_.BitsPerPixel, targetSpan_.Pixels);
    const uint8_t firstBits = *first & before, lastBits = *last & behind;
    operation_.RunBytes(first, first, source == nullptr ? nullptr : source + skipped, bytes);
    *first = static_cast<uint8_t>((*first & ~before) | firstBits);
    *last = static_cast<uint8_t>((*last & ~behind) | lastBits);
}

// Segments are short and far apart in memory: those some way ahead are asked for meanwhile.
void CombinedRows::CombineSegments(uint8_t* row, const uint8_t* source) {
    constexpr size_t ahead = 2 * 16;
    const size_t pixelBytes = Bits() / 8;
    const bool copies = operation_.IsCopy();
    const int32_t* const columns = segments_.data();
    const size_t entries = segments_.size();
    const auto byteOf = [=, left = areas_.Target.Left](size_t entry) {
        return static_cast<size_t>(columns[entry] - left) * pixelBytes;
    };
    for (size_t i = 0; i < entries; i += 2) {
        const size_t at = byteOf(i), bytes = byteOf(i + 1) - at;
        if (i + ahead < entries) {
            __builtin_prefetch(row + byteOf(i + ahead), 1);
            if (source != nullptr) __builtin_prefetch(source + byteOf(i + ahead));
        }
        if (copies)
            CopyBytes(row + at, source + at, bytes);
        else
            operation_.RunBytes(row + at, row + at, source == nullptr ? nullptr : source + at, bytes);
    }
}

ReturnCode CombinedRows::Combine(int32_t row) {
    ReturnCode status = FindSegments(row);
    if (status != code::Success || segments_.empty()) return status;
    const uint8_t* source = nullptr;
    if (operation_.ReadsSource()) status = FetchSource(row, source);
    if (status != code::Success) return status;

    uint8_t* reached = ReachRow(target_, row);
    if (reached != nullptr) reached += targetSpan_.Byte;
    if (operation_.IsCopy() && !(CombinesInPlace(reached) && Bits() % 8 == 0))
        return Put(Apart(source, reached), row, sourceSpan_.Start - areas_.ColumnsToSource);
    if (source != nullptr) source = InPhase(source);

    if (CombinesInPlace(reached)) {
        if (source != nullptr && (source != reached || operation_.IsCopy()) && source != movedRow_->data())
            source = Apart(source, reached);
        if (Bits() % 8 == 0)
            CombineSegments(reached, source);
        else
            CombineBits(reached, source);
        return code::Success;
    }

    const uint8_t* pixels = reached;
    if (operation_.ReadsTarget() && reached == nullptr) {
        pixels = targetRow_->data();
        status = ReadExactly(target_, targetRow_->data(), row, targetSpan_.Start,
                             static_cast<uint32_t>(targetSpan_.Bytes));
        if (status != code::Success) return status;
    }
    uint8_t* const result = resultRow_->data();
    operation_.Run(result, pixels, source, targetSpan_.Pixels);
    return Put(result, row, targetSpan_.Start);
}

// Whether anything is left.
bool Clip(BitmapHandle& target, const BitmapHandle* source, const CombinedAreas& areas, const RECT& bounds,
          ClippedAreas& clipped) {
    const PixelRect inside = Intersection(PixelRect::Of(bounds), PixelRect::Whole(target));
    int64_t left = std::max<int64_t>(areas.TargetLeft, inside.Left),
            right = std::min<int64_t>(areas.TargetLeft + areas.Width, inside.Right),
            top = std::max<int64_t>(areas.TargetTop, inside.Top),
            bottom = std::min<int64_t>(areas.TargetTop + areas.Height, inside.Bottom);
    const int64_t dx = areas.SourceLeft - areas.TargetLeft;
    int64_t dy = areas.SourceTop - areas.TargetTop;
    clipped.IsMirrored = source != nullptr && source->ViewPerspective != target.ViewPerspective;
    if (source != nullptr) {
        if (clipped.IsMirrored) dy = source->Height - (areas.SourceTop + areas.Height) - areas.TargetTop;
        left = std::max(left, -dx);
        right = std::min(right, source->Width - dx);
        top = std::max(top, -dy);
        bottom = std::min(bottom, source->Height - dy);
    }
    if (right <= left || bottom <= top) return false;
    clipped.Target = {static_cast<int32_t>(left), static_cast<int32_t>(top), static_cast<int32_t>(right),
                      static_cast<int32_t>(bottom)};
    // Both bitmaps have a pixel that is combined, so that no distance is larger than a bitmap.
    clipped.ColumnsToSource = source != nullptr ? static_cast<int32_t>(dx) : 0;
    clipped.RowsToSource = source != nullptr ? static_cast<int32_t>(dy) : 0;
    return true;
}

ReturnCode RunRows(BitmapHandle& target, BitmapHandle* source, const ClippedAreas& areas, uint32_t code) {
    const BitmapLock targetLock(&target), sourceLock(source);
    CombinedRows rows(target, source, areas, code);
    ReturnCode status = rows.Begin();
    const auto count = static_cast<int32_t>(areas.Target.Height());
    Progress progress(StatusReceiver::Status(), count);
    if (status == code::Success) status = progress.Begin();
    const bool runsBackwards = source != nullptr && areas.RowsToSource < 0;
    for (int32_t i = 0; i < count && status == code::Success; ++i) {
        status = rows.Combine(runsBackwards ? areas.Target.Bottom - 1 - i : areas.Target.Top + i);
        if (status == code::Success) status = progress.Step();
    }
    return status;
}

} // namespace

ReturnCode ReportNothingDone() {
    const StatusReceiver receiver = StatusReceiver::Status();
    const ReturnCode status = receiver.Report(0);
    return status == code::Success ? receiver.Report(100) : status;
}

ReturnCode CombineAreas(BitmapHandle& target, BitmapHandle* source, const CombinedAreas& areas,
                        uint32_t code) {
    ZKR_ASSERT(source == nullptr ||
               (source->BitsPerPixel == target.BitsPerPixel &&
                DifferInRowOrderAtMost(source->ViewPerspective, target.ViewPerspective)));
    ClippedAreas clipped{};
    if (!Clip(target, source, areas, PixelRect::Whole(target).AsRect(), clipped)) return ReportNothingDone();

    MergedRegion merged(target);
    ReturnCode status = code::Success;
    if (source != nullptr)
        status = merged.Add(*source, clipped.IsMirrored, -clipped.ColumnsToSource, -clipped.RowsToSource);
    RECT bounds{};
    if (status == code::Success) status = Dispatch().GetBitmapRgnBounds(&target, nullptr, &bounds);
    if (status == code::Success)
        status = Clip(target, source, areas, bounds, clipped) ? RunRows(target, source, clipped, code)
                                                              : ReportNothingDone();
    return status;
}

} // namespace zkr::geometry
