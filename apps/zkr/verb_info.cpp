// zkr info: what a picture file holds. Only the header is read.
#include "picture_reader.h"
#include "verbs.h"

#include "failure.h"

#include <cinttypes>
#include <cstdio>
#include <filesystem>

namespace zkr::app {

void RunInfo(const InfoOptions& options) {
    const auto reader = OpenPicture(options.picture);
    const PictureInfo& info = reader->Info();
    const PixelFormat& format = info.format;
    BitmapHandle plan;
    Check(Z_InitBitmap(&plan, info.width, info.height, format.StoredBits()), options.picture);

    std::printf("%s\n", options.picture.c_str());
    std::printf("  file     %s%s, %" PRIuMAX " bytes\n", info.kind.c_str(),
                info.passes > 1 ? ", interlaced" : "", std::filesystem::file_size(options.picture));
    std::printf("  size     %d x %d pixels\n", info.width, info.height);
    std::printf("  pixels   %s%s\n", ShortName(format).c_str(), format.alpha ? ", with alpha" : "");
    if (format.IsIndexed()) std::printf("  palette  %zu colours\n", format.palette.size());
    std::printf("  bitmap   %" PRIu32 " bytes a row, %zu bytes\n", plan.BytesPerLine, plan.Size);
}

} // namespace zkr::app
