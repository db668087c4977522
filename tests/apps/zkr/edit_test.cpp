// zkr crop and zkr fill: every pixel of the result is one of the picture or of the colour, in every kind of
// picture and storage class.
#include "picture_files.h"
#include "run_program.h"

namespace {

constexpr int width = 37;
constexpr int height = 21;

struct Area {
    int left, top, width, height;

    bool Holds(int x, int y) const { return x >= left && x < left + width && y >= top && y < top + height; }
    std::vector<std::string> Words() const {
        return {"--left=" + std::to_string(left), "--top=" + std::to_string(top),
                "--width=" + std::to_string(width), "--height=" + std::to_string(height)};
    }
};

// The rectangle, sample by sample.
Picture Part(const Picture& picture, const Area& area) {
    Picture part = picture;
    part.width = area.width;
    part.height = area.height;
    part.samples.clear();
    for (size_t i = 0; i < picture.samples.size(); ++i) {
        const int pixel = static_cast<int>(i) / picture.Channels();
        if (area.Holds(pixel % width, pixel / width)) part.samples.push_back(picture.samples[i]);
    }
    return part;
}

Picture Filled(Picture picture, const Area& area, const std::vector<uint16_t>& colour) {
    const auto channels = static_cast<size_t>(picture.Channels());
    for (size_t i = 0; i < picture.samples.size(); ++i) {
        const int pixel = static_cast<int>(i / channels);
        if (area.Holds(pixel % width, pixel / width) && i % channels < colour.size())
            picture.samples[i] = colour[i % channels];
    }
    return picture;
}

} // namespace

TEST_F(ProgramTest, CropsAndFills) {
    const struct {
        int depth, type;
        std::vector<uint16_t> orange; // E6821E in samples of the picture; alpha is not touched
        std::vector<const char*> classes;
    } kinds[] = {
        {1, PNG_COLOR_TYPE_GRAY, {1}, {"conventional", "runs", "strips"}},
        {8, PNG_COLOR_TYPE_GRAY, {130}, {"tiled"}}, // the nearest gray is the mean
        {8, PNG_COLOR_TYPE_RGB, {230, 130, 30}, {"disk", "strips"}},
        {8, PNG_COLOR_TYPE_RGB_ALPHA, {230, 130, 30}, {"user"}},
        {16, PNG_COLOR_TYPE_RGB, {230 * 257, 130 * 257, 30 * 257}, {"conventional"}},
    };
    const Area areas[] = {{3, 2, 20, 11}, {0, 4, 1, 9}, {30, 15, 7, 6}, {0, 0, width, height}};
    for (const auto& kind : kinds) {
        const Picture picture = PictureOf(width, height, kind.depth, kind.type, Scattered);
        WritePng(Path("in.png"), picture);
        for (size_t i = 0; i < std::size(areas); ++i) {
            const Area& area = areas[i];
            const std::string storage = kind.classes[i % kind.classes.size()];
            SCOPED_TRACE(testing::Message() << kind.depth << " bits, type " << kind.type << ", area " << i);
            const auto run = [&](std::vector<std::string> words) {
                words.insert(words.begin() + 1, {Path("in.png"), Path("out.png"), "--storage", storage});
                Succeeds(words);
                return ReadPng(Path("out.png"));
            };
            std::vector<std::string> crop = area.Words(), fill = crop;
            crop.insert(crop.begin(), "crop");
            fill.insert(fill.begin(), {"fill", "--color", "E6821e"});
            EXPECT_EQ(run(crop), Part(picture, area));
            EXPECT_EQ(run(fill), Filled(picture, area, kind.orange));
            if (i == std::size(areas) - 1) {
                EXPECT_EQ(run({"fill", "--color", "E6821e"}), Filled(picture, area, kind.orange));
            }
        }
    }
}
