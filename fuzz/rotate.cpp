// Rotations by any angle: no byte outside the pixels is read, every storage class gives the same picture, and the
// nearest pixels are those that a walk step by step finds.
#include "input.h"

#include "support/pixel_bits.h"

#include <algorithm>
#include <vector>

using namespace fuzz;

namespace {

struct Bitmap : BitmapHandle {
    Bitmap(int32_t type, int32_t width, int32_t height, int32_t bits, int32_t order, int32_t view)
        : BitmapHandle{} {
        IsMade =
            Z_CreateBitmap(this, type, width, height, bits, order, nullptr, view, nullptr, 0) == Z_SUCCESS;
    }
    ~Bitmap() { Z_FreeBitmap(this); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
    bool IsMade;
};

using Pixels = std::vector<uint64_t>;

Pixels PixelsOf(BitmapHandle& bitmap) {
    Pixels pixels;
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int32_t y = 0; y < bitmap.Height; ++y) {
        FUZZ_EXPECT(Z_GetBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine) ==
                    static_cast<ReturnCode>(bitmap.BytesPerLine));
        for (int32_t x = 0; x < bitmap.Width; ++x)
            pixels.push_back(zkr::test::ReadPixel(row.data(), bitmap.BitsPerPixel, x));
    }
    return pixels;
}

struct Axis {
    int64_t Whole, Fraction;
    void Step(int64_t step) {
        Fraction += step;
        const int correction = Fraction >= 8192 ? 1 : Fraction < -8191 ? -1 : 0;
        Fraction -= correction * 16384;
        Whole += correction;
    }
};

// What lies outside a source of the given size is 0.
void CheckNearest(const Pixels& source, int32_t width, int32_t height, BitmapHandle& result, int32_t angle) {
    const int64_t sine = Z_SinValue(angle), cosine = Z_CosValue(angle);
    const int64_t tx = result.Width / 2, ty = result.Height / 2;
    const int64_t u = -tx * cosine + ty * sine, v = -tx * sine - ty * cosine;
    Axis rowX = {width / 2 + u / 16384, u % 16384}, rowY = {height / 2 + v / 16384, v % 16384};
    const Pixels pixels = PixelsOf(result);
    size_t place = 0;
    for (int32_t y = 0; y < result.Height; ++y, rowX.Step(-sine), rowY.Step(cosine)) {
        Axis x = rowX, yy = rowY;
        for (int32_t i = 0; i < result.Width; ++i, x.Step(cosine), yy.Step(sine)) {
            const bool inside = x.Whole >= 0 && x.Whole < width && yy.Whole >= 0 && yy.Whole < height;
            FUZZ_EXPECT(pixels[place++] ==
                        (inside ? source[static_cast<size_t>(yy.Whole * width + x.Whole)] : 0));
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const int32_t bits = input.Depth(), width = 1 + input.Below(300), height = 1 + input.Below(200);
    constexpr int32_t views[] = {0, 1, 2, 3, 4, 5, 7, 8};
    const int32_t view = views[input.Byte() % 8], order = bits == 12 ? 2 : input.Below(bits == 16 ? 3 : 2);
    const int32_t angle = input.Flip() ? input.Hostile() : static_cast<int32_t>(input.Word());
    const auto flags = static_cast<uint32_t>(input.Below(8));

    Bitmap user(MemoryUser, width, height, bits, order, view);
    Exact exact(user.Size);
    input.Fill(exact.Get(), exact.Count);
    FUZZ_EXPECT(user.IsMade && Z_SetBitmapDataPointer(&user, exact.Get(), exact.Count) == Z_SUCCESS);
    constexpr int32_t types[] = {MemoryDisk, MemoryTiled, MemoryCompressed | MemoryConventional};
    Z_SetMemoryThresholds(0, 0, 1000, 1, 1,
                          Z_THRESHOLD_TILE_SIZE | Z_THRESHOLD_CONVENTIONAL_TILES | Z_THRESHOLD_MAPPED_TILES);
    Bitmap other(types[input.Byte() % 3], width, height, bits, order, view);
    FUZZ_EXPECT(other.IsMade && Z_CopyBitmapData(&other, &user) == Z_SUCCESS);
    const Pixels before = PixelsOf(user);

    const auto rotate = [&](BitmapHandle& bitmap) {
        return Z_RotateBitmap(&bitmap, angle, flags, 0x01000000);
    };
    FUZZ_EXPECT(rotate(user) == Z_SUCCESS && rotate(other) == Z_SUCCESS);
    FUZZ_EXPECT(user.Width == other.Width && PixelsOf(user) == PixelsOf(other));
    const bool isNearest = bits <= 8 || (flags & (ROTATE_LINEAR | ROTATE_CUBIC)) == 0;
    const bool mirrors = view == 1 || view == 2 || view == 5 || view == 7;
    if (angle % 9000 != 0 && isNearest) {
        const int64_t anticlockwise = ((-int64_t{angle}) % 36000 + 36000) % 36000;
        const auto turned = static_cast<int32_t>(mirrors ? 36000 - anticlockwise : anticlockwise);
        CheckNearest(before, width, height, user, turned);
    }
    return 0;
}
