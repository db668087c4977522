// Surfaces of the host: what is refused, and a palette display as the screen.
#include "platform/graphics.h"
#include "platform/portable/device.h"
#include "zkr13n/palettes.h"
#include "zkr13n/surface.h"

#include <gtest/gtest.h>

#include <functional>
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

} // namespace
} // namespace zkr
