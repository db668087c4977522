// zkr play: what is seen of an animation, frame by frame, and files that are none.
#include "picture_files.h"
#include "run_program.h"

#include <cstdlib>

namespace {

using PlayTest = ProgramTest;

// Ends with 0 when the frames in a folder are those that Pillow composes.
constexpr const char* Compare = R"(
import sys
from PIL import Image, ImageSequence
for i, frame in enumerate(ImageSequence.Iterator(Image.open(sys.argv[1]))):
    ours = Image.open('%s/frame-%04d.png' % (sys.argv[2], i)).convert('RGB')
    if ours.tobytes() != frame.convert('RGB').tobytes(): sys.exit('frame %d' % i)
)";

} // namespace

TEST_F(PlayTest, WritesWhatIsSeenAndForHowLong) {
    constexpr int width = 24, height = 16;
    WriteGif(Path("walk.gif"), width, height);
    const std::string told = Succeeds({"play", Path("walk.gif"), "--out", Path("frames")});
    EXPECT_NE(told.find("frame-0000.png  100 ms\nframe-0001.png  50 ms\nframe-0002.png  20 ms\n"),
              std::string::npos)
        << told;
    const std::vector<uint16_t> red = {255, 0, 0}, green = {0, 255, 0}, blue = {0, 0, 255};
    for (int frame = 0; frame < 3; ++frame) {
        const Picture picture = ReadPng(Path("frames/frame-000" + std::to_string(frame) + ".png"));
        ASSERT_EQ(picture.width, width);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const bool inMiddle = x >= 6 && x < 18 && y >= 4 && y < 12 && x % 2 == 0;
                const bool inCorner = x >= 20 && y >= 12;
                const auto first = picture.samples.begin() + (y * width + x) * 3;
                EXPECT_EQ(std::vector<uint16_t>(first, first + 3), frame == 1 && inMiddle   ? green
                                                                   : frame == 2 && inCorner ? blue
                                                                                            : red)
                    << frame << ": " << x << ',' << y;
            }
    }
}

TEST_F(PlayTest, RefusesWhatIsNoAnimation) {
    WriteText("text.gif", "This is a letter.");
    Refuses({"play", Path("text.gif"), "--out", Path("frames")}, Path("text.gif") + ": ", "");
    WriteGif(Path("walk.gif"), 24, 16);
    WriteText("short.gif", ReadText("walk.gif").substr(0, 60));
    Refuses({"play", Path("short.gif"), "--out", Path("frames")}, Path("short.gif") + ": ", "");
    Refuses({"play", Path("missing.gif"), "--out", Path("frames")}, Path("missing.gif") + ": ", "");
}

TEST_F(PlayTest, ComposesARealAnimationAsPillowDoes) {
    const std::string animation = "/usr/lib/python3/dist-packages/imageio/resources/images/newtonscradle.gif";
    if (std::system(("test -r " + animation + " && /usr/bin/python3 -c 'import PIL' 2>/dev/null").c_str()) !=
        0)
        GTEST_SKIP() << "needs python3-imageio and python3-pil";
    Succeeds({"play", animation, "--out", Path("frames")});
    WriteText("compare.py", Compare);
    const std::string command =
        "/usr/bin/python3 " + Path("compare.py") + " " + animation + " " + Path("frames");
    EXPECT_EQ(std::system(command.c_str()), 0);
}
