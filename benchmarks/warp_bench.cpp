// The photograph drawn into a quadrilateral that nearly fills another picture of its size.
#include "warp_work.h"

#include "pictures.h"
#include "work.h"

namespace bench {

namespace {

void AddWarp(int number, const char* name, uint32_t flags) {
    AddWork(number, {name, PhotographPixels, PhotographPixels * 6, [flags] {
                         BitmapHandle* scene = EmptyBitmap(PhotographWidth, PhotographHeight, 24, 1);
                         WarpPoints points;
                         POINT* corner = &points.TopLeft;
                         for (const auto& [x, y] : WarpCorners)
                             *corner++ = {x, y};
                         Z_CombineBitmapWarp(scene, &points, PhotographBitmap(24, 1), 0, 0, PhotographWidth,
                                             PhotographHeight, flags);
                         Touch(Data(scene));
                     }});
}

const Adds adds([] {
    AddWarp(WarpNearest, "warp 24, nearest", WARP_REQUIRED);
    AddWarp(WarpBilinear, "warp 24, bilinear", WARP_REQUIRED | WARP_BILINEAR);
});

} // namespace

} // namespace bench
