// The station of animations: a strip of the frames of one, as they are seen.
#include "tour.h"

#include "apps/zkr/animation.h"
#include "apps/zkr/convert.h"
#include "apps/zkr/progress.h"

#include <filesystem>

namespace zkr::app {

namespace {

constexpr int Shown = 6; // frames, evenly spread

void Run(Tour& tour) {
    if (!std::filesystem::exists(tour.animation)) {
        tour.Print({.step = "animation", .result = "skipped, python3-imageio is not installed"});
        return;
    }
    Animation animation(tour.animation);
    ContactSheet::Section section = {"Animation", std::to_string(animation.Frames()) +
                                                      " frames, some of them as they are seen"};
    const int step = std::max(animation.Frames() / Shown, 1);
    for (int frame = 0; frame < animation.Frames(); ++frame) {
        const StatusBar bar("playing");
        const Stopwatch watch;
        Bitmap& canvas = animation.Next();
        const double milliseconds = watch.Milliseconds();
        if (frame % step != 0 || frame / step >= Shown) continue;
        const std::string name = "frame " + std::to_string(frame);
        tour.Print({name, ShortName(canvas.Format()), StorageOf(canvas), canvas.Bytes(), milliseconds,
                    SizeOf(canvas)});
        tour.Write(canvas, "animation-" + std::to_string(frame) + ".png");
        Bitmap shown = Converted(canvas, tour.photo.Format(), Storage{});
        section.cells.push_back(Tour::Cell(shown, name, std::to_string(animation.DelayOf(frame)) + " ms"));
    }
    tour.sheet.Add(std::move(section));
}

} // namespace

constexpr Station AnimationStation = {"Animation: frames composed one after the other", Run};

} // namespace zkr::app
