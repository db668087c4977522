// zkr tour from end to end.
#include "picture_files.h"
#include "run_program.h"

#include <tuple>

namespace {

using TourTest = ProgramTest;

size_t CountOf(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

} // namespace

TEST_F(TourTest, TakesAPictureThroughEverything) {
    const Picture photo = PictureOf(64, 48, 8, PNG_COLOR_TYPE_RGB, Scattered);
    WritePng(Path("photo.png"), photo);
    const std::string table = Succeeds({"tour", Path("photo.png"), "--out", Path("deep/out")});

    EXPECT_EQ(table.find("differs"), std::string::npos) << table;
    // 48 rows in 12 tiles of four: of a budget of five, two are views on files and three stay in memory.
    for (const char* part : {"conventional", "user", "disk", "tiled: 12 memory", "tiled: 12 file",
                             "tiled: 3 memory, 2 views, 7 file"}) {
        EXPECT_NE(table.find(part), std::string::npos) << part << " is missing in\n" << table;
    }
    // Colour of 24 bits and more gives every sample back: 24, 32, 48 and 64 bits in both orders.
    EXPECT_EQ(CountOf(table, "equal"), 11u + 8u + (table.find("skipped") == std::string::npos ? 10u : 0u))
        << table;

    const struct {
        const char* file;
        int depth, type;
        size_t colours;
    } pictures[] = {
        {"01-gray-palette", 1, PNG_COLOR_TYPE_GRAY, 0}, {"03-fixed-palette", 8, PNG_COLOR_TYPE_PALETTE, 8},
        {"12-gray", 16, PNG_COLOR_TYPE_GRAY, 0},        {"07-gray-palette", 8, PNG_COLOR_TYPE_PALETTE, 128},
        {"08-gray-palette", 8, PNG_COLOR_TYPE_GRAY, 0}, {"08-fixed-palette", 8, PNG_COLOR_TYPE_PALETTE, 256},
        {"32-rgb", 8, PNG_COLOR_TYPE_RGB_ALPHA, 0},     {"48-bgr", 16, PNG_COLOR_TYPE_RGB, 0},
    };
    for (const auto& one : pictures) {
        const Picture picture = ReadPng(Path(std::string("deep/out/depth-") + one.file + ".png"));
        EXPECT_EQ(std::tuple(picture.width, picture.depth, picture.type, picture.palette.size()),
                  std::tuple(64, one.depth, one.type, one.colours))
            << one.file;
    }
    EXPECT_EQ(ReadPng(Path("deep/out/depth-24-bgr.png")), photo);
    EXPECT_EQ(ReadPng(Path("deep/out/edit-crop.png")).width, 32);
    EXPECT_EQ(ReadPng(Path("deep/out/colours-16-jarvis.png")).palette.size(), 16u);
    EXPECT_EQ(ReadPng(Path("deep/out/window-16384-49151.png")).type, PNG_COLOR_TYPE_GRAY);
    EXPECT_NE(ReadPng(Path("deep/out/edit-fill.png")), photo);
    const Picture sheet = ReadPng(Path("deep/out/contact-sheet.png"));
    EXPECT_EQ(sheet.type, PNG_COLOR_TYPE_RGB);
    EXPECT_GT(sheet.width, 7 * 64);
}

TEST_F(TourTest, TakesOddPictures) {
    for (const auto& [width, height] : {std::pair(1, 1), {3000, 2}, {2, 1500}}) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        WritePng(Path("odd.png"), PictureOf(width, height, 4, PNG_COLOR_TYPE_GRAY, Scattered));
        EXPECT_EQ(Succeeds({"tour", Path("odd.png"), "--out", Path("out")}).find("differs"),
                  std::string::npos);
    }
}
