// Which palette the flags of colour resolution ask for.
#pragma once

#include "zkr13n/color_resolution.h"

#include <cstdint>

namespace zkr {

enum class PaletteChoice : uint8_t { Optimized, Fixed, Cube, User, Invalid };

// The flags that play a part in the choice; a combination that stands for nothing is refused.
inline constexpr uint32_t ChoiceFlags =
    COLORRES_FIXED_PALETTE | COLORRES_OPTIMIZED_PALETTE | COLORRES_ORDER_BGR | COLORRES_SYSTEM_COLORS |
    COLORRES_USER_PALETTE | COLORRES_USE_MATCH_TABLE | COLORRES_CUBE_PALETTE | COLORRES_ORDER_GRAY |
    COLORRES_HANDLE_AS_USER | COLORRES_NO_MATCH_TABLE;

// Of a target of 1 to 8 bits. The cube takes 8, and a fixed palette stands in for it where it is asked for as well.
constexpr PaletteChoice ChoiceOf(uint32_t flags, int32_t bits) {
    constexpr uint32_t ofOptimized =
        COLORRES_OPTIMIZED_PALETTE | COLORRES_SYSTEM_COLORS | COLORRES_NO_MATCH_TABLE;
    const uint32_t choice = flags & ChoiceFlags;
    if ((choice & ~ofOptimized) == 0) return PaletteChoice::Optimized;
    switch (choice) {
    case COLORRES_FIXED_PALETTE: return PaletteChoice::Fixed;
    case COLORRES_FIXED_PALETTE | COLORRES_CUBE_PALETTE:
        return bits == 8 ? PaletteChoice::Cube : PaletteChoice::Fixed;
    case COLORRES_CUBE_PALETTE: return bits == 8 ? PaletteChoice::Cube : PaletteChoice::Invalid;
    case COLORRES_USER_PALETTE:
    case COLORRES_USER_PALETTE | COLORRES_USE_MATCH_TABLE: return PaletteChoice::User;
    default: return PaletteChoice::Invalid;
    }
}

} // namespace zkr
