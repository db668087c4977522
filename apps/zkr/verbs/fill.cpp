// zkr fill: one colour over a picture or a rectangle of it.
#include "apps/zkr/edit.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"

namespace zkr::app {

namespace {

struct FillOptions : EditOptions {
    uint32_t colour = 0; // 0x00BBGGRR
    Rectangle area;      // without a width the whole picture
};

void Describe(CLI::App& verb, FillOptions& options) {
    AddColour(verb, "--color", options.colour, "the colour, must be given; a palette's nearest is taken")
        ->required();
    AddRectangle(verb, options.area, false);
}

void Run(const FillOptions& options) {
    ChangePicture(options, "filling   ", [&](Bitmap& picture) {
        if (options.area.width > 0)
            Fill(picture, options.colour, options.area);
        else
            Fill(picture, options.colour);
    });
}

} // namespace

constexpr Verb FillVerb =
    EditVerbOf<FillOptions, Describe, Run>("fill", "Fill a picture, or a rectangle of it, with a colour",
                                           "fill photo.png filled.png --color E6821E --width 32 --height 24");

} // namespace zkr::app
