// A screen on memory of the host's own for the time of a scope. With up to 8 bits it is a palette display;
// entry i of its palette is (i, 255 - i, 7).
#pragma once

#include "colour/palettes/reference_palettes.h"
#include "zkr13n/surface.h"

#include <gtest/gtest.h>

namespace zkr::test {

struct Screen {
    Screen(int bits, int staticColours) {
        for (unsigned i = 0; i < 256; ++i)
            Colours[i] = EntryOf(i, 255 - i, 7);
        const bool hasPalette = bits <= 8;
        const SurfaceDescription description = {sizeof description,
                                                1,
                                                1,
                                                bits,
                                                4,
                                                0,
                                                Pixels,
                                                hasPalette ? Colours : nullptr,
                                                hasPalette ? 256 : 0,
                                                staticColours};
        EXPECT_EQ(Z_CreateSurface(&description, &Context), Z_SUCCESS);
        EXPECT_EQ(Z_SetScreenSurface(Context), Z_SUCCESS);
    }
    ~Screen() { Z_DeleteSurface(Context); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    HDC Context = nullptr;
    uint8_t Pixels[4] = {};
    RGBQUAD Colours[256];
};

} // namespace zkr::test
