// Painting with any rectangles, scales, modes and views: nothing outside the surface and the rows is touched, and what is
// painted in two halves of the device is what is painted at once.
#include "input.h"

#include <algorithm>
#include <vector>

using namespace fuzz;

namespace {

class Device {
  public:
    Device(int32_t width, int32_t height, int32_t bits, bool topDown)
        : pixels_(static_cast<size_t>(height) * static_cast<size_t>((width * bits + 7) / 8)) {
        std::memset(pixels_.Get(), 0x5A, pixels_.Count);
        const SurfaceDescription description = {
            sizeof description, width,         height,  bits, (width * bits + 7) / 8,
            topDown ? 1 : 0,    pixels_.Get(), nullptr, 0,    0};
        FUZZ_EXPECT(Z_CreateSurface(&description, &Context) == Z_SUCCESS);
    }
    ~Device() { Z_DeleteSurface(Context); }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    bool Equals(const Device& other) const {
        return std::equal(pixels_.Get(), pixels_.Get() + pixels_.Count, other.pixels_.Get());
    }

    HDC Context = nullptr;

  private:
    Exact pixels_;
};

RECT Rectangle(Input& input, int32_t limit) {
    RECT rect;
    rect.left = input.Near(limit, -4), rect.top = input.Near(limit, -4);
    rect.right = input.Near(limit, -4), rect.bottom = input.Near(limit, -4);
    return rect;
}

struct Work {
    BitmapHandle* Bitmap;
    const RECT *Source, *SourceClip, *Destination;
    const uint8_t* Rows;
    int32_t FirstRow, RowCount;

    ReturnCode Paint(HDC context, const RECT* destinationClip) const {
        constexpr uint32_t copy = 0x00CC0020;
        if (Rows == nullptr)
            return Z_PaintDC(context, Bitmap, Source, SourceClip, Destination, destinationClip, copy);
        return Z_PaintDCBuffer(context, Bitmap, Source, SourceClip, Destination, destinationClip, copy, Rows,
                               FirstRow, RowCount);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    constexpr int32_t views[] = {0, 1, 2, 3, 4, 5, 7, 8, 6, -1};
    constexpr int32_t deviceBits[] = {1, 4, 8, 16, 24, 32};
    const int32_t type = input.Flip() ? +MemoryConventional : +MemoryTiled;
    AnyBitmap bitmap(input, {60, 60, type});
    const int32_t height = bitmap.Height;
    const Exact rows(size_t{bitmap.BytesPerLine} * static_cast<size_t>(height), input);
    bitmap.ViewPerspective = views[input.Below(std::size(views))];
    if (input.Flip()) bitmap.LowBit = input.Near(16), bitmap.HighBit = input.Near(16);
    if (input.Flip()) Z_SetPaintContrast(&bitmap, input.Below(2001) - 1000);
    const uint32_t mode = static_cast<uint32_t>(input.Below(512));
    Z_SetDisplayMode(0xFFFFFFFF, mode);

    const RECT source = Rectangle(input, 64), clip = Rectangle(input, 64), to = Rectangle(input, 80);
    Work work = {&bitmap, input.Flip() ? &source : nullptr, input.Flip() ? &clip : nullptr, &to, nullptr, 0,
                 0};
    if (input.Flip()) {
        work.Rows = rows.Get();
        work.FirstRow = input.Near(height, -3);
        work.RowCount = input.Below(height + 1); // as many as there are
    }
    const int32_t across = 1 + input.Below(70), down = 1 + input.Below(50),
                  depth = deviceBits[input.Below(6)];
    const bool topDown = input.Flip();
    const Device whole(across, down, depth, topDown), halves(across, down, depth, topDown);
    const ReturnCode result = work.Paint(whole.Context, nullptr);
    FUZZ_EXPECT(result == Z_SUCCESS || result == Z_ERROR_ARGUMENT || result == Z_ERROR_MEMORY);

    // Diffusion begins at the edge of what is painted.
    const bool ordered = (mode & DISPLAY_ORDERED) != 0 || depth > 8;
    const int32_t cut = input.Below(across);
    const RECT left = {INT32_MIN, INT32_MIN, cut, INT32_MAX}, right = {cut, INT32_MIN, INT32_MAX, INT32_MAX};
    work.Paint(halves.Context, &left);
    work.Paint(halves.Context, &right);
    FUZZ_EXPECT(!ordered || result != Z_SUCCESS || halves.Equals(whole));
    return 0;
}
