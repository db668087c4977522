// Parity cases of views, flips, turns, rotation, shear and warp.
#include "parity/subject.h"

#include "zkr13n/flip.h"
#include "zkr13n/rotate.h"
#include "zkr13n/shear.h"
#include "zkr13n/views.h"
#include "zkr13n/warp.h"

#include <algorithm>
#include <vector>

namespace zkr::test {
namespace {

void ViewsCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    const auto view = static_cast<uint32_t>(seeded.Below(10));
    int x = seeded.Between(-20, 220), y = seeded.Between(-20, 60);
    RECT rectangle = {x, y, x + seeded.Below(50), y + seeded.Below(50)};
    digest.Add(Z_PointFromBitmap(&picture, view, &x, &y));
    digest.Add(Z_RectToBitmap(&picture, view, &rectangle));
    for (const int32_t number :
         {x, y, static_cast<int32_t>(rectangle.left), static_cast<int32_t>(rectangle.top),
          static_cast<int32_t>(rectangle.right), static_cast<int32_t>(rectangle.bottom)})
        digest.Add(number);
    digest.Add(seeded.Below(2) ? Z_FlipBitmap(&picture) : Z_ReverseBitmap(&picture));
    AddPixels(digest, picture);
    digest.Add(Z_ChangeBitmapViewPerspective(nullptr, &picture, static_cast<int32_t>(view)));
    AddPixels(digest, picture);
}

void RotateCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    const bool exact = seeded.Below(3) == 0;
    const int angle = exact ? seeded.Between(-4, 4) * 9000 : static_cast<int>(seeded.Next());
    picture.XResolution = seeded.Between(-3, 600), picture.YResolution = seeded.Between(-3, 600);
    digest.Add(Z_RotateBitmap(&picture, angle, static_cast<uint32_t>(seeded.Below(8)),
                              static_cast<uint32_t>(seeded.Next()) & 0x05FFFFFF));
    AddPixels(digest, picture);
    digest.Add(picture.XResolution);
    digest.Add(picture.YResolution);
}

void BufferCase(Seeded& seeded, Digest& digest) {
    const auto bits = static_cast<uint32_t>(Pick(seeded, Depths));
    const auto width = static_cast<uint32_t>(seeded.Between(1, 200)),
               height = static_cast<uint32_t>(seeded.Between(1, 150));
    std::vector<uint8_t> source(200 * 160 * 8), target(200 * 160 * 8);
    FillRandom(seeded, source.data(), source.size());
    digest.Add(seeded.Below(3) == 0
                   ? Z_RotateBuffer180(source.data(), target.data(), width, height, bits)
                   : Z_RotateBuffer90(source.data(), target.data(), seeded.Below(2), width, height, bits));
    digest.Add(target.data(), target.size());
}

void ShearCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    const int angle = seeded.Below(4) == 0 ? static_cast<int>(seeded.Next()) : seeded.Between(-8999, 8999);
    digest.Add(
        Z_ShearBitmap(&picture, angle, seeded.Below(2), static_cast<uint32_t>(seeded.Next()) & 0x05FFFFFF));
    AddPixels(digest, picture);
}

// Onto itself, so that palettes and depths agree.
void WarpCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    const int across = std::max(picture.Width, picture.Height);
    WarpPoints points;
    POINT* const corners = &points.TopLeft;
    for (int i = 0; i < 4; ++i)
        corners[i] = {seeded.Below(across / 2 + 1) + (i == 1 || i == 2 ? across / 2 : 0),
                      seeded.Below(across / 4 + 1) + (i >= 2 ? across / 4 : 0)};
    const int left = seeded.Below(across), top = seeded.Below(across);
    const uint32_t flags = WARP_REQUIRED | static_cast<uint32_t>(seeded.Below(2));
    digest.Add(Z_CombineBitmapWarp(&picture, &points, &picture, left, top, seeded.Between(1, across),
                                   seeded.Between(1, across), flags));
    AddPixels(digest, picture);
}

constexpr Family Families[] = {{"views", 600, ViewsCase},
                               {"rotate", 1500, RotateCase},
                               {"buffer-turns", 200, BufferCase},
                               {"shear", 500, ShearCase},
                               {"warp", 3000, WarpCase}};

} // namespace

std::span<const Family> TurnFamilies() {
    return Families;
}

} // namespace zkr::test
