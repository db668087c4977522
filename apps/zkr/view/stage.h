// Stage: what a window shows, put together from what a display shows of the picture, the marching outline of the selection,
// panels, and a line of text below. It paints what is new and tells what of the window has changed.
#pragma once

#include "display_device.h"
#include "shown_picture.h"
#include "viewport.h"

#include "apps/zkr/canvas.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zkr::app {

// A picture over the picture.
struct Panel {
    Point place;
    Canvas picture;
};

class Stage {
  public:
    explicit Stage(int displayBits);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    static constexpr int LineHeight = 22;

    void Resize(const Size& whole, bool withLine);
    void SetDisplay(int bits);
    int DisplayBits() const { return bits_; }
    // Where the picture is shown.
    Size PictureArea() const { return area_; }

    // The picture, or how it is shown, has changed: all of it, or what lies in a part of the window.
    void Touch() { Touch({0, 0, area_.width, area_.height}); }
    void Touch(const Rectangle& inWindow);
    void March() { ++phase_; }
    void SetLine(const std::string& text);
    void SetPanels(std::vector<Panel> panels);
    void SetBand(const std::optional<Rectangle>& band); // a rectangle that is being drawn

    // Gives the parts of the window that have changed since the last time.
    std::vector<Rectangle> Update(ShownPicture& picture, const Viewport& viewport);

    const Size& Extent() const { return whole_; }
    const uint32_t* Pixels() const { return frame_.data(); } // 0x00RRGGBB, Extent().width in a row
    Lettering& Letters() { return lettering_; }

  private:
    uint32_t* Row(int y) { return frame_.data() + static_cast<ptrdiff_t>(y) * whole_.width; }
    void Change(const Rectangle& part);
    void PaintPicture(ShownPicture& picture, const Rectangle& destination);
    void Compose(ShownPicture& picture, const Viewport& viewport);
    void DrawOutline(ShownPicture& picture, const Viewport& viewport);
    void DrawBand();
    void DrawPanels();
    void DrawLine();
    void Put(const Point& place, const Canvas& canvas);
    void ReleaseContext();

    int bits_;
    Size whole_, area_;
    std::unique_ptr<DisplayDevice> device_;
    std::vector<uint32_t> frame_;
    HDC context_ = nullptr; // of the frame's picture area
    Lettering lettering_;

    Rectangle shownAt_;   // where the picture lies on the device
    Rectangle unpainted_; // of the device
    std::vector<Rectangle> changed_;
    Rectangle outline_; // where one is drawn
    uint32_t phase_ = 0, drawnPhase_ = 0;
    std::optional<Rectangle> band_;
    std::vector<Panel> panels_;
    std::string line_;
    bool lineChanged_ = true;
};

} // namespace zkr::app
