// The works of regions, and the text that they are measured on: a part of the page at four sevenths of its resolution, as large as
// the photograph, of about 100 thousand runs.
#pragma once

#include "pictures.h"

#include <vector>

namespace bench {

enum RegionWork {
    UniteText = 7000,
    IntersectText,
    SubtractText,
    CopyText,
    OffsetText,
    TextFromMask,
    TextIntoMask,
    PointsInText,
    ColourRegion24,
    HueRegion24,
    WandAroundText24,
    WandAroundText8,
    FillText24,
    FillCheckerboard24,
    RotateText,
    ScaleText
};

inline constexpr int32_t TextWidth = PhotographWidth, TextHeight = PhotographHeight;
inline constexpr size_t TextPixels = PhotographPixels;

// Ink as white on black in 1 bit, black on white paper in 8 and 24.
BitmapHandle* TextMask();
BitmapHandle* TextPaper(int32_t bitsPerPixel);

// The ink, and the same mirrored.
const RegionHandle* TextRegion();
const RegionHandle* OtherTextRegion();

// Squares of a pixel on a bitmap of the photograph's size.
const RegionHandle* Checkerboard();

// A bitmap of the text's size; a depth of 0 is 8 bits of gray.
BitmapHandle* NewSheet(int32_t bitsPerPixel);

// The record of one without pixels, whose region is a copy.
BitmapHandle* SheetWith(const RegionHandle* region);

struct Place {
    int32_t X, Y;
};
const std::vector<Place>& Points();

// Colours of the photograph around the one that is most frequent, as bounds 0x00BBGGRR; and a range of hues.
inline constexpr uint32_t LowerColour = 0x402000, UpperColour = 0xC0A080;
inline constexpr uint32_t LowerHsv = 0x2010F0, UpperHsv = 0xFFFF20;

inline constexpr uint32_t FillColour = 0x336699;
inline constexpr int32_t ScaledBy = 37; // hundredths

} // namespace bench
