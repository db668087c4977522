// Platform bitmaps, contexts on a bitmap's own pixels, and regions as blocks; on the system's graphics or the portable
// ones.
#include "display/dib/contexts.h"
#include "display/dib/dib_model.h"
#include "display/dib/region_exchange.h"
#include "geometry/picture.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/palettes.h"
#include "zkr13n/region.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/rotate.h"

namespace zkr::test {
namespace {

constexpr int Width = 21, Height = 10;
constexpr uint32_t Invert = 0x00550009;

// A section of random pixels, and what they are, upright.
struct Section {
    Section(int bits, bool topDown, Seeded& seeded) : Bits(bits) {
        Info.Header.biSize = 40;
        Info.Header.biWidth = Width;
        Info.Header.biHeight = topDown ? -Height : Height;
        Info.Header.biPlanes = 1;
        Info.Header.biBitCount = static_cast<uint16_t>(bits);
        for (int i = 0; i < 256; ++i)
            Info.Colours[i] = {static_cast<uint8_t>(i * 9), static_cast<uint8_t>(i),
                               static_cast<uint8_t>(255 - i), 0};
        void* data = nullptr;
        Handle = platform::CreateDIBSection(nullptr, Info.Get(), DIB_RGB_COLORS, &data, nullptr, 0);
        const size_t row = static_cast<size_t>((Width * bits + 31) / 32 * 4);
        auto* bytes = static_cast<uint8_t*>(data);
        for (size_t i = 0; i < row * Height; ++i)
            bytes[i] = seeded.Byte();
        Pixels = Picture::Made(Width, Height, [&](int x, int y) {
            return ReadPixel(bytes + row * static_cast<size_t>(topDown ? y : Height - 1 - y), bits, x);
        });
    }
    ~Section() { platform::DeleteObject(Handle); }
    Section(const Section&) = delete;
    Section& operator=(const Section&) = delete;

    // What a bitmap of it holds.
    uint64_t Held(int x, int y) const {
        const uint64_t pixel = Pixels.At(x, y);
        if (Bits == 32) return pixel & 0xFFFFFF;
        if (Bits != 16) return pixel;
        const auto wide = [&](int shift) {
            const uint64_t c = pixel >> shift & 31;
            return c << 3 | c >> 2;
        };
        return wide(10) << 16 | wide(5) << 8 | wide(0);
    }

    int Bits;
    dib::InfoWithColours Info;
    HBITMAP Handle;
    Picture Pixels;
};

TEST(Device, BitmapsOfPlatformBitmaps) {
    Seeded seeded(1);
    for (const int bits : {1, 4, 8, 16, 24, 32})
        for (const bool topDown : {false, true}) {
            SCOPED_TRACE(bits);
            const Section section(bits, topDown, seeded);
            Bitmap bitmap;
            ASSERT_EQ(Z_ConvertFromDDB(nullptr, &bitmap, section.Handle, nullptr), 1);
            EXPECT_EQ(bitmap.BitsPerPixel, bits <= 8 ? bits : 24);
            EXPECT_EQ(Picture::Of(bitmap).Seen(bitmap.ViewPerspective),
                      Picture::Made(Width, Height, [&](int x, int y) { return section.Held(x, y); }));
            RGBQUAD colours[256];
            const uint32_t count = Z_GetBitmapPaletteEntries(&bitmap, 0, 256, colours);
            EXPECT_EQ(count, bits <= 8 ? 1u << bits : 0u);
            EXPECT_EQ(std::memcmp(colours, section.Info.Colours, count * 4), 0);
        }
}

TEST(Device, ConsumesPlatformBitmaps) {
    const uint8_t bits[] = {0xA5, 0x80, 0x0F, 0};
    HBITMAP source = platform::CreateBitmap(9, 2, 1, 1, bits);
    HPALETTE palette = Z_CreateGrayPalette(4);
    Bitmap bitmap;
    EXPECT_EQ(Z_ChangeFromDDB(nullptr, nullptr, source, palette), Z_ERROR_ARGUMENT);
    ASSERT_EQ(Z_ChangeFromDDB(nullptr, &bitmap, source, palette), 1);
    const Picture expected = Picture::Made(9, 2, [&](int x, int y) { return ReadPixel(bits + y * 2, 1, x); });
    EXPECT_EQ(Picture::Of(bitmap).Seen(2), expected);
    EXPECT_FALSE(platform::DeleteObject(source));
    EXPECT_FALSE(platform::DeleteObject(palette));
    BitmapHandle none;
    palette = Z_CreateGrayPalette(4);
    for (void* wrong : {static_cast<void*>(nullptr), static_cast<void*>(palette), static_cast<void*>(&none)})
        EXPECT_EQ(Z_ConvertFromDDB(nullptr, &none, static_cast<HBITMAP>(wrong), nullptr), Z_ERROR_ARGUMENT);
    platform::DeleteObject(palette);
}

// The colours that a device of full colour shows, upright. Without colours of its own a level is a gray.
Picture ColoursSeen(BitmapHandle& bitmap) {
    RGBQUAD colours[256] = {};
    Z_GetBitmapPaletteEntries(&bitmap, 0, 256, colours);
    const Picture pixels = Picture::Of(bitmap).Seen(bitmap.ViewPerspective);
    return Picture::Made(pixels.Width, pixels.Height, [&](int x, int y) {
        const uint64_t pixel = pixels.At(x, y);
        if (bitmap.BitsPerPixel > 8) return pixel & 0xFFFFFF;
        const RGBQUAD& c = colours[pixel];
        return static_cast<uint64_t>(c.rgbBlue | c.rgbGreen << 8 | c.rgbRed << 16);
    });
}

// There and back, in every view: on a screen of full colour no colour is lost.
TEST(Device, PlatformBitmapsOfBitmaps) {
    for (const int bits : {1, 4, 8, 24, 32})
        for (const int view : AllViews) {
            SCOPED_TRACE(std::to_string(bits) + " bits, view " + std::to_string(view));
            Bitmap bitmap(Width, Height, bits);
            ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
            bitmap.ViewPerspective = view;
            Fill(bitmap, static_cast<uint32_t>(view));
            if (bits <= 8) Z_CreateBitmapFixedPalette(&bitmap);
            const Picture expected = ColoursSeen(bitmap);
            const uint32_t mode = Z_GetDisplayMode();
            HBITMAP made = view == 3 ? Z_ChangeToDDB(nullptr, &bitmap) : Z_ConvertToDDB(nullptr, &bitmap);
            ASSERT_NE(made, nullptr);
            EXPECT_EQ((bitmap.Flags & Z_FLAG_ALLOCATED) == 0, view == 3);
            EXPECT_EQ(Z_GetDisplayMode(), mode);
            Bitmap again;
            ASSERT_EQ(Z_ChangeFromDDB(nullptr, &again, made, nullptr), 1);
            EXPECT_EQ(again.BitsPerPixel, bits == 1 ? 1 : 24);
            EXPECT_EQ(ColoursSeen(again), expected);
        }
    EXPECT_EQ(Z_ConvertToDDB(nullptr, nullptr), nullptr);
    BitmapHandle empty{};
    EXPECT_EQ(Z_ChangeToDDB(nullptr, &empty), nullptr);
}

// Drawing on the context changes the bitmap's own pixels, whatever it was kept in.
void ExpectDrawnOn(int bits, int order, int view, const Storage& storage) {
    SCOPED_TRACE(storage.Name + ", bits " + std::to_string(bits) + ", view " + std::to_string(view));
    Bitmap bitmap(Width, Height, bits);
    Bytes userData;
    Allocate(bitmap, storage, userData);
    bitmap.Order = order;
    bitmap.ViewPerspective = view;
    Fill(bitmap, static_cast<uint32_t>(bits));
    if (bits <= 8) Z_CreateBitmapGrayPalette(&bitmap);
    HGLOBAL packed = Z_ConvertToDIB(&bitmap);
    Bitmap held;
    ASSERT_EQ(Z_ChangeFromDIB(&held, packed), 1);
    const Picture before = Picture::Of(held).Seen(2);
    HDC context = Z_CreateZircDC(&bitmap);
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(bitmap.ViewPerspective, 2);
    EXPECT_EQ(Picture::Of(bitmap).Seen(2), before);
    EXPECT_TRUE(platform::PatBlt(context, 3, 2, 5, 4, Invert));
    platform::GdiFlush();
    const uint64_t pixel = bitmap.BitsPerPixel == 16 ? 0x7FFF : (uint64_t{1} << bitmap.BitsPerPixel) - 1;
    const auto masked = [&](const Picture& picture, bool inverts) {
        return Picture::Made(picture.Width, picture.Height, [&](int x, int y) {
            const bool isInside = x >= 3 && x < 8 && y >= 2 && y < 6;
            return (picture.At(x, y) ^ (inverts && isInside ? pixel : 0)) & (bits == 32 ? 0xFFFFFF : pixel);
        });
    };
    EXPECT_EQ(masked(Picture::Of(bitmap).Seen(2), false), masked(before, true));
    const bool freesFirst = view == 2;
    if (freesFirst) Z_FreeBitmap(&bitmap);
    EXPECT_EQ(Z_DeleteZircDC(context), 1);
    EXPECT_EQ(Z_DeleteZircDC(context), 0);
    if (freesFirst) return;
    EXPECT_EQ(masked(Picture::Of(bitmap).Seen(2), false), masked(before, true));
}

TEST(Device, DrawsOnPixels) {
    const Thresholds restore;
    for (const int bits : {1, 2, 4, 7, 8, 16, 24, 32, 48})
        ExpectDrawnOn(bits, bits <= 8 ? 0 : 1, 2, {"conventional", MemoryConventional});
    for (const int view : AllViews)
        ExpectDrawnOn(24, 0, view, {"conventional", MemoryConventional});
    for (const int bits : {1, 24})
        for (const Storage& storage : GeometryStorages(bits))
            ExpectDrawnOn(bits, bits == 24, 0, storage);
}

TEST(Device, RefusesContexts) {
    EXPECT_EQ(Z_CreateZircDC(nullptr), nullptr);
    BitmapHandle empty{};
    EXPECT_EQ(Z_CreateZircDC(&empty), nullptr);
    EXPECT_EQ(Z_DeleteZircDC(nullptr), 0);
    // A context of somebody else's bitmap is closed, and the bitmap left alone.
    HDC memory = platform::CreateCompatibleDC(nullptr);
    HBITMAP other = platform::CreateBitmap(4, 4, 1, 1, nullptr);
    platform::SelectObject(memory, other);
    EXPECT_EQ(Z_DeleteZircDC(memory), 1);
    EXPECT_TRUE(platform::DeleteObject(other));
}

// A region as a block is the mask, and comes back as the region, whatever the views.
TEST(Device, ExchangesRegions) {
    for (const int view : AllViews)
        for (const int otherView : {view, 0, 5}) {
            SCOPED_TRACE(std::to_string(view) + " to " + std::to_string(otherView));
            Bitmap bitmap(Width, Height, 8);
            ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
            bitmap.ViewPerspective = view;
            const bool isTurned = view >= 4;
            const RECT oval = {2, 1, isTurned ? 9 : 17, isTurned ? 19 : 8};
            ASSERT_EQ(Z_SetBitmapRgnEllipse(&bitmap, nullptr, &oval, Z_RGN_SET), 1);
            HGLOBAL block = dib::RegionToBlock(bitmap);
            ASSERT_NE(block, nullptr);
            Bitmap other(bitmap.Width, bitmap.Height, 24);
            const bool turns = isTurned != (otherView >= 4);
            Z_InitBitmap(&other, turns ? Height : Width, turns ? Width : Height, 24);
            ASSERT_EQ(Z_AllocateBitmap(&other, MemoryConventional), 1);
            other.ViewPerspective = otherView;
            ASSERT_EQ(dib::RegionFromBlock(other, block), 1);
            platform::GlobalFree(block);
            const auto seen = [](Bitmap& of) {
                return Picture::Made(of.Width, of.Height,
                                     [&](int x, int y) { return Z_IsPtInBitmapRgn(&of, y, x) == 1; })
                    .Seen(of.ViewPerspective);
            };
            EXPECT_EQ(seen(other), seen(bitmap));
        }
    Bitmap bitmap(Width, Height, 8);
    EXPECT_EQ(dib::RegionFromBlock(bitmap, nullptr), Z_ERROR_ARGUMENT);
}

} // namespace
} // namespace zkr::test
