#include "colour/palettes/reference_palettes.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zkr::test {
namespace {

bool IsColour(const RGBQUAD& entry, int level) {
    return entry.rgbRed == level && entry.rgbGreen == level && entry.rgbBlue == level;
}

int ColourClass(int red, int green, int blue) {
    const int group = green > std::max(red, blue) ? 1 : green < std::min(red, blue) ? 2 : 0;
    return group + (red < blue ? 4 : 0);
}

unsigned Square(int difference) {
    return static_cast<unsigned>(difference * difference);
}

// Level i of n levels between 0 and 255, rounded to nearest.
unsigned Level(int i, int n) {
    return static_cast<unsigned>((i * 255 * 2 + n - 1) / (2 * (n - 1)));
}

} // namespace

int ReferenceFindPaletteIndex(const RGBQUAD* palette, int entries, int red, int green, int blue) {
    if (entries == 0) return -1;
    const RGBQUAD& front = palette[0];
    const RGBQUAD& back = palette[entries - 1];
    if (red == 0 && green == 0 && blue == 0) {
        if (IsColour(front, 0)) return 0;
        if (IsColour(back, 0)) return entries - 1;
    }
    if (red == 255 && green == 255 && blue == 255) {
        if (IsColour(back, 255)) return entries - 1;
        if (IsColour(front, 255)) return 0;
    }
    const int wanted = ColourClass(red, green, blue);
    int best = -1;
    unsigned bestDistance = 0xFFFFFFFF;
    for (int i = 0; i < entries && bestDistance != 0; ++i) {
        const RGBQUAD& entry = palette[i];
        const unsigned distance =
            Square(red - entry.rgbRed) + Square(green - entry.rgbGreen) + Square(blue - entry.rgbBlue);
        const bool sameClass = ColourClass(entry.rgbRed, entry.rgbGreen, entry.rgbBlue) == wanted;
        if (distance < bestDistance || (distance == bestDistance && sameClass)) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

std::vector<RGBQUAD> ReferenceFixedPalette(int bits) {
    const auto mixed = [bits](int blueBits, int greenBits, int redBits) {
        std::vector<RGBQUAD> entries;
        for (int i = 0; i < 1 << bits; ++i) {
            const int blue = i & ((1 << blueBits) - 1);
            const int green = (i >> blueBits) & ((1 << greenBits) - 1);
            const int red = i >> (blueBits + greenBits);
            entries.push_back(
                EntryOf(Level(red, 1 << redBits), Level(green, 1 << greenBits), Level(blue, 1 << blueBits)));
        }
        return entries;
    };
    switch (bits) {
    case 1: return {EntryOf(0, 0, 0), EntryOf(255, 255, 255)};
    case 2: return {EntryOf(0, 0, 0), EntryOf(85, 85, 85), EntryOf(170, 170, 170), EntryOf(255, 255, 255)};
    case 3: return mixed(1, 1, 1);
    case 4: {
        std::vector<RGBQUAD> entries;
        for (unsigned i = 0; i < 16; ++i) {
            const unsigned full = i < 8 ? 0x80 : 0xFF;
            entries.push_back(EntryOf(i & 1 ? full : 0, i & 2 ? full : 0, i & 4 ? full : 0));
        }
        entries[8] = EntryOf(0xC0, 0xC0, 0xC0);
        return entries;
    }
    case 5: return mixed(1, 2, 2);
    case 6: return mixed(2, 2, 2);
    case 7: return mixed(2, 3, 2);
    default: return mixed(2, 3, 3);
    }
}

PaletteMap ReferencePaletteMap(const RGBQUAD* source, int sourceEntries, const RGBQUAD* target,
                               int targetEntries) {
    PaletteMap map{};
    const bool prefix = source != nullptr && target != nullptr && targetEntries >= sourceEntries &&
                        std::memcmp(source, target, static_cast<size_t>(sourceEntries) * sizeof *source) == 0;
    for (int i = 0; i < (source == nullptr ? 256 : sourceEntries); ++i) {
        const auto level = static_cast<unsigned>(i);
        const Colour c = source == nullptr ? Colour{level, level, level} : ColourOf(source[i]);
        const int found =
            prefix ? i
            : target == nullptr
                ? static_cast<int>(GrayOf(c))
                : ReferenceFindPaletteIndex(target, targetEntries, static_cast<int>(c.red),
                                            static_cast<int>(c.green), static_cast<int>(c.blue));
        map[level] = static_cast<uint8_t>(found);
    }
    return map;
}

} // namespace zkr::test
