// Viewport: where a picture lies in a window. It is fitted, or shown at a scale and moved as far as its edges allow; where
// it is smaller than the window it stands in the middle. Nothing here knows of pixels or of the window itself.
#pragma once

#include "apps/zkr/shapes.h"

#include <optional>

namespace zkr::app {

// The part of two rectangles that is common, without width or height where there is none.
Rectangle Common(const Rectangle& one, const Rectangle& other);
// The smallest rectangle around both, of which empty ones are no part.
Rectangle Around(const Rectangle& one, const Rectangle& other);
bool IsEmpty(const Rectangle& area);
bool Contains(const Rectangle& area, const Point& point);

class Viewport {
  public:
    void SetWindow(const Size& window);   // keeps what is in the middle there
    void SetPicture(const Size& picture); // as it is seen; it is fitted
    // The same picture with its sides exchanged, or not: keeps the scale and goes to the middle.
    void Turned(const Size& picture);

    // The whole picture as large as the window allows, but never enlarged; it stays fitted when the window changes.
    void Fit();
    // The pixel under a point of the window stays there, as far as the edges allow.
    void SetScale(double scale, const Point& about);
    // Up or down a ladder of scales.
    void Zoom(int steps, const Point& about);
    void Pan(int dx, int dy);

    bool IsFitted() const { return fitted_; }
    double Scale() const { return scale_; }
    const Size& Window() const { return window_; }
    Point Middle() const { return {window_.width / 2, window_.height / 2}; }
    // The whole picture in the window, over whose edges it may reach.
    Rectangle Destination() const;
    // The part of the window that shows the picture.
    Rectangle Visible() const;

    // The pixel of the picture that a pixel of the window shows.
    std::optional<Point> PictureAt(const Point& inWindow) const;
    // The same with points outside brought to the nearest pixel.
    Point NearestPictureAt(const Point& inWindow) const;
    // The pixels of the window that show a part of the picture. Enlarged, these are all of theirs; reduced, those whose
    // pixel is one of the part.
    Rectangle InWindow(const Rectangle& ofPicture) const;

  private:
    double FittingScale() const;
    void Settle();

    Size window_ = {1, 1};
    Size picture_ = {1, 1};
    double scale_ = 1;
    double left_ = 0, top_ = 0; // not rounded, so that zooming there and back does not drift
    bool fitted_ = true;
};

} // namespace zkr::app
