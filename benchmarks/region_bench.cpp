// Regions: copies, masks, points, colours, the wand, fills, and regions that follow their bitmap.
#include "region_work.h"
#include "work.h"

namespace bench {

namespace {

size_t BytesOf(const RegionHandle* region) {
    return size_t{region->SegmentBytes} + region->RowTableBytes;
}

void SetColours(bool isHsv) {
    static BitmapHandle* photograph = PhotographBitmap(24, Z_ORDER_BGR);
    if (isHsv)
        Z_SetBitmapRgnColorHSVRange(photograph, LowerHsv, UpperHsv, Z_RGN_SET);
    else
        Z_SetBitmapRgnColorRGBRange(photograph, LowerColour, UpperColour, Z_RGN_SET);
    Touch(photograph->Region);
    Z_FreeBitmapRgn(photograph);
}

void Wand(int32_t bits) {
    BitmapHandle* paper = TextPaper(bits);
    Z_SetBitmapRgnMagicWand(paper, 1, 1, 30, Z_RGN_SET);
    Touch(paper->Region);
    Z_FreeBitmapRgn(paper);
}

void Fill(const RegionHandle* region) {
    static BitmapHandle* target = NewSheet(24);
    target->Region = const_cast<RegionHandle*>(region);
    Z_FillBitmap(target, FillColour);
    target->Region = nullptr;
    Touch(target->Addr);
}

void Copy() {
    RegionHandle* copy = nullptr;
    Z_CopyZircRgn(&copy, TextRegion());
    Touch(copy);
    BitmapHandle owner{};
    owner.Region = copy;
    Z_FreeBitmapRgn(&owner);
}

void Offset() {
    static BitmapHandle* sheet = [] {
        BitmapHandle* made = SheetWith(TextRegion());
        made->Flags |= Z_FLAG_REGION_UNCLIPPED;
        return made;
    }();
    static int32_t by = 1;
    Z_OffsetBitmapRgn(sheet, by, by);
    by = -by;
    Touch(sheet->Region);
}

void FromMask() {
    static BitmapHandle sheet = *TextPaper(8); // a gray bitmap takes a mask as it is
    Z_SetBitmapRgnFromMask(&sheet, nullptr, TextMask(), Z_RGN_SET);
    Touch(sheet.Region);
    Z_FreeBitmapRgn(&sheet);
}

void IntoMask() {
    static BitmapHandle* sheet = SheetWith(TextRegion());
    BitmapHandle mask;
    Z_CreateMaskFromBitmapRgn(sheet, &mask);
    Touch(mask.Addr);
    Z_FreeBitmap(&mask);
}

void AskPoints() {
    static BitmapHandle* sheet = SheetWith(TextRegion());
    int32_t inside = 0;
    for (const auto& [x, y] : Points())
        inside += Z_IsPtInBitmapRgn(sheet, y, x);
    Touch(&inside);
}

const Adds adds([] {
    AddWork(CopyText, {"copy of a text region", TextPixels, 2 * BytesOf(TextRegion()), Copy});
    AddWork(OffsetText, {"offset of a text region", TextPixels, 2 * BytesOf(TextRegion()), Offset});
    AddWork(TextFromMask,
            {"mask to text region", TextPixels, TextMask()->Size + BytesOf(TextRegion()), FromMask});
    AddWork(TextIntoMask,
            {"text region to mask", TextPixels, TextMask()->Size + BytesOf(TextRegion()), IntoMask});
    AddWork(PointsInText, {"1000 points in a text region", 1000, 16000, AskPoints});
    AddWork(ColourRegion24,
            {"region of a range of colours, 24 bits", TextPixels, TextPixels * 3, [] { SetColours(false); }});
    AddWork(HueRegion24,
            {"region of a range of hues, 24 bits", TextPixels, TextPixels * 3, [] { SetColours(true); }});
    AddWork(WandAroundText24, {"wand around text, 24 bits", TextPixels, TextPixels * 3, [] { Wand(24); }});
    AddWork(WandAroundText8, {"wand around text, 8 bits", TextPixels, TextPixels, [] { Wand(8); }});
    AddWork(FillText24, {"fill under a text region, 24 bits", TextPixels, BytesOf(TextRegion()),
                         [] { Fill(TextRegion()); }});
    AddWork(FillCheckerboard24,
            {"fill under a checkerboard, 24 bits", TextPixels, TextPixels * 3, [] { Fill(Checkerboard()); }});
});

} // namespace

} // namespace bench
