// The pictures that the benchmarks work on: one the size of a camera's, one a scanned page.
#pragma once

#include "zkr13n.h"

#include <cstdint>
#include <vector>

namespace bench {

inline constexpr int32_t PhotographWidth = 4096;
inline constexpr int32_t PhotographHeight = 3072;
inline constexpr int32_t PageWidth = 9920; // A4 at 1200 dots an inch
inline constexpr int32_t PageHeight = 14032;

// A rectangle of the photograph, and by how much the page is moved to the left, to be copied.
inline constexpr int32_t CopiedLeft = 501, CopiedTop = 300, CopiedWidth = 3000, CopiedHeight = 2000;
inline constexpr int32_t ShiftedBy = 3;

inline constexpr size_t PhotographPixels = size_t{PhotographWidth} * PhotographHeight;
inline constexpr size_t PagePixels = size_t{PageWidth} * PageHeight;

// Photograph-like colours, three bytes a pixel, blue first, rows without padding (they need none at this
// width).
const std::vector<uint8_t>& Photograph();

// How near an indexed picture comes to the photograph: peak signal to noise of all channels, in decibels.
double DecibelsOf(const uint8_t* indices, size_t rowBytes, const RGBQUAD* palette);

// A palette of 256 colours in no order, as a quantiser would leave it: colours of the photograph.
const std::vector<RGBQUAD>& Palette256();

// A conventional bitmap of the photograph's size in any depth, filled with the photograph converted to it, or
// fresh.
BitmapHandle* PhotographBitmap(int32_t bitsPerPixel, int32_t order);
BitmapHandle* EmptyBitmap(int32_t width, int32_t height, int32_t bitsPerPixel, int32_t order);

// A 1-bit page of text, ink as 1 bits: letters of strokes, lines of them, margins.
BitmapHandle* PageBitmap();

// The first byte of a conventional bitmap's data.
inline uint8_t* Data(BitmapHandle* bitmap) {
    return static_cast<uint8_t*>(bitmap->Addr);
}

} // namespace bench
