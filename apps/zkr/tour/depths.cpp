// The station of depths: the photograph in every depth, colour order and kind of palette, and back in 24
// bits.
#include "tour.h"

#include "apps/zkr/compare.h"
#include "apps/zkr/convert.h"
#include "apps/zkr/progress.h"

#include <cmath>

namespace zkr::app {

namespace {

struct Group {
    const char* title;
    const char* text;
    bool hasOriginal; // the original stands first in its row
    std::vector<PixelFormat> formats = {};
};

std::vector<Group> Groups() {
    Group fixed = {"Fixed palettes", "1 to 8 bits, nearest colours, and back to 24 bits", true};
    for (int bits = 1; bits <= 8; ++bits)
        fixed.formats.push_back({.bits = bits, .palette = FixedPalette(bits)});

    Group gray = {"Gray", "palettes of 3 to 8 bits, then values of 8, 12 and 16 bits", false};
    // The fixed palettes of 1 and 2 bits are gray ramps already.
    for (int bits = 3; bits <= 8; ++bits)
        gray.formats.push_back({.bits = bits, .palette = GrayPalette(bits)});
    gray.formats.push_back({.bits = 0});
    gray.formats.push_back({.bits = 12, .order = Z_ORDER_GRAY});
    gray.formats.push_back({.bits = 16, .order = Z_ORDER_GRAY});

    Group colour = {"Colour", "16 to 64 bits in both colour orders", false};
    for (const int bits : {16, 24, 32, 48, 64}) {
        for (const int order : {Z_ORDER_RGB, Z_ORDER_BGR}) {
            colour.formats.push_back({.bits = bits, .order = order});
        }
    }
    return {fixed, gray, colour};
}

// Formats that can hold every 24-bit colour must give it back.
bool IsLossless(const PixelFormat& format) {
    return format.bits >= 24;
}

std::string FileName(const PixelFormat& format) {
    std::string name = ShortName(format);
    for (char& letter : name) {
        if (letter == ' ') letter = '-';
    }
    return (format.StoredBits() < 10 ? "depth-0" : "depth-") + name + (format.bits == 0 ? "-values" : "") +
           ".png";
}

// Converts there and back, and gives a cell that shows what came back.
ContactSheet::Cell Through(Tour& tour, const PixelFormat& format) {
    const std::string name = ShortName(format);
    const StatusBar bar(name);
    const Stopwatch watch;
    Bitmap changed = Converted(tour.photo, format, Storage{});
    const double milliseconds = watch.Milliseconds();
    Bitmap back = Converted(changed, tour.photo.Format(), Storage{});
    const double decibels = Psnr(tour.photo, back);
    tour.Print({"convert and back", name, StorageOf(changed), changed.Bytes(), milliseconds,
                Closeness(decibels), IsLossless(format) && !std::isinf(decibels)});
    tour.Write(changed, FileName(format));
    const size_t space = name.find(' ');
    const std::string bits = name.substr(0, space) + (format.bits == 1 ? " bit" : " bits");
    return Tour::Cell(back, bits, name.substr(space + 1) + ", " + Closeness(decibels));
}

void Run(Tour& tour) {
    const PixelFormat& original = tour.photo.Format();
    for (const Group& group : Groups()) {
        ContactSheet::Section section = {group.title, group.text};
        if (group.hasOriginal)
            section.cells.push_back(Tour::Cell(tour.photo, "24 bits", "rgb, the original"));
        for (const PixelFormat& format : group.formats) {
            ContactSheet::Cell cell = Through(tour, format);
            const bool shown = format.bits == original.bits && format.order == original.order;
            if (!shown) section.cells.push_back(std::move(cell));
        }
        tour.sheet.Add(std::move(section));
    }
}

} // namespace

constexpr Station DepthsStation = {"Depths: the photograph in each depth, and back in 24 bits", Run};

} // namespace zkr::app
