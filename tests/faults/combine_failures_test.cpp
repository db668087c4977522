// Combinations and underlays, with each call of the system failing in turn.
#include "faults/fault_driver.h"

#include "zkr13n/combine.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {
namespace {

void AddRegion(BitmapHandle& bitmap, int32_t left) {
    RECT part = {left, 3, left + 9, 30}, hole = {left + 2, 5, left + 4, 9};
    Z_SetBitmapRgnRect(&bitmap, nullptr, &part, Z_RGN_SET);
    Z_SetBitmapRgnRect(&bitmap, nullptr, &hole, Z_RGN_XOR);
}

// The subject, and beside it what it is combined with or underlaid by.
std::function<void(Ground&)> Beside(int32_t type, int32_t bits, int32_t otherView, bool haveRegions) {
    return [=](Ground& g) {
        Make(g.Subject, type, bits, bits == 12 ? 2 : 1, 0, 19, 37);
        Make(g.Made, type, bits, bits == 12 ? 2 : 1, otherView, 37, 31);
        if (haveRegions) AddRegion(g.Subject, 4), AddRegion(g.Made, 5);
    };
}

TEST(CombineFailures, InPlace) {
    const auto combine = [](uint32_t flags) {
        return [flags](Ground& g) { return Z_CombineBitmap(&g.Subject, 1, 2, 17, 30, &g.Made, 2, 1, flags); };
    };
    const auto underlay = [](uint32_t flags) {
        return [flags](Ground& g) { return Z_UnderlayBitmap(&g.Subject, &g.Made, flags); };
    };
    constexpr int32_t inMemory = MemoryConventional, onDisk = MemoryDisk, inRuns = MemoryCompressed;
    RunAll({
        {"memory: add", OfMemory, Beside(inMemory, 24, 0, false), combine(0x300)},
        {"memory: copy with regions", OfMemory, Beside(inMemory, 5, 2, true), combine(0x220)},
        {"memory: turned, with regions", OfMemory, Beside(inMemory, 12, 5, true), combine(0x600)},
        {"disk: minimum", OfFiles, Beside(onDisk, 4, 2, true), combine(0xA00), Kept::Nothing},
        {"disk: fill", OfFiles, Beside(onDisk, 24, 2, false), combine(0x3000), Kept::Nothing},
        {"runs: exclusive or", OfMemory, Beside(inRuns, 1, 4, true), combine(0x200), Kept::Nothing},
        {"memory: underlay", OfMemory, Beside(inMemory, 24, 5, false), underlay(UNDERLAY_TILE)},
        // A copy whose palette fails is not gray either.
        {"memory: underlay of indices",
         {Memory, code::InvalidBitmap},
         Beside(inMemory, 4, 0, true),
         underlay(UNDERLAY_STRETCH)},
        {"disk: underlay", OfFiles, Beside(onDisk, 32, 0, true), underlay(UNDERLAY_STRETCH), Kept::Nothing},
    });
}

} // namespace
} // namespace zkr::test
