// Painting, with each call of the system failing in turn.
#include "faults/fault_driver.h"
#include "platform/canvas.h"

#include "zkr13n/compressed_rows.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/paint.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {
namespace {

constexpr uint32_t Copy = 0x00CC0020;

std::function<void(Ground&)> Painted(int32_t type, int32_t bits, int32_t view) {
    return [=](Ground& g) {
        Make(g.Subject, type, bits, 1, view, 32, 40);
        Z_SetPaintContrast(&g.Subject, 100);
    };
}

TEST(PaintFailures, LeaveTheBitmapAndLeakNothing) {
    Canvas deep(40, 40, 32, 1), shallow(40, 40, 8, 1);
    Z_GetDisplayMode(); // the thread's state stays
    const int shallowBits = platform::GetDeviceCaps(shallow.context, BITSPIXEL);
    std::vector<Scenario> scenarios;
    const auto paint = [](HDC context, uint32_t mode, RECT to) {
        return [=](Ground& g) {
            Z_SetDisplayMode(0xFFFFFFFF, mode);
            const ReturnCode result = Z_PaintDC(context, &g.Subject, nullptr, nullptr, &to, nullptr, Copy);
            Z_SetDisplayMode(0xFFFFFFFF, 12);
            return result;
        };
    };
    const RECT same = {0, 0, 32, 40}, turned = {0, 0, 40, 32}, other = {0, 0, 19, 60},
               quarter = {0, 0, 8, 10};
    const auto add = [&](const char* name, const std::vector<ReturnCode>& failures, auto prepare, auto call) {
        scenarios.push_back({name, failures, prepare, call});
    };
    add("disk", OfReading, Painted(MemoryDisk, 24, 0), paint(deep.context, 8, same));
    add("disk, turned and scaled", OfReading, Painted(MemoryDisk, 12, 5), paint(deep.context, 8, other));
    add("turned", OfMemory, Painted(MemoryConventional, 16, 4), paint(deep.context, 8, turned));
    add("in levels of gray", OfMemory, Painted(MemoryConventional, 1, 0), paint(deep.context, 0x10, other));
    add("in squares", OfReading, Painted(MemoryDisk, 1, 0), paint(deep.context, 0x10, quarter));
    if (shallowBits == 8) {
        add("compared", OfMemory, Painted(MemoryConventional, 32, 2), paint(shallow.context, 9, same));
        add("diffused", OfMemory, Painted(MemoryConventional, 24, 2), paint(shallow.context, 8, same));
        add("diffused from disk", OfReading, Painted(MemoryDisk, 48, 0), paint(shallow.context, 0x108, same));
    }
    add(
        "in a region", OfMemory,
        [](Ground& g) {
            Painted(MemoryConventional, 24, 2)(g);
            const RECT part = {3, 3, 20, 20};
            ASSERT_EQ(Z_SetBitmapRgnRect(&g.Subject, nullptr, &part, Z_RGN_SET), 1);
        },
        [&](Ground& g) {
            return Z_PaintRgnDC(deep.context, &g.Subject, nullptr, nullptr, &same, nullptr, Copy);
        });
    std::vector<uint16_t> runs(40 * 36);
    const std::vector<uint8_t> bits(40 * 4, 0x5A);
    Z_CompressRows(runs.data(), bits.data(), 32, 40);
    add("compressed rows", OfMemory, Painted(MemoryConventional, 1, 0), [&](Ground& g) {
        return Z_PaintDCBuffer(deep.context, &g.Subject, nullptr, nullptr, &same, nullptr, Copy, runs.data(),
                               0, -40);
    });
    RunAll(scenarios);
}

TEST(PaintFailures, OfATableThatIsToBeMade) {
    const auto bare = [](Ground& g) {
        Painted(MemoryConventional, 8, 0)(g);
        Z_OsFree(g.Subject.PaintLUT);
        g.Subject.PaintLUT = nullptr;
    };
    RunAll({{"contrast", OfMemory, bare, [](Ground& g) { return Z_SetPaintContrast(&g.Subject, 300); }},
            {"intensity", OfMemory, bare, [](Ground& g) { return Z_SetPaintIntensity(&g.Subject, 300); }}});
}

} // namespace
} // namespace zkr::test
