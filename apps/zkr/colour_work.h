// What zkr makes of a picture's colours: fewer of them, gray, the gray values of a window, the channels of
// another colour space, alpha.
#pragma once

#include "bitmap.h"

#include "zkr13n/color_resolution.h"
#include "zkr13n/dither.h"

namespace zkr::app {

// The methods of dithering with the words that name them in options, file names and titles.
struct DitherMethod {
    int method;
    const char* word;
    const char* title;
};
constexpr DitherMethod DitherMethods[] = {
    {DitherNone, "nearest", "Nearest"},          {DitherFloydSteinberg, "floyd-steinberg", "Floyd-Steinberg"},
    {DitherStucki, "stucki", "Stucki"},          {DitherBurkes, "burkes", "Burkes"},
    {DitherSierra, "sierra", "Sierra"},          {DitherStevensonArce, "stevenson-arce", "Stevenson-Arce"},
    {DitherJarvis, "jarvis", "Jarvis"},          {DitherOrdered, "ordered", "Ordered"},
    {DitherClustered, "clustered", "Clustered"},
};

struct Reduction {
    int bits = 8; // 1 to 8
    int method = DitherNone;
    int count = 0; // colours of an optimized palette; 0 for as many as the bits hold
    uint32_t palette = COLORRES_OPTIMIZED_PALETTE; // COLORRES_..._PALETTE
    Palette colours = {};                          // with COLORRES_USER_PALETTE
};
Bitmap Reduced(Bitmap& source, const Reduction& reduction);

// 8 bits become a picture with a gray palette, 12 and 16 one of gray values.
void MakeGray(Bitmap& picture, int bits);

// Makes a picture of 8 bits of the gray values from `low`, which become black, to `high`, which become white.
// Other pictures than those of 12 and 16-bit gray are taken for 16 bits.
void ShowWindow(Bitmap& picture, int low, int high);

// The channels of a colour space, Z_SPACE_... of the 8-bit class, side by side as gray pictures. Middle gray
// is 0 in channels that have a sign.
Bitmap Channels(Bitmap& source, int space);

// The alpha of a picture as a gray one; a gray picture as the alpha of another.
Bitmap AlphaOf(Bitmap& picture);
void SetAlpha(Bitmap& picture, Bitmap& alpha);

} // namespace zkr::app
