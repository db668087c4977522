// zkr paint: what devices of few colours show of pictures whose results are known.
#include "picture_files.h"
#include "run_program.h"

#include <algorithm>

namespace {

class PaintVerbTest : public ProgramTest {
  protected:
    Picture Painted(const Picture& source, std::vector<std::string> words) const {
        WritePng(Path("in.png"), source);
        words.insert(words.begin(), {"paint", Path("in.png"), Path("out.png")});
        Succeeds(words);
        return ReadPng(Path("out.png"));
    }
};

uint32_t AnyChannel(size_t i) {
    return static_cast<uint32_t>(i % 7 * 40);
}

} // namespace

TEST_F(PaintVerbTest, DevicesOfAllColoursShowThePictureAsItIs) {
    const Picture picture = PictureOf(23, 17, 8, PNG_COLOR_TYPE_RGB, AnyChannel);
    EXPECT_EQ(Painted(picture, {}), picture);
    EXPECT_EQ(Painted(picture, {"--display", "32"}), picture);
    const Picture half = Painted(picture, {"--width", "46"});
    EXPECT_EQ(half.width, 46);
    EXPECT_EQ(half.height, 34);
}

TEST_F(PaintVerbTest, GrayBecomesDotsOfItsShare) {
    for (const char* way : {"--ordered", "--diffused"}) {
        const Picture gray = PictureOf(64, 64, 8, PNG_COLOR_TYPE_RGB, [](size_t) { return 64u; });
        const Picture dots = Painted(gray, {"--display", "1", way});
        size_t white = 0;
        for (const uint16_t sample : dots.samples)
            white += sample != 0;
        EXPECT_NEAR(static_cast<double>(white), 64 * 64 / 4.0, 64) << way;
        const Picture dark = Painted(gray, {"--display", "1", way, "--brightness", "-1000"});
        EXPECT_EQ(std::count(dark.samples.begin(), dark.samples.end(), 0), 64 * 64);
    }
}

TEST_F(PaintVerbTest, BitsBecomeLevelsWherePixelsShrink) {
    const Picture checks =
        PictureOf(32, 32, 1, PNG_COLOR_TYPE_GRAY, [](size_t i) { return static_cast<uint32_t>(i % 2); });
    const Picture levels = Painted(checks, {"--display", "24", "--width", "8"});
    for (const uint16_t sample : levels.samples)
        ASSERT_EQ(sample, 128);
}
