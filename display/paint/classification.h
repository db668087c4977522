// Which way of painting suits a bitmap on a device in a display mode.
#pragma once

#include "platform/graphics.h"
#include "zkr13n/bitmap.h"

#include <cstdint>
#include <span>

namespace zkr {

enum class PaintMethod : uint8_t {
    AsStored,
    Widened,  // to 24 bits, or below 8 bits to whole nibbles and bytes
    Dithered, // to the depth of the device's class
    // Of 1 bit, and gray with black first or white first.
    ScaleToGray,
    ScaleToGrayReversed,
    CoarseGray, // where it is scaled
    CoarseGrayReversed
};

// The depth of a device in steps of what painting makes a difference of: 1, 4, 8 or 24. A metafile counts as 24.
int32_t DeviceClassOf(HDC context);

PaintMethod ClassifyPainting(const BitmapHandle& bitmap, int32_t deviceClass, uint32_t displayMode);

// Gray by its order, with levels that are all gray where there is a level table.
bool IsGrayForPainting(const BitmapHandle& bitmap);

// The record as painting and that test read it: with its level table, where it has one, in use whatever its flag says. Without
// the flag it is the window of levels that is shown.
BitmapHandle WithLevelTableActive(const BitmapHandle& bitmap);

// The palette that dithering for a device class takes, which is what the device gets with the rows: 2, 16 or 256
// colours.
std::span<const RGBQUAD> DitheringPalette(int32_t deviceClass, uint32_t displayMode);

} // namespace zkr
