// ShownPicture: a picture, or an animation, with all that a viewer changes of it. Pixels are never changed: turns are turns of
// the view, adjustments work in painting. Points and rectangles are those of the picture as it is seen.
#pragma once

#include "apps/zkr/animation.h"
#include "apps/zkr/bitmap.h"
#include "apps/zkr/shapes.h"

#include <memory>
#include <optional>
#include <string>

namespace zkr::app {

struct Adjustments {
    int brightness = 0; // thousandths, -1000 to 1000
    int contrast = 0;   // likewise
    int gamma = 100;    // hundredths
};

// Which values of deep gray are shown from black to white, both included.
struct GrayWindow {
    int low = 0;
    int high = 0;
};

class ShownPicture {
  public:
    explicit ShownPicture(const std::string& path);

    Bitmap& Pixels() { return animation_ != nullptr ? *canvas_ : *picture_; }
    Size SizeSeen();
    const std::string& Path() const { return path_; }

    void Turn(int degrees); // clockwise, a multiple of 90
    void Mirror();
    void Flip();

    const Adjustments& Adjusted() const { return adjustments_; }
    void Adjust(const Adjustments& adjustments);

    // Gray of 12 and 16 bits.
    bool IsDeepGray();
    const GrayWindow& Window() const { return window_; }
    int LargestGray();
    void ShowWindow(GrayWindow window);

    bool HasSelection();
    void SelectNear(const Point& pixel, int tolerance, uint32_t mode);
    void SelectRectangle(const Rectangle& area, uint32_t mode);
    void Deselect();
    Rectangle SelectionBounds();
    uint32_t SelectionArea();

    // "12,40  #C08040  192 128 64  index 5".
    std::string Tell(const Point& pixel);

    bool IsAnimation() const { return animation_ != nullptr && animation_->Frames() > 1; }
    int Frames() const { return animation_->Frames(); }
    int Frame() const { return animation_->Index(); }
    int DelayOfFrame() const { return animation_->DelayOf(Frame()); }
    // Gives what of the picture has changed.
    Rectangle NextFrame();

  private:
    Point Stored(const Point& pixel);
    Rectangle Seen(RECT stored);

    std::string path_;
    std::unique_ptr<Animation> animation_;
    Bitmap* canvas_ = nullptr; // the animation's
    std::optional<Bitmap> picture_;
    Adjustments adjustments_;
    GrayWindow window_;
};

} // namespace zkr::app
