// The kernels of palette_match.h, on vectors of eight 32-bit lanes that the compiler maps to what the
// instruction set has.
#include "colour/kernels/palette_match.h"

#include "colour/kernels/colour_class.h"
#include "colour/kernels/squares.h"
#include "kernels/family.h"

#include <cstring>

#if defined(__AVX2__) || defined(__SSE2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

// The widest vectors that the set has whole; wider ones would be taken apart lane by lane.
#if defined(__AVX2__)
constexpr int32_t LaneCount = 8;
#else
constexpr int32_t LaneCount = 4;
#endif
typedef int32_t Lanes __attribute__((vector_size(LaneCount * 4)));
typedef uint32_t UnsignedLanes __attribute__((vector_size(LaneCount * 4)));
typedef uint8_t ByteLanes __attribute__((vector_size(LaneCount)));
typedef uint8_t ManyBytes __attribute__((vector_size(LaneCount * 4)));
typedef uint16_t HalfLanes __attribute__((vector_size(LaneCount * 4)));

constexpr int32_t NoDistance = 0x7FFFFFFF;

// One bit a lane, lane 0 lowest; the lanes are 0 or -1.
inline uint32_t LaneBits(Lanes mask) {
#if defined(__AVX2__)
    return static_cast<uint32_t>(_mm256_movemask_ps(reinterpret_cast<__m256>(mask)));
#elif defined(__SSE2__)
    return static_cast<uint32_t>(_mm_movemask_ps(reinterpret_cast<__m128>(mask)));
#else
    uint32_t bits = 0;
    for (int32_t lane = 0; lane < LaneCount; ++lane)
        bits |= (mask[lane] != 0 ? 1u : 0u) << lane;
    return bits;
#endif
}

inline int32_t LeastLane(Lanes lanes) {
    int32_t values[LaneCount];
    std::memcpy(values, &lanes, sizeof values);
    int32_t least = values[0];
    for (const int32_t value : values)
        least = value < least ? value : least;
    return least;
}

inline Lanes Load(const void* bytes) {
    Lanes lanes;
    std::memcpy(&lanes, bytes, sizeof lanes);
    return lanes;
}

inline int32_t Magnitude(int32_t value) {
    return value < 0 ? -value : value;
}

// A colour that is looked for.
struct Target {
    Target(int32_t red, int32_t green, int32_t blue) : Red(red), Green(green), Blue(blue) {}

    int32_t DistanceTo(const RGBQUAD& entry) const {
        return static_cast<int32_t>(Squares[static_cast<size_t>(Magnitude(entry.rgbRed - Red))] +
                                    Squares[static_cast<size_t>(Magnitude(entry.rgbGreen - Green))] +
                                    Squares[static_cast<size_t>(Magnitude(entry.rgbBlue - Blue))]);
    }
    int32_t Class() const { return ColourClass(Red, Green, Blue); }

    int32_t Red;
    int32_t Green;
    int32_t Blue;
};

inline int32_t ClassOf(const RGBQUAD& entry) {
    return ColourClass(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
}

// Bytes of RGBQUADs as words of 16 bits: red and blue in one vector, green in another.
inline HalfLanes RedBlueWords(Lanes quads) {
    return reinterpret_cast<HalfLanes>(quads & 0x00FF00FF);
}
inline HalfLanes GreenWords(Lanes quads) {
    return reinterpret_cast<HalfLanes>(quads >> 8 & 0xFF);
}

// The square of a difference of bytes fits 16 bits without a sign, whatever the sign of the difference was.
inline Lanes SumOfSquares(HalfLanes redBlue, HalfLanes green) {
    const UnsignedLanes squaresOfTwo = reinterpret_cast<UnsignedLanes>(redBlue * redBlue);
    const UnsignedLanes squareOfOne = reinterpret_cast<UnsignedLanes>(green * green);
    return reinterpret_cast<Lanes>((squaresOfTwo & 0xFFFF) + (squaresOfTwo >> 16) + squareOfOne);
}

inline Lanes Distances(const RGBQUAD* entries, const Target& target) {
    const Lanes quads = Load(entries);
    return SumOfSquares(RedBlueWords(quads) -
                            reinterpret_cast<HalfLanes>(Lanes{} + (target.Red << 16 | target.Blue)),
                        GreenWords(quads) - reinterpret_cast<HalfLanes>(Lanes{} + target.Green));
}

struct Nearest {
    int32_t Index;
    int32_t Distance;
};

// Few entries: one after the other.
Nearest FindAmongFew(const RGBQUAD* palette, int32_t first, int32_t end, const Target& target, Nearest best) {
    for (int32_t i = first; i < end && best.Distance != 0; ++i) {
        const int32_t distance = target.DistanceTo(palette[i]);
        if (distance < best.Distance ||
            (distance == best.Distance && ClassOf(palette[i]) == target.Class())) {
            best = {i, distance};
        }
    }
    return best;
}

// Chunks of whole vectors: first the least distance, then, from the distances kept, the entries that have it.
constexpr int32_t ChunkEntries = 256;

Nearest FindInChunk(const RGBQUAD* palette, int32_t first, int32_t end, const Target& target, Nearest best) {
    Lanes distances[ChunkEntries / LaneCount];
    Lanes least = Lanes{} + best.Distance;
    Lanes* place = distances;
    for (int32_t i = first; i < end; i += LaneCount) {
        const Lanes distance = Distances(palette + i, target);
        if (const uint32_t exact = LaneBits(distance == 0)) return {i + __builtin_ctz(exact), 0};
        least = distance < least ? distance : least;
        *place++ = distance;
    }
    const int32_t leastDistance = LeastLane(least);
    const int32_t targetClass = target.Class();
    place = distances;
    for (int32_t i = first; i < end; i += LaneCount) {
        for (uint32_t nearest = LaneBits(*place++ == leastDistance); nearest != 0; nearest &= nearest - 1) {
            const int32_t index = i + __builtin_ctz(nearest);
            if (leastDistance < best.Distance || ClassOf(palette[index]) == targetClass) {
                best = {index, leastDistance};
            }
        }
    }
    return best;
}

bool IsColour(const RGBQUAD& entry, int32_t level) {
    return entry.rgbRed == level && entry.rgbGreen == level && entry.rgbBlue == level;
}

// The end of the palette that a black or white target goes to at once, or -1.
int32_t FindAtEnds(const RGBQUAD* palette, int32_t entries, const Target& target) {
    const int32_t last = entries - 1;
    if ((target.Red | target.Green | target.Blue) == 0) {
        return IsColour(palette[0], 0) ? 0 : IsColour(palette[last], 0) ? last : -1;
    }
    if ((target.Red & target.Green & target.Blue) == 255) {
        return IsColour(palette[last], 255) ? last : IsColour(palette[0], 255) ? 0 : -1;
    }
    return -1;
}

int32_t Find(const RGBQUAD* palette, int32_t entries, int32_t red, int32_t green, int32_t blue) {
    if (entries <= 0) return -1;
    const Target target(red, green, blue);
    if (target.DistanceTo(palette[0]) == 0 && (red | green | blue) != 0 && (red & green & blue) != 255)
        return 0;
    if (const int32_t end = FindAtEnds(palette, entries, target); end >= 0) return end;

    Nearest best = {-1, NoDistance};
    const int32_t inVectors = entries - entries % LaneCount;
    for (int32_t first = 0; first < inVectors && best.Distance != 0; first += ChunkEntries) {
        const int32_t end = inVectors - first < ChunkEntries ? inVectors : first + ChunkEntries;
        best = FindInChunk(palette, first, end, target, best);
    }
    return FindAmongFew(palette, inVectors, entries, target, best).Index;
}

// The corners of a cube as vectors of bytes, against which entries are held.
struct CubeSpan {
    explicit CubeSpan(const CubeCorner& corner) {
        const int32_t low = corner.Red << 16 | corner.Green << 8 | corner.Blue;
        Low = reinterpret_cast<ManyBytes>(Lanes{} + low);
        High = reinterpret_cast<ManyBytes>(Lanes{} + (low + corner.Step * (CubeSide - 1) * 0x010101));
    }
    // The squared distances from entries to the nearest point of the cube and to its farthest.
    Lanes Nearest(Lanes entries) const {
        const ManyBytes channels = reinterpret_cast<ManyBytes>(entries);
        return SumOfSquares(PositivePart(Low, channels) | PositivePart(channels, High));
    }
    Lanes Farthest(Lanes entries) const {
        const ManyBytes channels = reinterpret_cast<ManyBytes>(entries);
        return SumOfSquares(Greater(PositivePart(channels, Low), PositivePart(High, channels)));
    }

  private:
    static ManyBytes Greater(ManyBytes a, ManyBytes b) { return a > b ? a : b; }
    static ManyBytes PositivePart(ManyBytes a, ManyBytes b) { return Greater(a, b) - b; }
    static Lanes SumOfSquares(ManyBytes differences) {
        const Lanes quads = reinterpret_cast<Lanes>(differences);
        return kernels::SumOfSquares(RedBlueWords(quads), GreenWords(quads));
    }
    ManyBytes Low;
    ManyBytes High;
};

// The entries that can win anywhere in a cube, in their order. Some entry is nowhere farther than the least
// of all farthest distances, so an entry that is nowhere as near can win nowhere.
struct Candidates {
    Candidates(const RGBQUAD* palette, int32_t entries, const CubeCorner& corner) : Count(0) {
        // Whole vectors, the last one filled up with repetitions of the last entry.
        RGBQUAD padded[256];
        const size_t bytes = static_cast<size_t>(entries) * sizeof(RGBQUAD);
        std::memcpy(padded, palette, bytes);
        for (int32_t i = entries; i % LaneCount != 0; ++i)
            padded[i] = palette[entries - 1];

        const CubeSpan cube(corner);
        Lanes nearest[256 / LaneCount];
        Lanes bound = Lanes{} + NoDistance;
        for (int32_t i = 0; i < entries; i += LaneCount) {
            const Lanes quads = Load(padded + i);
            nearest[i / LaneCount] = cube.Nearest(quads);
            const Lanes farthest = cube.Farthest(quads);
            bound = farthest < bound ? farthest : bound;
        }
        bound = Lanes{} + LeastLane(bound);
        for (int32_t i = 0; i < entries; i += LaneCount) {
            for (uint32_t close = LaneBits(nearest[i / LaneCount] <= bound); close != 0; close &= close - 1) {
                Index[Count++] = static_cast<uint8_t>(i + __builtin_ctz(close));
            }
        }
        while (Index[Count - 1] >= entries)
            --Count;
    }
    int32_t Count;
    uint8_t Index[256];
};

// What a candidate adds to the distance at each step along each side of the cube.
struct CandidateTerms {
    CandidateTerms() = default;
    CandidateTerms(const RGBQUAD& entry, int32_t index, const CubeCorner& corner)
        : Index(index), Class(ClassOf(entry)) {
        for (int32_t i = 0; i < CubeSide; ++i) {
            const int32_t red = corner.Red + i * corner.Step - entry.rgbRed;
            const int32_t green = corner.Green + i * corner.Step - entry.rgbGreen;
            const int32_t blue = corner.Blue + i * corner.Step - entry.rgbBlue;
            Red[i] = red * red;
            Green[i] = green * green;
            Blue[i] = blue * blue;
        }
    }
    int32_t Blue[CubeSide];
    int32_t Red[CubeSide];
    int32_t Green[CubeSide];
    int32_t Index;
    int32_t Class;
};

inline Lanes LaneNumbers() {
#if defined(__AVX2__)
    return Lanes{0, 1, 2, 3, 4, 5, 6, 7};
#else
    return Lanes{0, 1, 2, 3};
#endif
}

// ColourClass of colours that differ in blue alone.
inline Lanes ColourClasses(int32_t red, int32_t green, Lanes blue) {
    const Lanes above = green > red ? (blue < green) & 1 : Lanes{};
    const Lanes below = green < red ? (blue > green) & 2 : Lanes{};
    return above | below | ((blue > red) & 4);
}

// Ties at distance 0 are decided too late by the class rule: the first of the exact entries is to stay.
void KeepFirstExact(const RGBQUAD* palette, const Candidates& candidates, const CubeCorner& corner,
                    uint8_t* winners) {
    for (int32_t i = candidates.Count - 1; i >= 0; --i) {
        const RGBQUAD& entry = palette[candidates.Index[i]];
        const int32_t red = entry.rgbRed - corner.Red;
        const int32_t green = entry.rgbGreen - corner.Green;
        const int32_t blue = entry.rgbBlue - corner.Blue;
        const int32_t span = corner.Step * (CubeSide - 1);
        const bool inside =
            red >= 0 && red <= span && green >= 0 && green <= span && blue >= 0 && blue <= span;
        if (!inside || (red | green | blue) % corner.Step != 0) continue;
        winners[(red * 64 + green * 8 + blue) / corner.Step] = candidates.Index[i];
    }
}

// The winners along one line of a cube. The terms are in the order of their entries.
inline Lanes FindOnLine(const CandidateTerms* terms, int32_t count, int32_t r, int32_t g, int32_t b,
                        Lanes targetClasses) {
    Lanes least = Lanes{} + NoDistance;
    Lanes index = Lanes{};
    for (const CandidateTerms* term = terms; term != terms + count; ++term) {
        const Lanes distance = Load(term->Blue + b) + term->Green[g] + term->Red[r];
        const Lanes takes = (distance < least) | ((distance == least) & (targetClasses == term->Class));
        least = distance < least ? distance : least;
        index = takes ? Lanes{} + term->Index : index;
    }
    return index;
}

void FindAmong(const Candidates& candidates, const RGBQUAD* palette, const CubeCorner corner,
               uint8_t* winners) {
    CandidateTerms terms[256];
    for (int32_t i = 0; i < candidates.Count; ++i) {
        terms[i] = CandidateTerms(palette[candidates.Index[i]], candidates.Index[i], corner);
    }
    alignas(Lanes) int32_t wide[CubeColours]; // narrowed all at once
    int32_t* place = wide;
    for (int32_t r = 0; r < CubeSide; ++r) {
        for (int32_t g = 0; g < CubeSide; ++g) {
            for (int32_t b = 0; b < CubeSide; b += LaneCount) {
                const Lanes classes =
                    ColourClasses(corner.Red + r * corner.Step, corner.Green + g * corner.Step,
                                  (LaneNumbers() + b) * corner.Step + corner.Blue);
                const Lanes index = FindOnLine(terms, candidates.Count, r, g, b, classes);
                std::memcpy(place, &index, sizeof index);
                place += LaneCount;
            }
        }
    }
    for (int32_t i = 0; i < CubeColours; ++i)
        winners[i] = static_cast<uint8_t>(wide[i]);
    KeepFirstExact(palette, candidates, corner, winners);
}

void FindForCube(const RGBQUAD* palette, int32_t entries, const CubeCorner& corner, uint8_t* winners) {
    const Candidates candidates(palette, entries, corner);
    if (candidates.Count == 1) {
        std::memset(winners, candidates.Index[0], CubeColours);
        return;
    }
    FindAmong(candidates, palette, corner, winners);

    const int32_t top = corner.Step * (CubeSide - 1);
    if ((corner.Red | corner.Green | corner.Blue) == 0) {
        winners[0] = static_cast<uint8_t>(Find(palette, entries, 0, 0, 0));
    }
    if (((corner.Red + top) & (corner.Green + top) & (corner.Blue + top)) == 255) {
        winners[CubeColours - 1] = static_cast<uint8_t>(Find(palette, entries, 255, 255, 255));
    }
}

size_t LookUp(const uint8_t* quads, uint8_t* indices, size_t pixels, const uint16_t* blocks,
              const uint8_t* winners) {
    size_t done = 0;
    for (; pixels - done >= LaneCount; done += LaneCount) {
        const Lanes quad = Load(quads + done * 4);
        const Lanes cube = (quad >> 3 & 0x1F) | (quad >> 6 & 0x3E0) | (quad >> 9 & 0x7C00);
        const Lanes inside = (quad & 7) | (quad >> 5 & 0x38) | (quad >> 10 & 0x1C0);
        uint32_t block[LaneCount];
        uint32_t all = 0;
        for (int32_t lane = 0; lane < LaneCount; ++lane) {
            block[lane] = blocks[cube[lane]];
            all |= block[lane];
        }
        if (all > LastKnownCube) break;
        for (int32_t lane = 0; lane < LaneCount; ++lane) {
            indices[done + static_cast<size_t>(lane)] =
                winners[block[lane] * CubeColours + static_cast<uint32_t>(inside[lane])];
        }
    }
    return done;
}

} // namespace

template <> constinit const MatchKernels Compiled<MatchKernels, ThisSet>::Table = {Find, FindForCube, LookUp};

} // namespace zkr::kernels
