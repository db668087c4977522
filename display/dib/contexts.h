// Device contexts and what is selected into them, for a scope.
#pragma once

#include "platform/graphics.h"

namespace zkr::dib {

// The caller's context, or one of the screen.
class DeviceOrScreen {
  public:
    explicit DeviceOrScreen(HDC given)
        : screen_(given == nullptr ? platform::GetDC(nullptr) : nullptr),
          context_(given == nullptr ? screen_ : given) {}
    ~DeviceOrScreen() {
        if (screen_ != nullptr) platform::ReleaseDC(nullptr, screen_);
    }
    DeviceOrScreen(const DeviceOrScreen&) = delete;
    DeviceOrScreen& operator=(const DeviceOrScreen&) = delete;

    HDC Get() const { return context_; } // null where memory is short

  private:
    HDC screen_;
    HDC context_;
};

// A palette, selected and realised. A null one changes nothing.
class SelectedPalette {
  public:
    SelectedPalette(HDC context, HPALETTE palette) : context_(context) {
        if (palette == nullptr) return;
        before_ = platform::SelectPalette(context, palette, 0);
        platform::RealizePalette(context);
    }
    ~SelectedPalette() {
        if (before_ != nullptr) platform::SelectPalette(context_, before_, 0);
    }
    SelectedPalette(const SelectedPalette&) = delete;
    SelectedPalette& operator=(const SelectedPalette&) = delete;

  private:
    HDC context_;
    HPALETTE before_ = nullptr;
};

// A header with room for its colours.
struct InfoWithColours {
    BITMAPINFOHEADER Header{};
    RGBQUAD Colours[256]{};

    platform::BITMAPINFO* Get() { return reinterpret_cast<platform::BITMAPINFO*>(&Header); }
};

} // namespace zkr::dib
