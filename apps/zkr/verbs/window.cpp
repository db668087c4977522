// zkr window: gray values between two limits, spread over all that a screen shows.
#include "apps/zkr/colour_work.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"

namespace zkr::app {

namespace {

struct WindowOptions : EditOptions {
    int low = 0;
    int high = 0;
};

constexpr int Most = 65535;

void Describe(CLI::App& verb, WindowOptions& options) {
    AddNumber(verb, "--low", options.low, 0, Most, "V", "the value that becomes black, must be given")
        ->required();
    AddNumber(verb, "--high", options.high, 0, Most, "V",
              "the value that becomes white, must be given;\n"
              "4095 is the largest of 12 bits, 65535 of all others")
        ->required();
}

void Run(const WindowOptions& options) {
    ChangePicture(options, "windowing ",
                  [&](Bitmap& picture) { ShowWindow(picture, options.low, options.high); });
}

} // namespace

constexpr Verb WindowVerb = EditVerbOf<WindowOptions, Describe, Run>(
    "window", "Show the gray values between two limits", "window photo.png dark.png --low 0 --high 20000");

} // namespace zkr::app
