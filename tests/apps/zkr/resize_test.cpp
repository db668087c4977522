// The verb that gives pictures another size: results that are known pixel by pixel.
#include "picture_files.h"
#include "run_program.h"

namespace {

class ResizeTest : public ProgramTest {
  protected:
    Picture Made(const Picture& source, std::vector<std::string> words) const {
        WritePng(Path("in.png"), source);
        words.insert(words.begin(), {"resize", Path("in.png"), Path("out.png")});
        Succeeds(words);
        return ReadPng(Path("out.png"));
    }
};

} // namespace

TEST_F(ResizeTest, MethodsAndProportions) {
    const Picture picture = PictureOf(30, 20, 8, PNG_COLOR_TYPE_RGB, Scattered);
    for (const char* storage : {"conventional", "disk", "tiled", "strips"}) {
        const Picture small = Made(picture, {"--width", "15", "--method", "nearest", "--storage", storage});
        ASSERT_EQ(small.height, 10);
        for (size_t y = 0; y < 10; ++y)
            for (size_t i = 0; i < 45; ++i)
                ASSERT_EQ(small.samples[y * 45 + i], picture.samples[y * 2 * 90 + i / 3 * 6 + i % 3]);
    }
    // Pixels of the source keep their place in the middle of what they become; between them lies their mean.
    for (const char* method : {"linear", "spline"}) {
        const Picture large = Made(picture, {"--height", "40", "--width", "60", "--method", method});
        for (size_t x = 1; x < 59; x += 2)
            for (size_t i = 0; i < 3; ++i)
                ASSERT_EQ(large.samples[180 + x * 3 + i], picture.samples[x / 2 * 3 + i]) << method;
    }
}

TEST_F(ResizeTest, StrokesAreKept) {
    // A black line of one pixel, at a column that nearest pixels pass over.
    const Picture page =
        PictureOf(64, 32, 1, PNG_COLOR_TYPE_GRAY, [](size_t i) { return i % 64 == 13 ? 0u : 1u; });
    EXPECT_EQ(Made(page, {"--width", "8", "--method", "nearest"}).samples, std::vector<uint16_t>(8 * 4, 1));
    const Picture kept = Made(page, {"--width", "8", "--method", "strokes"});
    for (size_t i = 0; i < kept.samples.size(); ++i)
        EXPECT_EQ(kept.samples[i], i % 8 == 1 ? 0 : 1);
}
