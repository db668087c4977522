// Device-independent bitmaps as blocks of bytes, and what each of their pixels is, worked out one by one.
#pragma once

#include "core/test_bitmaps.h"
#include "support/seeded.h"
#include "zkr13n/dib.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace zkr::test {

inline uint32_t CodeOf(std::string_view name) {
    uint32_t code = 0;
    std::memcpy(&code, name.data(), 4);
    return code;
}

// A packed block in parts.
struct DibBytes {
    Bytes Head; // header, masks, colours
    Bytes Bits;

    template <typename T> void Put(size_t offset, const T& value) {
        std::memcpy(Head.data() + offset, &value, sizeof value);
    }
    HGLOBAL Block(ptrdiff_t missing = 0) const {
        Bytes all = Head;
        all.insert(all.end(), Bits.begin(), Bits.end());
        all.resize(all.size() - static_cast<size_t>(missing));
        HGLOBAL block = platform::GlobalAlloc(GMEM_MOVEABLE, all.size());
        std::memcpy(platform::GlobalLock(block), all.data(), all.size());
        platform::GlobalUnlock(block);
        return block;
    }
};

struct DibForm {
    int HeaderBytes;
    int Width, Height;
    int Bits;
    uint32_t Compression = 0;
    uint32_t Masks[3] = {};
    uint32_t ColoursTold = 0;

    bool HasMasks() const { return Compression == 3; }
    int ColoursStored() const {
        if (ColoursTold != 0) return static_cast<int>(ColoursTold);
        return Bits <= 8 ? 1 << Bits : 0;
    }
    size_t RowBytes() const { return static_cast<size_t>((Width * Bits + 31) / 32) * 4; }

    DibBytes Make(size_t bitsBytes, Seeded& seeded) const {
        DibBytes dib;
        const int entry = HeaderBytes == 12 ? 3 : 4;
        const int masks = HasMasks() && HeaderBytes == 40 ? 12 : 0;
        dib.Head.resize(static_cast<size_t>(HeaderBytes + masks + entry * ColoursStored()));
        for (uint8_t& byte : dib.Head)
            byte = seeded.Byte();
        dib.Put(0, HeaderBytes);
        if (HeaderBytes == 12) {
            dib.Put(4, static_cast<uint16_t>(Width));
            dib.Put(6, static_cast<uint16_t>(Height));
            dib.Put(10, static_cast<uint16_t>(Bits));
        } else {
            dib.Put(4, Width);
            dib.Put(8, Height);
            dib.Put(14, static_cast<uint16_t>(Bits));
            dib.Put(16, Compression);
            dib.Put(20, 0);
            dib.Put(24, 3780);
            dib.Put(28, 3937);
            dib.Put(32, ColoursTold);
            if (HasMasks()) dib.Put(40, Masks);
        }
        dib.Bits.resize(bitsBytes);
        for (uint8_t& byte : dib.Bits)
            byte = seeded.Byte();
        return dib;
    }
};

inline uint8_t Cut(int value) {
    return static_cast<uint8_t>(std::min(std::max(value, 0), 255));
}

inline uint32_t Rgb(int red, int green, int blue) {
    return static_cast<uint32_t>(Cut(blue) | Cut(green) << 8 | Cut(red) << 16);
}

inline uint32_t PlanarColour(int y, int u, int v) {
    return Rgb(((y - 16) * 1164 + (v - 128) * 1596) / 1000,
               ((y - 16) * 1164 - (u - 128) * 391 - (v - 128) * 813) / 1000,
               ((y - 16) * 1164 + (u - 128) * 2018) / 1000);
}

inline uint32_t PackedColour(int y, int u, int v) {
    u -= 128, v -= 128;
    return Rgb(y + (v * 1402 + 500) / 1000, y + (-(u * 344) - v * 714 + 500) / 1000,
               y + (u * 1772 + 500) / 1000);
}

// A pixel of planes: `step` pixels to a sample each way.
inline uint32_t PlanarPixel(const DibForm& form, const Bytes& bits, int step, bool vFirst, int x, int row) {
    const int height = std::abs(form.Height);
    const int chromaRow = form.Width / step, chromaRows = (height + step - 1) / step;
    const int first = form.Width * height + row / step * chromaRow + x / step;
    const int second = first + chromaRow * chromaRows;
    const auto at = [&](int place) { return int{bits[static_cast<size_t>(place)]}; };
    const int u = vFirst ? second : first, v = vFirst ? first : second;
    return PlanarColour(at(row * form.Width + x), at(u), at(v));
}

// A pixel of groups: the letters tell what the bytes of a group are.
inline uint32_t PackedPixel(const DibForm& form, const Bytes& bits, std::string_view letters, int x,
                            int row) {
    const int group = static_cast<int>(letters.size());
    const int pixels = static_cast<int>(std::count(letters.begin(), letters.end(), 'Y'));
    const int chromas = static_cast<int>(std::count(letters.begin(), letters.end(), 'U'));
    const auto find = [&](char letter, int nth) {
        for (int i = 0; i < group; ++i) {
            if (letters[static_cast<size_t>(i)] == letter && nth-- == 0)
                return int{bits[static_cast<size_t>((row * form.Width + x) / pixels * group + i)]};
        }
        return -1;
    };
    const int inGroup = x % pixels, chroma = inGroup * chromas / pixels;
    return PackedColour(find('Y', inGroup), find('U', chroma), find('V', chroma));
}

inline uint32_t MaskedPixel(uint32_t pixel, const uint32_t (&masks)[3], int bits) {
    const uint64_t full = bits == 16 ? 31 : 255;
    uint64_t channels[3];
    for (int i = 0; i < 3; ++i) {
        int low = 0, high = -1;
        for (int bit = 31; bit >= 0; --bit)
            if ((masks[i] >> bit & 1) != 0) low = bit;
        for (int bit = 0; bit < 32; ++bit)
            if ((masks[i] >> bit & 1) != 0) high = bit;
        const uint64_t maximum = high < low ? 0 : (uint64_t{1} << (high - low + 1)) - 1;
        const uint64_t value = pixel >> low & maximum;
        channels[i] = maximum < full ? value * full : value * full / maximum;
    }
    const auto [red, green, blue] = channels;
    if (bits == 16) return static_cast<uint16_t>((red << 10) + (green << 5) + blue);
    return static_cast<uint32_t>((red & 255) << 16 | (green & 255) << 8 | (blue & 255));
}

// Runs, decoded by the book onto a canvas that pixels outside fall off.
inline std::vector<uint8_t> RunPixels(const Bytes& data, int bits, int width, int height) {
    std::vector<uint8_t> canvas(static_cast<size_t>(width * height));
    int x = 0, row = 0;
    const auto put = [&](int value) {
        if (x < width && row < height)
            canvas[static_cast<size_t>(row * width + x)] = static_cast<uint8_t>(value);
        ++x;
    };
    const auto part = [&](int byte, int i) { return bits == 8 ? byte : i % 2 == 0 ? byte >> 4 : byte & 15; };
    size_t at = 0;
    while (at + 1 < data.size()) {
        const int count = data[at], value = data[at + 1];
        at += 2;
        for (int i = 0; i < count; ++i)
            put(part(value, i));
        if (count != 0) continue;
        if (value == 1) break;
        if (value == 0) {
            x = 0, ++row;
        } else if (value == 2) {
            if (at + 1 >= data.size()) break;
            x += data[at], row += data[at + 1];
            at += 2;
        } else {
            for (int i = 0; i < value; ++i) {
                const size_t byte = at + static_cast<size_t>(bits == 8 ? i : i / 2);
                if (byte < data.size()) put(part(data[byte], i));
            }
            const size_t bytes = static_cast<size_t>(bits == 8 ? value : (value + 1) / 2);
            at += bytes + bytes % 2;
        }
    }
    return canvas;
}

} // namespace zkr::test
