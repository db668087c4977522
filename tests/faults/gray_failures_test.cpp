// Gray, level tables, colour counts, colour spaces and alpha, with each call of the system failing in turn.
#include "faults/fault_driver.h"

#include "zkr13n/alpha.h"
#include "zkr13n/color_spaces.h"
#include "zkr13n/gray.h"
#include "zkr13n/levels.h"

namespace zkr::test {
namespace {

void GiveLevels(Ground& g) {
    g.Subject.LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(40, 1));
    g.Subject.LevelLUTLength = 10;
    g.Subject.Flags |= flag::LevelLUTActive;
}

TEST(GrayFailures, OfWholeBitmaps) {
    std::vector<Scenario> scenarios;
    const auto form = [](int32_t type, int32_t bits, int32_t order, bool hasLevels = false) {
        return [=](Ground& g) {
            Make(g.Subject, type, bits, order, 1, 9, 4);
            Make(g.Made, MemoryConventional, 24, 1, 4, 9, 4);
            if (hasLevels) GiveLevels(g);
        };
    };
    const auto gray = [](Ground& g) { return Z_GrayScaleBitmap(&g.Subject, 8); };
    const auto count = [](Ground& g) {
        uint32_t colours = 99;
        const ReturnCode result = Z_GetBitmapColorCountExt(&g.Subject, &colours, nullptr);
        EXPECT_TRUE(result == code::Success ? colours <= 36 : colours == 99);
        return result;
    };
    const auto clear = [](Ground& g) {
        g.Subject.Flags |= flag::Signed;
        return Z_ClearNegativePixels(&g.Subject);
    };
    const auto alphaOut = [](Ground& g) {
        Z_FreeBitmap(&g.Made);
        return Z_GetBitmapAlpha(&g.Subject, &g.Made);
    };
    const auto alphaIn = [](Ground& g) { return Z_SetBitmapAlpha(&g.Subject, &g.Made); };
    for (const int32_t type : {int32_t{MemoryConventional}, int32_t{MemoryDisk}}) {
        const Scenario both[] = {
            {"gray of colours", OfFiles, form(type, 24, 0), gray},
            {"gray of indices", OfFiles, form(type, 4, 0), gray},
            {"gray through a short table", OfFiles, form(type, 16, 2, true), gray},
            {"count", OfReading, form(type, 32, 1), count},
            {"count through a short table", OfReading, form(type, 12, 2, true), count},
            {"negative pixels", OfFiles, form(type, 48, 1), clear, Kept::Nothing},
            {"negative palette", OfMemory, form(type, 8, 0), clear, Kept::Nothing},
            {"alpha out", OfFiles, form(type, 64, 1), alphaOut},
            {"alpha in", OfFiles, form(type, 32, 1), alphaIn, Kept::Nothing},
        };
        scenarios.insert(scenarios.end(), std::begin(both), std::end(both));
    }
    const auto levels = [](Ground& g) {
        RGBQUAD colours[3] = {};
        return Z_WindowLevel(&g.Subject, 0, 3, colours, 3, 1);
    };
    const auto space = [](Ground& g) {
        g.Row.assign(12, 5);
        return Z_ConvertColorSpace(g.Row.data(), g.Row.data(), 3, Z_SPACE_CMYK, Z_SPACE_HLS);
    };
    scenarios.push_back({"level table", OfMemory, form(MemoryConventional, 16, 2, true), levels, Kept::Rows});
    scenarios.push_back({"space", OfMemory, form(MemoryConventional, 8, 0), space});
    RunAll(scenarios);
}

} // namespace
} // namespace zkr::test
