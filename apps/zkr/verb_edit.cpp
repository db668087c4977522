// zkr crop and zkr fill: a picture read, changed where it stands, and written in its own depth.
#include "edit.h"
#include "picture_reader.h"
#include "progress.h"
#include "verbs.h"
#include "write_png.h"

#include "failure.h"

namespace zkr::app {

namespace {

template <class Change> void Edited(const EditOptions& options, const char* doing, Change change) {
    const auto reader = OpenPicture(options.input);
    if (!options.output.ends_with(".png")) throw Failure(options.output, "the name does not end in .png");
    const auto read = [&] {
        const StatusBar bar("reading   ");
        return ReadPicture(*reader, options.input, {.kind = options.storage});
    };
    Bitmap picture = read();
    {
        const StatusBar bar(doing);
        change(picture);
    }
    const StatusBar bar("writing   ");
    WritePng(picture, options.output);
}

} // namespace

void RunCrop(const CropOptions& options) {
    Edited(options, "cropping  ", [&](Bitmap& picture) { Crop(picture, options.area); });
}

void RunFill(const FillOptions& options) {
    Edited(options, "filling   ", [&](Bitmap& picture) {
        if (options.area)
            Fill(picture, options.colour, *options.area);
        else
            Fill(picture, options.colour);
    });
}

} // namespace zkr::app
