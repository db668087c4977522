// The station of edits: the middle of the photograph cut out, and the same rectangle filled in a whole copy.
#include "tour.h"

#include "apps/zkr/edit.h"
#include "apps/zkr/progress.h"

#include <algorithm>

namespace zkr::app {

namespace {

constexpr uint32_t Orange = 0x001E82E6; // blue, green, red from the top

Rectangle Middle(const Bitmap& bitmap) {
    const int width = std::max(bitmap.Width() / 2, 1), height = std::max(bitmap.Height() / 2, 1);
    return {(bitmap.Width() - width) / 2, (bitmap.Height() - height) / 2, width, height};
}

void Run(Tour& tour) {
    const Rectangle middle = Middle(tour.photo);
    ContactSheet::Section section = {"Edits", "the middle of the photograph"};
    const auto add = [&](const char* step, const char* file, const char* title, auto edit) {
        const StatusBar bar(step);
        Bitmap picture = tour.photo.Copy();
        const Stopwatch watch;
        edit(picture);
        const double milliseconds = watch.Milliseconds();
        const std::string size = SizeOf(picture);
        tour.Print(
            {step, ShortName(picture.Format()), StorageOf(picture), picture.Bytes(), milliseconds, size});
        tour.Write(picture, file);
        section.cells.push_back(Tour::Cell(picture, title, size));
    };
    add("crop", "edit-crop.png", "Cropped", [&](Bitmap& picture) { Crop(picture, middle); });
    add("fill", "edit-fill.png", "Filled", [&](Bitmap& picture) { Fill(picture, Orange, middle); });
    tour.sheet.Add(std::move(section));
}

} // namespace

constexpr Station EditsStation = {"Edits: a part cut out, an area filled", Run};

} // namespace zkr::app
