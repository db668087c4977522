// A device context of 32 bits whose pixels a test reads: on Windows a memory context of the system, elsewhere a surface.
#pragma once

#include "zkr13n/surface.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace zkr::test {

class MemoryDevice {
  public:
    MemoryDevice(int width, int height, uint8_t filling)
        : count_(static_cast<size_t>(width) * static_cast<size_t>(height)) {
#ifdef _WIN32
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        Context = CreateCompatibleDC(nullptr);
        bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits_, nullptr, 0);
        before_ = SelectObject(Context, bitmap_);
#else
        pixels_.resize(count_ * 4);
        bits_ = pixels_.data();
        const SurfaceDescription description = {
            sizeof description, width, height, 32, width * 4, 1, bits_, nullptr, 0, 0};
        Z_CreateSurface(&description, &Context);
#endif
        std::memset(bits_, filling, count_ * 4);
    }
    ~MemoryDevice() {
#ifdef _WIN32
        SelectObject(Context, before_);
        DeleteObject(bitmap_);
        DeleteDC(Context);
#else
        Z_DeleteSurface(Context);
#endif
    }
    MemoryDevice(const MemoryDevice&) = delete;
    MemoryDevice& operator=(const MemoryDevice&) = delete;

    // Blue, green, red of each pixel, the uppermost row first; the fourth byte is 0.
    std::vector<uint32_t> Pixels() const {
#ifdef _WIN32
        GdiFlush();
#endif
        std::vector<uint32_t> pixels(count_);
        std::memcpy(pixels.data(), bits_, count_ * 4);
        for (uint32_t& pixel : pixels)
            pixel &= 0xFFFFFF;
        return pixels;
    }

    HDC Context = nullptr;

  private:
    size_t count_;
    void* bits_ = nullptr;
#ifdef _WIN32
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ before_ = nullptr;
#else
    std::vector<uint8_t> pixels_;
#endif
};

} // namespace zkr::test
