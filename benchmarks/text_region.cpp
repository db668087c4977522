// The text, the checkerboard and the points that region works share.
#include "region_work.h"

#include <algorithm>

namespace bench {

namespace {

// Four rows and columns of seven of the page.
bool IsInk(int32_t x, int32_t y) {
    const BitmapHandle* const page = PageBitmap();
    const auto column = static_cast<size_t>(x * 7 / 4), row = static_cast<size_t>(y * 7 / 4);
    return (Data(PageBitmap())[row * page->BytesPerLine + column / 8] >> (7 - column % 8) & 1) != 0;
}

RegionHandle* RegionOfMask(BitmapHandle* mask) {
    BitmapHandle sheet{};
    Z_InitBitmap(&sheet, TextWidth, TextHeight, 24);
    Z_SetBitmapRgnFromMask(&sheet, nullptr, mask, Z_RGN_SET);
    return static_cast<RegionHandle*>(sheet.Region);
}

} // namespace

BitmapHandle* NewSheet(int32_t bitsPerPixel) {
    auto* sheet = new BitmapHandle{};
    Z_CreateBitmap(sheet, MemoryConventional, TextWidth, TextHeight, bitsPerPixel, Z_ORDER_BGR, nullptr, 2,
                   nullptr, 0);
    return sheet;
}

BitmapHandle* TextMask() {
    static BitmapHandle* mask = [] {
        BitmapHandle* made = NewSheet(1);
        std::fill_n(Data(made), made->Size, uint8_t{0});
        for (int32_t y = 0; y < TextHeight; ++y)
            for (int32_t x = 0; x < TextWidth; ++x)
                if (IsInk(x, y))
                    Data(made)[size_t(y) * made->BytesPerLine + size_t(x / 8)] |= uint8_t(0x80 >> x % 8);
        return made;
    }();
    return mask;
}

BitmapHandle* TextPaper(int32_t bitsPerPixel) {
    static BitmapHandle* papers[2] = {};
    BitmapHandle*& paper = papers[bitsPerPixel == 24];
    if (paper != nullptr) return paper;
    paper = NewSheet(bitsPerPixel == 24 ? 24 : 0);
    const auto bytes = static_cast<size_t>(bitsPerPixel / 8);
    for (int32_t y = 0; y < TextHeight; ++y)
        for (int32_t x = 0; x < TextWidth; ++x)
            std::fill_n(Data(paper) + size_t(y) * paper->BytesPerLine + size_t(x) * bytes, bytes,
                        IsInk(x, y) ? uint8_t{20} : static_cast<uint8_t>(230 + (x * 7 + y * 3) % 16));
    return paper;
}

const RegionHandle* TextRegion() {
    static const RegionHandle* region = RegionOfMask(TextMask());
    return region;
}

const RegionHandle* OtherTextRegion() {
    static const RegionHandle* region = [] {
        BitmapHandle mask;
        Z_CopyBitmap(&mask, TextMask());
        Z_ReverseBitmap(&mask);
        return RegionOfMask(&mask);
    }();
    return region;
}

const RegionHandle* Checkerboard() {
    static const RegionHandle* region = [] {
        BitmapHandle* mask = NewSheet(1);
        for (int32_t y = 0; y < TextHeight; ++y)
            std::fill_n(Data(mask) + size_t(y) * mask->BytesPerLine, mask->BytesPerLine,
                        y % 2 != 0 ? uint8_t{0x55} : uint8_t{0xAA});
        return RegionOfMask(mask);
    }();
    return region;
}

BitmapHandle* SheetWith(const RegionHandle* region) {
    auto* sheet = new BitmapHandle{};
    Z_InitBitmap(sheet, TextWidth, TextHeight, 24);
    RegionHandle* copy = nullptr;
    Z_CopyZircRgn(&copy, region);
    sheet->Region = copy;
    return sheet;
}

const std::vector<Place>& Points() {
    static const std::vector<Place> points = [] {
        std::vector<Place> made(1000);
        uint32_t state = 1;
        for (Place& place : made) {
            state = state * 1664525 + 1013904223;
            place.X = static_cast<int32_t>((state >> 8) % TextWidth);
            state = state * 1664525 + 1013904223;
            place.Y = static_cast<int32_t>((state >> 8) % TextHeight);
        }
        return made;
    }();
    return points;
}

} // namespace bench
