// Beginning and end of a dithering run.
#include "zkr13n/dither.h"

#include "colour/dither/dither_state.h"
#include "colour/palettes/fixed_palettes.h"
#include "colour/pixels/colour_value.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "zkr13n/allocation.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace zkr {

namespace {

struct TargetRequest {
    const RGBQUAD* Palette;
    uint32_t Colors;
    int32_t Bits;
    uint32_t* MatchTable;
};

// The bits of the smallest fixed palette that has so many colours.
int32_t BitsOfColors(uint32_t colors) {
    return std::max(1, static_cast<int32_t>(std::bit_width(colors - 1)));
}

// An unfinished run; what it has made is released unless it is taken over.
class NewRun {
  public:
    NewRun() : state_(static_cast<DitherState*>(Z_Calloc(1, sizeof(DitherState)))) {}
    ~NewRun() { Free(state_); }
    NewRun(const NewRun&) = delete;
    NewRun& operator=(const NewRun&) = delete;

    ReturnCode Make(const BitmapHandle& bitmap, const TargetRequest& target);
    DitherState* Take() { return std::exchange(state_, nullptr); }
    static void Free(DitherState* state);

  private:
    bool ChoosePalette(const TargetRequest& target);
    void MakeMatchPalette(const RGBQUAD* palette);
    bool MakeErrorRows(int32_t width);
    void FillMatchTable();
    void SetGrayWindow(const BitmapHandle& bitmap);

    DitherState* state_;
};

void NewRun::Free(DitherState* state) {
    if (state == nullptr) return;
    for (int32_t* row : state->BlueRows)
        Z_Free(row);
    if (state->PaletteKind == PaletteOwnTable) Z_Free(state->MatchTable);
    Z_Free(state);
}

// Settles palette and kind, and makes the run's own match table where there is to be one. False where memory
// is short.
bool NewRun::ChoosePalette(const TargetRequest& target) {
    const int32_t fixedBits = BitsOfColors(target.Colors);
    const RGBQUAD* fixed = FixedPalette(fixedBits).data();
    const RGBQUAD* palette = target.Palette != nullptr ? target.Palette : fixed;
    const size_t bytes = target.Colors * sizeof(RGBQUAD);
    std::memcpy(state_->TargetPalette, palette, bytes);
    state_->TargetColors = target.Colors;
    state_->TargetBits = target.Bits;
    if (target.MatchTable != nullptr) {
        state_->PaletteKind = PaletteUserTable;
        state_->MatchTable = target.MatchTable;
    } else if (std::memcmp(palette, fixed, bytes) == 0) {
        state_->PaletteKind = PaletteFixed1 + fixedBits - 1;
    } else if (fixedBits == 8 && std::memcmp(palette, CubePalette216.data(), bytes) == 0) {
        state_->PaletteKind = PaletteCube;
    } else {
        state_->PaletteKind = PaletteOwnTable;
        state_->MatchTable = static_cast<uint32_t*>(Z_Calloc(kernels::TableCells, sizeof(uint32_t)));
        if (state_->MatchTable == nullptr) return false;
    }
    if (UsesMatchTable(*state_)) MakeMatchPalette(palette);
    return true;
}

// Entries that are reserved for the system or explicit are not to be chosen.
void NewRun::MakeMatchPalette(const RGBQUAD* palette) {
    constexpr uint8_t kept = 3;
    for (uint32_t i = 0; i < state_->TargetColors; ++i) {
        if ((palette[i].rgbReserved & kept) != 0) continue;
        RGBQUAD& entry = state_->MatchPalette[state_->MatchColors++];
        entry = palette[i];
        entry.rgbReserved = static_cast<uint8_t>(i);
    }
}

// One block for the rows of all channels that belong to the same line.
bool NewRun::MakeErrorRows(int32_t width) {
    const kernels::Taps& taps = MethodOf(*state_).Diffusion;
    const int64_t cells = int64_t{std::max(width, 0)} + 2 * taps.Margin;
    if (cells > INT32_MAX) return false;
    state_->ErrorRowCount = taps.Rows;
    state_->ErrorRowLength = static_cast<int32_t>(cells);
    for (int32_t row = 0; row < taps.Rows; ++row) {
        auto* first = static_cast<int32_t*>(Z_Calloc(static_cast<size_t>(cells), 4 * sizeof(int32_t)));
        if (first == nullptr) return false;
        state_->BlueRows[row] = first;
        state_->GreenRows[row] = first + 1;
        state_->RedRows[row] = first + 2;
    }
    return true;
}

// Exact colours of the palette match themselves, the first of equal ones.
void NewRun::FillMatchTable() {
    const bool excluded = state_->MatchColors == 0;
    const RGBQUAD* palette = excluded ? state_->TargetPalette : state_->MatchPalette;
    const uint32_t entries = excluded ? state_->TargetColors : state_->MatchColors;
    for (uint32_t i = 0; i < entries; ++i) {
        const RGBQUAD& entry = palette[i];
        const int key = (entry.rgbRed & 0xF8) << 7 | (entry.rgbGreen & 0xF8) << 2 | entry.rgbBlue >> 3;
        uint32_t& cell = state_->MatchTable[key];
        if (cell == 0) cell = i + 1;
    }
}

void NewRun::SetGrayWindow(const BitmapHandle& bitmap) {
    constexpr int32_t farthest = 64;
    const bool lookup = HasActiveLevelTable(bitmap);
    uint32_t mask = 0;
    Z_GetGrayParams(bitmap.BitsPerPixel, lookup ? bitmap.BitsPerPixel : 8,
                    std::clamp(bitmap.LowBit, -1, farthest), std::clamp(bitmap.HighBit, -1, farthest),
                    &state_->GrayBits, &mask, &state_->GrayShift);
    state_->GrayMask = static_cast<int32_t>(mask);
}

ReturnCode NewRun::Make(const BitmapHandle& bitmap, const TargetRequest& target) {
    if (state_ == nullptr) return code::OutOfMemory;
    if (!IsSupportedDepth(bitmap.BitsPerPixel)) return code::InvalidArgument;
    if (target.Colors == 0 || target.Colors > MostEntries) return code::InvalidArgument;
    if (!ChoosePalette(target)) return code::OutOfMemory;

    if (bitmap.DitheringMethod < 0 || static_cast<size_t>(bitmap.DitheringMethod) >= kernels::MethodCount)
        return code::InvalidArgument;
    state_->Method = bitmap.DitheringMethod;
    state_->SourceBits = bitmap.BitsPerPixel;
    if (bitmap.BitsPerPixel <= MostIndexedBits)
        Z_GetBitmapPaletteEntries(&bitmap, 0, MostEntries, state_->SourcePalette);
    if (MethodOf(*state_).Diffuses() && !MakeErrorRows(bitmap.Width)) return code::OutOfMemory;
    if (state_->MatchTable != nullptr) FillMatchTable();
    if (IsGray(bitmap)) SetGrayWindow(bitmap);
    PrepareIndex(*state_);
    return code::Success;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_StartDithering(BitmapHandle* bitmap, const RGBQUAD* palette, uint32_t colors) {
    if (colors == 0 || colors > MostEntries) return code::InvalidArgument;
    return Z_StartDitheringExt(bitmap, palette, colors, BitsOfColors(colors), nullptr);
}

ReturnCode Z_CALL Z_StartDitheringExt(BitmapHandle* bitmap, const RGBQUAD* palette, uint32_t colors,
                                      int32_t targetBits, uint32_t* userMatchTable) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    NewRun run;
    const ReturnCode result = run.Make(*bitmap, {palette, colors, targetBits, userMatchTable});
    if (result == code::Success) bitmap->DitherData = run.Take();
    return result;
}

ReturnCode Z_CALL Z_DitherLine(BitmapHandle* bitmap, const void* sourceRow, void* targetRow) {
    if (bitmap == nullptr || bitmap->DitherData == nullptr || sourceRow == nullptr || targetRow == nullptr)
        return code::InvalidArgument;
    DitherRow(*static_cast<DitherState*>(bitmap->DitherData), *bitmap, static_cast<const uint8_t*>(sourceRow),
              static_cast<uint8_t*>(targetRow));
    return code::Success;
}

ReturnCode Z_CALL Z_StopDithering(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    NewRun::Free(static_cast<DitherState*>(bitmap->DitherData));
    bitmap->DitherData = nullptr;
    return code::Success;
}
