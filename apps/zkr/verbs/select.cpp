// zkr select: a part of a picture by shapes and colours, as a mask, or filled, framed or tinted.
#include "apps/zkr/convert.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/selection.h"

#include <cstdio>

namespace zkr::app {

namespace {

struct SelectOptions : EditOptions {
    Selection selection;
    uint32_t fill = 0, tint = 0;
    CLI::Option *fills = nullptr, *tints = nullptr;
    bool outline = false;
};

void Describe(CLI::App& verb, SelectOptions& options) {
    AddSelection(verb, options.selection);
    options.fills = AddColour(verb, "--fill", options.fill, "write the picture with the selection filled");
    options.tints =
        AddColour(verb, "--tint", options.tint, "write it with the selection's colours turned by this one");
    verb.add_flag("--outline", options.outline, "write it with the selection framed");
    options.fills->excludes(options.tints);
}

void Run(const SelectOptions& options) {
    if (options.selection.steps.empty())
        throw UsageFailure("nothing selects: --rect, --wand or another shape or colour");
    const bool fills = options.fills->count() > 0, tints = options.tints->count() > 0;
    ChangePicture(options, "selecting ", [&](Bitmap& picture) {
        // What is drawn as on a screen is drawn on 24 bits in memory.
        if (tints || options.outline)
            picture = Converted(picture, {.bits = 24, .order = Z_ORDER_BGR}, Storage{});
        Select(picture, options.selection);
        const Rectangle bounds = BoundsOfSelection(picture);
        std::printf("selected  %u pixels within %d,%d,%d,%d\n", AreaOfSelection(picture), bounds.left,
                    bounds.top, bounds.width, bounds.height);
        if (fills) FillSelection(picture, options.fill);
        if (tints) TintSelection(picture, options.tint);
        if (options.outline) OutlineSelection(picture);
        if (!fills && !tints && !options.outline) picture = MaskOf(picture);
    });
}

} // namespace

constexpr Verb SelectVerb = EditVerbOf<SelectOptions, Describe, Run>(
    "select", "Select a part of a picture by shapes and colours",
    "select photo.png mask.png --ellipse 5,5,40,30 --wand 50,20 --tolerance 30 --mode minus");

} // namespace zkr::app
