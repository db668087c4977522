// Bitmaps from device-independent ones, on all roads, pixel by pixel against a model.
#include "display/dib/dib_model.h"
#include "geometry/picture.h"
#include "platform/graphics.h"
#include "zkr13n/palettes.h"
#include "zkr13n/surface.h"

#include <functional>

namespace zkr::test {
namespace {

using PixelOf = std::function<uint32_t(const DibForm&, const DibBytes&, int x, int row)>;

struct Case {
    std::string Name;
    DibForm Form;
    size_t BitsBytes;
    PixelOf Expected;
    bool IsConverted = false; // on every road
};

uint32_t StoredPixel(const DibForm& form, const DibBytes& dib, int x, int row) {
    return static_cast<uint32_t>(
        ReadPixel(dib.Bits.data() + static_cast<size_t>(row) * form.RowBytes(), form.Bits, x));
}

std::vector<Case> PlainCases() {
    std::vector<Case> cases;
    for (const int headerBytes : {12, 40, 41, 56, 108, 124, 300})
        for (const int bits : {1, 4, 8, 16, 24, 32})
            for (const int height : {7, -7}) {
                if (headerBytes == 12 && height < 0) continue;
                const DibForm form = {headerBytes, 13, height, bits};
                cases.push_back({"plain", form, form.RowBytes() * 7, StoredPixel});
            }
    for (const uint32_t told : {1u, 3u, 16u, 17u, 300u}) {
        const DibForm form = {40, 13, 5, told <= 16 ? 4 : 24, 0, {}, told};
        cases.push_back({"colours told", form, form.RowBytes() * 5, StoredPixel});
    }
    const DibForm many = {40, 9, 5, 4, 0, {}, 21};
    cases.push_back({"more colours than there can be", many, many.RowBytes() * 5, StoredPixel});
    return cases;
}

std::vector<Case> MaskCases() {
    std::vector<Case> cases;
    const uint32_t masks16[][3] = {{0x7C00, 0x3E0, 0x1F}, {0xF800, 0x7E0, 0x1F}, {0xF00, 0xF0, 0xF},
                                   {0x1F, 0x3E0, 0x7C00}, {0xFFFF, 0, 1},        {0x5, 0xFF00, 0xFFF80000}};
    const uint32_t masks32[][3] = {{0xFF0000, 0xFF00, 0xFF},           {0xFF, 0xFF00, 0xFF0000},
                                   {0x3FF00000, 0xFFC00, 0x3FF},       {0xF000, 0x7F0, 0x7},
                                   {0xFFFFFFFF, 0xFFFFFF, 0x80000001}, {0x01FFFFFF, 0, 0xFE000000}};
    const auto add = [&](const uint32_t(&masks)[3], int bits) {
        for (const int headerBytes : {40, 52, 108}) {
            const DibForm form = {
                headerBytes, 67, -3, bits, 3, {masks[0], masks[1], masks[2]}, headerBytes == 52 ? 2u : 0u};
            cases.push_back({"masks", form, form.RowBytes() * 3,
                             [](const DibForm& f, const DibBytes& dib, int x, int row) {
                                 return MaskedPixel(StoredPixel(f, dib, x, row), f.Masks, f.Bits);
                             }});
        }
    };
    for (const auto& masks : masks16)
        add(masks, 16);
    for (const auto& masks : masks32)
        add(masks, 32);
    return cases;
}

std::vector<Case> YuvCases() {
    std::vector<Case> cases;
    struct Planes {
        const char* Code;
        int Bits, Step;
        bool VFirst;
    };
    for (const Planes& p :
         {Planes{"YVU9", 9, 4, true}, Planes{"IF09", 9, 4, true}, Planes{"I420", 12, 2, false},
          Planes{"IYUV", 12, 2, false}, Planes{"YV12", 12, 2, true}})
        for (const int height : {8, -7}) {
            const DibForm form = {40, 48, height, height < 0 ? 24 : p.Bits, CodeOf(p.Code)};
            const int rows = std::abs(height), chroma = 48 / p.Step * ((rows + p.Step - 1) / p.Step);
            cases.push_back({p.Code, form, static_cast<size_t>(48 * rows + 2 * chroma),
                             [p](const DibForm& f, const DibBytes& dib, int x, int row) {
                                 return PlanarPixel(f, dib.Bits, p.Step, p.VFirst, x, row);
                             },
                             true});
        }
    struct Groups {
        const char* Code;
        const char* Letters;
    };
    for (const Groups& g : {Groups{"UYVY", "UYVY"}, Groups{"cyuv", "UYVY"}, Groups{"YUY2", "YUYV"},
                            Groups{"YVYU", "YVYU"}, Groups{"Y41P", "UYVYUYVYYYYY"}})
        for (const int height : {6, -5}) {
            const DibForm form = {40, 32, height, height < 0 ? 24 : 16, CodeOf(g.Code)};
            const size_t row = g.Letters[4] == 0 ? 64 : 48;
            cases.push_back({g.Code, form, row * static_cast<size_t>(std::abs(height)),
                             [g](const DibForm& f, const DibBytes& dib, int x, int rowIndex) {
                                 return PackedPixel(f, dib.Bits, g.Letters, x, rowIndex);
                             },
                             true});
        }
    return cases;
}

Picture ExpectedPicture(const Case& c, const DibBytes& dib) {
    return Picture::Made(c.Form.Width, std::abs(c.Form.Height),
                         [&](int x, int row) { return c.Expected(c.Form, dib, x, row); });
}

void ExpectRecord(const Case& c, const DibBytes& dib, BitmapHandle& bitmap) {
    const int bits = c.Form.Bits;
    EXPECT_EQ(bitmap.BitsPerPixel, c.IsConverted && bits != 8 && bits != 4 ? 24 : bits);
    EXPECT_EQ(bitmap.ViewPerspective, c.Form.Height < 0 ? 0 : 2);
    EXPECT_EQ(bitmap.Order, bitmap.BitsPerPixel <= 8 ? 0 : 1);
    EXPECT_EQ(bitmap.PaintLUT[255], 255);
    if (c.Form.HeaderBytes != 12) {
        EXPECT_EQ(bitmap.XResolution, 96);
        EXPECT_EQ(bitmap.YResolution, 100);
    }
    const auto count = static_cast<uint32_t>(bits <= 8 ? std::min(c.Form.ColoursStored(), 1 << bits) : 0);
    EXPECT_EQ(bitmap.ColorsUsed, count);
    RGBQUAD colours[256];
    ASSERT_EQ(Z_GetBitmapPaletteEntries(&bitmap, 0, 256, colours), count);
    const size_t entry = c.Form.HeaderBytes == 12 ? 3 : 4;
    const uint8_t* from = dib.Head.data() + c.Form.HeaderBytes;
    for (uint32_t i = 0; i < count; ++i, from += entry)
        ASSERT_EQ(std::memcmp(&colours[i], from, 3), 0) << i;
}

void ExpectConverted(const Case& c, Seeded& seeded) {
    SCOPED_TRACE(c.Name + ", header of " + std::to_string(c.Form.HeaderBytes) + ", bits " +
                 std::to_string(c.Form.Bits));
    const DibBytes dib = c.Form.Make(c.BitsBytes, seeded);
    const Picture expected = ExpectedPicture(c, dib);
    {
        Bitmap bitmap;
        ASSERT_EQ(Z_ConvertFromDIB(&bitmap, dib.Head.data(), dib.Bits.data()), 1);
        EXPECT_EQ(Picture::Of(bitmap), expected);
        ExpectRecord(c, dib, bitmap);
    }
    for (const bool mirrors : {false, true}) {
        HGLOBAL block = dib.Block();
        Bitmap bitmap;
        ASSERT_EQ((mirrors ? Z_MirrorFromDIB : Z_ChangeFromDIB)(&bitmap, block), 1);
        EXPECT_EQ(Picture::Of(bitmap), expected);
        ExpectRecord(c, dib, bitmap);
        EXPECT_EQ((bitmap.Flags & Z_FLAG_GLOBAL) != 0, !c.IsConverted);
        EXPECT_EQ((bitmap.Flags & Z_FLAG_USER_DATA) != 0, mirrors && !c.IsConverted);
        EXPECT_EQ(bitmap.AlignOffset, c.IsConverted ? bitmap.AlignOffset : dib.Head.size());
        Z_AccessBitmap(&bitmap); // freed while it is locked
        Z_FreeBitmap(&bitmap);
        EXPECT_EQ(platform::GlobalSize(block) != 0, mirrors);
        if (mirrors) {
            EXPECT_NE(platform::GlobalLock(block), nullptr);
            EXPECT_FALSE(platform::GlobalUnlock(block)) << "the bitmap's lock is left";
            EXPECT_EQ(platform::GlobalFree(block), nullptr);
        }
    }
}

TEST(FromDib, PlainRows) {
    Seeded seeded(1);
    for (const Case& c : PlainCases())
        ExpectConverted(c, seeded);
}

TEST(FromDib, Masks) {
    Seeded seeded(2);
    for (const Case& c : MaskCases())
        ExpectConverted(c, seeded);
}

TEST(FromDib, Yuv) {
    Seeded seeded(3);
    for (const Case& c : YuvCases())
        ExpectConverted(c, seeded);
}

// What the header leaves open the screen tells.
TEST(FromDib, ResolutionsOfTheScreen) {
    HDC screen = platform::GetDC(nullptr);
    const auto dots = [screen](int perInch, int millimetres) {
        const double perMetre =
            platform::GetDeviceCaps(screen, perInch) * 1000.0 / platform::GetDeviceCaps(screen, millimetres);
        return (static_cast<int>(perMetre + 0.5) * 254 + 5000) / 10000;
    };
    Seeded seeded(9);
    const DibForm form = {40, 2, 2, 8};
    DibBytes dib = form.Make(8, seeded);
    dib.Put(24, 0);
    dib.Put(28, 50000000);
    Bitmap bitmap;
    ASSERT_EQ(Z_ConvertFromDIB(&bitmap, dib.Head.data(), dib.Bits.data()), 1);
    EXPECT_EQ(bitmap.XResolution, dots(LOGPIXELSX, HORZSIZE));
    EXPECT_EQ(bitmap.YResolution, 1270000);
    Z_FreeBitmap(&bitmap);
    dib.Put(24, -4000);
    dib.Put(28, 0);
    ASSERT_EQ(Z_ConvertFromDIB(&bitmap, dib.Head.data(), dib.Bits.data()), 1);
    EXPECT_EQ(bitmap.XResolution, -101);
    EXPECT_EQ(bitmap.YResolution, dots(LOGPIXELSY, VERTSIZE));
    platform::ReleaseDC(nullptr, screen);
}

// All values that the formulas can meet, two and two.
TEST(FromDib, EveryYuv) {
    DibForm form = {40, 512, 256, 16, CodeOf("YUY2")};
    Seeded seeded(4);
    DibBytes dib = form.Make(512 * 256 * 2, seeded);
    for (int second = 0; second < 256; second += 15)
        for (const char* code : {"YUY2", "I420"}) {
            form.Compression = CodeOf(code);
            form.Bits = 24;
            dib.Put(16, form.Compression);
            dib.Put(14, uint16_t{24});
            const bool isPacked = code[0] == 'Y';
            const size_t half = 512 * 256 / 4;
            for (size_t i = 0; i < 512 * 256; ++i) {
                const auto y = static_cast<uint8_t>(i), u = static_cast<uint8_t>(i / 512);
                if (isPacked) {
                    dib.Bits[i * 2] = y;
                    dib.Bits[i * 2 + 1] = i % 2 == 0 ? u : static_cast<uint8_t>(second);
                } else {
                    dib.Bits[i] = y;
                    if (i < half) dib.Bits[512 * 256 + i] = static_cast<uint8_t>(i / 128);
                    if (i < half) dib.Bits[512 * 256 + half + i] = static_cast<uint8_t>(second);
                }
            }
            Bitmap bitmap;
            ASSERT_EQ(Z_ConvertFromDIB(&bitmap, dib.Head.data(), dib.Bits.data()), 1);
            const Bytes rows = Rows(bitmap);
            for (int i = 0; i < 512 * 256; ++i) {
                const uint32_t expected = isPacked ? PackedPixel(form, dib.Bits, "YUYV", i % 512, i / 512)
                                                   : PlanarPixel(form, dib.Bits, 2, false, i % 512, i / 512);
                uint32_t pixel = 0;
                std::memcpy(&pixel, rows.data() + i * 3, 3);
                ASSERT_EQ(pixel, expected) << code << ' ' << i << ' ' << second;
            }
        }
}

// A stream of runs that means something, or of bytes that mean anything.
Bytes RunData(Seeded& seeded, bool meansAnything) {
    Bytes data;
    const int items = seeded.Below(60);
    const auto put = [&](int byte) { data.push_back(static_cast<uint8_t>(byte)); };
    for (int i = 0; i < items; ++i) {
        if (meansAnything) {
            put(seeded.Below(3) == 0 ? 0 : seeded.Byte());
            continue;
        }
        const int what = seeded.Below(10);
        if (what < 4) {
            put(seeded.Between(1, 20)), put(seeded.Byte());
        } else if (what < 7) {
            const int count = seeded.Between(3, 30);
            put(0), put(count);
            for (int j = 0; j < count; ++j)
                put(seeded.Byte());
        } else if (what == 7) {
            put(0), put(2), put(seeded.Below(9)), put(seeded.Below(3));
        } else {
            put(0), put(seeded.Below(40) == 0 ? 1 : 0);
        }
    }
    return data;
}

TEST(FromDib, Runs) {
    Seeded seeded(5);
    for (int round = 0; round < 3000; ++round) {
        const int bits = round % 2 == 0 ? 8 : 4;
        const int width = seeded.Between(1, 40), height = seeded.Between(1, 9);
        const DibForm form = {40, width, round % 3 == 0 ? -height : height, bits, bits == 8 ? 1u : 2u};
        DibBytes dib = form.Make(0, seeded);
        dib.Bits = RunData(seeded, round % 4 == 0);
        const auto told = static_cast<uint32_t>(seeded.Below(static_cast<int>(dib.Bits.size()) + 1));
        dib.Put(20, round % 5 == 0 ? told : 0);
        const bool isCut = round % 5 == 0 && told != 0;
        const Bytes read(dib.Bits.begin(),
                         dib.Bits.begin() + static_cast<ptrdiff_t>(isCut ? told : dib.Bits.size()));
        const std::vector<uint8_t> canvas = RunPixels(read, bits, width, height);
        const Picture expected = Picture::Made(
            width, height, [&](int x, int row) { return canvas[static_cast<size_t>(row * width + x)]; });
        HGLOBAL block = dib.Block();
        const int32_t type = round % 7 == 0 ? MemoryDisk : MemoryConventional;
        Z_SetDefaultMemoryType(type);
        Bitmap bitmap;
        ASSERT_EQ(Z_ChangeFromDIB(&bitmap, block), 1) << round;
        Z_SetDefaultMemoryType(MemoryConventional);
        ASSERT_EQ(Picture::Of(bitmap), expected) << round;
        ASSERT_EQ(InfoOf(bitmap).Type, type);
    }
}

TEST(FromDib, RefusesHeaders) {
    struct Wrong {
        DibForm Form;
        ReturnCode Converted, Changed;
        size_t BitsBytes = 4096;
    };
    constexpr ReturnCode missing = Z_ERROR_FEATURE, size = Z_ERROR_DIMENSIONS, argument = Z_ERROR_ARGUMENT;
    const Wrong wrongs[] = {
        {{40, 10, 4, 16, CodeOf("YUY2")}, missing, missing},
        {{40, 16, 4, 12, CodeOf("YUY2")}, missing, missing},
        {{40, 16, 4, 16, CodeOf("I420")}, missing, missing},
        {{40, 16, 4, 24, CodeOf("MJPG")}, missing, missing},
        {{40, 16, 4, 24, CodeOf("UYVy")}, missing, missing},
        {{40, 16, 4, 2}, missing, missing},
        {{40, 16, 4, 8, 2}, missing, missing},
        {{40, 16, 4, 24, 3}, missing, missing},
        {{39, 16, 4, 24}, missing, missing},
        {{13, 16, 4, 24}, missing, missing},
        {{40, -16, 4, 24}, size, size},
        {{40, 0, 4, 24}, size, argument},
        {{40, 0, 0, 24}, 1, argument},
        {{40, -5, 0, 24}, 1, argument},
        {{40, 16, 0, 5}, missing, argument},
        {{40, 4, INT32_MIN, 1}, size, size},
        {{40, INT32_MAX, 4, 32}, size, size},
        {{40, 100, 100, 32}, 1, argument, 39999},
        {{40, 100, 100, 4, 0, {}, 0x40000000}, 0, argument},
        {{40, 16, 16, 12, CodeOf("YV12")}, 1, argument, 383},
        {{44, 16, 1, 16, 3, {1, 2, 3}}, 0, argument, 7},
    };
    Seeded seeded(6);
    for (const Wrong& wrong : wrongs) {
        SCOPED_TRACE(&wrong - wrongs);
        DibForm small = wrong.Form;
        small.ColoursTold = 0;
        small.HeaderBytes = std::max(wrong.Form.HeaderBytes, 56);
        DibBytes dib = small.Make(wrong.BitsBytes, seeded);
        dib.Put(0, wrong.Form.HeaderBytes);
        dib.Put(32, wrong.Form.ColoursTold);
        dib.Head.resize(static_cast<size_t>(wrong.Form.HeaderBytes));
        dib.Bits.resize(40000);
        BitmapHandle bitmap{};
        if (wrong.Converted != 0) {
            EXPECT_EQ(Z_ConvertFromDIB(&bitmap, dib.Head.data(), dib.Bits.data()), wrong.Converted);
            EXPECT_EQ((bitmap.Flags & Z_FLAG_ALLOCATED) != 0, wrong.Converted == 1 && wrong.Form.Height != 0);
            Z_FreeBitmap(&bitmap);
        }
        dib.Bits.resize(wrong.BitsBytes);
        HGLOBAL block = dib.Block();
        for (const auto take : {Z_ChangeFromDIB, Z_MirrorFromDIB}) {
            EXPECT_EQ(take(&bitmap, block), wrong.Changed);
            EXPECT_EQ(bitmap.Flags, 0u);
        }
        EXPECT_EQ(platform::GlobalFree(block), nullptr) << "the block is not the caller's any more";
        EXPECT_EQ(Z_ChangeFromDIB(&bitmap, block), argument);
    }
    BitmapHandle bitmap;
    EXPECT_EQ(Z_ConvertFromDIB(nullptr, &bitmap, &bitmap), argument);
    EXPECT_EQ(Z_ConvertFromDIB(&bitmap, nullptr, &bitmap), argument);
    EXPECT_EQ(Z_ConvertFromDIB(&bitmap, &bitmap, nullptr), argument);
    EXPECT_EQ(Z_ChangeFromDIB(nullptr, nullptr), argument);
    EXPECT_EQ(Z_MirrorFromDIB(&bitmap, nullptr), argument);
}

// What is written into a mirror is in the block, and the other way round.
TEST(FromDib, MirrorsTheBlock) {
    Seeded seeded(8);
    const DibForm form = {40, 5, 4, 8};
    const DibBytes dib = form.Make(32, seeded);
    HGLOBAL block = dib.Block();
    auto* bytes = static_cast<uint8_t*>(platform::GlobalLock(block));
    Bitmap bitmap;
    ASSERT_EQ(Z_MirrorFromDIB(&bitmap, block), 1);
    const int32_t locked = Z_LockBitmap(&bitmap);
    Z_PutBitmapRow(&bitmap, "12345678", 2, 8);
    EXPECT_EQ(std::memcmp(bytes + dib.Head.size() + 16, "12345678", 8), 0);
    bytes[dib.Head.size() + 9] = 77;
    EXPECT_EQ(Rows(bitmap)[9], 77);
    EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, 5), Z_ERROR_ARGUMENT);
    Z_UnlockBitmap(&bitmap, locked);
    Z_FreeBitmap(&bitmap);
    platform::GlobalUnlock(block);
    platform::GlobalFree(block);
}

} // namespace
} // namespace zkr::test
