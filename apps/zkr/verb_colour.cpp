// The verbs that work on colours: zkr colors, gray, window, space and alpha.
#include "colour_work.h"
#include "failure.h"
#include "picture_job.h"
#include "picture_reader.h"

namespace zkr::app {

namespace {

// The colours of a picture file that has a palette.
Palette PaletteOfFile(const std::string& path, int bits) {
    const Palette palette = OpenPicture(path)->Info().format.palette;
    if (palette.empty()) throw Failure(path, "the picture has no palette");
    if (palette.size() > size_t{1} << bits)
        throw Failure(path, "its palette of " + std::to_string(palette.size()) +
                                " colours is too large for " + std::to_string(bits) + " bits per pixel");
    return palette;
}

Reduction ReductionFor(const ColorsOptions& options) {
    Reduction reduction = {.bits = options.bits, .method = options.method};
    if (options.palette == "optimized") return reduction;
    if (options.palette == "fixed") {
        reduction.palette = COLORRES_FIXED_PALETTE;
    } else if (options.palette == "cube") {
        reduction.palette = COLORRES_CUBE_PALETTE;
    } else {
        reduction.palette = COLORRES_USER_PALETTE;
        reduction.colours = PaletteOfFile(options.palette, options.bits);
    }
    return reduction;
}

} // namespace

void RunColors(const ColorsOptions& options) {
    const Reduction reduction = ReductionFor(options);
    ChangePicture(options, "reducing  ", [&](Bitmap& picture) { picture = Reduced(picture, reduction); });
}

void RunGray(const GrayOptions& options) {
    ChangePicture(options, "graying   ", [&](Bitmap& picture) { MakeGray(picture, options.bits); });
}

void RunWindow(const WindowOptions& options) {
    ChangePicture(options, "windowing ",
                  [&](Bitmap& picture) { ShowWindow(picture, options.low, options.high); });
}

void RunSpace(const SpaceOptions& options) {
    ChangePicture(options, "converting",
                  [&](Bitmap& picture) { picture = Channels(picture, options.space); });
}

void RunAlpha(const AlphaOptions& options) {
    ChangePicture(options, "alpha     ", [&](Bitmap& picture) {
        if (options.mask.empty()) {
            picture = AlphaOf(picture);
            return;
        }
        Bitmap mask = ReadPicture(*OpenPicture(options.mask), options.mask, Storage{});
        SetAlpha(picture, mask);
    });
}

} // namespace zkr::app
