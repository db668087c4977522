// What the cases of pixels work on: a bitmap of any depth, order, class and view, with a palette, pixels of many or
// few values, and for gray a window and a level table.
#pragma once

#include "parity/digest.h"

#include "zkr13n/allocation.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <vector>

namespace zkr::test {

struct Subject : BitmapHandle {
    explicit Subject(Seeded& seeded) : BitmapHandle{} {
        constexpr int Types[] = {MemoryConventional, MemoryTiled, MemoryDisk, MemorySuperCompressed | 1,
                                 MemoryCompressed | 1};
        constexpr int Views[] = {0, 1, 2, 3, 4, 5, 7, 8};
        constexpr int Masks[] = {0xFF, 0xFF, 0x81, 0x11};
        const int type = Pick(seeded, Types), bits = Pick(seeded, Depths), view = Pick(seeded, Views);
        const int width = seeded.Between(1, 200), height = seeded.Between(1, 40);
        const int order = bits == 12 ? 2 : seeded.Below(bits == 16 ? 3 : 2), mask = Pick(seeded, Masks);
        Z_SetMemoryThresholds(0, 0, seeded.Between(30, 3000), 1, 1, 28);
        std::vector<RGBQUAD> palette(256);
        FillRandom(seeded, palette.data(), palette.size() * sizeof(RGBQUAD));
        Z_CreateBitmap(this, type, width, height, bits, order, palette.data(), view, nullptr, 0);
        std::vector<uint8_t> row(BytesPerLine);
        for (int y = 0; y < Height; ++y) {
            for (uint8_t& byte : row)
                byte = static_cast<uint8_t>(seeded.Byte() & mask);
            Z_PutBitmapRow(this, row.data(), y, BytesPerLine);
        }
        if (bits != 12 && bits != 16) return;
        LowBit = seeded.Between(-1, bits - 1);
        HighBit = seeded.Between(LowBit, bits - 1);
        if (seeded.Below(2) != 0) return;
        LevelLUTLength = static_cast<uint32_t>(seeded.Between(1, 5000));
        LevelLUT = static_cast<RGBQUAD*>(Z_OsAlloc(LevelLUTLength * sizeof(RGBQUAD)));
        FillRandom(seeded, LevelLUT, LevelLUTLength * sizeof(RGBQUAD));
        Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
    }
    ~Subject() { Z_FreeBitmap(this); }
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;
};

// What lies behind the last pixel of a row is nobody's.
inline void AddPixels(Digest& digest, BitmapHandle& bitmap) {
    for (const int32_t number : {bitmap.Width, bitmap.Height, bitmap.BitsPerPixel, bitmap.Order,
                                 bitmap.LowBit, bitmap.HighBit, bitmap.MaxVal})
        digest.Add(number);
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int y = 0; y < bitmap.Height && (bitmap.Flags & Z_FLAG_ALLOCATED) != 0; ++y) {
        digest.Add(Z_GetBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine));
        digest.Add(row.data(),
                   static_cast<size_t>(bitmap.Width) * static_cast<size_t>(bitmap.BitsPerPixel) / 8);
    }
}

} // namespace zkr::test
