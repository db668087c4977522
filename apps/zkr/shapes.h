// Points, sizes and rectangles in pixels.
#pragma once

namespace zkr::app {

struct Point {
    int x = 0;
    int y = 0;
};

struct Size {
    int width = 0;
    int height = 0;
};

struct Rectangle {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

} // namespace zkr::app
