// Streams and sizing, with each call of the system failing in turn.
#include "faults/fault_driver.h"

#include "zkr13n/resize.h"
#include "zkr13n/sizing.h"

namespace zkr::test {
namespace {

std::function<void(Ground&)> Sized(int32_t type, int32_t bits) {
    return [=](Ground& g) {
        Make(g.Subject, type, bits, 1, 0, 19, 23);
        Make(g.Made, MemoryConventional, 24, 1, 5, 40, 30);
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
    const auto feed = [](Ground&) {
        ResizeLineState* state = nullptr;
        const ReturnCode result = Z_StartResize(5, 6, 7, 8, &state);
        Z_StopResize(state);
        return result;
    };
    std::vector<Scenario> scenarios = {{"fed rows", OfMemory, Nothing, feed}};
    const auto add = [&](const std::string& name, auto failures, auto prepare, auto call,
                         Kept kept = Kept::Everything) {
        scenarios.push_back({name, failures, prepare, call, kept});
    };
    for (const uint32_t flags : {0u, uint32_t{RESIZE_LINEAR}, uint32_t{RESIZE_SPLINE}}) {
        const std::string name = "stream " + std::to_string(flags);
        const auto stream = [=](int32_t bits, uint32_t more = 0) {
            return [=](Ground& g) { return Stream(g, bits, flags | more); };
        };
        add(name, OfMemory, Sized(MemoryConventional, 24), stream(24));
        add(name + " of a file, dithered", std::vector{Memory, Read}, Sized(MemoryDisk, 8), stream(4),
            Kept::Rows);
        add(name + " of gray levels, dithered", OfMemory, Sized(MemoryConventional, 0),
            stream(2, 1 << RESIZE_DITHER_SHIFT));
    }
    for (const uint32_t flags :
         {0u, uint32_t{SIZE_LINEAR}, uint32_t{SIZE_CUBIC}, uint32_t{SIZE_KEEP_BLACK}}) {
        const std::string name = "size " + std::to_string(flags);
        const auto size = [=](int32_t width, int32_t height) {
            return [=](Ground& g) {
                return g.Subject.Width == width ? code::Success
                                                : Z_SizeBitmap(&g.Subject, width, height, flags);
            };
        };
        add(name + " in memory", OfMemory, Sized(MemoryConventional, 24), size(50, 60));
        add(name + " of indices", OfMemory, Sized(MemoryConventional, 4), size(5, 6));
        add(name + " of runs", OfMemory, Sized(MemoryCompressed, 1), size(5, 6));
        add(name + " in a file", OfFiles, Sized(MemoryDisk, 1), size(50, 60));
        add(name + " across views", OfMemory, Sized(MemoryConventional, 24),
            [=](Ground& g) { return Z_ResizeBitmapExt(&g.Subject, &g.Made, flags); });
    }
    RunAll(scenarios);
}

} // namespace
} // namespace zkr::test
