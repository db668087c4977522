// Dots per inch and pixels per metre.
#pragma once

#include <cstdint>

namespace zkr::dib {

struct Resolutions {
    int32_t X;
    int32_t Y;
};

// What the screen's figures come to: its pixels per inch over its size in millimetres.
Resolutions ScreenPelsPerMetre();

int32_t DotsPerInch(int32_t pelsPerMetre);
int32_t PelsPerMetre(int32_t dotsPerInch);

} // namespace zkr::dib
