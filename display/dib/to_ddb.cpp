// Platform bitmaps that show what painting makes of a bitmap.
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/views.h"
#include "display/dib/contexts.h"
#include "zkr13n/dib.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/gray.h"
#include "zkr13n/paint.h"

namespace zkr::dib {

namespace {

// Dithering without indices into the device's palette, for a scope.
class PaintingWithoutIndices {
  public:
    PaintingWithoutIndices()
        : before_(Z_SetDisplayMode(DISPLAY_INDEXED | DISPLAY_DITHERED, DISPLAY_DITHERED)) {}
    ~PaintingWithoutIndices() { Z_SetDisplayMode(~0u, before_); }
    PaintingWithoutIndices(const PaintingWithoutIndices&) = delete;
    PaintingWithoutIndices& operator=(const PaintingWithoutIndices&) = delete;

  private:
    uint32_t before_;
};

// Deletes a palette at the end of the scope; null is none.
class OwnedPalette {
  public:
    explicit OwnedPalette(HPALETTE palette) : palette_(palette) {}
    ~OwnedPalette() {
        if (palette_ != nullptr) platform::DeleteObject(palette_);
    }
    OwnedPalette(const OwnedPalette&) = delete;
    OwnedPalette& operator=(const OwnedPalette&) = delete;

    HPALETTE Get() const { return palette_; }

  private:
    HPALETTE palette_;
};

HBITMAP CreateFor(HDC context, const BitmapHandle& bitmap) {
    const int32_t width = ViewedWidth(bitmap), height = ViewedHeight(bitmap);
    const int32_t grayness = bitmap.BitsPerPixel == 1 ? Z_IsGrayScaleBitmap(&bitmap) : GRAY_NO;
    if (grayness == GRAY_ORDEREDNORMAL || grayness == GRAY_ORDEREDREVERSE)
        return platform::CreateBitmap(width, height, 1, 1, nullptr);
    return platform::CreateCompatibleBitmap(context, width, height);
}

ReturnCode PaintOn(HDC context, HDC memory, BitmapHandle& bitmap) {
    const PaintingWithoutIndices mode;
    const OwnedPalette palette(Z_CreatePaintPalette(context, &bitmap));
    const SelectedPalette selected(memory, palette.Get());
    const RECT whole = {0, 0, ViewedWidth(bitmap), ViewedHeight(bitmap)};
    return Z_PaintDC(memory, &bitmap, nullptr, nullptr, &whole, nullptr, SRCCOPY);
}

HBITMAP ToDdb(HDC given, BitmapHandle& bitmap) {
    const DeviceOrScreen context(given);
    if (context.Get() == nullptr) return nullptr;
    HDC memory = platform::CreateCompatibleDC(context.Get());
    if (memory == nullptr) return nullptr;
    HBITMAP made = CreateFor(context.Get(), bitmap);
    bool isPainted = false;
    if (made != nullptr) {
        platform::HGDIOBJ before = platform::SelectObject(memory, made);
        isPainted = before != nullptr && PaintOn(context.Get(), memory, bitmap) == code::Success;
        if (before != nullptr) platform::SelectObject(memory, before);
    }
    platform::DeleteDC(memory);
    if (isPainted) return made;
    if (made != nullptr) platform::DeleteObject(made);
    return nullptr;
}

} // namespace

} // namespace zkr::dib

using namespace zkr;

HBITMAP Z_CALL Z_ConvertToDDB(HDC deviceContext, BitmapHandle* bitmap) {
    return IsAllocated(bitmap) ? dib::ToDdb(deviceContext, *bitmap) : nullptr;
}

HBITMAP Z_CALL Z_ChangeToDDB(HDC deviceContext, BitmapHandle* bitmap) {
    HBITMAP made = Z_ConvertToDDB(deviceContext, bitmap);
    if (made != nullptr) Z_FreeBitmap(bitmap);
    return made;
}
