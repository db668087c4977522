// zkr shear: rows or columns of a picture slid aside.
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/turn_work.h"

#include <cstdlib>

namespace zkr::app {

namespace {

struct ShearOptions : EditOptions {
    Shearing shearing;
};

void Describe(CLI::App& verb, ShearOptions& options) {
    AddAngle(verb, "--angle", options.shearing.hundredths,
             "how far, between -90 and 90, must be given;\npositive angles move the top to the right, or "
             "the\nright side down")
        ->required();
    verb.add_flag("--vertical", options.shearing.vertical, "slide columns up and down, not rows sideways");
    AddColour(verb, "--fill", options.shearing.fill, "the colour of the free corners, white by default");
}

void Run(const ShearOptions& options) {
    if (std::abs(options.shearing.hundredths) >= 9000)
        throw UsageFailure("--angle: between -90 and 90 degrees, and neither of them");
    ChangePicture(options, "shearing  ", [&](Bitmap& picture) { Shear(picture, options.shearing); });
}

} // namespace

constexpr Verb ShearVerb =
    EditVerbOf<ShearOptions, Describe, Run>("shear", "Slide the rows or columns of a picture",
                                            "shear photo.png slanted.png --angle 15 --fill 000000");

} // namespace zkr::app
