// Warps of any points, rectangles and flags: no byte outside the two bitmaps is touched, and no pixel outside the
// bounds of the points changes.
#include "input.h"

#include <algorithm>

using namespace fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const int32_t bits = input.Depth(), order = input.Order(bits);
    AnyBitmap destination(input, {120, 120, MemoryUser, bits, order}),
        source(input, {120, 120, MemoryUser, bits, order});
    const Exact before(destination.Data());

    const bool isHostile = input.Flip();
    WarpPoints points;
    int32_t bounds[4] = {INT32_MAX, INT32_MAX, -1, -1};
    POINT* const corners = &points.TopLeft;
    for (int i = 0; i < 4; ++i) {
        int32_t x = isHostile ? input.Hostile() : input.Below(120),
                y = isHostile ? input.Hostile() : input.Below(120);
        corners[i] = {x, y};
        Z_PointToBitmap(&destination, 0, &x, &y);
        bounds[0] = std::min(bounds[0], x), bounds[1] = std::min(bounds[1], y);
        bounds[2] = std::max(bounds[2], x), bounds[3] = std::max(bounds[3], y);
    }
    const int32_t left = isHostile ? input.Hostile() : input.Below(60),
                  top = isHostile ? input.Hostile() : input.Below(60);
    const auto [width, height, own, flags] = input.Each(60, 60, 2, 256);
    const ReturnCode result =
        Z_CombineBitmapWarp(&destination, &points, own != 0 ? &destination : &source, left, top, 1 + width,
                            1 + height, 0x100 | static_cast<uint32_t>(flags));
    destination.ExpectKept(before, [&](int32_t x, int32_t y) {
        return result != Z_SUCCESS || x < bounds[0] || x > bounds[2] || y < bounds[1] || y > bounds[3];
    });
    Note(result);
    NotePixels(destination);
    return 0;
}
