// Single pixels against a plain model of what a pixel means at each depth, over random orders, palettes,
// windows, level tables and colours; then places that the model does not know.
#include "colour/pixels/pixel_model.h"
#include "core/test_bitmaps.h"
#include "core/test_regions.h"
#include "platform/faults.h"
#include "support/pixel_bits.h"
#include "support/seeded.h"
#include "zkr13n/allocation.h"
#include "zkr13n/palettes.h"
#include "zkr13n/pixels.h"

#include <array>

namespace zkr::test {
namespace {

constexpr int Depths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};

uint32_t Plain(Colour c) {
    return c.red | c.green << 8 | c.blue << 16;
}

struct Model : PixelModel {
    using PixelModel::PixelModel;

    uint32_t ColourOf(uint64_t pixel) const {
        if (!IsGray() || HasLevels()) return Plain(Colour8(pixel));
        const auto [value, largest] = GrayValue(pixel);
        return 0x04000000 | static_cast<uint32_t>(value * 0xFFFF / largest);
    }

    uint64_t PixelOf(uint32_t colour, uint64_t before) const {
        const uint64_t all = Bits() == 64 ? ~uint64_t{0} : (uint64_t{1} << Bits()) - 1;
        if (Bits() <= 8 && colour >> 24 == 1) return colour & all;
        bool isGrayValue = (colour & 0x04000000) != 0;
        if (isGrayValue && (Record.Order != 2 || HasLevels())) {
            colour = (colour >> 8 & 0xFF) * 0x010101;
            isGrayValue = false;
        }
        const unsigned red = colour & 0xFF, green = colour >> 8 & 0xFF, blue = colour >> 16 & 0xFF;
        const auto nearest = [&](const RGBQUAD* entries, uint32_t count) {
            return static_cast<uint64_t>(
                ReferenceFindPaletteIndex(entries, static_cast<int>(count), static_cast<int>(red),
                                          static_cast<int>(green), static_cast<int>(blue)));
        };
        if (Bits() <= 8) {
            const uint32_t counts[] = {0, 2, 0, 0, 16, 0, 0, 0, 256};
            return nearest(Palette, counts[Bits()] ? counts[Bits()] : Record.ColorsUsed) & all;
        }
        if (IsGray()) {
            if (HasLevels())
                return nearest(Record.LevelLUT,
                               Bits() == 16 ? std::min(Record.LevelLUTLength, 65535u) : Record.LevelLUTLength)
                           << Low() &
                       all;
            const uint64_t gray = isGrayValue ? colour & 0xFFFF : (2 * red + 5 * green + blue + 4) / 8 * 257;
            return (gray * GrayValue(0).Largest + 0xFFFE) / 0xFFFF << Low() & all; // rounded up
        }
        const uint64_t low = Record.Order == 1 ? blue : red, high = Record.Order == 1 ? red : blue;
        if (Bits() == 16) return low / 8 | uint64_t{green} / 8 << 5 | high / 8 << 10;
        if (Bits() <= 32) return (before & 0xFF000000) | low | green << 8 | high << 16;
        return (before & 0xFFFFull << 48) | (low | uint64_t{green} << 16 | high << 32) * 257;
    }
};

// A bitmap in the caller's memory of exactly its size, and all that pixels depend on drawn anew.
struct Subject : Bitmap {
    explicit Subject(Seeded& seeded)
        : Bitmap(seeded.Between(1, 40), seeded.Between(1, 3), Depths[seeded.Below(14)]) {
        Allocate(*this, {"user", MemoryUser}, Data);
        for (uint8_t& byte : Data)
            byte = seeded.Byte();
        Order = seeded.Below(3);
        if (BitsPerPixel <= 8 && seeded.Below(8) != 0) GivePalette(seeded);
        if (BitsPerPixel == 12 || BitsPerPixel == 16) GiveWindow(seeded);
    }

    void GivePalette(Seeded& seeded) {
        std::array<RGBQUAD, 256> entries;
        for (RGBQUAD& entry : entries)
            entry = EntryOf(seeded.Byte() & 0xC0u, seeded.Byte() & 0xC0u, seeded.Byte());
        if (seeded.Below(2) != 0) Flags |= Z_FLAG_PALETTE_IS_BLOCK;
        const auto count = static_cast<uint32_t>(seeded.Between(1, 256));
        EXPECT_EQ(Z_CreateBitmapPalette(this, entries.data(), count), 1);
    }

    void GiveWindow(Seeded& seeded) {
        LowBit = seeded.Between(-1, BitsPerPixel - 1);
        HighBit = seeded.Below(3) == 0 ? -1 : seeded.Between(std::max(LowBit, 0), BitsPerPixel - 1);
        if (seeded.Below(2) == 0) return;
        LevelLUTLength = static_cast<uint32_t>(seeded.Between(1, 600));
        LevelLUT = static_cast<RGBQUAD*>(Z_OsAlloc(LevelLUTLength * sizeof(RGBQUAD)));
        for (uint32_t i = 0; i < LevelLUTLength; ++i)
            LevelLUT[i] = EntryOf(seeded.Byte(), seeded.Byte(), seeded.Byte());
        if (seeded.Below(3) != 0) Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
    }

    Bytes Data;
};

TEST(Pixels, AreWhatTheModelSays) {
    Seeded seeded(20261121);
    for (int turn = 0; turn < 6000 && !HasFailure(); ++turn) {
        Subject subject(seeded);
        const Model model(subject);
        const int bits = subject.BitsPerPixel;
        SCOPED_TRACE("turn " + std::to_string(turn) + ", " + std::to_string(bits) + " bits, order " +
                     std::to_string(subject.Order));
        for (int i = 0; i < 6; ++i) {
            const int row = seeded.Below(subject.Height), column = seeded.Below(subject.Width);
            const auto rowStart = static_cast<size_t>(row) * subject.BytesPerLine;
            const uint64_t before = ReadPixel(&subject.Data[rowStart], bits, column);
            EXPECT_EQ(Z_GetPixelColor(&subject, row, column), model.ColourOf(before)) << before;

            constexpr uint32_t forms[] = {0, 0, 1, 2, 4, 5, 6, 0x80, 0xFF};
            const uint32_t colour = forms[seeded.Below(9)] << 24 | (seeded.Next() & 0xFFFFFF);
            Bytes expected = subject.Data;
            WritePixel(&expected[rowStart], bits, column, model.PixelOf(colour, before));
            EXPECT_EQ(Z_PutPixelColor(&subject, row, column, colour), 1);
            EXPECT_EQ(subject.Data, expected) << std::hex << colour << ", column " << std::dec << column;
        }
    }
}

// The last entry of a whole 16-bit table is found when a pixel is read and not when one is written.
TEST(Pixels, OfAWholeLevelTable) {
    Bitmap bitmap(2, 1, 16);
    Bytes data;
    Allocate(bitmap, {"user", MemoryUser}, data);
    bitmap.Order = Z_ORDER_GRAY;
    bitmap.LevelLUTLength = 65536;
    bitmap.LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(65536 * sizeof(RGBQUAD), 1));
    bitmap.LevelLUT[65535] = EntryOf(200, 100, 50);
    bitmap.LevelLUT[777] = EntryOf(190, 100, 50);
    bitmap.Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
    data = {0xFF, 0xFF, 0, 0};
    EXPECT_EQ(Z_GetPixelColor(&bitmap, 0, 0), 0x3264C8u);
    EXPECT_EQ(Z_PutPixelColor(&bitmap, 0, 1, 0x3264C8), 1);
    EXPECT_EQ(ReadPixel(data.data(), 16, 1), 777u);
}

// From column 65536 on, the byte is that of the low 16 bits of the column at 1 and at 4 bits, and no others.
TEST(Pixels, OfFarColumns) {
    for (const auto& [bits, addressed] : {std::pair{1, 3}, {4, 3}, {2, 65539}, {8, 65539}, {24, 65539}}) {
        Bitmap bitmap(65600, 1, bits);
        Bytes data;
        Allocate(bitmap, {"user", MemoryUser}, data);
        const uint32_t colour = bits == 24 ? 0xFFFFFF : 0x01000000 + (1u << bits) - 1;
        EXPECT_EQ(Z_PutPixelColor(&bitmap, 0, 65539, colour), 1);
        Bytes expected(data.size());
        WritePixel(expected.data(), bits, addressed, 0xFFFFFF & ((1u << bits) - 1));
        EXPECT_EQ(data, expected) << bits;
        ASSERT_EQ(bits > 8 ? 1 : Z_CreateBitmapGrayPalette(&bitmap), 1);
        EXPECT_EQ(Z_GetPixelColor(&bitmap, 0, 65539), 0xFFFFFFu) << bits;
        EXPECT_EQ(Z_GetPixelColor(&bitmap, 0, addressed), 0xFFFFFFu) << bits;
    }
}

TEST(Pixels, WorkInEveryStorageWithoutAllocating) {
    for (const Storage& storage : AllStorages()) {
        for (const bool block : {false, true}) {
            Bitmap bitmap(50, 9, 5);
            Bytes data;
            Allocate(bitmap, storage, data);
            Z_ReleaseBitmap(&bitmap);
            if (block) bitmap.Flags |= Z_FLAG_PALETTE_IS_BLOCK;
            ASSERT_EQ(Z_CreateBitmapFixedPalette(&bitmap), 1);
            const uint32_t colour = Plain(ColourOf(Z_IntGetFixedPalette(5)[21]));
            platform::fault::Arm(platform::fault::Heap | platform::fault::Global | platform::fault::Palette,
                                 0);
            EXPECT_EQ(Z_PutPixelColor(&bitmap, 7, 44, colour), 1);
            EXPECT_EQ(Z_GetPixelColor(&bitmap, 7, 44), colour) << storage.Name;
            EXPECT_EQ(platform::fault::Calls(), 0u) << "allocations";
            platform::fault::Disarm();
            EXPECT_EQ(bitmap.Flags & Z_FLAG_LOCKED, 0u);
        }
    }
}

TEST(Pixels, OutsideAndRefused) {
    const RegionSlots slots;
    Bitmap bitmap(5, 3, 24);
    Bytes data;
    Allocate(bitmap, {"user", MemoryUser}, data);
    BitmapHandle none{};
    for (BitmapHandle* bad : {static_cast<BitmapHandle*>(nullptr), &none}) {
        EXPECT_EQ(Z_GetPixelColor(bad, 0, 0), Z_NO_COLOR);
        EXPECT_EQ(Z_PutPixelColor(bad, 0, 0, 0), code::InvalidBitmap);
    }
    EXPECT_EQ(Z_GetPixelData(&none, data.data(), 0, 0, 8), code::InvalidBitmap);
    EXPECT_EQ(Z_PutPixelData(&none, data.data(), 0, 0, 8), code::InvalidBitmap);
    for (const auto& [row, column] : {std::pair{-1, 0}, {0, -1}, {3, 0}, {0, 5}, {INT32_MAX, INT32_MIN}}) {
        EXPECT_EQ(Z_GetPixelColor(&bitmap, row, column), Z_NO_COLOR);
        EXPECT_EQ(Z_PutPixelColor(&bitmap, row, column, 1), code::InvalidDimensions);
    }
    RegionSlots::Give(bitmap, {{1, 0, 9, 9}}); // reaches beyond the bitmap
    EXPECT_EQ(Z_PutPixelColor(&bitmap, 0, 0, 0xFFFFFF), code::InvalidDimensions);
    EXPECT_EQ(Z_PutPixelColor(&bitmap, 0, 7, 0xFFFFFF), code::InvalidDimensions);
    EXPECT_EQ(data, Bytes(data.size()));
    EXPECT_EQ(Z_GetPixelColor(&bitmap, 0, 0), 0u);
    EXPECT_EQ(Z_PutPixelColor(&bitmap, 0, 1, 0xFFFFFF), 1);
    EXPECT_EQ(Z_GetPixelColor(&bitmap, 0, 1), 0xFFFFFFu);
}

// The bytes that a pixel touches, and no fewer may be asked for.
TEST(PixelData, MovesTheBytesOfThePixel) {
    for (const int bits : Depths) {
        Bitmap bitmap(19, 2, bits);
        Bytes data;
        Allocate(bitmap, {"user", MemoryUser}, data);
        const Bytes before = Fill(bitmap, 8), other(10, 0x5A);
        for (int32_t column = 0; column < 19; ++column) {
            SCOPED_TRACE(std::to_string(bits) + " bits, column " + std::to_string(column));
            const auto bytes = static_cast<uint32_t>((column * bits + bits - 1) / 8 + 1 - column * bits / 8);
            const auto first = static_cast<ptrdiff_t>(bitmap.BytesPerLine) + column * bits / 8;
            Bytes pixel(10, 0xEE), expected = pixel, changed = before;
            std::copy_n(before.begin() + first, bytes, expected.begin());
            std::fill_n(changed.begin() + first, bytes, uint8_t{0x5A});
            for (const auto& [place, size] : {std::pair{pixel.data(), bytes - 1}, {nullptr, 10u}}) {
                EXPECT_EQ(Z_GetPixelData(&bitmap, place, 1, column, size), code::InvalidArgument);
                EXPECT_EQ(Z_PutPixelData(&bitmap, place, 1, column, size), code::InvalidArgument);
            }
            EXPECT_EQ(Z_GetPixelData(&bitmap, pixel.data(), 1, column, bytes), 1);
            EXPECT_EQ(pixel, expected);
            EXPECT_EQ(Z_PutPixelData(&bitmap, other.data(), 1, column, 10), 1);
            EXPECT_EQ(data, changed);
            data = before;
        }
        ASSERT_EQ(Z_SetBitmapDataPointer(&bitmap, nullptr, 0), 1);
        uint64_t pixel = 0;
        EXPECT_EQ(Z_GetPixelData(&bitmap, &pixel, 0, 0, 8), code::OutOfMemory);
        EXPECT_EQ(Z_PutPixelData(&bitmap, &pixel, 0, 0, 8), code::OutOfMemory);
    }
}

} // namespace
} // namespace zkr::test
