// One picture combined into another in each family of operators, and a texture laid under it.
#include "combine_work.h"

#include "region_work.h"
#include "work.h"

#include <map>

namespace bench {

namespace {

constexpr int32_t OrderOf(int32_t bits) {
    return bits < 16 ? 0 : 1;
}

void Combine(BitmapHandle* target, BitmapHandle* source, uint32_t flags, int32_t sourceLeft = 0) {
    Z_CombineBitmap(target, 0, 0, target->Width, target->Height, source, sourceLeft, 0, flags);
    Touch(Data(target));
}

void AddCombination(int number, const char* name, int32_t bits, uint32_t flags, int32_t sourceLeft = 0) {
    const size_t pixels = bits == 1 ? PagePixels : PhotographPixels;
    AddWork(number, {name, pixels, pixels * static_cast<size_t>(bits) * 3 / 8,
                     [=] { Combine(Ground(bits), PictureOf(bits), flags, sourceLeft); }});
}

void CopyThrough() {
    static BitmapHandle* const sheet = [] {
        BitmapHandle* made = NewSheet(24);
        Z_CopyZircRgn(reinterpret_cast<RegionHandle**>(&made->Region), TextRegion());
        return made;
    }();
    Combine(sheet, PhotographBitmap(24, 1), COMBINE_DST_ZERO | COMBINE_OP_XOR);
}

const Adds adds([] {
    AddCombination(PageOr, "or: pages", 1, COMBINE_OP_OR);
    AddCombination(PageAnd, "and: pages", 1, COMBINE_OP_AND);
    AddCombination(PageXor, "exclusive or: pages", 1, COMBINE_OP_XOR);
    AddCombination(PageOrShifted, "or: pages, 3 pixels apart", 1, COMBINE_OP_OR, CombineShift);
    AddCombination(Add24, "add: 24", 24, COMBINE_OP_ADD);
    AddCombination(Subtract24, "subtract: 24", 24, COMBINE_OP_SUB_SRC);
    AddCombination(Minimum24, "minimum: 24", 24, COMBINE_OP_MIN);
    AddCombination(Maximum24, "maximum: 24", 24, COMBINE_OP_MAX);
    AddCombination(Average24, "average: 24", 24, COMBINE_OP_AVG);
    AddCombination(Multiply24, "multiply: 24", 24, COMBINE_OP_MUL);
    AddCombination(Multiply48, "multiply: 48", 48, COMBINE_OP_MUL);
    AddCombination(Divide24, "divide: 24", 24, COMBINE_OP_DIV_SRC);
    AddCombination(Add8, "add: 8", 8, COMBINE_OP_ADD);
    AddCombination(Add4, "add: 4", 4, COMBINE_OP_ADD);
    AddCombination(Add5, "add: 5", 5, COMBINE_OP_ADD);
    for (const int number : {Add4, Add5})
        AddPeer(number,
                {"the same at 8 bits", 0.33, [] { Combine(Ground(8), PictureOf(8), COMBINE_OP_ADD); }});
    AddWork(CopyThroughText24,
            {"copy under a text region: 24", PhotographPixels, PhotographPixels * 6, CopyThrough});
    AddWork(Underlay24, {"underlay: 24", PhotographPixels, PhotographPixels * 6, [] {
                             Z_UnderlayBitmap(Ground(24), CanvasTexture(), UNDERLAY_TILE);
                             Touch(Data(Ground(24)));
                         }});
});

} // namespace

BitmapHandle* PictureOf(int32_t bitsPerPixel) {
    return bitsPerPixel == 1 ? PageBitmap() : PhotographBitmap(bitsPerPixel, OrderOf(bitsPerPixel));
}

BitmapHandle* Ground(int32_t bitsPerPixel) {
    static std::map<int32_t, BitmapHandle> grounds;
    const auto [place, isNew] = grounds.try_emplace(bitsPerPixel);
    BitmapHandle& ground = place->second;
    if (isNew) {
        Z_CopyBitmap(&ground, PictureOf(bitsPerPixel));
        Z_ReverseBitmap(&ground);
    }
    return &ground;
}

BitmapHandle* CanvasTexture() {
    static BitmapHandle texture = [] {
        BitmapHandle made{};
        Z_CreateBitmap(&made, MemoryConventional, TextureSide, TextureSide, 24, Z_ORDER_BGR, nullptr, 0,
                       nullptr, 0);
        uint8_t* byte = Data(&made);
        for (int32_t y = 0; y < TextureSide; ++y)
            for (int32_t x = 0; x < TextureSide * 3; ++x)
                *byte++ = static_cast<uint8_t>(96 + (x / 3 % 8) * 4 + (y % 8) * 4);
        return made;
    }();
    return &texture;
}

} // namespace bench
