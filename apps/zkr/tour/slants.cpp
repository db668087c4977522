// The station of slants: the photograph sheared both ways, and drawn as a picture into another.
#include "tour.h"

#include "apps/zkr/edit.h"
#include "apps/zkr/turn_work.h"
#include "apps/zkr/warp_work.h"

namespace zkr::app {

namespace {

void Run(Tour& tour) {
    ContactSheet::Section section = {"Slants",
                                     "rows and columns slid by 15 degrees, and a picture in a scene"};
    tour.ShowChanged(section, "shear rows", "shear-rows.png", "Rows sheared",
                     [](Bitmap& picture) { Shear(picture, {.hundredths = 1500}); });
    tour.ShowChanged(section, "shear columns", "shear-columns.png", "Columns sheared",
                     [](Bitmap& picture) { Shear(picture, {.hundredths = 1500, .vertical = true}); });
    const int w = tour.photo.Width(), h = tour.photo.Height();
    constexpr int smallest = 24; // below that the corners would fall together
    for (const bool blend : {false, true}) {
        if (w < smallest || h < smallest) break;
        tour.ShowChanged(
            section, blend ? "warp, linear" : "warp, nearest", blend ? "warp-linear.png" : "warp-nearest.png",
            blend ? "Warped, linear" : "Warped, nearest", [&](Bitmap& picture) {
                Bitmap scene = picture.Copy();
                Fill(scene, 0x00303840);
                Warp(scene, picture,
                     {{{{w / 12, h / 5}, {w * 5 / 6, h / 16}, {w * 9 / 10, h * 15 / 16}, {w / 6, h * 3 / 4}}},
                      blend});
                picture = std::move(scene);
            });
    }
    tour.sheet.Add(std::move(section));
}

} // namespace

constexpr Station SlantsStation = {"Slants: both shears, and the photograph in a scene", Run};

} // namespace zkr::app
