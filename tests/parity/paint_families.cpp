// Parity cases of painting: the paint table, and what contexts of 32 bits get, which no system has a say in.
#include "parity/subject.h"
#include "support/memory_device.h"

#include "zkr13n/display_modes.h"
#include "zkr13n/paint.h"

namespace zkr::test {
namespace {

void TableCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    digest.Add(Z_SetPaintContrast(&picture, seeded.Between(-1000, 1000)));
    digest.Add(Z_SetPaintIntensity(&picture, seeded.Between(-1000, 1000)));
    digest.Add(picture.PaintLUT, 256);
    digest.Add(Z_SetPaintGamma(&picture, static_cast<uint32_t>(seeded.Between(1, 1000))));
    digest.Add(picture.PaintLUT, 256);
    digest.AddRecord(picture);
}

RECT Rectangle(Seeded& seeded, int width, int height) {
    const int left = seeded.Between(-5, width), top = seeded.Between(-5, height);
    return {left, top, left + seeded.Below(width + 5), top + seeded.Below(height + 5)};
}

void PaintCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    const MemoryDevice device(90, 70, 0x3C);
    if (seeded.Below(2) == 0) Z_SetPaintContrast(&picture, seeded.Between(-1000, 1000));
    const uint32_t before =
        Z_SetDisplayMode(0xFFFFFFFF, static_cast<uint32_t>(seeded.Below(512)) & ~uint32_t{DISPLAY_INDEXED});
    const RECT source = Rectangle(seeded, picture.Width, picture.Height),
               clip = Rectangle(seeded, picture.Width, picture.Height);
    const RECT deviceClip = Rectangle(seeded, 90, 70);
    RECT to = Rectangle(seeded, 90, 70);
    if (seeded.Below(2) == 0) to.right = to.left + picture.Width, to.bottom = to.top + picture.Height;
    if (seeded.Below(8) == 0) std::swap(to.top, to.bottom);
    const bool isPart = seeded.Below(3) == 0, isCut = seeded.Below(3) == 0, isClipped = seeded.Below(3) == 0;
    digest.Add(Z_PaintDC(device.Context, &picture, isPart ? &source : nullptr, isCut ? &clip : nullptr, &to,
                         isClipped ? &deviceClip : nullptr, 0x00CC0020));
    Z_SetDisplayMode(0xFFFFFFFF, before);
    const std::vector<uint32_t> pixels = device.Pixels();
    digest.Add(pixels.data(), pixels.size() * sizeof(uint32_t));
}

constexpr Family Families[] = {{"paint-table", 300, TableCase}, {"paint", 1500, PaintCase}};

} // namespace

std::span<const Family> PaintFamilies() {
    return Families;
}

} // namespace zkr::test
