// Combinations and underlays, with each call of the system failing in turn.
#include "faults/fault_driver.h"

#include "zkr13n/combine.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {
namespace {

constexpr ReturnCode Memory = code::OutOfMemory, Seek = code::SeekFailed, Read = code::ReadFailed,
                     Write = code::WriteFailed;

void AddRegion(BitmapHandle& bitmap, int32_t left) {
    RECT part = {left, 3, left + 9, 30}, hole = {left + 2, 5, left + 4, 9};
    Z_SetBitmapRgnRect(&bitmap, nullptr, &part, Z_RGN_SET);
    Z_SetBitmapRgnRect(&bitmap, nullptr, &hole, Z_RGN_XOR);
}

// The subject, and beside it what it is combined with or underlaid by.
std::function<void(Ground&)> With(int32_t type, int32_t bits, int32_t otherView, bool haveRegions) {
    return [=](Ground& g) {
        const int32_t order = bits == 12 ? 2 : 1;
        ASSERT_EQ(Z_CreateBitmap(&g.Subject, type, 19, 37, bits, order, nullptr, 0, nullptr, 0), 1);
        ASSERT_EQ(Z_CreateBitmap(&g.Made, type, 37, 31, bits, order, nullptr, otherView, nullptr, 0), 1);
        Fill(g.Subject, 3), Fill(g.Made, 4);
        if (haveRegions) AddRegion(g.Subject, 4), AddRegion(g.Made, 5);
    };
}

TEST(CombineFailures, InPlace) {
    std::vector<Scenario> scenarios;
    const auto add = [&](const std::string& what, std::vector<ReturnCode> failures, auto prepare, auto call,
                         Kept kept) {
        scenarios.push_back({what, failures, prepare, call, kept});
    };
    const auto combine = [](uint32_t flags) {
        return [flags](Ground& g) { return Z_CombineBitmap(&g.Subject, 1, 2, 17, 30, &g.Made, 2, 1, flags); };
    };
    const auto underlay = [](uint32_t flags) {
        return [flags](Ground& g) { return Z_UnderlayBitmap(&g.Subject, &g.Made, flags); };
    };
    const std::vector<ReturnCode> files = {Memory, Seek, Read, Write};
    add("memory: add", {Memory}, With(MemoryConventional, 24, 0, false), combine(0x300), Kept::Everything);
    add("memory: copy with regions", {Memory}, With(MemoryConventional, 5, 2, true), combine(0x220),
        Kept::Everything);
    add("memory: turned, with regions", {Memory}, With(MemoryConventional, 12, 5, true), combine(0x600),
        Kept::Everything);
    add("disk: minimum", files, With(MemoryDisk, 4, 2, true), combine(0xA00), Kept::Nothing);
    add("disk: fill", files, With(MemoryDisk, 24, 2, false), combine(0x3000), Kept::Nothing);
    add("runs: exclusive or", {Memory}, With(MemoryCompressed, 1, 4, true), combine(0x200), Kept::Nothing);
    add("memory: underlay", {Memory}, With(MemoryConventional, 24, 5, false), underlay(UNDERLAY_TILE),
        Kept::Everything);
    // A copy whose palette fails is not gray either.
    add("memory: underlay of indices", {Memory, code::InvalidBitmap}, With(MemoryConventional, 4, 0, true),
        underlay(UNDERLAY_STRETCH), Kept::Everything);
    add("disk: underlay", files, With(MemoryDisk, 32, 0, true), underlay(UNDERLAY_STRETCH), Kept::Nothing);
    RunAll(scenarios);
}

} // namespace
} // namespace zkr::test
