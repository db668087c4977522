// Flips, turns, rotations, shears, warps and changes of view, with each call of the system failing in turn.
#include "faults/fault_driver.h"

#include "zkr13n/flip.h"
#include "zkr13n/rotate.h"
#include "zkr13n/shear.h"
#include "zkr13n/warp.h"

namespace zkr::test {
namespace {

constexpr ReturnCode Memory = code::OutOfMemory, Seek = code::SeekFailed, Read = code::ReadFailed,
                     Write = code::WriteFailed;

std::function<void(Ground&)> With(int32_t type, int32_t bits) {
    return [=](Ground& g) {
        ASSERT_EQ(Z_CreateBitmap(&g.Subject, type, 19, 37, bits, 1, nullptr, 0, nullptr, 0), 1);
        Fill(g.Subject, 3);
    };
}

// Rows that a file takes back only half are lost; of runs and strips, Size may change with no row doing so.
TEST(TurnFailures, InPlace) {
    std::vector<Scenario> scenarios;
    const auto add = [&](const char* name, int32_t type, int32_t bits, std::vector<ReturnCode> failures,
                         Kept kept) {
        const auto each = [&](const char* what, auto call) {
            scenarios.push_back({std::string(name) + what, failures, With(type, bits), call, kept});
        };
        each(": flip", [](Ground& g) { return Z_FlipBitmap(&g.Subject); });
        each(": reverse", [](Ground& g) { return Z_ReverseBitmap(&g.Subject); });
        each(": half turn", [](Ground& g) { return Z_RotateBitmap(&g.Subject, 18000, 0, 0); });
    };
    add("disk", MemoryDisk, 24, {Memory, Seek, Read, Write}, Kept::Nothing);
    RunAll(scenarios);
}

TEST(TurnFailures, OfWholeBitmaps) {
    std::vector<Scenario> scenarios;
    const auto add = [&](const std::string& what, std::vector<ReturnCode> failures, auto prepare, auto call,
                         Kept kept = Kept::Everything) {
        scenarios.push_back({what, failures, prepare, call, kept});
    };
    const auto turn = [](Ground& g) { return Z_RotateBitmap90(&g.Subject, 1, 0, 100); };
    const auto rotate = [](Ground& g) { return Z_RotateBitmap(&g.Subject, 3000, ROTATE_CUBIC, 0); };
    const auto change = [](Ground& g) { return Z_ChangeBitmapViewPerspective(nullptr, &g.Subject, 5); };
    const auto copy = [](Ground& g) {
        Z_FreeBitmap(&g.Made);
        return Z_ChangeBitmapViewPerspective(&g.Made, &g.Subject, 5);
    };
    const auto slideRows = [](Ground& g) { return Z_ShearBitmap(&g.Subject, -2000, 1, 0); };
    const auto slideColumns = [](Ground& g) { return Z_ShearBitmap(&g.Subject, 2000, 0, 0); };
    const auto warp = [](Ground& g) {
        const WarpPoints points = {{0, 0}, {18, 3}, {15, 36}, {2, 20}};
        return Z_CombineBitmapWarp(&g.Subject, &points, &g.Subject, 0, 0, 19, 37,
                                   WARP_REQUIRED | WARP_BILINEAR);
    };
    const std::vector<ReturnCode> files = {Memory, Seek, Read, Write};
    add("memory: turn", {Memory}, With(MemoryConventional, 24), turn);
    add("memory: rotation", {Memory}, With(MemoryConventional, 16), rotate);
    add("memory: view", {Memory}, With(MemoryConventional, 5), change);
    add("memory: copy in a view", {Memory}, With(MemoryConventional, 8), copy);
    add("disk: turn", files, With(MemoryDisk, 24), turn);
    add("disk: rotation", files, With(MemoryDisk, 12), rotate);
    add("disk: copy in a view", files, With(MemoryDisk, 8), copy);
    add("runs: turn", {Memory}, With(MemoryCompressed, 1), turn);
    add("runs: rotation", {Memory}, With(MemoryCompressed, 1), rotate, Kept::Rows);
    add("memory: shear", {Memory}, With(MemoryConventional, 5), slideColumns);
    add("disk: shear of rows", files, With(MemoryDisk, 24), slideRows);
    add("disk: shear of columns", files, With(MemoryDisk, 12), slideColumns);
    add("runs: shear of rows", {Memory}, With(MemoryCompressed, 1), slideRows);
    add("runs: shear of columns", {Memory}, With(MemoryCompressed, 1), slideColumns);
    add("memory: warp", {Memory}, With(MemoryConventional, 24), warp);
    add("disk: warp", files, With(MemoryDisk, 24), warp, Kept::Nothing);
    add("runs: warp", {Memory}, With(MemoryCompressed, 1), warp, Kept::Nothing);
    RunAll(scenarios);
}

// A heap of runs that cannot grow: rows that are mirrored already are mirrored back.
TEST(TurnFailures, OfRunsThatCannotGrow) {
    for (const bool turns : {false, true})
        for (uint32_t nth = 1; nth < 40; ++nth) {
            Bitmap bitmap(40000, 60, 1);
            ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryCompressed), 1);
            Fill(bitmap, 3);
            Bytes ones(bitmap.BytesPerLine, 0xFF);
            for (int32_t row = 0; row < bitmap.Height; row += 7)
                Z_PutBitmapRow(&bitmap, ones.data(), row, bitmap.BytesPerLine);
            const Bytes before = Rows(bitmap);
            fault::Arm(fault::Heap, nth, true);
            const ReturnCode result = turns ? Z_RotateBitmap(&bitmap, 18000, 0, 0) : Z_ReverseBitmap(&bitmap);
            const bool fired = fault::Fired();
            fault::Disarm();
            EXPECT_EQ(result, fired ? Memory : 1);
            if (!fired) break;
            ASSERT_EQ(Rows(bitmap), before);
        }
}

} // namespace
} // namespace zkr::test
