// Combinations and underlays of any rectangles and flags: no byte outside the two bitmaps is touched, and no pixel
// outside the rectangle changes.
#include "input.h"

#include "support/pixel_bits.h"

#include <vector>

using namespace fuzz;

namespace {

struct Bitmap : BitmapHandle {
    Bitmap(Input& input, int32_t bits, int32_t order) : BitmapHandle{} {
        FUZZ_EXPECT(Z_CreateBitmap(this, MemoryUser, 1 + input.Below(120), 1 + input.Below(120), bits, order,
                                   nullptr, input.Byte() % 9, nullptr, 0) == Z_SUCCESS);
        LowBit = input.Near(16, -1);
        HighBit = input.Near(16, -1);
    }
    ~Bitmap() { Z_FreeBitmap(this); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const int32_t bits = input.Depth(), order = bits == 12 ? 2 : input.Below(bits == 16 ? 3 : 2);
    Bitmap target(input, bits, order), source(input, bits, order);
    Exact to(target.Size, input), from(source.Size, input);
    Z_SetBitmapDataPointer(&target, to.Get(), to.Count);
    Z_SetBitmapDataPointer(&source, from.Get(), from.Count);
    for (BitmapHandle* each : {&target, &source}) {
        RECT part = {input.Below(60), input.Below(60), 60 + input.Below(60), 60 + input.Below(60)};
        if (input.Flip()) Z_SetBitmapRgnRect(each, nullptr, &part, Z_RGN_SET);
    }
    const std::vector<uint8_t> before(to.Get(), to.Get() + to.Count);

    if (input.Below(8) == 0) {
        Z_UnderlayBitmap(&target, input.Flip() ? &source : &target, input.Byte() % 3u);
        return 0;
    }
    RECT area = {input.Near(140, -20), input.Near(140, -20), 0, 0};
    const int32_t width = input.Near(140, -5), height = input.Near(140, -5);
    const ReturnCode result = Z_CombineBitmap(
        &target, area.left, area.top, width, height, input.Flip() ? &source : &target, input.Near(140, -20),
        input.Near(140, -20), input.Word() & (input.Flip() ? 0x3B33u : 0xFFFFu));
    area.right = static_cast<int32_t>(static_cast<uint32_t>(area.left) + static_cast<uint32_t>(width));
    area.bottom = static_cast<int32_t>(static_cast<uint32_t>(area.top) + static_cast<uint32_t>(height));
    const bool isOrdinary = area.left < area.right && area.top < area.bottom && area.left > -1000 &&
                            area.top > -1000 && width < 1000 && height < 1000;
    if (isOrdinary) Z_RectToBitmap(&target, 0, &area);
    for (int32_t y = 0; y < target.Height && isOrdinary; ++y) {
        const uint8_t* was = before.data() + static_cast<size_t>(y) * target.BytesPerLine;
        const uint8_t* is = to.Get() + static_cast<size_t>(y) * target.BytesPerLine;
        for (int32_t x = 0; x < target.Width; ++x) {
            const bool mayChange = result == Z_SUCCESS && x >= area.left && x < area.right && y >= area.top &&
                                   y < area.bottom && Z_IsPtInBitmapRgn(&target, y, x) != 0;
            FUZZ_EXPECT(mayChange || zkr::test::ReadPixel(was, bits, x) == zkr::test::ReadPixel(is, bits, x));
        }
    }
    return 0;
}
