// Comparison of two bitmaps of one size and depth.
#pragma once

#include "bitmap.h"

#include <string>

namespace zkr::app {

// Whether all pixels are the same, byte for byte. Padding behind the last pixel of a row does not count.
bool SameRows(Bitmap& one, Bitmap& other);

// How close two bitmaps of 24 bits are: peak signal to noise ratio in decibels, infinite when they are equal.
double Psnr(Bitmap& one, Bitmap& other);

// "equal" or "31.2 dB".
std::string Closeness(double decibels);

} // namespace zkr::app
