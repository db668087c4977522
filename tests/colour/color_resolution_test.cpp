// Colour resolution: which palette and which pixels come out, against rows dithered and converted one by one.
#include "colour/fixed_palettes.h"
#include "colour/pictures.h"
#include "colour/quantise/palette_builder.h"
#include "core/dispatch.h"
#include "core/thread_settings.h"
#include "platform/graphics.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/convert.h"
#include "zkr13n/dither.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"

#ifndef _WIN32
#include "zkr13n/surface.h"
#endif

#include <array>
#include <map>

namespace zkr::test {
namespace {

constexpr PixelForm Bgr24{24, Z_ORDER_BGR};

using Palette = std::array<RGBQUAD, 256>;

uint32_t Rgb(const RGBQUAD& entry) {
    return static_cast<uint32_t>(entry.rgbRed << 16 | entry.rgbGreen << 8 | entry.rgbBlue);
}

RGBQUAD Entry(uint32_t rgb, uint8_t reserved = 0) {
    return {static_cast<uint8_t>(rgb), static_cast<uint8_t>(rgb >> 8), static_cast<uint8_t>(rgb >> 16),
            reserved};
}

Palette PaletteOf(const BitmapHandle& bitmap) {
    Palette palette{};
    Z_GetBitmapPaletteEntries(&bitmap, 0, 256, palette.data());
    return palette;
}

ReturnCode Resolve(BitmapHandle& source, BitmapHandle* target, int32_t bits, uint32_t flags,
                   RGBQUAD* palette = nullptr, uint32_t colors = 0) {
    return Z_ColorResBitmap(&source, target, bits, flags, palette, nullptr, colors, nullptr, 0);
}

uint64_t PixelOf(BitmapHandle& bitmap, const Bytes& rows, int32_t y, int32_t x) {
    return ReadPixel(rows.data() + size_t{bitmap.BytesPerLine} * static_cast<size_t>(y), bitmap.BitsPerPixel,
                     x);
}

void ExpectPixels(BitmapHandle& got, const std::vector<Bytes>& rows) {
    const Bytes all = Rows(got);
    for (int32_t y = 0; y < got.Height; ++y)
        for (int32_t x = 0; x < got.Width; ++x)
            ASSERT_EQ(PixelOf(got, all, y, x),
                      ReadPixel(rows[static_cast<size_t>(y)].data(), got.BitsPerPixel, x))
                << y << ", " << x;
}

std::vector<Bytes> Dithered(ColourPicture& picture, const RGBQUAD* palette, uint32_t colors, int32_t bits,
                            int32_t method) {
    std::vector<Bytes> rows;
    const int32_t before = std::exchange(picture.DitheringMethod, method);
    EXPECT_EQ(Z_StartDitheringExt(&picture, palette, colors, bits, nullptr), 1);
    for (int32_t y = 0; y < picture.Height; ++y) {
        rows.emplace_back(RowBytes(picture.Width, bits));
        EXPECT_EQ(Z_DitherLine(&picture, picture.Row(y), rows.back().data()), 1);
    }
    Z_StopDithering(&picture);
    picture.DitheringMethod = before;
    return rows;
}

// Palettes that are there before: pixels are those of a dithering run, from every form.
TEST(ColorResolution, DithersToPalettesThatAreGiven) {
    Palette own = PaletteOf(ColourPicture({8, 0}, 1, 1, 99));
    for (RGBQUAD& entry : own)
        entry.rgbReserved = 0;
    own[3].rgbReserved = 1;
    struct Choice {
        int32_t Bits;
        uint32_t Flags, Colors;
        const RGBQUAD* Expected;
        uint32_t ExpectedColors;
    };
    const RGBQUAD* const cube = CubePalette216.data();
    const Choice choices[] = {{1, 1, 0, FixedPalette(1).data(), 2},
                              {4, 1, 5, FixedPalette(4).data(), 16},
                              {8, 1, 0, FixedPalette(8).data(), 256},
                              {7, 0x41, 0, FixedPalette(7).data(), 128},
                              {8, 0x41, 0, cube, 256},
                              {8, 0x40, 7, cube, 256},
                              {8, 0x10, 200, own.data(), 200},
                              {3, 0x10, 0, own.data(), 8},
                              {5, 0x30, 99, own.data(), 32},
                              {2, 0x94, 3, own.data(), 3}};
    for (const PixelForm form : AllForms)
        for (const Choice& choice : choices)
            for (const int32_t method : {0, 1, 7}) {
                SCOPED_TRACE(form.Name() + std::to_string(choice.Bits) + " bits, flags " +
                             std::to_string(choice.Flags) + ", method " + std::to_string(method));
                ColourPicture picture(form, 37, 5, 11);
                const auto rows =
                    Dithered(picture, choice.Expected, choice.ExpectedColors, choice.Bits, method);
                Bitmap target;
                Palette given = own;
                ASSERT_EQ(Resolve(picture, &target, choice.Bits,
                                  choice.Flags | static_cast<uint32_t>(method) << 16,
                                  choice.Flags & 0x10 ? given.data() : nullptr, choice.Colors),
                          1);
                EXPECT_EQ(target.ColorsUsed, choice.ExpectedColors);
                EXPECT_EQ(std::memcmp(PaletteOf(target).data(), choice.Expected, choice.ExpectedColors * 4),
                          0);
                ASSERT_NO_FATAL_FAILURE(ExpectPixels(target, rows));
            }
}

TEST(ColorResolution, ConvertsAboveEightBits) {
    constexpr struct {
        int32_t Bits;
        uint32_t Flags;
        int32_t Order;
    } targets[] = {{16, 0, 0}, {16, 0x484, 2}, {16, 4, 1}, {12, 0x80, 2}, {24, 0x37B, 0},
                   {24, 4, 1}, {32, 4, 1},     {48, 0, 0}, {64, 4, 1}};
    for (const PixelForm form : AllForms)
        for (const auto& [bits, flags, order] : targets)
            for (const uint32_t length : {0u, 3000u}) {
                SCOPED_TRACE(form.Name() + std::to_string(bits) + " bits, flags " + std::to_string(flags));
                ColourPicture picture(form, 37, 4, 12);
                if (form.IsGrayWord()) picture.LowBit = 1, picture.HighBit = 11;
                if (length > 0) picture.SetLevels(length, 5);
                RGBQUAD palette[256];
                Z_GetBitmapPaletteEntries(&picture, 0, 256, palette);
                std::vector<RGBQUAD> levels(picture.LevelLUT, picture.LevelLUT + length);
                levels.resize(65536);
                std::vector<Bytes> rows;
                Bytes row(Z_CalcConvertSize(37, form.Bits, 37, bits));
                for (int32_t y = 0; y < 4; ++y) {
                    std::memcpy(row.data(), picture.Row(y), picture.BytesPerLine);
                    ASSERT_EQ(Z_ConvertBufferExt(row.data(), 37, form.Bits, bits, form.Order, order,
                                                 form.Bits <= 8                ? palette
                                                 : form.IsGrayWord() && length ? levels.data()
                                                                               : nullptr,
                                                 nullptr, form.IsGrayWord() ? 4 : 0, picture.LowBit,
                                                 picture.HighBit),
                              1);
                    rows.push_back(row);
                }
                Bitmap target;
                ASSERT_EQ(Resolve(picture, &target, bits, flags), 1);
                EXPECT_EQ(target.Order, order);
                EXPECT_EQ(target.Palette, nullptr);
                ASSERT_NO_FATAL_FAILURE(ExpectPixels(target, rows));
            }
}

// Entries that stay, some of them never matched, with a free run at `first`; distinct values.
Palette Slots(uint32_t first, uint32_t count) {
    Palette slots;
    for (uint32_t i = 0; i < 256; ++i)
        slots[i] = i >= first && i < first + count ? Entry(0x112233, 6) : Entry(0x010101 * i, i % 3 == 0);
    return slots;
}

TEST(ColorResolution, KeepsFewColoursExactly) {
    for (const bool inPlace : {false, true})
        for (const auto& [first, count] : {std::pair{0u, 256u}, {20u, 150u}, {10u, 100u}}) {
            ColourPicture picture(Bgr24, 60, 20, 3, 100);
            std::map<uint64_t, int> colours;
            std::vector<uint64_t> pixels;
            for (int32_t y = 0; y < 20; ++y)
                for (int32_t x = 0; x < 60; ++x)
                    pixels.push_back(picture.Pixel(y, x)), ++colours[pixels.back()];
            ASSERT_EQ(colours.size(), 100u);
            Palette slots = Slots(first, count);
            Bitmap target;
            BitmapHandle& result = inPlace ? static_cast<BitmapHandle&>(picture) : target;
            ASSERT_EQ(Resolve(picture, &result, 8, 0x010000, slots.data()), 1);
            EXPECT_EQ(result.BitsPerPixel, 8);
            EXPECT_EQ(result.ColorsUsed, 256 - (count - 100));
            const Palette palette = PaletteOf(result);
            auto colour = colours.begin();
            for (uint32_t i = first; i < first + 100; ++i, ++colour)
                ASSERT_EQ(Rgb(palette[i]), colour->first) << "sorted";
            EXPECT_EQ(std::memcmp(slots.data(), palette.data(), (first + 100) * 4), 0)
                << "the caller's array";
            EXPECT_EQ(slots[first + count - 1].rgbReserved, count == 100 ? 0 : 6) << "left over";
            const Bytes rows = Rows(result);
            for (int32_t i = 0; i < 1200; ++i)
                ASSERT_EQ(Rgb(palette[PixelOf(result, rows, i / 60, i % 60)]),
                          pixels[static_cast<size_t>(i)]);
        }
}

// Undithered, every colour goes to the entry of its box; with a table that is searched, to the nearest one.
TEST(ColorResolution, MapsEveryColourToItsBox) {
    for (const bool few : {false, true})
        for (const auto& [first, count] : {std::pair{0u, 256u}, {0u, 64u}, {77u, 100u}, {250u, 6u}}) {
            ColourPicture picture(Bgr24, 100, 40, 9);
            const auto key = [&](int32_t y, int32_t x) {
                const uint64_t pixel = picture.Pixel(y, x);
                return static_cast<uint16_t>((pixel >> 9 & 0x7C00) | (pixel >> 6 & 0x3E0) |
                                             (pixel >> 3 & 31));
            };
            PaletteBuilder builder(count, few);
            for (int32_t i = 0; i < 4000; ++i) {
                const uint16_t one = key(i / 100, i % 100);
                builder.histogram().Add(&one, 1);
            }
            Palette built{};
            builder.Build(built.data());
            uint32_t* table = builder.TakeMatchTable();
            Palette slots = Slots(first, count);
            Bitmap target;
            ASSERT_EQ(Resolve(picture, &target, 8, few ? 0x400 : 0, slots.data()), 1);
            const Palette palette = PaletteOf(target);
            EXPECT_EQ(std::memcmp(&palette[first], built.data(), count * 4), 0);
            EXPECT_EQ(std::memcmp(palette.data(), slots.data(), sizeof palette), 0);
            const Bytes rows = Rows(target);
            for (int32_t i = 0; i < 4000; ++i)
                ASSERT_EQ(PixelOf(target, rows, i / 100, i % 100), first + table[key(i / 100, i % 100)] - 1);
            Z_Free(table);

            slots = Slots(first, count);
            Bitmap searched;
            ASSERT_EQ(Resolve(picture, &searched, 8, few ? 0x600 : 0x200, slots.data()), 1);
            ASSERT_NO_FATAL_FAILURE(ExpectPixels(searched, Dithered(picture, palette.data(), 256, 8, 0)));
        }
}

// Free entries in two runs: all are filled, and pixels are dithered although no colour is lost.
TEST(ColorResolution, FillsScatteredEntries) {
    ColourPicture picture(Bgr24, 30, 10, 3, 50);
    Palette slots = Slots(0, 40);
    for (uint32_t i = 100; i < 130; ++i)
        slots[i] = Entry(0, 2);
    Bitmap target;
    ASSERT_EQ(Resolve(picture, &target, 8, 0, slots.data()), 1);
    EXPECT_EQ(target.ColorsUsed, 236u);
    const Palette palette = PaletteOf(target);
    EXPECT_LT(Rgb(palette[39]), Rgb(palette[100]));
    EXPECT_EQ(Rgb(palette[110]), 0x020202u);
    EXPECT_EQ(palette[110].rgbReserved, 2);
    ASSERT_NO_FATAL_FAILURE(ExpectPixels(target, Dithered(picture, palette.data(), 236, 8, 0)));
}

TEST(ColorResolution, TakesThePaletteOfAnIndexedSource) {
    ColourPicture picture({4, 0}, 33, 4, 3);
    Bitmap target;
    ASSERT_EQ(Resolve(picture, &target, 8, 2, nullptr, 100), 1);
    EXPECT_EQ(target.ColorsUsed, 16u);
    EXPECT_EQ(std::memcmp(PaletteOf(target).data(), PaletteOf(picture).data(), 64), 0) << "as it stands";
}

TEST(ColorResolution, RefusesBeforeAnythingIsTouched) {
    ColourPicture picture(Bgr24, 8, 8, 3), gray({16, 2}, 8, 8, 3);
    Bitmap empty;
    Palette given = Slots(0, 256);
    HPALETTE handle = Z_CreatePalette(given.data(), 256);
    constexpr uint32_t locked = 1u << Z_SUPPORT_EXTGRAY;
    const struct {
        BitmapHandle* Source;
        int32_t Bits;
        uint32_t Flags;
        bool WithPalette, WithHandle;
        uint32_t Locks;
        ReturnCode Result;
    } cases[] = {
        {nullptr, 8, 0, false, false, 0, -13},       {&empty, 8, 0, false, false, 0, -13},
        {&picture, 8, 0, true, true, 0, -13},        {&picture, 24, 0, true, true, 0, -13},
        {&picture, 0, 0, false, false, 0, -13},      {&picture, 13, 0, false, false, 0, -13},
        {&picture, 7, 0x40, false, false, 0, -13},   {&picture, 8, 0x10, false, false, 0, -13},
        {&picture, 8, 0x20, true, false, 0, -13},    {&picture, 8, 0x100, true, false, 0, -13},
        {&picture, 8, 0x11, true, false, 0, -13},    {&picture, 8, 0x102, false, true, 0, -13},
        {&picture, 8, 0x210, true, false, 0, -13},   {&picture, 12, 0, false, false, 0, -13},
        {&picture, 24, 0x80, false, false, 0, -13},  {&picture, 12, 0, false, false, locked, -804},
        {&gray, 0, 0, true, true, locked, -804},     {&picture, 16, 0x80, false, false, locked, -804},
        {&picture, 8, 0x80, false, false, locked, 1}};
    for (const auto& c : cases) {
        Bitmap target;
        std::memset(static_cast<BitmapHandle*>(&target), 0x5A, sizeof(BitmapHandle));
        Z_SetSupportLocks(c.Locks);
        EXPECT_EQ(Z_ColorResBitmap(c.Source, &target, c.Bits, c.Flags, c.WithPalette ? given.data() : nullptr,
                                   c.WithHandle ? handle : nullptr, 0, nullptr, 0),
                  c.Result)
            << c.Bits << " bits, flags " << c.Flags;
        Z_SetSupportLocks(0);
        EXPECT_EQ(target.Width, c.Result == 1 ? 8 : 0x5A5A5A5A);
        if (c.Result != 1) std::memset(static_cast<BitmapHandle*>(&target), 0, sizeof(BitmapHandle));
    }
    platform::DeleteObject(handle);
}

struct RowLog {
    int StopAt = 1 << 30;
    std::vector<Bytes> Rows = {};
    const BitmapHandle* Target = nullptr;

    static ReturnCode Z_CALL Take(BitmapHandle* target, void* row, int32_t lines, intptr_t self) {
        auto& log = *reinterpret_cast<RowLog*>(self);
        const auto* bytes = static_cast<const uint8_t*>(row);
        log.Rows.emplace_back(bytes, bytes + target->BytesPerLine);
        log.Target = target;
        EXPECT_EQ(lines, 1);
        return static_cast<int>(log.Rows.size()) == log.StopAt ? -77 : 1;
    }
};

TEST(ColorResolution, StreamsRowsWithoutATarget) {
    for (const auto& [bits, flags] : {std::pair{4, 0x010000u}, {8, 0x200u}, {24, 0u}}) {
        ColourPicture picture({32, 1}, 23, 7, 3);
        RowLog streamed, seen;
        ASSERT_EQ(Z_ColorResBitmap(&picture, nullptr, bits, flags, nullptr, nullptr, 0, RowLog::Take,
                                   reinterpret_cast<intptr_t>(&streamed)),
                  1);
        Bitmap target;
        ASSERT_EQ(Z_ColorResBitmap(&picture, &target, bits, flags, nullptr, nullptr, 0, RowLog::Take,
                                   reinterpret_cast<intptr_t>(&seen)),
                  1);
        EXPECT_EQ(seen.Target, &target);
        EXPECT_EQ(streamed.Rows, seen.Rows);
        Bytes all;
        for (const Bytes& row : seen.Rows)
            all.insert(all.end(), row.begin(), row.end());
        EXPECT_EQ(all, Rows(target));
    }
}

// By the callback for rows and by that for the status, at each of their calls.
TEST(ColorResolution, LeavesTheSourceWholeWhenStopped) {
    for (const bool inPlace : {false, true})
        for (const auto& [bits, flags] : {std::pair{8, 0x010000u}, {24, 0u}})
            for (size_t stop = 1; stop <= 12; ++stop) {
                ColourPicture picture({16, 1}, 9, 5, 3, 40);
                picture.DitheringMethod = 3;
                const BitmapHandle before = picture;
                const Bytes rows = Rows(picture);
                Bitmap own;
                BitmapHandle& target = inPlace ? static_cast<BitmapHandle&>(picture) : own;
                const bool byStatus = stop <= 6; // 0 and five rows
                RowLog log{byStatus ? 1 << 30 : static_cast<int>(stop) - 6};
                const StatusLog status(byStatus ? stop : 0);
                EXPECT_EQ(Z_ColorResBitmap(&picture, &target, bits, flags, nullptr, nullptr, 0, RowLog::Take,
                                           reinterpret_cast<intptr_t>(&log)),
                          byStatus    ? -29
                          : stop < 12 ? -77
                                      : 1);
                if (stop < 6) {
                    EXPECT_EQ(status.Percents.back(), 20 * static_cast<int>(stop - 1));
                }
                if (stop == 12) continue;
                EXPECT_EQ(Rows(picture), rows);
                EXPECT_EQ(picture.Addr, before.Addr);
                EXPECT_EQ(picture.BitsPerPixel, 16);
                EXPECT_EQ(picture.DitheringMethod, 3);
                EXPECT_EQ(picture.DitherData, nullptr);
                if (!inPlace) {
                    EXPECT_FALSE(IsAllocated(&own));
                    EXPECT_EQ(own.Palette, nullptr);
                }
            }
}

TEST(ColorResolution, PassesOnWhatIsNotColour) {
    ColourPicture picture(Bgr24, 4, 4, 3);
    ASSERT_EQ(Z_SetBitmapMemoryInfo(&picture, MemoryDisk, 0, 0, 0, 0, 0, Z_MEMORY_INFO_TYPE), 1);
    picture.ViewPerspective = 4, picture.XResolution = 72, picture.YResolution = 73,
    picture.PlaybackDelay = 40;
    picture.Flags |= flag::RegionUnclipped;
    static int region;
    picture.Region = &region;
    const DispatchTable before = dispatch;
    dispatch.CopyBitmapRegion = [](BitmapHandle* to, BitmapHandle* from, int32_t dx, int32_t dy) {
        EXPECT_EQ(from->Region, &region);
        EXPECT_TRUE(dx == 0 && dy == 0);
        to->Region = &region;
        return ReturnCode{region++ == 0 ? 1 : -66};
    };
    Bitmap target;
    EXPECT_EQ(Resolve(picture, &target, 8, 1), 1);
    EXPECT_TRUE(HasFlag(target, flag::Disk) && HasFlag(target, flag::RegionUnclipped));
    EXPECT_EQ(target.Region, &region);
    EXPECT_EQ(
        std::tuple(target.ViewPerspective, target.XResolution, target.YResolution, target.PlaybackDelay),
        std::tuple(4, 72, 73, 40));
    Bitmap refused;
    EXPECT_EQ(Resolve(picture, &refused, 8, 1), -66);
    EXPECT_FALSE(IsAllocated(&refused));
    dispatch = before;
    picture.Region = target.Region = refused.Region = nullptr;
}

// A screen of 256 colours, sixteen of them its own.
struct PaletteScreen {
#ifdef _WIN32
    static constexpr uint32_t Statics = 0;
#else
    static constexpr uint32_t Statics = 16;
    PaletteScreen() {
        for (uint32_t i = 0; i < 256; ++i)
            Colours[i] = Entry(0x800000 + i);
        SurfaceDescription description{};
        description.StructSize = sizeof description;
        description.Width = description.Height = 1;
        description.BitsPerPixel = 8;
        description.Pitch = 4;
        description.Bits = Pixels;
        description.Colors = Colours;
        description.ColorCount = 256;
        description.StaticColors = Statics;
        EXPECT_EQ(Z_CreateSurface(&description, &Context), Z_SUCCESS);
        Z_SetScreenSurface(Context);
    }
    ~PaletteScreen() {
        Z_DeleteSurface(Context);
    }
    HDC Context = nullptr;
    uint8_t Pixels[4] = {};
    RGBQUAD Colours[256];
#endif
};

TEST(ColorResolution, KeepsStaticColours) {
    const PaletteScreen screen;
    constexpr uint32_t side = PaletteScreen::Statics / 2;
    ColourPicture picture(Bgr24, 50, 50, 3);
    Bitmap target;
    ASSERT_EQ(Resolve(picture, &target, 7, COLORRES_SYSTEM_COLORS), 1);
    EXPECT_EQ(target.ColorsUsed, 128u);
    const Palette palette = PaletteOf(target);
    for (uint32_t i = 0; i < side; ++i) {
        EXPECT_EQ(Rgb(palette[i]), 0x800000 + i);
        EXPECT_EQ(Rgb(palette[127 - i]), 0x8000FF - i);
    }
    EXPECT_LT(Rgb(palette[side]), Rgb(palette[127 - side]));
}

TEST(ColorResolution, ReadsPaletteObjects) {
    const PaletteScreen screen;
    const bool hasStatics = PaletteScreen::Statics > 0;
    // Explicit entries hold a place in their red and green bytes.
    const RGBQUAD entries[] = {Entry(0x111111),    Entry(0x222222, 1), Entry(0x333333, 4), Entry(0x020000, 2),
                               Entry(0x090000, 2), Entry(0xFA0000, 2), Entry(0x020100, 2)};
    HPALETTE handle = Z_CreatePalette(entries, 7);
    ColourPicture picture(Bgr24, 50, 50, 3);
    Bitmap target, asUser;
    ASSERT_EQ(Z_ColorResBitmap(&picture, &target, 4, 0, nullptr, handle, 10, nullptr, 0), 1);
    const Palette palette = PaletteOf(target);
    EXPECT_EQ(target.ColorsUsed, 10u);
    EXPECT_EQ(Rgb(palette[0]), 0x111111u);
    EXPECT_EQ(Rgb(palette[1]), 0x222222u);
    EXPECT_EQ(Rgb(palette[2]), 0x333333u);
    EXPECT_EQ(Rgb(palette[3]) == 0x800002, hasStatics);
    EXPECT_EQ(Rgb(palette[5]) == 0x8000FA, hasStatics);
    EXPECT_NE(Rgb(palette[4]), 0x090000u) << "no static colour, so it is free";
    EXPECT_NE(Rgb(palette[6]), 0x020100u);

    ASSERT_EQ(Z_ColorResBitmap(&picture, &asUser, 4, COLORRES_HANDLE_AS_USER, nullptr, handle, 0, nullptr, 0),
              1);
    EXPECT_EQ(asUser.ColorsUsed, 16u);
    EXPECT_EQ(PaletteOf(asUser)[15].rgbReserved, 2) << "entries that the object does not have";
    platform::DeleteObject(handle);
}

struct List {
    List() { EXPECT_EQ(Z_CreateBitmapList(&Handle), 1); }
    ~List() { Z_DestroyBitmapList(Handle); }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    void Add(PixelForm form, uint64_t seed, int values) {
        ColourPicture picture(form, 40, 10, seed, values);
        Z_InsertBitmapListItem(Handle, 1000, &picture);
        std::memset(static_cast<BitmapHandle*>(&picture), 0, sizeof(BitmapHandle));
    }
    BitmapHandle Item(uint32_t index) const {
        BitmapHandle item{};
        EXPECT_EQ(Z_GetBitmapListItem(Handle, index, &item), 1);
        return item;
    }
    ReturnCode Resolve(int32_t bits, uint32_t flags, RGBQUAD* palette = nullptr, uint32_t colors = 0) const {
        return Z_ColorResBitmapList(Handle, bits, flags, palette, nullptr, colors);
    }
    BitmapList Handle = nullptr;
};

TEST(ColorResolutionOfLists, SharesOnePalette) {
    for (const uint32_t first : {0u, 30u}) {
        uint32_t mark = 0;
        SwapMatchTable(&mark);
        List list;
        PaletteBuilder builder(64, false);
        constexpr PixelForm forms[] = {Bgr24, {8, 0}, {16, 2}, {64, 0}};
        for (uint32_t i = 0; i < 4; ++i) {
            list.Add(forms[i], 5, 4000);
            BitmapHandle item = list.Item(i);
            ASSERT_EQ(builder.histogram().Add(item), 1);
        }
        Palette built{};
        builder.Build(built.data());
        Palette slots = Slots(first, 64);
        ASSERT_EQ(list.Resolve(8, 0, slots.data(), 128), 1);
        for (uint32_t i = 0; i < 4; ++i) {
            const BitmapHandle item = list.Item(i);
            EXPECT_EQ(item.BitsPerPixel, 8);
            EXPECT_EQ(item.ColorsUsed, 128u);
            EXPECT_EQ(std::memcmp(PaletteOf(item).data(), slots.data(), 128 * 4), 0);
        }
        EXPECT_EQ(std::memcmp(&slots[first], built.data(), 64 * 4), 0);
        EXPECT_EQ(SwapMatchTable(nullptr), &mark);
    }
}

TEST(ColorResolutionOfLists, MergesPalettesThatFit) {
    List list;
    list.Add({4, 0}, 5, 16), list.Add({3, 0}, 6, 8);
    std::map<uint32_t, int> colours;
    for (uint32_t item = 0; item < 2; ++item)
        for (uint32_t i = 0; i < (item == 0 ? 16u : 8u); ++i)
            ++colours[Rgb(PaletteOf(list.Item(item))[i])];
    for (const uint32_t room : {static_cast<uint32_t>(colours.size()), 200u, 5u}) {
        uint32_t count = room, *table = nullptr;
        int32_t quantised = 7;
        Palette palette;
        palette.fill(Entry(1, 1));
        ASSERT_EQ(Z_CreateBitmapListOptPal(list.Handle, palette.data(), &count, &table, &quantised), 1);
        const bool fits = room >= colours.size();
        EXPECT_EQ(quantised, fits ? 0 : 1);
        EXPECT_EQ(table == nullptr, fits);
        EXPECT_EQ(count, fits ? colours.size() : 5);
        Z_FreeUserMatchTable(table);
        if (!fits) continue;
        auto colour = colours.begin();
        for (uint32_t i = 0; i < count; ++i, ++colour)
            EXPECT_EQ(Rgb(palette[i]), colour->first);
    }
    ASSERT_EQ(list.Resolve(8, 2), 1);
    EXPECT_EQ(list.Item(1).ColorsUsed, colours.size());
}

TEST(ColorResolutionOfLists, StopsAtTheFirstItemThatFails) {
    List list;
    EXPECT_EQ(list.Resolve(8, 0), -2);
    EXPECT_EQ(list.Resolve(8, 1), 1);
    EXPECT_EQ(list.Resolve(24, 0), 1);
    EXPECT_EQ(list.Resolve(9, 0), -13);
    list.Add(Bgr24, 1, 9);
    Z_InsertBitmapListItem(list.Handle, 1, nullptr);
    list.Add(Bgr24, 1, 9);
    EXPECT_EQ(list.Resolve(8, 0), -2);
    EXPECT_EQ(list.Item(0).BitsPerPixel, 24);
    EXPECT_EQ(list.Resolve(8, 1), -13);
    EXPECT_EQ(list.Item(0).BitsPerPixel, 8);
    EXPECT_EQ(list.Item(2).BitsPerPixel, 24);
    EXPECT_EQ(list.Resolve(8, 0x10), -13) << "without a palette";
    uint32_t count = 5;
    int32_t quantised;
    RGBQUAD palette[5];
    EXPECT_EQ(Z_CreateBitmapListOptPal(nullptr, palette, &count, nullptr, &quantised), -13);
    EXPECT_EQ(Z_CreateBitmapListOptPal(List().Handle, palette, &count, nullptr, &quantised), -2);
}

} // namespace
} // namespace zkr::test
