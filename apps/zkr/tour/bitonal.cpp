// The bitonal station: a scanned page of 1 bit per pixel through the storage classes, to gray and colour and
// back.
#include "tour.h"

#include "apps/zkr/compare.h"
#include "apps/zkr/convert.h"
#include "apps/zkr/picture_reader.h"
#include "apps/zkr/progress.h"

#include <filesystem>

namespace zkr::app {

namespace {

Bitmap ReadPage(const std::string& path) {
    const StatusBar bar("page");
    return ReadUpright(*OpenPicture(path), path, Storage{});
}

void Run(Tour& tour) {
    if (!std::filesystem::exists(tour.page)) {
        tour.Print({.step = "bitonal page", .result = "skipped, jbigkit-testdata is not installed"});
        return;
    }
    Bitmap page = ReadPage(tour.page);
    ContactSheet::Section section = {"Bitonal page", SizeOf(page) + " of 1 bit"};
    section.notes.push_back({"The photograph in each storage class", tour.storageLines});
    section.notes.push_back({"The page in each storage class", ThroughStorageClasses(tour, page)});

    const PixelFormat colour = tour.photo.Format();
    const auto addCell = [&](Bitmap& picture, const std::string& title, const std::string& text) {
        Bitmap shown = Converted(picture, colour, Storage{});
        section.cells.push_back(Tour::Cell(shown, title, text));
    };
    addCell(page, "1 bit", "as scanned");
    tour.Write(page, "page-01.png");
    for (const PixelFormat& format : {PixelFormat{.bits = 0}, colour}) {
        const std::string name = ShortName(format);
        const StatusBar bar(name);
        const Stopwatch watch;
        Bitmap changed = Converted(page, format, Storage{});
        const double milliseconds = watch.Milliseconds();
        Bitmap back = Converted(changed, page.Format(), Storage{});
        const bool same = SameRows(page, back);
        const std::string result = same ? "equal" : "differs";
        tour.Print(
            {"convert and back", name, StorageOf(changed), changed.Bytes(), milliseconds, result, !same});
        tour.Write(changed, format.bits == 0 ? "page-08-gray.png" : "page-24-rgb.png");
        addCell(changed, name.substr(0, name.find(' ')) + " bits", "back at 1 bit: " + result);
    }
    tour.sheet.Add(std::move(section));
}

} // namespace

constexpr Station BitonalStation = {"Bitonal: a scanned page in each storage class, in gray and in colour",
                                    Run};

} // namespace zkr::app
