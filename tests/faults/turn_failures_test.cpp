// Flips, turns, rotations, shears, warps and changes of view, with each call of the system failing in turn.
#include "faults/fault_driver.h"

#include "zkr13n/flip.h"
#include "zkr13n/rotate.h"
#include "zkr13n/shear.h"
#include "zkr13n/warp.h"

namespace zkr::test {
namespace {

constexpr int32_t InMemory = MemoryConventional, OnDisk = MemoryDisk, InRuns = MemoryCompressed,
                  InStrips = MemorySuperCompressed;

TEST(TurnFailures, OfWholeBitmaps) {
    const auto flip = [](Ground& g) { return Z_FlipBitmap(&g.Subject); };
    const auto reverse = [](Ground& g) { return Z_ReverseBitmap(&g.Subject); };
    const auto half = [](Ground& g) { return Z_RotateBitmap(&g.Subject, 18000, 0, 0); };
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
    Bitmap warm(1, 1, 24); // a module that strips have needed stays loaded, which is no leak
    ASSERT_EQ(Z_AllocateBitmap(&warm, MemorySuperCompressed), 1);
    // In place, rows that a file takes back only half are lost; of runs, Size may change with no row doing so.
    RunAll({
        {"disk: flip", OfFiles, With(OnDisk, 24), flip, Kept::Nothing},
        {"disk: reverse", OfFiles, With(OnDisk, 24), reverse, Kept::Nothing},
        {"disk: half turn", OfFiles, With(OnDisk, 24), half, Kept::Nothing},
        {"memory: turn", OfMemory, With(InMemory, 24), turn},
        {"memory: rotation", OfMemory, With(InMemory, 16), rotate},
        {"memory: view", OfMemory, With(InMemory, 5), change},
        {"memory: copy in a view", OfMemory, With(InMemory, 8), copy},
        {"disk: turn", OfFiles, With(OnDisk, 24), turn},
        {"disk: rotation", OfFiles, With(OnDisk, 12), rotate},
        {"disk: copy in a view", OfFiles, With(OnDisk, 8), copy},
        {"runs: turn", OfMemory, With(InRuns, 1), turn},
        {"runs: rotation", OfMemory, With(InRuns, 1), rotate, Kept::Rows},
        {"memory: shear", OfMemory, With(InMemory, 5), slideColumns},
        {"disk: shear of rows", OfFiles, With(OnDisk, 24), slideRows},
        {"disk: shear of columns", OfFiles, With(OnDisk, 12), slideColumns},
        {"runs: shear of rows", OfMemory, With(InRuns, 1), slideRows},
        {"runs: shear of columns", OfMemory, With(InRuns, 1), slideColumns},
        {"strips: flip", OfFiles, With(InStrips, 24), flip, Kept::Nothing},
        {"strips: turn", OfFiles, With(InStrips, 24), turn},
        {"strips: rotation", OfFiles, With(InStrips, 24), rotate, Kept::Rows},
        {"strips: shear of columns", OfFiles, With(InStrips, 24), slideColumns, Kept::Rows},
        {"memory: warp", OfMemory, With(InMemory, 24), warp},
        {"disk: warp", OfFiles, With(OnDisk, 24), warp, Kept::Nothing},
        {"runs: warp", OfMemory, With(InRuns, 1), warp, Kept::Nothing},
    });
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
