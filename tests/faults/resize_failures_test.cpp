// Streams and sizing, with each call of the system failing in turn.
#include "faults/fault_driver.h"

#include "zkr13n/resize.h"
#include "zkr13n/sizing.h"

namespace zkr::test {
namespace {

constexpr ReturnCode Memory = code::OutOfMemory, Seek = code::SeekFailed, Read = code::ReadFailed,
                     Write = code::WriteFailed;

std::function<void(Ground&)> With(int32_t type, int32_t bits) {
    return [=](Ground& g) {
        ASSERT_EQ(Z_CreateBitmap(&g.Subject, type, 19, 23, bits, 1, nullptr, 0, nullptr, 0), 1);
        Fill(g.Subject, 3);
        ASSERT_EQ(Z_CreateBitmap(&g.Made, MemoryConventional, 40, 30, 24, 1, nullptr, 5, nullptr, 0), 1);
    };
}

// Starts, gets a row by way of the one above, and stops. A row that failed comes right when it is asked for again.
ReturnCode Stream(Ground& g, int32_t bits, uint32_t flags) {
    auto* const untouched = reinterpret_cast<ResizeRowContext*>(8);
    ResizeRowContext* stream = untouched;
    ReturnCode result =
        Z_StartResizeBitmap(&g.Subject, 40, 50, bits, nullptr, 0, flags, nullptr, nullptr, &stream);
    EXPECT_EQ(stream == untouched, result != code::Success);
    if (result != code::Success) return result;
    g.Row.assign(40 * 8, 0);
    for (const int32_t row : {20, 21, 22}) {
        result = Z_GetResizedRowCol(stream, g.Row.data(), row, 0, static_cast<uint32_t>(40 * bits / 8));
        if (result != code::Success) break;
    }
    EXPECT_EQ(Z_StopResizeBitmap(stream), code::Success);
    return result;
}

TEST(ResizeFailures, OfStreamsAndWholeBitmaps) {
    std::vector<Scenario> scenarios;
    const auto add = [&](const std::string& what, std::vector<ReturnCode> failures, auto prepare, auto call,
                         Kept kept = Kept::Everything) {
        scenarios.push_back({what, failures, prepare, call, kept});
    };
    scenarios.push_back({"fed rows",
                         {Memory},
                         [](Ground&) {},
                         [](Ground&) {
                             ResizeLineState* state = nullptr;
                             const ReturnCode result = Z_StartResize(5, 6, 7, 8, &state);
                             Z_StopResize(state);
                             return result;
                         }});
    for (const uint32_t flags : {0u, uint32_t{RESIZE_LINEAR}, uint32_t{RESIZE_SPLINE}}) {
        const std::string name = "stream " + std::to_string(flags);
        add(name, {Memory}, With(MemoryConventional, 24), [=](Ground& g) { return Stream(g, 24, flags); });
        add(
            name + " of a file, dithered", {Memory, Read}, With(MemoryDisk, 8),
            [=](Ground& g) { return Stream(g, 4, flags); }, Kept::Rows);
        add(name + " of gray levels, dithered", {Memory}, With(MemoryConventional, 0),
            [=](Ground& g) { return Stream(g, 2, flags | 1 << RESIZE_DITHER_SHIFT); });
    }
    for (const uint32_t flags :
         {0u, uint32_t{SIZE_LINEAR}, uint32_t{SIZE_CUBIC}, uint32_t{SIZE_KEEP_BLACK}}) {
        const std::string name = "size " + std::to_string(flags);
        const auto grow = [=](Ground& g) {
            return g.Subject.Width == 50 ? code::Success : Z_SizeBitmap(&g.Subject, 50, 60, flags);
        };
        const auto shrink = [=](Ground& g) {
            return g.Subject.Width == 5 ? code::Success : Z_SizeBitmap(&g.Subject, 5, 6, flags);
        };
        add(name + " in memory", {Memory}, With(MemoryConventional, 24), grow);
        add(name + " of indices", {Memory}, With(MemoryConventional, 4), shrink);
        add(name + " of runs", {Memory}, With(MemoryCompressed, 1), shrink);
        add(name + " in a file", {Memory, Seek, Read, Write}, With(MemoryDisk, 1), grow);
        add(name + " across views", {Memory}, With(MemoryConventional, 24),
            [=](Ground& g) { return Z_ResizeBitmapExt(&g.Subject, &g.Made, flags); });
    }
    RunAll(scenarios);
}

} // namespace
} // namespace zkr::test
