// The kernels of the warp, composed of the forms of pixels.
#include "geometry/kernels/warp_kernels.h"

#include "geometry/kernels/pixel_forms.h"
#include "kernels/family.h"
#if defined(__AVX2__)
#include "geometry/kernels/warp_avx2.h"
#endif

namespace zkr::kernels {
namespace {

struct Place {
    double U;
    double V;
};

inline Place Map(const WarpMapping& mapping, double x) {
    const double w = (x * mapping.XFactor[2] + mapping.YPart[2]) + mapping.Constant[2];
    return {((x * mapping.XFactor[0] + mapping.YPart[0]) + mapping.Constant[0]) / w,
            ((x * mapping.XFactor[1] + mapping.YPart[1]) + mapping.Constant[1]) / w};
}

// Of a value from -2 on that an int32_t holds.
inline int32_t Floor(double value) {
    const auto whole = static_cast<int32_t>(value);
    return whole - (static_cast<double>(whole) > value ? 1 : 0);
}

// The ranges are tested before any value becomes an integer; a place that is no number is outside.
bool LocateEachNearest(const WarpMapping& mapping, const WarpSource& source, int32_t x, WarpPiece& piece) {
    const double width = source.Width, height = source.Height;
    int32_t hits = 0;
    for (size_t i = 0; i < piece.Pixels; ++i) {
        const Place place = Map(mapping, x + static_cast<int32_t>(i));
        const double column = (width - 1) * place.U + 0.5;
        const double row = (height - 1) * place.V + 0.5;
        const bool inside = (column >= 0) & (column < width) & (row >= 0) & (row < height);
        piece.Column[i] = static_cast<int32_t>(inside ? column : 0);
        piece.Row[i] = inside ? static_cast<int32_t>(inside ? row : 0) : WarpPiece::Outside;
        hits |= inside ? 1 : 0;
    }
    return hits != 0;
}

bool LocateEachAround(const WarpMapping& mapping, const WarpSource& source, int32_t x, WarpPiece& piece) {
    const double width = source.Width, height = source.Height, left = source.Left, top = source.Top;
    double columns[WarpPiecePixels], rows[WarpPiecePixels];
    int32_t hits = 0;
    for (size_t i = 0; i < piece.Pixels; ++i) {
        const Place place = Map(mapping, x + static_cast<int32_t>(i));
        const double column = (width - 1) * place.U + left;
        const double row = (height - 1) * place.V + top;
        const bool inside =
            (column >= left - 1) & (column < left + width) & (row >= top - 1) & (row < top + height);
        columns[i] = inside ? column : left;
        rows[i] = inside ? row : top;
        piece.Row[i] = inside ? 0 : WarpPiece::Outside;
        hits |= inside ? 1 : 0;
    }
    if (hits == 0) return false;
    for (size_t i = 0; i < piece.Pixels; ++i) {
        const int32_t column = Floor(columns[i]), row = Floor(rows[i]);
        const double tx = columns[i] - column, ty = rows[i] - row;
        piece.Column[i] = column - source.Left;
        piece.Row[i] |= piece.Row[i] == 0 ? row - source.Top : 0;
        piece.Weight[0][i] = (1 - tx) * (1 - ty);
        piece.Weight[1][i] = tx * (1 - ty);
        piece.Weight[2][i] = (1 - tx) * ty;
        piece.Weight[3][i] = tx * ty;
    }
    return true;
}

void Begin(const WarpMapping& mapping, int32_t x, WarpPiece& piece) {
    piece.Mapping = &mapping;
    piece.X = x;
    piece.IsInner = false;
}

bool LocateNearest(const WarpMapping& mapping, const WarpSource& source, int32_t x, WarpPiece& piece) {
    Begin(mapping, x, piece);
#if defined(__AVX2__)
    piece.IsInner = piece.Pixels == WarpPiecePixels && FollowNearest(mapping, source, x, piece);
    if (piece.IsInner) return true;
#endif
    return LocateEachNearest(mapping, source, x, piece);
}

bool LocateAround(const WarpMapping& mapping, const WarpSource& source, int32_t x, WarpPiece& piece) {
    Begin(mapping, x, piece);
    return LocateEachAround(mapping, source, x, piece);
}

#if defined(__AVX2__)
// For kernels that draw inner pieces by their course.
bool LocateAroundClosely(const WarpMapping& mapping, const WarpSource& source, int32_t x, WarpPiece& piece) {
    Begin(mapping, x, piece);
    piece.IsInner = piece.Pixels == WarpPiecePixels && FollowAround(mapping, source, x, piece);
    return piece.IsInner || LocateEachAround(mapping, source, x, piece);
}
#endif

template <class Copier>
void DrawNearest(const WarpSource& source, const WarpPiece& piece, uint8_t* target, size_t x) {
    if constexpr (requires { Copier::CopyWider(target, x, target, x); }) {
        if (piece.IsInner) {
            constexpr size_t last = WarpPiecePixels - 1;
            for (size_t i = 0; i < last; ++i)
                Copier::CopyWider(source.First + piece.Place[i], 0, target, x + i);
            Copier::Copy(source.First + piece.Place[last], 0, target, x + last);
            return;
        }
    }
    for (size_t i = 0; i < piece.Pixels; ++i) {
        if (piece.Row[i] == WarpPiece::Outside) continue;
        Copier::Copy(source.Rows[piece.Row[i]], static_cast<size_t>(source.Left + piece.Column[i]), target,
                     x + i);
    }
}

template <class Packing> struct ByValue {
    static void Copy(const uint8_t* from, size_t fromX, uint8_t* to, size_t toX) {
        Packing::Put(to, toX, Packing::Get(from, fromX));
    }
};

// A pixel and the one to its right; hasRoom tells that there is a third.
template <class Form>
void LoadPair(const uint8_t* row, size_t x, bool hasRoom, typename Form::Values& first,
              typename Form::Values& second) {
    if constexpr (requires { Form::LoadPair(row, x, hasRoom, first, second); }) {
        Form::LoadPair(row, x, hasRoom, first, second);
    } else {
        first = Form::Load(row, x);
        second = Form::Load(row, x + 1);
    }
}

// Draws a pixel over the one at x. Where a sample lies outside the rectangle, the pixel that is drawn over stands for it.
template <class Form>
void BlendPixel(const WarpSource& source, int32_t firstColumn, int32_t firstRow, const double (&weight)[4],
                uint8_t* target, size_t x) {
    const auto width = static_cast<uint32_t>(source.Width), height = static_cast<uint32_t>(source.Height);
    const auto column = static_cast<uint32_t>(firstColumn), row = static_cast<uint32_t>(firstRow);
    const size_t at = static_cast<size_t>(source.Left) + column;
    typename Form::Values sample[4];
    if (column + 1 < width && row + 1 < height && column + 1 != 0 && row + 1 != 0) [[likely]] {
        const bool hasRoom = column + 2 < width;
        LoadPair<Form>(source.Rows[row], at, hasRoom, sample[0], sample[1]);
        LoadPair<Form>(source.Rows[row + 1], at, hasRoom, sample[2], sample[3]);
    } else {
        for (uint32_t k = 0; k < 4; ++k) {
            const uint32_t sampleColumn = column + (k & 1), sampleRow = row + (k >> 1);
            sample[k] =
                sampleColumn < width && sampleRow < height
                    ? Form::Load(source.Rows[sampleRow], static_cast<size_t>(source.Left) + sampleColumn)
                    : Form::Load(target, x);
        }
    }
    Form::Store(target, x,
                sample[0]
                    .Times(weight[0])
                    .Plus(sample[1].Times(weight[1]))
                    .Plus(sample[2].Times(weight[2]))
                    .Plus(sample[3].Times(weight[3])));
}

template <class Form>
void DrawBlend(const WarpSource& source, const WarpPiece& piece, uint8_t* target, size_t x) {
    for (size_t i = 0; i < piece.Pixels; ++i) {
        if (piece.Row[i] == WarpPiece::Outside) continue;
        const double weight[4] = {piece.Weight[0][i], piece.Weight[1][i], piece.Weight[2][i],
                                  piece.Weight[3][i]};
        BlendPixel<Form>(source, piece.Column[i], piece.Row[i], weight, target, x + i);
    }
}

#if defined(__AVX2__)
// Channels of a byte.
template <size_t channels>
void DrawBlendClosely(const WarpSource& source, const WarpPiece& piece, uint8_t* target, size_t x) {
    using Form = LanesForm<uint8_t, channels>;
    if (!piece.IsInner) return DrawBlend<Form>(source, piece, target, x);
    BlendCourse<channels>(source, piece, target + x * channels, [&](size_t i) {
        const Place place = Map(*piece.Mapping, piece.X + static_cast<int32_t>(i));
        const double column = (source.Width - 1.0) * place.U + source.Left;
        const double row = (source.Height - 1.0) * place.V + source.Top;
        const int32_t firstColumn = Floor(column), firstRow = Floor(row);
        const double tx = column - firstColumn, ty = row - firstRow;
        const double weight[4] = {(1 - tx) * (1 - ty), tx * (1 - ty), (1 - tx) * ty, tx * ty};
        BlendPixel<Form>(source, firstColumn - source.Left, firstRow - source.Top, weight, target, x + i);
    });
}
#endif

#if defined(__AVX2__)
template <typename Channel, size_t channels> using ColourForm = LanesForm<Channel, channels>;
#else
template <typename Channel, size_t channels> using ColourForm = ChannelsForm<Channel, channels>;
#endif

constexpr WarpKernels MakeKernels() {
    WarpKernels made = {};
    made.Nearest = LocateNearest;
    made.Around = LocateAround;
    made.AroundBytes = LocateAround;
    made.Copy[1] = DrawNearest<ByValue<PackedBits<1>>>;
    made.Copy[2] = DrawNearest<ByValue<PackedBits<2>>>;
    made.Copy[3] = DrawNearest<ByValue<PackedBits<3>>>;
    made.Copy[4] = DrawNearest<ByValue<PackedBits<4>>>;
    made.Copy[5] = DrawNearest<ByValue<PackedBits<5>>>;
    made.Copy[6] = DrawNearest<ByValue<PackedBits<6>>>;
    made.Copy[7] = DrawNearest<ByValue<PackedBits<7>>>;
    made.Copy[8] = DrawNearest<Wide<1>>;
    made.Copy[12] = DrawNearest<ByValue<Pairs12>>;
    made.Copy[16] = DrawNearest<Wide<2>>;
    made.Copy[24] = DrawNearest<Wide<3>>;
    made.Copy[32] = DrawNearest<Wide<4>>;
    made.Copy[48] = DrawNearest<Wide<6>>;
    made.Copy[64] = DrawNearest<Wide<8>>;
    made.Blend[1] = DrawBlend<BitForm>;
    made.Blend[8] = DrawBlend<ChannelsForm<uint8_t, 1>>;
    made.Blend[12] = DrawBlend<Pair12Form>;
    made.Blend[16] = DrawBlend<ChannelsForm<uint16_t, 1>>;
    made.Blend[24] = DrawBlend<ColourForm<uint8_t, 3>>;
    made.Blend[32] = DrawBlend<ColourForm<uint8_t, 4>>;
    made.Blend[48] = DrawBlend<ColourForm<uint16_t, 3>>;
    made.Blend[64] = DrawBlend<ColourForm<uint16_t, 4>>;
    made.BlendColour16 = DrawBlend<Colour16Form>;
#if defined(__AVX2__)
    made.AroundBytes = LocateAroundClosely;
    made.Blend[24] = DrawBlendClosely<3>;
    made.Blend[32] = DrawBlendClosely<4>;
#endif
    return made;
}

} // namespace

template <> constinit const WarpKernels Compiled<WarpKernels, ThisSet>::Table = MakeKernels();

} // namespace zkr::kernels
