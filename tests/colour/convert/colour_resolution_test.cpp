// Colour resolution: which palette and which pixels come out, against rows dithered and converted one by one.
#include "colour/palettes/fixed_palettes.h"
#include "colour/pictures.h"
#include "colour/quantise/palette_builder.h"
#include "core/predicates.h"
#include "core/test_regions.h"
#include "core/thread_settings.h"
#include "platform/graphics.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/convert.h"
#include "zkr13n/dither.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"

#ifndef _WIN32
#include "support/screen.h"
#endif

#include <array>
#include <set>

namespace zkr::test {
namespace {

constexpr PictureForm Bgr24{24, Z_ORDER_BGR};

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

bool SameEntries(const RGBQUAD* a, const RGBQUAD* b, size_t count) {
    return std::memcmp(a, b, count * sizeof(RGBQUAD)) == 0;
}

ReturnCode Resolve(BitmapHandle& source, BitmapHandle* target, int32_t bits, uint32_t flags,
                   RGBQUAD* palette = nullptr, uint32_t colors = 0) {
    return Z_ColorResBitmap(&source, target, bits, flags, palette, nullptr, colors, nullptr, 0);
}

// rowOf(y) gives the pixels that are to be there.
template <typename RowOf> void ExpectPixels(BitmapHandle& got, RowOf rowOf) {
    Bytes row(got.BytesPerLine);
    for (int32_t y = 0; y < got.Height; ++y) {
        const Bytes wanted = rowOf(y);
        Z_GetBitmapRow(&got, row.data(), y, got.BytesPerLine);
        for (int32_t x = 0; x < got.Width; ++x)
            ASSERT_EQ(ReadPixel(row.data(), got.BitsPerPixel, x),
                      ReadPixel(wanted.data(), got.BitsPerPixel, x))
                << y << ", " << x;
    }
}

// Pixels are those of a dithering run.
void ExpectDithered(BitmapHandle& target, ColourPicture& picture, const RGBQUAD* palette, uint32_t flags) {
    picture.DitheringMethod = static_cast<int32_t>(flags >> 16);
    ASSERT_EQ(Z_StartDitheringExt(&picture, palette, target.ColorsUsed, target.BitsPerPixel, nullptr), 1);
    ExpectPixels(target, [&](int32_t y) {
        Bytes row(target.BytesPerLine);
        Z_DitherLine(&picture, picture.Row(y), row.data());
        return row;
    });
    Z_StopDithering(&picture);
}

// Palettes that are there before, from every form.
TEST(ColorResolution, DithersToPalettesThatAreGiven) {
    Palette own = PaletteOf(ColourPicture({8, 0}, 1, 1, 99));
    const RGBQUAD* const cube = CubePalette216.data();
    const struct {
        int32_t Bits;
        uint32_t Flags, Colors;
        const RGBQUAD* Expected;
        uint32_t ExpectedColors;
    } choices[] = {{1, 0x010001, 0, FixedPalette(1).data(), 2},
                   {4, 1, 5, FixedPalette(4).data(), 16},
                   {7, 0x41, 0, FixedPalette(7).data(), 128},
                   {8, 0x070041, 0, cube, 256},
                   {8, 0x40, 7, cube, 256},
                   {8, 0x10, 200, own.data(), 200},
                   {5, 0x030030, 33, own.data(), 32},
                   {2, 0x94, 3, own.data(), 3}};
    for (const PictureForm form : AllForms)
        for (const auto& choice : choices) {
            SCOPED_TRACE(form.Name() + std::to_string(choice.Bits) + " bits, flags " +
                         std::to_string(choice.Flags));
            ColourPicture picture(form, 37, 5, 11);
            Bitmap target;
            Palette given = own;
            ASSERT_EQ(Resolve(picture, &target, choice.Bits, choice.Flags,
                              choice.Expected == own.data() ? given.data() : nullptr, choice.Colors),
                      1);
            EXPECT_EQ(target.ColorsUsed, choice.ExpectedColors);
            EXPECT_TRUE(SameEntries(PaletteOf(target).data(), choice.Expected, choice.ExpectedColors));
            ExpectDithered(target, picture, choice.Expected, choice.Flags);
        }
}

// Rows may be taken together, which must not show.
TEST(ColorResolution, DithersBitmapsOfAllSizes) {
    Palette own = PaletteOf(ColourPicture({8, 0}, 1, 1, 99));
    const struct {
        int32_t Bits;
        uint32_t Flags;
        const RGBQUAD* Expected;
    } choices[] = {{1, 1, FixedPalette(1).data()}, {2, 1, FixedPalette(2).data()},
                   {5, 1, FixedPalette(5).data()}, {8, 0x40, CubePalette216.data()},
                   {3, 0x10, own.data()},          {8, 0x10, own.data()}};
    uint64_t turn = 0;
    for (const int32_t width : {1, 2, 3, 5, 7, 9, 40, 128, 129, 131, 135, 136, 511, 520, 1100})
        for (const int32_t height : {1, 2, 3, 4, 5, 8, 11})
            for (const auto& choice : choices)
                for (uint32_t method = DitherFloydSteinberg; method <= DitherJarvis; ++method) {
                    const PictureForm form = AllForms[turn++ % std::size(AllForms)];
                    SCOPED_TRACE(form.Name() + std::to_string(width) + " x " + std::to_string(height) +
                                 " to " + std::to_string(choice.Bits) + " bits, method " +
                                 std::to_string(method));
                    ColourPicture picture(form, width, height, turn);
                    Bitmap target;
                    const uint32_t flags = choice.Flags | method << 16;
                    ASSERT_EQ(Resolve(picture, &target, choice.Bits, flags,
                                      choice.Expected == own.data() ? own.data() : nullptr),
                              1);
                    ExpectDithered(target, picture, choice.Expected, flags);
                    if (HasFatalFailure()) return;
                }
}

TEST(ColorResolution, ConvertsAboveEightBits) {
    constexpr struct {
        int32_t Bits;
        uint32_t Flags;
        int32_t Order;
    } targets[] = {{16, 0x37B, 0}, {16, 0x484, 2}, {16, 4, 1}, {12, 0x80, 2},
                   {24, 4, 1},     {32, 4, 1},     {64, 0, 0}};
    for (const PictureForm form : AllForms)
        for (const auto& [bits, flags, order] : targets)
            for (const uint32_t length : {0u, 3000u}) {
                SCOPED_TRACE(form.Name() + std::to_string(bits) + " bits, flags " + std::to_string(flags));
                ColourPicture picture(form, 37, 4, 12);
                if (form.IsGrayWord()) picture.LowBit = 1, picture.HighBit = 11;
                if (length > 0) picture.SetLevels(length, 5);
                std::vector<RGBQUAD> levels(picture.LevelLUT, picture.LevelLUT + length);
                levels.resize(65536);
                const Palette palette = PaletteOf(picture);
                const RGBQUAD* colours = form.Bits <= 8                    ? palette.data()
                                         : form.IsGrayWord() && length > 0 ? levels.data()
                                                                           : nullptr;
                Bitmap target;
                ASSERT_EQ(Resolve(picture, &target, bits, flags), 1);
                EXPECT_EQ(target.Order, order);
                EXPECT_EQ(target.MaxVal, order == Z_ORDER_GRAY ? (1 << bits) - 1 : 0);
                Bytes row(Z_CalcConvertSize(37, form.Bits, 37, bits)); // whose alpha passes from row to row
                ExpectPixels(target, [&](int32_t y) {
                    std::memcpy(row.data(), picture.Row(y), picture.BytesPerLine);
                    EXPECT_EQ(Z_ConvertBufferExt(row.data(), 37, form.Bits, bits, form.Order, order, colours,
                                                 nullptr, form.IsGrayWord() ? 4 : 0, picture.LowBit,
                                                 picture.HighBit),
                              1);
                    return row;
                });
            }
}

// Entries that stay, some of them never matched, with a free run at `first`.
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
            const Bytes before = Rows(picture);
            std::set<uint32_t> colours;
            for (size_t i = 0; i < 1200; ++i)
                colours.insert(static_cast<uint32_t>(ReadPixel(before.data(), 24, static_cast<int>(i))));
            Palette slots = Slots(first, count);
            Bitmap other;
            BitmapHandle& target = inPlace ? static_cast<BitmapHandle&>(picture) : other;
            ASSERT_EQ(Resolve(picture, &target, 8, 0x010000, slots.data()), 1);
            EXPECT_EQ(target.ColorsUsed, 256 - (count - 100));
            const Palette palette = PaletteOf(target);
            std::set<uint32_t>::iterator colour = colours.begin();
            for (uint32_t i = first; i < first + 100; ++i, ++colour)
                ASSERT_EQ(Rgb(palette[i]), *colour) << "sorted";
            EXPECT_TRUE(SameEntries(slots.data(), palette.data(), first + 100)) << "the caller's array";
            const Bytes rows = Rows(target);
            for (size_t i = 0; i < 1200; ++i)
                ASSERT_EQ(Rgb(palette[rows[i]]), ReadPixel(before.data(), 24, static_cast<int>(i)));
        }
}

TEST(ColorResolution, TakesThePaletteOfAnIndexedSource) {
    ColourPicture picture({4, 0}, 33, 4, 3);
    Bitmap target;
    ASSERT_EQ(Resolve(picture, &target, 8, 2, nullptr, 16), 1);
    EXPECT_TRUE(SameEntries(PaletteOf(target).data(), PaletteOf(picture).data(), 16)) << "as it stands";
}

// Undithered, every colour goes to the entry of its box.
TEST(ColorResolution, MapsEveryColourToItsBox) {
    for (const bool few : {false, true})
        for (const auto& [first, count] : {std::pair{0u, 256u}, {0u, 64u}, {77u, 100u}, {250u, 6u}}) {
            ColourPicture picture({16, Z_ORDER_BGR}, 100, 40, 9);
            PaletteBuilder builder(count, few);
            ASSERT_EQ(builder.Counts().Add(picture), Z_SUCCESS);
            Palette built{};
            builder.Build(built.data());
            uint32_t* table = builder.TakeMatchTable();
            Palette slots = Slots(first, count);
            Bitmap target;
            ASSERT_EQ(Resolve(picture, &target, 8, few ? 0x400 : 0, slots.data()), 1);
            EXPECT_TRUE(SameEntries(&slots[first], built.data(), count));
            EXPECT_TRUE(SameEntries(PaletteOf(target).data(), slots.data(), 256));
            ExpectPixels(target, [&](int32_t y) {
                Bytes row;
                for (int32_t x = 0; x < 100; ++x)
                    row.push_back(static_cast<uint8_t>(first + table[picture.Pixel(y, x) & 0x7FFF] - 1));
                return row;
            });
            Z_Free(table);
        }
}

TEST(ColorResolution, RefusesBeforeAnythingIsTouched) {
    ColourPicture picture(Bgr24, 8, 8, 3), gray({16, 2}, 8, 8, 3);
    Bitmap empty;
    Palette given = Slots(0, 256);
    HPALETTE handle = Z_CreatePalette(given.data(), 256);
    constexpr int32_t None = 0, Entries = 1, Object = 2, Both = 3;
    const struct {
        BitmapHandle* Source;
        int32_t Bits;
        uint32_t Flags;
        int32_t Palettes;
        bool Locked;
        ReturnCode Result;
    } cases[] = {{nullptr, 8, 0, None, false, -13},    {&empty, 8, 0, None, false, -13},
                 {&picture, 24, 0, Both, false, -13},  {&picture, 13, 0, None, false, -13},
                 {&picture, 7, 64, None, false, -13},  {&picture, 8, 0x10, None, false, -13},
                 {&picture, 8, 32, None, false, -13},  {&picture, 8, 0x100, Entries, false, -13},
                 {&picture, 8, 17, None, false, -13},  {&picture, 8, 0x102, Object, false, -13},
                 {&picture, 12, 0, None, false, -13},  {&picture, 24, 0x80, None, false, -13},
                 {&picture, 12, 0, None, true, -804},  {&gray, 0, 0, Both, true, -804},
                 {&picture, 16, 128, None, true, -804}};
    for (const auto& c : cases) {
        BitmapHandle target, same;
        std::memset(&target, 0x5A, sizeof target);
        std::memset(&same, 0x5A, sizeof same);
        Z_SetSupportLocks(c.Locked ? 1u << Z_SUPPORT_EXTGRAY : 0);
        EXPECT_EQ(Z_ColorResBitmap(c.Source, &target, c.Bits, c.Flags,
                                   c.Palettes & Entries ? given.data() : nullptr,
                                   c.Palettes & Object ? handle : nullptr, 0, nullptr, 0),
                  c.Result)
            << c.Bits << " bits, flags " << c.Flags;
        EXPECT_EQ(std::memcmp(&target, &same, sizeof same), 0);
    }
    Z_SetSupportLocks(0);
    platform::DeleteObject(handle);
}

struct RowLog {
    size_t StopAt = 0;
    std::vector<Bytes> Rows = {};

    static ReturnCode Z_CALL Take(BitmapHandle* target, void* row, int32_t lines, intptr_t self) {
        auto& log = *reinterpret_cast<RowLog*>(self);
        EXPECT_EQ(lines, 1);
        log.Rows.emplace_back(static_cast<uint8_t*>(row), static_cast<uint8_t*>(row) + target->BytesPerLine);
        return log.Rows.size() == log.StopAt ? -77 : 1;
    }
    ReturnCode Resolve(BitmapHandle& source, BitmapHandle* target, int32_t bits, uint32_t flags) {
        return Z_ColorResBitmap(&source, target, bits, flags, nullptr, nullptr, 0, Take,
                                reinterpret_cast<intptr_t>(this));
    }
};

TEST(ColorResolution, StreamsTheRowsOfTheTarget) {
    for (const auto& [bits, flags] : {std::pair{4, 0x010000u}, {8, 0x200u}, {24, 0u}}) {
        ColourPicture picture({32, 1}, 23, 7, 3);
        RowLog log;
        Bitmap target;
        ASSERT_EQ(log.Resolve(picture, nullptr, bits, flags), 1);
        ASSERT_EQ(Resolve(picture, &target, bits, flags), 1);
        ExpectPixels(target, [&](int32_t y) { return log.Rows[static_cast<size_t>(y)]; });
    }
}

// By the status callback at each of its six calls, and by the callback for rows.
TEST(ColorResolution, LeavesTheSourceWholeWhenStopped) {
    for (const bool inPlace : {false, true})
        for (const auto& [bits, flags] : {std::pair{8, 0x010000u}, {1, 0x010001u}, {24, 0u}})
            for (size_t stop = 1; stop <= 11; ++stop) {
                ColourPicture picture({16, 1}, 9, 5, 3, 40);
                picture.DitheringMethod = 3;
                RegionHandle ofTheCaller{}; // a dithering run and a region that selects nothing
                picture.DitherData = picture.Region = &ofTheCaller;
                BitmapHandle before = picture, other{};
                const Bytes rows = Rows(picture);
                BitmapHandle& target = inPlace ? static_cast<BitmapHandle&>(picture) : other;
                RowLog log{stop <= 6 ? 0 : stop - 6};
                const StatusLog status(stop <= 6 ? stop : 0);
                EXPECT_EQ(log.Resolve(picture, &target, bits, flags), stop <= 6 ? -29 : -77);
                EXPECT_EQ(status.Seen.back(), 20 * (static_cast<int>(stop <= 6 ? stop : stop - 6) - 1));
                EXPECT_EQ(Rows(picture), rows);
                picture.CurrentRow = before.CurrentRow, picture.CurrentRowOffset = before.CurrentRowOffset;
                EXPECT_EQ(std::memcmp(static_cast<BitmapHandle*>(&picture), &before, sizeof before), 0);
                EXPECT_FALSE(IsAllocated(&other) || other.Palette != nullptr);
                picture.Region = nullptr;
            }
}

TEST(ColorResolution, PassesOnWhatIsNotColour) {
    const RegionSlots slots;
    ColourPicture picture(Bgr24, 4, 4, 3);
    ASSERT_EQ(Z_SetBitmapMemoryInfo(&picture, MemoryDisk, 0, 0, 0, 0, 0, Z_MEMORY_INFO_TYPE), 1);
    picture.ViewPerspective = 4, picture.XResolution = 72, picture.YResolution = 73,
    picture.PlaybackDelay = 40;
    picture.Flags |= flag::RegionUnclipped;
    RegionSlots::Give(picture, {{1, 1, 3, 3}});
    Bitmap target, refused;
    EXPECT_EQ(Resolve(picture, &target, 8, 1), 1);
    EXPECT_TRUE(HasFlag(target, flag::Disk) && HasFlag(target, flag::RegionUnclipped));
    EXPECT_EQ(RegionSlots::Alive, 2);
    EXPECT_EQ(
        std::tuple(target.ViewPerspective, target.XResolution, target.YResolution, target.PlaybackDelay),
        std::tuple(4, 72, 73, 40));
    RegionSlots::CopyResult = -66;
    EXPECT_EQ(Resolve(picture, &refused, 8, 1), -66);
    EXPECT_FALSE(IsAllocated(&refused));
}

#ifndef _WIN32

// On a screen of 256 colours, sixteen of them its own.
TEST(ColorResolution, KnowsTheColoursOfAPaletteDisplay) {
    const Screen screen(8, 16);
    ColourPicture picture(Bgr24, 50, 50, 3);
    Bitmap target, fromObject, asUser;
    ASSERT_EQ(Resolve(picture, &target, 7, COLORRES_SYSTEM_COLORS), 1);
    EXPECT_EQ(target.ColorsUsed, 128u);
    EXPECT_EQ(Rgb(PaletteOf(target)[7]), 0x07F807u);
    EXPECT_EQ(Rgb(PaletteOf(target)[120]), 0xF80707u);
    EXPECT_NE(Rgb(PaletteOf(target)[8]), 0x08F707u) << "the darkest of the picture";

    // Explicit entries hold a place in their red and green bytes; the fifth and seventh name no static colour.
    const RGBQUAD entries[] = {Entry(0x111111),    Entry(0x222222, 1), Entry(0x333333, 4), Entry(0x020000, 2),
                               Entry(0x090000, 2), Entry(0xFA0000, 2), Entry(0x020100, 2)};
    constexpr uint32_t kept[] = {0x111111, 0x222222, 0x333333, 0x02FD07, 0, 0xFA0507};
    HPALETTE handle = Z_CreatePalette(entries, 7);
    ASSERT_EQ(Z_ColorResBitmap(&picture, &fromObject, 4, 0, nullptr, handle, 10, nullptr, 0), 1);
    EXPECT_EQ(fromObject.ColorsUsed, 10u);
    for (uint32_t i = 0; i < 6; ++i)
        EXPECT_EQ(Rgb(PaletteOf(fromObject)[i]) == kept[i], i != 4) << i;
    EXPECT_NE(Rgb(PaletteOf(fromObject)[6]), 0x020100u);
    ASSERT_EQ(Z_ColorResBitmap(&picture, &asUser, 4, COLORRES_HANDLE_AS_USER, nullptr, handle, 0, nullptr, 0),
              1);
    EXPECT_EQ(asUser.ColorsUsed, 16u);
    EXPECT_EQ(PaletteOf(asUser)[15].rgbReserved, 2) << "entries that the object does not have";
    platform::DeleteObject(handle);
}

#endif

struct List {
    List() { EXPECT_EQ(Z_CreateBitmapList(&Handle), 1); }
    ~List() { Z_DestroyBitmapList(Handle); }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    void Add(PictureForm form, int values) {
        ColourPicture picture(form, 40, 10, 5, values);
        Z_InsertBitmapListItem(Handle, 1000, &picture);
        static_cast<BitmapHandle&>(picture) = {};
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
        for (const PictureForm form : {Bgr24, PictureForm{8, 0}, PictureForm{16, 2}, PictureForm{64, 0}}) {
            list.Add(form, 4000);
            ColourPicture same(form, 40, 10, 5, 4000);
            ASSERT_EQ(builder.Counts().Add(same), Z_SUCCESS);
        }
        Palette built{}, slots = Slots(first, 64);
        builder.Build(built.data());
        ASSERT_EQ(list.Resolve(8, 0, slots.data(), 128), 1);
        EXPECT_TRUE(SameEntries(&slots[first], built.data(), 64));
        for (uint32_t i = 0; i < 4; ++i) {
            EXPECT_EQ(list.Item(i).ColorsUsed, 128u);
            EXPECT_TRUE(SameEntries(PaletteOf(list.Item(i)).data(), slots.data(), 128));
        }
        EXPECT_EQ(SwapMatchTable(nullptr), &mark);
    }
}

TEST(ColorResolutionOfLists, MergesPalettesThatFit) {
    List list;
    list.Add({4, 0}, 16), list.Add({3, 0}, 8);
    std::set<uint32_t> colours;
    for (uint32_t i = 0; i < 24; ++i)
        colours.insert(Rgb(PaletteOf(list.Item(i / 16))[i % 16]));
    const auto all = static_cast<uint32_t>(colours.size());
    for (const uint32_t room : {all, 200u, all - 1}) {
        uint32_t count = room, *table = nullptr;
        int32_t quantised = 7;
        Palette palette;
        ASSERT_EQ(Z_CreateBitmapListOptPal(list.Handle, palette.data(), &count, &table, &quantised), 1);
        EXPECT_EQ(std::tuple(quantised, table != nullptr, count),
                  std::tuple(room < all, room < all, std::min(room, all)));
        Z_FreeUserMatchTable(table);
        for (uint32_t i = 0; i < count && room >= all; ++i)
            EXPECT_EQ(Rgb(palette[i]), *std::next(colours.begin(), i));
    }
    ASSERT_EQ(list.Resolve(8, 2), 1);
    EXPECT_EQ(list.Item(1).ColorsUsed, all);
}

TEST(ColorResolutionOfLists, StopsAtTheFirstItemThatFails) {
    List list;
    EXPECT_EQ(list.Resolve(8, 0), -2);
    EXPECT_EQ(list.Resolve(8, 1), 1);
    EXPECT_EQ(list.Resolve(9, 0), -13);
    list.Add(Bgr24, 9);
    Z_InsertBitmapListItem(list.Handle, 1, nullptr);
    list.Add(Bgr24, 9);
    EXPECT_EQ(list.Resolve(8, 0), -2);
    EXPECT_EQ(list.Item(0).BitsPerPixel, 24);
    EXPECT_EQ(list.Resolve(8, 1), -13);
    EXPECT_EQ(list.Item(0).BitsPerPixel, 8);
    EXPECT_EQ(list.Item(2).BitsPerPixel, 24);
}

} // namespace
} // namespace zkr::test
