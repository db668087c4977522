// Combinations and underlays of any rectangles and flags: no byte outside the two bitmaps is touched, and no pixel
// outside the rectangle changes.
#include "input.h"

using namespace fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const int32_t bits = input.Depth(), order = input.Order(bits);
    AnyBitmap target(input, {300, 60, MemoryUser, bits, order}),
        source(input, {300, 60, MemoryUser, bits, order});
    for (AnyBitmap* each : {&target, &source}) {
        const auto [left, top, right, bottom, has] = input.Each(60, 30, 240, 30, 2);
        const RECT part = {left, top, 60 + right, 30 + bottom};
        if (has != 0) Z_SetBitmapRgnRect(each, nullptr, &part, Z_RGN_SET);
    }
    const Exact before(target.Data());
    BitmapHandle* const other = input.Flip() ? &source : &target;

    if (input.Below(8) == 0) {
        Note(Z_UnderlayBitmap(&target, other, input.Byte() % 3u));
        NotePixels(target);
        return 0;
    }
    RECT area = {input.Near(60, -20), input.Near(60, -20), 0, 0};
    const int32_t width = input.Near(300, -5), height = input.Near(60, -5);
    POINT from = {input.Near(60, -20), input.Near(60, -20)};
    if (input.Flip()) { // as whole bytes of packed pixels are combined
        area.left &= ~7, from.x &= ~7;
        target.ViewPerspective = source.ViewPerspective = 0;
    }
    const uint32_t flags = input.Word() & (input.Flip() ? 0x3B33u : 0xFFFFu);
    const ReturnCode result =
        Z_CombineBitmap(&target, area.left, area.top, width, height, other, from.x, from.y, flags);
    area.right = static_cast<int32_t>(static_cast<uint32_t>(area.left) + static_cast<uint32_t>(width));
    area.bottom = static_cast<int32_t>(static_cast<uint32_t>(area.top) + static_cast<uint32_t>(height));
    const bool isOrdinary = area.left < area.right && area.top < area.bottom && area.left > -1000 &&
                            area.top > -1000 && width < 1000 && height < 1000;
    if (isOrdinary) {
        Z_RectToBitmap(&target, 0, &area);
        target.ExpectKept(before, [&](int32_t x, int32_t y) {
            return result != Z_SUCCESS || x < area.left || x >= area.right || y < area.top ||
                   y >= area.bottom || Z_IsPtInBitmapRgn(&target, y, x) == 0;
        });
    }
    Note(result);
    NotePixels(target);
    return 0;
}
