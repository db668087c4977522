// zkr crop: a rectangle of a picture.
#include "apps/zkr/edit.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"

namespace zkr::app {

namespace {

struct CropOptions : EditOptions {
    Rectangle area;
};

void Describe(CLI::App& verb, CropOptions& options) {
    AddRectangle(verb, options.area, true);
}

void Run(const CropOptions& options) {
    ChangePicture(options, "cropping  ", [&](Bitmap& picture) { Crop(picture, options.area); });
}

} // namespace

constexpr Verb CropVerb =
    EditVerbOf<CropOptions, Describe, Run>("crop", "Cut a rectangle out of a picture",
                                           "crop photo.png part.png --left 8 --top 4 --width 32 --height 24");

} // namespace zkr::app
