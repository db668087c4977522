// zkr info: what a picture file holds. Only the header is read, unless something is selected.
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_reader.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/selection.h"
#include "apps/zkr/verb.h"

#include <cinttypes>
#include <cstdio>
#include <filesystem>

namespace zkr::app {

namespace {

struct InfoOptions {
    std::string picture;
    Selection selection;
};

void Describe(CLI::App& verb, InfoOptions& options) {
    AddInput(verb, "PICTURE", options.picture, "the file");
    AddSelection(verb, options.selection);
}

void Run(const InfoOptions& options) {
    const auto reader = OpenPicture(options.picture);
    const PictureInfo& info = reader->Info();
    const PixelFormat& format = info.format;
    BitmapHandle plan;
    Check(Z_InitBitmap(&plan, info.width, info.height, format.StoredBits()), options.picture);

    std::printf("%s\n", options.picture.c_str());
    std::printf("  file     %s%s, %" PRIuMAX " bytes\n", info.kind.c_str(),
                info.passes > 1 ? ", interlaced" : "", std::filesystem::file_size(options.picture));
    std::printf("  size     %d x %d pixels\n", info.width, info.height);
    if (info.view != VIEW_TOP_LEFT) std::printf("  shown    %s\n", NameOfView(info.view));
    std::printf("  pixels   %s%s\n", ShortName(format).c_str(), format.alpha ? ", with alpha" : "");
    if (format.IsIndexed()) std::printf("  palette  %d colours\n", info.colours);
    std::printf("  bitmap   %" PRIu32 " bytes a row, %zu bytes\n", plan.BytesPerLine, plan.Size);
    if (options.selection.steps.empty()) return;
    const auto select = [&] {
        const StatusBar bar("selecting ");
        Bitmap read = ReadUpright(*reader, options.picture, Storage{});
        Select(read, options.selection);
        return read;
    };
    Bitmap picture = select();
    const Rectangle bounds = BoundsOfSelection(picture);
    std::printf("  selected %" PRIu32 " pixels within %d,%d,%d,%d\n", AreaOfSelection(picture), bounds.left,
                bounds.top, bounds.width, bounds.height);
}

} // namespace

constexpr Verb InfoVerb = VerbOf<InfoOptions, Describe, Run>(
    "info", "Tell what a picture file holds, from its header, and what is selected of it", "info photo.png");

} // namespace zkr::app
