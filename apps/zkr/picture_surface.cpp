#include "picture_surface.h"

#include "failure.h"

#include "zkr13n/surface.h"

namespace zkr::app {

PictureSurface::PictureSurface(Bitmap& picture) {
    constexpr uint32_t elsewhere = Z_FLAG_DISK | Z_FLAG_TILED | Z_FLAG_COMPRESSED | Z_FLAG_SUPER_COMPRESSED;
    const BitmapHandle& bitmap = *picture.Handle();
    // A bitmap that is too large for memory has gone to tiles or a file.
    if ((bitmap.Flags & elsewhere) != 0) throw Failure(picture.Name(), MessageOf(Z_ERROR_MEMORY));
    const PixelFormat& format = picture.Format();
    const SurfaceDescription description = {.StructSize = sizeof description,
                                            .Width = bitmap.Width,
                                            .Height = bitmap.Height,
                                            .BitsPerPixel = bitmap.BitsPerPixel,
                                            .Pitch = static_cast<int32_t>(bitmap.BytesPerLine),
                                            .TopDown = 1,
                                            .Bits = bitmap.Addr,
                                            .Colors = format.PaletteOrNull(),
                                            .ColorCount = static_cast<int32_t>(format.palette.size()),
                                            .StaticColors = 0};
    Check(Z_CreateSurface(&description, &context_), picture.Name());
}

PictureSurface::~PictureSurface() {
    Z_DeleteSurface(context_);
}

} // namespace zkr::app
