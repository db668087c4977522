#include "combine_work.h"

#include "failure.h"

#include <cmath>
#include <vector>

namespace zkr::app {

void Combine(Bitmap& picture, Bitmap& other, const Combination& combination) {
    const auto& [flags, at] = combination;
    const auto meets = [](int start, int length, int size) {
        return start < size && int64_t{start} + length > 0;
    };
    if (!meets(at.x, other.Width(), picture.Width()) || !meets(at.y, other.Height(), picture.Height()))
        throw Failure(other.Name(), "at " + std::to_string(at.x) + "," + std::to_string(at.y) +
                                        " it lies beside the picture of " + SizeOf(picture));
    Check(Z_CombineBitmap(picture.Handle(), at.x, at.y, other.Width(), other.Height(), other.Handle(), 0, 0,
                          flags),
          picture.Name());
}

void Underlay(Bitmap& picture, Bitmap& texture, bool stretch) {
    Check(Z_UnderlayBitmap(picture.Handle(), texture.Handle(), stretch ? UNDERLAY_STRETCH : UNDERLAY_TILE),
          picture.Name());
}

Bitmap CanvasTexture(const std::string& name) {
    constexpr int threads = 8, thread = 8; // of the tile in each direction, and how wide one is
    constexpr int side = threads * thread;
    Bitmap texture(name, {.bits = 8, .palette = GrayPalette(8)}, side, side, Storage{});
    std::vector<uint8_t> row(texture.RowBytes());
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            // Threads go over and under one another by turns; each is a cylinder, lit from above.
            const bool isAcross = (x / thread + y / thread) % 2 == 0;
            const double place = (isAcross ? y : x) % thread + 0.5, along = (isAcross ? x : y) % thread + 0.5;
            const double round = std::cos((place / thread - 0.4) * 2.6);
            const double dips = std::sin(along / thread * 3.1416);
            row[static_cast<size_t>(x)] = static_cast<uint8_t>(88 + 46 * round + 20 * dips);
        }
        texture.PutRow(y, row.data());
    }
    return texture;
}

} // namespace zkr::app
