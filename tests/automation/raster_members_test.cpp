// What the members of the raster object do with units, pixels, regions, levels and the platform, against plain models.
#include "automation/raster_host.h"
#include "display/dib/dib_model.h"
#include "platform/graphics.h"
#include "zkr13n/clipboard.h"
#include "zkr13n/dib.h"
#include "zkr13n/locks.h"
#include "zkr13n/region_shapes.h"

#include <limits>
#include <random>

namespace zkr::test {
namespace {

using automation::Axis;
using automation::Scale;

TEST_F(RasterTest, UnitsAreOfAllKinds) {
    HDC screen = platform::GetDC(nullptr);
    const double dpi = platform::GetDeviceCaps(screen, LOGPIXELSX);
    platform::ReleaseDC(nullptr, screen);
    const struct {
        int32_t Mode;
        double AcrossInch, DownInch; // units to the inch
    } kinds[] = {{1, 1440, 1440}, {2, 72, 72},     {4, 12, 6},   {5, 1, 1},
                 {6, 25.4, 25.4}, {7, 2.54, 2.54}, {3, dpi, dpi}};
    for (const auto& kind : kinds) {
        Scale scale;
        scale.Mode = kind.Mode;
        for (const int pixels : {0, 1, 7, 96, 1000, -55}) {
            const float x = automation::LengthInUnits(scale, Axis::X, pixels, nullptr);
            const float y = automation::PositionInUnits(scale, Axis::Y, pixels, nullptr);
            EXPECT_NEAR(x, pixels / dpi * kind.AcrossInch, 1e-3);
            EXPECT_NEAR(y, pixels / dpi * kind.DownInch, 1e-3);
            EXPECT_NEAR(automation::PositionInPixels(scale, Axis::X, x, nullptr), pixels, 1e-3);
            EXPECT_NEAR(automation::LengthInPixels(scale, Axis::Y, y, nullptr), pixels, 1e-3);
        }
    }
    Scale user{SCALEMODE_USER, 10, -5, 4, 8, 200, 100};
    EXPECT_EQ(automation::PositionInPixels(user, Axis::X, 12, nullptr), 100);
    EXPECT_EQ(automation::PositionInPixels(user, Axis::Y, -1, nullptr), 50);
    EXPECT_EQ(automation::LengthInPixels(user, Axis::X, 0.001, nullptr), 1); // up
    EXPECT_EQ(automation::PositionInUnits(user, Axis::X, 100, nullptr), 12);
    EXPECT_EQ(automation::LengthInUnits(user, Axis::Y, 25, nullptr), 2);
    user.ClientX = 0, user.Height = 0;
    EXPECT_EQ(automation::LengthInUnits(user, Axis::X, 100, nullptr), 0);
    EXPECT_EQ(automation::PositionInPixels(user, Axis::X, 12, nullptr), 0);
    EXPECT_EQ(automation::LengthInPixels(user, Axis::Y, 12, nullptr), 0);
}

TEST_F(RasterTest, ScaleMembersSetTheUsersSystem) {
    Raster raster(40, 20, 8);
    EXPECT_EQ(raster.object.PutScaleMode(8), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.object.PutScaleMode(-1), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.Get(&RasterObject::GetScaleMode), 3);
    for (auto put : {&RasterObject::PutScaleLeft, &RasterObject::PutScaleTop, &RasterObject::PutScaleHeight,
                     &RasterObject::PutScaleWidth}) {
        EXPECT_EQ(raster.object.PutScaleMode(3), 0);
        EXPECT_EQ((raster.object.*put)(2), 0);
        EXPECT_EQ(raster.Get(&RasterObject::GetScaleMode), 0);
    }
    EXPECT_EQ(raster.Width(), 0.8f); // 40 of 100 pixels are of 2 units
    EXPECT_EQ(raster.object.PutClientX(0), 0);
    EXPECT_EQ(raster.Width(), 0);
    // A number that is too large is cut, reported, and the member goes on.
    EXPECT_EQ(raster.object.PutScaleMode(3), 0);
    EXPECT_EQ(raster.Pixel(1e20f, 0), Z_NO_COLOR);
    EXPECT_EQ(raster.object.LastText(), "Overflow in converting float to long/int");
    EXPECT_EQ(raster.object.PutBitmapLeft(-1e20f), 0);
    EXPECT_EQ(raster.Record().PlaybackLeft, INT32_MIN);
    EXPECT_EQ(raster.object.PutBitmapLeft(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(raster.Record().PlaybackLeft, 0);
}

TEST_F(RasterTest, PixelsAreSeenFromTheUpperLeft) {
    Raster raster(5, 4, 24);
    EXPECT_EQ(raster.object.PutPixel(1.9f, 0, 0x332211), 0);
    EXPECT_EQ(Z_GetPixelColor(&raster.Record(), 3, 1), 0x332211u); // the lowest row is stored first
    EXPECT_EQ(raster.Pixel(-0.5f, 9), Z_NO_COLOR);
    EXPECT_EQ(raster.object.PutPixel(5, 0, 0), Failure(Z_ERROR_DIMENSIONS));
    EXPECT_EQ(raster.object.PutPixel(0, 0, 0x7F000000), 0); // bit 26: no colour to be translated
    EXPECT_EQ(raster.object.PutPixel(0, 0, 0x70000000), Failure(Z_ERROR_ARGUMENT));
    Array data;
    EXPECT_EQ(raster.object.GetPixelData(5, 0, &data), Failure(Z_ERROR_ARGUMENT));
    for (const int bits : {1, 3, 5, 7, 8, 12, 16, 24, 48, 64}) {
        Raster deep(9, 2, static_cast<int16_t>(bits));
        for (int32_t x = 0; x < 9; ++x) {
            const int first = x * bits / 8, last = (x * bits + bits - 1) / 8;
            EXPECT_EQ(deep.object.GetPixelData(float(x), 0, &data), 0);
            EXPECT_EQ(data.Count, last - first + 1) << bits << " bits, column " << x;
            std::vector<uint8_t> put(static_cast<size_t>(data.Count), 0xA5);
            Array given{Array::Kind::SignedBytes, data.Count - 1, put.data(), false};
            EXPECT_EQ(deep.object.PutPixelData(float(x), 0, given), Failure(Z_ERROR_ARGUMENT));
            ++given.Count;
            EXPECT_EQ(deep.object.PutPixelData(float(x), 0, given), 0);
            EXPECT_EQ(deep.object.GetPixelData(float(x), 0, &data), 0);
            EXPECT_EQ(std::memcmp(data.Data, put.data(), put.size()), 0);
        }
    }
}

// The pixels of the region as the viewer sees them.
std::vector<bool> Seen(Raster& raster, int width, int height) {
    std::vector<bool> inside;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int16_t in = 0;
            EXPECT_EQ(raster.object.IsPtInRgn(float(x), float(y), &in), 0);
            inside.push_back(in != 0);
        }
    return inside;
}

TEST_F(RasterTest, RegionsAreThoseThatTheViewerSees) {
    constexpr int width = 9, height = 6;
    Raster raster(width, height, 8);
    const auto expect = [&](auto&& holds) {
        const std::vector<bool> seen = Seen(raster, width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                EXPECT_EQ(seen[size_t(y * width + x)], holds(x, y)) << x << ' ' << y;
    };
    EXPECT_EQ(raster.object.SetRgnRect(1.5f, 1, 3.2f, 2, Z_RGN_SET, nullptr), 0); // to 4.7, that is 5
    expect([](int x, int y) { return x >= 1 && x < 5 && y >= 1 && y < 3; });
    EXPECT_EQ(raster.Get(&RasterObject::GetRgnLeft), 1);
    EXPECT_EQ(raster.Get(&RasterObject::GetRgnTop), 1);
    EXPECT_EQ(raster.Get(&RasterObject::GetRgnWidth), 4);
    EXPECT_EQ(raster.Get(&RasterObject::GetRgnHeight), 2);
    EXPECT_EQ(raster.object.OffsetRgn(1, 2, nullptr), 0); // down
    expect([](int x, int y) { return x >= 2 && x < 6 && y >= 3 && y < 5; });
    EXPECT_EQ(raster.object.SetRgnRect(4, 3, -2, -2, Z_RGN_SET, nullptr), 0); // sides exchanged
    expect([](int x, int y) { return x >= 2 && x < 4 && y >= 1 && y < 3; });
    Array segments;
    EXPECT_EQ(raster.object.GetBitmapClipSegments(2, &segments), 0);
    ASSERT_EQ(segments.Count, 2);
    EXPECT_EQ(static_cast<float*>(segments.Data)[0], 2);
    EXPECT_EQ(static_cast<float*>(segments.Data)[1], 4);
    EXPECT_EQ(raster.object.GetBitmapClipSegments(4, &segments), 0);
    EXPECT_EQ(segments.Count, 0);
    EXPECT_EQ(segments.Elements, Array::Kind::Floats);
    // A region of the platform, and back.
    intptr_t handle = raster.Get(&RasterObject::GetRgnHandle);
    RECT box;
    EXPECT_NE(platform::GetRgnBox(reinterpret_cast<HRGN>(handle), &box), ERROR);
    EXPECT_EQ(box.top, 1);
    EXPECT_EQ(raster.object.FreeRgn(nullptr), 0);
    EXPECT_EQ(raster.Get(&RasterObject::GetHasRgn), 0);
    EXPECT_EQ(raster.object.SetRgnHandle(handle, Z_RGN_SETNOT, nullptr), 0);
    expect([](int x, int y) { return !(x >= 2 && x < 4 && y >= 1 && y < 3); });
    EXPECT_EQ(raster.object.DeleteRgnHandle(handle, nullptr), 0);
    EXPECT_EQ(raster.object.DeleteRgnHandle(handle, nullptr), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.object.SetRgnHandle(0, Z_RGN_SET, nullptr), 0);
    EXPECT_EQ(raster.Get(&RasterObject::GetRgnArea), width * height);
    // A wand on a mark in the upper left corner.
    EXPECT_EQ(raster.object.PutPixel(0, 0, 0xFFFFFF), 0);
    EXPECT_EQ(raster.object.PutPixel(1, 0, 0xFFFFFF), 0);
    EXPECT_EQ(raster.object.SetRgnMagicWand(0, 0, 3, Z_RGN_SET, nullptr), 0);
    expect([](int x, int y) { return x < 2 && y == 0; });
    // A polygon whose edges run along rows and columns.
    EXPECT_EQ(raster.object.PutPolygonSize(-1), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.object.PutPolygonSize(4), 0);
    EXPECT_EQ(raster.object.PutPolygonX(4, 0), Failure(Z_ERROR_ARGUMENT));
    const float corners[4][2] = {{1, 1}, {7, 1}, {7, 4}, {1, 4}};
    for (int corner = 0; corner < 4; ++corner) {
        EXPECT_EQ(raster.object.PutPolygonX(corner, corners[corner][0]), 0);
        EXPECT_EQ(raster.object.PutPolygonY(corner, corners[corner][1]), 0);
    }
    EXPECT_EQ(raster.object.SetRgnPolygon(Z_POLY_ALTERNATE, Z_RGN_SET, nullptr), 0);
    expect([](int x, int y) { return x >= 1 && x < 7 && y >= 1 && y < 4; });
    // Points that fit are kept, new ones are 0.
    EXPECT_EQ(raster.object.PutPolygonSize(2), 0);
    EXPECT_EQ(raster.object.PutPolygonSize(3), 0);
    for (int corner = 0; corner < 3; ++corner) {
        float x = 9;
        EXPECT_EQ(raster.object.GetPolygonX(corner, &x), 0);
        EXPECT_EQ(x, corner < 2 ? corners[corner][0] : 0);
    }
}

TEST_F(RasterTest, RegionsGrowAndShrinkBySquares) {
    constexpr int width = 23, height = 17;
    std::mt19937 random(5);
    for (int round = 0; round < 12; ++round) {
        Raster raster(width, height, 1);
        if (round != 0) {
            for (int part = 0; part < 4; ++part)
                EXPECT_EQ(raster.object.SetRgnRect(float(random() % width), float(random() % height),
                                                   float(1 + random() % 9), float(1 + random() % 9),
                                                   part == 0 ? Z_RGN_SET : Z_RGN_OR, nullptr),
                          0);
        }
        const std::vector<bool> before = Seen(raster, width, height);
        const int size = int(random() % 4), mode = 1 + round % 2;
        EXPECT_EQ(raster.object.ResizeRgn(mode, float(size), nullptr), 0);
        const std::vector<bool> after = Seen(raster, width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                bool any = false, all = true;
                for (int row = y - size; row <= y + size; ++row)
                    for (int column = x - size; column <= x + size; ++column) {
                        const bool in = row >= 0 && row < height && column >= 0 && column < width &&
                                        before[size_t(row * width + column)];
                        any = any || in;
                        all = all && in;
                    }
                EXPECT_EQ(after[size_t(y * width + x)], mode == RGN_EXPAND ? any : all)
                    << round << ' ' << x << ' ' << y;
            }
    }
    Raster raster(4, 4, 8);
    EXPECT_EQ(raster.object.ResizeRgn(3, 1, nullptr), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.object.ResizeRgn(1, -1, nullptr), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.object.ResizeRgn(2, 1e9f, nullptr), 0);
    EXPECT_EQ(raster.Get(&RasterObject::GetRgnArea), 0);
}

TEST_F(RasterTest, CurvesBecomeBezier) {
    Raster raster;
    EXPECT_EQ(raster.object.PutCurveType(CURVE_STANDAR), 0);
    EXPECT_EQ(raster.object.PutCurveSize(3), 0);
    EXPECT_EQ(raster.object.CurveToBezier(nullptr), Failure(Z_ERROR_ARGUMENT)); // open ones have four points
    EXPECT_EQ(raster.object.PutCurveSize(5), 0);
    for (int point = 0; point < 5; ++point)
        EXPECT_EQ(raster.object.PutCurveX(point, float(10 * point)), 0);
    EXPECT_EQ(raster.object.PutCurveTension(0.5), 0);
    EXPECT_EQ(raster.object.CurveToBezier(nullptr), 0);
    EXPECT_EQ(raster.Get(&RasterObject::GetBezierSize), 3 * 5 - 8);
    float x = 0;
    EXPECT_EQ(raster.object.GetBezierX(1, &x), 0);
    EXPECT_EQ(x, 13); // 10 + 0.5 / 3 * (20 - 0), cut
    EXPECT_EQ(raster.object.GetBezierX(7, &x), Failure(Z_ERROR_ARGUMENT));
}

TEST_F(RasterTest, LevelTablesAreMadeWhenTheyAreWrittenTo) {
    Raster raster(4, 4, 12);
    uint32_t colour = 1;
    EXPECT_EQ(raster.object.GetLevelLUT(0, &colour), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.object.WindowLevelFillLUT(0, 0, 0, 9, 0, 11, 0, 9, 0, nullptr),
              Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.object.PutLevelLowBit(2), 0);
    EXPECT_EQ(raster.object.PutLevelHighBit(9), 0);
    EXPECT_EQ(raster.object.PutLevelLUT(256, 0), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.Get(&RasterObject::GetLevelLUTLength), 0);
    raster.Changes();
    EXPECT_EQ(raster.object.PutLevelLUT(255, 0x302010), 0);
    EXPECT_EQ(raster.Changes(), std::vector<int>{4});
    EXPECT_EQ(raster.Get(&RasterObject::GetLevelLUTLength), 256);
    EXPECT_NE(raster.Record().Flags & Z_FLAG_LEVEL_LUT_ACTIVE, 0u);
    EXPECT_EQ(raster.object.GetLevelLUT(255, &colour), 0);
    EXPECT_EQ(colour, 0x302010u);
    EXPECT_EQ(raster.object.WindowLevelFillLUT(0, 0xFFFFFF, 0, 1023, 2, 9, 0, 1023, 1, nullptr), 0);
    EXPECT_EQ(raster.object.GetLevelLUT(128, &colour), 0);
    EXPECT_EQ(colour & 0xFF, colour >> 16);
    Z_SetSupportLocks(1u << Z_SUPPORT_DOCUMENT);
    EXPECT_EQ(raster.object.GetLevelLUT(0, &colour), Failure(Z_ERROR_DOCUMENT_LOCKED));
    EXPECT_EQ(raster.object.PutLevelHighBit(3), Failure(Z_ERROR_DOCUMENT_LOCKED));
    EXPECT_EQ(raster.object.UnlockSupport(Z_SUPPORT_DOCUMENT, "", nullptr), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(raster.object.UnlockSupport(Z_SUPPORT_DOCUMENT, "key", nullptr), 0);
    EXPECT_EQ(raster.object.GetLevelLUT(0, &colour), 0);
}

TEST_F(RasterTest, RangesAreFound) {
    Raster gray(5, 2, 12), blue(5, 2, 24), indexed(5, 2, 4);
    gray.Record().LowBit = 2, gray.Record().HighBit = 9;
    EXPECT_EQ(gray.object.PutInList(nullptr), 0);
    uint8_t bytes[2];
    const auto put = [&](float x, int value) { // of 12 bits, at an even column
        bytes[0] = uint8_t(value), bytes[1] = uint8_t(value >> 8);
        EXPECT_EQ(gray.object.PutPixelData(x, 0, Array{Array::Kind::Bytes, 2, bytes, false}), 0);
    };
    put(2, 0x7F4), put(4, 0x034);
    EXPECT_EQ(gray.object.GetMinMaxVal(nullptr), 0);
    EXPECT_EQ(gray.Get(&RasterObject::GetMinVal), 0);
    EXPECT_EQ(gray.Get(&RasterObject::GetMaxVal), 0xFD);
    put(2, 0);
    EXPECT_EQ(gray.object.GetMinMaxVal(nullptr), 0); // kept in the record
    EXPECT_EQ(gray.Get(&RasterObject::GetMaxVal), 0xFD);
    EXPECT_EQ(gray.object.GetMinMaxBits(nullptr), 0);
    EXPECT_EQ(gray.Get(&RasterObject::GetMinBit), 2);
    EXPECT_EQ(gray.Get(&RasterObject::GetMaxBit), 5);
    EXPECT_EQ(blue.object.PutPixel(4, 1, 0xFF0000), 0);
    EXPECT_EQ(blue.object.GetMinMaxVal(nullptr), 0);
    EXPECT_EQ(blue.Get(&RasterObject::GetMaxVal), (255 + 4) >> 3);
    EXPECT_EQ(blue.object.GetMinMaxBits(nullptr), Failure(Z_ERROR_BITS_PER_PIXEL));
    EXPECT_EQ(indexed.object.PutBitmapPalette(9, 0x00C8), 0); // red 200
    EXPECT_EQ(indexed.object.PutPixel(3, 0, 0x01000009), 0);
    EXPECT_EQ(indexed.object.GetMinMaxVal(nullptr), 0);
    EXPECT_EQ(indexed.Get(&RasterObject::GetMaxVal), (2 * 200 + 4) >> 3);
}

// Bytes of a pixel, lowest first, as a number.
uint64_t Stored(Raster& raster, int x, int y) {
    Array data;
    EXPECT_EQ(raster.object.GetPixelData(float(x), float(y), &data), 0);
    uint64_t pixel = 0;
    std::memcpy(&pixel, data.Data, static_cast<size_t>(data.Count));
    return pixel;
}

TEST_F(RasterTest, RangesAreOfGrayAtEveryDepth) {
    std::mt19937 random(11);
    for (const int bits : {1, 2, 3, 4, 5, 6, 7, 8, 16, 24, 32, 48, 64})
        for (int round = 0; round < 4; ++round) {
            Raster raster(3, 2, static_cast<int16_t>(bits));
            const auto gray = [](uint64_t red, uint64_t green, uint64_t blue) {
                return static_cast<int64_t>((2 * red + 5 * green + blue + 4) >> 3);
            };
            int64_t least = INT64_MAX, most = -1;
            for (int entry = 0; bits <= 8 && entry < 1 << bits; ++entry)
                EXPECT_EQ(raster.object.PutBitmapPalette(int16_t(entry), uint32_t(random() & 0xFFFFFF)), 0);
            for (int place = 0; place < 6; ++place) {
                const int x = place % 3, y = place / 3;
                int64_t value;
                if (bits <= 8) {
                    const auto entry = static_cast<uint32_t>(random() % (1u << bits));
                    uint32_t colour = 0;
                    EXPECT_EQ(raster.object.PutPixel(float(x), float(y), 0x01000000 + entry), 0);
                    EXPECT_EQ(raster.object.GetBitmapPalette(int16_t(entry), &colour), 0);
                    value = gray(colour & 0xFF, colour >> 8 & 0xFF, colour >> 16);
                } else {
                    uint8_t bytes[8];
                    for (uint8_t& byte : bytes)
                        byte = uint8_t(random());
                    EXPECT_EQ(raster.object.PutPixelData(float(x), float(y),
                                                         {Array::Kind::Bytes, bits / 8, bytes, false}),
                              0);
                    const uint64_t pixel = Stored(raster, x, y);
                    const auto wide = [&](int shift) { // 5 bits as 8
                        const uint64_t channel = pixel >> shift & 31;
                        return channel << 3 | channel >> 2;
                    };
                    value = bits == 16  ? gray(wide(10), wide(5), wide(0))
                            : bits < 48 ? gray(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF)
                                        : gray(pixel >> 32 & 0xFFFF, pixel >> 16 & 0xFFFF, pixel & 0xFFFF);
                }
                least = std::min(least, value), most = std::max(most, value);
            }
            EXPECT_EQ(raster.object.GetMinMaxVal(nullptr), 0);
            EXPECT_EQ(raster.Get(&RasterObject::GetMinVal), least) << bits << " bits";
            EXPECT_EQ(raster.Get(&RasterObject::GetMaxVal), most) << bits << " bits";
        }
    // Of a window with a sign, and of the whole pixel without.
    for (const bool isSigned : {false, true}) {
        Raster raster(2, 1, 12);
        BitmapHandle& record = raster.Record();
        record.LowBit = 4, record.HighBit = 9;
        record.Flags |= isSigned ? uint32_t{Z_FLAG_SIGNED} : 0;
        uint8_t bytes[2] = {0xA0, 0x02}; // 101010 in the window
        EXPECT_EQ(raster.object.PutPixelData(0, 0, {Array::Kind::Bytes, 2, bytes, false}), 0);
        EXPECT_EQ(raster.object.GetMinMaxVal(nullptr), 0);
        EXPECT_EQ(raster.Get(&RasterObject::GetMinVal), isSigned ? 42 - 64 : 0);
        EXPECT_EQ(raster.Get(&RasterObject::GetMaxVal), isSigned ? 0 : 42);
    }
}

TEST_F(RasterTest, AlphaPassesFromOneToAnother) {
    Raster source(4, 3, 32), target(4, 3, 24);
    uint8_t pixel[4] = {1, 2, 3, 77};
    EXPECT_EQ(source.object.PutPixelData(2, 1, Array{Array::Kind::Bytes, 4, pixel, false}), 0);
    const intptr_t alpha = source.Get(&RasterObject::GetBitmapAlpha);
    EXPECT_NE(alpha, 0);
    target.Changes();
    EXPECT_EQ(target.object.PutBitmapAlpha(alpha), 0);
    EXPECT_EQ(target.Changes(), std::vector<int>{0xF});
    EXPECT_EQ(target.Get(&RasterObject::GetBitmapBits), 32);
    Array back;
    EXPECT_EQ(target.object.GetPixelData(2, 1, &back), 0);
    EXPECT_EQ(static_cast<uint8_t*>(back.Data)[3], 77);
    EXPECT_EQ(target.Items(), std::vector<int>{4});
    // A bitmap's own grays as its alpha, by its own handle.
    Raster self(2, 1, 24);
    EXPECT_EQ(self.object.PutPixel(1, 0, 0x808080), 0);
    EXPECT_EQ(self.object.PutBitmapAlpha(self.Bitmap()), 0);
    EXPECT_EQ(self.object.GetPixelData(1, 0, &back), 0);
    EXPECT_EQ(static_cast<uint8_t*>(back.Data)[3], 0x80);
    EXPECT_EQ(self.object.PutBitmapAlpha(77), Failure(Z_ERROR_BITMAP));
    EXPECT_EQ(self.object.PutBitmapAlpha(Raster().Get(&RasterObject::GetBitmapAlpha)),
              Failure(Z_ERROR_BITMAP));
    EXPECT_EQ(self.Items(), std::vector<int>{2});
}

TEST_F(RasterTest, ContextsHoldOffOtherWork) {
    Raster raster(8, 8, 24);
    const intptr_t context = raster.Get(&RasterObject::GetBitmapDC);
    EXPECT_NE(context, 0);
    EXPECT_EQ(raster.Get(&RasterObject::GetBitmapDC), context);
    EXPECT_EQ(raster.Bitmap(), 0);
    EXPECT_EQ(raster.object.PutBitmap(0), Failure(Z_ERROR_BITMAP));
    EXPECT_EQ(raster.object.CreateBitmap(3, 3, 8, nullptr), Failure(Z_ERROR_BITMAP));
    EXPECT_EQ(raster.object.FreeList(nullptr), Failure(Z_ERROR_BITMAP));
    platform::PatBlt(reinterpret_cast<HDC>(context), 2, 3, 1, 1, WHITENESS);
    platform::GdiFlush();
    for (int release = 0; release < 3; ++release)
        EXPECT_EQ(raster.object.ReleaseBitmapDC(nullptr), 0);
    EXPECT_EQ(raster.Pixel(2, 3), 0xFFFFFFu);
    EXPECT_EQ(raster.Pixel(3, 3), 0u);
    EXPECT_NE(raster.Get(&RasterObject::GetBitmapDC), 0); // deleted with the object
    Raster empty;
    EXPECT_EQ(empty.Get(&RasterObject::GetBitmapDC), 0);
    EXPECT_EQ(empty.status, Failure(Z_ERROR_BITMAP));
}

TEST_F(RasterTest, BlocksAndPlatformBitmapsPass) {
    Raster raster(5, 3, 24), back(2, 2, 8);
    EXPECT_EQ(raster.object.PutPixel(4, 0, 0x0000FF), 0);
    const auto dib = reinterpret_cast<HGLOBAL>(raster.Get(&RasterObject::GetDIB));
    EXPECT_EQ(back.object.SetDIB(0, nullptr), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(back.object.SetDIB(0x1234, nullptr), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(back.Width(), 2); // not accepted, nothing changed
    EXPECT_EQ(back.object.SetDIB(reinterpret_cast<intptr_t>(dib), nullptr), 0);
    EXPECT_EQ(back.Pixel(4, 0), 0x0000FFu);
    EXPECT_EQ(back.Changes(), std::vector<int>{NewBitmap});
    platform::GlobalFree(dib);
    intptr_t made = 0;
    EXPECT_EQ(raster.object.GetDDB(0, &made), 0);
    const auto ddb = reinterpret_cast<HBITMAP>(made);
    EXPECT_EQ(back.object.SetDDB(0, reinterpret_cast<intptr_t>(ddb), 0, nullptr), 0);
    EXPECT_EQ(back.Width(), 5);
    EXPECT_TRUE(platform::DeleteObject(ddb));
}

TEST_F(RasterTest, BlocksAreConverted) {
    Seeded seeded(7);
    const DibForm forms[] = {{12, 9, 4, 8},
                             {40, 9, -4, 24},
                             {124, 9, 4, 4},
                             {40, 9, 4, 16, 3, {0xF800, 0x7E0, 0x1F}},
                             {108, 9, -4, 32, 3, {0xFF, 0xFF00, 0xFF0000}},
                             {40, 9, 4, 8, 1},
                             {40, 16, 4, 12, CodeOf("I420")}};
    for (const DibForm& form : forms)
        for (const int32_t type : {int32_t{MemoryConventional}, int32_t{MemoryDisk}}) {
            const bool isRaw = form.Compression == 0 || form.HasMasks();
            DibBytes dib = form.Make(isRaw ? form.RowBytes() * 4 : 96, seeded);
            for (size_t i = 0; form.Compression == 1 && i < 96; i += 2) // runs, and their end
                dib.Bits[i] = i < 94 ? dib.Bits[i] | 1 : 0, dib.Bits[95] = 1;
            HGLOBAL block = dib.Block(), whole = dib.Block(), part = isRaw ? dib.Block(1) : nullptr;
            Raster raster;
            BitmapHandle expected;
            const auto* header = static_cast<const uint8_t*>(platform::GlobalLock(block));
            Z_SetDefaultMemoryType(type);
            EXPECT_EQ(Z_ConvertFromDIB(&expected, header, header + dib.Head.size()), 1);
            EXPECT_EQ(raster.object.SetDIB(reinterpret_cast<intptr_t>(whole), nullptr), 0)
                << form.Compression;
            Z_SetDefaultMemoryType(MemoryConventional);
            const BitmapHandle& made = raster.Record();
            EXPECT_EQ(made.Flags, expected.Flags);
            EXPECT_EQ(made.Order, expected.Order);
            EXPECT_EQ(made.ViewPerspective, expected.ViewPerspective);
            EXPECT_EQ(made.XResolution, expected.XResolution);
            EXPECT_EQ(made.ColorsUsed, expected.ColorsUsed);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < form.Width; ++x)
                    ASSERT_EQ(Z_GetPixelColor(&raster.Record(), y, x), Z_GetPixelColor(&expected, y, x))
                        << form.HeaderBytes << " bytes, compression " << form.Compression << ", type "
                        << type;
            // The block is as it was; one byte less is too few.
            EXPECT_EQ(std::memcmp(platform::GlobalLock(whole), header, dib.Head.size() + dib.Bits.size()), 0);
            if (isRaw) {
                EXPECT_EQ(raster.object.SetDIB(reinterpret_cast<intptr_t>(part), nullptr),
                          Failure(Z_ERROR_ARGUMENT));
            }
            EXPECT_EQ(raster.Width(), form.Width);
            Z_FreeBitmap(&expected);
            platform::GlobalUnlock(block), platform::GlobalUnlock(whole);
            for (HGLOBAL each : {block, whole, part})
                if (each != nullptr) platform::GlobalFree(each);
        }
}

TEST_F(RasterTest, ClipboardHoldsBitmapAndRegion) {
    {
        Raster raster(6, 4, 8), back;
        EXPECT_EQ(raster.object.PutPixel(2, 1, 0xFFFFFF), 0);
        EXPECT_EQ(raster.object.SetRgnRect(1, 1, 3, 2, Z_RGN_SET, nullptr), 0);
        const ReturnCode argument = Z_ERROR_ARGUMENT;
        EXPECT_EQ(raster.object.Copy(0, 32, nullptr), Failure(argument));
        EXPECT_EQ(raster.object.Copy(0, 0, nullptr), Failure(argument));
        EXPECT_EQ(raster.object.Copy(0, COPY_EMPTY, nullptr), 0);
        EXPECT_EQ(back.object.Paste(0, PASTE_ISREADY, &back.result), Failure(Z_ERROR_GENERAL));
        EXPECT_EQ(back.object.Paste(0, PASTE_DOPASTE, &back.result), Failure(Z_ERROR_CLIPBOARD_EMPTY));
        for (const int form : {COPY_DIB + 0, COPY_DDB | COPY_PALETTE, COPY_DIB | COPY_DDB | COPY_PALETTE}) {
            EXPECT_EQ(raster.object.Copy(0, static_cast<int16_t>(COPY_EMPTY | COPY_RGN | form), nullptr), 0);
            EXPECT_EQ(back.object.Paste(0, PASTE_ISREADY, &back.result), 0);
            EXPECT_EQ(back.object.Paste(0, PASTE_DOPASTE, &back.result), 0);
            EXPECT_EQ(back.Pixel(2, 1), 0xFFFFFFu);
            EXPECT_EQ(back.Get(&RasterObject::GetRgnArea), 6);
            EXPECT_EQ(back.Get(&RasterObject::GetRgnTop), 1);
        }
        EXPECT_EQ(raster.object.Copy(0, COPY_EMPTY, nullptr), 0);
    }
#ifdef _WIN32
    CountAnew();
#endif
}

} // namespace
} // namespace zkr::test
