#include "display/paint/source_rows.h"

#include "core/assertion.h"
#include "core/predicates.h"
#include "core/row_access.h"
#include "core/sizes.h"
#include "display/kernels/gather.h"
#include "kernels/family.h"

namespace zkr {

namespace {

// The bytes of some pixels from the first bit of a byte on.
size_t PixelBytes(int64_t pixels, int32_t bits) {
    return (static_cast<size_t>(pixels) * static_cast<size_t>(bits) + 7) / 8;
}

} // namespace

SourceRows::SourceRows(BitmapHandle& bitmap, const HeldRows& held, const Placement& placement,
                       const Range& columns)
    : bitmap_(bitmap), held_(held), scalesColumns_(placement.Columns.IsScaled()),
      scalesRows_(placement.Rows.IsScaled()), scaledWidth_(placement.Columns.ScaledSize()),
      scaledHeight_(placement.Rows.ScaledSize()), columns_{columns.From / Grain * Grain, columns.To} {}

// The last column is shown where rounding has made the picture a column narrower than its edge.
uint32_t SourceRows::ColumnShown(int64_t scaledColumn) const {
    if (!scalesColumns_) return static_cast<uint32_t>(scaledColumn);
    return static_cast<uint32_t>(
        std::min<int64_t>(scaledColumn * bitmap_.Width / scaledWidth_, bitmap_.Width - 1));
}

int32_t SourceRows::RowShown(int64_t scaledRow) const {
    if (!scalesRows_) return static_cast<int32_t>(scaledRow);
    const int64_t carry = scaledHeight_ >= bitmap_.Height ? bitmap_.Height - 1 : 0;
    return static_cast<int32_t>(
        std::min<int64_t>((scaledRow * bitmap_.Height + carry) / scaledHeight_, bitmap_.Height - 1));
}

ReturnCode SourceRows::Prepare() {
    ZKR_ASSERT(columns_.From < columns_.To);
    const int32_t bits = bitmap_.BitsPerPixel;
    const auto from = static_cast<int64_t>(ColumnShown(columns_.From));
    const int64_t to = int64_t{ColumnShown(columns_.To - 1)} + 1;
    storedFrom_ = static_cast<int32_t>(from / Grain * Grain);
    storedBytes_ = static_cast<uint32_t>(PixelBytes(to - storedFrom_, bits));
    if (!stored_.emplace(storedBytes_)) return code::OutOfMemory;
    if (!scalesColumns_) return code::Success;

    if (!scaled_.emplace(PixelBytes(columns_.Length(), bits)) || !list_.emplace(Pixels()))
        return code::OutOfMemory;
    for (size_t i = 0; i < Pixels(); ++i)
        (*list_)[i] =
            ColumnShown(columns_.From + static_cast<int64_t>(i)) - static_cast<uint32_t>(storedFrom_);
    return code::Success;
}

ReturnCode SourceRows::FetchStored(int32_t row, const uint8_t*& pixels) {
    const ptrdiff_t offset = ColumnOffset(bitmap_.BitsPerPixel, storedFrom_);
    if (held_.Data != nullptr) {
        pixels = held_.Data + static_cast<size_t>(row - held_.First) * held_.RowBytes + offset;
        return code::Success;
    }
    if (const uint8_t* start = ReachRow(bitmap_, row)) {
        pixels = start + offset;
        return code::Success;
    }
    pixels = stored_->data();
    return ReadExactly(bitmap_, stored_->data(), row, storedFrom_, storedBytes_);
}

ReturnCode SourceRows::Fetch(int64_t scaledRow, const uint8_t*& pixels) {
    const int32_t row = RowShown(scaledRow);
    ZKR_ASSERT(row >= 0 && row < bitmap_.Height && (held_.Data == nullptr || row >= held_.First));
    if (row != lastRow_) {
        const uint8_t* found = nullptr;
        lastRow_ = -1;
        const ReturnCode status = FetchStored(row, found);
        if (status != code::Success) return status;
        lastRow_ = row;
        lastPixels_ = found;
        if (scalesColumns_) {
            kernels::Chosen<kernels::GatherKernels>().Of[bitmap_.BitsPerPixel](found, list_->data(),
                                                                               scaled_->data(), Pixels());
            lastPixels_ = scaled_->data();
        }
    }
    pixels = lastPixels_;
    return code::Success;
}

bool SourceRows::GivesAddresses() const {
    return !scalesColumns_ && (held_.Data != nullptr || LiesInMemory(bitmap_));
}

const uint8_t* SourceRows::RowInPlace(int64_t row) {
    if (scalesColumns_ || scalesRows_) return nullptr;
    const size_t rowBytes = held_.Data != nullptr ? held_.RowBytes : bitmap_.BytesPerLine;
    if (rowBytes != StorageRowBytes(bitmap_.Width, bitmap_.BitsPerPixel)) return nullptr;
    if (held_.Data != nullptr) return held_.Data + static_cast<size_t>(row - held_.First) * held_.RowBytes;
    return LiesInMemory(bitmap_) ? ReachRow(bitmap_, static_cast<int32_t>(row)) : nullptr;
}

} // namespace zkr
