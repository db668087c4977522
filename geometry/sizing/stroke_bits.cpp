// Counts the rows of a cell, compares, and writes the row as bits or runs.
#include "geometry/sizing/stroke_bits.h"

#include "core/exact_rows.h"
#include "core/predicates.h"
#include "core/row_access.h"
#include "core/sizes.h"
#include "geometry/row_tail.h"
#include "kernels/family.h"
#include "zkr13n/compressed_rows.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace zkr {

namespace {

const kernels::StrokeKernels& Kernels() {
    return kernels::Chosen<kernels::StrokeKernels>();
}

// The most rows that a cell has.
int32_t MostRows(const BitmapHandle& source, const BitmapHandle& target) {
    return source.Height / target.Height + 1;
}

// More than any memory where they do not fit.
size_t RowsBytesOf(const BitmapHandle& source, int32_t rows) {
    const uint64_t bytes = RowsBytes(source, rows);
    return FitsSize(bytes) ? static_cast<size_t>(bytes) : SIZE_MAX;
}

} // namespace

bool StrokeBits::Suits(const BitmapHandle& source, const BitmapHandle& target) {
    if (HasFlag(source, flag::Compressed)) return false;
    const bool fits = target.Width <= source.Width || target.Width == int64_t{source.Width} * 2;
    return fits && source.Width / target.Width < static_cast<int32_t>(kernels::WidestCell) &&
           MostRows(source, target) < 1 << kernels::MostPlanes;
}

StrokeBits::StrokeBits(BitmapHandle& source, BitmapHandle& target, uint32_t threshold, bool blackIsOne)
    : source_(source), target_(target), steps_(Stepping::Between(source.Height, target.Height)),
      threshold_(threshold), blackIsOne_(blackIsOne), rowBytes_(source.BytesPerLine + Slack),
      cells_(static_cast<size_t>(std::min(source.Width, target.Width))),
      planes_(static_cast<uint32_t>(std::bit_width(static_cast<uint32_t>(MostRows(source, target))))),
      counts_(rowBytes_ <= SIZE_MAX / Rows ? rowBytes_ * Rows : SIZE_MAX), bounds_(cells_ + 1),
      spreads_(cells_ / 8 + 1), made_(std::max(cells_ / 8 + 1, size_t{source.BytesPerLine})),
      targetRow_(target), sourceRows_(RowsBytesOf(source, MostRows(source, target))),
      fetched_(static_cast<size_t>(MostRows(source, target))),
      runs_(HasFlag(target, flag::Compressed) ? static_cast<size_t>(target.Width) + 3 : 1) {}

void StrokeBits::Begin() {
    Stepping columns = Stepping::Between(source_.Width, static_cast<int32_t>(cells_));
    for (size_t i = 0; i <= cells_; ++i, columns.Next())
        bounds_[i] = static_cast<uint32_t>(columns.Index);
    isShort_ = (static_cast<uint32_t>(source_.Width) - 1) / cells_ + 1 <= kernels::WidestSpreadCell;
    for (size_t i = 0; isShort_ && i < cells_; ++i) {
        const uint64_t pixels = (uint64_t{1} << (bounds_[i + 1] - bounds_[i])) - 1;
        const uint64_t before = i % 8 == 0 ? 0 : spreads_[i / 8];
        spreads_[i / 8] = before | pixels << 8 * (7 - i % 8);
    }
    std::memset(counts_.data(), 0, rowBytes_ * Rows);
    for (uint32_t p = 0; p < kernels::MostPlanes; ++p)
        rows_.Planes[p] = counts_.data() + p * rowBytes_;
    rows_.Any = counts_.data() + kernels::MostPlanes * rowBytes_;
    rows_.All = rows_.Any + rowBytes_;
    std::memset(targetRow_.data(), 0, target_.BytesPerLine);
}

ReturnCode StrokeBits::Pass(int32_t row) {
    const auto first = static_cast<int64_t>(steps_.Index);
    steps_.Next();
    if (first == counted_) return Store(row);
    counted_ = first;
    const int64_t end = std::max(static_cast<int64_t>(steps_.Index), first + 1);
    const auto count = static_cast<int32_t>(end - first);
    const ReturnCode result = Fetch(static_cast<int32_t>(first), count);
    if (result != code::Success) return result;
    Kernels().Count[planes_ - 1](fetched_.data(), static_cast<size_t>(count), blackIsOne_ ? 0 : UINT32_MAX,
                                 source_.BytesPerLine / 4, rows_);
    uint8_t* const bits = targetRow_.data();
    const bool doubles = target_.Width > source_.Width;
    uint8_t* const compared = doubles ? made_.data() : bits;
    Kernels().Compare[planes_ - 1](rows_, {bounds_.data(), isShort_ ? spreads_.data() : nullptr, cells_},
                                   threshold_, compared);
    const auto width = static_cast<uint32_t>(target_.Width);
    if (doubles) Kernels().Double(compared, bits, (width + 15) / 16);
    if (!blackIsOne_)
        for (size_t i = 0; i < target_.BytesPerLine; ++i)
            bits[i] = static_cast<uint8_t>(~bits[i]);
    ClearBehind(1, bits, width, target_.BytesPerLine);
    if (HasFlag(target_, flag::Compressed)) Z_CompressRow(runs_.data(), bits, 0, target_.Width);
    return Store(row);
}

ReturnCode StrokeBits::Fetch(int32_t first, int32_t count) {
    const bool staysThere = LiesInMemory(source_);
    uint8_t* place = sourceRows_.data();
    for (int32_t i = 0; i < count; ++i) {
        const int32_t row = StoredRow(source_, first + i);
        const uint8_t* stored = staysThere ? ReachRow(source_, row) : nullptr;
        if (stored == nullptr) {
            const ReturnCode result = ReadExactly(source_, place, row, 0, source_.BytesPerLine);
            if (result != code::Success) return result;
            stored = place;
            place += source_.BytesPerLine;
        }
        fetched_[static_cast<size_t>(i)] = stored;
    }
    return code::Success;
}

ReturnCode StrokeBits::Store(int32_t row) {
    const int32_t stored = StoredRow(target_, row);
    return HasFlag(target_, flag::Compressed)
               ? Z_PutBitmapRowCompressed(&target_, nullptr, runs_.data(), stored, 1)
               : WriteExactly(target_, targetRow_.data(), stored, 0, target_.BytesPerLine);
}

} // namespace zkr
