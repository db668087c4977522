// zkr convert: a picture into another depth, order or palette. What the command line asks for becomes a pixel
// format here; whether the depth exists is for the library to say.
#include "apps/zkr/convert.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/picture_reader.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/write_png.h"

namespace zkr::app {

namespace {

enum class PaletteChoice { Fixed, Gray };

struct ConvertOptions : EditOptions {
    int bits = 24;
    std::optional<int> order; // Z_ORDER_...
    std::optional<PaletteChoice> palette;
};

const Words<int> Depths = {{"0", 0},   {"1", 1},   {"2", 2},   {"3", 3},   {"4", 4},
                           {"5", 5},   {"6", 6},   {"7", 7},   {"8", 8},   {"12", 12},
                           {"16", 16}, {"24", 24}, {"32", 32}, {"48", 48}, {"64", 64}};
const Words<int> Orders = {{"rgb", Z_ORDER_RGB}, {"bgr", Z_ORDER_BGR}, {"gray", Z_ORDER_GRAY}};
const Words<PaletteChoice> Palettes = {{"fixed", PaletteChoice::Fixed}, {"gray", PaletteChoice::Gray}};

void Describe(CLI::App& verb, ConvertOptions& options) {
    AddWord(verb, "--bits", options.bits, Depths,
            "bits per pixel, must be given: 1 to 8 (palette),\n"
            "0 (8-bit gray), 12 (gray), 16, 24, 32, 48 or 64")
        ->required()
        ->type_name("N");
    AddWord(verb, "--order", options.order, Orders,
            "colour order from 12 bits on (default: gray for 12 bits\n"
            "and for 16 bits of a gray picture, else rgb)");
    AddWord(verb, "--palette", options.palette, Palettes,
            "palette of 1 to 8 bits: fixed suits all pictures, gray\n"
            "is black to white (default: the picture's own where\n"
            "the depth stays, else fixed). See zkr colors for one\n"
            "made for the picture");
}

int TargetOrder(const ConvertOptions& options, const PixelFormat& source) {
    const bool grayFits = options.bits == 12 || options.bits == 16;
    if (!options.order) {
        const bool gray = options.bits == 12 || (options.bits == 16 && source.IsGray());
        return gray ? Z_ORDER_GRAY : Z_ORDER_RGB;
    }
    const bool gray = *options.order == Z_ORDER_GRAY;
    if (options.bits < 12) throw UsageFailure("--order is for 12 bits per pixel and more");
    if (gray && !grayFits) throw UsageFailure("--order gray is for 12 and 16 bits per pixel");
    if (!gray && options.bits == 12) throw UsageFailure("--order: 12 bits per pixel are always gray");
    return *options.order;
}

Palette TargetPalette(const ConvertOptions& options, const PixelFormat& source) {
    if (options.bits < 1 || options.bits > 8) {
        if (options.palette) throw UsageFailure("--palette is for 1 to 8 bits per pixel");
        return {};
    }
    if (!options.palette && source.bits == options.bits) return source.palette;
    const PaletteChoice choice = options.palette.value_or(PaletteChoice::Fixed);
    return choice == PaletteChoice::Gray ? GrayPalette(options.bits) : FixedPalette(options.bits);
}

PixelFormat TargetFormat(const ConvertOptions& options, const PixelFormat& source) {
    PixelFormat format;
    format.bits = options.bits;
    format.order = TargetOrder(options, source);
    format.palette = TargetPalette(options, source);
    format.alpha = source.alpha && (options.bits == 32 || options.bits == 64);
    return format;
}

void Run(const ConvertOptions& options) {
    CheckOutputName(options.output);
    const auto reader = OpenPicture(options.input);
    const PixelFormat format = TargetFormat(options, reader->Info().format);
    const Storage storage = {.kind = options.storage};
    const bool sourceFits = CanLiveIn(options.storage, reader->Info().format.bits);

    const auto read = [&] {
        const StatusBar bar("reading   ");
        return ReadUpright(*reader, options.input, sourceFits ? storage : Storage{});
    };
    const auto convert = [&] {
        Bitmap source = read();
        const StatusBar bar("converting");
        return Converted(source, format, storage);
    };
    Bitmap target = convert();
    const StatusBar bar("writing   ");
    WritePng(target, options.output);
}

} // namespace

constexpr Verb ConvertVerb = EditVerbOf<ConvertOptions, Describe, Run>(
    "convert", "Convert a picture to another depth, order or palette",
    "convert photo.png small.png --bits 4 --palette gray");

} // namespace zkr::app
