// Palettes as objects of the platform and as blocks of a bitmap: contents, codes, and what each call leaves
// alone.
#include "colour/palettes/fixed_palettes.h"
#include "colour/palettes/reference_palettes.h"
#include "platform/faults.h"
#include "platform/graphics.h"
#include "support/seeded.h"
#include "zkr13n/allocation.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>

namespace zkr::test {
namespace {

using Entries = std::vector<RGBQUAD>;

// Entry i is (i, 2 i, 255 - i) with the reserved byte 4 at odd i.
Entries Sample(unsigned count) {
    Entries entries;
    for (unsigned i = 0; i < count; ++i)
        entries.push_back(EntryOf(i, 2 * i, 255 - i, i % 2 * 4));
    return entries;
}

std::vector<uint32_t> Words(const RGBQUAD* entries, size_t count) {
    std::vector<uint32_t> words(count);
    if (count > 0) std::memcpy(words.data(), entries, count * sizeof(RGBQUAD));
    return words;
}
std::vector<uint32_t> Words(const Entries& entries) {
    return Words(entries.data(), entries.size());
}

// Deletes a palette object at the end of the scope.
struct Owned {
    explicit Owned(HPALETTE palette) : Palette(palette) {}
    ~Owned() {
        if (Palette != nullptr) platform::DeleteObject(Palette);
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    operator HPALETTE() const { return Palette; }
    HPALETTE Palette;
};

std::vector<uint32_t> Contents(HPALETTE palette) {
    Entries entries(Z_GetPaletteSize(palette));
    Z_GetPaletteEntries(palette, 0, static_cast<uint32_t>(entries.size()), entries.data());
    return Words(entries);
}

// A record with a palette in either form; nothing but the record is needed.
struct Bitmap : BitmapHandle {
    Bitmap(int bits, bool block, const Entries& entries = {}) : BitmapHandle{} {
        BitsPerPixel = bits;
        Flags = Z_FLAG_ALLOCATED | (block ? uint32_t{Z_FLAG_PALETTE_IS_BLOCK} : 0);
        if (!entries.empty())
            Z_CreateBitmapPalette(this, entries.data(), static_cast<uint32_t>(entries.size()));
    }
    ~Bitmap() { Z_FreeBitmap(this); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    bool IsBlock() const { return (Flags & Z_FLAG_PALETTE_IS_BLOCK) != 0; }
    std::vector<uint32_t> Contents() const {
        Entries entries(256);
        const uint32_t count = Z_GetBitmapPaletteEntries(this, 0, 256, entries.data());
        return Words(entries.data(), count);
    }
};

TEST(PaletteObjects, HoldWhatTheyAreGiven) {
    for (const unsigned count : {1u, 2u, 16u, 256u}) {
        const Entries entries = Sample(count);
        const Owned palette(Z_CreatePalette(entries.data(), count));
        EXPECT_EQ(Z_GetPaletteSize(palette), count);
        EXPECT_EQ(Contents(palette), Words(entries));
        const Owned copy(Z_DupPalette(palette));
        EXPECT_NE(copy.Palette, palette.Palette);
        EXPECT_EQ(Contents(copy), Words(entries));
    }
    const Entries tooMany(257);
    EXPECT_EQ(Z_CreatePalette(tooMany.data(), 257), nullptr);
    EXPECT_EQ(Z_CreatePalette(tooMany.data(), 0), nullptr);
    EXPECT_EQ(Z_GetPaletteSize(nullptr), 0u);
    EXPECT_EQ(Z_DupPalette(nullptr), nullptr);
}

TEST(PaletteObjects, GiveAndTakeRanges) {
    const Entries entries = Sample(5);
    const Owned palette(Z_CreatePalette(entries.data(), 5));
    Entries got(600, EntryOf(1, 2, 3, 4));
    const uint32_t untouched = Words(got)[0];
    EXPECT_EQ(Z_GetPaletteEntries(palette, 3, 600, got.data()), 2u);
    EXPECT_EQ(Words(got.data(), 3), (std::vector{Words(entries)[3], Words(entries)[4], untouched}));
    for (const uint32_t behind : {5u, 0x10000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(Z_GetPaletteEntries(palette, behind, 1, got.data()), 0u);
        EXPECT_EQ(Z_SetPaletteEntries(palette, behind, 1, got.data()), 0u);
    }
    EXPECT_EQ(Z_GetPaletteEntries(nullptr, 0, 1, got.data()), 0u);

    const Entries change = {EntryOf(9, 8, 7, 1), EntryOf(6, 5, 4)};
    EXPECT_EQ(Z_SetPaletteEntries(palette, 1, 2, change.data()), 2u);
    EXPECT_EQ(Z_SetPaletteEntries(palette, 4, 2, change.data()), 1u);
    EXPECT_EQ(Z_SetPaletteEntries(palette, 4, 600, change.data()), 1u) << "nor is what is behind two read";
    EXPECT_EQ(Contents(palette), (std::vector{Words(entries)[0], Words(change)[0], Words(change)[1],
                                              Words(entries)[3], Words(change)[0]}));
    EXPECT_EQ(Z_SetPaletteEntries(nullptr, 0, 1, change.data()), 0u);
}

TEST(FixedPalettes, AreTheSameByEveryRoad) {
    for (int bits = 1; bits <= 8; ++bits) {
        const Entries expected = ReferenceFixedPalette(bits);
        Entries got(expected.size());
        EXPECT_EQ(Z_GetFixedPalette(got.data(), bits), Z_SUCCESS);
        EXPECT_EQ(Words(got), Words(expected)) << bits;
        EXPECT_EQ(Words(Z_IntGetFixedPalette(bits), expected.size()), Words(expected)) << bits;
        EXPECT_EQ(Contents(Owned(Z_CreateFixedPalette(bits))), Words(expected)) << bits;
    }
    // Without bits one road gives a gray ramp and the other black and white.
    Entries ramp(256);
    EXPECT_EQ(Z_GetFixedPalette(ramp.data(), 0), Z_SUCCESS);
    EXPECT_EQ(Words({ramp[77]}), Words({EntryOf(77, 77, 77)}));
    EXPECT_EQ(Contents(Owned(Z_CreateFixedPalette(0))), Words({EntryOf(0, 0, 0), EntryOf(255, 255, 255)}));
    EXPECT_EQ(Z_IntGetFixedPalette(0), nullptr);
    for (const int bits : {-1, 9, 12}) {
        EXPECT_EQ(Z_GetFixedPalette(ramp.data(), bits), Z_ERROR_ARGUMENT);
        EXPECT_EQ(Z_CreateFixedPalette(bits), nullptr);
        EXPECT_EQ(Z_CreateGrayPalette(bits), nullptr);
        EXPECT_EQ(Z_IntGetFixedPalette(bits), nullptr);
    }
    EXPECT_EQ(Words(CubePalette216.data() + 36 * 4 + 6 * 2 + 5, 1), Words({EntryOf(0xCC, 0x66, 0xFF)}));
    EXPECT_EQ(Words(CubePalette216.data() + 215, 2), Words({EntryOf(255, 255, 255), EntryOf(0, 0, 0)}));
}

TEST(GrayPalettes, TruncateTheirLevels) {
    Entries eight; // 36.4 72.9 109.3 145.7 182.1 218.6
    for (const unsigned level : {0u, 36u, 72u, 109u, 145u, 182u, 218u, 255u})
        eight.push_back(EntryOf(level, level, level));
    EXPECT_EQ(Contents(Owned(Z_CreateGrayPalette(3))), Words(eight));
    EXPECT_EQ(Z_GetPaletteSize(Owned(Z_CreateGrayPalette(0))), 256u);
}

class BothForms : public ::testing::TestWithParam<bool> {};

TEST_P(BothForms, ReadRanges) {
    const bool block = GetParam();
    const Entries entries = Sample(6);
    const Bitmap bitmap(8, block, entries);
    EXPECT_EQ(bitmap.ColorsUsed, 6u);
    EXPECT_EQ(bitmap.Contents(), Words(entries));
    Entries got(4);
    EXPECT_EQ(Z_GetBitmapPaletteEntries(&bitmap, 2, 4, got.data()), 4u);
    // A block is always read from its first entry on.
    EXPECT_EQ(Words(got), Words(entries.data() + (block ? 0 : 2), 4));
    EXPECT_EQ(Z_GetBitmapPaletteEntries(&bitmap, 4, 0xFFFFFFFF, got.data()), 2u);
    EXPECT_EQ(Z_GetBitmapPaletteEntries(&bitmap, 6, 1, got.data()), 0u);

    EXPECT_EQ(Z_GetBitmapColors(&bitmap, 5, 1, got.data()), Z_SUCCESS);
    EXPECT_EQ(got[0].rgbRed, block ? 0 : 5);
    EXPECT_EQ(Z_GetBitmapColors(nullptr, 0, 1, got.data()), Z_ERROR_BITMAP);
    for (const auto& [start, count] : {std::pair{0, 0}, {4, 3}, {-1, 1}})
        EXPECT_EQ(Z_GetBitmapColors(&bitmap, start, count, got.data()), Z_ERROR_ARGUMENT) << start;
    const Bitmap deep(12, block, entries), bare(8, block);
    for (const Bitmap* without : {&deep, &bare})
        EXPECT_EQ(Z_GetBitmapColors(without, 0, 1, got.data()), Z_ERROR_ARGUMENT);
}

TEST_P(BothForms, OverwriteRanges) {
    Entries entries = Sample(6);
    const Entries change = {EntryOf(1, 1, 1, 5), EntryOf(2, 2, 2, 1)};
    const struct {
        int32_t Start, Count;
        ReturnCode Expected;
    } cases[] = {{4, 2, Z_SUCCESS}, {0, 0, Z_SUCCESS}, {5, 2, Z_ERROR_ARGUMENT}, {-1, 1, Z_ERROR_ARGUMENT}};
    for (const auto& c : cases) {
        Bitmap bitmap(8, GetParam(), entries);
        Entries expected = entries;
        if (c.Expected == Z_SUCCESS) std::copy_n(change.begin(), c.Count, expected.begin() + c.Start);
        EXPECT_EQ(Z_PutBitmapColors(&bitmap, c.Start, c.Count, change.data()), c.Expected) << c.Start;
        EXPECT_EQ(bitmap.Contents(), Words(expected)) << c.Start;
        EXPECT_EQ(bitmap.IsBlock(), GetParam());
    }
    Bitmap free(8, GetParam(), entries), deep(12, GetParam(), entries);
    free.Flags &= ~uint32_t{Z_FLAG_ALLOCATED};
    EXPECT_EQ(Z_PutBitmapColors(&free, 0, 1, change.data()), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_PutBitmapColors(&deep, 0, 1, change.data()), Z_ERROR_ARGUMENT);
}

TEST_P(BothForms, CreateDefaults) {
    Bitmap gray(4, GetParam());
    gray.ColorsUsed = 3;
    EXPECT_EQ(Z_CreateBitmapGrayPalette(&gray), Z_SUCCESS);
    EXPECT_EQ(gray.ColorsUsed, GetParam() ? 16u : 3u); // kept by a palette object alone
    for (const int bits : {0, 12}) {
        Bitmap none(bits, GetParam());
        EXPECT_EQ(Z_CreateBitmapGrayPalette(&none), Z_ERROR_BITS_PER_PIXEL);
    }

    for (const uint32_t colours : {0u, 1u, 2u, 3u, 64u, 128u, 255u, 256u, 512u}) {
        Bitmap bitmap(1, GetParam()); // the depth plays no part
        bitmap.ColorsUsed = colours;
        const bool exists = colours >= 2 && colours <= 256 && (colours & (colours - 1)) == 0;
        EXPECT_EQ(Z_CreateBitmapFixedPalette(&bitmap), exists ? Z_SUCCESS : Z_ERROR_GENERAL) << colours;
        EXPECT_EQ(bitmap.ColorsUsed, colours);
        EXPECT_EQ(bitmap.Contents(), exists ? Words(Z_IntGetFixedPalette(std::countr_zero(colours)), colours)
                                            : std::vector<uint32_t>());
    }
}

TEST_P(BothForms, Copy) {
    const Entries entries = Sample(7);
    const Bitmap source(8, GetParam(), entries), bare(8, true);
    Bitmap target(8, !GetParam());
    EXPECT_EQ(Z_CopyBitmapPalette(&target, &source), 1);
    EXPECT_NE(target.Palette, source.Palette);
    EXPECT_EQ(target.Contents(), Words(entries));
    EXPECT_EQ(target.ColorsUsed, 7u);
    EXPECT_EQ(target.IsBlock(), GetParam());
    Bitmap cleared(8, GetParam());
    EXPECT_EQ(Z_CopyBitmapPalette(&cleared, &bare), 1);
    EXPECT_EQ(std::tuple(cleared.Palette, cleared.ColorsUsed, cleared.IsBlock()),
              std::tuple(nullptr, 0u, false));

    const Owned object(Z_DupBitmapPalette(&source));
    EXPECT_EQ(Contents(object), Words(entries));
    EXPECT_EQ(Z_DupBitmapPalette(&bare), nullptr);
}

TEST_P(BothForms, Compare) {
    Entries entries = Sample(4);
    const Bitmap bitmap(8, GetParam(), entries), bare(8, GetParam());
    const auto compare = [](const Bitmap& with, const Entries& palette) {
        return Z_CompareBitmapToPalette(&with, palette.data(), static_cast<uint32_t>(palette.size()));
    };
    EXPECT_EQ(compare(bitmap, entries), 1);
    EXPECT_EQ(compare(bitmap, Sample(3)), 1);
    EXPECT_EQ(compare(bitmap, Sample(9)), 1); // over as many as the bitmap has
    entries[3].rgbReserved ^= 255;
    EXPECT_EQ(compare(bitmap, entries), 1);
    for (uint8_t RGBQUAD::*const channel : {&RGBQUAD::rgbRed, &RGBQUAD::rgbGreen, &RGBQUAD::rgbBlue}) {
        Entries changed = entries;
        changed[3].*channel ^= 1;
        EXPECT_EQ(compare(bitmap, changed), 0);
    }
    EXPECT_EQ(compare(bare, {}), 1);
    EXPECT_EQ(compare(bare, entries), 0);
}

TEST_P(BothForms, FindTheFirstOfEqualEntries) {
    const Entries entries = {EntryOf(9, 9, 9), EntryOf(200, 0, 0), EntryOf(0, 0, 0), EntryOf(200, 0, 0)};
    const Bitmap bitmap(8, GetParam(), entries);
    EXPECT_EQ(Z_GetNearestPaletteIndex(&bitmap, 0x0000C9), 1u);
}

TEST_P(BothForms, TakeAPaletteObject) {
    const Entries old = Sample(3), entries = Sample(5);
    const Owned palette(Z_CreatePalette(entries.data(), 5)), tooSmall(Z_CreatePalette(entries.data(), 1));
    Bitmap bitmap(8, GetParam(), old);
    EXPECT_EQ(Z_SetBitmapPalette(&bitmap, nullptr), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_SetBitmapPalette(&bitmap, tooSmall), Z_ERROR_ARGUMENT);
    EXPECT_EQ(bitmap.Contents(), Words(old));
    EXPECT_EQ(Z_SetBitmapPalette(&bitmap, palette), Z_SUCCESS);
    EXPECT_EQ(bitmap.Contents(), Words(entries));
    EXPECT_EQ(std::tuple(bitmap.ColorsUsed, bitmap.IsBlock()), std::tuple(5u, false));
    EXPECT_EQ(Z_SetBitmapPalette(&bitmap, static_cast<HPALETTE>(bitmap.Palette)), Z_SUCCESS); // its own
    EXPECT_EQ(bitmap.Contents(), Words(entries));
}

TEST_P(BothForms, ChangeForm) {
    const Entries entries = Sample(5);
    Bitmap bitmap(8, GetParam(), entries), bare(8, GetParam());
    for (const bool block : {GetParam(), !GetParam(), GetParam()}) {
        EXPECT_EQ(Z_SetPaletteType(&bitmap, block ? 5 : 0), Z_SUCCESS);
        EXPECT_EQ(bitmap.IsBlock(), block);
        EXPECT_EQ(bitmap.ColorsUsed, 5u);
        EXPECT_EQ(bitmap.Contents(), Words(entries));
    }
    EXPECT_EQ(Z_SetPaletteType(&bare, GetParam() ? 0 : 1), Z_SUCCESS);
    EXPECT_EQ(bare.IsBlock(), GetParam()) << "without a palette nothing changes";
    bare.Flags = 0;
    EXPECT_EQ(Z_SetPaletteType(&bare, 1), Z_ERROR_BITMAP);
}

// Where the old palette has gone before the new one cannot be made, none is left, and nobody is told.
TEST_P(BothForms, LoseThePaletteThatCannotBeReplaced) {
    const Entries entries = Sample(5);
    const Owned palette(Z_CreatePalette(entries.data(), 2));
    for (const bool put : {true, false}) {
        Bitmap bitmap(8, GetParam(), Sample(8));
        platform::fault::Arm(platform::fault::All, 1, true);
        EXPECT_EQ(put ? Z_PutBitmapColors(&bitmap, 0, 1, entries.data())
                      : Z_SetBitmapPalette(&bitmap, palette),
                  Z_SUCCESS);
        platform::fault::Disarm();
        EXPECT_EQ(bitmap.Contents(), std::vector<uint32_t>());
    }
}

INSTANTIATE_TEST_SUITE_P(Palettes, BothForms, ::testing::Bool(),
                         [](const auto& form) { return form.param ? "Block" : "Object"; });

TEST(UserMatchTable, HoldsTheNearestEntryOfEachCellsDarkestColour) {
    Seeded seeded(7);
    for (const int entries : {0, 1, 2, 16, 256, 300}) {
        Entries palette;
        for (int i = 0; i < entries; ++i)
            palette.push_back(EntryOf(seeded.Byte(), seeded.Byte(), seeded.Byte()));
        if (entries > 2) palette[1] = palette[2] = EntryOf(64, 128, 192);
        uint32_t* table = Z_CreateUserMatchTable(palette.data(), entries);
        ASSERT_NE(table, nullptr);
        for (int cell = 0; cell < 32768; ++cell) {
            const int nearest = ReferenceFindPaletteIndex(palette.data(), entries, (cell >> 10 & 31) * 8,
                                                          (cell >> 5 & 31) * 8, (cell & 31) * 8);
            ASSERT_EQ(table[cell], static_cast<uint32_t>(nearest + 1))
                << entries << " entries, cell " << cell;
        }
        EXPECT_EQ(Z_FreeUserMatchTable(table), Z_SUCCESS);
    }
    EXPECT_EQ(Z_FreeUserMatchTable(nullptr), Z_SUCCESS);
    EXPECT_EQ(Z_CreateUserMatchTable(nullptr, 2), nullptr);
    EXPECT_EQ(Z_FindPaletteIndex(nullptr, 2, 0, 0, 0), -1);
}

} // namespace
} // namespace zkr::test
