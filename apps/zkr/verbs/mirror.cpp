// zkr mirror: a picture left to right.
#include "apps/zkr/picture_job.h"
#include "apps/zkr/turn_work.h"

namespace zkr::app {

namespace {

void Describe(CLI::App&, EditOptions&) {}

void Run(const EditOptions& options) {
    ChangePicture(options, "mirroring ", Mirror);
}

} // namespace

constexpr Verb MirrorVerb = EditVerbOf<EditOptions, Describe, Run>(
    "mirror", "Exchange left and right of a picture", "mirror photo.png mirrored.png");

} // namespace zkr::app
