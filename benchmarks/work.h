// What the benchmarks are made of: a work is something that the library does, a peer another library's way of
// doing the same. Files of works and of peers add theirs before main() runs, so that a peer that is not
// installed is simply not compiled.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

using Body = std::function<void()>;
using Quality = std::function<double()>; // of a result, in decibels against the photograph

struct Peer {
    std::string Name;
    double RatioToReach;    // peer's time / ours
    Body Run;               // none where only the quality counts
    double Share = 1;       // the part of the work that Run does; its time is divided by this
    bool Elsewhere = false; // runs in another process, so that only the clock on the wall knows its time
    Quality Decibels = {};
};

struct Work {
    std::string Name;
    size_t Pixels;
    size_t Bytes; // read and written, for the ratio to memcpy
    Body Run;
    Quality Decibels = {};
    bool Elsewhere = false; // as for a peer
};

// Works are reported in the order of their numbers.
void AddWork(int number, Work work);
void AddPeer(int number, Peer peer);

// Runs everything once and keeps the compiler from leaving anything out.
void Touch(const void* data);

// For namespace-scope registration: bench::Adds adds([] { ... });
struct Adds {
    template <typename F> explicit Adds(F&& f) { f(); }
};

// The numbers of the works; a peer names the work that it competes with by these.
enum WorkNumber {
    PutRow,
    GetRow,
    PutRowSmall,
    GetRowSmall,
    PutRowUser,
    GetRowUser,
    PutRowTile,
    GetRowTile,
    GetColourStrips,
    PutColourStrips,
    GetBitonalStrips,
    PutBitonalStrips,
    Swap24,
    From24To32,
    From32To24,
    From24ToGray,
    From24To16,
    From16To24,
    FromGrayTo24,
    FromGray16To8,
    From24To48,
    From48To24,
    FromPaletteTo24,
    FromPaletteTo32,
    From1To8,
    From1To24,
    From24ToPalette,
    MatchTable,
    Fill24,
    Clear24,
    CopyRect24,
    ShiftPage,
    OddDepths,      // and what follows: 1000 + depth * 2 + direction
    Dithers = 1900, // and what follows: the number of a DitherWork
    FreshMemory = 2000,
    PageToRuns = 2100,
    RunsToPage,
    FlipRuns,
    MirrorRuns,
    ColourCount = 2300,
    GrayScale24,
    RgbToHsv,
    HsvToRgb,
    RgbToLuma,
    Threads = 9000
};

// Works of dithering, of the photograph in 24 bits.
enum DitherWork {
    BitonalFloydSteinberg = Dithers,
    PaletteFloydSteinberg,
    LinesFloydSteinberg,
    PaletteStucki,
    PaletteBurkes,
    PaletteSierra,
    PaletteStevensonArce,
    PaletteJarvis,
    BitonalOrdered,
    FixedOrdered,
    Optimised, // with a palette of the photograph's own
    OptimisedDiffused,
    OptimisedPalette // which is all that is made
};

} // namespace bench
