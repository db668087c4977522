// Dithering: random runs against the plain rules, and what these do not show.
#include "colour/dither/reference_dither.h"

#include "support/seeded.h"

#include "zkr13n/palettes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace zkr::test {
namespace {

constexpr int Depths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};

std::vector<RGBQUAD> RandomColours(Seeded& seeded, size_t count) {
    std::vector<RGBQUAD> colours;
    for (size_t i = 0; i < count; ++i)
        colours.push_back(EntryOf(seeded.Byte(), seeded.Byte(), seeded.Byte(), 4));
    return colours;
}

// The palette of a run: none, a fixed one, the cube, any, or with entries that must not be chosen.
std::vector<RGBQUAD> TargetPalette(Seeded& seeded, uint32_t colors, int bits) {
    std::vector<RGBQUAD> palette = RandomColours(seeded, colors);
    switch (seeded.Below(6)) {
    case 0: return {};
    case 1: palette = ReferenceFixedPalette(bits); break;
    case 2: palette = Cube216(); break;
    case 3:
        for (RGBQUAD& entry : palette)
            entry.rgbReserved = static_cast<uint8_t>(seeded.Below(5));
        break;
    default: break;
    }
    palette.resize(colors);
    return palette;
}

DitherRequest RandomRequest(Seeded& seeded, int turn) {
    DitherRequest request;
    BitmapHandle& bitmap = request.Bitmap;
    const int depth = Depths[turn % 14];
    Z_InitBitmap(&bitmap, seeded.Below(8) ? seeded.Between(1, 40) : seeded.Between(500, 1100), 12, depth);
    bitmap.Order = seeded.Below(depth == 16 ? 3 : 2);
    bitmap.DitheringMethod = turn % 9;
    if (depth <= 8) request.SourcePalette = RandomColours(seeded, size_t{1} << depth);
    if (depth == 12 || depth == 16) {
        bitmap.LowBit = seeded.Between(-1, depth / 2);
        bitmap.HighBit = seeded.Below(3) ? seeded.Between(depth / 2, depth - 1) : -1;
        if (seeded.Below(3) == 0) request.Levels = RandomColours(seeded, seeded.Below(2) ? 65536 : 100);
        if (seeded.Below(3)) bitmap.Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
    }
    const int bits = seeded.Between(1, 8);
    request.Colors =
        static_cast<uint32_t>(seeded.Below(2) ? 1 << bits : seeded.Between((1 << bits) / 2 + 1, 1 << bits));
    request.TargetBits = seeded.Below(3) ? bits : seeded.Between(1, 8);
    request.Palette = TargetPalette(seeded, request.Colors, bits);
    if (seeded.Below(4) == 0) {
        // Partly filled, with cells that lead nowhere among them.
        request.MatchTable.resize(32768);
        for (uint32_t& cell : request.MatchTable)
            cell = seeded.Below(3) ? 0 : static_cast<uint32_t>(seeded.Between(1, 300));
    }
    return request;
}

// The library's run of a request.
class DitherRun {
  public:
    explicit DitherRun(DitherRequest& request) : bitmap_(request.Bitmap) {
        if (!request.SourcePalette.empty()) {
            bitmap_.Palette = request.SourcePalette.data();
            bitmap_.ColorsUsed = static_cast<uint32_t>(request.SourcePalette.size());
            bitmap_.Flags |= Z_FLAG_PALETTE_IS_BLOCK;
        }
        bitmap_.LevelLUT = request.Levels.empty() ? &unread_ : request.Levels.data();
        bitmap_.LevelLUTLength = static_cast<uint32_t>(request.Levels.size());
        const RGBQUAD* palette = request.Palette.empty() ? nullptr : request.Palette.data();
        uint32_t* table = request.MatchTable.empty() ? nullptr : request.MatchTable.data();
        if (table == nullptr && request.TargetBits == BitsFor(request.Colors)) {
            EXPECT_EQ(1, Z_StartDithering(&bitmap_, palette, request.Colors));
        } else {
            EXPECT_EQ(1, Z_StartDitheringExt(&bitmap_, palette, request.Colors, request.TargetBits, table));
        }
    }
    ~DitherRun() {
        EXPECT_EQ(1, Z_StopDithering(&bitmap_));
        EXPECT_EQ(nullptr, bitmap_.DitherData);
    }
    void Line(const uint8_t* source, uint8_t* target, int width) {
        bitmap_.Width = width;
        EXPECT_EQ(1, Z_DitherLine(&bitmap_, source, target));
    }

  private:
    BitmapHandle bitmap_;
    RGBQUAD unread_ = {1, 2, 3, 0}; // a level table without entries is none
};

// Rows of the exact length, so that a sanitizer sees every step beyond them, smooth or rough, and now and
// then narrower than those before.
void CompareRun(Seeded& seeded, DitherRequest& request) {
    ReferenceDither reference(request);
    DitherRun run(request);
    int width = request.Bitmap.Width;
    const int rough = 1 << seeded.Below(9);
    for (int y = 0; y < 12; ++y) {
        std::vector<uint8_t> source(RowBytes(width, request.Bitmap.BitsPerPixel));
        for (size_t i = 0; i < source.size(); ++i)
            source[i] = static_cast<uint8_t>(static_cast<int>(i) * 2 + y * 9 + seeded.Below(rough));
        std::vector<uint8_t> target(RowBytes(width, request.TargetBits), y % 2 ? 0xFF : 0);
        std::vector<uint8_t> expected = target;
        const std::vector<unsigned> indices = reference.Line(source.data(), width);
        for (int x = 0; x < width; ++x)
            WritePixel(expected.data(), request.TargetBits, x, indices[static_cast<size_t>(x)]);
        run.Line(source.data(), target.data(), width);
        ASSERT_EQ(expected, target) << "row " << y;
        if (seeded.Below(12) == 0) width = seeded.Between(1, width);
    }
    ASSERT_TRUE(request.MatchTable.empty() || request.MatchTable == reference.MatchTable());
}

TEST(Dither, EqualsThePlainRules) {
    for (int turn = 0; turn < 3000; ++turn) {
        Seeded seeded(static_cast<uint64_t>(turn));
        DitherRequest request = RandomRequest(seeded, turn);
        SCOPED_TRACE("turn " + std::to_string(turn) + ", depth " +
                     std::to_string(request.Bitmap.BitsPerPixel) + ", method " +
                     std::to_string(request.Bitmap.DitheringMethod) + ", colours " +
                     std::to_string(request.Colors) + ", bits " + std::to_string(request.TargetBits));
        CompareRun(seeded, request);
        if (HasFatalFailure()) return;
    }
}

TEST(Dither, RefusesAndEnds) {
    struct {
        int depth;
        uint32_t colors;
        int method;
        int width;
        ReturnCode code;
    } const cases[] = {{0, 2, 0, 1, -13},         {9, 2, 0, 1, -13},  {24, 0, 0, 1, -13},
                       {24, 257, 0, 1, -13},      {24, 2, 9, 1, -13}, {24, 2, -1, 1, -13},
                       {24, 2, 5, INT32_MAX, -1}, {24, 2, 1, -7, 1},  {24, 2, 5, 0, 1}};
    uint8_t row[8] = {};
    for (const auto& [depth, colors, method, width, code] : cases) {
        BitmapHandle bitmap = {};
        bitmap.BitsPerPixel = depth, bitmap.DitheringMethod = method, bitmap.Width = width;
        EXPECT_EQ(-13, Z_DitherLine(&bitmap, row, row));
        for (const bool plain : {true, false}) {
            EXPECT_EQ(code, plain ? Z_StartDithering(&bitmap, nullptr, colors)
                                  : Z_StartDitheringExt(&bitmap, nullptr, colors, 1, nullptr));
            EXPECT_EQ(code == 1, bitmap.DitherData != nullptr);
            EXPECT_EQ(code == 1 ? 1 : -13, Z_DitherLine(&bitmap, row, row));
            EXPECT_EQ(1, Z_StopDithering(&bitmap));
        }
    }
    BitmapHandle bitmap = {};
    bitmap.BitsPerPixel = 24, bitmap.Width = 2;
    ASSERT_EQ(1, Z_StartDitheringExt(&bitmap, nullptr, 2, 9, nullptr));
    row[0] = 0x5A;
    EXPECT_EQ(1, Z_DitherLine(&bitmap, "\xFF\xFF\xFF\xFF\xFF\xFF", row));
    EXPECT_EQ(0x5A, row[0]) << "nothing is written for other numbers of bits";
    EXPECT_EQ(-13, Z_DitherLine(&bitmap, nullptr, row));
    EXPECT_EQ(-13, Z_DitherLine(&bitmap, row, nullptr));
    EXPECT_EQ(-13, Z_DitherLine(nullptr, row, row));
    EXPECT_EQ(1, Z_StopDithering(&bitmap));
    EXPECT_EQ(-2, Z_StopDithering(nullptr));
    EXPECT_EQ(-2, Z_StartDithering(nullptr, nullptr, 2));
    EXPECT_EQ(-13, Z_StartDithering(nullptr, nullptr, 257));
    EXPECT_EQ(-2, Z_StartDitheringExt(nullptr, nullptr, 2, 1, nullptr));
}

// A row that has become wider than the error rows ends with them.
TEST(Dither, KeepsToItsErrorRows) {
    DitherRequest request;
    Z_InitBitmap(&request.Bitmap, 3, 4, 24);
    for (int method = DitherFloydSteinberg; method <= DitherJarvis; ++method) {
        request.Bitmap.DitheringMethod = method;
        DitherRun run(request);
        uint8_t target[2] = {};
        const std::vector<uint8_t> white(16 * 3, 0xFF);
        for (int y = 0; y < 4; ++y)
            run.Line(white.data(), target, 16);
        EXPECT_EQ(0xE0, target[0]) << method;
        EXPECT_EQ(0, target[1]) << method;
    }
}

} // namespace
} // namespace zkr::test
