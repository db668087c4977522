// Packed blocks of global memory made of bitmaps.
#include "core/bitmap_lock.h"
#include "core/exact_rows.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/views.h"
#include "display/dib/depth_for_dib.h"
#include "display/dib/dib_header.h"
#include "display/dib/resolution.h"
#include "platform/graphics.h"
#include "platform/memory.h"
#include "zkr13n/dib.h"
#include "zkr13n/flip.h"
#include "zkr13n/palettes.h"

#include <cstring>
#include <limits>

namespace zkr::dib {

namespace {

constexpr uint32_t LargestHeader = 124;
constexpr size_t ColourSpaceOffset = 56;

uint32_t HeaderBytesOf(int32_t dibType) {
    return dibType == Z_DIB_V5 ? LargestHeader : dibType == Z_DIB_V4 ? 108 : InfoHeaderBytes;
}

// A bitmap in a form and view that a block can hold: a shallow copy of the caller's, or a bitmap of its own.
class HoldableBitmap {
  public:
    HoldableBitmap() = default;
    ~HoldableBitmap() {
        if (isOwn_) Z_FreeBitmap(&record_);
        if (ramp_ != nullptr) platform::DeleteObject(ramp_);
    }
    HoldableBitmap(const HoldableBitmap&) = delete;
    HoldableBitmap& operator=(const HoldableBitmap&) = delete;

    BitmapHandle& record() { return record_; }

    [[nodiscard]] ReturnCode Take(const BitmapHandle& bitmap) {
        record_ = bitmap;
        record_.Region = nullptr;
        const HeldForm form = HeldFormOf(bitmap);
        ReturnCode status = code::Success;
        if (form.IsChange) status = ChangeForm(form);
        if (status != code::Success) return status;
        const int32_t value = record_.ViewPerspective;
        return value == view::TopLeft || value == view::BottomLeft ? code::Success : ChangeView();
    }

  private:
    ReturnCode ChangeForm(const HeldForm& form) {
        BitmapHandle source = record_;
        if (source.BitsPerPixel <= MostIndexedBits && source.Palette == nullptr) {
            source.Palette = ramp_ = Z_CreateGrayPalette(source.BitsPerPixel);
            source.Flags &= ~flag::PaletteIsBlock;
            if (ramp_ == nullptr) return code::OutOfMemory;
        }
        const ReturnCode status = BringToForm(source, record_, form);
        isOwn_ = status == code::Success;
        return status;
    }

    ReturnCode ChangeView() {
        if (isOwn_) return Z_IntChangeBitmapViewPerspective(nullptr, &record_, view::BottomLeft, 0);
        BitmapHandle source = record_;
        const ReturnCode status =
            Z_IntChangeBitmapViewPerspective(&record_, &source, view::BottomLeft, Z_DUP_DATA | Z_DUP_PALETTE);
        isOwn_ = status == code::Success;
        return status;
    }

    BitmapHandle record_{};
    HPALETTE ramp_ = nullptr;
    bool isOwn_ = false;
};

// Writes the header and the colours. The block is as long as they need.
void WriteHead(uint8_t* data, const BitmapHandle& bitmap, uint32_t headerBytes, const RGBQUAD* colours,
               uint32_t count) {
    const uint64_t imageBytes = RowsBytes(bitmap, bitmap.Height);
    BITMAPINFOHEADER header{};
    header.biSize = headerBytes;
    header.biWidth = bitmap.Width;
    header.biHeight = bitmap.Height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<uint16_t>(bitmap.BitsPerPixel);
    header.biSizeImage =
        imageBytes <= std::numeric_limits<uint32_t>::max() ? static_cast<uint32_t>(imageBytes) : 0;
    header.biXPelsPerMeter = PelsPerMetre(bitmap.XResolution);
    header.biYPelsPerMeter = PelsPerMetre(bitmap.YResolution);
    header.biClrUsed = count;
    std::memset(data, 0, headerBytes);
    std::memcpy(data, &header, sizeof header);
    if (headerBytes == LargestHeader) std::memcpy(data + ColourSpaceOffset, "BGRs", 4);
    if (count != 0) std::memcpy(data + headerBytes, colours, count * sizeof *colours);
}

ReturnCode WriteRows(uint8_t* rows, BitmapHandle& bitmap) {
    const BitmapLock lock(&bitmap);
    const bool isBottomUp = bitmap.ViewPerspective == view::BottomLeft;
    for (int32_t i = 0; i < bitmap.Height; ++i, rows += bitmap.BytesPerLine) {
        const int32_t row = isBottomUp ? i : bitmap.Height - i - 1;
        const ReturnCode status = ReadExactly(bitmap, rows, row, 0, bitmap.BytesPerLine);
        if (status != code::Success) return status;
    }
    return code::Success;
}

HGLOBAL MakeBlock(BitmapHandle& bitmap, int32_t dibType) {
    RGBQUAD colours[256];
    const uint32_t count = bitmap.BitsPerPixel <= MostIndexedBits ? ColoursOf(bitmap, colours) : 0;
    const uint32_t headerBytes = HeaderBytesOf(dibType);
    const uint64_t headBytes = uint64_t{headerBytes} + count * sizeof(RGBQUAD);
    const uint64_t bytes = headBytes + RowsBytes(bitmap, bitmap.Height);
    if (!FitsSize(bytes)) return nullptr;
    HGLOBAL block = platform::GlobalAlloc(GMEM_MOVEABLE | GMEM_SHARE, static_cast<size_t>(bytes));
    if (block == nullptr) return nullptr;
    auto* const data = static_cast<uint8_t*>(platform::GlobalLock(block));
    ReturnCode status = code::OutOfMemory;
    if (data != nullptr) {
        WriteHead(data, bitmap, headerBytes, colours, count);
        status = WriteRows(data + headBytes, bitmap);
        platform::GlobalUnlock(block);
    }
    if (status == code::Success) return block;
    platform::GlobalFree(block);
    return nullptr;
}

} // namespace

} // namespace zkr::dib

using namespace zkr;

HGLOBAL Z_CALL Z_ConvertToDIB2(BitmapHandle* bitmap, int32_t dibType) {
    if (!IsAllocated(bitmap)) return nullptr;
    dib::HoldableBitmap holdable;
    if (holdable.Take(*bitmap) != code::Success) return nullptr;
    return dib::MakeBlock(holdable.record(), dibType);
}

HGLOBAL Z_CALL Z_ConvertToDIB(BitmapHandle* bitmap) {
    return Z_ConvertToDIB2(bitmap, Z_DIB_INFO);
}

HGLOBAL Z_CALL Z_ChangeToDIB2(BitmapHandle* bitmap, int32_t dibType) {
    if (!IsAllocated(bitmap) || HasFlag(*bitmap, flag::Locked)) return nullptr;
    HGLOBAL block = Z_ConvertToDIB2(bitmap, dibType);
    if (block != nullptr) Z_FreeBitmap(bitmap);
    return block;
}

HGLOBAL Z_CALL Z_ChangeToDIB(BitmapHandle* bitmap) {
    return Z_ChangeToDIB2(bitmap, Z_DIB_INFO);
}
