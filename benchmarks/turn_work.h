// The works of flips, turns, rotation and shear.
#pragma once

namespace bench {

enum TurnWork {
    Turn8 = 2500,
    Turn24,
    Turn32,
    Turn48,
    TurnPage,
    TurnRunsOfPage,
    HalfTurnPage,
    MirrorPage,
    FlipRows24,
    MirrorRows24,
    HalfTurn24,
    Rotate24Nearest,
    Rotate24Linear,
    Rotate24Cubic,
    Rotate48Linear,
    RotatePage,
    ShearRowsPage,
    ShearColumnsPage,
    ShearRows24
};

// Clockwise.
inline constexpr int RotationDegrees = 30;

// The top goes to the right.
inline constexpr int ShearDegrees = 10;

} // namespace bench
