// BMP files, written and read: pictures there and back, and files of other programs' kinds byte by byte.
#include "picture_files.h"
#include "run_program.h"

#include <cstring>

namespace {

constexpr int width = 37;
constexpr int height = 21;

class DibTest : public ProgramTest {
  protected:
    // The file that a BMP comes to when nothing is done to it.
    Picture Read(const std::string& name) const {
        const std::string info = Succeeds({"info", Path(name)});
        EXPECT_NE(info.find("BMP"), std::string::npos);
        Succeeds({"flip", Path(name), Path("flipped.png")});
        Succeeds({"flip", Path("flipped.png"), Path("upright.png")});
        return ReadPng(Path("upright.png"));
    }
};

// Little-endian fields of so many bytes each.
std::string Fields(const std::vector<std::pair<int64_t, int>>& fields) {
    std::string bytes;
    for (const auto& [value, count] : fields)
        for (int i = 0; i < count; ++i)
            bytes.push_back(static_cast<char>(value >> 8 * i));
    return bytes;
}

std::string FileHeader(size_t bitsAt) {
    return "BM" + Fields({{0, 4}, {0, 4}, {static_cast<int64_t>(bitsAt), 4}});
}

std::string InfoHeader(int columns, int rows, int bits, int compression, int colours, size_t imageBytes = 0) {
    return Fields({{40, 4},
                   {columns, 4},
                   {rows, 4},
                   {1, 2},
                   {bits, 2},
                   {compression, 4},
                   {static_cast<int64_t>(imageBytes), 4},
                   {3780, 4},
                   {3780, 4},
                   {colours, 4},
                   {0, 4}});
}

} // namespace

TEST_F(DibTest, ThereAndBack) {
    const struct {
        int depth, type;
        const char* header;
        size_t headBytes;
    } kinds[] = {{1, PNG_COLOR_TYPE_GRAY, "info", 14 + 40 + 8},
                 {4, PNG_COLOR_TYPE_GRAY, "v4", 14 + 108 + 64},
                 {8, PNG_COLOR_TYPE_GRAY, "v5", 14 + 124 + 1024},
                 {8, PNG_COLOR_TYPE_RGB, "info", 14 + 40},
                 {8, PNG_COLOR_TYPE_RGB, "v5", 14 + 124}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(testing::Message() << kind.depth << " bits, " << kind.header);
        const Picture picture = PictureOf(width, height, kind.depth, kind.type, Scattered);
        WritePng(Path("in.png"), picture);
        for (const char* storage : {"conventional", "disk"}) {
            Succeeds({"dib", Path("in.png"), Path("out.bmp"), "--header", kind.header, "--storage", storage});
            const int bits = kind.depth * picture.Channels();
            const auto rowBytes = static_cast<size_t>((width * bits + 31) / 32 * 4);
            EXPECT_EQ(ReadText("out.bmp").size(), kind.headBytes + rowBytes * height);
            EXPECT_EQ(Read("out.bmp"), picture);
        }
    }
}

// Two rows of two pixels, red and green above blue and white, in every way to say it.
TEST_F(DibTest, FilesOfOtherPrograms) {
    using namespace std::string_literals;
    const std::string four = "\x00\x00\xff\x00\x00\xff\x00\x00\xff\x00\x00\x00\xff\xff\xff\x00"s; // r g b w
    const std::string three = "\x00\x00\xff\x00\xff\x00\xff\x00\x00\xff\xff\xff"s;
    const std::string upwards24 = "\xff\x00\x00\xff\xff\xff\x00\x00\x00\x00\xff\x00\xff\x00\x00\x00"s;
    const std::string head24 = InfoHeader(2, 2, 24, 0, 0);
    const std::string runs = "\x01\x02\x01\x03\x00\x00\x00\x02\x00\x00\x01\x00\x01\x01\x00\x01"s;
    const std::string masks565 = Fields({{0xF800, 4}, {0x7E0, 4}, {0x1F, 4}});
    const std::string masks32 = Fields({{0xFF, 4}, {0xFF00, 4}, {0xFF0000, 4}});
    const struct {
        const char* name;
        std::string bytes;
    } files[] = {
        {"plain", FileHeader(54) + head24 + upwards24},
        {"with a gap", FileHeader(60) + head24 + "123456" + upwards24},
        {"no place told", FileHeader(0) + head24 + upwards24},
        {"core", FileHeader(26) + Fields({{12, 4}, {2, 2}, {2, 2}, {1, 2}, {24, 2}}) + upwards24},
        {"core of 4 bits, few colours", FileHeader(26 + 12) +
                                            Fields({{12, 4}, {2, 2}, {2, 2}, {1, 2}, {4, 2}}) + three +
                                            "\x23\0\0\0\x01\0\0\0"s},
        {"top down, 32 bits", FileHeader(54) + InfoHeader(2, -2, 32, 0, 0) + four},
        {"8 bits, four colours",
         FileHeader(70) + InfoHeader(2, 2, 8, 0, 4) + four + "\x02\x03\0\0\x00\x01\0\0"s},
        {"runs", FileHeader(70) + InfoHeader(2, 2, 8, 1, 4, 16) + four + runs},
        {"5, 6 and 5 bits",
         FileHeader(66) + InfoHeader(2, -2, 16, 3, 0) + masks565 + "\x00\xf8\xe0\x07\x1f\x00\xff\xff"s},
        {"masks the other way", FileHeader(66) + InfoHeader(2, -2, 32, 3, 0) + masks32 +
                                    "\xff\0\0\x11\0\xff\0\x22\0\0\xff\x33\xff\xff\xff\x44"s},
    };
    const std::vector<png_color> expected = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};
    for (const auto& file : files) {
        SCOPED_TRACE(file.name);
        WriteText("file.bmp", file.bytes);
        const Picture picture = Read("file.bmp");
        const auto channels = static_cast<size_t>(picture.Channels());
        ASSERT_EQ(picture.samples.size(), 4 * channels);
        for (size_t i = 0; i < 4; ++i) {
            const uint16_t* s = &picture.samples[i * channels];
            const png_color c = picture.palette.empty()
                                    ? png_color{static_cast<png_byte>(s[0]), static_cast<png_byte>(s[1]),
                                                static_cast<png_byte>(s[2])}
                                    : picture.palette[*s];
            EXPECT_EQ(std::memcmp(&c, &expected[i], 3), 0) << i;
        }
        for (size_t length = 2; length + 1 < file.bytes.size(); length += 5) {
            WriteText("short.bmp", file.bytes.substr(0, length));
            if (std::string(file.name) == "runs" && length >= 70) continue;
            Refuses({"flip", Path("short.bmp"), Path("none.png")}, Path("short.bmp") + ": ", "");
        }
    }
}

TEST_F(DibTest, Refuses) {
    WritePng(Path("in.png"), PictureOf(4, 4, 8, PNG_COLOR_TYPE_RGB, Scattered));
    Refuses({"dib", Path("in.png"), Path("out.png")}, Path("out.png") + ": ", "does not end in .bmp");
    Refuses({"dib", Path("in.png"), Path("out.bmp"), "--header", "v6"}, "--header: ", "info|v4|v5");
    WriteText("odd.bmp", FileHeader(54) + InfoHeader(2, 2, 2, 0, 0) + std::string(40, ' '));
    Refuses({"dib", Path("odd.bmp"), Path("out.bmp")}, Path("odd.bmp") + ": ", "Feature not available");
}
