// The verbs that work on colours, on pictures whose results are known: few colours stay as they are, grays
// and channels follow from their formulas.
#include "picture_files.h"
#include "run_program.h"

#include <algorithm>

namespace {

constexpr int width = 23;
constexpr int height = 17;
constexpr size_t pixels = size_t{width} * height;

class ColourTest : public ProgramTest {
  protected:
    Picture Made(const std::string& verb, const Picture& source, std::vector<std::string> words) const {
        WritePng(Path("in.png"), source);
        words.insert(words.begin(), {verb, Path("in.png"), Path("out.png")});
        Succeeds(words);
        return ReadPng(Path("out.png"));
    }
};

// The samples of a picture with a palette as colours.
std::vector<uint16_t> Resolved(const Picture& picture) {
    std::vector<uint16_t> samples;
    for (const uint16_t index : picture.samples) {
        const png_color& colour = picture.palette[index];
        samples.insert(samples.end(), {colour.red, colour.green, colour.blue});
    }
    return samples;
}

uint16_t GrayOf(const uint16_t* rgb) {
    return static_cast<uint16_t>((2 * rgb[0] + 5 * rgb[1] + rgb[2] + 4) >> 3);
}

} // namespace

TEST_F(ColourTest, FewColoursStayAsTheyAre) {
    const auto seven = [](size_t i) { return static_cast<uint32_t>(i / 3 % 7 * 36 + i % 3 * 5); };
    const Picture picture = PictureOf(width, height, 8, PNG_COLOR_TYPE_RGB, seven);
    for (const char* bits : {"3", "4", "8"}) {
        const Picture reduced = Made("colors", picture, {"--bits", bits, "--dither", "nearest"});
        EXPECT_EQ(Resolved(reduced), picture.samples) << bits;
        WritePng(Path("palette.png"), reduced);
        EXPECT_EQ(Resolved(Made("colors", picture, {"--palette", Path("palette.png")})), picture.samples);
    }
}

TEST_F(ColourTest, AnyNumberOfColours) {
    const Picture picture = PictureOf(64, 64, 8, PNG_COLOR_TYPE_RGB, Scattered);
    for (const size_t count : {1u, 2u, 5u, 20u, 100u, 255u, 256u}) {
        for (const char* method : {"nearest", "floyd-steinberg"}) {
            const Picture reduced =
                Made("colors", picture, {"--colors", std::to_string(count), "--dither", method});
            EXPECT_EQ(reduced.palette.size(), count) << method;
            for (const uint16_t index : reduced.samples)
                ASSERT_LT(index, count) << method;
            EXPECT_NE(Succeeds({"info", Path("out.png")}).find("  palette  " + std::to_string(count) + " "),
                      std::string::npos);
        }
    }
}

TEST_F(ColourTest, EveryMethodAndPaletteKeepsTheMeanGray) {
    const Picture picture = PictureOf(64, 64, 8, PNG_COLOR_TYPE_RGB, [](size_t i) { return i / 3 % 64 * 4; });
    for (const char* method : {"floyd-steinberg", "stucki", "burkes", "sierra", "stevenson-arce", "jarvis",
                               "ordered", "clustered"}) {
        const Picture black =
            Made("colors", picture, {"--bits", "1", "--dither", method, "--palette", "fixed"});
        ASSERT_EQ(black.type, PNG_COLOR_TYPE_GRAY);
        const auto white = std::count(black.samples.begin(), black.samples.end(), 1);
        EXPECT_NEAR(static_cast<double>(white) / (64 * 64), 126.0 / 255, 0.03) << method;
    }
    EXPECT_EQ(Made("colors", picture, {"--palette", "cube"}).type, PNG_COLOR_TYPE_PALETTE);
}

TEST_F(ColourTest, GraysAndWindows) {
    const Picture colour = PictureOf(width, height, 8, PNG_COLOR_TYPE_RGB, Scattered);
    const struct {
        const char* bits;
        int factor;
    } depths[] = {{"8", 1}, {"16", 257}};
    for (const auto& depth : depths) {
        const Picture gray = Made("gray", colour, {"--bits", depth.bits});
        ASSERT_EQ(gray.samples.size(), pixels);
        for (size_t i = 0; i < pixels; ++i)
            ASSERT_EQ(gray.samples[i], GrayOf(&colour.samples[3 * i]) * depth.factor) << depth.bits;
    }
    const Picture ramp = PictureOf(width, height, 16, PNG_COLOR_TYPE_GRAY,
                                   [](size_t i) { return static_cast<uint32_t>(i * 150); });
    const Picture shown = Made("window", ramp, {"--low", "3000", "--high", "30000"});
    for (size_t i = 0; i < pixels; ++i) {
        const int inside = std::clamp(static_cast<int>(i) * 150, 3000, 30000) - 3000;
        ASSERT_EQ(shown.samples[i], inside * 255 / 27000) << i;
    }
}

TEST_F(ColourTest, ChannelsAndAlpha) {
    const Picture colour = PictureOf(width, height, 8, PNG_COLOR_TYPE_RGB, Scattered);
    const Picture complements = Made("space", colour, {"--to", "cmy"});
    ASSERT_EQ(complements.width, 3 * width);
    for (size_t i = 0; i < pixels; ++i)
        for (size_t channel = 0; channel < 3; ++channel)
            ASSERT_EQ(complements.samples[(i / width * 3 + channel) * width + i % width],
                      255 - colour.samples[3 * i + channel]);

    const Picture mask = PictureOf(width, height, 8, PNG_COLOR_TYPE_GRAY, Scattered);
    WritePng(Path("mask.png"), mask);
    const Picture masked = Made("alpha", colour, {"--set", Path("mask.png")});
    ASSERT_EQ(masked.type, PNG_COLOR_TYPE_RGB_ALPHA);
    EXPECT_EQ(Made("alpha", masked, {}).samples, mask.samples);
}
