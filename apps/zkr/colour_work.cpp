// All of it is the library's work; rows are touched here only where channels are laid side by side.
#include "colour_work.h"

#include "convert.h"
#include "failure.h"
#include "progress.h"

#include "zkr13n/alpha.h"
#include "zkr13n/color_spaces.h"
#include "zkr13n/gray.h"
#include "zkr13n/levels.h"

#include <algorithm>
#include <cstring>

namespace zkr::app {

namespace {

constexpr int MethodShift = 16; // of the flags of Z_ColorResBitmap
constexpr uint32_t Black = 0x000000, White = 0xFFFFFF;

bool HasWords(int space) {
    return space == Z_SPACE_LUMA || space == Z_SPACE_YIQ;
}

// The bytes that show the channels of one pixel.
void ShowChannels(const uint8_t* pixel, int channels, bool words, uint8_t* shown[]) {
    constexpr int scale = 16384;
    for (int channel = 0; channel < channels; ++channel) {
        int level = pixel[channel];
        if (words) {
            int16_t word;
            std::memcpy(&word, pixel + 2 * channel, sizeof word);
            level = channel == 0 ? word * 255 / scale : 128 + word * 127 / scale;
        }
        *shown[channel]++ = static_cast<uint8_t>(std::clamp(level, 0, 255));
    }
}

} // namespace

Bitmap Reduced(Bitmap& source, const Reduction& reduction) {
    const uint32_t flags = reduction.palette | static_cast<uint32_t>(reduction.method) << MethodShift;
    Palette colours = reduction.colours;
    const auto count =
        colours.empty() ? static_cast<uint32_t>(reduction.count) : static_cast<uint32_t>(colours.size());
    BitmapHandle target = {};
    Check(Z_ColorResBitmap(source.Handle(), &target, reduction.bits, flags,
                           colours.empty() ? nullptr : colours.data(), nullptr, count, nullptr, 0),
          source.Name());
    return Bitmap(source.Name(), target);
}

void MakeGray(Bitmap& picture, int bits) {
    Check(Z_GrayScaleBitmap(picture.Handle(), bits), picture.Name());
    picture.ReadForm();
}

void ShowWindow(Bitmap& picture, int low, int high) {
    if (picture.Handle()->Order != Z_ORDER_GRAY) MakeGray(picture, 16);
    const int bits = picture.Handle()->BitsPerPixel, most = (1 << bits) - 1;
    if (low < 0 || high < low || high > most)
        throw Failure(picture.Name(), std::to_string(low) + " to " + std::to_string(high) +
                                          " is no window within 0 to " + std::to_string(most));
    std::vector<RGBQUAD> table(static_cast<size_t>(most) + 1, RGBQUAD{255, 255, 255, 0});
    std::fill_n(table.begin(), low, RGBQUAD{0, 0, 0, 0});
    const auto entries = static_cast<uint32_t>(table.size());
    Check(Z_WindowLevelFillLUT(table.data(), entries, Black, White, low, high, 0, bits - 1, 0, most, 1),
          picture.Name());
    Check(Z_WindowLevel(picture.Handle(), 0, bits - 1, table.data(), entries, Z_LEVEL_APPLY), picture.Name());
    MakeGray(picture, 8);
}

Bitmap Channels(Bitmap& source, int space) {
    const int channels = space == Z_SPACE_CMYK ? 4 : 3;
    const bool words = HasWords(space);
    const int width = source.Width();
    const size_t pixelBytes = static_cast<size_t>(channels) * (words ? 2 : 1);
    if (width > INT32_MAX / channels) throw Failure(source.Name(), MessageOf(Z_ERROR_MEMORY));

    const PixelFormat colour = {.bits = 24, .order = Z_ORDER_BGR};
    Bitmap target(source.Name(), {.bits = 0}, width * channels, source.Height(), Storage{});
    RowConverter converter(source.Name(), source.Format(), colour, width);
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * pixelBytes);
    std::vector<uint8_t> row(target.RowBytes());
    RowProgress progress(source.Name(), source.Height());
    for (int y = 0; y < source.Height(); ++y) {
        source.GetRow(y, converter.RowBuffer());
        converter.Convert();
        Check(Z_ConvertColorSpace(converter.RowBuffer(), pixels.data(), width, Z_SPACE_RGB, space),
              source.Name());
        uint8_t* shown[4];
        for (int channel = 0; channel < channels; ++channel)
            shown[channel] = row.data() + static_cast<size_t>(channel) * static_cast<size_t>(width);
        for (size_t place = 0; place < pixels.size(); place += pixelBytes)
            ShowChannels(pixels.data() + place, channels, words, shown);
        target.PutRow(y, row.data());
        progress.RowDone();
    }
    return target;
}

Bitmap AlphaOf(Bitmap& picture) {
    BitmapHandle alpha = {};
    Check(Z_GetBitmapAlpha(picture.Handle(), &alpha), picture.Name());
    return Bitmap(picture.Name(), alpha);
}

void SetAlpha(Bitmap& picture, Bitmap& alpha) {
    if (alpha.Width() != picture.Width() || alpha.Height() != picture.Height())
        throw Failure(alpha.Name(), "its " + SizeOf(alpha) + " are no alpha for " + SizeOf(picture));
    Check(Z_SetBitmapAlpha(picture.Handle(), alpha.Handle()), picture.Name());
    picture.ReadForm();
    picture.MarkAlpha();
}

} // namespace zkr::app
