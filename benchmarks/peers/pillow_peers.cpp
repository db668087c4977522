// Pillow matching the photograph against the 256 given colours (not exact). It runs in a Python process of
// its own, which reads the picture once and answers each line with one more pass; what the pipe costs is
// microseconds.
#include "../pictures.h"
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
from PIL import Image
width, height = int(sys.argv[1]), int(sys.argv[2])
source = sys.stdin.buffer
palette = Image.new('P', (1, 1))
palette.putpalette(source.read(768))
picture = Image.frombytes('RGB', (width, height), source.read(width * height * 3), 'raw', 'BGR')
while source.readline():
    picture.quantize(palette=palette, dither=Image.Dither.NONE)
    sys.stdout.write('done\n')
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
        if (fork() == 0) {
            dup2(toChild[0], 0);
            dup2(fromChild[1], 1);
            close(toChild[1]);
            close(fromChild[0]);
            execlp("/usr/bin/python3", "python3", "-c", Program, width.c_str(), height.c_str(), nullptr);
            _exit(1);
        }
        close(toChild[0]);
        close(fromChild[1]);
        out_ = fdopen(toChild[1], "wb");
        in_ = fdopen(fromChild[0], "rb");
        for (const RGBQUAD& entry : Palette256()) {
            const uint8_t colour[3] = {entry.rgbRed, entry.rgbGreen, entry.rgbBlue};
            std::fwrite(colour, 1, 3, out_);
        }
        std::fwrite(Photograph().data(), 1, Photograph().size(), out_);
    }

    void Pass() {
        char answer[16];
        std::fputs("again\n", out_);
        std::fflush(out_);
        if (!std::fgets(answer, sizeof answer, in_)) {
            std::fputs("bench: Pillow ended early\n", stderr);
            std::exit(1);
        }
    }

  private:
    std::FILE* out_ = nullptr;
    std::FILE* in_ = nullptr;
};

const Adds adds([] {
    if (std::system("/usr/bin/python3 -c 'import PIL' 2>/dev/null") != 0) return;
    AddPeer(From24ToPalette, {"Pillow, not exact", 0.4,
                              [] {
                                  static Python python;
                                  python.Pass();
                              },
                              1, true});
});

} // namespace

} // namespace bench
