// Pillow finding colours for the photograph, matching it against the 256 given ones (not exact), with
// and without diffusion, diffusing it to black and white, reducing it and shearing it, and composing the frames of
// animations. It runs in a Python process of its own, which reads the pictures once and answers each line with one more
// pass of the kind that the line names; what the pipe costs is microseconds.
#include "../animation_work.h"
#include "../paint_work.h"
#include "../pictures.h"
#include "../resize_work.h"
#include "../turn_work.h"
#include "../work.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

namespace {

constexpr const char* Program = R"(
import sys
from math import log10, radians, tan
from PIL import Image, ImageChops, ImageStat
width, height = int(sys.argv[1]), int(sys.argv[2])
source = sys.stdin.buffer
palette = Image.new('P', (1, 1))
palette.putpalette(source.read(768))
picture = Image.frombytes('RGB', (width, height), source.read(width * height * 3), 'raw', 'BGR')
def frames():
    made = []
    for _ in range(int(sys.argv[5])):
        colours = source.read(768)
        made.append(Image.frombytes('P', (int(sys.argv[6]), int(sys.argv[7])), source.read(int(sys.argv[6]) * int(sys.argv[7]))))
        made[-1].putpalette(colours)
    return made
whole, changes = frames(), frames()
for frame in changes:
    frame.info['transparency'] = 255
def play(frames, mode):
    canvas = Image.new('RGB', frames[0].size)
    for frame in frames:
        made = frame.convert(mode)
        canvas.paste(made, (0, 0), made if mode == 'RGBA' else None)
def decibels(made):
    squares = ImageStat.Stat(ImageChops.difference(picture, made.convert('RGB'))).sum2
    return 10 * log10(255 * 255 * 3 * width * height / sum(squares))
slope = tan(radians(float(sys.argv[8])))
octree = lambda: picture.quantize(256, method=Image.Quantize.FASTOCTREE, dither=Image.Dither.NONE)
passes = {
    b'octree': octree,
    b'octree?': lambda: decibels(octree()),
    b'median': lambda: decibels(picture.quantize(256, method=Image.Quantize.MEDIANCUT, dither=Image.Dither.NONE)),
    b'match': lambda: picture.quantize(palette=palette, dither=Image.Dither.NONE),
    b'diffuse': lambda: picture.quantize(palette=palette, dither=Image.Dither.FLOYDSTEINBERG),
    b'bitonal': lambda: picture.convert('1'),
    b'box': lambda: picture.resize((int(sys.argv[3]), int(sys.argv[4])), Image.Resampling.BOX),
    b'eighth': lambda: picture.reduce(8),
    b'play': lambda: play(whole, 'RGB'),
    b'changes': lambda: play(changes, 'RGBA'),
    b'shear': lambda: picture.transform((width + int(height * slope), height), Image.Transform.AFFINE,
                                        (1, slope, -height * slope, 0, 1, 0), Image.Resampling.NEAREST),
}
while line := source.readline():
    made = passes[line.strip()]()
    sys.stdout.write(str(made if isinstance(made, float) else 0) + '\n')
    sys.stdout.flush()
)";

class Python {
  public:
    Python() {
        int toChild[2];
        int fromChild[2];
        if (pipe(toChild) != 0 || pipe(fromChild) != 0) return;
        const std::string width = std::to_string(PhotographWidth);
        const std::string height = std::to_string(PhotographHeight);
        const std::string reducedWidth = std::to_string(ReducedWidth);
        const std::string reducedHeight = std::to_string(ReducedHeight);
        const std::string frames = std::to_string(AnimationFrames);
        const std::string frameWidth = std::to_string(AnimationWidth);
        const std::string frameHeight = std::to_string(AnimationHeight);
        const std::string degrees = std::to_string(ShearDegrees);
        if (fork() == 0) {
            dup2(toChild[0], 0);
            dup2(fromChild[1], 1);
            close(toChild[1]);
            close(fromChild[0]);
            execlp("/usr/bin/python3", "python3", "-c", Program, width.c_str(), height.c_str(),
                   reducedWidth.c_str(), reducedHeight.c_str(), frames.c_str(), frameWidth.c_str(),
                   frameHeight.c_str(), degrees.c_str(), nullptr);
            _exit(1);
        }
        close(toChild[0]);
        close(fromChild[1]);
        out_ = fdopen(toChild[1], "wb");
        in_ = fdopen(fromChild[0], "rb");
        Give(Palette256());
        std::fwrite(Photograph().data(), 1, Photograph().size(), out_);
        for (const AnimationWork work : {PlayWhole, PlayChanges})
            for (const Frame& frame : AnimationFor(work)) {
                Give(frame.Palette);
                std::fwrite(frame.Indices.data(), 1, frame.Indices.size(), out_);
            }
    }

    double Pass(const std::string& kind) {
        char answer[32];
        std::fprintf(out_, "%s\n", kind.c_str());
        std::fflush(out_);
        if (!std::fgets(answer, sizeof answer, in_)) {
            std::fputs("bench: Pillow ended early\n", stderr);
            std::exit(1);
        }
        return std::atof(answer);
    }

  private:
    void Give(const std::vector<RGBQUAD>& palette) {
        for (const RGBQUAD& entry : palette) {
            const uint8_t colour[3] = {entry.rgbRed, entry.rgbGreen, entry.rgbBlue};
            std::fwrite(colour, 1, 3, out_);
        }
    }

    std::FILE* out_ = nullptr;
    std::FILE* in_ = nullptr;
};

Python& Pillow() {
    static Python python;
    return python;
}

void AddPillow(int number, const char* name, double ratioToReach, const std::string& kind,
               const Quality& quality = {}) {
    AddPeer(number, {name, ratioToReach, [=] { Pillow().Pass(kind); }, 1, true, quality});
}

const Adds adds([] {
    if (std::system("/usr/bin/python3 -c 'import PIL' 2>/dev/null") != 0) return;
    AddPillow(From24ToPalette, "Pillow, not exact", 0.4, "match");
    AddPillow(BitonalFloydSteinberg, "Pillow, one channel", 1, "bitonal");
    AddPillow(PaletteFloydSteinberg, "Pillow", 2, "diffuse");
    AddPillow(PaintDiffusedTo8, "Pillow", 2, "diffuse");
    AddPillow(PlayWhole, "Pillow", 2, "play");
    AddPillow(PlayChanges, "Pillow", 2, "changes");
    AddPillow(AreaReduced24, "Pillow box", 1.5, "box");
    AddPillow(AreaEighth24, "Pillow reduce", 0.5, "eighth");
    AddPillow(ShearRows24, "Pillow", 2, "shear");
    AddPillow(Optimised, "Pillow octree", 1.7, "octree", [] { return Pillow().Pass("octree?"); });
    AddPeer(Optimised,
            {"Pillow median cut, untimed", 0, {}, 1, true, [] { return Pillow().Pass("median"); }});
    for (int number = PaletteStucki; number <= PaletteJarvis; ++number)
        AddPillow(number, "Pillow's Floyd-Steinberg", 1, "diffuse");
});

} // namespace

} // namespace bench
