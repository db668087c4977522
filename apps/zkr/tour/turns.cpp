// The station of turns: the photograph rotated in three qualities, each with a detail at pixel size, and its storage
// in the eight views.
#include "tour.h"

#include "apps/zkr/edit.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/turn_work.h"

#include <algorithm>

namespace zkr::app {

namespace {

constexpr int Angle = 3000;

// Does something to a copy of the photograph, and tells of it.
template <typename Work>
Bitmap Done(Tour& tour, const std::string& step, const std::string& file, Work work) {
    const StatusBar bar(step);
    Bitmap picture = tour.photo.Copy();
    const Stopwatch watch;
    work(picture);
    const double milliseconds = watch.Milliseconds();
    tour.Print({step, ShortName(picture.Format()), StorageOf(picture), picture.Bytes(), milliseconds,
                SizeOf(picture)});
    tour.Write(picture, file);
    return picture;
}

Bitmap MiddleOf(Bitmap& picture) {
    const int width = std::min(picture.Width(), ContactSheet::CellWidth);
    const int height = std::min(picture.Height(), ContactSheet::CellWidth);
    Bitmap detail = picture.Copy();
    Crop(detail, {(picture.Width() - width) / 2, (picture.Height() - height) / 2, width, height});
    return detail;
}

void ShowRotations(Tour& tour) {
    ContactSheet::Section section = {"Rotation", "by 30 degrees, in three qualities"};
    const struct {
        const char *name, *title;
        RotationMethod method;
    } methods[] = {{"nearest", "Nearest pixel", RotationMethod::Nearest},
                   {"linear", "Linear", RotationMethod::Linear},
                   {"cubic", "Splines", RotationMethod::Cubic}};
    for (const auto& [name, title, method] : methods) {
        const Rotation rotation = {.hundredths = Angle, .method = method, .grow = true};
        Bitmap picture = Done(tour, std::string("rotate, ") + name, std::string("rotate-") + name + ".png",
                              [&](Bitmap& bitmap) { Rotate(bitmap, rotation); });
        section.cells.push_back(Tour::Cell(picture, title, SizeOf(picture)));
        Bitmap detail = MiddleOf(picture);
        section.cells.push_back(Tour::Cell(detail, title, "a detail, pixel by pixel"));
    }
    tour.sheet.Add(std::move(section));
}

void ShowViews(Tour& tour) {
    ContactSheet::Section section = {"Views",
                                     "how each view stores the photograph, and what brings it upright"};
    const struct {
        int32_t view;
        const char* upright;
    } views[] = {{VIEW_TOP_LEFT, "as it is"},
                 {VIEW_TOP_RIGHT, "mirrored"},
                 {VIEW_BOTTOM_LEFT, "flipped"},
                 {VIEW_BOTTOM_RIGHT, "turned by 180"},
                 {VIEW_RIGHT_TOP, "turned by 90"},
                 {VIEW_LEFT_TOP, "flipped, turned by 90"},
                 {VIEW_RIGHT_BOTTOM, "flipped, turned by 270"},
                 {VIEW_LEFT_BOTTOM, "turned by 270"}};
    for (const auto& [view, upright] : views) {
        const std::string number = std::to_string(view);
        Bitmap picture = Done(tour, "view " + number, "view-" + number + ".png",
                              [&](Bitmap& bitmap) { StoreInView(bitmap, view); });
        section.cells.push_back(Tour::Cell(picture, "View " + number, upright));
    }
    tour.sheet.Add(std::move(section));
}

void Run(Tour& tour) {
    ShowRotations(tour);
    ShowViews(tour);
}

} // namespace

constexpr Station TurnsStation = {"Turns: rotation, and the eight views", Run};

} // namespace zkr::app
