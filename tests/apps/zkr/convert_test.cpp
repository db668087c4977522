// zkr convert and zkr info on good pictures: what is lossless comes back to the sample, and what is not
// follows the rules of the conversions, worked out here by hand.
#include "picture_files.h"
#include "run_program.h"

namespace {

constexpr int width = 37; // odd, so that no depth below 8 bits ends on a whole byte
constexpr int height = 29;

class ConvertTest : public ProgramTest {
  protected:
    // The picture that `zkr convert` with these words makes of a picture.
    Picture Converted(const Picture& source, std::vector<std::string> words, const PngForm& form = {}) const {
        WritePng(Path("in.png"), source, form);
        return ConvertedFile("in.png", std::move(words));
    }
    Picture ConvertedFile(const std::string& name, std::vector<std::string> words) const {
        words.insert(words.begin(), {"convert", Path(name), Path("out.png")});
        Succeeds(words);
        return ReadPng(Path("out.png"));
    }
};

std::vector<png_color> SomePalette(int bits) {
    std::vector<png_color> palette;
    for (unsigned i = 0; i < 1u << bits; ++i) {
        palette.push_back(
            {static_cast<png_byte>(255 - i), static_cast<png_byte>(i * 7), static_cast<png_byte>(i)});
    }
    return palette;
}

Picture Colours() {
    return PictureOf(width, height, 8, PNG_COLOR_TYPE_RGB, Scattered);
}

uint32_t ThroughFiveBits(uint32_t channel) {
    const uint32_t five = channel >> 3;
    return five << 3 | five >> 2;
}

} // namespace

TEST_F(ConvertTest, KeepsEveryKindOfPngInEveryStorageClass) {
    const struct {
        int depth, type;
        const char* bits;
        const char* order;
    } kinds[] = {{1, PNG_COLOR_TYPE_PALETTE, "1", ""},       {2, PNG_COLOR_TYPE_PALETTE, "2", ""},
                 {4, PNG_COLOR_TYPE_PALETTE, "4", ""},       {8, PNG_COLOR_TYPE_PALETTE, "8", ""},
                 {1, PNG_COLOR_TYPE_GRAY, "1", ""},          {2, PNG_COLOR_TYPE_GRAY, "2", ""},
                 {4, PNG_COLOR_TYPE_GRAY, "4", ""},          {8, PNG_COLOR_TYPE_GRAY, "0", ""},
                 {16, PNG_COLOR_TYPE_GRAY, "16", "gray"},    {8, PNG_COLOR_TYPE_RGB, "24", "rgb"},
                 {8, PNG_COLOR_TYPE_RGB, "24", "bgr"},       {8, PNG_COLOR_TYPE_RGB_ALPHA, "32", "bgr"},
                 {16, PNG_COLOR_TYPE_RGB, "48", "bgr"},      {16, PNG_COLOR_TYPE_RGB_ALPHA, "64", "rgb"},
                 {16, PNG_COLOR_TYPE_RGB_ALPHA, "64", "bgr"}};
    for (const auto& kind : kinds) {
        Picture picture = PictureOf(width, height, kind.depth, kind.type, Scattered);
        if (kind.type == PNG_COLOR_TYPE_PALETTE) picture.palette = SomePalette(kind.depth);
        for (const std::string storage : {"conventional", "user", "tiled", "disk", "runs", "strips"}) {
            const bool bitonal = kind.depth == 1, colour = std::string(kind.bits) == "24";
            if ((storage == "runs" && !bitonal) || (storage == "strips" && !bitonal && !colour)) continue;
            SCOPED_TRACE(testing::Message() << kind.bits << " bits, " << storage);
            std::vector<std::string> words = {"--bits", kind.bits, "--storage", storage};
            if (*kind.order != 0) words.insert(words.end(), {"--order", kind.order});
            EXPECT_EQ(Converted(picture, words), picture);
        }
    }
}

TEST_F(ConvertTest, FitsOtherDepthsIntoPng) {
    const Picture source = Colours();
    Picture five = source;
    for (uint16_t& sample : five.samples)
        sample = static_cast<uint16_t>(ThroughFiveBits(sample));
    for (const char* order : {"rgb", "bgr"})
        EXPECT_EQ(Converted(source, {"--bits", "16", "--order", order}), five);

    // The fourth channel of a picture without alpha is written as opaque.
    const Picture wide = Converted(source, {"--bits", "32", "--order", "bgr"});
    ASSERT_EQ(wide.type, PNG_COLOR_TYPE_RGB_ALPHA);
    for (size_t i = 0; i < wide.samples.size(); ++i)
        ASSERT_EQ(wide.samples[i], i % 4 == 3 ? 255 : source.samples[i / 4 * 3 + i % 4]) << i;
    EXPECT_EQ(ConvertedFile("out.png", {"--bits", "24"}), source);

    Picture twelve = {width, height, 16, PNG_COLOR_TYPE_GRAY, {}};
    twelve.significantBits = 12;
    for (size_t i = 0; i < source.samples.size(); i += 3) {
        const uint16_t* colour = &source.samples[i];
        const uint32_t gray = (2u * colour[0] + 5u * colour[1] + colour[2] + 4u) >> 3;
        twelve.samples.push_back(static_cast<uint16_t>(((gray << 12) - gray) / 255 * 65535 / 4095));
    }
    EXPECT_EQ(Converted(source, {"--bits", "12"}), twelve);
    // What was written as 12 bits is read as 12 bits.
    EXPECT_EQ(ConvertedFile("out.png", {"--bits", "12"}), twelve);
    EXPECT_NE(Succeeds({"info", Path("out.png")}).find("12 gray"), std::string::npos);
}

TEST_F(ConvertTest, ReadsTheRarerFormsOfPng) {
    for (const int depth : {4, 8}) {
        Picture picture = PictureOf(width, height, depth, PNG_COLOR_TYPE_PALETTE, Scattered);
        picture.palette = SomePalette(depth);
        EXPECT_EQ(Converted(picture, {"--bits", std::to_string(depth)}, {.interlaced = true}), picture);
    }
    const Picture deep = PictureOf(width, height, 16, PNG_COLOR_TYPE_RGB_ALPHA, Scattered);
    EXPECT_EQ(Converted(deep, {"--bits", "64"}, {.interlaced = true}), deep);

    // A palette with fewer colours than its depth has room for, one of them transparent: 32 bits with alpha.
    Picture keyed = {3, 1, 2, PNG_COLOR_TYPE_PALETTE, {0, 1, 2}, {{9, 8, 7}, {60, 50, 40}, {200, 210, 220}}};
    const Picture expected = {
        3, 1, 8, PNG_COLOR_TYPE_RGB_ALPHA, {9, 8, 7, 255, 60, 50, 40, 0, 200, 210, 220, 255}};
    EXPECT_EQ(Converted(keyed, {"--bits", "32"}, {.transparentIndex = 1}), expected);

    const Picture grayAlpha = {2, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, {10, 20, 30, 40}};
    EXPECT_EQ(Converted(grayAlpha, {"--bits", "32"}),
              (Picture{2, 1, 8, PNG_COLOR_TYPE_RGB_ALPHA, {10, 10, 10, 20, 30, 30, 30, 40}}));
}

TEST_F(ConvertTest, ReadsPortableAndJpegPictures) {
    Picture twelve = {3, 1, 16, PNG_COLOR_TYPE_GRAY, {16, 0xABCA, 65535}};
    twelve.significantBits = 12;
    const struct {
        const char* name;
        std::string content;
        const char* bits;
        Picture expected;
    } cases[] = {// Black where a bit is set; the filling bits of a row count for nothing.
                 {"page.pbm",
                  "P4 # bits\n10 1\n\xA0\x7F",
                  "0",
                  {10, 1, 8, PNG_COLOR_TYPE_GRAY, {0, 255, 0, 255, 255, 255, 255, 255, 255, 0}}},
                 {"gray.pgm",
                  "P5\n# largest value 100\n3 1\n100\n" + std::string("\0\x32\x64", 3),
                  "0",
                  {3, 1, 8, PNG_COLOR_TYPE_GRAY, {0, 128, 255}}},
                 {"twelve.pgm", "P5 3 1 4095\n" + std::string("\0\1\x0A\xBC\x0F\xFF", 6), "12", twelve},
                 {"sixteen.pgm",
                  "P5 2 1 65535\n\x12\x34\xFE\xDC",
                  "16",
                  {2, 1, 16, PNG_COLOR_TYPE_GRAY, {0x1234, 0xFEDC}}},
                 {"colours.ppm",
                  "P6 2 1 51\n" + std::string("\0\x33\1\2\3\4", 6),
                  "24",
                  {2, 1, 8, PNG_COLOR_TYPE_RGB, {0, 255, 5, 10, 15, 20}}},
                 {"deep.ppm",
                  "P6 1 1 65535\n\x12\x34\xFE\xDC\xBA\x98",
                  "48",
                  {1, 1, 16, PNG_COLOR_TYPE_RGB, {0x1234, 0xFEDC, 0xBA98}}}};
    for (const auto& c : cases) {
        WriteText(c.name, c.content);
        EXPECT_EQ(ConvertedFile(c.name, {"--bits", c.bits}), c.expected) << c.name;
    }
    WriteFlatJpeg(Path("gray.jpg"), 21, 11, 1, 77);
    EXPECT_EQ(ConvertedFile("gray.jpg", {"--bits", "0"}),
              PictureOf(21, 11, 8, PNG_COLOR_TYPE_GRAY, [](size_t) { return 77u; }));
    WriteFlatJpeg(Path("white.jpg"), 21, 11, 3, 255);
    EXPECT_EQ(ConvertedFile("white.jpg", {"--bits", "24"}),
              PictureOf(21, 11, 8, PNG_COLOR_TYPE_RGB, [](size_t) { return 255u; }));
}

// Where the quarters of a picture come to stand, by orientation: left and right of the top, then of the bottom.
TEST_F(ConvertTest, PicturesOfCamerasStandUpright) {
    const std::string upright[] = {"ABCD", "ABCD", "BADC", "DCBA", "CDAB",
                                   "ACBD", "CADB", "DBCA", "BDAC", "ABCD"};
    const uint8_t quarters[] = {32, 96, 160, 224};
    for (int orientation = 0; orientation < 10; ++orientation) {
        SCOPED_TRACE(orientation);
        WriteJpegOfQuarters(Path("camera.jpg"), quarters, orientation, orientation % 2 == 0);
        const bool turned = orientation >= 5 && orientation <= 8;
        const int across = turned ? 16 : 32, down = turned ? 32 : 16;
        const auto quarterAt = [&](size_t i) -> uint32_t {
            const int x = static_cast<int>(i) % across, y = static_cast<int>(i) / across;
            const size_t place = (y < down / 2 ? 0u : 2u) + (x < across / 2 ? 0u : 1u);
            return quarters[upright[orientation][place] - 'A'];
        };
        EXPECT_EQ(ConvertedFile("camera.jpg", {"--bits", "0"}),
                  PictureOf(across, down, 8, PNG_COLOR_TYPE_GRAY, quarterAt));
    }
    // Rectangles are those of the picture as seen.
    WriteJpegOfQuarters(Path("camera.jpg"), quarters, 6, false);
    EXPECT_NE(Succeeds({"info", Path("camera.jpg")}).find("turned by 90 degrees"), std::string::npos);
    Succeeds({"crop", Path("camera.jpg"), Path("out.png"), "--top", "16", "--width", "8", "--height", "16"});
    EXPECT_EQ(ReadPng(Path("out.png")),
              PictureOf(8, 16, 8, PNG_COLOR_TYPE_GRAY, [](size_t) { return 224u; }));
}

TEST_F(ConvertTest, InfoTellsDepthSizeAndBytes) {
    WritePng(Path("in.png"), PictureOf(10, 3, 4, PNG_COLOR_TYPE_GRAY, Scattered), {.interlaced = true});
    const std::string text = Succeeds({"info", Path("in.png")});
    for (const char* part :
         {"PNG, interlaced", "10 x 3 pixels", "4 gray palette", "16 colours", "8 bytes a row, 24 bytes"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part << " is missing in\n" << text;
    }
}
