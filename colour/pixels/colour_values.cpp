// Colour values carried from the terms of one bitmap into those of another.
#include "zkr13n/colour_values.h"
#include "core/predicates.h"

#include "colour/gray/level_table.h"
#include "colour/pixels/colour_value.h"
#include "zkr13n/palettes.h"

using namespace zkr;

namespace {

bool IsIndexed(const BitmapHandle& bitmap) {
    return bitmap.BitsPerPixel <= 8;
}

ColourValue NearestIndex(const BitmapHandle& target, ColourValue colour) {
    return ColourValue::OfIndex(Z_GetNearestPaletteIndex(&target, colour.Plain()));
}

ColourValue AsLevel(const BitmapHandle& target, ColourValue colour) {
    constexpr uint32_t longest = 0xFFFF; // a table of all 65536 levels is searched without its last one
    return ColourValue::OfIndex(NearestLevel(target, colour, longest));
}

// The entries are read from the first one on, as both forms of a palette allow.
bool ReadEntry(const BitmapHandle& bitmap, uint32_t index, RGBQUAD& entry) {
    RGBQUAD palette[256];
    if (index >= Z_GetBitmapPaletteEntries(&bitmap, 0, 256, palette)) return false;
    entry = palette[index];
    return true;
}

ColourValue TranslateIndex(const BitmapHandle& target, const BitmapHandle* source, ColourValue colour) {
    RGBQUAD entry;
    if (source == nullptr || !IsIndexed(*source) || !ReadEntry(*source, colour.Index(), entry)) {
        const ColourValue black(0);
        return IsIndexed(target) ? NearestIndex(target, black) : black;
    }
    const ColourValue plain = ColourValue::OfEntry(entry);
    if (!IsIndexed(target)) return plain;
    const bool same =
        ReadEntry(target, colour.Index(), entry) && ColourValue::OfEntry(entry).Value() == plain.Value();
    return same ? colour : NearestIndex(target, plain);
}

} // namespace

uint32_t Z_CALL Z_TranslateBitmapColor(const BitmapHandle* target, const BitmapHandle* source,
                                       uint32_t colour) {
    if (target == nullptr) return colour;
    ColourValue value(colour);
    if (value.IsExtendedGray()) {
        const bool throughTable = HasActiveLevelTable(*target);
        if (IsGray(*target) && !throughTable) return colour;
        value = value.PlainOfExtendedGray();
        if (IsGray(*target)) return AsLevel(*target, value).Value();
    }
    if (value.TopByte() == ColourValue::IndexForm) return TranslateIndex(*target, source, value).Value();
    return (IsIndexed(*target) ? NearestIndex(*target, value) : value).Value();
}
