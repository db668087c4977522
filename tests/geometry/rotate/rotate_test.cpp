// Rotation by any angle, against the model and through every storage class.
#include "zkr13n/rotate.h"

#include "core/reports.h"
#include "core/test_regions.h"
#include "geometry/rotation_model.h"
#include "zkr13n/allocation.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <map>

namespace zkr::test {
namespace {

constexpr int32_t Angles[] = {3000,  -4500, 1,    8999, 9001, 17999, 18001, 26990, 27010,     35980,    9000,
                              27000, 12345, 3150, 70,   8930, 90040, 17950, 4500,  INT32_MIN, INT32_MAX};

struct Depth {
    int32_t Bits, Order;
};
constexpr Depth Depths[] = {{1, 0},  {2, 0},  {3, 0},  {4, 0},  {5, 0},  {6, 0},  {7, 0}, {8, 0},
                            {12, 2}, {16, 1}, {16, 2}, {24, 1}, {32, 1}, {48, 1}, {64, 0}};

// The pixel that a fill of pure red, or of a gray value, becomes.
uint64_t RedPixel(const Depth& depth, uint32_t fill) {
    const uint64_t red = fill & 0xFF;
    switch (depth.Bits) {
    case 12: return (2 * red + 4) / 8 * 257 >> 4;
    case 16: return depth.Order == 2 ? (2 * red + 4) / 8 * 257 : red >> 3 << (depth.Order == 1 ? 10 : 0);
    case 24:
    case 32: return red << 16;
    case 48: return red * 257 << 32;
    case 64: return red * 257;
    default: return fill & 0xFF; // an index
    }
}

void Make(Bitmap& bitmap, const Depth& depth, int32_t width, int32_t height, const Storage& storage,
          Bytes& data, uint32_t seed) {
    Z_InitBitmap(&bitmap, width, height, depth.Bits);
    bitmap.Order = depth.Order;
    Allocate(bitmap, storage, data);
    if (depth.Bits <= 8) {
        bitmap.ColorsUsed = 1u << depth.Bits;
        Z_CreateBitmapGrayPalette(&bitmap);
    }
    Fill(bitmap, seed);
}

void ExpectModel(Bitmap& bitmap, const Depth& depth, int32_t angle, uint32_t flags) {
    const bool indexed = depth.Bits <= 8;
    const uint32_t fill = indexed ? 0x01000000u | ((1u << depth.Bits) - 1) * 2 / 3 : 0xC9u;
    const bool blends = depth.Bits >= 8;
    const RotationCase given = {depth.Bits,
                                depth.Order,
                                angle,
                                bitmap.ViewPerspective == 1 || bitmap.ViewPerspective == 2,
                                (flags & ROTATE_RESIZE) != 0,
                                !blends                        ? RotationCase::Nearest
                                : (flags & ROTATE_CUBIC) != 0  ? RotationCase::Cubic
                                : (flags & ROTATE_LINEAR) != 0 ? RotationCase::Linear
                                                               : RotationCase::Nearest,
                                indexed ? fill & 0xFF : RedPixel(depth, fill)};
    const Picture before = Picture::Of(bitmap);
    const Picture expected = RotationModel(before, given).Run();
    ASSERT_EQ(Z_RotateBitmap(&bitmap, angle, flags, fill), 1);
    ASSERT_EQ(Picture::Of(bitmap), expected);
}

TEST(Rotate, SinesAreRounded) {
    for (int32_t angle = -36000; angle <= 72000; ++angle) {
        ASSERT_EQ(Z_SinValue(angle), ModelSine(angle)) << angle;
        ASSERT_EQ(Z_CosValue(angle), ModelSine(angle + 9000)) << angle;
    }
    EXPECT_EQ(Z_SinValue(4500), 11585);
    EXPECT_EQ(Z_SinValue(INT32_MIN), Z_SinValue(INT32_MIN % 36000));
}

TEST(Rotate, EveryDepthAngleAndMethod) {
    uint32_t seed = 0;
    for (const Depth& depth : Depths)
        for (const int32_t angle : Angles)
            for (const uint32_t flags : {0u, 1u, 2u, 3u, 4u, 7u}) {
                if (depth.Bits < 8 && flags > 1) continue;
                const int32_t width = 1 + static_cast<int32_t>(seed * 5 % 61);
                const int32_t height = 1 + static_cast<int32_t>(seed * 11 % 43);
                ++seed;
                // Quarter and half turns are exact and have a test of their own.
                if (angle % 9000 == 0 && ((flags & 1) != 0 || width == height)) continue;
                SCOPED_TRACE(testing::Message()
                             << depth.Bits << " bits, order " << depth.Order << ", " << width << " x "
                             << height << " by " << angle << ", flags " << flags);
                Bitmap bitmap;
                Bytes data;
                Make(bitmap, depth, width, height, {"conventional", MemoryConventional}, data, seed);
                bitmap.ViewPerspective = static_cast<int32_t>(seed % 4);
                ASSERT_NO_FATAL_FAILURE(ExpectModel(bitmap, depth, angle, flags));
            }
}

// What is read of a source that does not lie in memory is all that is looked at.
TEST(Rotate, WindowsHoldTheirTiles) {
    for (const Depth& depth : {Depth{1, 0}, Depth{8, 0}, Depth{12, 2}})
        for (int32_t angle = 777; angle < 36000; angle += 1313) {
            Bitmap memory, disk;
            Bytes data;
            Make(memory, depth, 500, 333, {"conventional", MemoryConventional}, data, 9);
            Make(disk, depth, 500, 333, {"disk", MemoryDisk}, data, 9);
            for (Bitmap* bitmap : {&memory, &disk})
                ASSERT_EQ(Z_RotateBitmap(bitmap, angle, ROTATE_RESIZE | ROTATE_CUBIC, 0), 1);
            ASSERT_EQ(Rows(memory), Rows(disk)) << depth.Bits << " bits by " << angle;
        }
}

// Wide enough for several tiles and bands, and so turned that a row stays near an edge for long.
TEST(Rotate, LargePictures) {
    const struct {
        int32_t Width, Height, Angle;
    } cases[] = {{400, 30, 40}, {30, 300, 8970}, {300, 170, 3333}, {270, 140, 20000}};
    uint32_t seed = 0;
    for (const Depth& depth :
         {Depth{1, 0}, Depth{8, 0}, Depth{12, 2}, Depth{16, 1}, Depth{24, 1}, Depth{48, 1}})
        for (const auto& c : cases)
            for (const uint32_t flags : {1u, 2u, 5u}) {
                SCOPED_TRACE(testing::Message() << depth.Bits << " bits, " << c.Width << " x " << c.Height
                                                << " by " << c.Angle << ", flags " << flags);
                Bitmap bitmap;
                Bytes data;
                Make(bitmap, depth, c.Width, c.Height, {"conventional", MemoryConventional}, data, ++seed);
                ASSERT_NO_FATAL_FAILURE(ExpectModel(bitmap, depth, c.Angle, flags));
            }
}

TEST(Rotate, EveryStorage) {
    uint32_t seed = 100;
    for (const Depth& depth : {Depth{1, 0}, Depth{5, 0}, Depth{12, 2}, Depth{24, 1}})
        for (const Storage& storage : GeometryStorages(depth.Bits))
            for (const uint32_t flags : {0u, 5u}) {
                SCOPED_TRACE(testing::Message() << depth.Bits << " bits in " << storage.Name);
                Bitmap bitmap;
                Bytes data;
                Make(bitmap, depth, 290, 77, storage, data, ++seed);
                const uint32_t form = bitmap.Flags & (flag::Compressed | flag::SuperCompressed | flag::Disk);
                ASSERT_NO_FATAL_FAILURE(
                    ExpectModel(bitmap, depth, 2000 + 500 * static_cast<int32_t>(flags), flags));
                EXPECT_EQ(bitmap.Flags & (flag::Compressed | flag::SuperCompressed | flag::Disk), form);
            }
}

TEST(Rotate, ExactTurnsOfEveryDepthAndStorage) {
    uint32_t seed = 0;
    for (const int32_t bits : AllDepths)
        for (const Storage& storage : GeometryStorages(bits))
            for (const int32_t view : {0, 2})
                for (const int32_t angle : {9000, -9000, 18000}) {
                    const int32_t width = 1 + static_cast<int32_t>(++seed * 13 % 141);
                    const int32_t height = 1 + static_cast<int32_t>(seed * 7 % 83);
                    SCOPED_TRACE(testing::Message()
                                 << bits << " bits in " << storage.Name << ", " << width << " x " << height
                                 << " by " << angle << " in view " << view);
                    Bitmap bitmap(width, height, bits);
                    Bytes data;
                    Allocate(bitmap, storage, data);
                    Fill(bitmap, seed);
                    bitmap.ViewPerspective = view;
                    bitmap.XResolution = 100, bitmap.YResolution = 200;
                    const uint32_t form =
                        bitmap.Flags & (flag::Compressed | flag::SuperCompressed | flag::Disk);
                    const Picture before = Picture::Of(bitmap).Seen(view);
                    ASSERT_EQ(Z_RotateBitmap(&bitmap, angle, ROTATE_RESIZE, 0), 1);
                    ASSERT_EQ(Picture::Of(bitmap).Seen(view), before.Turned((angle + 36000) / 9000 % 4));
                    EXPECT_EQ(bitmap.Flags & (flag::Compressed | flag::SuperCompressed | flag::Disk), form);
                    EXPECT_EQ(bitmap.XResolution, angle == 18000 ? 100 : 200);
                }
}

// Results larger than caches, which are written by whole lines: rows that begin anywhere in a line, and bands of rows that
// are whole, left over or both.
TEST(Rotate, TurnsOfLargePictures) {
    const struct {
        int32_t Bits, Width, Height;
    } cases[] = {{24, 2310, 2433}, {32, 2050, 2049}, {48, 1700, 1664}, {64, 33000, 64}, {64, 33500, 63}};
    for (const auto& c : cases)
        for (const int32_t direction : {0, 1}) {
            SCOPED_TRACE(testing::Message() << c.Bits << " bits, direction " << direction);
            Bitmap bitmap(c.Width, c.Height, c.Bits);
            bitmap.ViewPerspective = 0;
            ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
            const Bytes before = Fill(bitmap, 5);
            const size_t pixel = static_cast<size_t>(c.Bits) / 8, beforeRow = bitmap.BytesPerLine;
            ASSERT_EQ(Z_RotateBitmap90(&bitmap, direction, 0, 100), 1);
            size_t wrong = 0;
            for (int32_t y = 0; y < c.Width; ++y)
                for (int32_t x = 0; x < c.Height; ++x) {
                    const int32_t row = direction == 1 ? c.Height - 1 - x : x;
                    const int32_t column = direction == 1 ? y : c.Width - 1 - y;
                    const uint8_t* made = static_cast<const uint8_t*>(bitmap.Addr) +
                                          static_cast<size_t>(y) * bitmap.BytesPerLine;
                    wrong += std::memcmp(made + static_cast<size_t>(x) * pixel,
                                         before.data() + static_cast<size_t>(row) * beforeRow +
                                             static_cast<size_t>(column) * pixel,
                                         pixel) != 0;
                }
            EXPECT_EQ(wrong, 0u);
        }
}

// Runs turned as runs: long ones that have to be split, blank columns, and lists with empty runs inside.
TEST(Rotate, RunsOfLongColumns) {
    Bitmap bitmap(9, 140000, 1);
    bitmap.ViewPerspective = 0;
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryCompressed | MemoryConventional), 1);
    std::mt19937 random(7);
    for (int32_t row = 0; row < bitmap.Height; ++row) {
        const uint8_t bits[4] = {static_cast<uint8_t>(row > 100 && row < 139000 ? 0x40
                                                      : row % 50000 == 3        ? 0x25
                                                                                : 0),
                                 static_cast<uint8_t>(random() % 1000 == 0 ? 0x80 : 0), 0, 0};
        ASSERT_EQ(Z_PutBitmapRow(&bitmap, bits, row, 4), 4);
    }
    const Picture before = Picture::Of(bitmap);
    ASSERT_EQ(Z_RotateBitmap90(&bitmap, 1, 0, 100), 1);
    EXPECT_EQ(Picture::Of(bitmap), before.Turned(1));
    ASSERT_EQ(Z_RotateBitmap90(&bitmap, 0, 0, 100), 1);
    EXPECT_EQ(Picture::Of(bitmap), before);
}

// More than fits the band of columns that is made at a time.
TEST(Rotate, StripsAreTurnedInParts) {
    Bitmap bitmap(2600, 2500, 24);
    bitmap.ViewPerspective = 0;
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemorySuperCompressed), 1);
    Bytes row(bitmap.BytesPerLine);
    for (int32_t y = 0; y < bitmap.Height; ++y) {
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<uint8_t>(i / 30 + static_cast<size_t>(y) / 7);
        ASSERT_GT(Z_PutBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine), 0);
    }
    const Picture before = Picture::Of(bitmap);
    const Reports reports(Z_SetStatusCallBack);
    ASSERT_EQ(Z_RotateBitmap90(&bitmap, 0, 20, 60), 1);
    EXPECT_TRUE(Picture::Of(bitmap) == before.Turned(3));
    EXPECT_EQ(reports.Seen.size(), 41u);
    EXPECT_EQ(reports.Seen.front(), 20);
    EXPECT_EQ(reports.Seen.back(), 60);
}

TEST(Rotate, StopsAtEveryRowWithTheSourceAsBefore) {
    for (const Storage& storage : GeometryStorages(24))
        for (const int32_t angle : {9000, 3000})
            for (size_t stopAt = 0;; ++stopAt) {
                SCOPED_TRACE(testing::Message()
                             << storage.Name << " by " << angle << " stopped at " << stopAt);
                Bitmap bitmap(11, 7, 24);
                Bytes data;
                Allocate(bitmap, storage, data);
                Fill(bitmap, 3);
                const Picture before = Picture::Of(bitmap);
                const Reports reports(Z_SetStatusCallBack, stopAt);
                const ReturnCode result = Z_RotateBitmap(&bitmap, angle, ROTATE_RESIZE, 0);
                if (reports.Seen.size() <= stopAt) {
                    EXPECT_EQ(result, 1);
                    EXPECT_EQ(reports.Seen.back(), 100);
                    break;
                }
                ASSERT_EQ(result, Reports::Stopped);
                ASSERT_EQ(Picture::Of(bitmap), before);
            }
}

TEST(Rotate, NoAngleReportsAlone) {
    Bitmap bitmap(5, 3, 8);
    EXPECT_EQ(Z_RotateBitmap(nullptr, 0, 0, 0), -2);
    EXPECT_EQ(Z_RotateBitmap(&bitmap, 0, 0, 0), -2);
    EXPECT_EQ(Z_RotateBitmap90(&bitmap, 0, 0, 100), -2);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
    Fill(bitmap, 1);
    const Picture before = Picture::Of(bitmap);
    for (const int32_t angle : {0, 36000, -72000}) {
        const Reports reports(Z_SetStatusCallBack);
        EXPECT_EQ(Z_IntRotateBitmap(&bitmap, angle, 0, 0, 10, 30), 1);
        EXPECT_EQ(reports.Seen, (std::vector<int32_t>{10, 30}));
    }
    const Reports reports(Z_SetStatusCallBack, 1);
    EXPECT_EQ(Z_IntRotateBitmap(&bitmap, 0, 0, 0, 10, 30), Reports::Stopped);
    EXPECT_EQ(Picture::Of(bitmap), before);
}

TEST(Rotate, IndicesAndMappedSamplesAreNotBlended) {
    for (const bool mapped : {false, true}) {
        Bitmap nearest, cubic;
        Bytes data;
        const Depth depth = mapped ? Depth{12, 2} : Depth{8, 0};
        for (Bitmap* bitmap : {&nearest, &cubic}) {
            Make(*bitmap, depth, 30, 20, {"conventional", MemoryConventional}, data, 5);
            if (mapped) {
                bitmap->LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(4096 * sizeof(RGBQUAD), 1));
                bitmap->LevelLUTLength = 4096;
            } else {
                RGBQUAD red = {0, 0, 255, 0};
                Z_PutBitmapColors(bitmap, 3, 1, &red);
            }
        }
        ASSERT_EQ(Z_RotateBitmap(&nearest, 1234, 0, 0), 1);
        ASSERT_EQ(Z_RotateBitmap(&cubic, 1234, ROTATE_CUBIC | ROTATE_LINEAR, 0), 1);
        EXPECT_EQ(Picture::Of(cubic), Picture::Of(nearest)) << mapped;
    }
}

TEST(Rotate, ResolutionsMix) {
    const struct {
        int32_t X, Y, NewX, NewY;
    } cases[] = {{100, 100, 100, 100}, {0, 200, 0, 200}, {100, 200, 118, 139}};
    for (const auto& c : cases) {
        Bitmap bitmap(400, 300, 1);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
        bitmap.XResolution = c.X, bitmap.YResolution = c.Y;
        ASSERT_EQ(Z_RotateBitmap(&bitmap, 3000, 0, 0), 1);
        EXPECT_EQ(bitmap.XResolution, c.NewX);
        EXPECT_EQ(bitmap.YResolution, c.NewY);
    }
}

TEST(Rotate, Buffers) {
    std::mt19937 random(11);
    for (const int32_t bits : AllDepths)
        for (int turn = 0; turn < 12; ++turn) {
            const int width = 1 + static_cast<int>(random() % 150),
                      height = 1 + static_cast<int>(random() % 90);
            const auto stride = [bits](int pixels) {
                return static_cast<size_t>((pixels * bits + 31) / 32 * 4);
            };
            const size_t bytes = stride(width) * static_cast<size_t>(height);
            const size_t turnedBytes = stride(height) * static_cast<size_t>(width);
            const Bytes source = RandomBytes(bytes, random);
            const auto picture = [&](const Bytes& from, int w, int h) {
                return Picture::Made(w, h, [&, w](int x, int y) {
                    return ReadPixel(from.data() + static_cast<size_t>(y) * stride(w), bits, x);
                });
            };
            const Picture before = picture(source, width, height);
            SCOPED_TRACE(testing::Message() << bits << " bits, " << width << " x " << height);
            for (const int32_t direction : {0, 1, -5}) {
                Bytes target(turnedBytes + 8, 0xA5);
                ASSERT_EQ(Z_RotateBuffer90(source.data(), target.data(), direction,
                                           static_cast<uint32_t>(width), static_cast<uint32_t>(height),
                                           static_cast<uint32_t>(bits)),
                          1);
                ASSERT_EQ(picture(target, height, width), before.Turned(direction == 0 ? 3 : 1));
                EXPECT_EQ(Bytes(target.end() - 8, target.end()), Bytes(8, 0xA5));
            }
            Bytes target(bytes + 8, 0xA5);
            ASSERT_EQ(Z_RotateBuffer180(source.data(), target.data(), static_cast<uint32_t>(width),
                                        static_cast<uint32_t>(height), static_cast<uint32_t>(bits)),
                      1);
            ASSERT_EQ(picture(target, width, height), before.Turned(2));
            EXPECT_EQ(Bytes(target.end() - 8, target.end()), Bytes(8, 0xA5));
        }
    uint8_t byte = 1, other = 2;
    EXPECT_EQ(Z_RotateBuffer90(&byte, &other, 0, 0, 1, 8), 1);
    EXPECT_EQ(Z_RotateBuffer90(&byte, &other, 0, 1, 1, 9), 1);
    EXPECT_EQ(Z_RotateBuffer180(&byte, &other, 1, 1, 0), 1);
    EXPECT_EQ(other, 2);
}

} // namespace
} // namespace zkr::test
