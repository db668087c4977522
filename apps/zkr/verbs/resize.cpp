// zkr resize: a picture at another size.
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/resize_work.h"

#include <climits>

namespace zkr::app {

namespace {

struct ResizeOptions : EditOptions {
    Resizing resizing;
};

const Words<SizeMethod> Methods = {{"nearest", SizeMethod::Nearest},
                                   {"linear", SizeMethod::Linear},
                                   {"spline", SizeMethod::Spline},
                                   {"strokes", SizeMethod::Strokes}};

void Describe(CLI::App& verb, ResizeOptions& options) {
    AddNumber(verb, "--width", options.resizing.width, 1, INT_MAX, "W",
              "new width, pixels; without it the proportions stay");
    AddNumber(verb, "--height", options.resizing.height, 1, INT_MAX, "H", "new height, likewise");
    AddWord(verb, "--method", options.resizing.method, Methods,
            "how new pixels are found, linear by default; linear and spline\n"
            "take means where the picture shrinks, strokes keeps thin black\n"
            "lines at 1 bit");
}

void Run(const ResizeOptions& options) {
    if (options.resizing.width == 0 && options.resizing.height == 0)
        throw UsageFailure("--width or --height is required");
    ChangePicture(options, "resizing  ", [&](Bitmap& picture) { Resize(picture, options.resizing); });
}

} // namespace

constexpr Verb ResizeVerb = EditVerbOf<ResizeOptions, Describe, Run>(
    "resize", "Give a picture another size", "resize photo.png small.png --width 40 --method linear");

} // namespace zkr::app
