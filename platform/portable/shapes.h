// The pixels of shapes: those whose centres lie inside. All functions give false where memory is short or the
// shape is too large to be walked, and then leave out as it was.
#pragma once

#include "platform/portable/pixel_set.h"

namespace zkr::platform {

// A rectangle whose corners are quarters of an ellipse of the given width and height: an ellipse itself where
// these are the rectangle's own.
bool SetOfRoundRect(const RECT& rect, int64_t cornerWidth, int64_t cornerHeight, PixelSet& out);

// An outline of straight figures, each closed from its last point to its first, in fractions of a pixel.
class Outline {
  public:
    static constexpr int64_t One = 256; // a pixel

    struct Point {
        int64_t x;
        int64_t y;
    };

    Outline() = default;
    ~Outline();
    Outline(const Outline&) = delete;
    Outline& operator=(const Outline&) = delete;

    void Clear();
    bool IsEmpty() const { return count_ == 0; }
    // False where memory is short; the outline is then of no use any more but to be cleared.
    bool MoveTo(Point point);
    bool LineTo(Point point);
    bool CurveTo(Point control1, Point control2, Point end); // a cubic Bezier curve
    bool Close();                                            // the figure, back to its first point

    // The pixels inside: where the outline winds around them at all, or an odd number of times.
    bool Fill(bool alternate, PixelSet& out) const;

  private:
    struct Edge;
    static bool Sweep(Edge* edges, size_t count, bool alternate, PixelSet& out);

    bool AddLine(Point from, Point to);

    struct Line {
        Point from;
        Point to;
    };
    Line* lines_ = nullptr;
    size_t count_ = 0, room_ = 0;
    Point first_{}, last_{}; // of the figure
};

} // namespace zkr::platform
