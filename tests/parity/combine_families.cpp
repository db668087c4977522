// Parity cases of combinations and underlays.
#include "parity/subject.h"

#include "zkr13n/combine.h"
#include "zkr13n/region.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {
namespace {

void AddRegion(Seeded& seeded, BitmapHandle& bitmap) {
    if (seeded.Below(3) != 0) return;
    for (const uint32_t mode : {Z_RGN_SET, Z_RGN_XOR}) {
        RECT part = {seeded.Below(100), seeded.Below(20), 0, 0};
        part.right = part.left + seeded.Below(100), part.bottom = part.top + seeded.Below(20);
        Z_SetBitmapRgnRect(&bitmap, nullptr, &part, mode);
    }
}

// With another bitmap of its depth, whose pixels come from another place of it.
void CombineCase(Seeded& seeded, Digest& digest) {
    Subject target(seeded);
    BitmapHandle source{};
    Z_CreateBitmap(&source, MemoryConventional, seeded.Between(1, 200), seeded.Between(1, 40),
                   target.BitsPerPixel, target.Order, nullptr, seeded.Below(9), nullptr, 0);
    source.LowBit = target.LowBit, source.HighBit = target.HighBit;
    const int left = seeded.Between(-10, 200), top = seeded.Between(-10, 40);
    digest.Add(Z_CombineBitmap(&source, 0, 0, 200, 200, &target, seeded.Below(20), seeded.Below(5), 0x220));
    AddPixels(digest, source);
    AddRegion(seeded, target);
    AddRegion(seeded, source);
    const uint32_t flags =
        static_cast<uint32_t>(seeded.Below(4) | seeded.Below(4) << 4 | seeded.Below(12) << 8 |
                              seeded.Below(4) * seeded.Below(2) << 12);
    digest.Add(Z_CombineBitmap(&target, left, top, seeded.Between(1, 200), seeded.Between(1, 40),
                               seeded.Below(4) == 0 ? &target : &source, seeded.Between(-10, 50),
                               seeded.Between(-10, 20), flags));
    AddPixels(digest, target);
    Z_FreeBitmap(&source);
}

void UnderlayCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded), texture(seeded);
    AddRegion(seeded, picture);
    digest.Add(Z_UnderlayBitmap(&picture, &texture, static_cast<uint32_t>(seeded.Below(2))));
    AddPixels(digest, picture);
}

constexpr Family Families[] = {{"combine", 4000, CombineCase}, {"underlay", 600, UnderlayCase}};

} // namespace

std::span<const Family> CombineFamilies() {
    return Families;
}

} // namespace zkr::test
