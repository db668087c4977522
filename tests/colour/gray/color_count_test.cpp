// Counts of distinct colours against sets of the colours that pixels stand for, kept in the order in which
// they appear.
#include "colour/pictures.h"

#include "core/dispatch.h"
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

// What tells a pixel apart, and its colour in a palette: 0xRRGGBB.
std::pair<uint64_t, uint32_t> Meaning(ColourPicture& picture, PixelForm form, const RGBQUAD* palette,
                                      bool wanted, int32_t y, int32_t x) {
    const uint64_t pixel = picture.Pixel(y, x);
    const auto entry = [](const RGBQUAD& e) {
        return uint32_t(e.rgbRed) << 16 | e.rgbGreen << 8 | e.rgbBlue;
    };
    if (form.Bits <= 8) return {entry(palette[pixel]), entry(palette[pixel])};
    if (form.IsGrayWord()) {
        const bool table = (picture.Flags & flag::LevelLUTActive) && picture.LevelLUTLength > 0;
        int32_t bits = std::min(picture.HighBit - picture.LowBit + 1, wanted && !table ? 8 : form.Bits);
        const uint64_t value = pixel >> (picture.HighBit - bits + 1) & ((1u << bits) - 1);
        const uint32_t colour = !table                           ? uint32_t(value) * 0x010101
                                : value < picture.LevelLUTLength ? entry(picture.LevelLUT[value])
                                                                 : 0;
        return {table ? colour : value, colour};
    }
    if (form.Bits == 16) {
        const auto widen = [&](int shift) {
            const uint32_t c = pixel >> shift & 31;
            return c << 3 | c >> 2;
        };
        const bool rgb = form.Order == Z_ORDER_RGB;
        return {pixel & 0x7FFF, widen(rgb ? 0 : 10) << 16 | widen(5) << 8 | widen(rgb ? 10 : 0)};
    }
    const int step = form.Bits >= 48 ? 16 : 8, up = step - 8;
    const uint32_t c[3] = {uint32_t(pixel >> up & 255), uint32_t(pixel >> (step + up) & 255),
                           uint32_t(pixel >> (2 * step + up) & 255)};
    const uint32_t colour =
        form.Order == Z_ORDER_RGB ? c[0] << 16 | c[1] << 8 | c[2] : c[2] << 16 | c[1] << 8 | c[0];
    return {colour, colour};
}

void ExpectCounts(ColourPicture& picture, PixelForm form, const Segments& segments) {
    RGBQUAD own[256] = {};
    Z_GetBitmapPaletteEntries(&picture, 0, 256, own);
    for (const int32_t room : {-1, 0, 1, 3, 16, 256, 5000}) {
        std::set<uint64_t> keys;
        std::vector<uint32_t> colours;
        for (const Segment& s : segments)
            for (int32_t x = s.Begin; x < s.End; ++x)
                if (const auto [key, colour] = Meaning(picture, form, own, room >= 0, s.Row, x);
                    keys.insert(key).second)
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
    for (const PixelForm form : AllForms) {
        for (const int values : {1, 2, 17, 255, 4000}) {
            ColourPicture picture(form, 61, 29, uint64_t(values), values);
            ExpectCounts(picture, form, Whole(picture));
        }
    }
}

TEST(ColourCount, GoesThroughWindowsAndTables) {
    for (const PixelForm form : {PixelForm{12, 2}, PixelForm{16, 2}}) {
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

// Rows 2 to 5, with segments that begin and end inside bytes; row 4 is empty.
TEST(ColourCount, StaysInsideTheRegion) {
    static const Segments segments = {{2, 3, 9}, {2, 17, 18}, {3, 0, 40}, {5, 39, 40}};
    const DispatchTable before = dispatch;
    dispatch.GetBitmapRgnBounds = [](BitmapHandle*, const RegionXform*, RECT* bounds) {
        *bounds = {0, 2, 40, 6};
        return ReturnCode{1};
    };
    dispatch.GetBitmapClipSegmentsMax = [](BitmapHandle*, uint32_t* entries) {
        *entries = 4;
        return ReturnCode{1};
    };
    dispatch.GetBitmapClipSegments = [](BitmapHandle*, int32_t row, uint32_t* columns, uint32_t* entries) {
        *entries = 0;
        for (const Segment& s : segments)
            if (s.Row == row) {
                columns[(*entries)++] = uint32_t(s.Begin);
                columns[(*entries)++] = uint32_t(s.End);
            }
        return ReturnCode{1};
    };
    for (const PixelForm form : AllForms) {
        ColourPicture picture(form, 40, 9, 3);
        picture.Region = &picture;
        ExpectCounts(picture, form, segments);
        StatusLog log;
        uint32_t count = 0;
        EXPECT_EQ(Z_GetBitmapColorCountExt(&picture, &count, nullptr), 1);
        if (form.Bits == 24) {
            EXPECT_EQ(log.Seen, (std::vector<int32_t>{0, 25, 50, 75, 100}));
        }
        dispatch.GetBitmapRgnBounds = [](BitmapHandle*, const RegionXform*, RECT*) {
            return ReturnCode{-77};
        };
        EXPECT_EQ(Z_GetBitmapColorCountExt(&picture, &count, nullptr), -77);
        dispatch.GetBitmapRgnBounds = [](BitmapHandle*, const RegionXform*, RECT* bounds) {
            *bounds = {0, 2, 40, 6};
            return ReturnCode{1};
        };
        picture.Region = nullptr;
    }
    dispatch = before;
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
