// A bitmap of any depth with its memory context, whose pixels a test sets and reads one by one.
#pragma once

#include "platform/graphics.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

namespace zkr {

// A header with room for its colours.
struct DibInfo {
    BITMAPINFOHEADER header{};
    RGBQUAD colours[256]{};

    DibInfo(int width, int height, int bits) {
        header.biSize = sizeof header;
        header.biWidth = width;
        header.biHeight = height;
        header.biPlanes = 1;
        header.biBitCount = static_cast<uint16_t>(bits);
        // Colours far apart from one another, so that the nearest one is never in doubt.
        const int count = bits > 8 ? 0 : 1 << bits;
        for (int i = 0; i < count; ++i) {
            const int spread = count == 2 ? i * 255 : count == 16 ? (i * 37 & 15) * 17 : 0;
            RGBQUAD& colour = colours[i];
            if (count < 256)
                colour = {Byte(spread), Byte(255 - (i * 85 & 255)), Byte(count == 2 ? spread : i * 17), 0};
            else
                colour = {Byte((i & 3) * 85), Byte((i >> 2 & 7) * 36), Byte((i >> 5) * 36), 0};
        }
        if (count == 2) colours[0] = {0, 0, 0, 0}, colours[1] = {255, 255, 255, 0};
    }
    static uint8_t Byte(int value) { return static_cast<uint8_t>(value); }
    platform::BITMAPINFO* Get() { return reinterpret_cast<platform::BITMAPINFO*>(&header); }
    int Width() const { return header.biWidth; }
    int Height() const { return std::abs(header.biHeight); }
    int Bits() const { return header.biBitCount; }
    size_t RowBytes() const { return static_cast<size_t>((Width() * Bits() + 31) / 32 * 4); }
    size_t Bytes() const { return RowBytes() * static_cast<size_t>(Height()); }

    // Where row y of the picture, counted from its top, lies in a block.
    size_t RowOffset(int y) const {
        return RowBytes() * static_cast<size_t>(header.biHeight < 0 ? y : Height() - 1 - y);
    }
    uint32_t Get(const std::vector<uint8_t>& block, int x, int y) const { return Get(block.data(), x, y); }
    uint32_t Get(const uint8_t* block, int x, int y) const {
        const uint8_t* row = block + RowOffset(y);
        if (Bits() < 8) return row[x * Bits() / 8] >> (8 - Bits() - x * Bits() % 8) & ((1 << Bits()) - 1);
        uint32_t value = 0;
        std::memcpy(&value, row + x * Bits() / 8, static_cast<size_t>(std::min(Bits(), 24)) / 8);
        return Bits() == 16 ? value & 0x7FFF : value;
    }
    // 0xRRGGBB of a pixel's value.
    uint32_t Colour(uint32_t value) const {
        const auto widen = [](uint32_t c) { return (c << 3 | c >> 2) & 255; };
        if (Bits() > 16) return value;
        if (Bits() == 16)
            return widen(value >> 10 & 31) << 16 | widen(value >> 5 & 31) << 8 | widen(value & 31);
        const RGBQUAD& colour = colours[value & 255];
        return static_cast<uint32_t>(colour.rgbRed << 16 | colour.rgbGreen << 8 | colour.rgbBlue);
    }
    // The value that shows a colour best.
    uint32_t Nearest(uint32_t colour) const {
        if (Bits() > 16) return colour;
        if (Bits() == 16) return (colour >> 9 & 0x7C00) | (colour >> 6 & 0x3E0) | (colour >> 3 & 31);
        uint32_t best = 0;
        int bestDistance = 1 << 30;
        for (uint32_t i = 0; i < 1u << Bits(); ++i) {
            int distance = 0;
            for (int shift = 0; shift < 24; shift += 8) {
                const int difference =
                    static_cast<int>(colour >> shift & 255) - static_cast<int>(Colour(i) >> shift & 255);
                distance += difference * difference;
            }
            if (distance < bestDistance) {
                best = i;
                bestDistance = distance;
            }
        }
        return best;
    }
    std::vector<uint8_t> Noise(unsigned seed) const {
        std::mt19937 random(seed);
        std::vector<uint8_t> block(Bytes());
        for (uint8_t& byte : block)
            byte = static_cast<uint8_t>(random());
        return block;
    }
};

inline const int AllDepths[] = {1, 4, 8, 16, 24, 32};

class Canvas {
  public:
    Canvas(int width, int height, int bits, unsigned seed) : Canvas(DibInfo(width, height, bits), seed) {}
    Canvas(const DibInfo& kind, unsigned seed) : info(kind) {
        context = platform::CreateCompatibleDC(nullptr);
        bitmap = platform::CreateDIBSection(nullptr, info.Get(), DIB_RGB_COLORS, &memory_, nullptr, 0);
        EXPECT_NE(bitmap, nullptr);
        const std::vector<uint8_t> noise = info.Noise(seed);
        std::memcpy(memory_, noise.data(), noise.size());
        before_ = platform::SelectObject(context, bitmap);
    }
    ~Canvas() {
        platform::SelectObject(context, before_);
        EXPECT_TRUE(platform::DeleteObject(bitmap));
        EXPECT_TRUE(platform::DeleteDC(context));
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    uint8_t* Bits() { return static_cast<uint8_t*>(memory_); }
    uint32_t Get(int x, int y) { return info.Get(Bits(), x, y); }
    // All pixels, for comparison with what a later call leaves.
    std::vector<uint32_t> Pixels() {
        platform::GdiFlush();
        std::vector<uint32_t> pixels;
        for (int y = 0; y < info.Height(); ++y) {
            for (int x = 0; x < info.Width(); ++x)
                pixels.push_back(Get(x, y));
        }
        return pixels;
    }
    size_t At(int x, int y) const { return static_cast<size_t>(y * info.Width() + x); }

    DibInfo info;
    HDC context = nullptr;
    HBITMAP bitmap = nullptr;

  private:
    void* memory_ = nullptr;
    platform::HGDIOBJ before_ = nullptr;
};

} // namespace zkr
