// The station of combinations: the photograph and its mirror image under each operator, and canvas laid under it.
#include "tour.h"

#include "apps/zkr/combine_work.h"
#include "apps/zkr/turn_work.h"

namespace zkr::app {

namespace {

void ShowOperators(Tour& tour) {
    ContactSheet::Section section = {"Combinations",
                                     "the photograph and its mirror image under each operator"};
    Bitmap other = tour.photo.Copy();
    Mirror(other);
    for (const auto& [word, title, flags] : CombineOperators)
        tour.ShowChanged(section, word, std::string("combine-") + word + ".png", title,
                         [&, flags = flags](Bitmap& picture) { Combine(picture, other, {.flags = flags}); });
    tour.sheet.Add(std::move(section));
}

void ShowUnderlays(Tour& tour) {
    ContactSheet::Section section = {"Underlays", "canvas under the photograph, in tiles and as one piece"};
    Bitmap canvas = CanvasTexture("canvas");
    for (const bool stretch : {false, true})
        tour.ShowChanged(section, stretch ? "canvas, stretched" : "canvas, tiled",
                         stretch ? "underlay-stretched.png" : "underlay-tiled.png",
                         stretch ? "Stretched" : "Tiled",
                         [&](Bitmap& picture) { Underlay(picture, canvas, stretch); });
    tour.sheet.Add(std::move(section));
}

void Run(Tour& tour) {
    ShowOperators(tour);
    ShowUnderlays(tour);
}

} // namespace

constexpr Station CombinationsStation = {"Combinations: two pictures under each operator, and canvas", Run};

} // namespace zkr::app
