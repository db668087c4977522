// Bitmaps of every storage class for tests, freed at the end of the scope, and thresholds that are put back.
#pragma once

#include "core/flags.h"
#include "core/return_codes.h"
#include "platform/memory.h"
#include "zkr13n/bitmap.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace zkr::test {

using Bytes = std::vector<uint8_t>;

struct Bitmap : BitmapHandle {
    Bitmap() : BitmapHandle{} {}
    Bitmap(int32_t width, int32_t height, int32_t bits) : BitmapHandle{} {
        Z_InitBitmap(this, width, height, bits);
    }
    ~Bitmap() { Z_FreeBitmap(this); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
};

class Thresholds {
  public:
    Thresholds() { Z_GetMemoryThresholds(&reserve_, &largest_, &tileSize_, &conventional_, &mapped_); }
    ~Thresholds() { Z_SetMemoryThresholds(reserve_, largest_, tileSize_, conventional_, mapped_, 31); }

    static void Tiles(int32_t tileSize, int32_t conventional, int32_t mapped) {
        Z_SetMemoryThresholds(0, 0, tileSize, conventional, mapped,
                              Z_THRESHOLD_TILE_SIZE | Z_THRESHOLD_CONVENTIONAL_TILES |
                                  Z_THRESHOLD_MAPPED_TILES);
    }

  private:
    int32_t reserve_, largest_, tileSize_, conventional_, mapped_;
};

// A way to store a bitmap. For tiles: rows of one tile, tiles in memory, views.
struct Storage {
    std::string Name;
    int32_t Type;
    int32_t TileRows = 0;
    int32_t ConventionalTiles = 0;
    int32_t MappedTiles = 0;
};

// For INSTANTIATE_TEST_SUITE_P, which takes letters and digits alone.
inline std::string NameOf(const testing::TestParamInfo<Storage>& storage) {
    std::string name = storage.param.Name;
    std::erase_if(name, [](char c) { return !isalnum(c); });
    return name;
}

constexpr int32_t GlobalType = -1;

inline std::vector<Storage> AllStorages() {
    return {{"conventional", MemoryConventional},
            {"user", MemoryUser},
            {"global", GlobalType},
            {"disk", MemoryDisk},
            {"runs at 1 bit, else conventional", MemoryCompressed | MemoryConventional},
            {"tiles in memory, one row", MemoryTiled, 1, -100, 1},
            {"tiles in memory, five rows", MemoryTiled, 5, -100, 1},
            {"tiles in files, one row, one view", MemoryTiled, 1, 0, 1},
            {"tiles in files, three rows, two views", MemoryTiled, 3, 2, 2},
            {"tiles in files, four rows, no view", MemoryTiled, 4, 0, 0},
            {"tiles of both kinds, seven rows", MemoryTiled, 7, 2, 1}};
}

// Makes a bitmap in a storage; userData outlives it. A global bitmap comes locked.
inline void Allocate(BitmapHandle& bitmap, const Storage& storage, Bytes& userData) {
    if (storage.Type == GlobalType) {
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryUser), 1);
        bitmap.Flags = (bitmap.Flags & ~flag::UserData) | flag::Global;
        bitmap.AlignOffset = 16;
        bitmap.StorageHandle = platform::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bitmap.Size + 16);
        Z_AccessBitmap(&bitmap);
        return;
    }
    const Thresholds restore;
    if (storage.Type == MemoryTiled)
        Thresholds::Tiles(storage.TileRows * static_cast<int32_t>(bitmap.BytesPerLine),
                          storage.ConventionalTiles, storage.MappedTiles);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, storage.Type), 1);
    if (storage.Type == MemoryUser) {
        userData.assign(bitmap.Size, 0);
        ASSERT_EQ(Z_SetBitmapDataPointer(&bitmap, userData.data(), userData.size()), 1);
    }
}

struct Info {
    int32_t Type = -99, TileSize = -99, TileCount = -99, Conventional = -99, MaxMapped = -99, Mapped = -99;

    bool operator==(const Info&) const = default;
};

inline Info InfoOf(BitmapHandle& bitmap) {
    Info info;
    EXPECT_EQ(Z_GetBitmapMemoryInfo(&bitmap, &info.Type, &info.TileSize, &info.TileCount, &info.Conventional,
                                    &info.MaxMapped, &info.Mapped),
              1);
    return info;
}

inline void PrintTo(const Info& info, std::ostream* out) {
    *out << "type " << info.Type << ", tile size " << info.TileSize << ", tiles " << info.TileCount
         << ", in memory " << info.Conventional << ", views at most " << info.MaxMapped << ", views "
         << info.Mapped;
}

inline Bytes RandomBytes(size_t count, std::mt19937& random) {
    Bytes bytes(count);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(random() >> 7);
    return bytes;
}

// All rows of a bitmap, one by one.
inline Bytes Rows(BitmapHandle& bitmap) {
    Bytes all(size_t{bitmap.BytesPerLine} * static_cast<size_t>(bitmap.Height));
    for (int32_t row = 0; row < bitmap.Height; ++row)
        EXPECT_EQ(Z_GetBitmapRow(&bitmap, all.data() + size_t{bitmap.BytesPerLine} * static_cast<size_t>(row),
                                 row, bitmap.BytesPerLine),
                  static_cast<ReturnCode>(bitmap.BytesPerLine));
    return all;
}

// Random rows; runs hold no bits behind the last pixel.
inline Bytes Fill(BitmapHandle& bitmap, uint32_t seed) {
    std::mt19937 random(seed);
    Bytes all = RandomBytes(size_t{bitmap.BytesPerLine} * static_cast<size_t>(bitmap.Height), random);
    const size_t line = size_t{bitmap.BytesPerLine} * 8;
    for (size_t bit = 0; bit < all.size() * 8 && (bitmap.Flags & flag::Compressed) != 0; ++bit)
        if (bit % line >= static_cast<size_t>(bitmap.Width))
            all[bit / 8] &= static_cast<uint8_t>(~(0x80u >> bit % 8));
    for (int32_t row = 0; row < bitmap.Height; ++row)
        Z_PutBitmapRow(&bitmap, all.data() + size_t{bitmap.BytesPerLine} * static_cast<size_t>(row), row,
                       bitmap.BytesPerLine);
    return all;
}

} // namespace zkr::test
