// Palette search, against the plain scan that it must equal.
#include "pictures.h"
#include "work.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace bench {

namespace {

uint32_t squares[256];

int ColourClass(int r, int g, int b) {
    const int side = g > std::max(r, b) ? 1 : g < std::min(r, b) ? 2 : 0;
    return side + (r < b ? 4 : 0);
}

// One entry after the other with squares from a table; black and white are left to the distance.
int32_t PlainScan(const RGBQUAD* palette, int32_t entries, int r, int g, int b) {
    const int wanted = ColourClass(r, g, b);
    int32_t best = -1;
    uint32_t least = 0xFFFFFFFF;
    for (int32_t i = 0; i < entries && least != 0; ++i) {
        const RGBQUAD& entry = palette[i];
        const uint32_t distance = squares[std::abs(entry.rgbRed - r)] +
                                  squares[std::abs(entry.rgbGreen - g)] +
                                  squares[std::abs(entry.rgbBlue - b)];
        if (distance < least ||
            (distance == least && ColourClass(entry.rgbRed, entry.rgbGreen, entry.rgbBlue) == wanted)) {
            least = distance;
            best = i;
        }
    }
    return best;
}

constexpr int32_t SampledRows = 24; // the scan is slow: it does a part of the picture, spread over its height

void ScanSample() {
    static std::vector<uint8_t> indices(PhotographWidth);
    const RGBQUAD* palette = Palette256().data();
    for (int32_t y = 0; y < PhotographHeight; y += PhotographHeight / SampledRows) {
        const uint8_t* pixel = &Photograph()[static_cast<size_t>(y) * PhotographWidth * 3];
        for (size_t x = 0; x < PhotographWidth; ++x, pixel += 3)
            indices[x] = static_cast<uint8_t>(PlainScan(palette, 256, pixel[2], pixel[1], pixel[0]));
        Touch(indices.data());
    }
}

void ScanMatchTable() {
    static std::vector<uint32_t> table(32768);
    for (int i = 0; i < 32768; ++i)
        table[static_cast<size_t>(i)] = static_cast<uint32_t>(
            PlainScan(Palette256().data(), 256, (i >> 10 & 31) * 8, (i >> 5 & 31) * 8, (i & 31) * 8) + 1);
    Touch(table.data());
}

const Adds adds([] {
    for (uint32_t i = 0; i < 256; ++i)
        squares[i] = i * i;
    AddPeer(From24ToPalette,
            {"plain scan", 20, ScanSample, static_cast<double>(SampledRows) / PhotographHeight});
    AddWork(MatchTable, {"match table, 256 colours", 32768, 131072, [] {
                             uint32_t* table = Z_CreateUserMatchTable(Palette256().data(), 256);
                             Touch(table);
                             Z_FreeUserMatchTable(table);
                         }});
    AddPeer(MatchTable, {"32768 plain scans", 10, ScanMatchTable});
});

} // namespace

} // namespace bench
