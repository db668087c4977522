// zkr tour: one picture through all of the library. Stations stand in one table; they run in its order.
#include "convert.h"
#include "picture_reader.h"
#include "progress.h"
#include "tour.h"
#include "verbs.h"
#include "write_png.h"

#include "failure.h"

#include <cstdio>
#include <filesystem>

namespace zkr::app {

namespace {

struct Station {
    const char* title;
    void (*run)(Tour&);
};

constexpr Station Stations[] = {
    {"Storage classes: every row written, read back and compared", StorageStation},
    {"Depths: the photograph in each depth, and back in 24 bits", DepthStation},
    {"Bitonal: a scanned page in each storage class, in gray and in colour", BitonalStation},
    {"Colours: fewer of them, by every dithering method, and windows on gray", ColourStation},
    {"Edits: a part cut out, an area filled", EditStation},
    {"Contact sheet", SheetStation},
};

Bitmap ReadPhoto(const std::string& path) {
    const StatusBar bar("reading");
    Bitmap picture = ReadPicture(*OpenPicture(path), path, Storage{});
    const PixelFormat colour = {.bits = 24, .order = Z_ORDER_RGB};
    return picture.Format().bits == 24 ? std::move(picture) : Converted(picture, colour, Storage{});
}

} // namespace

void Tour::Print(const TourStep& step) {
    StatusBar::Wipe();
    std::printf("  %-24s %-16s %-32s %9zu %9.1f  %s\n", step.step.c_str(), step.pixels.c_str(),
                step.storage.c_str(), step.bytes, step.milliseconds, step.result.c_str());
    std::fflush(stdout);
    wrongSteps += step.wrong ? 1 : 0;
}

ContactSheet::Cell Tour::Cell(Bitmap& bitmap, const std::string& title, const std::string& text) {
    return {Thumbnail(bitmap, ContactSheet::CellWidth, ContactSheet::CellHeight), title, text};
}

void Tour::Write(Bitmap& bitmap, const std::string& fileName) {
    WritePng(bitmap, (out / fileName).string());
}

void SheetStation(Tour& tour) {
    const Stopwatch watch;
    Bitmap page = tour.sheet.Drawn((tour.out / "contact-sheet.png").string());
    tour.Write(page, "contact-sheet.png");
    std::string result = std::to_string(page.Width()) + " x " + std::to_string(page.Height()) + " pixels";
    if (!Lettering().Available()) result += ", without labels: no DejaVu Sans here";
    tour.Print({"contact-sheet.png", ShortName(page.Format()), StorageOf(page), page.Bytes(),
                watch.Milliseconds(), result});
}

void RunTour(const TourOptions& options) {
    Bitmap photo = ReadPhoto(options.picture);
    if (std::error_code error; !std::filesystem::create_directories(options.out, error) && error) {
        throw Failure(options.out, error.message());
    }
    const std::string picture = std::filesystem::path(options.picture).filename().string() + ", " +
                                std::to_string(photo.Width()) + " x " + std::to_string(photo.Height()) +
                                " pixels";
    std::printf("%s\n", picture.c_str());

    Tour tour = {std::move(photo), options.page, options.out,
                 ContactSheet("ZKR13N: one picture in every depth", picture)};
    for (const Station& station : Stations) {
        std::printf("\n%s\n  %-24s %-16s %-32s %9s %9s  %s\n", station.title, "step", "pixels",
                    "storage class", "bytes", "ms", "result");
        station.run(tour);
    }
    std::printf("\nPictures are in %s\n", options.out.c_str());
    if (tour.wrongSteps > 0) {
        throw Failure(options.picture,
                      std::to_string(tour.wrongSteps) + " steps did not give back what went in");
    }
}

} // namespace zkr::app
