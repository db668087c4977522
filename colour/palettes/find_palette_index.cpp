// The nearest entry of a palette and the match table that is filled from it.
#include "zkr13n/palettes.h"

#include "colour/kernels/palette_match.h"
#include "kernels/family.h"
#include "zkr13n/allocation.h"

#include "core/return_codes.h"

namespace zkr {

namespace {

// The match table knows five bits of a channel, and stands for them by the lowest colour that has them.
constexpr uint32_t MatchTableCells = 32768;
constexpr int32_t ChannelStep = 8;

void FillCube(uint32_t* table, const RGBQUAD* palette, int32_t entries, int32_t red, int32_t green,
              int32_t blue) {
    using namespace kernels;
    uint8_t winners[CubeColours];
    Chosen<MatchKernels>().FindForCube(
        palette, entries, {red * ChannelStep, green * ChannelStep, blue * ChannelStep, ChannelStep}, winners);
    const uint8_t* winner = winners;
    for (int32_t r = red; r < red + CubeSide; ++r) {
        for (int32_t g = green; g < green + CubeSide; ++g) {
            for (int32_t b = blue; b < blue + CubeSide; ++b)
                table[r << 10 | g << 5 | b] = *winner++ + 1u;
        }
    }
}

void FillByCubes(uint32_t* table, const RGBQUAD* palette, int32_t entries) {
    for (int32_t red = 0; red < 32; red += kernels::CubeSide) {
        for (int32_t green = 0; green < 32; green += kernels::CubeSide) {
            for (int32_t blue = 0; blue < 32; blue += kernels::CubeSide) {
                FillCube(table, palette, entries, red, green, blue);
            }
        }
    }
}

void FillCellByCell(uint32_t* table, const RGBQUAD* palette, int32_t entries) {
    for (uint32_t cell = 0; cell < MatchTableCells; ++cell) {
        const auto channel = [&](uint32_t shift) {
            return static_cast<int32_t>(cell >> shift & 31) * ChannelStep;
        };
        const int32_t index = Z_FindPaletteIndex(palette, entries, channel(10), channel(5), channel(0));
        table[cell] = static_cast<uint32_t>(index + 1);
    }
}

} // namespace

} // namespace zkr

using namespace zkr;

int32_t Z_CALL Z_FindPaletteIndex(const RGBQUAD* palette, int32_t entries, int32_t red, int32_t green,
                                  int32_t blue) {
    if (palette == nullptr) return -1;
    return kernels::Chosen<kernels::MatchKernels>().Find(palette, entries, red & 255, green & 255,
                                                         blue & 255);
}

uint32_t* Z_CALL Z_CreateUserMatchTable(const RGBQUAD* palette, int32_t entries) {
    if (palette == nullptr && entries > 0) return nullptr;
    uint32_t* table = static_cast<uint32_t*>(Z_Malloc(MatchTableCells * sizeof(uint32_t)));
    if (table == nullptr) return nullptr;
    if (entries >= 1 && entries <= 256) {
        FillByCubes(table, palette, entries);
    } else {
        FillCellByCell(table, palette, entries);
    }
    return table;
}

ReturnCode Z_CALL Z_FreeUserMatchTable(uint32_t* table) {
    Z_Free(table);
    return code::Success;
}
