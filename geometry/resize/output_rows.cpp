// Decides between conversion and dithering, and writes rows of the output.
#include "geometry/resize/output_rows.h"

#include "core/predicates.h"
#include "core/sizes.h"
#include "geometry/row_tail.h"
#include "platform/graphics.h"
#include "zkr13n/convert.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

namespace zkr {

ReturnCode OutputRows::Make(const BitmapHandle& source, const WorkRows& work, const OutputRequest& request) {
    work_ = work.format();
    isGraySource_ = IsGray(source);
    ChooseForm(source, request);
    if (!IsSupportedDepth(bits())) return code::InvalidArgument;
    if (isDithered_) return StartDithering(source, work, request);
    // A conversion that there is not is found by trying it.
    uint8_t pixel[8] = {};
    const ReturnCode result = Convert(pixel, 1);
    if (result != code::Success) return result;
    const auto widest = static_cast<uint32_t>(std::max({bits(), work_.StoredBits(), source.BitsPerPixel}));
    const uint64_t bytes = (static_cast<uint64_t>(request.Width) * widest + 7) / 8;
    if (!FitsSize(bytes)) return code::OutOfMemory;
    row_.emplace(static_cast<size_t>(bytes));
    return *row_ ? code::Success : code::OutOfMemory;
}

void OutputRows::ChooseForm(const BitmapHandle& source, const OutputRequest& request) {
    const bool isGray = (request.Flags & (RESIZE_ORDER_BGR | RESIZE_ORDER_GRAY)) == RESIZE_ORDER_GRAY;
    order_ = isGray ? Z_ORDER_GRAY : (request.Flags & RESIZE_ORDER_BGR) != 0 ? Z_ORDER_BGR : Z_ORDER_RGB;
    bits_ = request.Bits < 1 ? source.BitsPerPixel : request.Bits;
    hasPalette_ = request.Palette != nullptr && bits_ <= MostIndexedBits;
    if (hasPalette_) std::copy_n(request.Palette, std::min(request.Colors, MostEntries), palette_);
    if (isGray) return;
    isDithered_ = bits_ <= MostIndexedBits;
    if (bits_ != 8) return;
    const bool couldBeRamp = request.Colors == 256 || request.Colors == 0;
    const bool isRamp = hasPalette_
                            ? couldBeRamp && Z_IsGrayScalePalette(request.Palette, 256) == GRAY_ORDEREDNORMAL
                            : Z_IsGrayScaleBitmap(&source) == GRAY_ORDEREDNORMAL;
    if (!isRamp) return;
    isDithered_ = false;
    bits_ = 0;
}

ReturnCode OutputRows::StartDithering(const BitmapHandle& source, const WorkRows& work,
                                      const OutputRequest& request) {
    Z_InitBitmap(&dithered_, request.Width, request.Height, work_.StoredBits());
    dithered_.Order = work_.IsGrayWords() ? Z_ORDER_GRAY : Z_ORDER_BGR;
    dithered_.DitheringMethod = static_cast<int32_t>(request.Flags >> RESIZE_DITHER_SHIFT & 0xFF);
    HPALETTE ramp = nullptr;
    if (work_.Bits == 0) {
        ramp = Z_CreateGrayPalette(8);
        if (ramp == nullptr) return code::OutOfMemory;
        dithered_.Palette = ramp;
        dithered_.ColorsUsed = 256;
    }
    const RGBQUAD* palette = hasPalette_ ? palette_ : work.palette();
    const uint32_t colors = hasPalette_          ? request.Colors
                            : palette != nullptr ? source.ColorsUsed
                                                 : 1u << bits_;
    const ReturnCode result = Z_StartDitheringExt(&dithered_, palette, colors, bits_, nullptr);
    dithered_.Palette = nullptr;
    if (ramp != nullptr) platform::DeleteObject(ramp);
    return result;
}

ReturnCode OutputRows::Convert(uint8_t* row, int32_t pixels) const {
    const uint32_t flags = isGraySource_ ? Z_CONVERT_SOURCE_GRAY | Z_CONVERT_TARGET_GRAY : 0;
    const ReturnCode result = Z_ConvertBufferExt(row, pixels, work_.Bits, bits_, work_.Order, order_, nullptr,
                                                 hasPalette_ ? palette_ : nullptr, flags, 0, -1);
    if (work_.IsGrayWords() && order_ != Z_ORDER_GRAY) ClearAlpha(bits_, row, static_cast<size_t>(pixels));
    return result;
}

ReturnCode OutputRows::Write(const uint8_t* row, int32_t pixels, uint8_t* target, uint32_t bytes) {
    if (isDithered_) {
        if (pixels < 1) return code::Success;
        dithered_.Width = pixels;
        return Z_DitherLine(&dithered_, row, target);
    }
    size_t written = 0;
    if (pixels > 0) {
        const auto count = static_cast<uint32_t>(pixels);
        written = static_cast<size_t>((static_cast<uint64_t>(count) * static_cast<uint32_t>(bits()) + 7) / 8);
        if (IsConverted()) {
            std::memcpy(row_->data(), row, work_.Samples.PixelBytes() * count);
            const ReturnCode result = Convert(row_->data(), pixels);
            if (result != code::Success) return result;
            ClearBehind(bits(), row_->data(), count, written);
            row = row_->data();
        }
        std::memcpy(target, row, std::min<size_t>(written, bytes));
    }
    if (written < bytes) std::memset(target + written, 0, bytes - written);
    return code::Success;
}

} // namespace zkr
