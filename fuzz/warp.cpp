// Warps of any points, rectangles and flags: no byte outside the two bitmaps is touched, and no pixel outside the
// bounds of the points changes.
#include "input.h"

#include "support/pixel_bits.h"

#include <algorithm>
#include <vector>

using namespace fuzz;

namespace {

struct Bitmap : BitmapHandle {
    Bitmap(Input& input, int32_t bits, int32_t order) : BitmapHandle{} {
        constexpr int32_t views[] = {0, 1, 2, 3, 4, 5, 7, 8};
        FUZZ_EXPECT(Z_CreateBitmap(this, MemoryUser, 1 + input.Below(120), 1 + input.Below(120), bits, order,
                                   nullptr, views[input.Byte() % 8], nullptr, 0) == Z_SUCCESS);
    }
    ~Bitmap() { Z_FreeBitmap(this); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const int32_t bits = input.Depth(), order = bits == 12 ? 2 : input.Below(bits == 16 ? 3 : 2);
    Bitmap destination(input, bits, order), source(input, bits, order);
    Exact to(destination.Size), from(source.Size);
    input.Fill(to.Get(), to.Count);
    input.Fill(from.Get(), from.Count);
    Z_SetBitmapDataPointer(&destination, to.Get(), to.Count);
    Z_SetBitmapDataPointer(&source, from.Get(), from.Count);
    const std::vector<uint8_t> before(to.Get(), to.Get() + to.Count);

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
    const ReturnCode result =
        Z_CombineBitmapWarp(&destination, &points, input.Flip() ? &source : &destination, left, top,
                            1 + input.Below(60), 1 + input.Below(60), 0x100 | input.Byte());
    for (int32_t y = 0; y < destination.Height; ++y) {
        const uint8_t* was = before.data() + static_cast<size_t>(y) * destination.BytesPerLine;
        const uint8_t* is = to.Get() + static_cast<size_t>(y) * destination.BytesPerLine;
        for (int32_t x = 0; x < destination.Width; ++x) {
            const bool mayChange =
                result == Z_SUCCESS && x >= bounds[0] && x <= bounds[2] && y >= bounds[1] && y <= bounds[3];
            FUZZ_EXPECT(mayChange || zkr::test::ReadPixel(was, bits, x) == zkr::test::ReadPixel(is, bits, x));
        }
    }
    return 0;
}
