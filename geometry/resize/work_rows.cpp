// Fetches stretches of rows, brings them to the working format and resamples them. Nearest pixels are picked from the
// packed row, so that only those are converted that are wanted.
#include "geometry/resize/work_rows.h"

#include "core/exact_rows.h"
#include "core/predicates.h"
#include "core/row_access.h"
#include "core/sizes.h"
#include "zkr13n/convert.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

namespace zkr {

namespace {

// Columns so far apart begin on a byte.
int32_t ColumnsInWholeBytes(int32_t bitsPerPixel) {
    switch (bitsPerPixel) {
    case 1:
    case 3:
    case 5:
    case 7: return 8;
    case 2:
    case 6: return 4;
    case 4:
    case 12: return 2;
    default: return 1;
    }
}

uint64_t PackedBytes(int32_t pixels, int32_t bits) {
    return (static_cast<uint64_t>(pixels) * static_cast<uint32_t>(bits) + 7) / 8;
}

} // namespace

WorkFormat WorkFormat::Of(const BitmapHandle& bitmap) {
    const int32_t bits = bitmap.BitsPerPixel;
    const int32_t order = IsGray(bitmap) ? Z_ORDER_GRAY : bitmap.Order;
    if (IsGray(bitmap) && bitmap.LevelLUT == nullptr) return {bits, order, 16, Z_ORDER_GRAY, {16, 1}};
    const int32_t gray = bits <= 8 ? Z_IsGrayScaleBitmap(&bitmap) : GRAY_NO;
    if (gray != GRAY_NO) {
        const bool isRamp = bits == 8 && gray == GRAY_ORDEREDNORMAL && bitmap.ColorsUsed == 256;
        return {isRamp ? 0 : bits, order, 0, Z_ORDER_BGR, {8, 1}};
    }
    if (bits == 48 || bits == 64) return {bits, order, 48, Z_ORDER_BGR, {16, 3}};
    return {bits, order, 24, Z_ORDER_BGR, {8, 3}};
}

ReturnCode WorkRows::Make(BitmapHandle* bitmap, RowReader reader, Interpolation method, int32_t newWidth) {
    bitmap_ = bitmap;
    reader_ = reader;
    format_ = WorkFormat::Of(*bitmap);
    depth_ = bitmap->BitsPerPixel;
    width_ = bitmap->Width;
    height_ = bitmap->Height;
    isPacked_ = method == Interpolation::Nearest;
    // A conversion that there is not is found by trying it.
    ReturnCode result = IsSupportedDepth(depth_) ? MakeTables() : code::InvalidArgument;
    if (result != code::Success) return result;
    uint8_t pixel[8] = {};
    result = Convert(pixel, 1);
    if (result != code::Success) return result;
    const int32_t pixels = isPacked_ ? newWidth : width_;
    const uint64_t converted = PackedBytes(pixels, format_.StoredBits());
    const uint64_t bytes = std::max({converted, PackedBytes(width_, depth_), PackedBytes(pixels, depth_)});
    if (!FitsSize(bytes)) return code::OutOfMemory;
    raw_.emplace(static_cast<size_t>(bytes));
    if (!*raw_) return code::OutOfMemory;
    return resampler_.Make(method, isPacked_ ? SampleFormat{depth_, 1} : format_.Samples, width_, newWidth);
}

// The palette or level table that pixels are read through, and their gray window.
ReturnCode WorkRows::MakeTables() {
    if (depth_ <= 8 && bitmap_->Palette != nullptr) {
        Z_GetBitmapPaletteEntries(bitmap_, 0, 256, entries_);
        palette_ = entries_;
    }
    conversionTable_ = palette_;
    if (!IsGray(*bitmap_)) return code::Success;
    flags_ =
        Z_CONVERT_SOURCE_GRAY | Z_CONVERT_SOURCE_WINDOW | (format_.IsGrayWords() ? Z_CONVERT_TARGET_GRAY : 0);
    const bool isActive = HasFlag(*bitmap_, flag::LevelLUTActive);
    lowBit_ = isActive ? bitmap_->LowBit : bitmap_->LevelLowBit;
    highBit_ = isActive ? bitmap_->HighBit : bitmap_->LevelHighBit;
    if (bitmap_->LevelLUT == nullptr || depth_ > 16) return code::Success;
    // Behind the end of a table that is too short lies black.
    const size_t wanted = size_t{1} << depth_;
    const size_t given = std::min<size_t>(bitmap_->LevelLUTLength, wanted);
    levels_.emplace(wanted);
    if (!*levels_) return code::OutOfMemory;
    std::fill(std::copy_n(bitmap_->LevelLUT, given, levels_->data()), levels_->data() + wanted, RGBQUAD{});
    conversionTable_ = levels_->data();
    return code::Success;
}

ReturnCode WorkRows::Convert(uint8_t* row, int32_t pixels) const {
    return Z_ConvertBufferExt(row, pixels, format_.SourceBits, format_.Bits, format_.SourceOrder,
                              format_.Order, conversionTable_, nullptr, flags_, lowBit_, highBit_);
}

void WorkRows::Choose(int32_t first, int32_t count) {
    count_ = count;
    const SourceSpan span = resampler_.Choose(first, count);
    fetchColumn_ = span.First - span.First % ColumnsInWholeBytes(depth_);
    fetchPixels_ = span.End - fetchColumn_;
}

// The pixels that the chosen columns are made of, and which column they begin with: where they stand, or in the raw row.
ReturnCode WorkRows::Read(int32_t row, const uint8_t*& pixels, int32_t& column) {
    uint8_t* const raw = raw_->data();
    pixels = raw;
    column = fetchColumn_;
    const auto bytes = static_cast<uint32_t>(PackedBytes(fetchPixels_, depth_));
    if (reader_.Read != nullptr) return reader_.Read(bitmap_, raw, row, fetchColumn_, bytes, reader_.Data);
    const bool staysThere = isPacked_ || !format_.IsConverted();
    if (const uint8_t* stored = staysThere ? ReachRow(*bitmap_, row) : nullptr) {
        pixels = stored;
        column = 0;
        return code::Success;
    }
    return ReadExactly(*bitmap_, raw, row, fetchColumn_, bytes) == code::Success ? code::Success
                                                                                 : code::ReadFailed;
}

ReturnCode WorkRows::Fetch(int32_t row, uint8_t* target) {
    const uint8_t* pixels = nullptr;
    int32_t column = 0;
    ReturnCode result = Read(row, pixels, column);
    if (result == code::Success && !isPacked_ && format_.IsConverted())
        result = Convert(raw_->data(), fetchPixels_);
    if (result != code::Success) return result;
    resampler_.Run(pixels, column, target);
    return isPacked_ && format_.IsConverted() ? Convert(target, count_) : code::Success;
}

} // namespace zkr
