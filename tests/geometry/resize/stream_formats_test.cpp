// What the streaming resizer makes of formats, palettes and requests: rows at the size that they have, so that nothing but
// the format changes.
#include "support/pixel_bits.h"
#include "support/seeded.h"

#include "zkr13n/allocation.h"
#include "zkr13n/convert.h"
#include "zkr13n/dither.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/resize.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace zkr::test {
namespace {

using Bytes = std::vector<uint8_t>;
constexpr int32_t Across = 13, Down = 5; // pixels of a source

struct Source : BitmapHandle {
    Source(int32_t bits, int32_t order, uint64_t seed = 1, const RGBQUAD* palette = nullptr)
        : BitmapHandle{} {
        Z_CreateBitmap(this, MemoryConventional, Across, Down, bits, order, palette, 0, nullptr, 0);
        Seeded seeded(seed);
        for (size_t i = 0; i < Size; ++i)
            static_cast<uint8_t*>(Addr)[i] = seeded.Byte();
    }
    ~Source() { Z_FreeBitmap(this); }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    Bytes Row(int32_t y) {
        Bytes row(Across * 8);
        Z_GetBitmapRow(this, row.data(), y, BytesPerLine);
        return row;
    }
};

struct Request {
    int32_t Bits;
    uint32_t Flags = 0;
    const RGBQUAD* Palette = nullptr;
    uint32_t Colors = 0;
};

ReturnCode Start(BitmapHandle& source, const Request& request, ResizeRowContext** stream) {
    return Z_StartResizeBitmap(&source, source.Width, source.Height, request.Bits, request.Palette,
                               request.Colors, request.Flags, nullptr, nullptr, stream);
}

// The rows of a stream, packed; nothing where it cannot be started.
std::vector<Bytes> Streamed(BitmapHandle& source, const Request& request) {
    ResizeRowContext* stream = nullptr;
    std::vector<Bytes> rows;
    if (Start(source, request, &stream) != 1) return rows;
    for (int32_t y = 0; y < source.Height; ++y) {
        Bytes row(RowBytes(source.Width, request.Bits));
        EXPECT_EQ(Z_GetResizedRowCol(stream, row.data(), y, 0, static_cast<uint32_t>(row.size())), 1);
        rows.push_back(row);
    }
    Z_StopResizeBitmap(stream);
    return rows;
}

void ClearEnd(Bytes& row, int32_t bits) {
    row.resize(RowBytes(Across, bits));
    if (const size_t used = static_cast<size_t>(Across * bits) % 8; used != 0)
        row.back() &= static_cast<uint8_t>(bits == 12 ? 0x0F : 0xFF00 >> used);
}

std::vector<RGBQUAD> RandomPalette(uint64_t seed) {
    Seeded seeded(seed);
    std::vector<RGBQUAD> palette(256);
    for (RGBQUAD& entry : palette)
        entry = {seeded.Byte(), seeded.Byte(), seeded.Byte(), 0};
    return palette;
}

std::vector<RGBQUAD> GrayRamp() {
    std::vector<RGBQUAD> ramp(256);
    Z_GetFixedPalette(ramp.data(), 0);
    return ramp;
}

// Row by row through the conversions that the rows are told to take: to the working format and from there.
std::vector<Bytes> Converted(Source& source, int32_t from, int32_t work, int32_t workOrder, const Request& to,
                             int32_t order) {
    RGBQUAD entries[256] = {};
    Z_GetBitmapPaletteEntries(&source, 0, 256, entries);
    std::vector<Bytes> rows;
    for (int32_t y = 0; y < Down; ++y) {
        Bytes row = source.Row(y);
        EXPECT_EQ(Z_ConvertBuffer(row.data(), Across, from, work, source.Order, workOrder, entries, nullptr),
                  1);
        EXPECT_EQ(Z_ConvertBuffer(row.data(), Across, work, to.Bits, workOrder, order, nullptr, to.Palette),
                  1);
        ClearEnd(row, to.Bits);
        rows.push_back(row);
    }
    return rows;
}

TEST(StreamFormats, OrderAndGrayAreConvertedTo) {
    const std::vector<RGBQUAD> palette = RandomPalette(9);
    for (const int32_t bits : {3, 8, 16, 24, 32, 48, 64}) {
        Source source(bits, 1, 2, palette.data());
        const int32_t work = bits >= 48 ? 48 : 24;
        for (const int32_t to : {16, 24, 32, 48, 64}) {
            EXPECT_EQ(Streamed(source, {to}), Converted(source, bits, work, 1, {to}, 0))
                << bits << " to " << to;
            EXPECT_EQ(Streamed(source, {to, RESIZE_ORDER_BGR | RESIZE_ORDER_GRAY}),
                      Converted(source, bits, work, 1, {to}, 1));
        }
        // In gray indices are converted, not dithered, to the palette that is given or the fixed one.
        for (const Request& to :
             {Request{12}, Request{16}, Request{4}, Request{8}, Request{8, 0, palette.data(), 256}}) {
            const Request gray = {to.Bits, RESIZE_ORDER_GRAY | 1 << RESIZE_DITHER_SHIFT, to.Palette,
                                  to.Colors};
            EXPECT_EQ(Streamed(source, gray), Converted(source, bits, work, 1, gray, 2))
                << bits << " to " << to.Bits;
        }
    }
}

TEST(StreamFormats, GrayWordsHaveNoAlpha) {
    Source words(16, 2, 3);
    for (const int32_t bits : {16, 32, 64})
        for (const Bytes& row : Streamed(words, {bits}))
            for (int32_t x = 0; x < Across; ++x) {
                const uint64_t pixel = ReadPixel(row.data(), bits, x);
                EXPECT_EQ(bits == 16 ? pixel >> 15 : bits == 32 ? pixel >> 24 : pixel >> 48, 0u) << bits;
            }
    // 12 bits are gray in any order.
    Source narrow(12, 2, 4);
    const auto expected = Streamed(narrow, {24});
    narrow.Order = 0;
    EXPECT_EQ(Streamed(narrow, {24}), expected);
}

// The window is that of the pixels where the level table is active, else that of the table.
TEST(StreamFormats, LevelTablesAndWindows) {
    Source source(16, 2, 5);
    source.LowBit = 8, source.HighBit = 11, source.LevelLowBit = 2, source.LevelHighBit = 9;
    RGBQUAD* const levels = static_cast<RGBQUAD*>(Z_OsAllocInit(200 * sizeof(RGBQUAD), 1));
    for (uint8_t i = 0; i < 200; ++i)
        levels[i] = {i, static_cast<uint8_t>(i / 2), static_cast<uint8_t>(255 - i), 0};
    for (const bool isActive : {false, true})
        for (const bool hasTable : {false, true}) {
            source.LevelLUT = hasTable ? levels : nullptr;
            source.LevelLUTLength = hasTable ? 200 : 0;
            source.Flags = isActive ? source.Flags | Z_FLAG_LEVEL_LUT_ACTIVE
                                    : source.Flags & ~uint32_t{Z_FLAG_LEVEL_LUT_ACTIVE};
            const auto rows = Streamed(source, {24, RESIZE_ORDER_BGR});
            const uint32_t shift = isActive ? 8 : 2, bits = isActive ? 4 : 8;
            for (int32_t y = 0; y < Down; ++y)
                for (int32_t x = 0; x < Across; ++x) {
                    const uint64_t value =
                        ReadPixel(source.Row(y).data(), 16, x) >> shift & ((1u << bits) - 1);
                    const RGBQUAD entry = value < 200 ? levels[value] : RGBQUAD{};
                    const auto stretched = static_cast<uint8_t>(value * 65535 / ((1u << bits) - 1) >> 8);
                    const uint8_t* pixel = rows[static_cast<size_t>(y)].data() + x * 3;
                    const uint8_t expected[3] = {hasTable ? entry.rgbBlue : stretched,
                                                 hasTable ? entry.rgbGreen : stretched,
                                                 hasTable ? entry.rgbRed : stretched};
                    ASSERT_EQ(std::memcmp(pixel, expected, 3), 0)
                        << isActive << hasTable << ", value " << value;
                }
        }
    source.LevelLUT = nullptr;
    Z_OsFree(levels);
}

TEST(StreamFormats, IndicesAreDithered) {
    const std::vector<RGBQUAD> palette = RandomPalette(7), own = RandomPalette(8);
    const struct {
        int32_t SourceBits, Bits, Method;
        const RGBQUAD* Palette;
        uint32_t Colors;
        const RGBQUAD* Expected;
        uint32_t ExpectedColors;
    } cases[] = {{24, 4, 1, palette.data(), 16, palette.data(), 16},
                 {24, 8, 7, palette.data(), 200, palette.data(), 200},
                 {24, 3, 2, nullptr, 0, nullptr, 8},
                 {24, 8, 3, nullptr, 0, nullptr, 256},
                 {5, 2, 4, nullptr, 0, own.data(), 32},
                 {8, 8, 5, nullptr, 0, own.data(), 256},
                 {48, 1, 6, nullptr, 0, nullptr, 2},
                 {24, 7, 0, palette.data(), 256, palette.data(), 256}};
    for (const auto& c : cases) {
        Source source(c.SourceBits, 1, 6, own.data());
        const int32_t work = c.SourceBits == 48 ? 48 : 24;
        BitmapHandle helper = {};
        Z_InitBitmap(&helper, Across, Down, work);
        helper.DitheringMethod = c.Method;
        ASSERT_EQ(Z_StartDitheringExt(&helper, c.Expected, c.ExpectedColors, c.Bits, nullptr), 1);
        std::vector<Bytes> expected;
        for (int32_t y = 0; y < Down; ++y) {
            Bytes row = source.Row(y), target(RowBytes(Across, c.Bits));
            Z_ConvertBuffer(row.data(), Across, c.SourceBits, work, source.Order, 1, own.data(), nullptr);
            Z_DitherLine(&helper, row.data(), target.data());
            expected.push_back(target);
        }
        Z_StopDithering(&helper);
        const auto flags = RESIZE_ORDER_BGR | static_cast<uint32_t>(c.Method) << RESIZE_DITHER_SHIFT;
        EXPECT_EQ(Streamed(source, {c.Bits, flags, c.Palette, c.Colors}), expected)
            << c.SourceBits << " to " << c.Bits;
    }
}

// 8 bits are gray levels where the palette is a ramp, or where the bitmap is gray and there is no palette.
TEST(StreamFormats, EightBitsOfGrayAreLevels) {
    const std::vector<RGBQUAD> ramp = GrayRamp(), palette = RandomPalette(7);
    Source gray(0, 1, 4), colour(24, 1, 4);
    std::vector<Bytes> levels, grays;
    for (int32_t y = 0; y < Down; ++y) {
        levels.push_back(gray.Row(y));
        levels.back().resize(Across);
        Bytes row = colour.Row(y);
        Z_ConvertBuffer(row.data(), Across, 24, 0, 1, 1, nullptr, nullptr);
        row.resize(Across);
        grays.push_back(row);
    }
    EXPECT_EQ(Streamed(gray, {8}), levels);
    EXPECT_EQ(Streamed(gray, {0 + 8, 0, ramp.data(), 256}), levels);
    EXPECT_EQ(Streamed(colour, {8, 0, ramp.data(), 256}), grays);
    EXPECT_EQ(Streamed(colour, {8, 0, ramp.data(), 0}), grays) << "a count of 0 stands for 256 in the test";
    EXPECT_NE(Streamed(colour, {8, 0, ramp.data(), 255}), grays);
    EXPECT_NE(Streamed(colour, {8}), grays);
}

TEST(StreamFormats, Refusals) {
    const std::vector<RGBQUAD> palette = RandomPalette(7);
    Source source(24, 1);
    auto* const untouched = reinterpret_cast<ResizeRowContext*>(8);
    for (const Request& request :
         {Request{8, 0, palette.data(), 0}, Request{4, 0, palette.data(), 0},
          Request{8, 0, palette.data(), 257}, Request{12}, Request{24, RESIZE_ORDER_GRAY}, Request{9},
          Request{65}, Request{4, 9 << RESIZE_DITHER_SHIFT}}) {
        ResizeRowContext* stream = untouched;
        EXPECT_EQ(Start(source, request, &stream), Z_ERROR_ARGUMENT) << request.Bits;
        EXPECT_EQ(stream, untouched);
    }
    ResizeRowContext* stream = nullptr;
    EXPECT_EQ(Z_StartResizeBitmap(nullptr, 1, 1, 24, nullptr, 0, 0, nullptr, nullptr, &stream),
              Z_ERROR_BITMAP);
    EXPECT_EQ(Z_StartResizeBitmap(&source, 1, 1, 24, nullptr, 0, 0, nullptr, nullptr, nullptr),
              Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_StartResizeBitmap(&source, 0, 0, 24, nullptr, 0, 0, nullptr, nullptr, &stream),
              Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_StopResizeBitmap(nullptr), Z_ERROR_ARGUMENT);
    uint32_t other[4] = {1, 2, 3, 4};
    Bytes target(9, 0x77);
    EXPECT_EQ(Z_GetResizedRowCol(reinterpret_cast<ResizeRowContext*>(other), target.data(), 0, 0, 9),
              Z_ERROR_ARGUMENT);
    ASSERT_EQ(Start(source, {24}, &stream), 1);
    EXPECT_EQ(Z_GetResizedRowCol(stream, nullptr, 0, 0, 9), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_GetResizedRowCol(stream, target.data(), 0, Across, 9), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_GetResizedRowCol(stream, target.data(), 0, -1, 9), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_GetResizedRowCol(stream, target.data(), 0, 0, 0), Z_ERROR_ARGUMENT);
    EXPECT_EQ(target, Bytes(9, 0x77));
    Z_StopResizeBitmap(stream);
}

TEST(StreamRequests, RowsOutsideAndLongRequests) {
    Source source(24, 1), bits(1, 0);
    ResizeRowContext* stream = nullptr;
    ASSERT_EQ(Start(source, {24, RESIZE_ORDER_BGR}, &stream), 1);
    Bytes one(9), other(9);
    for (const auto& [outside, inside] :
         {std::pair{-5, 0}, std::pair{INT32_MIN, 0}, std::pair{99, Down - 1}}) {
        EXPECT_EQ(Z_GetResizedRowCol(stream, one.data(), outside, 2, 9), 1);
        EXPECT_EQ(Z_GetResizedRowCol(stream, other.data(), inside, 2, 9), 1);
        EXPECT_EQ(one, other);
    }
    Bytes row(100, 1);
    EXPECT_EQ(Z_GetResizedRowCol(stream, row.data(), 3, 11, 100), 1);
    EXPECT_EQ(std::memcmp(row.data(), source.Row(3).data() + 33, 6), 0);
    Z_StopResizeBitmap(stream);

    // Bits before the first column are taken off the request, but the pixels begin in the topmost bit; a dithered row
    // leaves what is behind them.
    ASSERT_EQ(Start(bits, {1, 0}, &stream), 1);
    Bytes byte(4, 0x55);
    EXPECT_EQ(Z_GetResizedRowCol(stream, byte.data(), 0, 3, 1), 1);
    const Bytes all = bits.Row(0);
    const auto expected = static_cast<uint8_t>((all[0] << 3 & 0xF8) | 0x05);
    EXPECT_EQ(byte, (Bytes{expected, 0x55, 0x55, 0x55}));
    Z_StopResizeBitmap(stream);
}

struct Log {
    std::vector<std::vector<int32_t>> Seen; // row, column and bytes
    ReturnCode Result = 1;

    static ReturnCode Z_CALL Read(BitmapHandle*, void* buffer, int32_t row, int32_t column, uint32_t bytes,
                                  void* data) {
        Log& log = *static_cast<Log*>(data);
        log.Seen.push_back({row, column, static_cast<int32_t>(bytes)});
        std::memset(buffer, 0x1B, bytes); // pixels 0, 1, 2, 3
        return log.Result;
    }
};

// Reads of a 2-bit bitmap begin on whole bytes; a record without storage has nothing but its reader.
TEST(StreamRequests, Readers) {
    Log log;
    BitmapHandle empty = {};
    Z_InitBitmap(&empty, 40, 10, 2);
    ResizeRowContext* stream = nullptr;
    EXPECT_EQ(Start(empty, {24}, &stream), Z_ERROR_BITMAP);
    ASSERT_EQ(Z_StartResizeBitmap(&empty, 80, 30, 24, nullptr, 0, RESIZE_SPLINE, Log::Read, &log, &stream),
              1);
    EXPECT_TRUE(log.Seen.empty());
    Bytes target(6);
    const auto get = [&](int32_t row) { return Z_GetResizedRowCol(stream, target.data(), row, 40, 6); };
    // Row 7 is row 6 without the repeated one: source row 2. Columns 40 and 41 begin at pixel 19: pixels 14 to 26, from 12 on.
    EXPECT_EQ(get(7), 1);
    using Reads = std::vector<std::vector<int32_t>>;
    const auto read2 = [](std::initializer_list<int32_t> rows) {
        Reads reads;
        for (const int32_t row : rows)
            reads.push_back({row, 12, 4});
        return reads;
    };
    EXPECT_EQ(log.Seen, read2({2, 1, 3, 4}));
    log.Seen.clear();
    EXPECT_EQ(get(8), 1);
    EXPECT_EQ(get(9), 1);
    EXPECT_TRUE(log.Seen.empty());
    EXPECT_EQ(get(10), 1);
    EXPECT_EQ(log.Seen, read2({5}));
    log.Seen.clear();
    log.Result = -29;
    EXPECT_EQ(get(13), -29) << "two rows away: all four are read";
    log.Result = 1;
    log.Seen.clear();
    EXPECT_EQ(get(11), 1);
    EXPECT_EQ(log.Seen, read2({3, 2, 4, 5})) << "nothing is kept of a failure";
    log.Seen.clear();
    EXPECT_EQ(get(0), 1);
    EXPECT_EQ(log.Seen, read2({0, 1, 2})) << "rows outside are not asked for";
    Z_StopResizeBitmap(stream);
}

} // namespace
} // namespace zkr::test
