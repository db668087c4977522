// Device-independent bitmaps, platform bitmaps and contexts, with each call of the system failing in turn.
#include "faults/fault_driver.h"

#include "display/dib/dib_model.h"
#include "display/dib/region_exchange.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {
namespace {

// What a thread keeps for good is made before anything fails.
void RunWarm(const std::vector<Scenario>& scenarios) {
    for (const Scenario& scenario : scenarios) {
        Ground ground;
        scenario.Prepare(ground);
        EXPECT_EQ(scenario.Call(ground), code::Success) << scenario.Name;
    }
    RunAll(scenarios);
}

// A block in place of a result.
ReturnCode Taken(HGLOBAL block) {
    if (block == nullptr) return Memory;
    platform::GlobalFree(block);
    return code::Success;
}

TEST(DibFailures, MakingBlocks) {
    const auto convert = [](Ground& g) { return Taken(Z_ConvertToDIB(&g.Subject)); };
    const auto change = [](Ground& g) { return Taken(Z_ChangeToDIB2(&g.Subject, 2)); };
    const auto bare = [](Ground& g) {
        With(MemoryConventional, 5, 0, 0)(g);
        platform::DeleteObject(g.Subject.Palette);
        g.Subject.Palette = nullptr;
    };
    const auto exchange = [](Ground& g) { return Taken(dib::RegionToBlock(g.Subject)); };
    RunWarm({{"as it is", {Memory}, With(MemoryConventional, 24, 1, 2), convert},
             {"in another view", {Memory}, With(MemoryConventional, 8, 0, 5), change},
             {"of another depth and view", {Memory}, With(MemoryConventional, 48, 0, 7), change},
             {"on disk", {Memory}, With(MemoryDisk, 64, 0, 1), convert, Kept::Nothing},
             {"without a palette", {Memory}, bare, convert},
             {"a region", {Memory}, With(MemoryConventional, 24, 1, 4), exchange}});
}

using Take = ReturnCode(Z_CALL*)(BitmapHandle*, HGLOBAL);

// The block is there after each failure.
Scenario Taking(const char* name, Take take, const DibForm& form, size_t bitsBytes, int32_t memoryType,
                std::vector<ReturnCode> failures) {
    const auto prepare = [=](Ground& g) {
        Seeded seeded(1);
        g.Global = form.Make(bitsBytes, seeded).Block();
    };
    const auto call = [=](Ground& g) {
        Z_SetDefaultMemoryType(memoryType);
        const ReturnCode result = take(&g.Made, g.Global);
        Z_SetDefaultMemoryType(MemoryConventional);
        if (result == code::Success && take == Z_ChangeFromDIB) g.Global = nullptr;
        return result;
    };
    return {name, std::move(failures), prepare, call};
}

ReturnCode Z_CALL ConvertBlock(BitmapHandle* bitmap, HGLOBAL block) {
    const auto* header = static_cast<const uint8_t*>(platform::GlobalLock(block));
    const ReturnCode result = Z_ConvertFromDIB(bitmap, header, header + 40 + 4 * 256);
    platform::GlobalUnlock(block);
    return result;
}

TEST(DibFailures, TakingBlocks) {
    const std::vector<ReturnCode> files = {Memory, Seek, Write};
    const DibForm colours = {40, 9, 5, 8}, masks = {40, 9, 5, 16, 3, {1, 2, 4}}, runs = {40, 9, 5, 8, 1};
    const DibForm planes = {40, 16, 6, 12, CodeOf("I420")};
    RunWarm({Taking("adopted", Z_ChangeFromDIB, colours, 60, MemoryConventional, {Memory}),
             Taking("mirrored", Z_MirrorFromDIB, masks, 100, MemoryConventional, {Memory}),
             Taking("converted", ConvertBlock, colours, 60, MemoryDisk, files),
             Taking("runs", Z_ChangeFromDIB, runs, 90, MemoryConventional, {Memory}),
             Taking("planes to disk", Z_ChangeFromDIB, planes, 144, MemoryDisk, files),
             Taking("runs to disk", Z_MirrorFromDIB, runs, 90, MemoryDisk, files)});
}

TEST(DibFailures, OfThePlatform) {
    const auto bitmap = [](Ground& g) {
        g.Handle = platform::CreateBitmap(9, 4, 1, 1, "0123456");
        g.Palette = Z_CreateGrayPalette(4);
    };
    const auto convert = [](Ground& g) {
        Z_FreeBitmap(&g.Made);
        return Z_ConvertFromDDB(nullptr, &g.Made, static_cast<HBITMAP>(g.Handle), g.Palette);
    };
    const auto make = [](Ground& g) {
        HBITMAP made = Z_ConvertToDDB(nullptr, &g.Subject);
        if (made == nullptr) return Memory;
        platform::DeleteObject(made);
        return code::Success;
    };
    const auto draw = [](Ground& g) {
        if (g.Context == nullptr) g.Context = Z_CreateZircDC(&g.Subject);
        if (g.Context == nullptr || Z_DeleteZircDC(g.Context) == 0) return Memory;
        g.Context = nullptr;
        return code::Success;
    };
    const auto palette = [](Ground& g) {
        g.NewPalette = Z_CreatePaintPalette(nullptr, &g.Subject);
        return g.NewPalette == nullptr ? Memory : code::Success;
    };
    RunWarm({{"bitmap of a device", {Memory, Argument}, bitmap, convert},
             {"bitmap for a device", {Memory}, With(MemoryConventional, 8, 0, 5), make},
             {"context on a bitmap", {Memory}, With(MemoryConventional, 24, 1, 2), draw},
             {"context on a file", {Memory}, With(MemoryDisk, 24, 0, 5), draw, Kept::Nothing},
             {"paint palette", {Memory}, With(MemoryConventional, 8, 0, 2), palette}});
}

} // namespace
} // namespace zkr::test
