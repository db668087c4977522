// The clipboard, pictures of a device and raster objects, with each call of the system failing in turn.
#include "faults/fault_driver.h"
#include "platform/canvas.h"

#include "zkr13n/clipboard.h"
#include "zkr13n/raster_object.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {
namespace {

constexpr ReturnCode Memory = code::OutOfMemory, Argument = code::InvalidArgument;

void Prepare(Ground& g) {
    ASSERT_EQ(Z_CreateBitmap(&g.Subject, MemoryConventional, 19, 7, 8, 0, nullptr, 5, nullptr, 0), 1);
    Fill(g.Subject, 3);
    const RECT part = {2, 1, 9, 6};
    ASSERT_EQ(Z_SetBitmapRgnRect(&g.Subject, nullptr, &part, Z_RGN_SET), 1);
}

void Empty() {
    EXPECT_EQ(Z_CopyToClipboardExt(nullptr, nullptr, COPY_EMPTY), 1);
}

Scenario Pasting(const char* name, uint32_t forms, std::vector<ReturnCode> failures) {
    return {name,
            std::move(failures),
            [forms](Ground& g) {
                Prepare(g);
                EXPECT_EQ(Z_CopyToClipboardExt(nullptr, &g.Subject, COPY_EMPTY | COPY_RGN | forms), 1);
            },
            [](Ground& g) {
                Z_FreeBitmap(&g.Made);
                return Z_CopyFromClipboard(nullptr, &g.Made);
            },
            Kept::Everything,
            [](Ground& g, ReturnCode result) {
                EXPECT_EQ(g.Made.Flags == 0, result != code::Success);
                EXPECT_EQ(Z_ClipboardReady(), 1);
            }};
}

TEST(ExchangeFailures, OfTheClipboard) {
    const auto copy = [](uint32_t forms) {
        return [=](Ground& g) {
            const ReturnCode result = Z_CopyToClipboardExt(nullptr, &g.Subject, forms);
            Empty(); // so that nothing stays from one round to the next
            return result;
        };
    };
    const std::vector<ReturnCode> failure = {Z_ERROR_CLIPBOARD_COPY};
    const Scenario scenarios[] = {{"all forms", failure, Prepare, copy(30)},
                                  {"the region", failure, Prepare, copy(COPY_EMPTY | COPY_RGN)},
                                  Pasting("a block", COPY_DIB, {Memory}),
                                  Pasting("a platform bitmap", COPY_DDB | COPY_PALETTE, {Memory, Argument})};
    for (const Scenario& scenario : scenarios) {
        { // what is kept, and is on the clipboard in each round, is there before the first one
            Ground ground;
            scenario.Prepare(ground);
            EXPECT_EQ(scenario.Call(ground), 1);
        }
        RunAll({scenario});
    }
    Empty();
}

TEST(ExchangeFailures, OfPicturesOfADevice) {
    Canvas canvas(20, 10, 24, 3);
    const auto take = [](HDC device, RECT part) {
        return [=](Ground& g) {
            Z_FreeBitmap(&g.Made);
            const ReturnCode result = Z_ScreenCaptureBitmap(device, &g.Made, &part);
            EXPECT_EQ(g.Made.Flags == 0, result != code::Success);
            return result;
        };
    };
    const auto nothing = [](Ground&) {};
    RunAll({{"the screen", {Memory}, nothing, take(nullptr, {0, 0, 9, 9})},
            {"a canvas", {Memory}, nothing, take(canvas.context, {-3, -3, 9, 30})}});
}

TEST(ExchangeFailures, OfAnObjectThatIsToBeMade) {
    RunAll({{"raster object",
             {Memory},
             [](Ground&) {},
             [](Ground&) {
                 IZIRCRaster* raster = nullptr;
                 const ReturnCode result = Z_CreateRasterObject(&raster);
                 EXPECT_EQ(raster == nullptr, result != code::Success);
                 if (raster != nullptr) raster->Release();
                 return result;
             }}});
}

} // namespace
} // namespace zkr::test
