// Bitmaps on the clipboard and from a device, on the system's or the portable ones.
#include "platform/canvas.h"
#include "platform/clipboard.h"
#include "platform/threads.h"
#include "zkr13n/clipboard.h"
#include "zkr13n/copy.h"
#include "zkr13n/pixels.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <thread>

namespace zkr::test {
namespace {

struct Bitmap : BitmapHandle {
    Bitmap() : BitmapHandle{} {}
    Bitmap(int32_t width, int32_t height) : Bitmap() {
        EXPECT_EQ(Z_CreateBitmap(this, MemoryConventional, width, height, 24, Z_ORDER_BGR, nullptr,
                                 VIEW_BOTTOM_LEFT, nullptr, 0),
                  1);
    }
    ~Bitmap() { Z_FreeBitmap(this); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
};

TEST(Clipboard, IsRefusedWhileAnotherThreadHasIt) {
    Bitmap bitmap(3, 2), pasted;
    ASSERT_EQ(Z_CopyToClipboardExt(nullptr, &bitmap, COPY_EMPTY | COPY_DIB), 1);
    std::atomic<bool> opened = false, done = false;
    std::thread other([&] {
        HWND owner = platform::CreateOwner();
        EXPECT_TRUE(platform::OpenClipboard(owner));
        opened = true;
        while (!done)
            platform::SwitchToThread();
        platform::CloseClipboard();
        platform::DestroyOwner(owner);
    });
    while (!opened)
        platform::SwitchToThread();
    EXPECT_EQ(Z_CopyFromClipboard(nullptr, &pasted), Z_ERROR_CLIPBOARD);
    EXPECT_EQ(pasted.Flags, 0u);
    EXPECT_EQ(Z_CopyToClipboard(nullptr, &bitmap), Z_ERROR_CLIPBOARD_COPY);
    EXPECT_EQ(Z_CopyToClipboardExt(nullptr, nullptr, COPY_EMPTY), Z_ERROR_CLIPBOARD_COPY);
    EXPECT_EQ(Z_CopyToClipboardExt(nullptr, nullptr, COPY_EMPTY | COPY_DIB), Z_ERROR_BITMAP);
    EXPECT_EQ(Z_CopyToClipboardExt(nullptr, &bitmap, 32), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_ClipboardReady(), 1); // needs nobody's leave
    done = true;
    other.join();
    EXPECT_EQ(Z_CopyFromClipboard(nullptr, &pasted), 1);
    EXPECT_EQ(pasted.Width, 3);
    EXPECT_EQ(Z_CopyFromClipboard(nullptr, nullptr), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_CopyToClipboardExt(nullptr, nullptr, COPY_EMPTY), 1);
    EXPECT_EQ(Z_ClipboardReady(), 0);
    Bitmap none;
    EXPECT_EQ(Z_CopyFromClipboard(nullptr, &none), Z_ERROR_CLIPBOARD_EMPTY);
}

TEST(Capture, ShowsWhatTheDeviceShows) {
    constexpr int width = 13, height = 9;
    for (const int bits : AllDepths) {
        Canvas canvas(width, height, bits, static_cast<unsigned>(bits));
        const RECT parts[] = {{0, 0, width, height}, {3, 2, 7, 8}, {-4, -3, 5, 20}};
        for (const RECT& part : parts) {
            Bitmap shot;
            const RECT* told = &part == parts ? nullptr : &part;
            ASSERT_EQ(Z_ScreenCaptureBitmap(canvas.context, &shot, told), 1);
            EXPECT_EQ(shot.Width, part.right - part.left);
            EXPECT_EQ(shot.Height, part.bottom - part.top);
            EXPECT_EQ(shot.BitsPerPixel, 24);
            EXPECT_EQ(shot.ViewPerspective, int32_t{VIEW_BOTTOM_LEFT});
            for (int y = 0; y < shot.Height; ++y)
                for (int x = 0; x < shot.Width; ++x) {
                    const int column = x + static_cast<int>(part.left), row = y + static_cast<int>(part.top);
                    const bool isThere = column >= 0 && column < width && row >= 0 && row < height;
                    const uint32_t rgb = canvas.info.Colour(isThere ? canvas.Get(column, row) : 0);
                    const uint32_t colour = rgb >> 16 | (rgb & 0xFF00) | (rgb & 0xFF) << 16;
                    ASSERT_EQ(Z_GetPixelColor(&shot, shot.Height - 1 - y, x), colour)
                        << bits << " bits, " << x << ' ' << y;
                }
        }
    }
    Bitmap none;
    const RECT empty = {5, 5, 5, 9}, wrong = {5, 5, 4, 9}, wide = {INT32_MIN, 0, INT32_MAX, 1};
    for (const RECT* part : {&empty, &wrong, &wide})
        EXPECT_EQ(Z_ScreenCaptureBitmap(nullptr, &none, part), Z_ERROR_DIMENSIONS);
    EXPECT_EQ(Z_ScreenCaptureBitmap(nullptr, nullptr, nullptr), Z_ERROR_ARGUMENT);
    HDC screen = platform::GetDC(nullptr);
    Bitmap whole;
    EXPECT_EQ(Z_ScreenCaptureBitmap(nullptr, &whole, nullptr), 1);
    EXPECT_EQ(whole.Width, platform::GetDeviceCaps(screen, HORZRES));
    EXPECT_EQ(whole.Height, platform::GetDeviceCaps(screen, VERTRES));
    platform::ReleaseDC(nullptr, screen);
}

} // namespace
} // namespace zkr::test
