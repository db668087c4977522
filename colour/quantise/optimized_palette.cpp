// Looks for a palette that has all colours before it quantises them.
#include "colour/quantise/optimized_palette.h"

#include "colour/pixels/colour_value.h"
#include "colour/quantise/palette_builder.h"
#include "core/predicates.h"
#include "core/progress.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <algorithm>

namespace zkr {

namespace {

// Neither the thread's status callback nor the region has a say in a count of all colours.
class UnnoticedCount {
  public:
    explicit UnnoticedCount(BitmapHandle& bitmap)
        : bitmap_(bitmap), region_(bitmap.Region), receiver_(StatusReceiver::Status()) {
        bitmap.Region = nullptr;
        Z_SetStatusCallBack(nullptr, 0);
    }
    ~UnnoticedCount() {
        Z_SetStatusCallBack(receiver_.Callback, receiver_.UserData);
        bitmap_.Region = region_;
    }
    UnnoticedCount(const UnnoticedCount&) = delete;
    UnnoticedCount& operator=(const UnnoticedCount&) = delete;

  private:
    BitmapHandle& bitmap_;
    void* region_;
    StatusReceiver receiver_;
};

// The palette of an indexed bitmap as it stands, or the distinct colours of any, where they are no more than
// wanted.
bool TakeColoursThatThereAre(BitmapHandle& bitmap, RGBQUAD* paletteOut, uint32_t& colors) {
    if (bitmap.BitsPerPixel <= 8 && bitmap.ColorsUsed <= colors) {
        std::fill_n(paletteOut, colors, RGBQUAD{});
        colors = bitmap.ColorsUsed;
        Z_GetBitmapPaletteEntries(&bitmap, 0, colors, paletteOut);
        return true;
    }
    const UnnoticedCount unnoticed(bitmap);
    uint32_t count = colors;
    if (Z_GetBitmapColorCountExt(&bitmap, &count, paletteOut) != code::Success || count > colors)
        return false;
    colors = count;
    SortPalette(paletteOut, count, nullptr);
    return true;
}

void Quantise(PaletteBuilder& builder, RGBQUAD* paletteOut, bool wantsTable, OptimizedPalette& found) {
    builder.Build(paletteOut);
    found.Quantised = true;
    if (wantsTable) found.MatchTable = builder.TakeMatchTable();
}

ReturnCode GetItem(BitmapList list, uint32_t index, BitmapHandle& item) {
    const ReturnCode result = Z_GetBitmapListItem(list, index, &item);
    if (result != code::Success) return result;
    return IsAllocated(&item) ? code::Success : code::InvalidBitmap;
}

// Colours in the order in which they are met, each once.
class DistinctColours {
  public:
    explicit DistinctColours(uint32_t room) : room_(room) {}

    // False where there is no room for a new one.
    bool Add(const RGBQUAD& entry) {
        const uint32_t value = ColourValue::OfEntry(entry).Value();
        const auto isSame = [&](const RGBQUAD& other) {
            return ColourValue::OfEntry(other).Value() == value;
        };
        if (std::any_of(Entries, Entries + Count, isSame)) return true;
        if (Count == room_) return false;
        Entries[Count++] = {entry.rgbBlue, entry.rgbGreen, entry.rgbRed, 0};
        return true;
    }

    RGBQUAD Entries[256];
    uint32_t Count = 0;

  private:
    uint32_t room_;
};

// The colours of all palettes together. False where they are too many, or an item has none.
bool MergePalettes(BitmapList list, uint32_t items, RGBQUAD* paletteOut, uint32_t& colors) {
    DistinctColours distinct(colors);
    for (uint32_t i = 0; i < items; ++i) {
        BitmapHandle item;
        if (GetItem(list, i, item) != code::Success || item.BitsPerPixel > 8) return false;
        RGBQUAD entries[256];
        const uint32_t count = Z_GetBitmapPaletteEntries(&item, 0, std::min(item.ColorsUsed, 256u), entries);
        if (!std::all_of(entries, entries + count, [&](const RGBQUAD& entry) { return distinct.Add(entry); }))
            return false;
    }
    std::fill_n(paletteOut, colors, RGBQUAD{});
    std::copy_n(distinct.Entries, distinct.Count, paletteOut);
    SortPalette(paletteOut, distinct.Count, nullptr);
    colors = distinct.Count;
    return true;
}

} // namespace

ReturnCode BuildOptimizedPalette(BitmapHandle& bitmap, RGBQUAD* paletteOut, uint32_t& colors, bool wantsTable,
                                 OptimizedPalette& found, bool fewPeels) {
    found = {};
    if (TakeColoursThatThereAre(bitmap, paletteOut, colors)) return code::Success;
    PaletteBuilder builder(colors, fewPeels);
    if (!builder) return code::OutOfMemory;
    const ReturnCode result = builder.Counts().Add(bitmap);
    if (result == code::Success) Quantise(builder, paletteOut, wantsTable, found);
    return result;
}

ReturnCode BuildOptimizedPalette(BitmapList list, RGBQUAD* paletteOut, uint32_t& colors, bool wantsTable,
                                 OptimizedPalette& found) {
    found = {};
    uint32_t items = 0;
    ReturnCode result = Z_GetBitmapListCount(list, &items);
    if (result != code::Success) return result;
    if (items == 0) return code::InvalidBitmap;
    BitmapHandle item;
    if (items == 1) {
        result = GetItem(list, 0, item);
        if (result != code::Success) return result;
        return BuildOptimizedPalette(item, paletteOut, colors, wantsTable, found, false);
    }
    if (MergePalettes(list, items, paletteOut, colors)) return code::Success;
    PaletteBuilder builder(colors, false);
    if (!builder) return code::OutOfMemory;
    for (uint32_t i = 0; i < items && result == code::Success; ++i) {
        result = GetItem(list, i, item);
        if (result == code::Success) result = builder.Counts().Add(item);
    }
    if (result == code::Success) Quantise(builder, paletteOut, wantsTable, found);
    return result;
}

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_CreateBitmapListOptPal(BitmapList list, RGBQUAD* palette, uint32_t* colors,
                                           uint32_t** matchTable, int32_t* quantised) {
    if (matchTable != nullptr) *matchTable = nullptr;
    if (palette == nullptr || colors == nullptr || quantised == nullptr || *colors == 0 || *colors > 256)
        return code::InvalidArgument;
    OptimizedPalette found;
    uint32_t count = *colors;
    const ReturnCode result = BuildOptimizedPalette(list, palette, count, matchTable != nullptr, found);
    if (result != code::Success) return result;
    *colors = count;
    *quantised = found.Quantised ? 1 : 0;
    if (matchTable != nullptr) *matchTable = found.MatchTable;
    return code::Success;
}
