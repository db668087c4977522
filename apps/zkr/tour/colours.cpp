// The station of colours: the photograph with fewer of them by every dithering method, the palettes that were
// made for it, and a ramp of 16-bit gray seen through three windows.
#include "tour.h"

#include "apps/zkr/colour_work.h"
#include "apps/zkr/compare.h"
#include "apps/zkr/convert.h"
#include "apps/zkr/progress.h"

#include <cstring>

namespace zkr::app {

namespace {

// The colours as squares, in as many columns as rows or twice as many.
Canvas Swatches(const Palette& colours) {
    int columns = 1;
    while (static_cast<size_t>(columns) * static_cast<size_t>(columns) < colours.size())
        columns *= 2;
    const int side = ContactSheet::CellWidth / columns;
    const int rows = (static_cast<int>(colours.size()) + columns - 1) / columns;
    Canvas canvas(columns * side, rows * side, {244, 244, 242});
    for (size_t index = 0; index < colours.size(); ++index) {
        const RGBQUAD& colour = colours[index];
        const int left = static_cast<int>(index) % columns * side,
                  top = static_cast<int>(index) / columns * side;
        for (int y = top; y < top + side - 1; ++y)
            for (int x = left; x < left + side - 1; ++x)
                canvas.Blend(x, y, {colour.rgbRed, colour.rgbGreen, colour.rgbBlue}, 255);
    }
    return canvas;
}

ContactSheet::Cell Shown(Tour& tour, Bitmap& picture, const std::string& title, const std::string& text) {
    Bitmap colour = Converted(picture, tour.photo.Format(), Storage{});
    return Tour::Cell(colour, title, text);
}

// Reduces the photograph by every method; gives the palette, which is the same for all.
Palette ReduceByAll(Tour& tour, int bits) {
    const std::string count = std::to_string(1 << bits);
    ContactSheet::Section section = {count + " colours", "an optimized palette, by each dithering method"};
    Palette palette;
    for (const DitherMethod& method : DitherMethods) {
        const StatusBar bar(count + " colours");
        const Stopwatch watch;
        Bitmap reduced = Reduced(tour.photo, {.bits = bits, .method = method.method});
        const double milliseconds = watch.Milliseconds();
        Bitmap back = Converted(reduced, tour.photo.Format(), Storage{});
        const std::string closeness = Closeness(Psnr(tour.photo, back));
        tour.Print({count + ", " + method.title, std::to_string(bits) + " optimized palette",
                    StorageOf(reduced), reduced.Bytes(), milliseconds, closeness});
        tour.Write(reduced, "colours-" + count + "-" + method.word + ".png");
        section.cells.push_back(Tour::Cell(back, method.title, closeness));
        palette = reduced.Format().palette;
    }
    tour.sheet.Add(std::move(section));
    return palette;
}

// All 65536 values of gray from left to right.
Bitmap GrayRamp() {
    constexpr int width = 1024, height = 256, step = 65536 / width;
    Bitmap ramp("ramp", {.bits = 16, .order = Z_ORDER_GRAY}, width, height, Storage{});
    std::vector<uint16_t> row(width);
    for (int x = 0; x < width; ++x)
        row[static_cast<size_t>(x)] = static_cast<uint16_t>(x * step);
    for (int y = 0; y < height; ++y)
        ramp.PutRow(y, row.data());
    return ramp;
}

struct Window {
    int low, high;
    const char* title;
};
constexpr Window Windows[] = {
    {0, 65535, "Whole ramp"}, {16384, 49151, "Its middle"}, {0, 4095, "Its darkest sixteenth"}};

void Run(Tour& tour) {
    ContactSheet::Section section = {
        "Palettes and windows", "optimized for the photograph; a ramp of 16-bit gray through three windows"};
    for (const int bits : {8, 4, 1}) {
        const Palette palette = ReduceByAll(tour, bits);
        section.cells.push_back(
            {Swatches(palette), std::to_string(palette.size()) + " colours", "optimized"});
    }
    for (const Window& window : Windows) {
        const Stopwatch watch;
        Bitmap ramp = GrayRamp();
        ShowWindow(ramp, window.low, window.high);
        const std::string range = std::to_string(window.low) + " to " + std::to_string(window.high);
        tour.Print(
            {"window", ShortName(ramp.Format()), StorageOf(ramp), ramp.Bytes(), watch.Milliseconds(), range});
        tour.Write(ramp, "window-" + std::to_string(window.low) + "-" + std::to_string(window.high) + ".png");
        section.cells.push_back(Shown(tour, ramp, window.title, range));
    }
    tour.sheet.Add(std::move(section));
}

} // namespace

constexpr Station ColoursStation = {"Colours: fewer of them, by every dithering method, and windows on gray",
                                    Run};

} // namespace zkr::app
