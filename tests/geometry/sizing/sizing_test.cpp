// Whole-bitmap sizing against pictures made pixel by pixel, and what belongs to it: which method flags mean, formats,
// views, regions, storage classes, reports and stops.
#include "core/reports.h"
#include "core/test_bitmaps.h"
#include "core/test_regions.h"
#include "geometry/picture.h"
#include "geometry/resize/reference_resample.h"
#include "support/seeded.h"

#include "zkr13n/convert.h"
#include "zkr13n/copy.h"
#include "zkr13n/dither.h"
#include "zkr13n/flip.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/numeric.h"
#include "zkr13n/palettes.h"
#include "zkr13n/sizing.h"

#include <functional>

namespace zkr::test {
namespace {

void MakeSource(Bitmap& bitmap, int32_t type, int32_t width, int32_t height, int32_t bits, uint32_t seed,
                int32_t order = 1, int32_t view = 0, const RGBQUAD* palette = nullptr) {
    ASSERT_EQ(Z_CreateBitmap(&bitmap, type, width, height, bits, order, palette, view, nullptr, 0), 1);
    Fill(bitmap, seed);
}

Picture Sized(BitmapHandle& source, int32_t width, int32_t height, uint32_t flags) {
    Bitmap copy;
    EXPECT_EQ(Z_CopyBitmap(&copy, &source), 1);
    EXPECT_EQ(Z_SizeBitmap(&copy, width, height, flags), 1);
    return Picture::Of(copy);
}

Picture NearestModel(const Picture& source, int32_t width, int32_t height) {
    return Picture::Made(width, height, [&](int x, int y) {
        return source.At(static_cast<int>(int64_t{x} * source.Width / width),
                         static_cast<int>(int64_t{y} * source.Height / height));
    });
}

int32_t NewSize(Seeded& seeded, int32_t size) {
    switch (seeded.Below(8)) {
    case 0: return size;
    case 1:
    case 2: return size * 2;
    case 3: return seeded.Between(size, size * 5);
    default: return seeded.Between(1, size * (seeded.Below(2) + 1));
    }
}

TEST(Sizing, NearestTakesThePixelsOfEveryDepthAndStorage) {
    Seeded seeded(1);
    for (const int32_t bits : AllDepths)
        for (const Storage& storage : GeometryStorages(bits)) {
            if (storage.Type == MemoryUser || storage.Type == GlobalType) continue;
            Bytes none;
            Bitmap source(seeded.Between(1, 90), seeded.Between(1, 40), bits);
            Allocate(source, storage, none);
            Fill(source, static_cast<uint32_t>(bits));
            const Picture before = Picture::Of(source);
            const int32_t width = NewSize(seeded, source.Width), height = NewSize(seeded, source.Height);
            const int32_t type = InfoOf(source).Type;
            ASSERT_EQ(Z_SizeBitmap(&source, width, height, 0), 1);
            EXPECT_EQ(Picture::Of(source), NearestModel(before, width, height))
                << bits << ", " << storage.Name;
            const bool keepsClass = storage.Type != MemoryTiled;
            EXPECT_TRUE(!keepsClass || InfoOf(source).Type == type) << storage.Name;
        }
}

// A format that is blended as it is. Samples are interleaved.
struct Blended {
    int32_t Bits, Order; // 0 bits for 8-bit gray
    size_t Channels;
    int32_t Largest;
};
constexpr Blended BlendedFormats[] = {{0, 1, 1, 255},    {24, 1, 3, 255},   {24, 0, 3, 255},  {32, 1, 4, 255},
                                      {48, 0, 3, 65535}, {64, 1, 4, 65535}, {16, 2, 1, 65535}};

using SampleRowsOf = std::vector<Samples>;

SampleRowsOf ReadSamples(BitmapHandle& bitmap, const Blended& format) {
    const size_t bytes = format.Largest == 255 ? 1 : 2;
    const size_t count = static_cast<size_t>(bitmap.Width) * format.Channels;
    const Bytes all = Rows(bitmap);
    SampleRowsOf rows;
    for (size_t y = 0; y < static_cast<size_t>(bitmap.Height); ++y) {
        Samples row(count);
        for (size_t i = 0; i < count; ++i)
            std::memcpy(&row[i], all.data() + y * bitmap.BytesPerLine + i * bytes, bytes);
        rows.push_back(row);
    }
    return rows;
}

// Applies a rule to each channel of a row.
Samples EachChannel(const Samples& row, size_t channels, const std::function<Samples(const Samples&)>& rule) {
    Samples result;
    for (size_t c = 0; c < channels; ++c) {
        Samples channel;
        for (size_t i = c; i < row.size(); i += channels)
            channel.push_back(row[i]);
        const Samples made = rule(channel);
        result.resize(made.size() * channels);
        for (size_t i = 0; i < made.size(); ++i)
            result[i * channels + c] = made[i];
    }
    return result;
}

Samples WidthModel(const Samples& row, const Blended& format, int32_t width, bool isSpline) {
    const auto old = static_cast<int32_t>(row.size() / format.Channels);
    if (width >= old && isSpline)
        return SplineRowModel(row, format.Channels, format.Largest, width, 0, width);
    return EachChannel(row, format.Channels, [&](const Samples& s) {
        return width < old ? AverageModel(s, width) : LinearModel(s, width);
    });
}

// 16-bit values between rows: what a falling one leaves over is dropped.
Samples FallingLinearModel(const Samples& source, int32_t size) {
    Samples rising = LinearModel(source, size);
    const auto old = static_cast<int32_t>(source.size());
    for (int32_t i = 0, at = size / old / 2; i + 1 < old; ++i) {
        const int32_t begin = static_cast<int32_t>(int64_t{i} * size / old),
                      end = static_cast<int32_t>(int64_t{i + 1} * size / old);
        const int32_t fall = source[static_cast<size_t>(i)] - source[static_cast<size_t>(i) + 1];
        for (int32_t k = begin; k < end && k + at < size && fall > 0; ++k)
            rising[static_cast<size_t>(k + at)] =
                source[static_cast<size_t>(i)] - fall / (end - begin) * (k - begin);
    }
    return rising;
}

Samples SplineHeightModel(const Samples& source, int32_t size, int32_t largest) {
    const auto last = static_cast<int32_t>(source.size()) - 1;
    const float ratio = static_cast<float>(last + 1) / static_cast<float>(size);
    const auto at = [&](int32_t i) { return source[static_cast<size_t>(std::clamp(i, 0, last))]; };
    const auto repeats = static_cast<int32_t>(0.5f / ratio);
    Samples result;
    float t = 0;
    for (int32_t y = 0, row = 0; y < size; ++y) {
        if (y > repeats) {
            t += ratio;
            if (t >= 1.0f) t -= 1.0f, ++row;
        }
        result.push_back(SplineBetweenRows(at(row - 1), at(row), at(row + 1), at(row + 2), t, largest));
    }
    return result;
}

SampleRowsOf BlendedModel(const SampleRowsOf& source, const Blended& format, int32_t width, int32_t height,
                          bool isSpline) {
    SampleRowsOf wide;
    for (const Samples& row : source)
        wide.push_back(WidthModel(row, format, width, isSpline));
    SampleRowsOf result(static_cast<size_t>(height), Samples(wide[0].size()));
    const auto old = static_cast<int32_t>(source.size());
    for (size_t i = 0; i < wide[0].size(); ++i) {
        Samples column;
        for (const Samples& row : wide)
            column.push_back(row[i]);
        const Samples made = height < old            ? AverageModel(column, height)
                             : isSpline              ? SplineHeightModel(column, height, format.Largest)
                             : format.Largest == 255 ? LinearModel(column, height)
                                                     : FallingLinearModel(column, height);
        for (size_t y = 0; y < made.size(); ++y)
            result[y][i] = made[y];
    }
    return result;
}

void SwapRedAndBlue(SampleRowsOf& rows, const Blended& format) {
    for (Samples& row : rows)
        for (size_t i = 0; format.Order == 0 && i < row.size(); i += format.Channels)
            std::swap(row[i], row[i + 2]);
}

// Channels are blended with blue first, of which splines treat the first two otherwise than the last.
TEST(Sizing, BlendsByTheRules) {
    for (uint32_t round = 0; round < 500; ++round) {
        Seeded seeded(round);
        const Blended& format = BlendedFormats[seeded.Below(7)];
        const bool isSpline = seeded.Below(2) != 0;
        Bitmap source;
        MakeSource(source, MemoryConventional, seeded.Between(1, 40), seeded.Between(1, 30), format.Bits,
                   round, format.Order);
        const int32_t width = NewSize(seeded, source.Width), height = NewSize(seeded, source.Height);
        const bool grows = width > source.Width || height > source.Height;
        // The levels of 8-bit gray become three channels.
        const Blended model = {format.Bits, 0, isSpline && format.Bits == 0 ? 3 : format.Channels,
                               format.Largest};
        SampleRowsOf rows = ReadSamples(source, format);
        SwapRedAndBlue(rows, format);
        const bool asThree = model.Channels != format.Channels;
        for (Samples& row : rows)
            for (size_t i = row.size(); asThree && i-- > 0;)
                row.insert(row.begin() + static_cast<ptrdiff_t>(i), 2, row[i]);
        SampleRowsOf expected = BlendedModel(rows, model, width, height, isSpline && grows);
        for (Samples& row : expected)
            for (size_t i = 0; asThree && i < row.size(); ++i) {
                row[i] = (2 * row[i + 2] + 5 * row[i + 1] + row[i] + 4) >> 3;
                row.erase(row.begin() + static_cast<ptrdiff_t>(i) + 1,
                          row.begin() + static_cast<ptrdiff_t>(i) + 3);
            }
        SwapRedAndBlue(expected, format);
        const int32_t oldWidth = source.Width, oldHeight = source.Height;
        ASSERT_EQ(Z_SizeBitmap(&source, width, height, isSpline ? SIZE_CUBIC : SIZE_LINEAR), 1);
        ASSERT_EQ(ReadSamples(source, format), expected)
            << "round " << round << ", " << format.Bits << " bits, spline " << isSpline << ", " << oldWidth
            << " x " << oldHeight << " to " << width << " x " << height;
    }
}

// 16-bit colour is blended with alpha at 32 bits; indices at 24 bits, and dithered back to their palette.
TEST(Sizing, OtherFormatsAreBlendedAsWiderOnes) {
    for (const int32_t bits : {1, 2, 3, 4, 5, 6, 7, 8, 16})
        for (const bool hasFewColours : {false, true})
            for (const uint32_t flags : {uint32_t{SIZE_LINEAR}, uint32_t{SIZE_CUBIC}}) {
                RGBQUAD palette[256] = {};
                Seeded seeded(static_cast<uint64_t>(bits));
                for (RGBQUAD& entry : palette)
                    entry = {seeded.Byte(), seeded.Byte(), seeded.Byte(), 0};
                Bitmap source, wide, expected;
                MakeSource(source, MemoryConventional, 23, 11, bits, 5, 1, 0, palette);
                if (bits > 8 && hasFewColours) continue;
                if (hasFewColours && bits > 1) {
                    Z_FreeBitmap(&source);
                    Z_CreateBitmap(&source, MemoryConventional, 23, 11, bits, 1, nullptr, 0, nullptr, 0);
                    source.ColorsUsed = 2; // all pixels are 0
                    source.DitheringMethod = DitherOrdered;
                }
                const int32_t work = bits == 16 ? 32 : 24;
                MakeSource(wide, MemoryConventional, 23, 11, work, 1);
                MakeSource(expected, MemoryConventional, 41, 17, bits, 1, 1, 0, palette);
                RGBQUAD entries[256] = {};
                Z_GetBitmapPaletteEntries(&source, 0, 256, entries);
                Bytes row(1000);
                for (int32_t y = 0; y < 11; ++y) {
                    Z_GetBitmapRow(&source, row.data(), y, source.BytesPerLine);
                    ASSERT_EQ(Z_ConvertBuffer(row.data(), 23, bits, work, source.Order, 1, entries, nullptr),
                              1);
                    Z_PutBitmapRow(&wide, row.data(), y, wide.BytesPerLine);
                }
                ASSERT_EQ(Z_SizeBitmap(&wide, 41, 17, flags), 1);
                wide.DitheringMethod = DitherFloydSteinberg;
                ASSERT_TRUE(work != 24 ||
                            Z_StartDitheringExt(&wide, entries, source.ColorsUsed, bits, nullptr) == 1);
                const float ratio = 11.0f / 17.0f;
                ASSERT_LT(0.5f / ratio, 1) << "no row is repeated, so that all are dithered";
                Bytes target(1000);
                for (int32_t y = 0; y < 17; ++y) {
                    Z_GetBitmapRow(&wide, row.data(), y, wide.BytesPerLine);
                    if (work == 24)
                        Z_DitherLine(&wide, row.data(), target.data());
                    else
                        Z_ConvertBuffer(row.data(), 41, 32, 16, 1, source.Order, nullptr, nullptr),
                            target = row;
                    Z_PutBitmapRow(&expected, target.data(), y, expected.BytesPerLine);
                }
                Z_StopDithering(&wide);
                EXPECT_EQ(Sized(source, 41, 17, flags), Picture::Of(expected))
                    << bits << ", " << hasFewColours;
            }
}

// Black pixels counted one by one in each cell.
Picture StrokesModel(const Picture& source, int32_t width, int32_t height, bool blackIsOne) {
    const auto cell = [](int32_t i, int32_t old, int32_t now) {
        return static_cast<int32_t>(int64_t{i} * old / now);
    };
    const uint32_t root = Z_SQRT(
        static_cast<uint32_t>(std::max(source.Width / width, 1) * std::max(source.Height / height, 1)));
    const uint32_t threshold = root < 5 ? std::max(root, 2u) - 1 : root;
    return Picture::Made(width, height, [&](int x, int y) {
        const int32_t left = cell(x, source.Width, width), top = cell(y, source.Height, height);
        const int32_t right = std::max(cell(x + 1, source.Width, width), left + 1);
        const int32_t bottom = std::max(cell(y + 1, source.Height, height), top + 1);
        uint32_t black = 0;
        for (int32_t j = top; j < bottom; ++j)
            for (int32_t i = left; i < right; ++i)
                black += (source.At(i, j) != 0) == blackIsOne;
        return uint64_t{(black >= threshold) == blackIsOne};
    });
}

TEST(Sizing, StrokesStay) {
    constexpr RGBQUAD normal[2] = {{0, 0, 0, 0}, {255, 255, 255, 0}},
                      reverse[2] = {{255, 255, 255, 0}, {0, 0, 0, 0}},
                      unordered[2] = {{100, 100, 100, 0}, {50, 50, 50, 0}};
    for (uint32_t round = 0; round < 300; ++round) {
        Seeded seeded(round);
        const std::vector<Storage> storages = GeometryStorages(1);
        const Storage& storage =
            storages[static_cast<size_t>(seeded.Below(static_cast<int>(storages.size())))];
        const bool isReverse = seeded.Below(2) != 0;
        Bytes data, row;
        Bitmap source(seeded.Between(1, 400), seeded.Between(1, 60), 1);
        Allocate(source, storage, data);
        source.ViewPerspective = 2 * seeded.Below(2);
        Z_CreateBitmapPalette(&source, isReverse ? reverse : seeded.Below(2) ? normal : unordered, 2);
        const int density = seeded.Between(1, 20);
        row.resize(source.BytesPerLine);
        for (int32_t y = 0; y < source.Height; ++y) {
            for (int32_t x = 0; x < source.Width; ++x)
                WritePixel(row.data(), 1, x, (seeded.Below(density) == 0) == isReverse);
            Z_PutBitmapRow(&source, row.data(), y, source.BytesPerLine);
        }
        const int32_t width = NewSize(seeded, source.Width), height = NewSize(seeded, source.Height);
        if (width == source.Width && height == source.Height) continue;
        Picture before = Picture::Of(source);
        if (source.ViewPerspective == 2) before = before.Flipped();
        Picture expected = StrokesModel(before, width, height, isReverse);
        if (source.ViewPerspective == 2) expected = expected.Flipped();
        Bitmap other;
        ASSERT_EQ(Z_CreateBitmap(&other, MemoryConventional, width, height, 1, 0, nullptr,
                                 2 - source.ViewPerspective, nullptr, 0),
                  1);
        const int32_t oldWidth = source.Width, oldHeight = source.Height;
        ASSERT_EQ(Z_ResizeBitmapExt(&source, &other, SIZE_KEEP_BLACK | SIZE_CUBIC), 1);
        EXPECT_EQ(Picture::Of(other).Flipped(), expected);
        ASSERT_EQ(Z_SizeBitmap(&source, width, height, SIZE_KEEP_BLACK | SIZE_LINEAR), 1);
        ASSERT_EQ(Picture::Of(source), expected)
            << "round " << round << ", " << storage.Name << ", " << oldWidth << " x " << oldHeight << " to "
            << width << " x " << height;
    }
}

TEST(Sizing, FlagsThatMeanTheSame) {
    constexpr RGBQUAD red[2] = {{0, 0, 0, 0}, {0, 0, 255, 0}};
    constexpr uint32_t keep = SIZE_KEEP_BLACK, linear = SIZE_LINEAR, cubic = SIZE_CUBIC;
    const struct {
        int32_t Bits;
        const RGBQUAD* Palette;
        bool Grows;
        uint32_t Flags, Same;
        bool IsLocked = false;
    } cases[] = {{24, nullptr, false, cubic, linear},
                 {24, nullptr, true, cubic | linear, linear},
                 {4, nullptr, false, keep, 0},
                 {4, nullptr, true, keep | linear, linear},
                 {1, nullptr, false, keep | linear, keep},
                 {1, nullptr, true, keep | cubic, cubic},
                 {1, nullptr, false, keep | cubic, linear},
                 {1, nullptr, false, keep | cubic | linear, linear},
                 {1, red, false, keep | linear, linear},
                 {1, red, false, keep, 0},
                 {1, nullptr, false, keep, 0, true}};
    for (const auto& c : cases) {
        Bitmap source;
        MakeSource(source, MemoryConventional, 40, 20, c.Bits, 3, 1, 0, c.Palette);
        Z_SetSupportLocks(c.IsLocked ? 1u << Z_SUPPORT_BITONAL : 0);
        const int32_t height = c.Grows ? 30 : 9;
        EXPECT_EQ(Sized(source, 13, height, c.Flags), Sized(source, 13, height, c.Same)) << &c - cases;
        Z_SetSupportLocks(0);
    }
}

// Equal pictures come of it whatever the views are.
TEST(Sizing, FillsAcrossViews) {
    for (const int32_t from : AllViews)
        for (const int32_t to : AllViews)
            for (const uint32_t flags : {0u, uint32_t{SIZE_CUBIC}}) {
                Bitmap source, turned, target, expected;
                MakeSource(source, MemoryConventional, 17, 9, 24, 8, 1, from);
                ASSERT_EQ(Z_ChangeBitmapViewPerspective(&turned, &source, to), 1);
                MakeSource(target, MemoryConventional, 12, 25, 24, 9, 1, to);
                ASSERT_EQ(Z_ResizeBitmapExt(&source, &target, flags), 1);
                const bool mirrors = from + to == 2 && from != to;
                if (mirrors) { // the rows of the source in its own order
                    MakeSource(expected, MemoryConventional, 12, 25, 24, 9, 1, from);
                    ASSERT_EQ(Z_ResizeBitmapExt(&source, &expected, flags), 1);
                    EXPECT_EQ(Picture::Of(target), Picture::Of(expected).Flipped()) << from << " to " << to;
                } else {
                    EXPECT_EQ(Picture::Of(target), Sized(turned, 12, 25, flags)) << from << " to " << to;
                }
            }
}

// The source of 8 bits in gray, 16 in gray with a window, or colour, to targets of other depths.
TEST(Sizing, BlendsToOtherDepths) {
    Bitmap gray, words, target, other;
    MakeSource(gray, MemoryConventional, 30, 10, 0, 1);
    Z_CreateBitmap(&target, MemoryConventional, 15, 5, 24, 1, nullptr, 0, nullptr, 0);
    ASSERT_EQ(Z_ResizeBitmapExt(&gray, &target, SIZE_LINEAR), 1);
    const Picture levels = Sized(gray, 15, 5, SIZE_LINEAR);
    EXPECT_EQ(Picture::Of(target),
              Picture::Made(15, 5, [&](int x, int y) { return levels.At(x, y) * 0x010101; }));

    Bitmap deep;
    MakeSource(words, MemoryConventional, 30, 10, 16, 1, 2);
    Z_CreateBitmap(&deep, MemoryConventional, 15, 5, 64, 1, nullptr, 0, nullptr, 0);
    ASSERT_EQ(Z_ResizeBitmapExt(&words, &deep, SIZE_LINEAR), 1);
    const Picture values = Sized(words, 15, 5, SIZE_LINEAR);
    EXPECT_EQ(Picture::Of(deep),
              Picture::Made(15, 5, [&](int x, int y) { return values.At(x, y) * 0x100010001; }));

    // A palette that ends early: colours behind it are not chosen, though white would be there.
    Bitmap colour, few;
    constexpr RGBQUAD entries[3] = {{255, 255, 255, 0}, {0, 0, 0, 0}, {128, 128, 128, 0}};
    MakeSource(colour, MemoryConventional, 12, 6, 24, 4);
    Z_CreateBitmap(&few, MemoryConventional, 12, 6, 4, 1, nullptr, 0, nullptr, 0);
    Z_CreateBitmapPalette(&few, entries, 3);
    few.ColorsUsed = 3;
    ASSERT_EQ(Z_ResizeBitmapExt(&colour, &few, SIZE_LINEAR), 1);
    const Picture pixels = Picture::Of(colour);
    EXPECT_EQ(Picture::Of(few), Picture::Made(12, 6, [&](int x, int y) {
                  const auto pixel = static_cast<int32_t>(pixels.At(x, y));
                  return static_cast<uint64_t>(
                      Z_FindPaletteIndex(entries, 3, pixel >> 16, pixel >> 8 & 255, pixel & 255));
              }));
}

// Nearest pixels stay packed as they are, and nothing is written behind a row.
TEST(Sizing, NearestLeavesTheDepth) {
    Bitmap source, wide, narrow;
    MakeSource(source, MemoryConventional, 10, 4, 24, 1);
    Z_CreateBitmap(&wide, MemoryConventional, 7, 4, 32, 1, nullptr, 0, nullptr, 0);
    Z_CreateBitmap(&narrow, MemoryConventional, 7, 4, 8, 1, nullptr, 0, nullptr, 0);
    const Bytes from = Rows(source);
    Bytes packed;
    for (int32_t x = 0; x < 7; ++x)
        for (int32_t i = 0; i < 3; ++i)
            packed.push_back(from[static_cast<size_t>(x * 10 / 7 * 3 + i)]);
    for (Bitmap* target : {&wide, &narrow}) {
        ASSERT_EQ(Z_ResizeBitmap(&source, target), 1);
        Bytes expected = packed;
        expected.resize(target->BytesPerLine);
        const Bytes rows = Rows(*target);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), rows.begin()));
    }
}

// What the slot sees, and what becomes of the fields.
struct ScaleSlot {
    inline static std::vector<int32_t> Seen; // width and height of the bitmap, then the new ones
    inline static ReturnCode Result;
    static constexpr intptr_t Scaled = 0x1000;

    DispatchTable Table;
    const DispatchTable* Before;

    ScaleSlot() : Table(Dispatch()) {
        Seen.clear();
        Result = 1;
        Table.ScaleBitmapRegion = [](BitmapHandle* bitmap, int32_t width, int32_t height) {
            Seen.insert(Seen.end(), {bitmap->Width, bitmap->Height, width, height});
            if (bitmap->Region != nullptr && Result == 1)
                bitmap->Region = reinterpret_cast<void*>(reinterpret_cast<intptr_t>(bitmap->Region) + Scaled);
            return Result;
        };
        Table.FreeBitmapRgn = Free;
        Before = ExchangeDispatch(&Table);
    }
    ~ScaleSlot() { ExchangeDispatch(Before); }
    static ReturnCode Z_CALL Free(BitmapHandle* bitmap) {
        bitmap->Region = nullptr;
        return 1;
    }
};

TEST(Sizing, TheRegionFollows) {
    auto* const mark = reinterpret_cast<void*>(16);
    auto* const scaled = reinterpret_cast<void*>(16 + ScaleSlot::Scaled);
    for (const uint32_t flags :
         {0u, uint32_t{SIZE_LINEAR}, uint32_t{SIZE_CUBIC}, uint32_t{SIZE_KEEP_BLACK}}) {
        ScaleSlot slot;
        Bitmap source, target;
        MakeSource(source, MemoryConventional, 10, 6, 1, 1);
        source.Region = mark;
        ScaleSlot::Result = -6;
        EXPECT_EQ(Z_SizeBitmap(&source, 12, 5, flags), -6);
        EXPECT_TRUE(source.Region == mark && source.Width == 10);
        ScaleSlot::Result = 1;
        ScaleSlot::Seen.clear();
        EXPECT_EQ(Z_SizeBitmap(&source, 12, 5, flags), 1);
        EXPECT_EQ(ScaleSlot::Seen, (std::vector<int32_t>{10, 6, 12, 5}));
        EXPECT_TRUE(source.Region == scaled && source.Width == 12 && source.Height == 5);

        // Of a target it is scaled by the source's size, unless both have the same one.
        MakeSource(target, MemoryConventional, 24, 5, 1, 1);
        target.Region = mark;
        ScaleSlot::Seen.clear();
        EXPECT_EQ(Z_ResizeBitmapExt(&source, &target, flags), 1);
        EXPECT_EQ(ScaleSlot::Seen, (std::vector<int32_t>{12, 5, 24, 5}));
        EXPECT_TRUE(target.Region == scaled && source.Region == scaled);
        EXPECT_EQ(Z_ResizeBitmapExt(&source, &target, flags), 1);
        EXPECT_EQ(target.Region, scaled) << "the region of both";
        {
            const Reports reports(Z_SetStatusCallBack, 1);
            ScaleSlot::Seen.clear();
            EXPECT_EQ(Z_SizeBitmap(&source, 4, 5, flags), Reports::Stopped);
        }
        EXPECT_TRUE(ScaleSlot::Seen.empty() && source.Width == 12);
        EXPECT_EQ(Z_KrnSizeBitmapRgn(&source, 3, 4), 1);
        EXPECT_EQ(ScaleSlot::Seen, (std::vector<int32_t>{12, 5, 3, 4}));
        source.Region = target.Region = nullptr;
    }
}

TEST(Sizing, ReportsAndStops) {
    for (const uint32_t flags : {0u, uint32_t{SIZE_LINEAR}, uint32_t{SIZE_CUBIC}, uint32_t{SIZE_KEEP_BLACK}})
        for (const int32_t height : {8, 90}) {
            Bitmap source;
            MakeSource(source, MemoryConventional, 30, 30, 1, 2);
            const BitmapHandle record = source;
            const Picture before = Picture::Of(source);
            std::vector<int32_t> expected = {0};
            for (int32_t i = 1; i <= height; ++i)
                expected.push_back(i * 100 / height);
            for (size_t stop = 0; stop < expected.size(); ++stop) {
                const Reports reports(Z_SetStatusCallBack, stop);
                ASSERT_EQ(Z_SizeBitmap(&source, 50, height, flags), Reports::Stopped);
                ASSERT_EQ(std::memcmp(&record, &source, offsetof(BitmapHandle, CurrentRowOffset)), 0);
            }
            ASSERT_EQ(Picture::Of(source), before);
            const Reports reports(Z_SetStatusCallBack);
            ASSERT_EQ(Z_SizeBitmap(&source, 50, height, flags), 1);
            EXPECT_EQ(reports.Seen, expected);
        }
}

TEST(Sizing, Refusals) {
    Bitmap source, target, empty;
    MakeSource(source, MemoryConventional, 30, 10, 24, 1);
    MakeSource(target, MemoryConventional, 30, 10, 24, 1);
    EXPECT_EQ(Z_SizeBitmap(nullptr, 1, 1, 0), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_SizeBitmap(&empty, 1, 1, 0), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_SizeBitmap(&source, 0, 0, 0), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_SizeBitmap(&source, 5, -1, 0), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_SizeBitmap(&source, 1, 0, 0), Z_ERROR_ARGUMENT) << "a third of a row";
    EXPECT_EQ(Z_SizeBitmap(&source, 0, 5, 0), 1);
    EXPECT_EQ(source.Width, 15);
    EXPECT_EQ(Z_ResizeBitmap(nullptr, &target), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_ResizeBitmap(&source, &empty), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_KrnSizeBitmapRgn(nullptr, 1, 1), Z_ERROR_BITMAP);
    target.ViewPerspective = 6;
    EXPECT_EQ(Z_ResizeBitmap(&source, &target), Z_ERROR_ARGUMENT);
    source.ViewPerspective = 6;
    EXPECT_EQ(Z_ResizeBitmap(&source, &target), 1) << "equal ones need not be views";
}

} // namespace
} // namespace zkr::test
