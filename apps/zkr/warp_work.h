// A picture drawn into a quadrilateral of a scene, for verbs and the tour. Both stand upright.
#pragma once

#include "bitmap.h"
#include "shapes.h"

#include <array>

namespace zkr::app {

struct Warping {
    std::array<Point, 4> points; // where the corners go, clockwise from the top left one
    bool blend = true;           // neighbours; else the nearest pixel is taken
};

// The picture comes in the scene's format.
void Warp(Bitmap& scene, Bitmap& picture, const Warping& warping);

// The format in which two pictures can meet: colour of 8 or 16 bits a channel, as the deeper of them has it.
PixelFormat MeetingFormat(const PixelFormat& one, const PixelFormat& other);

} // namespace zkr::app
