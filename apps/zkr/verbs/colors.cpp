// zkr colors: a picture with a palette of few colours.
#include "apps/zkr/colour_work.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/picture_reader.h"

#include <algorithm>
#include <bit>

namespace zkr::app {

namespace {

struct ColorsOptions : EditOptions {
    std::optional<int> bits;
    std::optional<int> colours;
    int method = DitherFloydSteinberg;
    std::string palette = "optimized"; // or "fixed", "cube", the name of a picture file
};

Words<int> MethodWords() {
    Words<int> words;
    for (const DitherMethod& one : DitherMethods)
        words.emplace_back(one.word, one.method);
    return words;
}
const Words<int> Methods = MethodWords();

void Describe(CLI::App& verb, ColorsOptions& options) {
    AddValue(verb, "--colors", options.colours, NumberFrom(1, 256), "N", "a whole number from 1 to 256",
             "how many colours, 1 to 256 (default: as many as the bits hold)");
    AddValue(verb, "--bits", options.bits, NumberFrom(1, 8), "N", "a whole number from 1 to 8",
             "bits per pixel, 1 to 8 (default: what the colours take, else 8)");
    AddWord(
        verb, "--dither", options.method, Methods,
        "how colours are mixed from those of the palette (default:\nfloyd-steinberg); nearest does not mix");
    verb.add_option("--palette", options.palette,
                    "optimized (the default) is made for the picture; fixed is one\n"
                    "that suits all pictures; cube, for 8 bits, has six levels of\n"
                    "red, green and blue each; a picture file gives its own")
        ->type_name("optimized|fixed|cube|FILE");
}

// The colours of a picture file that has a palette.
Palette PaletteOfFile(const std::string& path, int bits) {
    const Palette palette = OpenPicture(path)->Info().format.palette;
    if (palette.empty()) throw Failure(path, "the picture has no palette");
    if (palette.size() > size_t{1} << bits)
        throw Failure(path, "its palette of " + std::to_string(palette.size()) +
                                " colours is too large for " + std::to_string(bits) + " bits per pixel");
    return palette;
}

int BitsFor(const ColorsOptions& options) {
    if (!options.colours) return options.bits.value_or(8);
    const int needed =
        std::max(static_cast<int>(std::bit_width(static_cast<unsigned>(*options.colours - 1))), 1);
    const int bits = options.bits.value_or(needed);
    if (bits < needed)
        throw UsageFailure("--colors: " + std::to_string(*options.colours) + " are too many for " +
                           std::to_string(bits) + " bits per pixel");
    return bits;
}

Reduction ReductionFor(const ColorsOptions& options) {
    Reduction reduction = {
        .bits = BitsFor(options), .method = options.method, .count = options.colours.value_or(0)};
    if (options.palette == "optimized") return reduction;
    if (options.colours)
        throw UsageFailure("--colors: only the optimized palette can have any number of colours");
    if (options.palette == "fixed") {
        reduction.palette = COLORRES_FIXED_PALETTE;
    } else if (options.palette == "cube") {
        if (reduction.bits != 8) throw UsageFailure("--palette: the cube of colours is for 8 bits per pixel");
        reduction.palette = COLORRES_CUBE_PALETTE;
    } else {
        reduction.palette = COLORRES_USER_PALETTE;
        reduction.colours = PaletteOfFile(options.palette, reduction.bits);
    }
    return reduction;
}

void Run(const ColorsOptions& options) {
    const Reduction reduction = ReductionFor(options);
    ChangePicture(options, "reducing  ", [&](Bitmap& picture) { picture = Reduced(picture, reduction); });
}

} // namespace

constexpr Verb ColorsVerb =
    EditVerbOf<ColorsOptions, Describe, Run>("colors", "Reduce a picture to a palette of few colours",
                                             "colors photo.png few.png --colors 20 --dither sierra");

} // namespace zkr::app
