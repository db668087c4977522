// Z_ConvertBufferExt against the plain model of it: every source against every target, with every order,
// palette form, gray window and flag.
#include "colour/convert/reference_convert.h"
#include "colour/palettes/reference_palettes.h"
#include "support/row_harness.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <iterator>
#include <vector>

namespace zkr::test {
namespace {

struct Format {
    int bits;
    int order;
};

constexpr Format SourceFormats[] = {{0, 0},  {1, 0},  {2, 0},  {3, 0},  {4, 0},  {5, 0},  {6, 0},
                                    {7, 0},  {8, 0},  {12, 2}, {16, 0}, {16, 1}, {16, 2}, {24, 0},
                                    {24, 1}, {32, 0}, {32, 1}, {48, 0}, {48, 1}, {64, 0}, {64, 1}};
// Order 2 on a target of up to 8 bits changes which bits of a gray word are read.
constexpr Format TargetFormats[] = {{0, 0},  {1, 0},  {2, 0},  {3, 0},  {4, 0},  {5, 0},  {6, 0},  {7, 0},
                                    {8, 0},  {0, 2},  {1, 2},  {2, 2},  {3, 2},  {4, 2},  {5, 2},  {6, 2},
                                    {7, 2},  {8, 2},  {12, 2}, {16, 0}, {16, 1}, {16, 2}, {24, 0}, {24, 1},
                                    {32, 0}, {32, 1}, {48, 0}, {48, 1}, {64, 0}, {64, 1}};

bool IsGrayWord(Format f) {
    return f.bits == 12 || (f.bits == 16 && f.order == 2);
}

// Palettes with what palettes have in practice and in bad luck. Each has 65536 entries: the longest level
// table. Prefix begins alike at every depth; Marked is Prefix but for one reserved byte in its first pair of
// entries.
enum PaletteKind { None, Fixed, Prefix, Marked, Scattered, Duplicates, Ramp, PaletteKinds };

std::vector<RGBQUAD> MakePalette(PaletteKind kind, int bits) {
    constexpr size_t Longest = 65536;
    Seeded seeded(kind == Marked ? Prefix : kind);
    std::vector<RGBQUAD> entries;
    if (kind == Fixed) entries = ReferenceFixedPalette(bits);
    while (entries.size() < Longest) {
        const auto channel = [&] { return kind == Duplicates ? 127u * (seeded.Byte() % 3u) : seeded.Byte(); };
        const unsigned red = channel(), green = channel(), blue = channel();
        entries.push_back(EntryOf(red, green, blue, seeded.Byte()));
    }
    if (kind == Marked) entries[1].rgbReserved ^= 1;
    if (kind == Ramp) {
        for (unsigned i = 0; i < 16; ++i)
            entries[i] = EntryOf(i * 17, i * 17, i * 17);
        entries[(size_t{1} << bits) - 1] = EntryOf(255, 255, 255);
    }
    if (kind == Duplicates) { // the same black and white at both ends of every depth
        for (const size_t last : {1u, 3u, 7u, 15u, 31u, 63u, 127u, 255u})
            entries[last] = bits % 2 ? EntryOf(0, 0, 0) : EntryOf(255, 255, 255);
        entries[0] = entries[1];
    }
    return entries;
}

// The palettes are made once; depth matters to Fixed, Duplicates and Ramp only.
const RGBQUAD* PaletteFor(PaletteKind kind, int bits) {
    static std::vector<RGBQUAD> made[PaletteKinds][9];
    if (kind == None || (kind == Fixed && bits == 0)) return nullptr;
    std::vector<RGBQUAD>& palette = made[kind][bits > 8 ? 0 : bits];
    if (palette.empty())
        palette = MakePalette(kind == Fixed && bits > 8 ? Scattered : kind, bits > 8 ? 8 : bits);
    return palette.data();
}

::testing::AssertionResult SameAsModel(const Conversion& conversion, const std::vector<int>& widths) {
    RowKernel kernel{.name = Describe(conversion),
                     .sourceBits = conversion.sourceBits,
                     .targetBits = conversion.targetBits};
    kernel.actual = [&](RowSpan span) { return Convert(span.row, span.width, conversion); };
    kernel.expected = [&](RowSpan span) { return ReferenceConvert(span.row, span.width, conversion); };
    return SameRows(kernel, widths);
}

// Stops a test whose every case fails the same way.
#define EXPECT_SAME(...)                                                                                     \
    do {                                                                                                     \
        EXPECT_TRUE(SameAsModel(__VA_ARGS__));                                                               \
        if (::testing::Test::HasFailure() && ++failures_ > 40) return;                                       \
    } while (false)

class ConvertAllPairs : public ::testing::TestWithParam<Format> {
  protected:
    Conversion Between(Format source, Format target) const {
        Conversion conversion;
        conversion.sourceBits = source.bits;
        conversion.sourceOrder = source.order;
        conversion.targetBits = target.bits;
        conversion.targetOrder = target.order;
        return conversion;
    }
    int failures_ = 0;
    int turn_ = 0;
};

TEST_P(ConvertAllPairs, EveryTargetAtEveryWidth) {
    for (const Format target : TargetFormats) {
        const bool twin = target.bits <= 8 && target.order == 2 && !IsGrayWord(GetParam());
        EXPECT_SAME(Between(GetParam(), target), twin ? DealtWidths(++turn_, 4) : AllWidths());
    }
}

TEST_P(ConvertAllPairs, EveryPairOfPalettes) {
    for (const Format target : TargetFormats)
        for (int from = None; from < PaletteKinds; ++from)
            for (int to = None; to < PaletteKinds; ++to) {
                if (GetParam().bits >= 24 && from != None && from != Scattered)
                    continue; // a palette that the source does not read
                if (target.bits > 8 && to != None && to != Scattered) continue; // and the target likewise
                Conversion conversion = Between(GetParam(), target);
                conversion.sourcePalette = PaletteFor(static_cast<PaletteKind>(from), conversion.sourceBits);
                conversion.targetPalette = PaletteFor(static_cast<PaletteKind>(to), conversion.targetBits);
                EXPECT_SAME(conversion, DealtWidths(++turn_, 4));
            }
}

// Every window that has at least one bit, on the side that has the flag, with a level table and without one.
TEST_P(ConvertAllPairs, EveryGrayWindow) {
    for (const Format target : TargetFormats)
        for (const uint32_t flag : {Z_CONVERT_SOURCE_WINDOW, Z_CONVERT_TARGET_WINDOW}) {
            const Format& windowed = flag == Z_CONVERT_SOURCE_WINDOW ? GetParam() : target;
            if (windowed.order != 2) continue;
            for (int low = -1; low < StoredBits(windowed.bits); ++low)
                for (int high = -1; high < StoredBits(windowed.bits); ++high)
                    for (const PaletteKind table : {None, Scattered}) {
                        if (high >= 0 && high < low) continue;
                        Conversion conversion = Between(GetParam(), target);
                        conversion.sourcePalette = PaletteFor(table, conversion.sourceBits);
                        conversion.targetPalette =
                            PaletteFor(table == None ? Ramp : None, conversion.targetBits);
                        conversion.flags = flag;
                        conversion.lowBit = low;
                        conversion.highBit = high;
                        EXPECT_SAME(conversion, DealtWidths(++turn_, 1));
                    }
        }
}

// Rows of more pixels than a kernel may take in one piece.
TEST_P(ConvertAllPairs, LongRows) {
    for (const Format target : TargetFormats)
        EXPECT_SAME(Between(GetParam(), target), {1023, 2050, 5001});
}

std::string NameOf(const ::testing::TestParamInfo<Format>& source) {
    const char* order = source.param.order == 0 ? "Rgb" : source.param.order == 1 ? "Bgr" : "Gray";
    return std::to_string(source.param.bits) + (source.param.bits > 8 ? order : "");
}
INSTANTIATE_TEST_SUITE_P(From, ConvertAllPairs, ::testing::ValuesIn(SourceFormats), NameOf);

// Good and bad arguments in every mixture: the same result, and a refused row is not touched.
TEST(ConvertArguments, AreJudgedAsTheModelDoes) {
    constexpr int Depths[] = {-1, 0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  11,
                              12, 13, 15, 16, 17, 24, 25, 32, 47, 48, 64, 65};
    constexpr int Orders[] = {-1, 0, 1, 2, 3};
    int good = 0;
    for (const int sourceBits : Depths)
        for (const int targetBits : Depths)
            for (const int sourceOrder : Orders)
                for (const int targetOrder : Orders)
                    for (uint32_t flags = 0; flags < 16; ++flags)
                        for (const int lowBit : {0, 1}) {
                            const Conversion conversion{.sourceBits = sourceBits,
                                                        .targetBits = targetBits,
                                                        .sourceOrder = sourceOrder,
                                                        .targetOrder = targetOrder,
                                                        .flags = flags,
                                                        .lowBit = lowBit};
                            // A 1-bit gray word has no window above bit 0.
                            const int windowed = flags & 4 ? sourceBits : flags & 8 ? targetBits : 8;
                            if (windowed == 1 && lowBit == 1) continue;
                            uint8_t actual[16], expected[16];
                            for (int i = 0; i < 16; ++i)
                                actual[i] = expected[i] = static_cast<uint8_t>(i * 37 + 11);
                            const ReturnCode code = ReferenceConvert(expected, 2, conversion);
                            good += code == 1;
                            ASSERT_EQ(Convert(actual, 2, conversion), code) << Describe(conversion);
                            ASSERT_TRUE(std::equal(actual, actual + 16, expected)) << Describe(conversion);
                        }
    EXPECT_GT(good, 5000);
    uint8_t row[4] = {1, 2, 3, 4};
    const Conversion grayToColour{.sourceBits = 0, .targetBits = 24};
    EXPECT_EQ(Convert(nullptr, 1, grayToColour), -13);
    EXPECT_EQ(Convert(row, 0, grayToColour), -13);
    EXPECT_EQ(row[1], 2);
}

// The short form is the long one without a window.
TEST(ConvertArguments, ShortFormTakesGrayFromTheOrders) {
    for (const int order : {0, 1, 2})
        for (const int bits : {8, 12, 16, 24}) {
            uint8_t actual[3] = {0x12, 0x9A, 0xF3}, expected[3] = {0x12, 0x9A, 0xF3};
            const ReturnCode code = Z_ConvertBuffer(actual, 1, 16, bits, order, order, nullptr, nullptr);
            EXPECT_EQ(code, ReferenceConvert(expected, 1, {16, bits, order, order})) << bits << " " << order;
            EXPECT_TRUE(std::equal(actual, actual + 3, expected)) << bits << " " << order;
        }
}

// What is kept of a palette from one row to the next must not outlive a change of a single byte of it.
TEST(ConvertPalettes, AreSeenToChangeInPlace) {
    Seeded seeded(1);
    std::vector<RGBQUAD> source = MakePalette(Prefix, 8), target = MakePalette(Prefix, 8);
    for (int i = 0; i < 2000; ++i) {
        const Format from = SourceFormats[seeded.Below(static_cast<int>(std::size(SourceFormats)))];
        const Conversion conversion{.sourceBits = from.bits,
                                    .targetBits = i % 4 == 0 ? seeded.Between(1, 7) : 8,
                                    .sourceOrder = from.order,
                                    .sourcePalette = i % 3 == 0 ? nullptr : source.data(),
                                    .targetPalette = target.data()};
        std::vector<RGBQUAD>& changed = seeded.Below(2) ? source : target;
        auto* bytes = reinterpret_cast<uint8_t*>(changed.data());
        bytes[seeded.Below(1024)] = seeded.Byte();
        if (i % 16 == 0) source = target;
        ASSERT_TRUE(SameAsModel(conversion, {257}));
    }
}

// Scaling truncates a quotient; a factor that stands in for a division must be right for every value, and for
// every number of value bits.
TEST(GrayScaling, IsExactForEveryLevel) {
    for (const Format source : {Format{0, 0}, Format{12, 2}, Format{16, 2}})
        for (const Format target : {Format{0, 0}, Format{12, 2}, Format{16, 2}, Format{48, 0}, Format{64, 1}})
            for (const bool targetWindow : {false, true}) {
                const Format windowed = targetWindow ? target : source;
                if (windowed.order != 2) continue;
                for (int bits = 1; bits <= windowed.bits; ++bits) {
                    const Conversion conversion{.sourceBits = source.bits,
                                                .targetBits = target.bits,
                                                .sourceOrder = source.order,
                                                .targetOrder = target.order,
                                                .flags = static_cast<uint32_t>(targetWindow
                                                                                   ? Z_CONVERT_TARGET_WINDOW
                                                                                   : Z_CONVERT_SOURCE_WINDOW),
                                                .lowBit = 0,
                                                .highBit = bits - 1};
                    const int levels = 1 << StoredBits(source.bits);
                    std::vector<uint8_t> actual(RowBytes(levels, 64));
                    for (int level = 0; level < levels; ++level)
                        WritePixel(actual.data(), source.bits, level, static_cast<uint64_t>(level));
                    std::vector<uint8_t> expected = actual;
                    ReferenceConvert(expected.data(), levels, conversion);
                    Convert(actual.data(), levels, conversion);
                    EXPECT_TRUE(actual == expected) << Describe(conversion);
                }
            }
}

// While a row of a large bitmap is converted, the row behind it is asked for, here in memory that is gone.
TEST(LargeBitmaps, MayGoBeforeTheirLastRowIsConverted) {
    struct Pair {
        int sourceBits, sourceOrder, targetBits, targetOrder;
    };
    for (const Pair& pair :
         {Pair{24, 1, 32, 1}, Pair{48, 1, 24, 0}, Pair{8, 0, 3, 0}, Pair{12, 2, 24, 1}, Pair{16, 2, 0, 0}}) {
        constexpr int width = 3001, height = 3000;
        BitmapHandle bitmap;
        ASSERT_EQ(Z_CreateBitmap(&bitmap, MemoryConventional, width, height, pair.sourceBits,
                                 pair.sourceOrder, nullptr, 2, nullptr, 0),
                  1);
        Seeded random(static_cast<uint64_t>(pair.sourceBits));
        std::vector<uint8_t> put(RowBytes(width, 64)), got(put.size());
        for (uint8_t& byte : put)
            byte = random.Byte();
        Z_PutBitmapRow(&bitmap, put.data(), height - 1, bitmap.BytesPerLine);
        std::copy(put.begin() + bitmap.BytesPerLine, put.end(), got.begin() + bitmap.BytesPerLine);
        Z_GetBitmapRow(&bitmap, got.data(), height - 1, bitmap.BytesPerLine);
        Z_FreeBitmap(&bitmap);
        for (std::vector<uint8_t>* row : {&put, &got})
            EXPECT_EQ(Z_ConvertBuffer(row->data(), width, pair.sourceBits, pair.targetBits, pair.sourceOrder,
                                      pair.targetOrder, nullptr, nullptr),
                      1);
        EXPECT_TRUE(put == got) << pair.sourceBits << " to " << pair.targetBits;
    }
}

TEST(MirrorLine, TurnsPixelsRound) {
    for (const int bits : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 13, 16, 24, 32, 40, 48, 64, 65}) {
        RowKernel kernel{.name = "mirror " + std::to_string(bits), .sourceBits = bits, .targetBits = bits};
        if (bits < 0 || bits > 64) kernel.sourceBits = kernel.targetBits = 8;
        kernel.actual = [&](RowSpan span) { return Z_MirrorLine(span.row, span.width, bits); };
        kernel.expected = [&](RowSpan span) {
            ReferenceMirrorLine(span.row, span.width, bits);
            return ReturnCode{1};
        };
        EXPECT_TRUE(SameRows(kernel, AllWidths()));
    }
}

TEST(CalcConvertSize, IsTheLargestOfTheThreeForms) {
    EXPECT_EQ(Z_CalcConvertSize(3, 1, 3, 24), 12u);
    EXPECT_EQ(Z_CalcConvertSize(3, 24, 3, 1), 12u);
    EXPECT_EQ(Z_CalcConvertSize(5, 0, 2, 1), 8u);      // depth 0 has 8 bits
    EXPECT_EQ(Z_CalcConvertSize(10, 8, 100, 1), 100u); // the first depth at the second width
    // 48 bits at a width whose product with the bits passes 2^32.
    EXPECT_EQ(Z_CalcConvertSize(100000000, 48, 1, 1), size_t{600000000});
}

} // namespace
} // namespace zkr::test
