// Surfaces: pixels with their colours, of the host, of bitmaps and of patterns. A surface lives as long as
// anybody holds it; pixels of the host are let go as soon as the host deletes its surface.
#pragma once

#include "platform/portable/pixel_rows.h"
#include "platform/portable/ref.h"

#include <array>
#include <atomic>
#include <mutex>

namespace zkr::platform {

struct Surface : Pixels {
    constexpr Surface() { colours = table.data(); }
    constexpr Surface(int newWidth, int newHeight, int bits, bool neverShown = false) : Surface() {
        unseen = neverShown;
        width = newWidth;
        height = newHeight;
        bitsPerPixel = bits;
    }
    ~Surface() {
        if (release != nullptr) release(memory);
    }
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    void Hold() { references.fetch_add(1, std::memory_order_relaxed); }
    void Drop() {
        if (references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

    std::mutex mutex;       // guards the pixels, topRow and the colours; never taken before a context's
    bool unseen = false;    // for ever without pixels: nothing of it changes, and nobody takes its mutex
    UINT staticColours = 0; // above 0: a palette display
    std::array<PALETTEENTRY, 256> table{};
    void* memory = nullptr; // given to release in the end
    void (*release)(void*) = nullptr;
    std::atomic<uint32_t> references{1};
};

// A surface on zeroed memory of its own, of 2^n bits a pixel or 24; null, with the last error set, where memory
// is short or the size is none.
Surface* MakeSurface(int width, int height, int bitsPerPixel);

} // namespace zkr::platform
