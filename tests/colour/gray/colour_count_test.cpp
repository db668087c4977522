// Counts of distinct colours against sets of the colours that pixels stand for, kept in the order in which
// they appear.
#include "colour/pictures.h"
#include "colour/pixels/pixel_model.h"

#include "core/test_regions.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <set>

namespace zkr::test {
namespace {

struct Segment {
    int32_t Row, Begin, End;
};
using Segments = std::vector<Segment>;

Segments Whole(const BitmapHandle& bitmap) {
    Segments all;
    for (int32_t y = 0; y < bitmap.Height; ++y)
        all.push_back({y, 0, bitmap.Width});
    return all;
}

// The colour of a pixel, 0xRRGGBB; of gray words whose colours nobody wants, all bits of the value.
uint32_t Meaning(const PixelModel& model, uint64_t pixel, bool wanted) {
    if (model.IsGray() && !model.HasLevels()) {
        const auto value = uint32_t(model.GrayValue(pixel, wanted ? 8 : 16).Value);
        return wanted ? value * 0x010101 : value;
    }
    const Colour c = model.Colour8(pixel);
    return c.red << 16 | c.green << 8 | c.blue;
}

void ExpectCounts(ColourPicture& picture, PictureForm form, const Segments& segments) {
    const PixelModel model(picture);
    for (const int32_t room : {-1, 0, 1, 3, 16, 256, 5000}) {
        std::set<uint32_t> met;
        std::vector<uint32_t> colours;
        for (const Segment& s : segments)
            for (int32_t x = s.Begin; x < s.End; ++x)
                if (const uint32_t colour = Meaning(model, picture.Pixel(s.Row, x), room >= 0);
                    met.insert(colour).second)
                    colours.push_back(colour);
        SCOPED_TRACE(form.Name() + "room " + std::to_string(room));
        std::vector<RGBQUAD> palette(size_t(room + 2), RGBQUAD{1, 2, 3, 4});
        auto count = uint32_t(room);
        ASSERT_EQ(Z_GetBitmapColorCountExt(&picture, &count, room < 0 ? nullptr : palette.data()), 1);
        const auto all = uint32_t(colours.size());
        ASSERT_EQ(count, room < 0 ? all : std::min(all, uint32_t(room) + 1));
        for (size_t i = 0; room >= 0 && i < palette.size(); ++i) {
            const RGBQUAD& e = palette[i];
            const uint32_t got = uint32_t(e.rgbRed) << 16 | e.rgbGreen << 8 | e.rgbBlue;
            const bool filled = i < colours.size() && i < size_t(room);
            ASSERT_EQ(got, filled ? colours[i] : 0x030201u) << i;
            ASSERT_EQ(e.rgbReserved, filled ? 0 : 4);
        }
    }
}

TEST(ColourCount, IsThatOfASetAtEveryDepth) {
    for (const PictureForm form : AllForms) {
        for (const int values : {1, 2, 17, 255, 4000}) {
            ColourPicture picture(form, 61, 29, uint64_t(values), values);
            ExpectCounts(picture, form, Whole(picture));
        }
    }
}

TEST(ColourCount, FindsTheLastOfAllValues) {
    ColourPicture picture({12, 2}, 4096, 1, 1);
    for (int x = 0; x < 4096; ++x)
        WritePixel(picture.Row(0), 12, x, uint64_t(x));
    ExpectCounts(picture, {12, 2}, Whole(picture));
}

TEST(ColourCount, GoesThroughWindowsAndTables) {
    for (const PictureForm form : {PictureForm{12, 2}, PictureForm{16, 2}}) {
        for (const auto& [low, high] : {std::pair{0, form.Bits - 1}, {2, 9}, {0, 4}, {3, 11}}) {
            ColourPicture picture(form, 300, 20, 7);
            picture.LowBit = low, picture.HighBit = high;
            ExpectCounts(picture, form, Whole(picture));
            for (const uint32_t length : {65536u, 40u, 0u}) {
                if (picture.LevelLUT != nullptr) Z_OsFree(picture.LevelLUT);
                picture.SetLevels(length, length);
                ExpectCounts(picture, form, Whole(picture));
            }
        }
    }
}

TEST(ColourCount, StaysInsideTheRegion) {
    const RegionSlots slots;
    for (const PictureForm form : AllForms) {
        for (const RECT bounds : {RECT{0, 2, 40, 6}, {5, 2, 7, 6}}) { // row 4 of the second one is empty
            ColourPicture picture(form, 40, 9, 3);
            RegionSlots::Give(picture, {bounds});
            Segments segments;
            for (int32_t y = bounds.top; y < bounds.bottom; ++y) {
                const std::vector<int32_t> ends = RegionSlots::Of(picture).Segments(y);
                for (size_t i = 0; i < ends.size(); i += 2)
                    segments.push_back({y, ends[i], ends[i + 1]});
            }
            ExpectCounts(picture, form, segments);
            uint32_t count = 0;
            const StatusLog log;
            EXPECT_EQ(Z_GetBitmapColorCountExt(&picture, &count, nullptr), 1);
            if (form.Bits == 24) {
                EXPECT_EQ(log.Seen, (std::vector<int32_t>{0, 25, 50, 75, 100}));
            }
            RegionSlots::BoundsResult = -77;
            EXPECT_EQ(Z_GetBitmapColorCountExt(&picture, &count, nullptr), -77);
            RegionSlots::BoundsResult = 1;
        }
    }
}

TEST(ColourCount, EndsEarlyAndStopsWhenTold) {
    ColourPicture picture({24, 1}, 16, 4, 1, 40);
    RGBQUAD palette[3];
    uint32_t count = 3;
    {
        StatusLog log;
        EXPECT_EQ(Z_GetBitmapColorCountExt(&picture, &count, palette), 1);
        EXPECT_EQ(log.Seen, (std::vector<int32_t>{0, 100})) << "the fourth colour ends it in the first row";
        EXPECT_EQ(count, 4u);
    }
    {
        constexpr uint32_t side = 4096; // all colours of 24 bits, and then black
        Bitmap all;
        ASSERT_EQ(Z_CreateBitmap(&all, MemoryConventional, side, side + 100, 24, 1, nullptr, 2, nullptr, 0),
                  1);
        std::vector<uint8_t> row(all.BytesPerLine);
        for (uint32_t colour = 0; colour < side * side; ++colour) {
            std::memcpy(&row[colour % side * 3], &colour, 3);
            if (colour % side == side - 1)
                Z_PutBitmapRow(&all, row.data(), int32_t(colour / side), all.BytesPerLine);
        }
        StatusLog log;
        EXPECT_EQ(Z_GetBitmapColorCountExt(&all, &count, nullptr), 1);
        EXPECT_EQ(count, 1u << 24);
        EXPECT_EQ(log.Seen[log.Seen.size() - 2], int32_t((side - 1) * 100 / (side + 100)))
            << "one hundred rows unread";
    }
    for (size_t stop = 1; stop <= 5; ++stop) {
        StatusLog log(stop, 0);
        count = 77;
        EXPECT_EQ(Z_GetBitmapColorCountExt(&picture, &count, nullptr), 0);
        EXPECT_EQ(count, 77u);
        EXPECT_EQ(log.Seen.size(), stop);
    }
    Bitmap empty;
    EXPECT_EQ(Z_GetBitmapColorCountExt(nullptr, &count, nullptr), code::InvalidBitmap);
    EXPECT_EQ(Z_GetBitmapColorCountExt(&empty, &count, nullptr), code::InvalidBitmap);
    EXPECT_EQ(Z_GetBitmapColorCountExt(&picture, nullptr, nullptr), code::InvalidArgument);
}

} // namespace
} // namespace zkr::test
