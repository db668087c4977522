// The station of sizes: the photograph reduced and enlarged by each method, each with a detail at pixel size, and the page
// at a quarter with and without its strokes kept.
#include "tour.h"

#include "apps/zkr/convert.h"
#include "apps/zkr/edit.h"
#include "apps/zkr/picture_reader.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/resize_work.h"

#include <algorithm>
#include <filesystem>

namespace zkr::app {

namespace {

Bitmap Sized(Tour& tour, Bitmap& source, const std::string& step, const std::string& file,
             const Resizing& resizing) {
    const StatusBar bar(step);
    Bitmap picture = source.Copy();
    const Stopwatch watch;
    Resize(picture, resizing);
    const double milliseconds = watch.Milliseconds();
    tour.Print({step, ShortName(picture.Format()), StorageOf(picture), picture.Bytes(), milliseconds,
                SizeOf(picture)});
    tour.Write(picture, file);
    return picture;
}

// Of pixels as they are, around the middle.
Bitmap DetailOf(Bitmap& picture) {
    const int width = std::min(picture.Width(), ContactSheet::CellWidth);
    const int height = std::min(picture.Height(), ContactSheet::CellWidth * 3 / 4);
    Bitmap detail = picture.Copy();
    Crop(detail, {(picture.Width() - width) / 2, (picture.Height() - height) / 2, width, height});
    return detail;
}

void ShowPhotograph(Tour& tour) {
    ContactSheet::Section section = {"Sizes",
                                     "a third and three times as large, with details pixel by pixel"};
    const int width = tour.photo.Width(), height = tour.photo.Height();
    const struct {
        const char *name, *title, *file;
        bool enlarges;
        SizeMethod method;
    } sizes[] = {
        {"to a third, nearest", "Reduced, nearest", "third-nearest.png", false, SizeMethod::Nearest},
        {"to a third, means", "Reduced, means", "third-means.png", false, SizeMethod::Linear},
        {"three times, nearest", "Enlarged, nearest", "triple-nearest.png", true, SizeMethod::Nearest},
        {"three times, linear", "Enlarged, linear", "triple-linear.png", true, SizeMethod::Linear},
        {"three times, splines", "Enlarged, splines", "triple-spline.png", true, SizeMethod::Spline}};
    for (const auto& [name, title, file, enlarges, method] : sizes) {
        const Resizing resizing = {enlarges ? width * 3 : std::max(width / 3, 1),
                                   enlarges ? height * 3 : std::max(height / 3, 1), method};
        Bitmap picture = Sized(tour, tour.photo, name, file, resizing);
        Bitmap detail = DetailOf(picture);
        section.cells.push_back(Tour::Cell(detail, title, "detail of " + SizeOf(picture)));
    }
    tour.sheet.Add(std::move(section));
}

void ShowPage(Tour& tour) {
    if (!std::filesystem::exists(tour.page)) {
        tour.Print({.step = "page at a quarter", .result = "skipped, jbigkit-testdata is not installed"});
        return;
    }
    Bitmap page = ReadUpright(*OpenPicture(tour.page), tour.page, Storage{});
    ContactSheet::Section section = {"Strokes", "the page at a quarter, pixel by pixel"};
    const auto add = [&](const char* step, const char* file, const char* title, SizeMethod method) {
        const Resizing resizing = {std::max(page.Width() / 4, 1), std::max(page.Height() / 4, 1), method};
        Bitmap small = Sized(tour, page, step, file, resizing);
        Bitmap shown = Converted(small, tour.photo.Format(), Storage{});
        Bitmap detail = DetailOf(shown);
        section.cells.push_back(Tour::Cell(detail, title, "detail of " + SizeOf(small)));
    };
    add("page at a quarter", "page-quarter.png", "Nearest", SizeMethod::Nearest);
    add("the same, strokes kept", "page-quarter-strokes.png", "Strokes kept", SizeMethod::Strokes);
    tour.sheet.Add(std::move(section));
}

void Run(Tour& tour) {
    ShowPhotograph(tour);
    ShowPage(tour);
}

} // namespace

constexpr Station SizesStation = {"Sizes: each method, and strokes kept", Run};

} // namespace zkr::app
