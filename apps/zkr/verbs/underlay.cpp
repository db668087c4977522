// zkr underlay: a texture laid under a picture.
#include "apps/zkr/combine_work.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/write_png.h"

namespace zkr::app {

namespace {

struct UnderlayOptions {
    std::string picture, texture, output;
    bool stretch = false;
};

void Describe(CLI::App& verb, UnderlayOptions& options) {
    AddInput(verb, "IN", options.picture, "the picture that is changed");
    AddInput(verb, "TEXTURE", options.texture,
             "the texture, whose gray darkens and lightens;\nmiddle gray does neither");
    AddOutput(verb, options.output);
    verb.add_flag("--stretch", options.stretch, "bring the texture to the picture's size; else it repeats");
}

void Run(const UnderlayOptions& options) {
    CheckOutputName(options.output);
    Bitmap picture = ReadInput(options.picture), texture = ReadInput(options.texture);
    Underlay(picture, texture, options.stretch);
    const StatusBar bar("writing   ");
    WritePng(picture, options.output);
}

} // namespace

constexpr Verb UnderlayVerb = VerbOf<UnderlayOptions, Describe, Run>(
    "underlay", "Lay a texture under a picture", "underlay photo.png photo.png canvas.png --stretch");

} // namespace zkr::app
