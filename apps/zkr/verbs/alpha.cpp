// zkr alpha: the fourth channel of a picture, shown or set.
#include "apps/zkr/colour_work.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/picture_reader.h"

namespace zkr::app {

namespace {

struct AlphaOptions : EditOptions {
    std::string mask; // the file of the picture that becomes alpha; none to show what there is
};

void Describe(CLI::App& verb, AlphaOptions& options) {
    verb.add_option("--set", options.mask,
                    "the picture, of the same size, whose gray becomes\nthe alpha of OUT")
        ->type_name("FILE");
}

void Run(const AlphaOptions& options) {
    ChangePicture(options, "alpha     ", [&](Bitmap& picture) {
        if (options.mask.empty()) {
            picture = AlphaOf(picture);
            return;
        }
        Bitmap mask = ReadUpright(*OpenPicture(options.mask), options.mask, Storage{});
        SetAlpha(picture, mask);
    });
}

} // namespace

constexpr Verb AlphaVerb = EditVerbOf<AlphaOptions, Describe, Run>(
    "alpha", "Show the alpha of a picture, or give it one", "alpha photo.png seen.png --set photo.png");

} // namespace zkr::app
