// Chooses the kernels of a conversion and their parameters.
#include "colour/convert/convert_plan.h"

#include "colour/gray/gray_window.h"
#include "colour/palettes/kept_palette_map.h"
#include "colour/palettes/palette_search.h"
#include "core/predicates.h"
#include "core/sizes.h"
#include "kernels/family.h"
#include "zkr13n/bitmap.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace zkr {

using kernels::GrayScale;
using kernels::MakeGrayScale;
using kernels::RowParameters;
using kernels::Source;
using kernels::StretchGray;
using kernels::Target;

namespace {

// A depth of 0 is 8-bit gray without a palette.
bool IsDepth(int32_t bits) {
    return bits == 0 || IsSupportedDepth(bits);
}

bool IsOrderOfDepth(int32_t order, int32_t bits) {
    if (bits < 16) return true; // the order plays no part
    return order == Z_ORDER_RGB || order == Z_ORDER_BGR || (bits == 16 && order == Z_ORDER_GRAY);
}

// A window that is the whole pixel.
bool IsWholePixel(const ConvertRequest& request, int32_t depth) {
    return request.LowBit < 1 && (request.HighBit < 0 || request.HighBit == int64_t{PixelBits(depth)} - 1);
}

// A gray of eight bits to the bits of a window.
GrayScale EightBitsTo(const GrayWindow& window) {
    return window.Bits <= 8 ? MakeGrayScale(1u << window.Bits, 256, window.Shift)
                            : MakeGrayScale(window.Mask, 255, window.Shift);
}

// The upper bits of a gray of so many bits, moved into a window.
GrayScale UpperBitsOf(uint32_t bits, const GrayWindow& window) {
    return MakeGrayScale(1u << window.Bits, 1u << bits, window.Shift);
}

// The widest gray value that a target can take from a source of 12 or 16 bits.
int32_t ValueBitsFor(const ConvertRequest& request) {
    const int32_t bits = request.TargetBits;
    if (bits >= 1 && bits < 16) return bits;
    if (bits == 16) return request.Has(Z_CONVERT_TARGET_GRAY) ? 16 : 8;
    return IsDeep(bits) ? 16 : 8;
}

GrayWindow WindowFrom12(const ConvertRequest& request, bool lookup) {
    const int32_t maximum = lookup ? 12 : ValueBitsFor(request);
    if (request.Has(Z_CONVERT_SOURCE_WINDOW))
        return MakeGrayWindow(12, maximum, request.LowBit, request.HighBit);
    if (request.Has(Z_CONVERT_TARGET_WINDOW))
        return MakeGrayWindow(request.TargetBits, 12, request.LowBit, request.HighBit);
    return MakeGrayWindow(12, maximum, -1, -1);
}

// Decides which bits of a 16-bit pixel are read and, for a gray target, where they are written.
GrayWindow WindowFrom16(const ConvertRequest& request) {
    const bool sourceGray = request.Has(Z_CONVERT_SOURCE_GRAY);
    const bool targetGray = request.Has(Z_CONVERT_TARGET_GRAY);
    const bool lookup = request.SourcePalette != nullptr;
    const int32_t targetBits = PixelBits(request.TargetBits);
    if (sourceGray && request.Has(Z_CONVERT_SOURCE_WINDOW))
        return MakeGrayWindow(16, lookup ? 16 : ValueBitsFor(request), request.LowBit, request.HighBit);
    if (targetGray && request.Has(Z_CONVERT_TARGET_WINDOW))
        return MakeGrayWindow(targetBits, lookup ? 8 : targetBits, request.LowBit, request.HighBit);
    if (targetGray && (!sourceGray || lookup))
        return MakeGrayWindow(targetBits, IsDeep(targetBits) ? 16 : 8, -1, -1);
    if (sourceGray && lookup) return MakeGrayWindow(16, 16, -1, -1);
    const int32_t narrow = targetGray && request.TargetBits != 0 ? request.TargetBits : 8;
    return MakeGrayWindow(16, IsDeep(targetBits) ? 16 : narrow, -1, -1);
}

// Where a gray target of 12 or 16 bits takes its value from sources that are not gray words. A window without
// a high bit ends at the top of the stated depth.
GrayWindow TargetWindow(const ConvertRequest& request, int32_t depth) {
    const bool given = request.Has(Z_CONVERT_TARGET_WINDOW);
    return given ? MakeGrayWindow(depth, request.TargetBits, request.LowBit, request.HighBit)
                 : MakeGrayWindow(request.TargetBits, request.TargetBits, -1, -1);
}

// From colours to gray words, the only targets for which their grays are scaled.
GrayScale ScaleToGrayWords(const ConvertRequest& request) {
    if (IsDeep(request.SourceBits)) return UpperBitsOf(16, TargetWindow(request, 16));
    return EightBitsTo(request.SourceBits == 16 ? WindowFrom16(request)
                                                : TargetWindow(request, request.TargetBits));
}

Target TargetOf(const ConvertRequest& request, bool opaque) {
    switch (request.TargetBits) {
    case 0: return Target::Gray8;
    case 12: return Target::GrayWords;
    case 16: return request.Has(Z_CONVERT_TARGET_GRAY) ? Target::GrayWords : Target::Colour16;
    case 24: return Target::Colour24;
    case 32: return opaque ? Target::Colour32Opaque : Target::Colour32;
    case 48: return Target::Deep48;
    default: return opaque ? Target::Deep64Opaque : Target::Deep64;
    }
}

void MatchBySearch(const uint8_t* quads, uint8_t* indices, size_t pixels, const RowParameters& parameters) {
    static_cast<PaletteSearch*>(const_cast<void*>(parameters.Table))->MatchRow(quads, indices, pixels);
}

// Mask is the number of entries.
void MatchByScan(const uint8_t* quads, uint8_t* indices, size_t pixels, const RowParameters& parameters) {
    const auto* palette = static_cast<const RGBQUAD*>(parameters.Table);
    for (; pixels > 0; --pixels, quads += 4, ++indices) {
        *indices = static_cast<uint8_t>(
            Z_FindPaletteIndex(palette, static_cast<int32_t>(parameters.Mask), quads[2], quads[1], quads[0]));
    }
}

} // namespace

bool CheckConversion(ConvertRequest& request) {
    if (request.Width <= 0) return false;
    request.Flags &= Z_CONVERT_SOURCE_WINDOW | Z_CONVERT_TARGET_WINDOW;
    if (request.SourceOrder == Z_ORDER_GRAY) request.Flags |= Z_CONVERT_SOURCE_GRAY;
    if (request.TargetOrder == Z_ORDER_GRAY) request.Flags |= Z_CONVERT_TARGET_GRAY;
    const bool sourceWindow = request.Has(Z_CONVERT_SOURCE_WINDOW);
    const bool targetWindow = request.Has(Z_CONVERT_TARGET_WINDOW);
    if (sourceWindow && (targetWindow || !request.Has(Z_CONVERT_SOURCE_GRAY))) return false;
    if (targetWindow && !request.Has(Z_CONVERT_TARGET_GRAY)) return false;
    if (request.SourceBits == 12 && !request.Has(Z_CONVERT_SOURCE_GRAY)) return false;
    if (request.TargetBits == 12 && !request.Has(Z_CONVERT_TARGET_GRAY)) return false;
    if (sourceWindow && IsWholePixel(request, request.SourceBits))
        request.Flags &= ~uint32_t{Z_CONVERT_SOURCE_WINDOW};
    if (targetWindow && IsWholePixel(request, request.TargetBits))
        request.Flags &= ~uint32_t{Z_CONVERT_TARGET_WINDOW};
    return IsDepth(request.SourceBits) && IsDepth(request.TargetBits) &&
           IsOrderOfDepth(request.SourceOrder, request.SourceBits) &&
           IsOrderOfDepth(request.TargetOrder, request.TargetBits);
}

ConvertPlan::ConvertPlan(const ConvertRequest& request)
    : request_(request), stages_(PixelBits(request.SourceBits)) {
    if (request.SourceBits <= 8) {
        PlanIndices();
    } else if (request.SourceBits <= 16 && request.Has(Z_CONVERT_SOURCE_GRAY)) {
        PlanGray();
    } else {
        PlanColour();
    }
}

bool ConvertPlan::TargetIsGrayWords() const {
    return request_.TargetBits == 12 || (request_.TargetBits == 16 && request_.Has(Z_CONVERT_TARGET_GRAY));
}

const RGBQUAD* ConvertPlan::TargetPalette() const {
    return request_.TargetPalette != nullptr ? request_.TargetPalette
                                             : Z_IntGetFixedPalette(request_.TargetBits);
}

// The last stages of a conversion that goes through colours or scaled gray values. Alpha is left as it was
// where the source is gray words.
void ConvertPlan::AddTarget(Source source) {
    if (TargetIsIndexed()) {
        stages_.Add(source, Target::Colour32);
        AddMatch();
        return;
    }
    const bool opaque = source == Source::GrayValue || source == Source::GrayLookup;
    stages_.Next().TargetIsRgb = IsRedFirst(request_.TargetOrder);
    stages_.Add(source, TargetOf(request_, opaque));
    stages_.AddPack(request_.TargetBits);
}

void ConvertPlan::AddMatch() {
    const int32_t entries = 1 << request_.TargetBits;
    if (PaletteSearch* search = PaletteSearchFor(TargetPalette(), entries)) {
        stages_.Add(MatchBySearch, search);
    } else {
        stages_.Next().Mask = static_cast<uint32_t>(entries);
        stages_.Add(MatchByScan, TargetPalette());
    }
    stages_.AddPack(request_.TargetBits);
}

void ConvertPlan::PlanIndices() {
    const int32_t bits = request_.SourceBits;
    if (request_.TargetBits <= 8) return PlanIndexMap();
    const RGBQUAD* palette =
        request_.SourcePalette != nullptr ? request_.SourcePalette : Z_IntGetFixedPalette(bits);
    const bool single = bits == 1 && (request_.TargetBits == 24 || request_.TargetBits == 32);
    if (!single) stages_.AddUnpack(bits);
    RowParameters& parameters = stages_.Next();
    parameters.Table = palette;
    parameters.Mask = (1u << PixelBits(bits)) - 1;
    if (TargetIsGrayWords()) parameters.Scale = ScaleToGrayWords(request_);
    AddTarget(bits == 0 ? Source::Gray8 : single ? Source::Bits1 : Source::Index8);
}

// Bytes and packed indices among each other: one map serves the whole row.
void ConvertPlan::PlanIndexMap() {
    const int32_t bits = request_.SourceBits;
    const int32_t entries = 1 << PixelBits(bits);
    const RGBQUAD* source = bits == 0                           ? nullptr
                            : request_.SourcePalette != nullptr ? request_.SourcePalette
                                                                : Z_IntGetFixedPalette(bits);
    const RGBQUAD* target = request_.TargetBits == 0 ? nullptr : TargetPalette();
    if (bits == request_.TargetBits &&
        (bits == 0 || std::memcmp(source, target, static_cast<size_t>(entries) * sizeof(RGBQUAD)) == 0))
        return;
    const PaletteMap& map =
        PaletteMapFor(source, entries, target, 1 << PixelBits(request_.TargetBits), spareMap_);
    if (!map.IsIdentity) {
        stages_.AddMap(PixelBits(bits), map.Index);
    } else {
        stages_.AddUnpack(bits);
    }
    stages_.AddPack(request_.TargetBits);
}

// Words of gray. Of 12 bits a lookup table plays no part where the target is gray words too.
void ConvertPlan::PlanGray() {
    const bool is12 = request_.SourceBits == 12;
    const bool toWords = TargetIsGrayWords();
    const RGBQUAD* lookup = is12 && toWords ? nullptr : request_.SourcePalette;
    const GrayWindow window = is12 ? WindowFrom12(request_, lookup != nullptr) : WindowFrom16(request_);
    if (request_.SourceBits == request_.TargetBits && toWords && lookup == nullptr &&
        !request_.Has(Z_CONVERT_SOURCE_WINDOW | Z_CONVERT_TARGET_WINDOW))
        return;
    stages_.AddUnpack(request_.SourceBits);
    RowParameters& parameters = stages_.Next();
    parameters.Table = lookup;
    parameters.Mask = window.Mask;
    parameters.Shift = window.Shift;
    if (toWords) {
        is12 ? Plan12ToGray(window) : Plan16ToGray(window);
    } else if (lookup != nullptr) {
        AddTarget(Source::GrayLookup);
    } else {
        parameters.Scale = StretchGray(IsDeep(request_.TargetBits) ? 0xFFFF : 0xFF, window.Mask);
        TargetIsIndexed() ? PlanGrayToMap() : AddTarget(Source::GrayValue);
    }
}

void ConvertPlan::Plan12ToGray(const GrayWindow& window) {
    if (request_.Has(Z_CONVERT_TARGET_WINDOW)) {
        stages_.Next() = {.Mask = 0xFFF, .Scale = UpperBitsOf(12, window)};
    } else if (request_.TargetBits != 12) {
        stages_.Next().Scale = StretchGray(0xFFFF, window.Mask);
    }
    AddTarget(Source::GrayValue);
}

void ConvertPlan::Plan16ToGray(const GrayWindow& window) {
    const bool to12 = request_.TargetBits == 12;
    const RGBQUAD* lookup = request_.SourcePalette;
    const Source source = lookup != nullptr ? Source::GrayLookup : Source::GrayValue;
    RowParameters& parameters = stages_.Next();
    if (request_.Has(Z_CONVERT_SOURCE_WINDOW)) {
        const uint32_t limit = to12 ? 0xFFF : 0xFFFF;
        parameters.Scale = lookup != nullptr ? MakeGrayScale(limit, 0xFF) : StretchGray(limit, window.Mask);
        return AddTarget(source);
    }
    // Without a window on the source the whole word is the value, and the index into a lookup table.
    parameters.Mask = 0xFFFF;
    parameters.Shift = 0;
    const bool given = request_.Has(Z_CONVERT_TARGET_WINDOW);
    if (lookup == nullptr) {
        parameters.Scale = given ? UpperBitsOf(16, window) : MakeGrayScale(1, 16);
        AddTarget(source);
    } else if (to12 && !given) {
        // The one place where green and blue exchange their weights.
        parameters.Scale = MakeGrayScale(273, 17);
        stages_.Add(source, Target::SwappedGray);
        stages_.AddPack(12);
    } else {
        parameters.Scale = to12 ? EightBitsTo(window) : MakeGrayScale(window.Mask, 0xFF, window.Shift);
        AddTarget(source);
    }
}

// Gray values without a lookup table to indices: the values become gray levels, and one map serves the row.
void ConvertPlan::PlanGrayToMap() {
    const PaletteMap& map = PaletteMapFor(nullptr, 256, TargetPalette(), 1 << request_.TargetBits, spareMap_);
    stages_.Add(Source::GrayValue, Target::Gray8);
    stages_.AddMap(8, map.Index);
    stages_.AddPack(request_.TargetBits);
}

void ConvertPlan::PlanColour() {
    const int32_t bits = request_.SourceBits;
    if (bits == request_.TargetBits && request_.SourceOrder == request_.TargetOrder) return;
    stages_.Next().SourceIsRgb = IsRedFirst(request_.SourceOrder);
    if (TargetIsGrayWords()) stages_.Next().Scale = ScaleToGrayWords(request_);
    AddTarget(kernels::ColourForm(bits));
}

} // namespace zkr
