// The verbs that turn, mirror, shear and warp: pictures whose results are known pixel by pixel, or by their corners.
#include "picture_files.h"
#include "run_program.h"

namespace {

constexpr int width = 23;
constexpr int height = 17;

class TurnTest : public ProgramTest {
  protected:
    Picture Made(const std::string& verb, const Picture& source, std::vector<std::string> words) const {
        WritePng(Path("in.png"), source);
        words.insert(words.begin(), {verb, Path("in.png"), Path("out.png")});
        Succeeds(words);
        return ReadPng(Path("out.png"));
    }
};

// The samples of a turned or mirrored picture, whose pixel (x, y) is that of from(x, y).
template <typename From>
std::vector<uint16_t> Moved(const Picture& picture, int newWidth, int newHeight, From from) {
    std::vector<uint16_t> samples;
    for (int y = 0; y < newHeight; ++y)
        for (int x = 0; x < newWidth; ++x) {
            const auto [fromX, fromY] = from(x, y);
            const auto first = static_cast<size_t>(fromY * width + fromX) * 3;
            for (size_t i = 0; i < 3; ++i)
                samples.push_back(picture.samples[first + i]);
        }
    return samples;
}

using Place = std::pair<int, int>;

} // namespace

TEST_F(TurnTest, ExactMoves) {
    const Picture picture = PictureOf(width, height, 8, PNG_COLOR_TYPE_RGB, Scattered);
    for (const char* storage : {"conventional", "disk", "tiled", "strips"}) {
        const std::vector<std::string> in = {"--storage", storage};
        EXPECT_EQ(Made("flip", picture, in).samples,
                  Moved(picture, width, height, [](int x, int y) { return Place(x, height - 1 - y); }));
        EXPECT_EQ(Made("mirror", picture, in).samples,
                  Moved(picture, width, height, [](int x, int y) { return Place(width - 1 - x, y); }));
        const Picture turned = Made("rotate", picture, {"--angle", "90", "--grow", "--storage", storage});
        EXPECT_EQ(turned.width, height);
        EXPECT_EQ(turned.samples,
                  Moved(picture, height, width, [](int x, int y) { return Place(y, height - 1 - x); }));
        EXPECT_EQ(
            Made("rotate", picture, {"--angle", "-180", "--storage", storage}).samples,
            Moved(picture, width, height, [](int x, int y) { return Place(width - 1 - x, height - 1 - y); }));
    }
}

TEST_F(TurnTest, CornersAreFilled) {
    const Picture picture = PictureOf(64, 64, 8, PNG_COLOR_TYPE_RGB, [](size_t) { return 7u; });
    for (const char* method : {"nearest", "linear", "cubic"}) {
        const Picture turned =
            Made("rotate", picture, {"--angle", "45", "--grow", "--fill", "FF0000", "--method", method});
        EXPECT_GT(turned.width, 88);
        const std::vector<uint16_t> red = {255, 0, 0};
        EXPECT_EQ(std::vector<uint16_t>(turned.samples.begin(), turned.samples.begin() + 3), red) << method;
        EXPECT_EQ(std::vector<uint16_t>(turned.samples.end() - 3, turned.samples.end()), red) << method;
        const auto middle = static_cast<size_t>(turned.height / 2 * turned.width + turned.width / 2) * 3;
        EXPECT_NEAR(turned.samples[middle], 7, 2) << method;
    }
    EXPECT_EQ(Made("rotate", picture, {"--angle", "12.5"}).width, 64);
}

TEST_F(TurnTest, ShearAndWarpPlaceEachPixel) {
    const Picture picture = PictureOf(width, height, 8, PNG_COLOR_TYPE_RGB, Scattered);
    const Picture slid = Made("shear", picture, {"--angle", "45", "--fill", "000000"});
    ASSERT_EQ(slid.width, width + height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int aside = height - 1 - y; // the lowest row stays
            EXPECT_EQ(slid.samples[static_cast<size_t>(y * slid.width + x + aside) * 3],
                      picture.samples[static_cast<size_t>(y * width + x) * 3]);
        }

    WritePng(Path("in.png"), picture);
    Succeeds({"warp", Path("in.png"), Path("in.png"), Path("out.png"), "--points", "22,0", "0,0", "0,16",
              "22,16", "--method", "nearest"});
    EXPECT_EQ(ReadPng(Path("out.png")).samples,
              Moved(picture, width, height, [](int x, int y) { return Place(width - 1 - x, y); }));
    Refuses(
        {"warp", Path("in.png"), Path("in.png"), Path("out.png"), "--points", "0,0", "23,0", "9,9", "0,9"},
        Path("in.png") + ": ", "outside");
}
