// Decides in which format pixels are blended, and converts from the source and to the target.
#include "geometry/sizing/blended_format.h"

#include "core/predicates.h"
#include "core/row_access.h"
#include "core/sizes.h"
#include "geometry/row_tail.h"
#include "zkr13n/convert.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

namespace zkr {

namespace {

constexpr int32_t MatchedBits = 24;

// The order as row conversion wants it: 12 bits are gray in any order.
int32_t OrderOf(const BitmapHandle& bitmap) {
    return IsGray(bitmap) ? Z_ORDER_GRAY : bitmap.Order;
}

int32_t StoredBits(int32_t bits) {
    return bits == 0 ? 8 : bits;
}

bool HasEntries(const BitmapHandle& bitmap) {
    return bitmap.BitsPerPixel <= MostIndexedBits && bitmap.Palette != nullptr;
}

// Indices that are gray levels: 8 bits with an ordered ramp, of whatever length.
bool HasGrayLevels(const BitmapHandle& bitmap) {
    return bitmap.BitsPerPixel == 8 && !IsGray(bitmap) && Z_IsGrayScaleBitmap(&bitmap) == GRAY_ORDEREDNORMAL;
}

bool HaveSameColours(const BitmapHandle& a, const BitmapHandle& b) {
    RGBQUAD colours[256] = {};
    if (a.ColorsUsed != b.ColorsUsed) return false;
    const uint32_t count = Z_GetBitmapPaletteEntries(&a, 0, 256, colours);
    return Z_CompareBitmapToPalette(&b, colours, count) != 0;
}

// Whether gray levels of the source are written as they are.
bool TakesGrayLevels(const BitmapHandle& source, const BitmapHandle& target) {
    if (target.BitsPerPixel != 8) return false;
    return HaveSameColours(source, target) || (HasGrayLevels(target) && target.ColorsUsed == 256);
}

uint64_t BytesOf(int32_t pixels, int32_t bits) {
    return (static_cast<uint64_t>(pixels) * static_cast<uint32_t>(bits) + 7) / 8;
}

} // namespace

BlendFormat BlendFormat::Of(const BitmapHandle& source, const BitmapHandle& target, bool isSpline) {
    const int32_t bits = source.BitsPerPixel, order = OrderOf(source);
    if (IsGray(source)) {
        constexpr uint32_t flags = Z_CONVERT_SOURCE_GRAY | Z_CONVERT_TARGET_GRAY | Z_CONVERT_SOURCE_WINDOW;
        return {bits, order, 16, Z_ORDER_GRAY, flags, {16, 1}, false};
    }
    if (HasGrayLevels(source)) {
        // Three equal channels give what one gives; not so splines, whose channels differ at the start of a row.
        if (!isSpline && TakesGrayLevels(source, target)) return {0, order, 0, order, 0, {8, 1}, false};
        return {0, order, 24, Z_ORDER_BGR, 0, {8, 3}, false};
    }
    switch (bits) {
    case 16: return {bits, order, 32, Z_ORDER_BGR, 0, {8, 4}, false};
    case 24:
    case 32:
    case 48:
    case 64: {
        // Channels are blended alike in any order, but for splines.
        const bool staysSo = !isSpline && target.BitsPerPixel == bits && target.Order == order;
        const int32_t channels = bits % 24 == 0 ? 3 : 4;
        return {bits, order, bits, staysSo ? order : Z_ORDER_BGR, 0, {bits / channels, channels}, false};
    }
    default: return {bits, order, 24, Z_ORDER_BGR, 0, {8, 3}, true};
    }
}

ReturnCode SampleRows::Make(BitmapHandle& source, const BlendFormat& format, Interpolation method,
                            int32_t newWidth) {
    source_ = &source;
    format_ = format;
    hasPalette_ = HasEntries(source);
    if (hasPalette_) Z_GetBitmapPaletteEntries(&source, 0, 256, palette_);
    const uint64_t bytes =
        std::max<uint64_t>(BytesOf(source.Width, StoredBits(format.Bits)), source.BytesPerLine);
    if (!FitsSize(bytes)) return code::OutOfMemory;
    row_.emplace(static_cast<size_t>(bytes));
    if (!*row_) return code::OutOfMemory;
    const ReturnCode result = resampler_.Make(method, format.Samples, source.Width, newWidth);
    if (result == code::Success) resampler_.Choose(0, newWidth);
    return result;
}

ReturnCode SampleRows::Fetch(int32_t row, uint8_t* target) {
    uint8_t* const buffer = row_->data();
    const uint8_t* samples = buffer;
    ReturnCode result = format_.IsConverted() ? ReadExactly(*source_, buffer, row, 0, source_->BytesPerLine)
                                              : FetchRow(*source_, row, buffer, samples);
    if (result == code::Success && format_.IsConverted())
        result = Z_ConvertBufferExt(buffer, source_->Width, format_.SourceBits, format_.Bits,
                                    format_.SourceOrder, format_.Order, hasPalette_ ? palette_ : nullptr,
                                    nullptr, format_.Flags, source_->LowBit, source_->HighBit);
    if (result == code::Success) resampler_.Run(samples, 0, target);
    return result;
}

ReturnCode BlendedOutput::Make(const BitmapHandle& source, const BitmapHandle& target,
                               const BlendFormat& format) {
    target_ = &target;
    format_ = format;
    bits_ = target.BitsPerPixel;
    order_ = OrderOf(target);
    hasPalette_ = HasEntries(target);
    if (hasPalette_) Z_GetBitmapPaletteEntries(&target, 0, 256, palette_);
    if (bits_ <= MostIndexedBits) {
        const bool isWhole = !hasPalette_ || target.ColorsUsed >= 1u << bits_;
        way_ = format.IsDithered ? Way::Dither : isWhole ? Way::Convert : Way::Match;
        if (HasGrayLevels(source) && TakesGrayLevels(source, target)) {
            way_ = Way::Convert;
            bits_ = 0;
        }
    }
    if (IsGray(source)) {
        flags_ = Z_CONVERT_SOURCE_GRAY;
        if (IsGray(target)) {
            flags_ |= Z_CONVERT_TARGET_GRAY | Z_CONVERT_TARGET_WINDOW;
            lowBit_ = source.LowBit;
            highBit_ = source.HighBit;
        }
    }
    const int32_t widest = std::max(StoredBits(format.Bits), MatchedBits);
    const uint64_t bytes = std::max<uint64_t>(BytesOf(target.Width, widest), target.BytesPerLine);
    if (!FitsSize(bytes)) return code::OutOfMemory;
    row_.emplace(static_cast<size_t>(bytes));
    if (!*row_) return code::OutOfMemory;
    if (way_ == Way::Dither) return StartDithering();
    // A conversion that there is not is found by trying it.
    uint8_t pixel[8] = {};
    return way_ == Way::Match ? Convert(pixel, 1, MatchedBits, Z_ORDER_BGR)
                              : Convert(pixel, 1, bits_, order_);
}

ReturnCode BlendedOutput::StartDithering() {
    Z_InitBitmap(&dithered_, target_->Width, target_->Height, format_.Bits);
    dithered_.Order = Z_ORDER_BGR;
    dithered_.DitheringMethod = DitherFloydSteinberg;
    const uint32_t colors = hasPalette_ ? target_->ColorsUsed : 1u << bits_;
    std::memset(row_->data(), 0, target_->BytesPerLine);
    return Z_StartDitheringExt(&dithered_, hasPalette_ ? palette_ : nullptr, colors, bits_, nullptr);
}

ReturnCode BlendedOutput::Convert(uint8_t* row, int32_t pixels, int32_t bits, int32_t order) const {
    if (format_.Bits == bits && format_.Order == order && flags_ == 0) return code::Success;
    const ReturnCode result =
        Z_ConvertBufferExt(row, pixels, format_.Bits, bits, format_.Order, order, nullptr,
                           hasPalette_ ? palette_ : nullptr, flags_, lowBit_, highBit_);
    if (format_.IsGrayWords() && order != Z_ORDER_GRAY) ClearAlpha(bits, row, static_cast<size_t>(pixels));
    return result;
}

// 24 bits to indices of a palette that ends before the depth does.
void BlendedOutput::Match(uint8_t* row) const {
    const auto bits = static_cast<uint32_t>(bits_);
    const auto colors = static_cast<int32_t>(target_->ColorsUsed);
    uint32_t gathered = 0, count = 0;
    uint8_t* target = row;
    for (int32_t i = 0; i < target_->Width; ++i) {
        const uint8_t* pixel = row + size_t{3} * static_cast<size_t>(i);
        const int32_t index = Z_FindPaletteIndex(palette_, colors, pixel[2], pixel[1], pixel[0]);
        gathered = gathered << bits | static_cast<uint32_t>(std::max(index, 0));
        count += bits;
        if (count < 8) continue;
        count -= 8;
        *target++ = static_cast<uint8_t>(gathered >> count);
    }
    if (count != 0) *target = static_cast<uint8_t>(gathered << (8 - count));
}

ReturnCode BlendedOutput::Take(const uint8_t* samples) {
    uint8_t* const row = row_->data();
    ReturnCode result = code::Success;
    if (way_ == Way::Dither) {
        result = Z_DitherLine(&dithered_, samples, row);
    } else {
        std::memcpy(row, samples, static_cast<size_t>(target_->Width) * format_.Samples.PixelBytes());
        const bool matches = way_ == Way::Match;
        result = Convert(row, target_->Width, matches ? MatchedBits : bits_, matches ? Z_ORDER_BGR : order_);
        if (result == code::Success && matches) Match(row);
    }
    ClearBehind(target_->BitsPerPixel, row, static_cast<uint32_t>(target_->Width), target_->BytesPerLine);
    return result;
}

} // namespace zkr
