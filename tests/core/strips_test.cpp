// Super-compressed bitmaps: their sizes, what their filter modules are told, and what becomes of rows when a
// module or the system fails. The attack on rows holds them against a plain array of bytes.
#include "core/storage/filter_modules.h"
#include "faults/fault_driver.h"
#include "zkr13n/copy.h"

#include <optional>

namespace zkr::test {
namespace {

using storage::Filter;
using storage::FilterEntries;

struct Strips : Bitmap {
    Strips(int32_t width, int32_t height, int32_t bits) : Bitmap(width, height, bits) {
        EXPECT_EQ(Z_AllocateBitmap(this, MemorySuperCompressed), 1);
    }
};

// Stands between the library and a module: notes what the module is given, and lets it fail or lie.
class Between {
  public:
    explicit Between(Filter filter) : filter_(filter) {
        EXPECT_EQ(storage::AcquireFilter(filter), 1);
        module = storage::EntriesOf(filter);
        storage::EntriesOf(filter) = {Load, Save};
    }
    ~Between() {
        storage::EntriesOf(filter_) = module;
        storage::ReleaseFilter(filter_);
    }

    static inline bool saves = true, loads = true;
    static inline std::optional<uint32_t> lie; // the bytes that a save tells
    static inline BITMAPINFOHEADER header;
    static inline uint32_t room;
    static inline std::vector<int32_t> saved, loaded; // the other arguments

  private:
    static int32_t Z_CALL Load(const void* data, uint32_t bytes, void* pixels, int32_t quality, int32_t width,
                               int32_t rows, int32_t bits, int32_t a, int32_t b) {
        loaded = {quality, width, rows, bits, a, b};
        if (!loads) std::memset(pixels, 0xEE, 5);
        return loads ? module.Load(data, bytes, pixels, quality, width, rows, bits, a, b) : 2;
    }
    static int32_t Z_CALL Save(const void* pixels, const BITMAPINFOHEADER* strip, void* output,
                               uint32_t* bytes, int32_t parameter, int32_t a, int32_t quality, int32_t b,
                               int32_t c) {
        header = *strip, room = *bytes, saved = {parameter, a, quality, b, c};
        EXPECT_EQ(reinterpret_cast<uintptr_t>(pixels) % 32, 0u);
        if (!saves) return 0;
        const int32_t result = module.Save(pixels, strip, output, bytes, parameter, a, quality, b, c);
        *bytes = lie.value_or(*bytes);
        return result;
    }

    static inline FilterEntries module;
    Filter filter_;
};

TEST(Strips, CountTheirCompressedBytes) {
    Strips bitmap(1000, 40, 24);
    EXPECT_EQ(bitmap.Size, 0u) << "nothing is saved yet";
    Fill(bitmap, 3);
    const size_t two = bitmap.Size;
    EXPECT_GT(two, 2u * 48000) << "of three strips the last one is in the buffer; noise does not compress";
    const Bytes blank(3000);
    Z_PutBitmapRow(&bitmap, blank.data(), 0, 3000);
    const size_t three = bitmap.Size;
    EXPECT_GT(three, two);
    for (int32_t row = 0; row < 16; ++row)
        Z_PutBitmapRow(&bitmap, blank.data(), row, 3000);
    uint8_t byte;
    Z_GetBitmapRow(&bitmap, &byte, 39, 1);
    EXPECT_LT(bitmap.Size, three - 45000) << "a strip that is saved again is counted once";
    ASSERT_EQ(Z_ChangeBitmapHeight(&bitmap, 1), 1);
    EXPECT_LT(bitmap.Size, 1000u);
    Bytes rows(9000, 0xEE);
    EXPECT_EQ(Z_GetBitmapRowCol(&bitmap, rows.data(), 0, 1, 9000), 2997) << "no row is left";
    EXPECT_EQ(rows[2997], 0xEE);
    const int64_t alive = fault::Live();
    EXPECT_EQ(Z_FreeBitmap(&bitmap), 1);
    EXPECT_LT(fault::Live(), alive);
    EXPECT_EQ(Z_AllocateBitmap(&bitmap, MemorySuperCompressed), 1) << "a freed record can be given storage";
}

TEST(Strips, TellTheFilterWhatItNeeds) {
    for (const bool colour : {true, false}) {
        const Between filter(colour ? Filter::Colour : Filter::Bitonal);
        const int32_t bits = colour ? 24 : 1;
        Strips bitmap(50, 35, bits);
        Fill(bitmap, 1);
        Rows(bitmap);
        EXPECT_EQ(Between::header.biSize, 40u);
        EXPECT_EQ(Between::header.biWidth, 50);
        EXPECT_EQ(Between::header.biHeight, -3) << "the last strip, from the top down";
        EXPECT_EQ(Between::header.biBitCount, bits);
        EXPECT_EQ(Between::room, bitmap.BytesPerLine * 32);
        EXPECT_EQ(Between::saved, (std::vector<int32_t>{colour ? -1 : 0, 0, colour ? 20 : 68, 0, 0}));
        EXPECT_EQ(Between::loaded, (std::vector<int32_t>{colour ? 20 : 68, 50, 3, bits, 0, 0}));
    }
}

TEST(Strips, ReportAFailingFilterAndLoseNothing) {
    const Between filter(Filter::Colour);
    for (const std::optional<uint32_t> lie : {std::optional<uint32_t>{}, {12 * 32 + 1}, {0}}) {
        Strips bitmap(4, 40, 24);
        Bytes all = Fill(bitmap, 5), row(12, 9), got(24);
        ASSERT_EQ(Rows(bitmap), all);
        const size_t size = bitmap.Size;

        Between::saves = lie.has_value(), Between::lie = lie;
        ASSERT_EQ(Z_PutBitmapRow(&bitmap, row.data(), 3, 12), 12);
        std::copy(row.begin(), row.end(), all.begin() + 36);
        EXPECT_EQ(Z_GetBitmapRow(&bitmap, got.data(), 16, 12), 0);
        EXPECT_EQ(Z_PutBitmapRow(&bitmap, row.data(), 39, 12), 0);
        EXPECT_EQ(Z_GetBitmapRow(&bitmap, got.data(), 15, 24), 12) << "as far as the strip goes";
        EXPECT_TRUE(std::equal(got.begin(), got.begin() + 12, all.begin() + 180));
        const uint32_t segment[] = {0, 2};
        EXPECT_EQ(Z_PutBitmapRowSegments(&bitmap, row.data(), 20, 0, segment, 2, 0), code::WriteFailed);
        EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, 41), 1) << "no row call";
        EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, 40), 1);
        EXPECT_EQ(bitmap.Size, size);
        Between::saves = true, Between::lie.reset();
        EXPECT_EQ(Rows(bitmap), all);

        Between::loads = false;
        EXPECT_EQ(Z_GetBitmapRow(&bitmap, got.data(), 0, 12), 0);
        Between::loads = true;
        EXPECT_EQ(Rows(bitmap), all) << "nothing of what a failing load has left is taken for a strip";
    }
}

// The module is there before, and it alone, so that it does not count as a leak of the first round.
TEST(Strips, KeepTheirPromisesWhenTheSystemFails) {
    const auto type = [](Ground& g, int32_t to) {
        return Z_SetBitmapMemoryInfo(&g.Subject, to, 0, 0, 0, 0, 0, Z_MEMORY_INFO_TYPE);
    };
    for (const int32_t bits : {24, 1}) {
        const ReturnCode missing = bits == 24 ? code::ColourFilterMissing : code::FaxFilterMissing;
        const auto subject = [=](int32_t memoryType) {
            return [=](Ground& g) {
                Z_InitBitmap(&g.Subject, 37, 40, bits);
                ASSERT_EQ(Z_AllocateBitmap(&g.Subject, memoryType), 1);
                Fill(g.Subject, 6);
                storage::UnloadUnusedFilters();
            };
        };
        const auto strips = subject(MemorySuperCompressed);
        storage::UnloadUnusedFilters();
        Strips(1, 1, bits);
        RunAll({
            {"into strips",
             {code::OutOfMemory, code::WriteFailed, missing},
             subject(MemoryConventional),
             [=](Ground& g) { return type(g, MemorySuperCompressed); }},
            {"out of strips",
             {code::OutOfMemory},
             strips,
             [=](Ground& g) { return type(g, MemoryConventional); }},
            {"copy",
             {code::OutOfMemory, code::WriteFailed},
             strips,
             [](Ground& g) { return Z_CopyBitmap(&g.Made, &g.Subject); }},
            {"height",
             {code::OutOfMemory},
             strips,
             [](Ground& g) { return Z_ChangeBitmapHeight(&g.Subject, 90); }},
            {"rows of two strips",
             {code::General},
             strips,
             [](Ground& g) {
                 // They are written as they are, so that a failure changes nothing.
                 const uint32_t bytes = g.Subject.BytesPerLine;
                 g.Row.resize(bytes);
                 for (const int32_t row : {2, 30, 3}) {
                     if (Z_GetBitmapRow(&g.Subject, g.Row.data(), row, bytes) == 0 ||
                         Z_PutBitmapRow(&g.Subject, g.Row.data(), row, bytes) == 0)
                         return code::General;
                 }
                 return code::Success;
             }},
        });
    }
}

} // namespace
} // namespace zkr::test
