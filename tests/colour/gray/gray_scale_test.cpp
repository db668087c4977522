// Bitmaps brought to gray, pixel by pixel against the formulas.
#include "colour/pictures.h"
#include "colour/pixels/pixel_model.h"

#include "core/dispatch.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"
#include "zkr13n/playback.h"

namespace zkr::test {
namespace {

uint64_t GrayOfPixel(const PixelModel& model, uint64_t pixel, int32_t bits) {
    const uint64_t limit = (1u << bits) - 1;
    if (model.IsGray() && !model.HasLevels()) {
        const auto [value, largest] = model.GrayValue(pixel, bits);
        return largest < limit ? value * limit / largest : value;
    }
    const uint64_t gray = GrayOf(model.Channels(pixel));
    if (model.Bits() >= 48) return gray >> (16 - bits);
    return bits == 8 ? gray : bits == 12 ? (gray << 4) + gray / 17 : gray * 257;
}

void ExpectGray(ColourPicture& picture, PictureForm form, int32_t bits) {
    SCOPED_TRACE(form.Name() + "to " + std::to_string(bits) + " bits");
    const PixelModel model(picture);
    std::vector<uint64_t> expected;
    for (int32_t y = 0; y < picture.Height; ++y)
        for (int32_t x = 0; x < picture.Width; ++x)
            expected.push_back(GrayOfPixel(model, picture.Pixel(y, x), bits));
    ASSERT_EQ(Z_GrayScaleBitmap(&picture, bits), 1);
    ASSERT_EQ(picture.BitsPerPixel, bits);
    for (size_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(picture.Pixel(int32_t(i) / picture.Width, int32_t(i) % picture.Width), expected[i]) << i;
    EXPECT_EQ(Z_IsGrayScaleBitmap(&picture), GRAY_ORDEREDNORMAL);
    EXPECT_EQ(picture.Order, bits == 8 ? Z_ORDER_RGB : Z_ORDER_GRAY);
    EXPECT_EQ(picture.MaxVal, bits == 8 ? 0 : (1 << bits) - 1);
}

TEST(GrayScale, FollowsTheFormulaAtEveryDepth) {
    for (const PictureForm form : AllForms) {
        for (const int32_t bits : {8, 12, 16}) {
            ColourPicture wide(form, 1037, 2, 1), narrow(form, 1, 3, 2);
            if (form.Bits == bits && form.Order == Z_ORDER_GRAY) continue;
            ExpectGray(wide, form, bits);
            ExpectGray(narrow, form, bits);
        }
    }
}

TEST(GrayScale, ReadsThroughWindowsAndTables) {
    for (const PictureForm form : {PictureForm{12, 2}, PictureForm{16, 2}}) {
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
