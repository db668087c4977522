// zkr space: the channels of a colour space as gray pictures.
#include "apps/zkr/colour_work.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"

#include "zkr13n/color_spaces.h"

namespace zkr::app {

namespace {

struct SpaceOptions : EditOptions {
    int space = Z_SPACE_RGB;
};

const Words<int> Spaces = {{"rgb", Z_SPACE_RGB}, {"luma", Z_SPACE_LUMA}, {"cmyk", Z_SPACE_CMYK},
                           {"hsv", Z_SPACE_HSV}, {"hls", Z_SPACE_HLS},   {"yiq", Z_SPACE_YIQ},
                           {"cmy", Z_SPACE_CMY}};

void Describe(CLI::App& verb, SpaceOptions& options) {
    AddWord(verb, "--to", options.space, Spaces, "the colour space (default: rgb)");
}

void Run(const SpaceOptions& options) {
    ChangePicture(options, "converting",
                  [&](Bitmap& picture) { picture = Channels(picture, options.space); });
}

} // namespace

constexpr Verb SpaceVerb = EditVerbOf<SpaceOptions, Describe, Run>(
    "space", "Show the channels of a colour space side by side, in gray",
    "space photo.png channels.png --to hsv");

} // namespace zkr::app
