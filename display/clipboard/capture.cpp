#include "core/return_codes.h"
#include "platform/graphics.h"
#include "platform/memory.h"
#include "zkr13n/clipboard.h"
#include "zkr13n/dib.h"

#include <cstdint>
#include <cstring>

using namespace zkr;

namespace {

constexpr int32_t MostSide = 0x7FFFFF; // beyond that no device has pixels

// A device context of the screen, where the caller has none of a device.
class Device {
  public:
    explicit Device(HDC context)
        : own_(context == nullptr ? platform::GetDC(nullptr) : nullptr), context_(context) {
        if (context_ == nullptr) context_ = own_;
    }
    ~Device() {
        if (own_ != nullptr) platform::ReleaseDC(nullptr, own_);
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    HDC context() const { return context_; }
    bool IsScreen() const { return own_ != nullptr; }

  private:
    HDC own_;
    HDC context_;
};

bool Bounds(const Device& device, RECT* bounds) {
    if (device.IsScreen()) {
        *bounds = {0, 0, platform::GetDeviceCaps(device.context(), HORZRES),
                   platform::GetDeviceCaps(device.context(), VERTRES)};
        return true;
    }
    return platform::GetClipBox(device.context(), bounds) != ERROR;
}

// A platform bitmap with a part of what the device shows; null where memory is short.
HBITMAP Photograph(HDC device, const RECT& part) {
    const int width = static_cast<int>(part.right - part.left),
              height = static_cast<int>(part.bottom - part.top);
    HDC memory = platform::CreateCompatibleDC(device);
    if (memory == nullptr) return nullptr;
    HBITMAP picture = platform::CreateCompatibleBitmap(device, width, height);
    bool drawn = false;
    if (picture != nullptr) {
        platform::HGDIOBJ before = platform::SelectObject(memory, picture);
        drawn = before != nullptr &&
                platform::BitBlt(memory, 0, 0, width, height, device, static_cast<int>(part.left),
                                 static_cast<int>(part.top), SRCCOPY) != 0;
        if (before != nullptr) platform::SelectObject(memory, before);
    }
    if (picture != nullptr && !drawn) {
        platform::DeleteObject(picture);
        picture = nullptr;
    }
    platform::DeleteDC(memory);
    return picture;
}

// The picture's rows as a packed device-independent bitmap of 24 bits.
HGLOBAL Develop(HDC device, HBITMAP picture, int32_t width, int32_t height) {
    const uint64_t rowBytes = (uint64_t{24} * static_cast<uint32_t>(width) + 31) / 32 * 4;
    const uint64_t bytes = sizeof(BITMAPINFOHEADER) + rowBytes * static_cast<uint32_t>(height);
    if (bytes > SIZE_MAX / 2) return nullptr;
    HGLOBAL block = platform::GlobalAlloc(GMEM_MOVEABLE, static_cast<size_t>(bytes));
    auto* room = block != nullptr ? static_cast<uint8_t*>(platform::GlobalLock(block)) : nullptr;
    bool done = false;
    if (room != nullptr) {
        platform::BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 24;
        std::memcpy(room, &info.bmiHeader, sizeof(BITMAPINFOHEADER));
        done = platform::GetDIBits(device, picture, 0, static_cast<uint32_t>(height),
                                   room + sizeof(BITMAPINFOHEADER), &info, DIB_RGB_COLORS) == height;
        platform::GlobalUnlock(block);
    }
    if (done || block == nullptr) return block;
    platform::GlobalFree(block);
    return nullptr;
}

} // namespace

ReturnCode Z_CALL Z_ScreenCaptureBitmap(HDC deviceContext, BitmapHandle* bitmap, const RECT* rectangle) {
    if (bitmap == nullptr) return code::InvalidArgument;
    *bitmap = {};
    const Device device(deviceContext);
    if (device.context() == nullptr) return code::OutOfMemory;
    RECT part;
    if (!Bounds(device, &part)) return code::InvalidArgument;
    if (rectangle != nullptr) part = *rectangle;
    const int64_t width = int64_t{part.right} - part.left, height = int64_t{part.bottom} - part.top;
    if (width < 1 || height < 1 || width > MostSide || height > MostSide) return code::InvalidDimensions;
    HBITMAP picture = Photograph(device.context(), part);
    if (picture == nullptr) return code::OutOfMemory;
    HGLOBAL block =
        Develop(device.context(), picture, static_cast<int32_t>(width), static_cast<int32_t>(height));
    platform::DeleteObject(picture);
    if (block == nullptr) return code::OutOfMemory;
    const ReturnCode status = Z_ChangeFromDIB(bitmap, block);
    if (status != code::Success) platform::GlobalFree(block);
    return status;
}
