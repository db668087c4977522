// zkr convert: a picture into another depth, order or palette. What the command line asks for becomes a pixel
// format here; whether the depth exists is for the library to say.
#include "convert.h"
#include "picture_reader.h"
#include "progress.h"
#include "verbs.h"
#include "write_png.h"

#include "failure.h"

namespace zkr::app {

namespace {

int TargetOrder(const ConvertOptions& options, const PixelFormat& source) {
    const bool grayFits = options.bits == 12 || options.bits == 16;
    if (!options.order) {
        const bool gray = options.bits == 12 || (options.bits == 16 && source.IsGray());
        return gray ? Z_ORDER_GRAY : Z_ORDER_RGB;
    }
    const bool gray = *options.order == Z_ORDER_GRAY;
    if (options.bits < 12) throw Failure(options.output, "--order is for 12 bits per pixel and more");
    if (gray && !grayFits) throw Failure(options.output, "--order gray is for 12 and 16 bits per pixel");
    if (!gray && options.bits == 12) throw Failure(options.output, "12 bits per pixel are always gray");
    return *options.order;
}

Palette TargetPalette(const ConvertOptions& options, const PixelFormat& source) {
    if (options.bits < 1 || options.bits > 8) {
        if (options.palette) throw Failure(options.output, "--palette is for 1 to 8 bits per pixel");
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

void RefuseUnknownDepth(const ConvertOptions& options) {
    BitmapHandle plan;
    const ReturnCode result = Z_InitBitmap(&plan, 1, 1, options.bits == 0 ? 8 : options.bits);
    Check(result, options.output + ": " + std::to_string(options.bits) + " bits per pixel");
}

} // namespace

void RunConvert(const ConvertOptions& options) {
    RefuseUnknownDepth(options);
    const auto reader = OpenPicture(options.input);
    const PixelFormat format = TargetFormat(options, reader->Info().format);
    const Storage storage = {.kind = options.storage};
    const bool sourceFits = CanLiveIn(options.storage, reader->Info().format.bits);
    if (!options.output.ends_with(".png")) throw Failure(options.output, "the name does not end in .png");

    const auto read = [&] {
        const StatusBar bar("reading   ");
        return ReadPicture(*reader, options.input, sourceFits ? storage : Storage{});
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

} // namespace zkr::app
