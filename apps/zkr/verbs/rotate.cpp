// zkr rotate: a picture turned by any angle.
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/turn_work.h"

namespace zkr::app {

namespace {

struct RotateOptions : EditOptions {
    Rotation rotation;
};

const Words<RotationMethod> Methods = {{"nearest", RotationMethod::Nearest},
                                       {"linear", RotationMethod::Linear},
                                       {"cubic", RotationMethod::Cubic}};

void Describe(CLI::App& verb, RotateOptions& options) {
    AddAngle(verb, "--angle", options.rotation.hundredths,
             "clockwise, must be given; 90, 180 and 270 are exact")
        ->required();
    AddWord(verb, "--method", options.rotation.method, Methods,
            "how new pixels are found, linear by default; indices are never mixed");
    verb.add_flag("--grow", options.rotation.grow, "make room for the whole picture");
    AddColour(verb, "--fill", options.rotation.fill, "the colour around the picture, white by default");
}

void Run(const RotateOptions& options) {
    ChangePicture(options, "rotating  ", [&](Bitmap& picture) { Rotate(picture, options.rotation); });
}

} // namespace

constexpr Verb RotateVerb = EditVerbOf<RotateOptions, Describe, Run>(
    "rotate", "Turn a picture by any angle", "rotate photo.png turned.png --angle 30 --method cubic --grow");

} // namespace zkr::app
