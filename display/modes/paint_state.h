// What painting keeps for each thread: the header and the colours of the block that is handed to a device, and the
// display mode. A thread has one, so that it paints one band at a time.
#pragma once

#include "platform/graphics.h"
#include "zkr13n/display_modes.h"

#include <array>
#include <cstdint>

namespace zkr {

// A header with its colours, as calls of the platform take it.
struct BlockHeader {
    static constexpr size_t Colours = 256;

    BITMAPINFOHEADER Header;
    // RGBQUADs, or for painting by index their first half as words of 16 bits.
    union {
        RGBQUAD Table[Colours];
        uint16_t Words[2 * Colours];
    };

    const platform::BITMAPINFO* AsInfo() const {
        return reinterpret_cast<const platform::BITMAPINFO*>(&Header);
    }
};
static_assert(sizeof(BlockHeader) == 266 * 4);

struct PaintState {
    static constexpr uint32_t FirstMode = DISPLAY_INDEXED | DISPLAY_DITHERED;

    BlockHeader Block{};
    BlockHeader PrinterBlock{}; // a copy that a printer's driver may keep across calls
    uint32_t Mode = FirstMode;

    constexpr PaintState() {
        Block.Header.biSize = sizeof Block.Header;
        Block.Header.biPlanes = 1;
        for (size_t i = 0; i < BlockHeader::Colours; ++i)
            Block.Table[i] = IdentityWords(i);
    }

    // Index i as word i.
    void WriteIdentityWords() {
        for (size_t i = 0; i < BlockHeader::Colours; ++i)
            Block.Words[i] = static_cast<uint16_t>(i);
    }

  private:
    // Words 2 i and 2 i + 1, low byte first.
    static constexpr RGBQUAD IdentityWords(size_t i) {
        if (i >= BlockHeader::Colours / 2) return {};
        return {static_cast<uint8_t>(2 * i), 0, static_cast<uint8_t>(2 * i + 1), 0};
    }
};

// The calling thread's state, or one that threads share which cannot have their own.
PaintState& CurrentPaintState();

} // namespace zkr
