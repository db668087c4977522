// A row's way through the source is cut where it enters and leaves the source, and where it comes so near to an edge
// that neighbours lie outside. The cuts are exact divisions; between them no pixel is tested.
#include "geometry/kernels/rotate_kernels.h"

#include "geometry/kernels/rotate_forms.h"
#include "kernels/family.h"

#include <algorithm>

namespace zkr::kernels {
namespace {

// Fields of 1 to 7 bits from the top of each byte; a byte in the result.
struct BitsForm {
    static constexpr size_t TargetBytes = 1;
};

inline const uint8_t* RowOf(const RotateSource& source, int32_t y) {
    return source.Source + y * source.Stride;
}

inline bool Holds(const RotateSource& source, int32_t x, int32_t y) {
    return x >= source.Left && x < source.Right && y >= source.Top && y < source.Bottom;
}

// ---- one pixel, wherever it lies ----

template <class Form>
inline void CopyPixel(const RotateSource& source, uint8_t* target, const uint8_t* row, int32_t x) {
    if constexpr (std::is_same_v<Form, BitsForm>) {
        const ptrdiff_t first = static_cast<ptrdiff_t>(x) * source.Bits;
        const auto bit = static_cast<int32_t>(first & 7);
        const uint8_t* const byte = row + (first >> 3);
        const bool crosses = bit + source.Bits > 8;
        const uint32_t pair = static_cast<uint32_t>(byte[0]) << 8 | (crosses ? byte[1] : 0u);
        *target = static_cast<uint8_t>(pair >> (16 - bit - source.Bits) & ((1u << source.Bits) - 1));
    } else {
        Form::Copy(target, row, x);
    }
}

template <class Form>
inline void ReadOrFill(const RotateSource& source, int32_t x, int32_t y, int32_t (&values)[Form::Channels]) {
    if (Holds(source, x, y))
        Form::Read(RowOf(source, y), x, values);
    else
        Form::Read(source.Fill, 0, values);
}

// Each axis moves the value towards the neighbour on the side of the fraction, in the row or column of the nearest
// pixel.
template <class Form>
inline void LinearPixel(const RotateSource& source, const RotatePosition& at, uint8_t* target) {
    int32_t value[Form::Channels], other[Form::Channels];
    Form::Read(RowOf(source, at.Y), at.X, value);
    const auto blend = [&](int32_t x, int32_t y, int32_t fraction) {
        if (fraction == 0) return;
        ReadOrFill<Form>(source, x, y, other);
        const int32_t distance = fraction < 0 ? -fraction : fraction;
        for (int32_t i = 0; i < Form::Channels; ++i)
            value[i] += (other[i] - value[i]) * distance / RotateUnit;
    };
    blend(at.X + (at.FractionX > 0 ? 1 : -1), at.Y, at.FractionX);
    blend(at.X, at.Y + (at.FractionY > 0 ? 1 : -1), at.FractionY);
    Form::Write(target, value);
}

// A spline through four samples, between the second and the third. The curvature at the third takes the sample itself
// where one would expect that at the second.
struct SplineWeights {
    float First, Second, FirstCurve, SecondCurve;

    explicit SplineWeights(int32_t fraction) {
        const float t = static_cast<float>(fraction) / static_cast<float>(RotateUnit);
        const float a = 1.0f - t;
        First = a;
        Second = t;
        FirstCurve = (a * a * a - a) / 6.0f;
        SecondCurve = (t * t * t - t) / 6.0f;
    }
};

inline int32_t SplineOf(const SplineWeights& weights, int32_t s0, int32_t s1, int32_t s2, int32_t s3,
                        int32_t most) {
    float m1 = static_cast<float>(s0 + s2 - 2 * s1) * 1.5f;
    float m2 = 0.0f;
    const int32_t e = s1 + s3 - 2 * s2;
    if (e != 0) {
        m2 = static_cast<float>(6 * e - s1) * 0.266667f;
        m1 = m1 - m2 / 4.0f;
    }
    const float value = weights.First * static_cast<float>(s1) + weights.Second * static_cast<float>(s2) +
                        weights.FirstCurve * m1 + weights.SecondCurve * m2 + 0.5f;
    const auto whole = static_cast<int32_t>(value);
    return whole < 0 ? 0 : whole > most ? most : whole;
}

template <class Form>
inline void CubicPixel(const RotateSource& source, const RotatePosition& at, uint8_t* target) {
    const int32_t left = at.X - (at.FractionX < 0 ? 1 : 0), top = at.Y - (at.FractionY < 0 ? 1 : 0);
    const SplineWeights across(at.FractionX + (at.FractionX < 0 ? RotateUnit : 0));
    const SplineWeights down(at.FractionY + (at.FractionY < 0 ? RotateUnit : 0));
    int32_t rows[4][Form::Channels];
    for (int32_t y = 0; y < 4; ++y) {
        int32_t s[4][Form::Channels];
        for (int32_t x = 0; x < 4; ++x)
            ReadOrFill<Form>(source, left - 1 + x, top - 1 + y, s[x]);
        for (int32_t i = 0; i < Form::Channels; ++i)
            rows[y][i] = SplineOf(across, s[0][i] << Form::Scale, s[1][i] << Form::Scale,
                                  s[2][i] << Form::Scale, s[3][i] << Form::Scale, Form::Most);
    }
    int32_t value[Form::Channels];
    for (int32_t i = 0; i < Form::Channels; ++i)
        value[i] = SplineOf(down, rows[0][i], rows[1][i], rows[2][i], rows[3][i], Form::Most) >> Form::Scale;
    Form::Write(target, value);
    if constexpr (std::is_same_v<Form, Colour16Form>) {
        uint32_t words = 0;
        for (int32_t y = 0; y < 2; ++y)
            for (int32_t x = 0; x < 2; ++x)
                words |= Holds(source, left + x, top + y) ? Form::Word(RowOf(source, top + y), left + x)
                                                          : Form::Word(source.Fill, 0);
        target[1] = static_cast<uint8_t>(target[1] | (words >> 8 & 0x80));
    }
}

template <class Form, RotateMethod method>
inline void AnyPixel(const RotateSource& source, const RotatePosition& at, uint8_t* target) {
    if (!Holds(source, at.X, at.Y))
        CopyPixel<Form>(source, target, source.Fill, 0);
    else if constexpr (method == RotateMethod::Linear)
        LinearPixel<Form>(source, at, target);
    else if constexpr (method == RotateMethod::Cubic)
        CubicPixel<Form>(source, at, target);
    else
        CopyPixel<Form>(source, target, RowOf(source, at.Y), at.X);
}

template <class Form, RotateMethod method>
void RotateRow(const RotateSource& source, RotatePosition& at, uint8_t* target, int32_t count) {
    for (; count > 0; --count, target += Form::TargetBytes) {
        AnyPixel<Form, method>(source, at, target);
        at.Step(source.StepX, source.StepY);
    }
}

// ---- the table ----

template <RotateMethod method> constexpr void FillRow(RotateKernels& all) {
    auto& row = all.Kernels[static_cast<size_t>(method)];
    const auto put = [&row](RotateForm form, RotateKernel kernel) {
        row[static_cast<size_t>(form)] = kernel;
    };
    put(RotateForm::Bits, RotateRow<BitsForm, RotateMethod::Nearest>);
    put(RotateForm::Gray8, RotateRow<WholeForm<uint8_t, 1>, method>);
    put(RotateForm::Gray12, RotateRow<Gray12Form, method>);
    put(RotateForm::Gray16, RotateRow<WholeForm<uint16_t, 1>, method>);
    put(RotateForm::Colour16, RotateRow<Colour16Form, method>);
    put(RotateForm::Bytes3, RotateRow<WholeForm<uint8_t, 3>, method>);
    put(RotateForm::Bytes4, RotateRow<WholeForm<uint8_t, 4>, method>);
    put(RotateForm::Words3, RotateRow<WholeForm<uint16_t, 3>, method>);
    put(RotateForm::Words4, RotateRow<WholeForm<uint16_t, 4>, method>);
}

constexpr RotateKernels MakeKernels() {
    RotateKernels all{};
    FillRow<RotateMethod::Nearest>(all);
    FillRow<RotateMethod::Linear>(all);
    FillRow<RotateMethod::Cubic>(all);
    return all;
}

} // namespace

template <> constinit const RotateKernels Compiled<RotateKernels, ThisSet>::Table = MakeKernels();

} // namespace zkr::kernels
