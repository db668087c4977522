// zkr flip: a picture upside down.
#include "apps/zkr/picture_job.h"
#include "apps/zkr/turn_work.h"

namespace zkr::app {

namespace {

void Describe(CLI::App&, EditOptions&) {}

void Run(const EditOptions& options) {
    ChangePicture(options, "flipping  ", Flip);
}

} // namespace

constexpr Verb FlipVerb = EditVerbOf<EditOptions, Describe, Run>("flip", "Turn a picture upside down",
                                                                 "flip photo.png flipped.png");

} // namespace zkr::app
