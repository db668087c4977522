// Rotations by any angle: no byte outside the pixels is read, every storage class gives the same picture, and the
// nearest pixels are those that a walk step by step finds.
#include "input.h"

#include <algorithm>
#include <vector>

using namespace fuzz;

namespace {

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
    const int32_t angle = input.Flip() ? input.Hostile() : static_cast<int32_t>(input.Word());
    const auto flags = static_cast<uint32_t>(input.Below(8));
    AnyBitmap user(input, {300, 200, MemoryUser});
    const int32_t bits = user.BitsPerPixel, width = user.Width, height = user.Height,
                  view = user.ViewPerspective;
    Z_OsFree(user.LevelLUT), user.LevelLUT = nullptr; // which the copy has not
    constexpr int32_t types[] = {MemoryDisk, MemoryTiled, MemoryCompressed | MemoryConventional};
    BitmapHandle other;
    FUZZ_EXPECT(Z_CopyBitmap2(&other, &user, types[input.Byte() % 3]) == Z_SUCCESS);
    other.LowBit = user.LowBit, other.HighBit = user.HighBit;
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
    Z_FreeBitmap(&other);
    NotePixels(user);
    return 0;
}
