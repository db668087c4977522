// A picture as single pixels, for slow and plain references: read from a bitmap of any storage class, moved pixel by
// pixel, and compared with another one.
#pragma once

#include "core/test_bitmaps.h"
#include "support/pixel_bits.h"
#include "zkr13n/bitmap.h"

#include <cstdint>
#include <vector>

namespace zkr::test {

struct Picture {
    int Width = 0, Height = 0;
    std::vector<uint64_t> Pixels;

    bool operator==(const Picture&) const = default;

    uint64_t At(int x, int y) const { return Pixels[static_cast<size_t>(y * Width + x)]; }
    void Set(int x, int y, uint64_t pixel) { Pixels[static_cast<size_t>(y * Width + x)] = pixel; }

    // Of the pixels that from(x, y) gives.
    template <typename From> static Picture Made(int width, int height, From from) {
        Picture picture{width, height, {}};
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                picture.Pixels.push_back(from(x, y));
        return picture;
    }

    static Picture Of(BitmapHandle& bitmap) {
        const int32_t locked = Z_LockBitmap(&bitmap);
        const Bytes rows = Rows(bitmap);
        Z_UnlockBitmap(&bitmap, locked);
        return Made(bitmap.Width, bitmap.Height, [&](int x, int y) {
            return ReadPixel(rows.data() + static_cast<size_t>(y) * bitmap.BytesPerLine, bitmap.BitsPerPixel,
                             x);
        });
    }

    Picture Flipped() const {
        return Made(Width, Height, [this](int x, int y) { return At(x, Height - 1 - y); });
    }
    Picture Reversed() const {
        return Made(Width, Height, [this](int x, int y) { return At(Width - 1 - x, y); });
    }
    Picture TurnedClockwise() const {
        return Made(Height, Width, [this](int x, int y) { return At(y, Height - 1 - x); });
    }
    Picture Turned(int quarters) const {
        Picture picture = *this;
        for (int i = 0; i < quarters; ++i)
            picture = picture.TurnedClockwise();
        return picture;
    }
    // What storage in a view shows.
    Picture Seen(int32_t view) const {
        switch (view) {
        case 1: return Reversed();
        case 2: return Flipped();
        case 3: return Turned(2);
        case 4: return Turned(1);
        case 5: return Flipped().Turned(1);
        case 7: return Flipped().Turned(3);
        case 8: return Turned(3);
        default: return *this;
        }
    }
    // What a view shows, as it is stored.
    Picture Stored(int32_t view) const { return Seen(view == 4 ? 8 : view == 8 ? 4 : view); }
};

inline constexpr int32_t AllViews[] = {0, 1, 2, 3, 4, 5, 7, 8};
inline constexpr int32_t AllDepths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};

inline void PrintTo(const Picture& picture, std::ostream* out) {
    *out << picture.Width << " x " << picture.Height;
    for (int y = 0; y < picture.Height && y < 16; ++y) {
        *out << '\n' << std::hex;
        for (int x = 0; x < picture.Width && x < 40; ++x)
            *out << picture.At(x, y) << ' ';
    }
    *out << std::dec;
}

// Strips at the depths that have them, too.
inline std::vector<Storage> GeometryStorages(int32_t bits) {
    std::vector<Storage> storages = AllStorages();
    if (bits == 1 || bits == 24) storages.push_back({"strips", MemorySuperCompressed});
    return storages;
}

} // namespace zkr::test
