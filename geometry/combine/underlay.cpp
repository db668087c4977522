// Z_UnderlayBitmap: rows go through 24 bits, where the gray of the texture is added to each channel, and back.
#include "zkr13n/combine.h"

#include "colour/gray/level_table.h"
#include "core/depth.h"
#include "core/predicates.h"
#include "core/region_rows.h"
#include "core/return_codes.h"
#include "core/row_access.h"
#include "core/row_walk.h"
#include "core/scratch.h"
#include "geometry/kernels/combine_kernels.h"
#include "kernels/family.h"
#include "zkr13n/convert.h"
#include "zkr13n/copy.h"
#include "zkr13n/dither.h"
#include "zkr13n/flip.h"
#include "zkr13n/frame.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/rows.h"
#include "zkr13n/sizing.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace zkr::geometry {

namespace {

constexpr int32_t LitBits = 24;

// Takes the thread's callbacks away for a scope.
class SilentThread {
  public:
    SilentThread() : status_(Z_GetStatusCallBack(&statusData_)), copy_(Z_GetCopyStatusCallBack(&copyData_)) {
        Z_SetStatusCallBack(nullptr, 0);
        Z_SetCopyStatusCallBack(nullptr, 0);
    }
    ~SilentThread() {
        Z_SetStatusCallBack(status_, statusData_);
        Z_SetCopyStatusCallBack(copy_, copyData_);
    }
    SilentThread(const SilentThread&) = delete;
    SilentThread& operator=(const SilentThread&) = delete;

  private:
    intptr_t statusData_ = 0, copyData_ = 0;
    StatusCallback status_, copy_;
};

// The texture as gray of 8 bits, in the view of a bitmap.
class Texture {
  public:
    Texture() = default;
    ~Texture() { Z_FreeBitmap(&gray_); }
    Texture(const Texture&) = delete;
    Texture& operator=(const Texture&) = delete;

    ReturnCode Make(BitmapHandle& underlay, const BitmapHandle& bitmap, bool stretches) {
        ReturnCode status = Z_CopyBitmap(&gray_, &underlay);
        if (status != code::Success) {
            gray_ = {};
            return status;
        }
        status = Z_GrayScaleBitmap(&gray_, 8);
        if (status == code::Success && gray_.ViewPerspective != bitmap.ViewPerspective)
            status = Z_IntChangeBitmapViewPerspective(nullptr, &gray_, bitmap.ViewPerspective, 0);
        if (status == code::Success && stretches)
            status = Z_SizeBitmap(&gray_, bitmap.Width, bitmap.Height, 0);
        return status;
    }

    BitmapHandle& Gray() { return gray_; }

    // Its row for a row of the bitmap, repeated over as many columns.
    ReturnCode Fetch(int32_t row, uint8_t* columns, int32_t count) {
        const auto width = static_cast<size_t>(gray_.Width), all = static_cast<size_t>(count);
        size_t done = std::min(width, all);
        const ReturnCode status =
            ReadExactly(gray_, columns, row % gray_.Height, 0, static_cast<uint32_t>(done));
        for (; done < all; done += std::min(width, all - done))
            std::memcpy(columns + done, columns, std::min(width, all - done));
        return status;
    }

  private:
    BitmapHandle gray_{};
};

class UnderlaidRows {
  public:
    UnderlaidRows(BitmapHandle& bitmap, Texture& texture)
        : bitmap_(bitmap), texture_(texture), isGray_(HasGrayWords(bitmap)),
          isDithered_(bitmap.BitsPerPixel <= MostIndexedBits), region_(bitmap),
          levels_(bitmap, (1u << std::min(bitmap.BitsPerPixel, 16)) - 1),
          row_(Z_CalcConvertSize(bitmap.Width, bitmap.BitsPerPixel, bitmap.Width, LitBits)),
          indices_(isDithered_ ? bitmap.BytesPerLine : 1), gray_(static_cast<size_t>(bitmap.Width)) {}
    ~UnderlaidRows() { Z_StopDithering(&dithered_); }
    UnderlaidRows(const UnderlaidRows&) = delete;
    UnderlaidRows& operator=(const UnderlaidRows&) = delete;

    ReturnCode Begin() {
        if (!row_ || !indices_ || !gray_ || !levels_) return code::OutOfMemory;
        hasPalette_ = isDithered_ && bitmap_.Palette != nullptr;
        if (hasPalette_) Z_GetBitmapPaletteEntries(&bitmap_, 0, MostEntries, palette_);
        const ReturnCode status = region_.Begin();
        return status == code::Success && isDithered_ ? StartDithering() : status;
    }

    ReturnCode Underlay(int32_t row) {
        std::span<const uint32_t> segments;
        ReturnCode status = region_.SegmentsOf(row, segments);
        if (status != code::Success || (segments.empty() && !isDithered_)) return status;
        status = texture_.Fetch(row, gray_.data(), bitmap_.Width);
        if (status != code::Success) return status;
        if (bitmap_.BitsPerPixel == LitBits && bitmap_.Region == nullptr)
            if (uint8_t* pixels = ReachRow(bitmap_, row)) {
                Light(pixels);
                return code::Success;
            }
        uint8_t* const pixels = row_.data();
        status = ReadExactly(bitmap_, pixels, row, 0, bitmap_.BytesPerLine);
        if (status == code::Success) status = ToColours(pixels);
        if (status != code::Success) return status;
        Light(pixels);
        status = isDithered_ ? Z_DitherLine(&dithered_, pixels, indices_.data()) : FromColours(pixels);
        if (status != code::Success || segments.empty()) return status;
        return Z_PutBitmapRowSegments(&bitmap_, isDithered_ ? indices_.data() : pixels, row, 0,
                                      segments.data(), static_cast<uint32_t>(segments.size()), 1);
    }

  private:
    ReturnCode StartDithering() {
        std::memset(indices_.data(), 0, bitmap_.BytesPerLine);
        ReturnCode status = Z_InitBitmap(&dithered_, bitmap_.Width, bitmap_.Height, LitBits);
        if (status != code::Success) return status;
        dithered_.Order = Z_ORDER_BGR;
        dithered_.DitheringMethod = DitherFloydSteinberg;
        const uint32_t colors = hasPalette_ ? bitmap_.ColorsUsed : 1u << bitmap_.BitsPerPixel;
        return Z_StartDitheringExt(&dithered_, hasPalette_ ? palette_ : nullptr, colors, bitmap_.BitsPerPixel,
                                   nullptr);
    }

    void Light(uint8_t* pixels) {
        kernels_.Underlay(pixels, gray_.data(), static_cast<size_t>(bitmap_.Width));
    }

    // 12 bits are gray in any order. The order of 24 bits does not matter.
    int32_t Order() const { return isGray_ ? Z_ORDER_GRAY : bitmap_.Order; }

    ReturnCode ToColours(uint8_t* pixels) {
        if (bitmap_.BitsPerPixel == LitBits) return code::Success;
        const RGBQUAD* table = isGray_ ? levels_.Entries() : hasPalette_ ? palette_ : nullptr;
        return Z_ConvertBufferExt(
            pixels, bitmap_.Width, bitmap_.BitsPerPixel, LitBits, Order(), Z_ORDER_BGR, table, nullptr,
            isGray_ ? Z_CONVERT_SOURCE_GRAY | Z_CONVERT_SOURCE_WINDOW : 0u, bitmap_.LowBit, bitmap_.HighBit);
    }

    ReturnCode FromColours(uint8_t* pixels) {
        if (bitmap_.BitsPerPixel == LitBits) return code::Success;
        return Z_ConvertBufferExt(
            pixels, bitmap_.Width, LitBits, bitmap_.BitsPerPixel, Z_ORDER_BGR, Order(), nullptr, nullptr,
            isGray_ ? Z_CONVERT_TARGET_GRAY | Z_CONVERT_TARGET_WINDOW : 0u, bitmap_.LowBit, bitmap_.HighBit);
    }

    const kernels::CombineKernels& kernels_ = kernels::Chosen<kernels::CombineKernels>();
    BitmapHandle& bitmap_;
    Texture& texture_;
    bool isGray_;
    bool isDithered_;
    bool hasPalette_ = false;
    RegionRows region_;
    LevelTable levels_;
    ScratchBuffer<uint8_t> row_, indices_, gray_;
    RGBQUAD palette_[MostEntries] = {};
    BitmapHandle dithered_{};
};

} // namespace

} // namespace zkr::geometry

using namespace zkr;
using namespace zkr::geometry;

ReturnCode Z_CALL Z_UnderlayBitmap(BitmapHandle* bitmap, BitmapHandle* underlay, uint32_t flags) {
    if (!IsAllocated(bitmap) || !IsAllocated(underlay)) return code::InvalidBitmap;
    if (flags > UNDERLAY_STRETCH) return code::InvalidArgument;
    const SilentThread silent;
    Texture texture;
    ReturnCode status = texture.Make(*underlay, *bitmap, flags == UNDERLAY_STRETCH);
    if (status != code::Success) return status;
    UnderlaidRows rows(*bitmap, texture);
    status = rows.Begin();
    if (status != code::Success) return status;
    return RowWalk(*bitmap).With(texture.Gray()).Run(bitmap->Height, [&](int32_t row) {
        return Visited(rows.Underlay(row));
    });
}
