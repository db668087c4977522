// Level tables: the windows that they set, and their curves, by hand.
#include "colour/pictures.h"

#include "platform/faults.h"
#include "zkr13n/gray.h"
#include "zkr13n/levels.h"
#include "zkr13n/locks.h"

namespace zkr::test {
namespace {

TEST(WindowLevel, SetsWindowAndTable) {
    ColourPicture picture({16, 2}, 2, 2, 1);
    RGBQUAD colours[4] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 9, 9, 9}, {0, 1, 0, 1}};
    picture.MinVal = 5, picture.MaxVal = 6;

    ASSERT_EQ(Z_WindowLevel(&picture, 2, 9, colours, 4, Z_LEVEL_KEEP), 1);
    EXPECT_EQ(std::tuple(picture.LevelLowBit, picture.LevelHighBit, picture.LowBit, picture.HighBit),
              std::tuple(2, 9, 0, 15));
    EXPECT_NE(picture.LevelLUT, colours);
    EXPECT_EQ(std::memcmp(picture.LevelLUT, colours, sizeof colours), 0);
    EXPECT_EQ(picture.Flags & flag::LevelLUTActive, 0u);

    ASSERT_EQ(Z_WindowLevel(&picture, -1, -1, picture.LevelLUT, 3, Z_LEVEL_APPLY), 1);
    EXPECT_EQ(std::tuple(picture.LevelLowBit, picture.LevelHighBit), std::tuple(0, 15));
    EXPECT_EQ(std::tuple(picture.MinVal, picture.MaxVal), std::tuple(5, 6)) << "the window is the same";
    EXPECT_EQ(std::tuple(picture.LevelLUTLength, picture.LevelLUT[0].rgbRed), std::tuple(3u, 3));
    EXPECT_NE(picture.Flags & flag::LevelLUTActive, 0u);

    // A table that lies inside the bitmap's own.
    ASSERT_EQ(Z_WindowLevel(&picture, 3, 12, picture.LevelLUT + 1, 2, Z_LEVEL_APPLY), 1);
    EXPECT_EQ(std::memcmp(picture.LevelLUT, colours + 1, 8), 0);
    EXPECT_EQ(std::tuple(picture.LowBit, picture.HighBit, picture.MinVal, picture.MaxVal),
              std::tuple(3, 12, 0, 1023));

    ASSERT_EQ(Z_WindowLevel(&picture, 0, 40, picture.LevelLUT, 0, Z_LEVEL_APPLY), 1);
    EXPECT_EQ(std::tuple(picture.LevelLUT, picture.LevelLUTLength, picture.MaxVal),
              std::tuple(nullptr, 0u, 0x7FFFFFFF));
}

TEST(WindowLevel, RefusesWhatDoesNotFit) {
    ColourPicture picture({12, 2}, 2, 2, 1);
    picture.SetLevels(3, 1);
    const BitmapHandle before = picture;
    RGBQUAD colours[2] = {};
    EXPECT_EQ(Z_WindowLevel(nullptr, 0, 1, colours, 2, 1), code::InvalidBitmap);
    EXPECT_EQ(Z_WindowLevel(&picture, 5, 4, colours, 2, 1), code::InvalidArgument);
    EXPECT_EQ(Z_WindowLevel(&picture, 12, -1, colours, 2, 1), code::InvalidArgument);
    EXPECT_EQ(Z_WindowLevel(&picture, 0, 4, nullptr, 2, 1), code::InvalidArgument);
    EXPECT_EQ(Z_WindowLevel(&picture, 0, 4, colours, 2, 2), code::InvalidArgument);
    Z_SetSupportLocks(1u << Z_SUPPORT_EXTGRAY);
    EXPECT_EQ(Z_WindowLevel(&picture, 5, 4, colours, 2, 1), code::ExtendedGrayLocked);
    EXPECT_EQ(Z_WindowLevelFillLUT(colours, 2, 0, 0, 0, 1, 0, 1, 0, 1, 1), code::ExtendedGrayLocked);
    EXPECT_EQ(Z_WindowLevelFillLUT(nullptr, 2, 0, 0, 0, 1, 0, 1, 0, 1, 1), code::InvalidArgument);
    Z_SetSupportLocks(0);
    EXPECT_EQ(std::memcmp(&picture, &before, sizeof before), 0);

    platform::fault::Arm(platform::fault::All, 1, false);
    EXPECT_EQ(Z_WindowLevel(&picture, 1, 4, colours, 2, 1), code::OutOfMemory);
    platform::fault::Disarm();
    EXPECT_EQ(std::tuple(picture.LevelLUT, picture.LevelLUTLength, picture.HighBit),
              std::tuple(nullptr, 0u, 4));
}

struct Fill {
    int32_t Low, High, LowBit, Minimum, Maximum, Inside;
    std::string Red; // of ten entries, a letter each: '.' as it was
    std::string Reserved;
};

// Ten entries; the first colour has red 10, the second red 50. Reds are written as tens of levels: 'a' is 10,
// 'b' 20 and so on, '0' black and 'w' white; '5' is 127 and 'x' any other.
TEST(WindowLevel, FillsTablesByHand) {
    const auto letter = [](uint8_t red) {
        return red == 0xEE     ? '.'
               : red == 0      ? '0'
               : red == 255    ? 'w'
               : red % 10 == 0 ? char('a' + red / 10 - 1)
               : red == 127    ? '5'
                               : 'x';
    };
    const Fill cases[] = {
        {3, 7, 0, 0, 9, 1, "00.abcdew.", "00.r00000."}, // black 0 to 1, ramp 3 to 7, white 8
        {0, 0, 0, 0, 9, 1, "awwwwwwww.", "r00000000."}, // one entry of a ramp
        {1, 5, 0, 0, 9, 1, ".abcdewww.", ".r0000000."},
        {-5, 99, 0, 2, 6, 1, "0.abcdeww.", "0.r000000."}, // cut to 2 to 6
        {6, 14, 1, 0, 99, 1, "00.abcdew.", "00.r00000."}, // shifted by a bit
        {8, 12, 0, 0, 99, 1, "0000000.ab", "0000000.r0"}, // ends behind the table
        {-2, 2, 0, -9, 9, 1, "cdewwwwww.", "000000000."}, // begins in front of it
        {3, 7, 0, 0, 9, 0, "aaa.05wee.", "000.r0000."},   // first 0 to 2, ramp 4 to 6, second from 7
        {3, 4, 0, 0, 9, 0, "aaa.eeeee.", "000.00000."},   // no room for a ramp
        {3, 5, 0, 0, 9, 0, "aaa.0eeee.", "000.r0000."},
        {12, 20, 0, 0, 99, 0, "aaaaaaaaaa", "0000000000"},
    };
    for (const Fill& fill : cases) {
        RGBQUAD table[12];
        std::memset(table, 0xEE, sizeof table);
        ASSERT_EQ(Z_WindowLevelFillLUT(table, 10, 0x01020A, 0x010232, fill.Low, fill.High, fill.LowBit,
                                       fill.LowBit, fill.Minimum, fill.Maximum, fill.Inside),
                  1);
        std::string red, reserved;
        for (int i = 0; i < 10; ++i) {
            red += letter(table[i].rgbRed);
            const bool written = table[i].rgbRed != 0xEE;
            reserved += !written ? '.' : table[i].rgbReserved == 0 ? '0' : 'r';
        }
        EXPECT_EQ(red, fill.Red) << fill.Low << ' ' << fill.High << ' ' << fill.Inside;
        EXPECT_EQ(reserved, fill.Reserved) << fill.Low << ' ' << fill.High << ' ' << fill.Inside;
        EXPECT_EQ(std::tuple(table[10].rgbRed, table[11].rgbRed), std::tuple(0xEE, 0xEE));
    }
}

TEST(WindowLevel, RampsTruncateTowardsTheFirstColour) {
    RGBQUAD table[5];
    ASSERT_EQ(Z_WindowLevelFillLUT(table, 5, 0x0A00FF, 0x0000F8, 0, 4, 0, 7, 0, 9, 7), 1);
    const int red[] = {255, 254, 252, 250, 248};
    const int blue[] = {10, 8, 5, 3, 0};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(std::tuple(table[i].rgbRed, table[i].rgbGreen, table[i].rgbBlue),
                  std::tuple(red[i], 0, blue[i]));
    for (const auto& [low, high, minimum, maximum, lowBit, highBit] :
         {std::tuple{2, 1, 0, 9, 0, 7}, {0, 1, 9, 8, 0, 7}, {0, 1, 0, 9, 8, 7}})
        EXPECT_EQ(Z_WindowLevelFillLUT(table, 5, 0, 0, low, high, lowBit, highBit, minimum, maximum, 1),
                  code::InvalidArgument);
    RGBQUAD nothing = {1, 2, 3, 4};
    EXPECT_EQ(Z_WindowLevelFillLUT(&nothing, 0, 0, 0, 0, 4, 0, 7, 0, 9, 1), 1);
    EXPECT_EQ(nothing.rgbReserved, 4);
}

} // namespace
} // namespace zkr::test
