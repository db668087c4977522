// DisplayDevice: what a display of 1, 4, 8 or 32 bits shows of a picture, as pixels of 32 bits. The library paints on a
// surface of that depth.
#pragma once

#include "apps/zkr/bitmap.h"
#include "apps/zkr/shapes.h"

#include "zkr13n/surface.h"

#include <cstdint>
#include <vector>

namespace zkr::app {

class DisplayDevice {
  public:
    explicit DisplayDevice(int bits) : bits_(bits) {}
    ~DisplayDevice();
    DisplayDevice(const DisplayDevice&) = delete;
    DisplayDevice& operator=(const DisplayDevice&) = delete;

    // What was painted is gone.
    void Resize(const Size& size);
    // Paints what lies in the clip, which is inside the device; around the picture, the background.
    void Paint(Bitmap& picture, const Rectangle& destination, const Rectangle& clip);
    // Moves all pixels; those that come in from outside are left to be painted.
    void Scroll(int dx, int dy);
    // Gives a display of 8 bits the palette that the picture is best shown with.
    void TakePaletteOf(Bitmap& picture);

    const Size& Extent() const { return size_; }
    // 0x00RRGGBB.
    const uint32_t* Row(int y) const { return pixels_.data() + Offset(0, y); }

  private:
    size_t Offset(int x, int y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(size_.width) + static_cast<size_t>(x);
    }
    void Release();
    void Expand(const Rectangle& area);
    void ReadColours();

    int bits_;
    Size size_;
    HDC context_ = nullptr;
    HPALETTE palette_ = nullptr;
    std::vector<uint32_t> pixels_;
    std::vector<uint8_t> indices_; // of a display of up to 8 bits
    size_t pitch_ = 0;             // bytes in a row of them
    std::vector<uint32_t> colours_;
};

} // namespace zkr::app
