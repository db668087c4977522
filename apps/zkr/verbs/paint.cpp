// zkr paint: a picture as a device of some depth shows it.
#include "apps/zkr/options.h"
#include "apps/zkr/paint_work.h"
#include "apps/zkr/picture_job.h"

#include <climits>
#include <cmath>

namespace zkr::app {

namespace {

struct PaintOptions : EditOptions {
    PaintedDevice device;
    double gamma = 1;
    bool diffused = false;
};

const Words<int> Depths = {{"1", 1}, {"4", 4}, {"8", 8}, {"16", 16}, {"24", 24}, {"32", 32}};

void Describe(CLI::App& verb, PaintOptions& options) {
    PaintedDevice& device = options.device;
    AddWord(verb, "--display", device.bits, Depths, "bits per pixel of the device (default: 24)");
    AddNumber(verb, "--width", device.width, 1, INT_MAX, "W",
              "width on the device; without it the proportions stay");
    AddNumber(verb, "--height", device.height, 1, INT_MAX, "H", "height on the device, likewise");
    CLI::Option* ordered = verb.add_flag("--ordered", device.ordered, "dither by a pattern of thresholds");
    verb.add_flag("--diffused", options.diffused, "dither by passing errors on (this is the default)")
        ->excludes(ordered);
    AddNumber(verb, "--brightness", device.brightness, -1000, 1000, "N", "thousandths, -1000 to 1000");
    AddNumber(verb, "--contrast", device.contrast, -1000, 1000, "N", "thousandths, -1000 to 1000");
    AddDecimal(verb, "--gamma", options.gamma, 0.01, 100, "G", "above 1 is brighter, 0.01 to 100");
}

void Run(const PaintOptions& options) {
    PaintedDevice device = options.device;
    device.gamma = static_cast<int>(std::lround(options.gamma * 100));
    ChangePicture(options, "painting  ", [&](Bitmap& picture) { picture = PaintedOn(picture, device); });
}

} // namespace

constexpr Verb PaintVerb =
    EditVerbOf<PaintOptions, Describe, Run>("paint", "Show a picture as a device of few colours does",
                                            "paint photo.png shown.png --display 4 --ordered");

} // namespace zkr::app
