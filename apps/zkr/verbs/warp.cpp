// zkr warp: a picture drawn into a quadrilateral of another.
#include "apps/zkr/convert.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/warp_work.h"
#include "apps/zkr/write_png.h"

namespace zkr::app {

namespace {

struct WarpOptions {
    std::string input, scene, output;
    Warping warping;
    bool isNearest = false;
};

const Words<bool> Methods = {{"nearest", true}, {"linear", false}};

void Describe(CLI::App& verb, WarpOptions& options) {
    AddInput(verb, "IN", options.input, "the picture that is drawn");
    AddInput(verb, "SCENE", options.scene, "the picture that it is drawn into");
    AddOutput(verb, options.output);
    AddPoints(verb, "--points", options.warping.points,
              "where the corners go, in pixels of the scene, clockwise from the\n"
              "top left one; must be given")
        ->required();
    AddWord(verb, "--method", options.isNearest, Methods, "how pixels are found, linear by default");
}

void Run(const WarpOptions& options) {
    CheckOutputName(options.output);
    Bitmap picture = ReadInput(options.input), scene = ReadInput(options.scene);
    {
        const StatusBar bar("warping   ");
        const PixelFormat format = MeetingFormat(scene.Format(), picture.Format());
        scene = Converted(scene, format, Storage{});
        picture = Converted(picture, format, Storage{});
        Warping warping = options.warping;
        warping.blend = !options.isNearest;
        Warp(scene, picture, warping);
    }
    const StatusBar bar("writing   ");
    WritePng(scene, options.output);
}

} // namespace

constexpr Verb WarpVerb =
    VerbOf<WarpOptions, Describe, Run>("warp", "Draw a picture into a quadrilateral of another",
                                       "warp photo.png photo.png scene.png --points 5,5 55,10 50,40 8,45");

} // namespace zkr::app
