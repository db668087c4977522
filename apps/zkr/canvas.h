// Canvas: a picture of 24-bit colour in plain memory, on which contact sheets are laid out; Thumbnail: a
// bitmap made small enough for it; Lettering: text in a font of the system.
#pragma once

#include "bitmap.h"

#include <memory>
#include <string>
#include <vector>

namespace zkr::app {

struct Colour {
    uint8_t red, green, blue;
};

class Canvas {
  public:
    Canvas(int width, int height, Colour background);

    int Width() const { return width_; }
    int Height() const { return height_; }
    uint8_t* Pixel(int x, int y) {
        return &rgb_[3 * (static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x))];
    }

    void Frame(int x, int y, int width, int height, Colour colour); // one pixel wide
    void Put(int x, int y, const Canvas& picture);
    // Mixes a colour in, `coverage` of 255 parts; places outside are skipped.
    void Blend(int x, int y, Colour colour, int coverage);

  private:
    int width_;
    int height_;
    std::vector<uint8_t> rgb_;
};

// The bitmap, of 24 bits in rgb order, reduced by averaging to fit into a box. A smaller bitmap keeps its
// size.
Canvas Thumbnail(Bitmap& bitmap, int boxWidth, int boxHeight);

class Lettering {
  public:
    // Without a font every text is empty, and Available() false.
    Lettering();
    ~Lettering();
    Lettering(const Lettering&) = delete;
    Lettering& operator=(const Lettering&) = delete;

    bool Available() const;
    // `baseline` is the y of the line that letters stand on; `size` is their height in pixels. ASCII only.
    void Draw(Canvas& canvas, int x, int baseline, int size, bool bold, Colour colour,
              const std::string& text);
    int Width(int size, bool bold, const std::string& text);

  private:
    struct Fonts;
    std::unique_ptr<Fonts> fonts_;
};

} // namespace zkr::app
