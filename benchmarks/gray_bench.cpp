// Counting colours, gray, and colour spaces on the photograph.
#include "pictures.h"
#include "work.h"

#include <cstring>
#include <vector>

namespace bench {

namespace {

constexpr size_t SetWords = size_t{1} << 19; // a bit for each colour of 24 bits

void CountColours() {
    uint32_t count = 0;
    Z_GetBitmapColorCountExt(PhotographBitmap(24, 1), &count, nullptr);
    Touch(&count);
}

// The plain way: a bit for each colour in the order of its bytes.
void CountPlainly() {
    static std::vector<uint32_t> set(SetWords);
    std::fill(set.begin(), set.end(), 0);
    uint32_t count = 0;
    const std::vector<uint8_t>& pixels = Photograph();
    for (size_t i = 0; i < pixels.size(); i += 3) {
        const auto key = static_cast<uint32_t>(pixels[i] | pixels[i + 1] << 8 | pixels[i + 2] << 16);
        const uint32_t bit = 1u << (key & 31);
        count += (set[key >> 5] & bit) == 0;
        set[key >> 5] |= bit;
    }
    Touch(&count);
}

// On the photograph's pixels in a bitmap of its own, which gray takes the place of.
void GrayScale() {
    BitmapHandle* photograph = PhotographBitmap(24, 1);
    BitmapHandle bitmap;
    Z_CreateBitmap(&bitmap, MemoryUser, PhotographWidth, PhotographHeight, 24, 1, nullptr, 2,
                   Data(photograph), photograph->Size);
    Z_GrayScaleBitmap(&bitmap, 8);
    Touch(bitmap.Addr);
    Z_FreeBitmap(&bitmap);
}

size_t PixelBytes(int32_t format) {
    return format == Z_SPACE_LUMA ? 6 : 3;
}

void ConvertSpace(const uint8_t* source, int32_t from, uint8_t* target, int32_t to) {
    const size_t sourceRow = PhotographWidth * PixelBytes(from), targetRow = PhotographWidth * PixelBytes(to);
    for (size_t y = 0; y < PhotographHeight; ++y)
        Z_ConvertColorSpace(source + y * sourceRow, target + y * targetRow, PhotographWidth, from, to);
    Touch(target);
}

// The photograph in a space.
const std::vector<uint8_t>& InSpace(int32_t format) {
    static std::vector<uint8_t> pixels[2];
    std::vector<uint8_t>& wanted = pixels[format == Z_SPACE_LUMA];
    if (wanted.empty()) {
        wanted.resize(PhotographPixels * PixelBytes(format));
        ConvertSpace(Photograph().data(), Z_SPACE_RGB, wanted.data(), format);
    }
    return wanted;
}

void AddSpace(int number, const char* name, int32_t from, int32_t to) {
    const auto run = [=] {
        static std::vector<uint8_t> target(PhotographPixels * 6);
        const std::vector<uint8_t>& source = from == Z_SPACE_RGB ? Photograph() : InSpace(from);
        ConvertSpace(source.data(), from, target.data(), to);
    };
    AddWork(number, {name, PhotographPixels, PhotographPixels * (PixelBytes(from) + PixelBytes(to)), run});
}

const Adds adds([] {
    AddWork(ColourCount, {"count colours, 24 bits", PhotographPixels, PhotographPixels * 3, CountColours});
    AddPeer(ColourCount, {"a table of 16 M bits", 1.5, CountPlainly});
    AddWork(GrayScale24, {"bitmap to gray, 24 to 8", PhotographPixels, PhotographPixels * 4, GrayScale});
    AddSpace(RgbToHsv, "RGB to HSV", Z_SPACE_RGB, Z_SPACE_HSV);
    AddSpace(HsvToRgb, "HSV to RGB", Z_SPACE_HSV, Z_SPACE_RGB);
    AddSpace(RgbToLuma, "RGB to luma and differences", Z_SPACE_RGB, Z_SPACE_LUMA);
});

} // namespace

} // namespace bench
