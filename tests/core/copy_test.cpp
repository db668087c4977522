// Copies between all storage classes, their reports and their failures.
#include "core/replacement.h"
#include "platform/faults.h"
#include "zkr13n/copy.h"
#include "zkr13n/frame.h"
#include "zkr13n/locks.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

namespace fault = zkr::platform::fault;

using Pixels = std::vector<uint8_t>;

Pixels PixelsOf(BitmapHandle& bitmap) {
    Pixels pixels(size_t{bitmap.BytesPerLine} * static_cast<size_t>(bitmap.Height));
    for (int32_t row = 0; row < bitmap.Height; ++row)
        Z_GetBitmapRow(&bitmap, &pixels[static_cast<size_t>(row) * bitmap.BytesPerLine], row,
                       bitmap.BytesPerLine);
    return pixels;
}

// A bitmap of 24 bits in one of the storage classes, frees itself.
class Bitmap {
  public:
    Bitmap(int32_t memoryType, int32_t width, int32_t height) {
        const int32_t tileSize = memoryType == MemoryTiled ? 3 * 4 * width : 0; // a few rows
        Z_SetMemoryThresholds(0, 0, tileSize, 1, 1,
                              Z_THRESHOLD_TILE_SIZE | Z_THRESHOLD_CONVENTIONAL_TILES |
                                  Z_THRESHOLD_MAPPED_TILES);
        EXPECT_EQ(Z_CreateBitmap(&record, memoryType, width, height, 24, Z_ORDER_BGR, nullptr, 2, nullptr, 0),
                  Z_SUCCESS);
        if (memoryType == MemoryUser) {
            data_.resize(record.Size);
            EXPECT_EQ(Z_SetBitmapDataPointer(&record, data_.data(), data_.size()), Z_SUCCESS);
        }
        Z_SetMemoryThresholds(0, 0, 0, -100, 1,
                              Z_THRESHOLD_TILE_SIZE | Z_THRESHOLD_CONVENTIONAL_TILES |
                                  Z_THRESHOLD_MAPPED_TILES);
    }
    ~Bitmap() { Z_FreeBitmap(&record); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    Pixels Fill(uint8_t first) {
        Pixels pixels(record.Size);
        for (size_t index = 0; index < pixels.size(); ++index)
            pixels[index] = static_cast<uint8_t>(first + index * 31 + index / 251);
        for (int32_t row = 0; row < record.Height; ++row)
            Z_PutBitmapRow(&record, &pixels[static_cast<size_t>(row) * record.BytesPerLine], row,
                           record.BytesPerLine);
        return pixels;
    }

    BitmapHandle record;

  private:
    Pixels data_;
};

struct Reports {
    std::vector<int32_t> Seen;
    size_t StopAt = SIZE_MAX;

    Reports() { Z_SetCopyStatusCallBack(Hear, reinterpret_cast<intptr_t>(this)); }
    ~Reports() { Z_SetCopyStatusCallBack(nullptr, 0); }
    static ReturnCode Z_CALL Hear(int32_t percent, intptr_t userData) {
        auto& self = *reinterpret_cast<Reports*>(userData);
        self.Seen.push_back(percent);
        return self.Seen.size() > self.StopAt ? -29 : Z_SUCCESS;
    }
};

ReturnCode Z_CALL NeverCalled(int32_t, intptr_t) {
    ADD_FAILURE() << "a copy reports to the copy status callback alone";
    return Z_SUCCESS;
}

TEST(CopyData, MovesPixelsBetweenAllStorageClasses) {
    constexpr int32_t classes[] = {MemoryConventional, MemoryUser, MemoryTiled, MemoryDisk};
    for (int32_t from : classes) {
        for (int32_t to : classes) {
            Bitmap source(from, 37, 11), destination(to, 37, 11);
            const Pixels expected = source.Fill(5);
            ASSERT_EQ(Z_CopyBitmapData(&destination.record, &source.record), Z_SUCCESS);
            EXPECT_EQ(PixelsOf(destination.record), expected) << from << " to " << to;
            EXPECT_EQ(PixelsOf(source.record), expected);
        }
    }
}

TEST(CopyData, OtherDimensionsAreCut) {
    Bitmap source(MemoryUser, 10, 6), wide(MemoryUser, 20, 4), narrow(MemoryUser, 3, 9);
    const Pixels from = source.Fill(1);
    wide.Fill(200);
    const Pixels before = narrow.Fill(100);
    ASSERT_EQ(Z_CopyBitmapData(&wide.record, &source.record), Z_SUCCESS);
    ASSERT_EQ(Z_CopyBitmapData(&narrow.record, &source.record), Z_SUCCESS);
    Pixels expectedWide(60 * 4);
    Pixels expectedNarrow = before;
    for (size_t row = 0; row < 6; ++row) {
        if (row < 4) std::memcpy(&expectedWide[row * 60], &from[row * 32], 32);
        std::memcpy(&expectedNarrow[row * 12], &from[row * 32], 12);
    }
    EXPECT_EQ(PixelsOf(wide.record), expectedWide);
    EXPECT_EQ(PixelsOf(narrow.record), expectedNarrow);
}

TEST(CopyData, ReportsToTheCopyCallback) {
    Bitmap source(MemoryConventional, 4, 8), destination(MemoryConventional, 4, 8);
    const Pixels pixels = source.Fill(9);
    Z_SetStatusCallBack(NeverCalled, 0);
    Reports reports;
    EXPECT_EQ(Z_CopyBitmapData(&destination.record, &source.record), Z_SUCCESS);
    EXPECT_EQ(reports.Seen, (std::vector<int32_t>{0, 12, 25, 37, 50, 62, 75, 87, 100}));

    Bitmap partial(MemoryConventional, 4, 8);
    reports.Seen.clear();
    reports.StopAt = 3;
    EXPECT_EQ(Z_CopyBitmapData(&partial.record, &source.record), -29);
    EXPECT_EQ(reports.Seen, (std::vector<int32_t>{0, 12, 25, 37}));
    Pixels expected(pixels.size());
    std::memcpy(expected.data(), pixels.data(), 3 * 12);
    EXPECT_EQ(PixelsOf(partial.record), expected);
    Z_SetStatusCallBack(nullptr, 0);
}

TEST(Copy, BadBitmaps) {
    Bitmap bitmap(MemoryConventional, 4, 4);
    BitmapHandle none{};
    EXPECT_EQ(Z_CopyBitmapData(&bitmap.record, nullptr), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_CopyBitmapData(nullptr, &bitmap.record), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_CopyBitmapData(&bitmap.record, &none), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_CopyBitmapData(&none, &bitmap.record), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_CopyBitmapData(&none, &none), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_CopyBitmapData(&bitmap.record, &bitmap.record), Z_SUCCESS);
    EXPECT_EQ(Z_CopyBitmap(nullptr, &bitmap.record), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_CopyBitmap(&none, nullptr), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_CopyBitmap(&none, &none), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_CopyBitmap(&bitmap.record, &bitmap.record), Z_SUCCESS);

    BitmapHandle compressed{};
    compressed.Flags = Z_FLAG_ALLOCATED | Z_FLAG_MEMORY | Z_FLAG_COMPRESSED;
    Z_SetSupportLocks(1u << Z_SUPPORT_DOCUMENT);
    EXPECT_EQ(Z_CopyBitmap(&none, &compressed), Z_ERROR_DOCUMENT_LOCKED);
    Z_SetSupportLocks(0);
}

TEST(Copy, IsWholeAndOwnsWhatItHolds) {
    BitmapHandle source, copy;
    std::memset(&copy, 0xCC, sizeof copy);
    const RGBQUAD palette[4] = {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}, {10, 11, 12, 0}};
    ASSERT_EQ(Z_CreateBitmap(&source, MemoryDisk, 9, 5, 2, Z_ORDER_RGB, palette, 4, nullptr, 0), Z_SUCCESS);
    source.XResolution = 300;
    source.PlaybackDelay = 40;
    for (int32_t row = 0; row < 5; ++row) {
        const uint8_t bytes[4] = {static_cast<uint8_t>(row), 0xA5, 0x40, 0};
        Z_PutBitmapRow(&source, bytes, row, 4);
    }
    const Pixels expected = PixelsOf(source);
    ASSERT_EQ(Z_CopyBitmap(&copy, &source), Z_SUCCESS);
    EXPECT_NE(copy.Palette, source.Palette);
    EXPECT_NE(copy.Palette, nullptr);
    EXPECT_NE(copy.PaintLUT, source.PaintLUT);
    EXPECT_EQ(Z_FreeBitmap(&source), Z_SUCCESS);
    EXPECT_EQ(copy.Flags & Z_FLAG_DISK, uint32_t{Z_FLAG_DISK});
    EXPECT_EQ(copy.XResolution, 300);
    EXPECT_EQ(copy.PlaybackDelay, 40);
    EXPECT_EQ(copy.ViewPerspective, 4);
    EXPECT_EQ(PixelsOf(copy), expected);
    Z_FreeBitmap(&copy);
}

TEST(Copy, AFailedCopyHoldsNothing) {
    Bitmap source(MemoryTiled, 30, 20);
    const Pixels expected = source.Fill(3);
    BitmapHandle copy{};
    {
        Reports reports;
        reports.StopAt = 1;
        EXPECT_EQ(Z_CopyBitmap(&copy, &source.record), -29);
        EXPECT_EQ(copy.Flags & Z_FLAG_ALLOCATED, 0u);
    }
    for (uint32_t turn = 1;; ++turn) {
        fault::Arm(fault::AllMemory, turn, true);
        const ReturnCode status = Z_CopyBitmap(&copy, &source.record);
        const bool fired = fault::Fired();
        fault::Disarm();
        if (status == Z_SUCCESS) Z_FreeBitmap(&copy);
        if (!fired) break;
        EXPECT_TRUE(status == Z_SUCCESS || (copy.Flags & Z_FLAG_ALLOCATED) == 0) << turn;
        ASSERT_EQ(PixelsOf(source.record), expected) << turn;
    }
}

TEST(Replacement, IsCommittedOrReleased) {
    Bitmap bitmap(MemoryConventional, 6, 4);
    const Pixels before = bitmap.Fill(1);
    const auto replace = [&](bool commit) {
        zkr::BitmapReplacement replacement(&bitmap.record);
        ASSERT_EQ(Z_DupBitmapNewDim(&replacement.record(), &bitmap.record, 12, 2, 24, Z_DUP_DATA), Z_SUCCESS);
        if (commit) replacement.Commit();
    };
    replace(false);
    EXPECT_EQ(bitmap.record.Width, 6);
    EXPECT_EQ(PixelsOf(bitmap.record), before);
    replace(true);
    EXPECT_EQ(bitmap.record.Width, 12);
    EXPECT_EQ(bitmap.record.Height, 2);
    EXPECT_EQ(PixelsOf(bitmap.record), Pixels(2 * 36));
}

} // namespace
