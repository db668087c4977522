// The display's own palette, read from the screen as it stands at the moment of the call.
#include "colour/palettes/system_palette.h"

#include "platform/graphics.h"
#include "zkr13n/palettes.h"

#include <algorithm>

namespace zkr {

namespace {

// What a palette display shows; no entries on any other.
struct SystemPalette {
    SystemPalette() {
        const HDC screen = platform::GetDC(nullptr);
        if (screen == nullptr) return;
        if ((platform::GetDeviceCaps(screen, RASTERCAPS) & RC_PALETTE) != 0) {
            const int size = std::clamp(platform::GetDeviceCaps(screen, SIZEPALETTE), 0, 256);
            Count = std::min(
                platform::GetSystemPaletteEntries(screen, 0, static_cast<platform::UINT>(size), Entries),
                static_cast<platform::UINT>(size));
            StaticCount = static_cast<uint32_t>(std::max(platform::GetDeviceCaps(screen, NUMRESERVED), 0));
        }
        platform::ReleaseDC(nullptr, screen);
    }
    RGBQUAD Quad(uint32_t i, uint8_t reserved) const {
        return {Entries[i].peBlue, Entries[i].peGreen, Entries[i].peRed, reserved};
    }
    uint32_t Count = 0;
    uint32_t StaticCount = 0; // entries that the display keeps for itself
    platform::PALETTEENTRY Entries[256];
};

} // namespace

uint32_t GetStaticColors(RGBQUAD* colours, uint32_t wanted) {
    const SystemPalette system;
    const uint32_t count = std::min({wanted, system.StaticCount, system.Count});
    const uint32_t front = count / 2;
    for (uint32_t i = 0; i < front; ++i)
        colours[i] = system.Quad(i, 0);
    for (uint32_t i = 1; i <= count - front; ++i)
        colours[wanted - i] = system.Quad(system.Count - i, 0);
    return count;
}

} // namespace zkr

HPALETTE Z_CALL Z_CreateSystemPalette(void) {
    const zkr::SystemPalette system;
    RGBQUAD entries[256];
    for (uint32_t i = 0; i < system.Count; ++i)
        entries[i] = system.Quad(i, system.Entries[i].peFlags);
    return Z_CreatePalette(entries, system.Count);
}
