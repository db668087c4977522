// The works of playing animations, and their frames.
#pragma once

#include "zkr13n.h"

#include <cstdint>
#include <vector>

namespace bench {

enum AnimationWork { PlayWhole = 5200, PlayChanges };

inline constexpr int32_t AnimationWidth = 640, AnimationHeight = 480, AnimationFrames = 12;
inline constexpr uint8_t TransparentIndex = 255;

struct Frame {
    std::vector<RGBQUAD> Palette;
    std::vector<uint8_t> Indices; // rows from the top, without padding
};

// Looks into the photograph that go over it, each in 256 colours of its own. For PlayChanges half of the pixels, spots of
// a few pixels, are transparent in all frames but the first.
std::vector<Frame> AnimationFor(AnimationWork work);

} // namespace bench
