// zkr play: an animation as the pictures that are seen one after the other.
#include "apps/zkr/animation.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/verb.h"
#include "apps/zkr/write_png.h"

#include <cstdio>
#include <filesystem>

namespace zkr::app {

namespace {

struct PlayOptions {
    std::string animation;
    std::string out;
};

void Describe(CLI::App& verb, PlayOptions& options) {
    AddInput(verb, "ANIMATION", options.animation, "the GIF file");
    verb.add_option("--out", options.out, "folder for the pictures, made where missing; must be given")
        ->required()
        ->type_name("DIR");
}

void Run(const PlayOptions& options) {
    Animation animation(options.animation);
    if (std::error_code error; !std::filesystem::create_directories(options.out, error) && error)
        throw Failure(options.out, error.message());
    for (int frame = 0; frame < animation.Frames(); ++frame) {
        const StatusBar bar("playing   ");
        Bitmap& canvas = animation.Next();
        char name[32];
        std::snprintf(name, sizeof name, "frame-%04d.png", frame);
        WritePng(canvas, (std::filesystem::path(options.out) / name).string());
        std::printf("%s  %d ms\n", name, animation.DelayOf(frame));
    }
}

} // namespace

constexpr Verb PlayVerb = VerbOf<PlayOptions, Describe, Run>(
    "play", "Write the frames of an animation as they are seen", "play walk.gif --out frames");

} // namespace zkr::app
