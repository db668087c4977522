// Underlays: colours against the sum worked out by hand, gray and indices against the conversions of single rows.
#include "zkr13n/combine.h"

#include "core/predicates.h"
#include "core/reports.h"
#include "geometry/picture.h"
#include "zkr13n/convert.h"
#include "zkr13n/copy.h"
#include "zkr13n/dither.h"
#include "zkr13n/flip.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/sizing.h"

namespace zkr::test {
namespace {

int Lit(int value, int gray) {
    return std::clamp(value + gray - 128, 0, 255);
}

// A pixel of a depth of colour, whose channels are narrowed to a byte and widened again.
uint64_t LitPixel(int bits, uint64_t pixel, int gray) {
    const int channel = bits == 16 ? 5 : bits > 32 ? 16 : 8, mask = (1 << channel) - 1;
    uint64_t result = pixel >> (3 * channel - 1) >> 1 << (3 * channel - 1) << 1;
    for (int at = 0; at < 3 * channel; at += channel) {
        const int value = static_cast<int>(pixel >> at) & mask;
        const int narrow = channel == 5 ? value << 3 | value >> 2 : channel == 16 ? value >> 8 : value;
        const int lit = Lit(narrow, gray);
        result |= static_cast<uint64_t>(channel == 5 ? lit >> 3 : channel == 16 ? lit * 257 : lit) << at;
    }
    return result;
}

// The texture as it lies under the rows of a bitmap.
Picture TextureFor(BitmapHandle& underlay, const BitmapHandle& bitmap, bool stretches) {
    Bitmap gray;
    EXPECT_EQ(Z_CopyBitmap(&gray, &underlay), 1);
    EXPECT_EQ(Z_GrayScaleBitmap(&gray, 8), 1);
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(nullptr, &gray, bitmap.ViewPerspective), 1);
    EXPECT_TRUE(!stretches || Z_SizeBitmap(&gray, bitmap.Width, bitmap.Height, 0) == 1);
    return Picture::Of(gray);
}

// All rows through 24 bits.
Picture LitThroughRows(BitmapHandle& bitmap, const Picture& texture) {
    const int bits = bitmap.BitsPerPixel;
    const bool isGray = bits > 8;
    RGBQUAD palette[256] = {};
    Z_GetBitmapPaletteEntries(&bitmap, 0, 256, palette);
    const RGBQUAD* const entries = isGray ? bitmap.LevelLUT : palette;
    Bitmap colours(bitmap.Width, bitmap.Height, 24);
    colours.Order = 1, colours.DitheringMethod = DitherFloydSteinberg;
    EXPECT_TRUE(isGray || Z_StartDitheringExt(&colours, palette, 1u << bits, bits, nullptr) == 1);
    const Bytes rows = Rows(bitmap);
    Picture result{bitmap.Width, bitmap.Height, {}};
    for (int y = 0; y < bitmap.Height; ++y) {
        Bytes row(Z_CalcConvertSize(bitmap.Width, bits, bitmap.Width, 24)), packed(row.size());
        std::copy_n(rows.data() + static_cast<size_t>(y) * bitmap.BytesPerLine, bitmap.BytesPerLine,
                    row.data());
        EXPECT_EQ(Z_ConvertBufferExt(row.data(), bitmap.Width, bits, 24, bitmap.Order, 1, entries, nullptr,
                                     isGray ? 5 : 0, bitmap.LowBit, bitmap.HighBit),
                  1);
        for (int i = 0; i < bitmap.Width * 3; ++i) {
            uint8_t& byte = row[static_cast<size_t>(i)];
            byte = static_cast<uint8_t>(
                Lit(byte, static_cast<int>(texture.At(i / 3 % texture.Width, y % texture.Height))));
        }
        if (isGray) {
            EXPECT_EQ(Z_ConvertBufferExt(row.data(), bitmap.Width, 24, bits, 1, 2, nullptr, nullptr, 10,
                                         bitmap.LowBit, bitmap.HighBit),
                      1);
        } else {
            Z_DitherLine(&colours, row.data(), packed.data());
        }
        for (int x = 0; x < bitmap.Width; ++x)
            result.Pixels.push_back(ReadPixel((isGray ? row : packed).data(), bits, x));
    }
    Z_StopDithering(&colours);
    return result;
}

TEST(Underlay, EveryDepthStorageAndView) {
    uint32_t seed = 0;
    for (const int32_t bits : AllDepths)
        for (const Storage& storage : GeometryStorages(bits))
            for (const int32_t view : AllViews) {
                Bytes data;
                Bitmap bitmap(21 + static_cast<int32_t>(++seed % 60), 13, bits),
                    texture(7, 5, seed % 2 ? 8 : 24);
                bitmap.ViewPerspective = view, texture.ViewPerspective = AllViews[seed % 7];
                bitmap.Order = bits == 12 ? 2 : static_cast<int32_t>(seed % (bits == 16 ? 3 : 2));
                Allocate(bitmap, storage, data);
                Z_AllocateBitmap(&texture, MemoryConventional);
                if (bits <= 8) Z_CreateBitmapFixedPalette(&bitmap);
                Z_CreateBitmapFixedPalette(&texture);
                Fill(bitmap, seed), Fill(texture, seed + 1);
                RGBQUAD levels[0x10000];
                const bool isGray = HasGrayWords(bitmap);
                if (isGray && seed % 3 != 0)
                    bitmap.LowBit = 2, bitmap.HighBit = 9 + static_cast<int32_t>(seed % 3);
                if (isGray && seed % 5 == 0) {
                    for (uint32_t i = 0; i < 0x10000; ++i)
                        levels[i] = {static_cast<uint8_t>(i), static_cast<uint8_t>(i * 7),
                                     static_cast<uint8_t>(i * 31), 0};
                    bitmap.LevelLUT = levels, bitmap.LevelLUTLength = 0x10000;
                    bitmap.Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
                }
                if (seed % 2 == 0) {
                    RECT part = {3, 2, 17, 12};
                    ASSERT_EQ(Z_SetBitmapRgnRect(&bitmap, nullptr, &part, Z_RGN_SET), 1);
                }
                const bool stretches = seed % 3 == 0;
                const Picture lit = TextureFor(texture, bitmap, stretches), before = Picture::Of(bitmap);
                const Picture full =
                    bits <= 8 || isGray
                        ? LitThroughRows(bitmap, lit)
                        : Picture::Made(bitmap.Width, 13, [&](int x, int y) {
                              return LitPixel(bits, before.At(x, y),
                                              static_cast<int>(lit.At(x % lit.Width, y % lit.Height)));
                          });
                const Picture expected = Picture::Made(bitmap.Width, 13, [&](int x, int y) {
                    return Z_IsPtInBitmapRgn(&bitmap, y, x) != 0 ? full.At(x, y) : before.At(x, y);
                });
                const Picture textureBefore = Picture::Of(texture);
                Reports reports(Z_SetStatusCallBack, 0), copies(Z_SetCopyStatusCallBack, 0);
                ASSERT_EQ(Z_UnderlayBitmap(&bitmap, &texture, stretches ? 1 : 0), 1);
                ASSERT_EQ(Picture::Of(bitmap), expected) << bits << ' ' << storage.Name << ' ' << view;
                ASSERT_EQ(Picture::Of(texture), textureBefore);
                ASSERT_EQ(reports.Seen.size() + copies.Seen.size(), 0u);
                intptr_t self = 0;
                ASSERT_NE(Z_GetStatusCallBack(&self), nullptr);
                ASSERT_EQ(self, reinterpret_cast<intptr_t>(&reports));
                bitmap.LevelLUT = nullptr;
            }
}

TEST(Underlay, RefusesBitmapsBeforeFlags) {
    Bitmap bitmap(3, 3, 24), none(3, 3, 24);
    Z_AllocateBitmap(&bitmap, MemoryConventional);
    EXPECT_EQ(Z_UnderlayBitmap(nullptr, &bitmap, 2), -2);
    EXPECT_EQ(Z_UnderlayBitmap(&bitmap, &none, 2), -2);
    EXPECT_EQ(Z_UnderlayBitmap(&none, &bitmap, 0), -2);
    EXPECT_EQ(Z_UnderlayBitmap(&bitmap, &bitmap, 2), -13);
    EXPECT_EQ(Z_UnderlayBitmap(&bitmap, &bitmap, 0), 1);
}

} // namespace
} // namespace zkr::test
