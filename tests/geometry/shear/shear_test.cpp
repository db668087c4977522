// Shear against a plain model that turns, mirrors and slides a picture pixel by pixel, through every storage class.
#include "zkr13n/shear.h"

#include "core/reports.h"
#include "geometry/picture.h"
#include "geometry/slots.h"
#include "zkr13n/copy.h"
#include "zkr13n/palettes.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_shapes.h"

#include <cmath>

namespace zkr::test {
namespace {

int64_t Sine(int32_t angle) {
    return std::lround(std::sin(angle * 3.14159265358979323846 / 18000) * 16384);
}

Picture Slid(const Picture& picture, int32_t angle, bool startsAtFirst, uint64_t fill) {
    const int64_t sine = Sine(angle), cosine = Sine(9000 - angle);
    const int width = picture.Width + static_cast<int>(sine * picture.Height / cosine);
    Picture result = Picture::Made(width, picture.Height, [&](int, int) { return fill; });
    int64_t offset = 0, error = 0;
    for (int i = 0; i < picture.Height; ++i) {
        const int y = startsAtFirst ? i : picture.Height - 1 - i;
        for (int x = 0; x < picture.Width; ++x)
            result.Pixels[static_cast<size_t>(y * width + x + static_cast<int>(offset))] = picture.At(x, y);
        offset += sine / cosine;
        error += sine % cosine;
        if (error > cosine) error -= cosine, ++offset;
    }
    return result;
}

Picture Expected(const Picture& before, int32_t view, int32_t angle, bool horizontal, uint64_t fill) {
    const bool turns = horizontal == (view >= 4);
    const bool isMirrored = view == 1 || view == 2 || view == 5 || view == 7;
    const bool startsAtFirst = view == 2 || view == 3 || view == 5 || view == 7;
    Picture picture = turns ? before.Turned(isMirrored ? 3 : 1) : before;
    // Left and right of the picture change places, which are rows of storage in some views.
    const auto mirrored = [view](const Picture& p) { return view >= 4 ? p.Flipped() : p.Reversed(); };
    if (angle < 0) picture = mirrored(picture);
    picture = Slid(picture, std::abs(angle), startsAtFirst, fill);
    if (angle < 0) picture = mirrored(picture);
    return turns ? picture.Turned(isMirrored ? 1 : 3) : picture;
}

TEST(Shear, SlidesEveryDepthAndStorageInEveryView) {
    int seed = 0;
    for (const int32_t bits : AllDepths) {
        for (const Storage& storage : GeometryStorages(bits)) {
            for (const int32_t view : AllViews) {
                const int32_t angle = std::array{
                    0, 813, -813, 2999, -4500, 5631, 8700, -3369, 1}[static_cast<size_t>(++seed % 9)];
                Bytes data;
                Bitmap bitmap(23 + seed % 7, 9 + seed % 5, bits);
                bitmap.ViewPerspective = view;
                Allocate(bitmap, storage, data);
                if (bits <= 8) Z_CreateBitmapFixedPalette(&bitmap);
                Fill(bitmap, static_cast<uint32_t>(seed));
                const uint32_t flags = bitmap.Flags;
                const uint32_t index = bits == 1 ? 1 : 0;
                const Picture expected = Expected(Picture::Of(bitmap), view, angle, seed % 2 == 0, index);
                ASSERT_EQ(Z_ShearBitmap(&bitmap, angle, seed % 2 == 0, bits <= 8 ? 0x01000000 | index : 0),
                          1);
                ASSERT_EQ(Picture::Of(bitmap), expected)
                    << bits << " bits, " << storage.Name << ", view " << view << ", angle " << angle
                    << ", rows " << (seed % 2 == 0);
                EXPECT_EQ(bitmap.Flags & flag::Compressed, flags & flag::Compressed);
                EXPECT_EQ(bitmap.ViewPerspective, view);
            }
        }
    }
}

TEST(Shear, RefusesAnglesAndLongRowsBeforeItTouchesAnything) {
    Bitmap bitmap(300, 200, 24), empty, column(1, 12, 64), row(12, 1, 64);
    for (Bitmap* each : {&bitmap, &column, &row})
        Z_AllocateBitmap(each, MemoryConventional);
    const NotedSlots slots;
    Reports reports(Z_SetStatusCallBack);
    EXPECT_EQ(Z_ShearBitmap(nullptr, 9000, 1, 0), -2);
    EXPECT_EQ(Z_ShearBitmap(&empty, 10, 1, 0), -2);
    for (const int32_t angle : {9000, -9000, INT32_MAX, INT32_MIN, 8999, -8999})
        EXPECT_EQ(Z_ShearBitmap(&bitmap, angle, 1, 0), -13) << angle;
    // Of 64 bits a row holds 4096 pixels: 1 and 4095 for a tangent of 16384 / 3 are too many by far, 12 rows of 8990 are not.
    EXPECT_EQ(Z_ShearBitmap(&column, 8999, 1, 0), -13);
    EXPECT_EQ(Z_ShearBitmap(&row, 8999, 0, 0), -13);
    EXPECT_EQ(reports.Seen, std::vector<int32_t>());
    EXPECT_EQ(NotedSlots::Calls, "");
    EXPECT_EQ(Z_ShearBitmap(&row, 8999, 1, 0), -13);
    EXPECT_EQ(Z_ShearBitmap(&column, 8900, 1, 0), 1);
}

// The first report of each way, the last, and that the bitmap stays as it was wherever the work is stopped.
TEST(Shear, ReportsItsPartsAndStopsAtEach) {
    struct Way {
        int32_t angle, horizontal, first, last;
    };
    for (const Way& way :
         {Way{2000, 1, 0, 100}, Way{-2000, 1, 5, 95}, Way{2000, 0, 0, 100}, Way{-2000, 0, 0, 100}}) {
        for (const Storage& storage : GeometryStorages(1)) {
            Bytes data;
            Bitmap bitmap(31, 17, 1);
            Allocate(bitmap, storage, data);
            Z_CreateBitmapFixedPalette(&bitmap);
            Fill(bitmap, 3);
            RECT square = {2, 3, 9, 8};
            ASSERT_EQ(Z_SetBitmapRgnRect(&bitmap, nullptr, &square, Z_RGN_SET), 1);
            const Picture before = Picture::Of(bitmap);
            const BitmapHandle record = bitmap;
            size_t count = 1;
            for (size_t stop = 0; stop < count; ++stop) {
                Reports reports(Z_SetStatusCallBack, stop);
                ASSERT_EQ(Z_ShearBitmap(&bitmap, way.angle, way.horizontal, 0), Reports::Stopped);
                ASSERT_EQ(Picture::Of(bitmap), before);
                ASSERT_EQ(bitmap.Region, record.Region);
                ASSERT_EQ(bitmap.Flags, record.Flags);
                if (stop != 0) continue;
                Bitmap copy;
                ASSERT_EQ(Z_CopyBitmap(&copy, &bitmap), 1);
                Reports all(Z_SetStatusCallBack);
                ASSERT_EQ(Z_ShearBitmap(&copy, way.angle, way.horizontal, 0), 1);
                EXPECT_EQ(all.Seen.front(), way.first);
                EXPECT_EQ(all.Seen.back(), way.last);
                EXPECT_TRUE(std::is_sorted(all.Seen.begin(), all.Seen.end()));
                count = all.Seen.size();
            }
            EXPECT_GT(count, 10u);
        }
    }
}

// A region that holds the ink of a bitmap holds the ink of the sheared one where rows of storage slide: in these views
// both are told to move alike.
TEST(Shear, TakesTheRegionAlong) {
    for (const int32_t view : {0, 2, 4, 5, 7, 8}) {
        for (const int32_t angle : {1500, -1500}) {
            Bitmap bitmap(40, 30, 1), mask;
            bitmap.ViewPerspective = view;
            Z_AllocateBitmap(&bitmap, MemoryConventional);
            Z_CreateBitmapFixedPalette(&bitmap);
            Fill(bitmap, 4);
            ASSERT_EQ(Z_SetBitmapRgnFromMask(&bitmap, nullptr, &bitmap, Z_RGN_SET), 1);
            ASSERT_EQ(Z_ShearBitmap(&bitmap, angle, view < 4, 0), 1);
            ASSERT_EQ(Z_CreateMaskFromBitmapRgn(&bitmap, &mask), 1);
            EXPECT_EQ(Picture::Of(mask), Picture::Of(bitmap)) << view << ' ' << angle;
        }
    }
}

} // namespace
} // namespace zkr::test
