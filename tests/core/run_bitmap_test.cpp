// Run-compressed bitmaps: what the heap takes to the byte, the lists that go in and out, and what is refused.
#include "core/run_heap.h"
#include "support/pixel_bits.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/copy.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"

namespace zkr::test {
namespace {

using Words = std::vector<uint16_t>;

// A compressed row of some runs, or of a count that they do not have.
Words ListOf(Words runs, uint32_t more = 0) {
    const auto count = static_cast<uint32_t>(runs.size()) + more;
    runs.insert(runs.begin(), 2, 0);
    std::memcpy(runs.data(), &count, sizeof count);
    return runs;
}

// A row of so many runs: single pixels and the rest.
Words ListOfCount(int32_t width, uint32_t words) {
    Words runs(words, 1);
    runs.back() = static_cast<uint16_t>(width - static_cast<int32_t>(words) + 1);
    return ListOf(runs);
}

struct Runs : Bitmap {
    Runs(int32_t width, int32_t height) : Bitmap(width, height, 1) {
        EXPECT_EQ(Z_AllocateBitmap(this, MemoryCompressed), 1);
    }
    void Put(int32_t row, const Words& runs) {
        EXPECT_EQ(Z_PutBitmapRowCompressed(this, nullptr, ListOf(runs).data(), row, 1), 1);
    }
};

TEST(RunHeap, StartsWithAStepOrLarge) {
    // 4 bytes a row: the wish of 524265 rows is 262132 and the header
    const struct {
        int32_t Width, Height;
        size_t Size;
    } cases[] = {{100, 10, 262144}, {32, 524265, 262144}, {32, 524266, 4194304}, {9920, 14032, 4194304}};
    for (const auto& c : cases)
        EXPECT_EQ(Runs(c.Width, c.Height).Size, c.Size) << c.Width << " x " << c.Height;
}

TEST(RunHeap, TakesWhatRowsNeed) {
    enum Act { List, Bytes_, Height, Trim, Grow };
    const struct {
        Act What;
        int32_t Number;
        uint32_t Words;
        int32_t Result;
        size_t Size;
    } steps[] = {
        {Trim, 0, 0, 1, 188}, // header, block header, 128 and 24 that stay behind
        {Trim, 0, 0, 0, 188},
        {List, 0, 52, 1, 188}, // 104 of 128: 24 are not split off
        {Trim, 0, 0, 0, 188},
        {Grow, 0, 0, 1, 262144}, // a block of 262144 - 188 - 24 behind the one in use
        {Trim, 0, 0, 1, 364},
        {List, 0, 10, 1, 364}, // 20 of 128; the rest joins the last block, 84 + 24 + 128
        {Trim, 0, 0, 1, 280},
        {List, 1, 62, 1, 280},    // 124 of the last 128
        {List, 0, 20, 1, 262144}, // moves behind it: 280 + 40 + 24
        {Trim, 0, 0, 1, 520},     // 261840 - 40 - 24 becomes 128
        {Height, 1, 0, 1, 520},   // row 1 joins what row 0 has left: 20 + 24 + 128
        {Trim, 0, 0, 0, 520},
        {Height, 10, 0, 1, 520},
        {List, 2, 88, 1, 262144}, // 176 fit nowhere; the last block grows
        {List, 3, 86, 1, 262144}, // 172 go to the block that was freed last, not to the one they would fit
        {Trim, 0, 0, 1, 940},     // 128 + 261624 - 176 - 24 - 172 - 24 becomes 128
        {List, 2, 40, 1, 940},    // leaves 72
        {List, 4, 36, 1, 940},
        {Bytes_, 2, 40, 1, 940}, // into the place that it gives up
        {List, 6, 86, 1, 940},
        {List, 5, 64, 1, 940}, // the last 128
        {Trim, 0, 0, 0, 940},
        {Grow, -1, 0, 0, 940}, // beyond 4 GiB
    };
    Runs bitmap(1000, 10);
    for (const auto& step : steps) {
        const Words list = ListOfCount(1000, std::max(step.Words, 1u));
        Bytes bytes(bitmap.BytesPerLine);
        int32_t result = 1;
        switch (step.What) {
        case List: result = Z_PutBitmapRowCompressed(&bitmap, nullptr, list.data(), step.Number, 1); break;
        case Bytes_:
            Z_ExpandRow(list.data(), bytes.data(), 0, 1000);
            EXPECT_EQ(Z_PutBitmapRow(&bitmap, bytes.data(), step.Number, bitmap.BytesPerLine), 128);
            break;
        case Height: result = Z_ChangeBitmapHeight(&bitmap, step.Number); break;
        case Trim: result = Z_TrimBitmapHeap(&bitmap); break;
        case Grow: result = Z_GrowBitmapHeap(&bitmap, static_cast<uint32_t>(step.Number));
        }
        EXPECT_EQ(result, step.Result) << "step " << &step - steps;
        EXPECT_EQ(bitmap.Size, step.Size) << "step " << &step - steps;
        ExpectConsistent(bitmap);
    }
    EXPECT_EQ(Z_UpdateBitmapSize(&bitmap), 1);
    EXPECT_EQ(bitmap.Size, 20u + 40 + 86 + 36 + 64 + 86) << "a count of words";
}

TEST(BlankRows, AreGivenWholeAndInParts) {
    constexpr uint16_t kept = 0xEEEE;
    const struct {
        int32_t Width;
        Words Whole, Chunks, Part; // the part is all but the first pixel
    } cases[] = {
        {100, {100}, {100}, {99}},
        {32767, {32767}, {32767}, {32766}},
        {32768, {32768}, {32767, kept, 1}, {32767}},
        {65535, {65535}, {32767, kept, 32767, kept, 1}, {65534}},
        {65536, {65535, 0, 1}, {32767, kept, 32767, kept, 2}, {65534, 0, 1}},
        {70000, {65535, 0, 4465}, {32767, kept, 32767, kept, 4466}, {65534, 0, 4465}},
        {131071,
         {65535, 0, 65535, 0, 1},
         {32767, kept, 32767, kept, 32767, kept, 32767, kept, 3},
         {65534, 0, 65535, 0, 1}},
    };
    for (const auto& c : cases) {
        Runs bitmap(c.Width, 2);
        const auto given = [&](auto get, const Words& expected) {
            Words list(expected.size() + 3, kept);
            EXPECT_EQ(get(list.data()), 1);
            Words all = ListOf(expected);
            all.push_back(kept);
            EXPECT_EQ(list, all) << "width " << c.Width;
        };
        const auto whole = [&](uint16_t* to) { return Z_GetBitmapRowCompressed(&bitmap, nullptr, to, 1, 5); };
        const auto chunks = [&](uint16_t* to) {
            return Z_GetBitmapRowColCompressed(&bitmap, nullptr, to, 0, 0, c.Width);
        };
        given(whole, c.Whole);
        given(chunks, c.Chunks);
        given([&](uint16_t* to) { return Z_GetBitmapRowColCompressed(&bitmap, nullptr, to, 1, 1, c.Width); },
              c.Part);
        const Bytes zeros(bitmap.BytesPerLine);
        Z_PutBitmapRow(&bitmap, zeros.data(), 0, bitmap.BytesPerLine);
        given(chunks, c.Whole); // no longer blank: as it stands
    }
}

// The words as they stand, over pixels 0001111000 above 1111111111; what they mean is the model's business.
TEST(PartsOfRows, BeginWithZeros) {
    const struct {
        int32_t Column, Width;
        Words Expected;
    } cases[] = {{0, 5, {3, 2}}, {3, 4, {0, 4}}, {4, 4, {0, 3, 1}}, {5, 99, {0, 2, 3, 10}}};
    for (const int32_t type : {int32_t{MemoryCompressed}, int32_t{MemoryDisk}}) {
        Bitmap bitmap(10, 2, 1);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, type), 1);
        const uint8_t rows[] = {0x1E, 0, 0, 0, 0xFF, 0xC0, 0, 0};
        Z_PutBitmapRow(&bitmap, rows, 0, 4), Z_PutBitmapRow(&bitmap, rows + 4, 1, 4);
        const auto expect = [&](int32_t column, int32_t width, const Words& words) {
            Words list(words.size() + 2);
            ASSERT_EQ(Z_GetBitmapRowColCompressed(&bitmap, nullptr, list.data(), 0, column, width), 1);
            EXPECT_EQ(list, ListOf(words)) << column << ", " << width;
        };
        for (const auto& c : cases)
            expect(c.Column, c.Width, c.Expected);
        // Nothing is left at the border between old and new runs.
        ASSERT_EQ(Z_PutBitmapRowColCompressed(&bitmap, nullptr, ListOf({0, 3, 2}).data(), 0, 7, 5), 1);
        expect(0, 20, {3, 7, 2, 8});
    }
}

// Empty runs of a list that was handed in come along, but for those that stand where the part begins.
TEST(PartsOfRows, KeepRunsAsTheyStand) {
    Bitmap bitmap(10, 2, 1);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryCompressed), 1);
    Words rows = ListOf({2, 0, 3, 4, 0, 0, 1}); // 0000011110
    for (const uint16_t word : ListOf({0, 1, 0, 9}))
        rows.push_back(word);
    ASSERT_EQ(Z_PutBitmapRowCompressed(&bitmap, nullptr, rows.data(), 0, 2), 1);
    const struct {
        int32_t Column, Width;
        Words Expected;
    } cases[] = {{0, 9, {2, 0, 3, 4}},    {1, 3, {1, 0, 2}},    {2, 5, {3, 2}},
                 {6, 4, {0, 3, 0, 0, 1}}, {9, 3, {1, 1, 0, 1}}, {5, 7, {0, 4, 0, 0, 1, 1, 0, 1}}};
    for (const auto& c : cases) {
        Words list(c.Expected.size() + 2);
        ASSERT_EQ(Z_GetBitmapRowColCompressed(&bitmap, nullptr, list.data(), 0, c.Column, c.Width), 1);
        EXPECT_EQ(list, ListOf(c.Expected)) << c.Column << ", " << c.Width;
    }
}

TEST(ListsThatAreNoRow, AreRefusedBeforeAnythingIsStored) {
    const Words refused[] = {ListOf({}),
                             ListOf({9}),
                             ListOf({3, 4, 4}),
                             ListOf({3, 4, 65535}),
                             ListOf({10}, 0x80000000u),
                             ListOf({10}, 11),
                             ListOfCount(10, 12)};
    for (const int32_t type : {int32_t{MemoryCompressed}, int32_t{MemoryConventional}}) {
        Bitmap bitmap(10, 3, 1);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, type), 1);
        for (const Words& list : refused) {
            Words rows = ListOf({2, 8});
            rows.insert(rows.end(), list.begin(), list.end());
            EXPECT_EQ(Z_PutBitmapRowCompressed(&bitmap, nullptr, rows.data(), 1, 2), code::InvalidArgument);
            EXPECT_EQ(Z_PutBitmapRowColCompressed(&bitmap, nullptr, list.data(), 1, 0, 10),
                      code::InvalidArgument);
        }
        EXPECT_EQ(Rows(bitmap), Bytes(12));
        Words most(11, 1);
        most[0] = 0;
        EXPECT_EQ(Z_PutBitmapRowCompressed(&bitmap, nullptr, ListOf(most).data(), 2, 1), 1);
        EXPECT_EQ(Rows(bitmap), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0xAA, 0x80, 0, 0}));
    }
}

// An even count whose first run is not empty takes a word more when mirrored, which this one has no room for.
TEST(Mirrored, IsAListThatSpendsWordsOnEmptyRuns) {
    Runs bitmap(3, 1);
    bitmap.Put(0, {1, 1, 0, 1});
    ASSERT_TRUE(storage::MirrorRow(bitmap, 0));
    Words list(5);
    ASSERT_EQ(Z_GetBitmapRowCompressed(&bitmap, nullptr, list.data(), 0, 1), 1);
    EXPECT_EQ(list, ListOf({0, 2, 1}));
}

TEST(Mirrored, IsTheRowBackwards) {
    for (const int32_t width : {1, 7, 64, 300, 65536, 140000}) {
        Runs bitmap(width, 2);
        for (uint32_t seed = 0; seed < 10; ++seed) {
            Bytes rows = Fill(bitmap, seed);
            for (int32_t left = 0, right = width - 1; left < right; ++left, --right) {
                const uint64_t pixel = ReadPixel(rows.data(), 1, left);
                WritePixel(rows.data(), 1, left, ReadPixel(rows.data(), 1, right));
                WritePixel(rows.data(), 1, right, pixel);
            }
            ASSERT_TRUE(storage::MirrorRow(bitmap, 0));
            EXPECT_EQ(Rows(bitmap), rows) << width << ", " << seed;
            ExpectConsistent(bitmap);
        }
    }
}

TEST(RunRows, StayWithinTheBitmap) {
    Runs bitmap(10, 2);
    bitmap.Put(1, {0, 10});
    Bytes buffer(12, 0xA5);
    EXPECT_EQ(Z_GetBitmapRowCol(&bitmap, buffer.data(), 1, 16, 4), code::InvalidArgument);
    EXPECT_EQ(Z_PutBitmapRowCol(&bitmap, buffer.data(), 1, -1, 4), code::InvalidArgument);
    EXPECT_EQ(buffer, Bytes(12, 0xA5));
    EXPECT_EQ(Z_GetBitmapRow(&bitmap, buffer.data(), 1, 12), 12) << "as many as were asked for";
    EXPECT_EQ(buffer, (Bytes{0xFF, 0xC0, 0, 0, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5}));
    for (const int32_t row : {-1, 2}) {
        const uint32_t segment[] = {0, 5};
        EXPECT_EQ(Z_PutBitmapRow(&bitmap, buffer.data(), row, 4), 4);
        EXPECT_EQ(Z_PutBitmapRowSegments(&bitmap, buffer.data(), row, 0, segment, 2, 0),
                  code::InvalidArgument);
    }
    ExpectConsistent(bitmap);
}

TEST(CompressedRows, TellWhatIsWrong) {
    Runs bitmap(10, 2);
    Bitmap none(10, 2, 1);
    BitmapHandle hollow = bitmap;
    hollow.Addr = nullptr;
    Words list = ListOf({10});
    uint16_t* const row = list.data();
    for (BitmapHandle* bad :
         {static_cast<BitmapHandle*>(nullptr), static_cast<BitmapHandle*>(&none), &hollow}) {
        EXPECT_EQ(Z_GetBitmapRowCompressed(bad, nullptr, row, 0, 1), code::InvalidBitmap);
        EXPECT_EQ(Z_PutBitmapRowCompressed(bad, nullptr, row, 0, 1), code::InvalidBitmap);
        EXPECT_EQ(Z_GetBitmapRowColCompressed(bad, nullptr, row, 0, 0, 1), code::InvalidBitmap);
        EXPECT_EQ(Z_PutBitmapRowColCompressed(bad, nullptr, row, 0, 0, 1), code::InvalidBitmap);
        EXPECT_EQ(Z_TrimBitmapHeap(bad), code::InvalidArgument);
        EXPECT_EQ(Z_GrowBitmapHeap(bad, 5), code::InvalidArgument);
    }
    EXPECT_EQ(Z_UpdateBitmapSize(&hollow), code::InvalidBitmap);
    const struct {
        uint16_t* List;
        int32_t Row, Column;
    } places[] = {{nullptr, 0, 0}, {row, -1, 0}, {row, 2, 0}, {row, 0, -1}, {row, 0, 10}};
    for (const auto& p : places) {
        EXPECT_EQ(Z_GetBitmapRowColCompressed(&bitmap, nullptr, p.List, p.Row, p.Column, 10),
                  code::InvalidArgument);
        EXPECT_EQ(Z_PutBitmapRowColCompressed(&bitmap, nullptr, p.List, p.Row, p.Column, 10),
                  code::InvalidArgument);
    }
    EXPECT_EQ(Z_GetBitmapRowCompressed(&bitmap, nullptr, nullptr, 0, 1), code::InvalidArgument);
    EXPECT_EQ(Z_PutBitmapRowCompressed(&bitmap, nullptr, row, -1, 1), code::InvalidArgument);
    for (const int32_t rows : {0, -1})
        EXPECT_EQ(Z_PutBitmapRowCompressed(&bitmap, nullptr, row, 0, rows), 1);
    EXPECT_EQ(Z_GetBitmapRowCompressed(&bitmap, nullptr, row, 2, 1), 1) << "no row is left";
    EXPECT_EQ(list, ListOf({10}));
}

TEST(Compression, TrimsTheHeapAndKeepsTheRecord) {
    Runs bitmap(37, 20);
    bitmap.XResolution = 300;
    Z_CreateBitmapFixedPalette(&bitmap);
    const void* palette = bitmap.Palette;
    for (int32_t row = 0; row < 20; ++row)
        bitmap.Put(row, {5, 30, 2});
    EXPECT_EQ(Z_ToggleBitmapCompression(&bitmap), 1);
    EXPECT_EQ(InfoOf(bitmap).Type, MemoryConventional);
    EXPECT_EQ(Z_ChangeBitmapCompression(&bitmap, COMP_RLE), 1);
    EXPECT_EQ(bitmap.Size, 12u + 20 * (24 + 8) + 24 + 128 + 24);
    EXPECT_EQ(bitmap.XResolution, 300);
    EXPECT_EQ(bitmap.Palette, palette);
    Bitmap copy;
    EXPECT_EQ(Z_CopyBitmap(&copy, &bitmap), 1);
    EXPECT_EQ(InfoOf(copy).Type, MemoryCompressed);
}

TEST(Compression, IsRefused) {
    Bitmap gray(8, 2, 8), none(8, 2, 1);
    Runs bitmap(8, 2);
    ASSERT_EQ(Z_AllocateBitmap(&gray, MemoryDisk), 1);
    for (const int32_t method : {-1, 3})
        EXPECT_EQ(Z_ChangeBitmapCompression(&bitmap, method), code::InvalidArgument);
    EXPECT_EQ(Z_ChangeBitmapCompression(&gray, COMP_SUPER), code::InvalidArgument) << "no such strips";
    EXPECT_EQ(InfoOf(gray).Type, MemoryDisk);
    for (BitmapHandle* bad : {static_cast<BitmapHandle*>(nullptr), static_cast<BitmapHandle*>(&none)}) {
        EXPECT_EQ(Z_ChangeBitmapCompression(bad, COMP_RLE), code::InvalidBitmap);
        EXPECT_EQ(Z_ToggleBitmapCompression(bad), code::InvalidBitmap);
    }
    EXPECT_EQ(Z_ToggleBitmapCompression(&gray), code::InvalidBitmap);
    Z_SetSupportLocks(1u << Z_SUPPORT_DOCUMENT);
    EXPECT_EQ(Z_ToggleBitmapCompression(nullptr), code::DocumentLocked);
    EXPECT_EQ(Z_CopyBitmap(&none, &bitmap), code::DocumentLocked);
    Z_SetSupportLocks(0);
    EXPECT_EQ(Z_ChangeBitmapCompression(&gray, COMP_RLE), 1) << "what cannot be runs becomes plain";
    EXPECT_EQ(InfoOf(gray).Type, MemoryConventional);
}

} // namespace
} // namespace zkr::test
