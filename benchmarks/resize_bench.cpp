// The photograph reduced and enlarged by each method, at once and streamed row by row, and the page with its strokes
// kept.
#include "resize_work.h"

#include "pictures.h"
#include "work.h"

#include <vector>

namespace bench {

namespace {

// From a photograph of a depth to another size; 0 bits for gray levels.
struct Sizing {
    int32_t Bits, Order, Width, Height;
    uint32_t Flags;

    size_t Pixels() const { return static_cast<size_t>(Width) * static_cast<size_t>(Height); }
    size_t Bytes() const {
        return (PhotographPixels + Pixels()) * static_cast<size_t>(Bits == 0 ? 8 : Bits) / 8;
    }
};

BitmapHandle* Target(const Sizing& sizing) {
    return EmptyBitmap(sizing.Width, sizing.Height, sizing.Bits, sizing.Order);
}

void AddSizing(int number, const char* name, const Sizing& sizing) {
    AddWork(number, {name, sizing.Pixels(), sizing.Bytes(), [=] {
                         Z_ResizeBitmapExt(PhotographBitmap(sizing.Bits, sizing.Order), Target(sizing),
                                           sizing.Flags);
                         Touch(Data(Target(sizing)));
                     }});
}

// Streamed from the first row to the last; the peer is the same method at once.
void AddStream(int number, const char* name, const Sizing& sizing, uint32_t flags) {
    AddWork(number, {name, sizing.Pixels(), sizing.Bytes(), [=] {
                         BitmapHandle* target = Target(sizing);
                         ResizeRowContext* stream = nullptr;
                         Z_StartResizeBitmap(PhotographBitmap(24, 1), sizing.Width, sizing.Height, 24,
                                             nullptr, 0, RESIZE_ORDER_BGR | flags, nullptr, nullptr, &stream);
                         for (int32_t y = 0; y < sizing.Height; ++y)
                             Z_GetResizedRowCol(
                                 stream, Data(target) + size_t{target->BytesPerLine} * static_cast<size_t>(y),
                                 y, 0, static_cast<uint32_t>(sizing.Width) * 3);
                         Z_StopResizeBitmap(stream);
                         Touch(Data(target));
                     }});
    AddPeer(number, {"the whole bitmap", 0.8, [=] {
                         Z_ResizeBitmapExt(PhotographBitmap(24, 1), Target(sizing), sizing.Flags);
                         Touch(Data(Target(sizing)));
                     }});
}

// The page on paper that is white.
BitmapHandle* Page() {
    static BitmapHandle page = [] {
        constexpr RGBQUAD colours[2] = {{255, 255, 255, 0}, {0, 0, 0, 0}};
        BitmapHandle made = *PageBitmap();
        made.Palette = nullptr;
        Z_CreateBitmapPalette(&made, colours, 2);
        made.ColorsUsed = 2;
        return made;
    }();
    return &page;
}

void AddStrokes(int number, const char* name, int32_t width, int32_t height) {
    const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    AddWork(number, {name, pixels, (PagePixels + pixels) / 8, [=] {
                         BitmapHandle* target = EmptyBitmap(width, height, 1, 0);
                         Z_ResizeBitmapExt(Page(), target, SIZE_KEEP_BLACK);
                         Touch(Data(target));
                     }});
}

const Adds adds([] {
    constexpr int32_t width = PhotographWidth * 2, height = PhotographHeight * 2;
    const Sizing reduced = {24, 1, ReducedWidth, ReducedHeight, 0}, doubled = {24, 1, width, height, 0};
    const auto with = [](Sizing sizing, int32_t bits, uint32_t flags) {
        sizing.Bits = bits;
        sizing.Flags = flags;
        return sizing;
    };
    AddSizing(NearestReduced, "nearest to 0.37, 24", reduced);
    AddSizing(NearestDoubled, "nearest doubled, 24", doubled);
    AddSizing(AreaReduced24, "area to 0.37, 24", with(reduced, 24, SIZE_LINEAR));
    AddSizing(AreaReduced48, "area to 0.37, 48", with(reduced, 48, SIZE_LINEAR));
    AddSizing(AreaReducedGray, "area to 0.37, gray", with(reduced, 0, SIZE_LINEAR));
    AddSizing(AreaEighth24, "area to an eighth, 24",
              {24, 1, PhotographWidth / 8, PhotographHeight / 8, SIZE_LINEAR});
    AddSizing(LinearDoubled24, "linear doubled, 24", with(doubled, 24, SIZE_LINEAR));
    AddSizing(LinearDoubled32, "linear doubled, 32", with(doubled, 32, SIZE_LINEAR));
    AddSizing(LinearDoubled48, "linear doubled, 48", with(doubled, 48, SIZE_LINEAR));
    AddSizing(SplineDoubled24, "spline doubled, 24", with(doubled, 24, SIZE_CUBIC));
    AddSizing(SplineDoubled48, "spline doubled, 48", with(doubled, 48, SIZE_CUBIC));
    AddStrokes(StrokesQuarter, "strokes to a quarter", PageWidth / 4, PageHeight / 4);
    AddStrokes(StrokesReduced, "strokes to 0.3", ReducedPageWidth, ReducedPageHeight);
    AddStrokes(StrokesDoubled, "strokes doubled", PageWidth * 2, PageHeight * 2);
    AddStream(StreamNearest, "streamed nearest to 0.37", reduced, 0);
    AddStream(StreamArea, "streamed means to 0.37", with(reduced, 24, SIZE_LINEAR), RESIZE_LINEAR);
    AddStream(StreamLinear, "streamed linear doubled", with(doubled, 24, SIZE_LINEAR), RESIZE_LINEAR);
    AddStream(StreamSpline, "streamed spline doubled", with(doubled, 24, SIZE_CUBIC), RESIZE_SPLINE);
});

} // namespace

} // namespace bench
