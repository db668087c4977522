#include "warp_work.h"

#include "failure.h"

#include "zkr13n/warp.h"

namespace zkr::app {

void Warp(Bitmap& scene, Bitmap& picture, const Warping& warping) {
    WarpPoints corners;
    POINT* corner = &corners.TopLeft;
    for (const Point& point : warping.points) {
        if (point.x < 0 || point.y < 0 || point.x >= scene.Width() || point.y >= scene.Height())
            throw Failure(scene.Name(), "the point " + std::to_string(point.x) + "," +
                                            std::to_string(point.y) + " lies outside the scene of " +
                                            SizeOf(scene));
        *corner++ = {point.x, point.y};
    }
    const uint32_t flags = WARP_REQUIRED | (warping.blend ? uint32_t{WARP_BILINEAR} : 0);
    const ReturnCode result = Z_CombineBitmapWarp(scene.Handle(), &corners, picture.Handle(), 0, 0,
                                                  picture.Width(), picture.Height(), flags);
    if (result == Z_ERROR_ARGUMENT)
        throw Failure(
            scene.Name(),
            "the points, walked around from the first to the fourth, do not turn the same way at each");
    Check(result, scene.Name());
}

PixelFormat MeetingFormat(const PixelFormat& one, const PixelFormat& other) {
    const auto isDeep = [](const PixelFormat& format) {
        return format.bits >= 48 || (format.IsGray() && format.bits > 8);
    };
    const bool alpha = one.alpha;
    const int channels = alpha ? 4 : 3, bits = isDeep(one) || isDeep(other) ? 16 : 8;
    return {.bits = channels * bits, .order = Z_ORDER_RGB, .alpha = alpha};
}

} // namespace zkr::app
