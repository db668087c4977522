// The station of painting: the photograph as devices of few colours show it, the page in levels of gray, and steps of
// contrast and gamma.
#include "tour.h"

#include "apps/zkr/convert.h"
#include "apps/zkr/edit.h"
#include "apps/zkr/paint_work.h"
#include "apps/zkr/picture_reader.h"
#include "apps/zkr/progress.h"

#include <algorithm>
#include <filesystem>

namespace zkr::app {

namespace {

struct Step {
    const char *name, *file, *title;
    PaintedDevice device;
};

Bitmap Painted(Tour& tour, Bitmap& source, const Step& step) {
    const StatusBar bar(step.name);
    const Stopwatch watch;
    Bitmap shown = PaintedOn(source, step.device);
    const double milliseconds = watch.Milliseconds();
    tour.Print(
        {step.name, ShortName(shown.Format()), StorageOf(shown), shown.Bytes(), milliseconds, SizeOf(shown)});
    tour.Write(shown, step.file);
    return shown;
}

// A device as large as a cell, with the photograph's proportions as far as they go.
PaintedDevice DeviceFor(const Tour& tour) {
    const int longer = std::max(tour.photo.Width(), tour.photo.Height());
    const auto side = [&](int pixels) {
        return std::max(static_cast<int>(int64_t{pixels} * ContactSheet::CellWidth / longer), 1);
    };
    return {.width = side(tour.photo.Width()), .height = side(tour.photo.Height())};
}

// Pixel by pixel, so that dots stay dots.
ContactSheet::Cell DetailOf(Tour& tour, Bitmap& shown, const char* title) {
    Bitmap detail = Converted(shown, tour.photo.Format(), Storage{});
    const int width = std::min(detail.Width(), ContactSheet::CellWidth);
    const int height = std::min(detail.Height(), ContactSheet::CellWidth * 3 / 4);
    Crop(detail, {(detail.Width() - width) / 2, (detail.Height() - height) / 2, width, height});
    return Tour::Cell(detail, title, "detail of " + SizeOf(shown));
}

void ShowDevices(Tour& tour) {
    ContactSheet::Section section = {"Devices", "the photograph at the sheet's scale, as devices show it"};
    const auto device = [&](int bits, bool ordered) {
        PaintedDevice made = DeviceFor(tour);
        made.bits = bits;
        made.ordered = ordered;
        return made;
    };
    const Step steps[] = {{"1 bit, ordered", "paint-1-ordered.png", "1 bit, ordered", device(1, true)},
                          {"1 bit, diffused", "paint-1-diffused.png", "1 bit, diffused", device(1, false)},
                          {"4 bits, ordered", "paint-4-ordered.png", "4 bits, ordered", device(4, true)},
                          {"4 bits, diffused", "paint-4-diffused.png", "4 bits, diffused", device(4, false)},
                          {"8 bits, ordered", "paint-8-ordered.png", "8 bits, ordered", device(8, true)},
                          {"8 bits, diffused", "paint-8-diffused.png", "8 bits, diffused", device(8, false)},
                          {"24 bits", "paint-24.png", "24 bits", device(24, false)}};
    for (const Step& step : steps) {
        Bitmap shown = Painted(tour, tour.photo, step);
        section.cells.push_back(DetailOf(tour, shown, step.title));
    }
    tour.sheet.Add(std::move(section));
}

void ShowPage(Tour& tour, ContactSheet::Section& section) {
    if (!std::filesystem::exists(tour.page)) {
        tour.Print(
            {.step = "page in levels of gray", .result = "skipped, jbigkit-testdata is not installed"});
        return;
    }
    Bitmap page = ReadUpright(*OpenPicture(tour.page), tour.page, Storage{});
    const Step step = {
        "page in levels of gray",
        "paint-page.png",
        "Page at a quarter",
        {.bits = 8, .width = std::max(page.Width() / 4, 1), .height = std::max(page.Height() / 4, 1)}};
    Bitmap shown = Painted(tour, page, step);
    section.cells.push_back(DetailOf(tour, shown, step.title));
}

void ShowSteps(Tour& tour, ContactSheet::Section& section) {
    const auto device = [&](int contrast, int gamma) {
        PaintedDevice made = DeviceFor(tour);
        made.contrast = contrast;
        made.gamma = gamma;
        return made;
    };
    const Step steps[] = {{"contrast -300", "paint-contrast-less.png", "Less contrast", device(-300, 100)},
                          {"contrast 300", "paint-contrast-more.png", "More contrast", device(300, 100)},
                          {"gamma 0.5", "paint-gamma-darker.png", "Gamma 0.5", device(0, 50)},
                          {"gamma 2", "paint-gamma-brighter.png", "Gamma 2", device(0, 200)}};
    for (const Step& step : steps) {
        Bitmap shown = Painted(tour, tour.photo, step);
        section.cells.push_back(DetailOf(tour, shown, step.title));
    }
}

void Run(Tour& tour) {
    ShowDevices(tour);
    ContactSheet::Section section = {
        "Painting", "levels of gray for a page, and adjustments that leave the pixels alone"};
    ShowPage(tour, section);
    ShowSteps(tour, section);
    tour.sheet.Add(std::move(section));
}

} // namespace

constexpr Station PaintingStation = {"Painting: devices of few colours, gray for bits, contrast and gamma",
                                     Run};

} // namespace zkr::app
