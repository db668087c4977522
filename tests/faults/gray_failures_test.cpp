// Gray, level tables, colour counts, colour spaces and alpha, with each call of the system failing in turn.
#include "faults/fault_driver.h"

#include "zkr13n/alpha.h"
#include "zkr13n/color_spaces.h"
#include "zkr13n/gray.h"
#include "zkr13n/levels.h"

namespace zkr::test {
namespace {

constexpr ReturnCode Memory = code::OutOfMemory, Seek = code::SeekFailed, Read = code::ReadFailed,
                     Write = code::WriteFailed;

std::function<void(Ground&)> With(int32_t type, int32_t bits, int32_t order, bool levels = false) {
    return [=](Ground& g) {
        ASSERT_EQ(Z_CreateBitmap(&g.Subject, type, 9, 4, bits, order, nullptr, 1, nullptr, 0), 1);
        Fill(g.Subject, 3);
        ASSERT_EQ(Z_CreateBitmap(&g.Made, MemoryConventional, 9, 4, 24, 1, nullptr, 4, nullptr, 0), 1);
        if (!levels) return;
        g.Subject.LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(40, 1));
        g.Subject.LevelLUTLength = 10;
        g.Subject.Flags |= flag::LevelLUTActive;
    };
}

TEST(GrayFailures, OfWholeBitmaps) {
    std::vector<Scenario> scenarios;
    for (const int32_t type : {int32_t{MemoryConventional}, int32_t{MemoryDisk}}) {
        const std::string name = type == MemoryDisk ? "disk: " : "memory: ";
        const auto add = [&](const char* what, std::vector<ReturnCode> failures, auto prepare, auto call,
                             Kept kept = Kept::Everything) {
            scenarios.push_back({name + what, failures, prepare, call, kept});
        };
        const auto gray = [](Ground& g) { return Z_GrayScaleBitmap(&g.Subject, 8); };
        add("gray of colours", {Memory, Seek, Read, Write}, With(type, 24, 0), gray);
        add("gray of indices", {Memory, Seek, Read, Write}, With(type, 4, 0), gray);
        add("gray through a short table", {Memory, Seek, Read, Write}, With(type, 16, 2, true), gray);
        add("count", {Memory, Seek, Read}, With(type, 32, 1), [](Ground& g) {
            uint32_t count = 9;
            const ReturnCode result = Z_GetBitmapColorCountExt(&g.Subject, &count, nullptr);
            EXPECT_EQ(count, result == code::Success ? 36u : 9u);
            return result;
        });
        add("count through a short table", {Memory, Seek, Read}, With(type, 12, 2, true), [](Ground& g) {
            uint32_t count = 0;
            return Z_GetBitmapColorCountExt(&g.Subject, &count, nullptr);
        });
        const auto clear = [](Ground& g) {
            g.Subject.Flags |= flag::Signed;
            return Z_ClearNegativePixels(&g.Subject);
        };
        add("negative pixels", {Memory, Seek, Read, Write}, With(type, 48, 1), clear, Kept::Nothing);
        add("negative palette", {Memory}, With(type, 8, 0), clear, Kept::Nothing);
        add("alpha out", {Memory, Seek, Read, Write}, With(type, 64, 1), [](Ground& g) {
            Z_FreeBitmap(&g.Made);
            return Z_GetBitmapAlpha(&g.Subject, &g.Made);
        });
        add(
            "alpha in", {Memory, Seek, Read, Write}, With(type, 32, 1),
            [](Ground& g) { return Z_SetBitmapAlpha(&g.Subject, &g.Made); }, Kept::Nothing);
    }
    scenarios.push_back({"level table",
                         {Memory},
                         With(MemoryConventional, 16, 2, true),
                         [](Ground& g) {
                             RGBQUAD colours[3] = {};
                             return Z_WindowLevel(&g.Subject, 0, 3, colours, 3, 1);
                         },
                         Kept::Rows});
    scenarios.push_back({"space", {Memory}, With(MemoryConventional, 8, 0), [](Ground& g) {
                             g.Row.assign(12, 5);
                             return Z_ConvertColorSpace(g.Row.data(), g.Row.data(), 3, Z_SPACE_CMYK,
                                                        Z_SPACE_HLS);
                         }});
    RunAll(scenarios);
}

} // namespace
} // namespace zkr::test
