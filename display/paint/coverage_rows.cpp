#include "display/paint/coverage_rows.h"

#include "display/kernels/coverage.h"
#include "kernels/family.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace zkr {

namespace {

// 255 * white / total, rounded, halves up.
uint8_t LevelOf(uint64_t white, uint64_t total) {
    constexpr uint64_t mostExact = uint64_t{1} << 54;
    if (total < mostExact) return static_cast<uint8_t>((white * 510 + total) / (2 * total));
    return static_cast<uint8_t>(255.0 * (static_cast<double>(white) / static_cast<double>(total)) + 0.5);
}

// The bitmap as it is.
Placement Unscaled(const BitmapHandle& bitmap) {
    const Area whole = Area::Of(PixelRect::Whole(bitmap));
    return Placement(bitmap, whole, whole, VIEW_TOP_LEFT, false);
}

Range ColumnsCovered(const CoverageAxis& axis, const Range& part) {
    const CoverageCell last = axis.At(part.To - 1);
    return {axis.At(part.From).First, int64_t{last.First} + last.Count};
}

} // namespace

CoverageAxis::CoverageAxis(int32_t size, const Range& source, int64_t targetSize, bool exact)
    : size_(size), from_(source.From), exact_(exact) {
    const auto length = static_cast<uint64_t>(source.Length()), target = static_cast<uint64_t>(targetSize);
    const uint64_t common = std::gcd(length, target);
    pixel_ = target / common;
    cell_ = length / common;
}

CoverageCell CoverageAxis::At(int64_t target) const {
    const uint64_t start = static_cast<uint64_t>(target) * cell_, end = start + cell_;
    const uint64_t first = start / pixel_;
    uint64_t behind = exact_ ? (end + pixel_ - 1) / pixel_ : std::max(end / pixel_, first + 1);
    const auto edge = static_cast<uint64_t>(size_ - from_); // of the bitmap, counted as `first` is
    const bool isCut = behind > edge;
    behind = std::min(behind, edge);
    const auto place = static_cast<int32_t>(from_ + static_cast<int64_t>(first));
    const auto count = static_cast<int32_t>(behind - first);
    if (!exact_) return {place, count, 1, 1, 1};
    const uint64_t ofFirst = std::min(pixel_ - start % pixel_, cell_);
    const uint64_t ofLast = isCut || end % pixel_ == 0 ? pixel_ : end % pixel_;
    return {place, count, static_cast<uint32_t>(ofFirst), static_cast<uint32_t>(pixel_),
            static_cast<uint32_t>(ofLast)};
}

CoverageRows::CoverageRows(BitmapHandle& bitmap, const CoverageRequest& request)
    : request_(request), columns_(bitmap.Width, request.Source.Columns, request.Width, request.Exact),
      rows_(bitmap.Height, request.Source.Rows, request.Height, request.Exact),
      sourceColumns_(ColumnsCovered(columns_, request.Part.Columns)),
      source_(bitmap, {}, Unscaled(bitmap), sourceColumns_) {}

// Squares of 4 or 8 source pixels that lie within the bitmap, and begin where a byte does but for whole squares.
void CoverageRows::FindSquares() {
    const int32_t side = columns_.WholePixels();
    const int64_t first = columns_.At(request_.Part.Columns.From).First;
    const CoverageCell last = columns_.At(request_.Part.Columns.To - 1);
    const bool fits = (side == 4 || side == 8) && rows_.WholePixels() == side && first % 8 % side == 0;
    if (!fits || last.Count < side) return;
    side_ = side;
    lead_ = first % 8 / side;
}

ReturnCode CoverageRows::Prepare() {
    FindSquares();
    if (side_ != 0 && !kept_.emplace((source_.Pixels() + 7) / 8 * static_cast<size_t>(side_)))
        return code::OutOfMemory;
    groups_ = (source_.Pixels() + 7) / 8;
    if (!cells_.emplace(Pixels()) || !sums_.emplace(groups_ * 8)) return code::OutOfMemory;
    for (size_t i = 0; i < Pixels(); ++i) {
        const int64_t column = FirstColumn() + static_cast<int64_t>(i); // those in front are shown nowhere
        (*cells_)[i] = columns_.At(std::max(column, request_.Part.Columns.From));
    }
    return source_.Prepare();
}

ReturnCode CoverageRows::Make(int64_t firstRow, size_t rows, uint8_t* target, size_t rowBytes) {
    CoverageCell before{};
    for (size_t i = 0; i < rows; ++i, target += rowBytes) {
        const CoverageCell cell = rows_.At(firstRow + static_cast<int64_t>(i));
        if (cell == before) {
            std::memcpy(target, target - rowBytes, Pixels());
            continue;
        }
        before = cell;
        const ReturnCode status = MakeRow(cell, target);
        if (status != code::Success) return status;
    }
    return code::Success;
}

template <size_t side> ReturnCode CoverageRows::MakeSquares(int32_t firstRow, uint8_t* target) {
    const size_t bytes = (source_.Pixels() + 7) / 8;
    const uint8_t* rows[side];
    for (size_t i = 0; i < side; ++i) {
        const ReturnCode status = source_.Fetch(firstRow + static_cast<int32_t>(i), rows[i]);
        if (status != code::Success) return status;
        if (source_.GivesAddresses()) continue;
        std::memcpy(kept_->data() + i * bytes, rows[i], bytes);
        rows[i] = kept_->data() + i * bytes;
    }
    const auto& kernels = kernels::Chosen<kernels::CoverageKernels>();
    if constexpr (side == 4)
        kernels.Squares4(rows, request_.Reversed, target, Pixels());
    else
        kernels.Squares8(rows, request_.Reversed, target, Pixels());
    return code::Success;
}

ReturnCode CoverageRows::MakeRow(const CoverageCell& cell, uint8_t* target) {
    if (side_ != 0 && cell.Count == side_)
        return side_ == 4 ? MakeSquares<4>(cell.First, target) : MakeSquares<8>(cell.First, target);
    uint32_t* sums = sums_->data();
    std::fill_n(sums, groups_ * 8, 0u);
    for (int32_t row = 0; row < cell.Count; ++row) {
        const uint8_t* bits = nullptr;
        const ReturnCode status = source_.Fetch(cell.First + row, bits);
        if (status != code::Success) return status;
        kernels::Chosen<kernels::CoverageKernels>().AddBits(bits, cell.Weight(row), sums, groups_);
    }
    const auto base = static_cast<int32_t>(source_.FirstColumn());
    const uint64_t height = cell.Total();
    for (size_t i = 0; i < Pixels(); ++i) {
        const CoverageCell& column = (*cells_)[i];
        const uint32_t* sum = sums + (column.First - base);
        uint64_t white = uint64_t{sum[0]} * column.FirstWeight;
        if (column.Count > 1) {
            const uint64_t middle = std::accumulate(sum + 1, sum + column.Count - 1, uint64_t{0});
            white += middle * column.MiddleWeight + uint64_t{sum[column.Count - 1]} * column.LastWeight;
        }
        const uint64_t total = height * column.Total();
        target[i] = LevelOf(request_.Reversed ? total - white : white, total);
    }
    return code::Success;
}

} // namespace zkr
