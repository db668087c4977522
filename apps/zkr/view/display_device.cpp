#include "display_device.h"

#include "viewport.h"

#include "apps/zkr/failure.h"

#include "zkr13n/dib.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/paint.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zkr::app {

namespace {

constexpr uint32_t Background = 0x00303030;
constexpr uint32_t CopyPixels = 0x00CC0020;
constexpr int FixedEnds = 2; // black and white stay in the palette of a display

RECT RectOf(const Rectangle& area) {
    return {area.left, area.top, area.left + area.width, area.top + area.height};
}

// Thresholds stay where they are when a part is painted again, which errors that are diffused do not. Indices go straight
// to a display that has the picture's palette.
class ViewerMode {
  public:
    explicit ViewerMode(int bits)
        : before_(Z_SetDisplayMode(0xFFFFFFFF, Always | (bits == 8 ? uint32_t{DISPLAY_INDEXED} : 0))) {}
    ~ViewerMode() { Z_SetDisplayMode(0xFFFFFFFF, before_); }
    ViewerMode(const ViewerMode&) = delete;
    ViewerMode& operator=(const ViewerMode&) = delete;

  private:
    static constexpr uint32_t Always =
        DISPLAY_ORDERED | DISPLAY_DITHERED | DISPLAY_SCALE_TO_GRAY | DISPLAY_DITHER_8;
    uint32_t before_;
};

} // namespace

DisplayDevice::~DisplayDevice() {
    Release();
}

void DisplayDevice::Release() {
    if (context_ != nullptr) Z_DeleteSurface(context_);
    if (palette_ != nullptr) Z_DeleteObject(palette_);
    context_ = nullptr;
    palette_ = nullptr;
}

void DisplayDevice::Resize(const Size& size) {
    Release();
    size_ = size;
    pixels_.assign(static_cast<size_t>(size.width) * static_cast<size_t>(size.height), Background);
    pitch_ = (static_cast<size_t>(size.width) * static_cast<size_t>(bits_) + 31) / 32 * 4;
    SurfaceDescription description = {};
    description.StructSize = sizeof description;
    description.Width = size.width;
    description.Height = size.height;
    description.BitsPerPixel = bits_;
    description.Pitch = static_cast<int32_t>(pitch_);
    description.TopDown = 1;
    description.Bits = pixels_.data();
    Palette palette;
    if (bits_ <= 8) {
        indices_.assign(pitch_ * static_cast<size_t>(size.height), 0);
        palette = FixedPalette(bits_);
        description.Bits = indices_.data();
        description.Colors = palette.data();
        description.ColorCount = static_cast<int32_t>(palette.size());
        if (bits_ == 8) description.StaticColors = FixedEnds;
    }
    Check(Z_CreateSurface(&description, &context_), "the display");
    ReadColours();
}

void DisplayDevice::ReadColours() {
    if (bits_ > 8) return;
    RGBQUAD colours[256];
    int32_t count = 256;
    Check(Z_GetSurfaceColors(context_, colours, &count), "the display");
    colours_.resize(static_cast<size_t>(count));
    std::transform(colours, colours + count, colours_.begin(), [](const RGBQUAD& colour) {
        return static_cast<uint32_t>(colour.rgbRed << 16 | colour.rgbGreen << 8 | colour.rgbBlue);
    });
}

void DisplayDevice::TakePaletteOf(Bitmap& picture) {
    if (bits_ != 8) return;
    const ViewerMode mode(bits_);
    HPALETTE palette = Z_CreatePaintPalette(context_, picture.Handle());
    Check(Z_SelectSurfacePalette(context_, palette), picture.Name());
    if (palette_ != nullptr) Z_DeleteObject(palette_);
    palette_ = palette;
    ReadColours();
}

void DisplayDevice::Paint(Bitmap& picture, const Rectangle& destination, const Rectangle& clip) {
    const Rectangle covered = Common(destination, clip);
    if (!IsEmpty(covered)) {
        const ViewerMode mode(bits_);
        const RECT place = RectOf(destination), part = RectOf(covered);
        Check(Z_PaintDC(context_, picture.Handle(), nullptr, nullptr, &place, &part, CopyPixels),
              picture.Name());
        if (bits_ <= 8) Expand(covered);
    }
    for (int y = clip.top; y < clip.top + clip.height; ++y) {
        uint32_t* row = pixels_.data() + Offset(0, y);
        const bool isCovered = y >= covered.top && y < covered.top + covered.height && covered.width > 0;
        const int right = clip.left + clip.width;
        std::fill(row + clip.left, row + (isCovered ? covered.left : right), Background);
        if (isCovered) std::fill(row + covered.left + covered.width, row + right, Background);
    }
}

void DisplayDevice::Expand(const Rectangle& area) {
    const size_t bits = static_cast<size_t>(bits_), mask = (size_t{1} << bits) - 1;
    for (int y = area.top; y < area.top + area.height; ++y) {
        const uint8_t* indices = indices_.data() + static_cast<size_t>(y) * pitch_;
        uint32_t* row = pixels_.data() + Offset(0, y);
        for (int x = area.left; x < area.left + area.width; ++x) {
            const size_t bit = static_cast<size_t>(x) * bits;
            row[x] = colours_[indices[bit / 8] >> (8 - bits - bit % 8) & mask];
        }
    }
}

void DisplayDevice::Scroll(int dx, int dy) {
    const Rectangle whole = {0, 0, size_.width, size_.height};
    const Rectangle target = Common(whole, {dx, dy, size_.width, size_.height});
    if (IsEmpty(target)) return;
    const auto bytes = static_cast<size_t>(target.width) * sizeof(uint32_t);
    for (int i = 0; i < target.height; ++i) {
        const int y = dy > 0 ? target.top + target.height - 1 - i : target.top + i;
        std::memmove(pixels_.data() + Offset(target.left, y),
                     pixels_.data() + Offset(target.left - dx, y - dy), bytes);
    }
}

} // namespace zkr::app
