// The table of conversion kernels of one instruction set: every reader that meets a writer.
#include "colour/kernels/row_kernel.h"

#include "colour/kernels/packing.h"
#include "colour/kernels/pixels.h"
#include "kernels/family.h"
#if defined(__AVX2__)
#include "colour/kernels/special_avx2.h"
#endif

namespace zkr::kernels {
namespace {

using WriteColour24 = WriteColour<3>;
using WriteColour32 = WriteColour<4>;
using WriteOpaque32 = WriteColour<4, Alpha::Ignored>;
using WriteDeep48 = WriteDeep<3>;
using WriteDeep64 = WriteDeep<4>;
using WriteOpaque64 = WriteDeep<4, Alpha::Ignored>;

struct KernelRow {
    RowKernel To[TargetForms] = {};

    constexpr RowKernel& operator[](Target target) { return To[static_cast<size_t>(target)]; }
};

template <class Reader> constexpr KernelRow FromColours() {
    KernelRow row;
    row[Target::Gray8] = ConvertRow<Reader, WriteGray8>;
    row[Target::GrayWords] = ConvertRow<Reader, WriteGrayWords>;
    row[Target::Colour16] = ConvertRow<Reader, WriteColour16<>>;
    row[Target::Colour24] = ConvertRow<Reader, WriteColour24>;
    row[Target::Colour32] = ConvertRow<Reader, WriteColour32>;
    row[Target::Deep48] = ConvertRow<Reader, WriteDeep48>;
    row[Target::Deep64] = ConvertRow<Reader, WriteDeep64>;
    return row;
}

constexpr KernelRow FromBits1() {
    KernelRow row;
    row[Target::Colour24] = ConvertRow<ReadBits1, WriteColour24>;
    row[Target::Colour32] = ConvertRow<ReadBits1, WriteColour32>;
    return row;
}

constexpr KernelRow FromGrayValues() {
    KernelRow row;
    row[Target::Gray8] = ConvertRow<ReadGrayValue, WriteGray8>;
    row[Target::GrayWords] = ConvertRow<ReadGrayValue, WriteGrayWords>;
    row[Target::Colour16] = ConvertRow<ReadGrayColour, WriteColour16<>>;
    row[Target::Colour24] = ConvertRow<ReadGrayColour, WriteColour24>;
    row[Target::Colour32Opaque] = ConvertRow<ReadGrayColour, WriteOpaque32>;
    row[Target::Deep48] = ConvertRow<ReadGrayValue, WriteDeep48>;
    row[Target::Deep64Opaque] = ConvertRow<ReadGrayValue, WriteOpaque64>;
    return row;
}

constexpr KernelRow FromGrayLookups() {
    KernelRow row = FromColours<ReadGrayLookup>();
    row[Target::SwappedGray] = ConvertRow<ReadGrayLookup, WriteSwappedGray>;
    row[Target::Colour32Opaque] = ConvertRow<ReadGrayLookup, WriteOpaque32>;
    row[Target::Deep64] = nullptr;
    row[Target::Deep64Opaque] = ConvertRow<ReadGrayLookup, WriteOpaque64>;
    return row;
}

template <size_t channels> constexpr KernelRow FromDeep() {
    KernelRow row;
    row[Target::Gray8] = ConvertRow<ReadDeepHigh<channels>, WriteGray8>;
    row[Target::GrayWords] = ConvertRow<ReadDeep<channels>, WriteGrayWords>;
    row[Target::Colour16] = ConvertRow<ReadDeepHigh<channels, Alpha::Ignored>, WriteColour16<>>;
    row[Target::Colour24] = ConvertRow<ReadDeepHigh<channels>, WriteColour24>;
    row[Target::Colour32] = ConvertRow<ReadDeepHigh<channels>, WriteColour32>;
    row[Target::Deep48] = ConvertRow<ReadDeep<channels>, WriteDeep48>;
    row[Target::Deep64] = ConvertRow<ReadDeep<channels>, WriteDeep64>;
    return row;
}

constexpr ConvertKernels MakeKernels() {
    ConvertKernels kernels = {};
    const auto place = [&kernels](Source source, const KernelRow& row) {
        for (size_t target = 0; target < TargetForms; ++target)
            kernels.Convert[static_cast<size_t>(source)][target] = row.To[target];
    };
    place(Source::Bits1, FromBits1());
    place(Source::Index8, FromColours<ReadIndex8>());
    place(Source::Gray8, FromColours<ReadGray8>());
    place(Source::GrayValue, FromGrayValues());
    place(Source::GrayLookup, FromGrayLookups());
    place(Source::Colour16, FromColours<ReadColour16<>>());
    place(Source::Colour24, FromColours<ReadColour<3>>());
    place(Source::Colour32, FromColours<ReadColour<4>>());
    place(Source::Deep48, FromDeep<3>());
    place(Source::Deep64, FromDeep<4>());
    SetPackingKernels(kernels);
#if defined(__AVX2__)
    SetSpecialKernels(kernels);
#endif
    return kernels;
}

} // namespace

template <> constinit const ConvertKernels Compiled<ConvertKernels, ThisSet>::Table = MakeKernels();

} // namespace zkr::kernels
