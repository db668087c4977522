// zkr info: what a picture file holds. Only the header is read.
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_reader.h"
#include "apps/zkr/verb.h"

#include <cinttypes>
#include <cstdio>
#include <filesystem>

namespace zkr::app {

namespace {

struct InfoOptions {
    std::string picture;
};

void Describe(CLI::App& verb, InfoOptions& options) {
    AddInput(verb, "PICTURE", options.picture, "the file");
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
}

} // namespace

constexpr Verb InfoVerb = VerbOf<InfoOptions, Describe, Run>(
    "info", "Tell what a picture file holds, from its header", "info photo.png");

} // namespace zkr::app
