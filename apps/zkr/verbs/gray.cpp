// zkr gray: a picture without its colours.
#include "apps/zkr/colour_work.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"

namespace zkr::app {

namespace {

struct GrayOptions : EditOptions {
    int bits = 8;
};

const Words<int> Depths = {{"8", 8}, {"12", 12}, {"16", 16}};

void Describe(CLI::App& verb, GrayOptions& options) {
    AddWord(verb, "--bits", options.bits, Depths, "bits per pixel (default: 8)");
}

void Run(const GrayOptions& options) {
    ChangePicture(options, "graying   ", [&](Bitmap& picture) { MakeGray(picture, options.bits); });
}

} // namespace

constexpr Verb GrayVerb = EditVerbOf<GrayOptions, Describe, Run>("gray", "Make a picture gray",
                                                                 "gray photo.png gray.png --bits 16");

} // namespace zkr::app
