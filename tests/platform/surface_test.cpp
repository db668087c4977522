// Surfaces of the host: what is refused, and a palette display as the screen.
#include "platform/graphics.h"
#include "platform/portable/device.h"
#include "zkr13n/palettes.h"
#include "zkr13n/surface.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace zkr {
namespace {

using namespace platform;

class Surfaces : public testing::Test {
  protected:
    void SetUp() override {
        for (int i = 0; i < 256; ++i) {
            colors_[static_cast<size_t>(i)] = {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i), 7, 99};
        }
        description_ = {sizeof description_, 10, 4, 8, 12, 0, pixels_.data(), colors_.data(), 256, 20};
        handles_ = CountHandles();
    }
    void TearDown() override {
        Z_SetScreenSurface(nullptr);
        EXPECT_EQ(CountHandles(), handles_);
    }

    std::vector<uint8_t> pixels_ = std::vector<uint8_t>(12 * 4);
    std::vector<RGBQUAD> colors_ = std::vector<RGBQUAD>(256);
    SurfaceDescription description_;
    uint32_t handles_ = 0;
};

TEST_F(Surfaces, RefuseWhatCannotBeShown) {
    using Change = std::function<void(SurfaceDescription&)>;
    const std::pair<Change, ReturnCode> cases[] = {
        {[](auto& d) { d.StructSize = 4; }, Z_ERROR_ARGUMENT},
        {[](auto& d) { d.Width = 0; }, Z_ERROR_ARGUMENT},
        {[](auto& d) { d.Bits = nullptr; }, Z_ERROR_ARGUMENT},
        {[](auto& d) { d.Pitch = 9; }, Z_ERROR_ARGUMENT},
        {[](auto& d) { d.Width = 0x7FFFFFFF; }, Z_ERROR_ARGUMENT},
        {[](auto& d) { d.ColorCount = 257; }, Z_ERROR_ARGUMENT},
        {[](auto& d) { d.Colors = nullptr; }, Z_ERROR_ARGUMENT},
        {[](auto& d) { d.StaticColors = 257; }, Z_ERROR_ARGUMENT},
        {[](auto& d) { d.BitsPerPixel = 12; }, Z_ERROR_BITS_PER_PIXEL},
        {[](auto& d) { d.BitsPerPixel = 4; }, Z_ERROR_ARGUMENT}, // too many colours for it
    };
    HDC context = nullptr;
    for (const auto& [change, code] : cases) {
        SurfaceDescription changed = description_;
        change(changed);
        EXPECT_EQ(Z_CreateSurface(&changed, &context), code) << &change - &cases[0].first;
    }
    EXPECT_EQ(context, nullptr);
}

TEST_F(Surfaces, ShowTheirRowsFromTheTop) {
    for (const int topDown : {0, 1}) {
        description_.TopDown = topDown;
        HDC context = nullptr;
        ASSERT_EQ(Z_CreateSurface(&description_, &context), Z_SUCCESS);
        {
            const Pin<DeviceContext> pin(context);
            EXPECT_EQ(pin->device->topRow, pixels_.data() + (topDown ? 0 : 36));
            EXPECT_EQ(pin->device->pitch, topDown ? 12 : -12);
        }
        EXPECT_EQ(Z_DeleteSurface(context), Z_SUCCESS);
    }
}

TEST_F(Surfaces, ServeAsAPaletteDisplay) {
    HDC context = nullptr;
    ASSERT_EQ(Z_CreateSurface(&description_, &context), Z_SUCCESS);
    ASSERT_EQ(Z_SetScreenSurface(context), Z_SUCCESS);
    HDC screen = GetDC(nullptr);
    EXPECT_NE(GetDeviceCaps(screen, RASTERCAPS) & RC_PALETTE, 0);
    EXPECT_EQ(GetDeviceCaps(screen, SIZEPALETTE), 256);
    EXPECT_EQ(GetDeviceCaps(screen, BITSPIXEL), 8);
    PALETTEENTRY got[3];
    EXPECT_EQ(GetSystemPaletteEntries(screen, 254, 3, got), 2u);

    EXPECT_EQ(Z_DeleteSurface(screen), Z_ERROR_ARGUMENT) << "not the host's own context";
    EXPECT_EQ(Z_SetScreenSurface(screen), Z_ERROR_ARGUMENT);
    EXPECT_EQ(ReleaseDC(nullptr, context), 0);

    EXPECT_EQ(Z_DeleteSurface(context), Z_SUCCESS);
    {
        const Pin<DeviceContext> pin(screen);
        ASSERT_TRUE(pin) << "contexts of the screen outlive its surface";
        EXPECT_EQ(pin->device->topRow, nullptr) << "but let go of the host's pixels";
    }
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
    screen = GetDC(nullptr);
    EXPECT_EQ(GetDeviceCaps(screen, RASTERCAPS) & RC_PALETTE, 0) << "the screen went with its surface";
    EXPECT_EQ(GetDeviceCaps(screen, BITSPIXEL), 32);
    ReleaseDC(nullptr, screen);
    EXPECT_EQ(Z_DeleteSurface(context), Z_ERROR_ARGUMENT);
}

TEST_F(Surfaces, TheHostDeletesItsObjects) {
    HDC context = nullptr;
    ASSERT_EQ(Z_CreateSurface(&description_, &context), Z_SUCCESS);
    const HPALETTE palette = Z_CreateGrayPalette(4);
    ASSERT_EQ(CountHandles(), handles_ + 2);
    EXPECT_EQ(Z_DeleteObject(context), Z_ERROR_ARGUMENT) << "a device context goes with its surface";
    EXPECT_EQ(Z_DeleteObject(nullptr), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_DeleteObject(palette), Z_SUCCESS);
    EXPECT_EQ(Z_GetPaletteSize(palette), 0u);
    EXPECT_EQ(Z_DeleteObject(palette), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_DeleteSurface(context), Z_SUCCESS);
}

TEST_F(Surfaces, TellTheirMeasures) {
    for (const auto& [bits, colours] : {std::pair{1, 2}, {4, 16}, {8, 256}, {16, -1}, {24, -1}, {32, -1}}) {
        std::vector<uint8_t> pixels(4000 * 3);
        description_ = {sizeof description_, 960, 3, bits, 4000, 1, pixels.data(), nullptr, 0, 0};
        HDC context = nullptr;
        ASSERT_EQ(Z_CreateSurface(&description_, &context), Z_SUCCESS);
        EXPECT_EQ(GetDeviceCaps(context, HORZSIZE), 254) << "10 inches";
        EXPECT_EQ(GetDeviceCaps(context, VERTSIZE), 1) << "0.79";
        EXPECT_EQ(GetDeviceCaps(context, LOGPIXELSX), 96);
        EXPECT_EQ(GetDeviceCaps(context, BITSPIXEL) * GetDeviceCaps(context, PLANES), bits);
        EXPECT_EQ(GetDeviceCaps(context, NUMCOLORS), colours);
        EXPECT_EQ(GetDeviceCaps(context, TECHNOLOGY), DT_RASDISPLAY);
        HBITMAP bitmap = CreateCompatibleBitmap(context, 7, 7);
        HDC memory = CreateCompatibleDC(context);
        EXPECT_EQ(GetDeviceCaps(memory, BITSPIXEL), 1) << "the bitmap of one pixel";
        SelectObject(memory, bitmap);
        EXPECT_EQ(GetDeviceCaps(memory, BITSPIXEL), bits);
        EXPECT_TRUE(DeleteDC(memory));
        EXPECT_EQ(Z_DeleteObject(bitmap), Z_SUCCESS);
        EXPECT_EQ(Z_DeleteObject(bitmap), Z_ERROR_ARGUMENT);
        EXPECT_EQ(Z_DeleteSurface(context), Z_SUCCESS);
    }
}

TEST_F(Surfaces, BringAPaletteIntoTheDisplays) {
    struct {
        WORD version = 0x300, count = 200;
        PALETTEENTRY entries[200];
    } palette;
    for (unsigned i = 0; i < 200; ++i)
        palette.entries[i] = {static_cast<BYTE>(i), 200, static_cast<BYTE>(i), 0};
    const RGBQUAD& shown = colors_[5]; // a static colour: it needs no second entry
    palette.entries[3] = {shown.rgbRed, shown.rgbGreen, shown.rgbBlue, 0};
    HPALETTE handle = CreatePalette(reinterpret_cast<LOGPALETTE*>(&palette));
    HDC context = nullptr;
    ASSERT_EQ(Z_CreateSurface(&description_, &context), Z_SUCCESS);
    EXPECT_EQ(Z_SelectSurfacePalette(context, reinterpret_cast<HPALETTE>(context)), Z_ERROR_ARGUMENT);
    ASSERT_EQ(Z_SelectSurfacePalette(context, handle), Z_SUCCESS);
    std::vector<RGBQUAD> now(256);
    int32_t count = 256;
    ASSERT_EQ(Z_GetSurfaceColors(context, now.data(), &count), Z_SUCCESS);
    EXPECT_EQ(count, 256);
    for (unsigned i = 0; i < 256; ++i) {
        const bool taken = i >= 10 && i < 10 + 199;
        const unsigned entry = i - 10 < 3 ? i - 10 : i - 9;
        EXPECT_EQ(now[i].rgbRed, taken ? entry : colors_[i].rgbRed) << i;
        EXPECT_EQ(now[i].rgbGreen, taken ? 200 : colors_[i].rgbGreen) << i;
    }

    // Painted by index: entry 3 is the static colour 5.
    struct {
        BITMAPINFOHEADER header{40, 1, -4, 1, 8, 0, 0, 0, 0, 0, 0};
        WORD indices[256] = {0, 3, 7, 199};
    } info;
    const uint8_t rows[16] = {0, 9, 9, 9, 1, 9, 9, 9, 2, 9, 9, 9, 3, 9, 9, 9};
    EXPECT_NE(StretchDIBits(context, 4, 0, 1, 4, 0, 0, 1, 4, rows, reinterpret_cast<BITMAPINFO*>(&info),
                            DIB_PAL_COLORS, SRCCOPY),
              0);
    const uint8_t wanted[4] = {10, 5, 10 + 6, 10 + 198};
    for (size_t y = 0; y < 4; ++y)
        EXPECT_EQ(pixels_[(3 - y) * 12 + 4], wanted[y]) << y;
    EXPECT_EQ(Z_DeleteObject(handle), Z_SUCCESS);
    EXPECT_EQ(Z_SelectSurfacePalette(context, nullptr), Z_SUCCESS);
    EXPECT_EQ(Z_DeleteSurface(context), Z_SUCCESS);
    EXPECT_EQ(Z_GetSurfaceColors(context, now.data(), &count), Z_ERROR_ARGUMENT);
}

TEST_F(Surfaces, RefuseBlocksThatAreNone) {
    HDC context = nullptr;
    ASSERT_EQ(Z_CreateSurface(&description_, &context), Z_SUCCESS);
    const std::vector<uint8_t> before = pixels_;
    const BITMAPINFOHEADER cases[] = {
        {12, 4, 4, 1, 24, 0, 0, 0, 0, 0, 0}, {40, 0, 4, 1, 24, 0, 0, 0, 0, 0, 0},
        {40, 4, 0, 1, 24, 0, 0, 0, 0, 0, 0}, {40, -4, 4, 1, 24, 0, 0, 0, 0, 0, 0},
        {40, 4, 4, 2, 24, 0, 0, 0, 0, 0, 0}, {40, 4, 4, 1, 12, 0, 0, 0, 0, 0, 0},
        {40, 4, 4, 1, 8, 1, 0, 0, 0, 0, 0},  {40, 4, -0x7FFFFFFF - 1, 1, 24, 0, 0, 0, 0, 0, 0},
    };
    for (const BITMAPINFOHEADER& header : cases) {
        BITMAPINFO info{header, {}};
        EXPECT_EQ(
            StretchDIBits(context, 0, 0, 4, 4, 0, 0, 4, 4, pixels_.data(), &info, DIB_RGB_COLORS, SRCCOPY), 0)
            << &header - cases;
        EXPECT_EQ(CreateDIBSection(context, &info, DIB_RGB_COLORS, nullptr, nullptr, 0), nullptr);
    }
    EXPECT_EQ(pixels_, before);
    EXPECT_EQ(Z_DeleteSurface(context), Z_SUCCESS);
    EXPECT_FALSE(PatBlt(context, 0, 0, 4, 4, BLACKNESS));
    EXPECT_EQ(SelectObject(context, context), nullptr);
}

// Coordinates at the ends of 32 bits, on surfaces with guards around their rows.
TEST_F(Surfaces, BearDrawingAnywhere) {
    constexpr int Far[] = {-0x7FFFFFFF - 1, -0x7FFFFFFF, -100, -9, -1, 0, 1, 3, 10, 99,
                           0x40000000,      0x7FFFFFFF};
    constexpr int Width = 11, Height = 7, Pitch = 60;
    constexpr DWORD Codes[] = {SRCCOPY, PATCOPY, 0x00660046, 0x006A01E9, WHITENESS};
    std::mt19937 random(1);
    const auto far = [&] { return Far[random() % std::size(Far)]; };
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        std::vector<uint8_t> memory(Pitch * (Height + 2), 0xA5), block(4096, 0x5A);
        description_ = {sizeof description_,   Width,   Height, bits, Pitch, 0,
                        memory.data() + Pitch, nullptr, 0,      0};
        HDC context = nullptr;
        ASSERT_EQ(Z_CreateSurface(&description_, &context), Z_SUCCESS);
        for (int round = 0; round < 4000; ++round) {
            const DWORD code = Codes[random() % std::size(Codes)];
            const int sourceBits = std::array{1, 4, 8, 16, 24, 32}[random() % 6];
            struct {
                BITMAPINFOHEADER header;
                RGBQUAD colours[256];
            } info{{40, 9, round % 2 == 0 ? 8 : -8, 1, static_cast<uint16_t>(sourceBits), 0, 0, 0, 0, 0, 0},
                   {}};
            HRGN clip = CreateRectRgn(far(), far(), far(), far());
            SelectClipRgn(context, round % 3 == 0 ? nullptr : clip);
            SetBrushOrgEx(context, far(), far(), nullptr);
            PatBlt(context, far(), far(), far(), far(), WHITENESS);
            BitBlt(context, far(), far(), far(), far(), context, far(), far(), code);
            StretchDIBits(context, far(), far(), far(), far(), far(), far(), far(), far(), block.data(),
                          reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS, code);
            PaintRgn(context, clip);
            DeleteObject(clip);
        }
        EXPECT_EQ(Z_DeleteSurface(context), Z_SUCCESS);
        const size_t rowBytes = (static_cast<size_t>(Width * bits) + 7) / 8;
        for (size_t i = 0; i < memory.size(); ++i) {
            const size_t row = i / Pitch, column = i % Pitch;
            if (row == 0 || row > Height || column >= rowBytes) {
                ASSERT_EQ(memory[i], 0xA5) << bits << " bits, row " << row << " byte " << column;
            }
        }
    }
}

// Threads draw on the screen while its host takes the surface away and frees the pixels.
TEST_F(Surfaces, AreLetGoUnderTheHandsOfThreads) {
    std::atomic<bool> stop{false};
    std::atomic<HRGN> shared{nullptr};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&, i] {
            while (!stop) {
                HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
                HBITMAP bitmap = CreateCompatibleBitmap(screen, 50, 50);
                HGDIOBJ old = SelectObject(memory, bitmap);
                HRGN region = CreateRectRgn(i, i, 30, 30);
                SelectClipRgn(screen, region);
                if (HRGN other = shared.exchange(region)) {
                    CombineRgn(other, other, region, RGN_XOR);
                    DeleteObject(other);
                }
                BitBlt(memory, 0, 0, 50, 50, screen, 0, 0, SRCCOPY);
                BitBlt(screen, 1, 1, 50, 50, memory, 0, 0, SRCCOPY);
                BitBlt(screen, 2, 1, 30, 30, screen, 0, 0, SRCCOPY);
                SelectObject(memory, old);
                DeleteDC(memory);
                DeleteObject(bitmap);
                ReleaseDC(nullptr, screen);
            }
        });
    }
    for (int round = 0; round < 300; ++round) {
        std::vector<uint8_t> pixels(60 * 40);
        description_ = {sizeof description_, 60, 40, 8, 60, 1, pixels.data(), colors_.data(), 256, 20};
        HDC context = nullptr;
        ASSERT_EQ(Z_CreateSurface(&description_, &context), Z_SUCCESS);
        EXPECT_EQ(Z_SetScreenSurface(context), Z_SUCCESS);
        std::this_thread::yield();
        EXPECT_EQ(Z_DeleteSurface(context), Z_SUCCESS);
    }
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    DeleteObject(shared);
}

TEST(GlobalBlocks, AreLentToHosts) {
    HGLOBAL block = nullptr;
    ASSERT_EQ(Z_AllocGlobalBlock(100, &block), Z_SUCCESS);
    size_t size = 0;
    EXPECT_EQ(Z_GetGlobalBlockSize(block, &size), Z_SUCCESS);
    EXPECT_EQ(size, 100u);
    void* bytes = nullptr;
    ASSERT_EQ(Z_LockGlobalBlock(block, &bytes), Z_SUCCESS);
    EXPECT_EQ(static_cast<uint8_t*>(bytes)[99], 0);
    EXPECT_EQ(Z_UnlockGlobalBlock(block), Z_SUCCESS);
    EXPECT_EQ(Z_UnlockGlobalBlock(block), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_FreeGlobalBlock(block), Z_SUCCESS);
    EXPECT_EQ(Z_FreeGlobalBlock(block), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_LockGlobalBlock(block, &bytes), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_GetGlobalBlockSize(block, &size), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_AllocGlobalBlock(SIZE_MAX, &block), Z_ERROR_MEMORY);
    ASSERT_EQ(Z_AllocGlobalBlock(0, &block), Z_SUCCESS);
    EXPECT_EQ(Z_GetGlobalBlockSize(block, &size), Z_SUCCESS);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(Z_FreeGlobalBlock(block), Z_SUCCESS);
}

} // namespace
} // namespace zkr
