// Bitmaps brought to gray, pixel by pixel against the formulas.
#include "colour/pictures.h"

#include "core/dispatch.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"
#include "zkr13n/playback.h"

namespace zkr::test {
namespace {

uint64_t Gray(uint64_t red, uint64_t green, uint64_t blue) {
    return (2 * red + 5 * green + blue + 4) / 8;
}
uint64_t GrayOfEntry(const RGBQUAD& entry) {
    return Gray(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
}

uint64_t Widened(uint64_t gray8, int32_t bits) {
    return bits == 8 ? gray8 : bits == 12 ? (gray8 << 4) + gray8 / 17 : gray8 * 257;
}

// A gray pixel through its window and the table.
uint64_t GrayOfGray(const BitmapHandle& bitmap, uint64_t pixel, int32_t bits) {
    const bool table = (bitmap.Flags & flag::LevelLUTActive) != 0;
    const int32_t high = bitmap.HighBit < 0 ? bitmap.BitsPerPixel - 1 : bitmap.HighBit;
    const int32_t low = std::max(bitmap.LowBit, 0);
    const int32_t n = std::min(high - low + 1, table ? bitmap.BitsPerPixel : bits);
    const uint64_t mask = (1u << n) - 1, value = pixel >> (high - n + 1) & mask;
    if (table) {
        const uint64_t gray = value < bitmap.LevelLUTLength ? GrayOfEntry(bitmap.LevelLUT[value]) : 0;
        return Widened(gray, bits);
    }
    const uint64_t limit = (1u << bits) - 1;
    return mask < limit ? value * limit / mask : value;
}

uint64_t GrayOfPixel(const BitmapHandle& bitmap, PixelForm form, const RGBQUAD* palette, uint64_t pixel,
                     int32_t bits) {
    if (form.Bits <= 8) return Widened(GrayOfEntry(palette[pixel]), bits);
    if (form.IsGrayWord()) return GrayOfGray(bitmap, pixel, bits);
    const int step = form.Bits == 16 ? 5 : form.Bits >= 48 ? 16 : 8;
    uint64_t c[3];
    for (int i = 0; i < 3; ++i) {
        c[i] = pixel >> (step * i) & ((1u << step) - 1);
        if (step == 5) c[i] = c[i] << 3 | c[i] >> 2;
    }
    const uint64_t gray = form.Order == Z_ORDER_RGB ? Gray(c[0], c[1], c[2]) : Gray(c[2], c[1], c[0]);
    return step == 16 ? gray >> (16 - bits) : Widened(gray, bits);
}

void ExpectGray(ColourPicture& picture, PixelForm form, int32_t bits) {
    SCOPED_TRACE(form.Name() + "to " + std::to_string(bits) + " bits");
    RGBQUAD palette[256] = {};
    Z_GetBitmapPaletteEntries(&picture, 0, 256, palette);
    std::vector<uint64_t> expected;
    for (int32_t y = 0; y < picture.Height; ++y)
        for (int32_t x = 0; x < picture.Width; ++x)
            expected.push_back(GrayOfPixel(picture, form, palette, picture.Pixel(y, x), bits));
    ASSERT_EQ(Z_GrayScaleBitmap(&picture, bits), 1);
    ASSERT_EQ(picture.BitsPerPixel, bits);
    for (size_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(picture.Pixel(int32_t(i) / picture.Width, int32_t(i) % picture.Width), expected[i]) << i;
    EXPECT_EQ(Z_IsGrayScaleBitmap(&picture), GRAY_ORDEREDNORMAL);
    EXPECT_EQ(picture.Order, bits == 8 ? Z_ORDER_RGB : Z_ORDER_GRAY);
    EXPECT_EQ(picture.MaxVal, bits == 8 ? 0 : (1 << bits) - 1);
}

TEST(GrayScale, FollowsTheFormulaAtEveryDepth) {
    for (const PixelForm form : AllForms) {
        for (const int32_t bits : {8, 12, 16}) {
            ColourPicture wide(form, 1037, 2, 1), narrow(form, 1, 3, 2);
            if (form.Bits == bits && form.Order == Z_ORDER_GRAY) continue;
            ExpectGray(wide, form, bits);
            ExpectGray(narrow, form, bits);
        }
    }
}

TEST(GrayScale, ReadsThroughWindowsAndTables) {
    for (const PixelForm form : {PixelForm{12, 2}, PixelForm{16, 2}}) {
        for (const auto& [low, high] : {std::pair{-1, -1}, {2, 9}, {0, 4}, {3, 11}}) {
            for (const int32_t bits : {8, 12, 16}) {
                for (const uint32_t length : {0u, 65536u, 23u}) {
                    ColourPicture picture(form, 600, 3, length);
                    picture.LowBit = low, picture.HighBit = high;
                    if (length > 0) picture.SetLevels(length, 5);
                    if (form.Bits != bits || length > 0 || low > 0) ExpectGray(picture, form, bits);
                }
            }
        }
    }
}

TEST(GrayScale, CarriesTheRestOfTheRecordOver) {
    for (const int32_t type : {MemoryDisk, MemoryTiled}) {
        BitmapHandle bitmap;
        ASSERT_EQ(Z_CreateBitmap(&bitmap, type, 9, 5, 24, 1, nullptr, 5, nullptr, 0), 1);
        bitmap.XResolution = 71, bitmap.YResolution = 72, bitmap.PlaybackLeft = 3;
        bitmap.Flags |= flag::RegionUnclipped | flag::PlaybackTransparency | flag::Signed;
        bitmap.Region = &bitmap;
        StatusLog log;
        ASSERT_EQ(Z_GrayScaleBitmap(&bitmap, 12), 1);
        EXPECT_EQ(log.Seen, (std::vector<int32_t>{0, 20, 40, 60, 80, 100}));
        EXPECT_EQ(bitmap.Flags, flag::Allocated | flag::RegionUnclipped | flag::PlaybackTransparency |
                                    (type == MemoryDisk ? flag::Disk : flag::Memory));
        EXPECT_EQ(std::tuple(bitmap.ViewPerspective, bitmap.XResolution, bitmap.YResolution),
                  std::tuple(5, 71, 72));
        EXPECT_EQ(bitmap.PlaybackLeft, 3);
        EXPECT_EQ(bitmap.Region, &bitmap);
        bitmap.Region = nullptr;
        Z_FreeBitmap(&bitmap);
    }
}

TEST(GrayScale, LeavesAloneWhatIsInForm) {
    ColourPicture picture({16, 2}, 4, 4, 1);
    picture.LowBit = -1;
    const BitmapHandle before = picture;
    StatusLog log(1, -29);
    EXPECT_EQ(Z_GrayScaleBitmap(&picture, 16), 1) << "what the callback says does not count";
    EXPECT_EQ(log.Seen, (std::vector<int32_t>{0, 100}));
    EXPECT_EQ(std::memcmp(&picture, &before, sizeof before), 0);
}

TEST(GrayScale, KeepsTheBitmapWhereItStops) {
    for (size_t stop = 1; stop <= 5; ++stop) {
        ColourPicture picture({24, 0}, 6, 4, 1);
        const Bytes rows = Rows(picture);
        const StatusLog log(stop, 0);
        EXPECT_EQ(Z_GrayScaleBitmap(&picture, 8), 0);
        EXPECT_EQ(picture.BitsPerPixel, 24);
        EXPECT_EQ(Rows(picture), rows);
    }
    ColourPicture picture({4, 0}, 6, 4, 1);
    Bitmap empty;
    EXPECT_EQ(Z_GrayScaleBitmap(nullptr, 99), code::InvalidBitmap);
    EXPECT_EQ(Z_GrayScaleBitmap(&empty, 8), code::InvalidBitmap);
    const uint32_t locks = 1u << Z_SUPPORT_EXTGRAY;
    Z_SetSupportLocks(locks);
    for (const auto& [bits, result] :
         {std::pair{17, code::InvalidBitsPerPixel}, {10, code::ExtendedGrayLocked}})
        EXPECT_EQ(Z_GrayScaleBitmap(&picture, bits), result);
    Z_SetSupportLocks(0);
    for (const int32_t bits : {10, 7, 0, -1})
        EXPECT_EQ(Z_GrayScaleBitmap(&picture, bits), code::InvalidArgument);
    Z_SetPaletteType(&picture, 0);
    picture.ColorsUsed = 17; // one more than the palette has
    EXPECT_EQ(Z_GrayScaleBitmap(&picture, 8), code::InvalidBitmap);
}

} // namespace
} // namespace zkr::test
