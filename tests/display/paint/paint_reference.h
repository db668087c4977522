// What a paint leaves on a device, worked out pixel by pixel.
#pragma once

#include "colour/pixels/pixel_model.h"
#include "zkr13n/bitmap.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace zkr::test {

// A picture as its pixels lie in storage, and all else that painting looks at.
struct Picture {
    BitmapHandle Record; // its pixels are not read
    std::vector<uint8_t> Rows;
    std::vector<RGBQUAD> Palette; // empty for none
};

struct Shown {
    RECT Source, SourceClip, Destination, DestinationClip;
    bool DocumentLocked;
};

enum class Method { AsStored, Widened, Dithered, Scale, ScaleReversed, Coarse, CoarseReversed };

Method MethodOf(const Picture& picture, int deviceClass, uint32_t mode);

// The colours by device pixel, y * width + x; nothing where the device keeps what it had.
std::vector<std::optional<Colour>> Painted(const Picture& picture, const Shown& shown, Method method,
                                           int deviceClass, uint32_t mode, int width, int height);

std::vector<RGBQUAD> DitheredPalette(int deviceClass, uint32_t mode);

} // namespace zkr::test
