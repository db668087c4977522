// Makes the pictures once and keeps them until the program ends.
#include "pictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <tuple>

namespace bench {

namespace {

uint32_t Hash(uint32_t x, uint32_t y, uint32_t salt) {
    uint32_t h = x * 0x9E3779B1u ^ y * 0x85EBCA77u ^ salt * 0xC2B2AE3Du;
    h ^= h >> 15;
    h *= 0x2C1B3C6Du;
    h ^= h >> 12;
    h *= 0x297A2D39u;
    return h ^ (h >> 15);
}

// Smooth noise in [0, 1): random values on a lattice, blended between (Perlin's value noise, 1985).
float LatticeNoise(float x, float y, uint32_t salt) {
    const float fx = std::floor(x);
    const float fy = std::floor(y);
    const auto ix = static_cast<uint32_t>(static_cast<int32_t>(fx));
    const auto iy = static_cast<uint32_t>(static_cast<int32_t>(fy));
    const auto value = [&](uint32_t dx, uint32_t dy) {
        return static_cast<float>(Hash(ix + dx, iy + dy, salt) >> 8) * 0x1p-24f;
    };
    const float tx = (x - fx) * (x - fx) * (3 - 2 * (x - fx));
    const float ty = (y - fy) * (y - fy) * (3 - 2 * (y - fy));
    const float top = value(0, 0) + (value(1, 0) - value(0, 0)) * tx;
    const float bottom = value(0, 1) + (value(1, 1) - value(0, 1)) * tx;
    return top + (bottom - top) * ty;
}

// Light and colour over several scales, and a little grain.
void MakePixel(int32_t x, int32_t y, uint8_t* pixel) {
    const auto fx = static_cast<float>(x);
    const auto fy = static_cast<float>(y);
    float light = 0;
    float amplitude = 0.5f;
    for (float scale = 1.0f / 900; scale < 0.1f; scale *= 3.1f, amplitude *= 0.5f)
        light += amplitude * LatticeNoise(fx * scale, fy * scale, 1);
    for (uint32_t channel = 0; channel < 3; ++channel) {
        const float tint = 0.55f + 0.6f * LatticeNoise(fx / 500, fy / 500, 10 + channel);
        const float grain =
            static_cast<float>(Hash(static_cast<uint32_t>(x), static_cast<uint32_t>(y), 20 + channel) & 7) -
            3.5f;
        const float level = 255 * light * tint + grain;
        pixel[channel] = static_cast<uint8_t>(level < 0 ? 0 : level > 255 ? 255 : level);
    }
}

// Text of ten points: letters of strokes that a page at 1200 dots an inch would have.
constexpr int32_t Margin = 1200;
constexpr int32_t LineHeight = 200;
constexpr int32_t LetterWidth = 84;
constexpr float Stem = 14;

// Whether a letter has ink: two stems, a bar high or sloping, a bowl or else a stroke that leans.
bool IsInk(uint32_t letter, float x, float y) {
    const auto near = [](float distance) { return std::fabs(distance) < Stem / 2; };
    const bool bar = x > 8 && x < 68 && (letter & 8 ? near(y - 57) : near(y - 90 + x / 6));
    const bool bowl = near(std::hypot(x - 38, (y - 85) * 0.9f) - 30);
    return (letter & 1 && near(x - 15) && y > 20 && y < 120) ||
           (letter & 2 && near(x - 60) && y > 50 && y < 150) || (letter & 4 && bar) ||
           (letter & 16 ? bowl : near(x - 38 + (y - 85) / 4) && y > 50 && y < 120);
}

using Letter = std::array<std::array<bool, LetterWidth>, LineHeight>;

const std::vector<Letter>& Alphabet() {
    static const std::vector<Letter> letters = [] {
        std::vector<Letter> made(32);
        for (uint32_t letter = 0; letter < 32; ++letter)
            for (size_t y = 0; y < LineHeight; ++y)
                for (size_t x = 0; x < LetterWidth; ++x)
                    made[letter][y][x] = IsInk(letter, static_cast<float>(x), static_cast<float>(y));
        return made;
    }();
    return letters;
}

void DrawLetter(BitmapHandle* page, int32_t left, int32_t top, const Letter& letter) {
    for (size_t y = 0; y < LineHeight; ++y) {
        uint8_t* row = Data(page) + (static_cast<size_t>(top) + y) * page->BytesPerLine;
        for (size_t x = 0, place = static_cast<size_t>(left); x < LetterWidth; ++x, ++place)
            if (letter[y][x]) row[place / 8] = static_cast<uint8_t>(row[place / 8] | 0x80 >> place % 8);
    }
}

void Demand(bool good, const char* what) {
    if (good) return;
    std::fprintf(stderr, "bench: %s failed\n", what);
    std::exit(1);
}

} // namespace

const std::vector<uint8_t>& Photograph() {
    static const std::vector<uint8_t> pixels = [] {
        std::vector<uint8_t> made(PhotographPixels * 3);
        for (int32_t y = 0; y < PhotographHeight; ++y)
            for (int32_t x = 0; x < PhotographWidth; ++x)
                MakePixel(x, y,
                          &made[(static_cast<size_t>(y) * PhotographWidth + static_cast<size_t>(x)) * 3]);
        return made;
    }();
    return pixels;
}

double DecibelsOf(const uint8_t* indices, size_t rowBytes, const RGBQUAD* palette) {
    const uint8_t* pixel = Photograph().data();
    double squares = 0;
    for (int32_t y = 0; y < PhotographHeight; ++y, indices += rowBytes)
        for (int32_t x = 0; x < PhotographWidth; ++x, pixel += 3) {
            const RGBQUAD& entry = palette[indices[x]];
            const int32_t differences[] = {pixel[0] - entry.rgbBlue, pixel[1] - entry.rgbGreen,
                                           pixel[2] - entry.rgbRed};
            for (const int32_t difference : differences)
                squares += difference * difference;
        }
    return 10 * std::log10(255.0 * 255.0 * 3 * static_cast<double>(PhotographPixels) / squares);
}

const std::vector<RGBQUAD>& Palette256() {
    static const std::vector<RGBQUAD> palette = [] {
        std::vector<RGBQUAD> made(256);
        for (uint32_t i = 0; i < 256; ++i) {
            const uint8_t* pixel = &Photograph()[(Hash(i, 0, 3) % PhotographPixels) * 3];
            made[i] = {pixel[0], pixel[1], pixel[2], 0};
        }
        return made;
    }();
    return palette;
}

BitmapHandle* EmptyBitmap(int32_t width, int32_t height, int32_t bitsPerPixel, int32_t order) {
    static std::map<std::tuple<int32_t, int32_t, int32_t, int32_t>, std::unique_ptr<BitmapHandle>> made;
    std::unique_ptr<BitmapHandle>& bitmap = made[{width, height, bitsPerPixel, order}];
    if (!bitmap) {
        bitmap = std::make_unique<BitmapHandle>();
        // Above the tile size a bitmap of this much is still conventional, for memory is not short.
        Demand(Z_CreateBitmap(bitmap.get(), MemoryConventional, width, height, bitsPerPixel, order, nullptr,
                              2, nullptr, 0) == Z_SUCCESS,
               "making a bitmap");
        for (size_t i = 0; i < bitmap->Size; i += 4096)
            Data(bitmap.get())[i] = 1;
    }
    return bitmap.get();
}

BitmapHandle* PhotographBitmap(int32_t bitsPerPixel, int32_t order) {
    static std::map<std::pair<int32_t, int32_t>, std::unique_ptr<BitmapHandle>> made;
    std::unique_ptr<BitmapHandle>& bitmap = made[{bitsPerPixel, order}];
    if (bitmap) return bitmap.get();
    bitmap = std::make_unique<BitmapHandle>();
    Demand(Z_CreateBitmap(bitmap.get(), MemoryConventional, PhotographWidth, PhotographHeight, bitsPerPixel,
                          order, nullptr, 2, nullptr, 0) == Z_SUCCESS,
           "making a bitmap");
    std::vector<uint8_t> row(Z_CalcConvertSize(PhotographWidth, 24, PhotographWidth, bitsPerPixel));
    for (int32_t y = 0; y < PhotographHeight; ++y) {
        const uint8_t* source = &Photograph()[static_cast<size_t>(y) * PhotographWidth * 3];
        std::copy(source, source + size_t{PhotographWidth} * 3, row.begin());
        const RGBQUAD* palette = bitsPerPixel == 8 ? Palette256().data() : nullptr;
        Demand(Z_ConvertBuffer(row.data(), PhotographWidth, 24, bitsPerPixel, Z_ORDER_BGR, order, nullptr,
                               palette) == Z_SUCCESS,
               "converting a row");
        Z_PutBitmapRow(bitmap.get(), row.data(), y, bitmap->BytesPerLine);
    }
    return bitmap.get();
}

BitmapHandle* PageBitmap() {
    static BitmapHandle* page = nullptr;
    if (page) return page;
    page = EmptyBitmap(PageWidth, PageHeight, 1, Z_ORDER_RGB);
    std::fill_n(Data(page), page->Size, uint8_t{0});
    for (int32_t top = Margin, line = 0; top + LineHeight <= PageHeight - Margin; top += LineHeight, ++line)
        for (int32_t left = Margin, place = 0; left + LetterWidth <= PageWidth - Margin;
             left += LetterWidth, ++place) {
            const uint32_t letter = Hash(static_cast<uint32_t>(place), static_cast<uint32_t>(line), 4);
            if (letter % 6 != 0) DrawLetter(page, left, top, Alphabet()[letter >> 8 & 31]);
        }
    return page;
}

} // namespace bench
