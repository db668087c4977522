// The device is a surface on the pixels of the result.
#include "paint_work.h"

#include "convert.h"
#include "failure.h"
#include "picture_surface.h"

#include "zkr13n/dib.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/paint.h"
#include "zkr13n/palettes.h"
#include "zkr13n/surface.h"

#include <algorithm>
#include <climits>

namespace zkr::app {

namespace {

class DisplayMode {
  public:
    explicit DisplayMode(uint32_t mode) : before_(Z_SetDisplayMode(0xFFFFFFFF, mode)) {}
    ~DisplayMode() { Z_SetDisplayMode(0xFFFFFFFF, before_); }
    DisplayMode(const DisplayMode&) = delete;
    DisplayMode& operator=(const DisplayMode&) = delete;

  private:
    uint32_t before_;
};

// The side of a picture that goes with the other one, rounded.
int Proportional(int side, int other, int otherShown, const std::string& name) {
    const int64_t shown = (int64_t{side} * otherShown + other / 2) / other;
    if (shown < 1 || shown > INT_MAX)
        throw Failure(name, "has no pixel left, or too many, when its proportions are kept");
    return static_cast<int>(shown);
}

Bitmap NewPicture(Bitmap& source, const PaintedDevice& device, Palette palette) {
    int width = device.width, height = device.height;
    if (width == 0 && height == 0) {
        width = source.Width();
        height = source.Height();
    } else if (width == 0) {
        width = Proportional(source.Width(), source.Height(), height, source.Name());
    } else if (height == 0) {
        height = Proportional(source.Height(), source.Width(), width, source.Name());
    }
    PixelFormat format = {.bits = device.bits, .order = Z_ORDER_BGR, .palette = std::move(palette)};
    if (format.IsIndexed()) format.order = Z_ORDER_RGB;
    return Bitmap(source.Name(), format, width, height, Storage{});
}

// What the device gets for this picture: for one of 256 colours a palette of the picture's own.
Palette PaletteFor(Bitmap& source, const PaintedDevice& device) {
    if (device.bits > 8) return {};
    Palette colours = FixedPalette(device.bits);
    if (device.bits < 8) return colours;
    Bitmap small = NewPicture(source, {.bits = 8, .width = 1, .height = 1}, colours);
    const PictureSurface surface(small);
    HPALETTE palette = Z_CreatePaintPalette(surface.Context(), source.Handle());
    if (palette == nullptr) return colours;
    std::fill(colours.begin(), colours.end(), RGBQUAD{});
    Z_GetPaletteEntries(palette, 0, static_cast<uint32_t>(colours.size()), colours.data());
    Z_DeleteObject(palette);
    return colours;
}

} // namespace

Bitmap PaintedOn(Bitmap& source, const PaintedDevice& device) {
    constexpr uint32_t copy = 0x00CC0020;
    BitmapHandle* bitmap = source.Handle();
    Check(Z_SetPaintIntensity(bitmap, device.brightness), source.Name());
    Check(Z_SetPaintContrast(bitmap, device.contrast), source.Name());
    Check(Z_SetPaintGamma(bitmap, static_cast<uint32_t>(device.gamma)), source.Name());
    const DisplayMode mode(DISPLAY_DITHERED | DISPLAY_DITHER_8 | DISPLAY_SCALE_TO_GRAY |
                           (device.ordered ? uint32_t{DISPLAY_ORDERED} : 0));

    Bitmap shown = NewPicture(source, device, PaletteFor(source, device));
    {
        const PictureSurface surface(shown);
        const RECT whole = {0, 0, shown.Width(), shown.Height()};
        Check(Z_PaintDC(surface.Context(), bitmap, nullptr, nullptr, &whole, nullptr, copy), source.Name());
    }
    if (device.bits != 16 && device.bits != 32) return shown;
    return Converted(shown, PixelFormat{}, Storage{});
}

} // namespace zkr::app
