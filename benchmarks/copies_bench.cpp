// Fills, and rectangles copied into bitmaps that are made and freed each time, against peers that copy into
// memory which is there.
#include "pictures.h"
#include "work.h"

#include <cstring>
#include <vector>

namespace bench {

namespace {

constexpr size_t RowBytes = size_t{PhotographWidth} * 3;
constexpr uint32_t Colour = 0x00306090;

BitmapHandle* Canvas() {
    return EmptyBitmap(PhotographWidth, PhotographHeight, 24, Z_ORDER_BGR);
}

std::vector<uint8_t>& PlainMemory() {
    static std::vector<uint8_t> memory(PhotographPixels * 3, 1);
    return memory;
}

void CopyPattern() {
    static const std::vector<uint8_t> pattern(RowBytes, 0x60);
    for (size_t row = 0; row < PhotographHeight; ++row)
        std::memcpy(&PlainMemory()[row * RowBytes], pattern.data(), RowBytes);
    Touch(PlainMemory().data());
}

void CopyRectangle(BitmapHandle* source, int32_t left, int32_t top, int32_t width, int32_t height) {
    BitmapHandle copy;
    Z_CopyBitmapRect(&copy, source, left, top, width, height);
    Touch(copy.Addr);
    Z_FreeBitmap(&copy);
}

const Adds adds([] {
    AddWork(Fill24, {"fill 24 bits", PhotographPixels, PhotographPixels * 3, [] {
                         Z_FillBitmap(Canvas(), Colour);
                         Touch(Data(Canvas()));
                     }});
    AddPeer(Fill24, {"memcpy of a pattern row", 0.9, CopyPattern});
    AddWork(Clear24, {"clear 24 bits", PhotographPixels, PhotographPixels * 3, [] {
                          Z_ClearBitmap(Canvas());
                          Touch(Data(Canvas()));
                      }});
    AddPeer(Clear24, {"memset", 0.9, [] {
                          std::memset(PlainMemory().data(), 0, PlainMemory().size());
                          Touch(PlainMemory().data());
                      }});
    constexpr size_t copiedPixels = size_t{CopiedWidth} * CopiedHeight;
    AddWork(CopyRect24, {"copy 3000 x 2000, 24 bits", copiedPixels, copiedPixels * 6, [] {
                             CopyRectangle(PhotographBitmap(24, Z_ORDER_BGR), CopiedLeft, CopiedTop,
                                           CopiedWidth, CopiedHeight);
                         }});
    AddWork(ShiftPage, {"copy a page moved by 3", PagePixels, PagePixels / 4,
                        [] { CopyRectangle(PageBitmap(), ShiftedBy, 0, PageWidth, PageHeight); }});
});

} // namespace

} // namespace bench
