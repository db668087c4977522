// Palettes and colours from outside, against a plain scan: the nearest entry, rows of colours, maps between
// palettes and match tables.
#include "input.h"

#include <algorithm>

using namespace fuzz;

namespace {

int32_t Class(int32_t red, int32_t green, int32_t blue) {
    const int32_t side = green > std::max(red, blue) ? 1 : green < std::min(red, blue) ? 2 : 0;
    return side + (red < blue ? 4 : 0);
}

bool Is(const RGBQUAD& entry, int32_t level) {
    return entry.rgbRed == level && entry.rgbGreen == level && entry.rgbBlue == level;
}

int32_t Nearest(const RGBQUAD* palette, int32_t entries, int32_t red, int32_t green, int32_t blue) {
    if (entries < 1) return -1;
    const int32_t last = entries - 1;
    if (red == 0 && green == 0 && blue == 0) {
        if (Is(palette[0], 0)) return 0;
        if (Is(palette[last], 0)) return last;
    }
    if (red == 255 && green == 255 && blue == 255) {
        if (Is(palette[last], 255)) return last;
        if (Is(palette[0], 255)) return 0;
    }
    int32_t best = -1, bestDistance = INT32_MAX;
    for (int32_t i = 0; i < entries && bestDistance > 0; ++i) {
        const RGBQUAD& entry = palette[i];
        const int32_t r = entry.rgbRed - red, g = entry.rgbGreen - green, b = entry.rgbBlue - blue;
        const int32_t distance = r * r + g * g + b * b;
        const bool sameClass = Class(entry.rgbRed, entry.rgbGreen, entry.rgbBlue) == Class(red, green, blue);
        if (distance < bestDistance || (distance == bestDistance && sameClass))
            best = i, bestDistance = distance;
    }
    return best;
}

// Few levels make ties likely.
Exact Palette(Input& input, int32_t entries) {
    Exact palette(static_cast<size_t>(entries) * 4, input);
    const uint8_t kept = input.Flip() ? 0xFF : 0xE0;
    for (size_t i = 0; i < palette.Count; ++i)
        palette.Get()[i] &= kept;
    if (entries > 0 && input.Flip()) std::memset(palette.Get() + palette.Count - 4, 255, 4);
    return palette;
}

void Search(Input& input) {
    const int32_t entries = input.Below(301);
    const Exact palette = Palette(input, entries);
    for (int i = 0; i < 30; ++i) {
        const int32_t red = input.Byte() & 0xF0, green = input.Byte(), blue = input.Byte() & 0xF8;
        FUZZ_EXPECT(Z_FindPaletteIndex(palette.Colours(), entries, red, green, blue) ==
                    Nearest(palette.Colours(), entries, red, green, blue));
    }
}

void MatchTable(Input& input) {
    const int32_t entries = 1 + input.Below(256);
    const Exact palette = Palette(input, entries);
    uint32_t* table = Z_CreateUserMatchTable(palette.Colours(), entries);
    for (int32_t cell = input.Below(97); cell < 32768; cell += 97) {
        const int32_t found =
            Nearest(palette.Colours(), entries, (cell >> 10) * 8, (cell >> 5 & 31) * 8, (cell & 31) * 8);
        FUZZ_EXPECT(table[cell] == static_cast<uint32_t>(found) + 1);
    }
    Z_FreeUserMatchTable(table);
}

// A byte a pixel on the target's side.
void Row(Input& input) {
    constexpr int32_t entries = 256;
    const Exact source = Palette(input, entries), target = Palette(input, entries);
    const bool indexed = input.Flip();
    const size_t sourceBytes = indexed ? 1 : 3;
    const auto width = static_cast<size_t>(1 + input.Below(3000));
    const Exact before(width * sourceBytes, input);
    const Exact row(before);
    FUZZ_EXPECT(Z_ConvertBuffer(row.Get(), static_cast<int32_t>(width), indexed ? 8 : 24, 8, Z_ORDER_BGR,
                                Z_ORDER_RGB, source.Colours(), target.Colours()) == 1);
    if (indexed && std::memcmp(source.Get(), target.Get(), source.Count) == 0) {
        FUZZ_EXPECT(std::memcmp(before.Get(), row.Get(), width) == 0);
        return;
    }
    for (size_t i = 0; i < width; ++i) {
        const uint8_t* colour = indexed ? source.Get() + 4 * before.Get()[i] : before.Get() + 3 * i;
        FUZZ_EXPECT(row.Get()[i] == Nearest(target.Colours(), entries, colour[2], colour[1], colour[0]));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t choice = input.Byte();
    if (choice < 100)
        Search(input);
    else if (choice < 140)
        MatchTable(input);
    else
        Row(input);
    return 0;
}
