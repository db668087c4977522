// The tuning of tiles and the change of a live bitmap's class, with no pixel and nothing of the record lost.
#include "core/storage_faults.h"
#include "zkr13n/allocation.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/copy.h"
#include "zkr13n/palettes.h"

namespace zkr::test {
namespace {

constexpr uint32_t Type = Z_MEMORY_INFO_TYPE, TileSize = Z_MEMORY_INFO_TILE_SIZE,
                   Conventional = Z_MEMORY_INFO_CONVENTIONAL, MaxMapped = Z_MEMORY_INFO_MAX_MAPPED,
                   Mapped = Z_MEMORY_INFO_MAPPED;

ReturnCode Set(BitmapHandle& bitmap, const Info& wish, uint32_t flags) {
    return Z_SetBitmapMemoryInfo(&bitmap, wish.Type, wish.TileSize, wish.TileCount, wish.Conventional,
                                 wish.MaxMapped, wish.Mapped, flags);
}

TEST(MemoryInfo, ChecksItsArguments) {
    Bitmap bitmap(8, 8, 8);
    int32_t type = 7;
    EXPECT_EQ(Z_GetBitmapMemoryInfo(&bitmap, &type, nullptr, nullptr, nullptr, nullptr, nullptr),
              code::InvalidBitmap);
    EXPECT_EQ(Z_GetBitmapMemoryInfo(nullptr, &type, nullptr, nullptr, nullptr, nullptr, nullptr),
              code::InvalidBitmap);
    EXPECT_EQ(Set(bitmap, {}, 0), code::InvalidBitmap);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryUser), 1);
    EXPECT_EQ(Z_GetBitmapMemoryInfo(&bitmap, nullptr, &type, nullptr, nullptr, nullptr, nullptr),
              code::InvalidArgument);
    EXPECT_EQ(type, 7);
    EXPECT_EQ(InfoOf(bitmap), (Info{MemoryConventional})) << "the other values are left alone";
}

struct Tuning {
    Info Wish;
    uint32_t Flags;
    Info Expected;
};

// Ten tiles, four of them in memory, at most two views, both taken.
TEST(MemoryInfo, TunesTiles) {
    const Tuning tunings[] = {
        {{}, 0, {4, 8, 10, 4, 2, 2}},
        {{4}, Type, {4, 8, 10, 4, 2, 2}},
        {{.Conventional = 7}, Conventional, {4, 8, 10, 7, 2, 2}},
        {{.Conventional = 99}, Conventional, {4, 8, 10, 10, 2, 0}},
        {{.Conventional = 0}, Conventional, {4, 8, 10, 0, 2, 2}},
        {{.Conventional = -5}, Conventional, {4, 8, 10, 0, 2, 2}},
        {{.MaxMapped = 1}, MaxMapped, {4, 8, 10, 4, 1, 1}},
        {{.MaxMapped = 99}, MaxMapped, {4, 8, 10, 4, 6, 2}},
        {{.Conventional = 9, .MaxMapped = 5}, Conventional | MaxMapped, {4, 8, 10, 9, 1, 1}},
        {{.Mapped = 0}, Mapped, {4, 8, 10, 4, 2, 0}},
        {{.MaxMapped = 5, .Mapped = 4}, MaxMapped | Mapped, {4, 8, 10, 4, 5, 4}},
        {{.Mapped = 9}, Mapped, {4, 8, 10, 4, 2, 2}},
        {{.TileSize = 8}, TileSize, {4, 8, 10, 4, 2, 2}},
        {{.TileSize = 5}, TileSize, {4, 8, 10, 4, 2, 2}}, // rounded up to one row
    };
    const Thresholds restore;
    Thresholds::Tiles(8, 6, 2);
    for (const Tuning& tuning : tunings) {
        Bitmap bitmap(8, 10, 8);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryTiled), 1);
        const Bytes before = Fill(bitmap, 13);
        ASSERT_EQ(InfoOf(bitmap), (Info{4, 8, 10, 4, 2, 2}));
        EXPECT_EQ(Set(bitmap, tuning.Wish, tuning.Flags), 1);
        EXPECT_EQ(InfoOf(bitmap), tuning.Expected) << testing::PrintToString(tuning.Wish);
        EXPECT_EQ(Rows(bitmap), before);
    }
}

class Rebuilds : public testing::Test {
  protected:
    // A gray bitmap with everything that a record can hold.
    void Make(const Storage& storage) {
        Z_InitBitmap(&bitmap, 9, 12, 16);
        bitmap.Order = Z_ORDER_GRAY;
        Allocate(bitmap, storage, userData);
        pixels = Fill(bitmap, 14);
        bitmap.PaintLUT[3] = 77;
        bitmap.LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(4 * sizeof(RGBQUAD), 1));
        bitmap.LevelLUTLength = 4;
        bitmap.LowBit = 2, bitmap.HighBit = 11, bitmap.MinVal = 5, bitmap.MaxVal = 900;
        bitmap.LevelLowBit = 1, bitmap.LevelHighBit = 12;
        bitmap.PaintGamma = 150, bitmap.PaintContrast = 30, bitmap.PaintIntensity = -30;
        bitmap.Flags |= flag::LevelLUTActive | flag::PaintLUTActive | flag::Signed | flag::PlaybackWaitInput;
        bitmap.XResolution = 600, bitmap.ViewPerspective = 5, bitmap.DitheringMethod = 3;
        bitmap.Palette = Z_OsAlloc(16);
        bitmap.Flags |= flag::PaletteIsBlock;
    }

    // The record without what belongs to its storage.
    static BitmapHandle Rest(BitmapHandle record) {
        record.StorageHandle = nullptr, record.Addr = nullptr;
        record.CurrentRow = 0, record.CurrentRowOffset = 0, record.AlignOffset = 0;
        record.Flags &=
            ~(flag::Memory | flag::Disk | flag::UserData | flag::Global | flag::Locked | flag::Tiled);
        return record;
    }

    Bitmap bitmap;
    Bytes userData, pixels;
};

TEST_F(Rebuilds, CarryTheWholeRecord) {
    for (const Storage& storage : AllStorages()) {
        for (const int32_t type : {int32_t{MemoryConventional}, int32_t{MemoryDisk}}) {
            Make(storage);
            const BitmapHandle before = bitmap;
            const bool changes = InfoOf(bitmap).Type != type;
            ASSERT_EQ(Set(bitmap, {.Type = type}, Type), 1) << storage.Name;
            EXPECT_EQ(InfoOf(bitmap).Type, type);
            const BitmapHandle left = Rest(before), right = Rest(bitmap);
            EXPECT_EQ(0, std::memcmp(&left, &right, sizeof left)) << storage.Name;
            EXPECT_EQ(bitmap.PaintLUT[3], 77);
            EXPECT_EQ(Rows(bitmap), pixels) << storage.Name;
            EXPECT_TRUE(storage.Type != MemoryUser || !changes || userData == pixels)
                << "the caller's data stays";
            Z_FreeBitmap(&bitmap);
        }
    }
}

// A change into tiles above the tile size is refused, after the work; the bitmap stays whole.
TEST_F(Rebuilds, RefuseWhatCannotBe) {
    const TemporaryDirectory directory;
    const Thresholds restore;
    Make({"conventional", MemoryConventional});
    Thresholds::Tiles(40, 1, 1);
    const BitmapHandle before = bitmap;
    EXPECT_EQ(Set(bitmap, {.Type = MemoryTiled, .TileSize = 40}, Type | TileSize), code::InvalidBitmap);
    EXPECT_EQ(0, std::memcmp(&before, static_cast<BitmapHandle*>(&bitmap), sizeof before));
    for (const int32_t type : {3, 12})
        EXPECT_EQ(Set(bitmap, {.Type = type}, Type), code::InvalidArgument) << type;
    EXPECT_EQ(Set(bitmap, {.Type = MemoryUser}, Type), code::InvalidBitmap) << "no row can be written";
    EXPECT_TRUE(directory.IsEmpty());

    Thresholds::Tiles(static_cast<int32_t>(bitmap.Size) + 1, 1, 1);
    EXPECT_EQ(Set(bitmap, {.Type = MemoryTiled}, Type), 1) << "below the tile size it stays conventional";
    EXPECT_EQ(InfoOf(bitmap).Type, MemoryConventional);
    EXPECT_EQ(Rows(bitmap), pixels);
    Z_FreeBitmap(&bitmap);

    Make({"tiles", MemoryTiled, 2, -100, 1});
    Thresholds::Tiles(40, 1, 1);
    EXPECT_EQ(Set(bitmap, {.TileSize = 41}, TileSize), code::InvalidBitmap) << "another size of tiles";
    EXPECT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 40, 6, 6, 0, 0}));
    EXPECT_EQ(Rows(bitmap), pixels);
}

// A caller may make Width smaller. Storage that is made afterwards has rows of the new width, and no list of the old
// width goes to those who made room for the new one.
TEST(MemoryInfo, StorageFollowsAWidthThatBecameSmaller) {
    constexpr int32_t before = 64, width = 16, height = 100;
    for (const int32_t bits : {1, 24}) {
        for (const Storage& storage : AllStorages()) {
            for (const int32_t type : std::initializer_list<int32_t>{MemoryConventional, MemoryDisk,
                                                                     MemoryCompressed | MemoryConventional}) {
                Bytes userData;
                Bitmap bitmap(before, height, bits);
                Allocate(bitmap, storage, userData);
                const uint32_t wide = bitmap.BytesPerLine, used = width * static_cast<uint32_t>(bits) / 8;
                Bytes row(wide, 0x55);
                for (int32_t y = 0; y < height; ++y)
                    Z_PutBitmapRow(&bitmap, row.data(), y, wide);
                bitmap.Width = width;
                const bool changes = InfoOf(bitmap).Type != type;
                ASSERT_EQ(Set(bitmap, {.Type = type}, Type), 1) << storage.Name;
                EXPECT_EQ(bitmap.BytesPerLine, !changes ? wide : bits == 1 ? 4u : 48u) << storage.Name;

                Bitmap copy;
                ASSERT_EQ(Z_CopyBitmap(&copy, &bitmap), 1) << storage.Name;
                for (BitmapHandle* each :
                     {static_cast<BitmapHandle*>(&bitmap), static_cast<BitmapHandle*>(&copy)}) {
                    for (int32_t y : {0, height / 2, height - 1}) {
                        Bytes read(each->BytesPerLine);
                        Z_GetBitmapRow(each, read.data(), y, each->BytesPerLine);
                        EXPECT_EQ(Bytes(read.begin(), read.begin() + used), Bytes(used, 0x55))
                            << storage.Name;
                        Z_PutBitmapRow(each, read.data(), y, each->BytesPerLine);
                    }
                }
                Z_FreeBitmap(&bitmap);
                ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
                for (int32_t y = 0; y < height; ++y)
                    Z_PutBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine);
            }
        }
    }
    Bitmap runs(before, 1, 1);
    ASSERT_EQ(Z_AllocateBitmap(&runs, MemoryCompressed | MemoryConventional), 1);
    const Bytes row(8, 0x55);
    Z_PutBitmapRow(&runs, row.data(), 0, 8);
    runs.Width = 3;
    const std::vector<uint16_t> expected = {3, 0, 1, 1, 1, 0xEEEE};
    for (const bool byColumn : {false, true}) {
        std::vector<uint16_t> list(expected.size(), 0xEEEE);
        EXPECT_EQ(byColumn ? Z_GetBitmapRowColCompressed(&runs, nullptr, list.data(), 0, 0, 3)
                           : Z_GetBitmapRowCompressed(&runs, nullptr, list.data(), 0, 1),
                  1);
        EXPECT_EQ(list, expected);
    }
}

} // namespace
} // namespace zkr::test
