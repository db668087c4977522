// Z_ColorResBitmapList: one palette and one match table for all items of a list.
#include "zkr13n/color_resolution.h"

#include "colour/convert/palette_choice.h"
#include "colour/quantise/colour_key.h"
#include "colour/quantise/optimized_palette.h"
#include "colour/quantise/palette_slots.h"
#include "core/flags.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/thread_settings.h"
#include "zkr13n/allocation.h"
#include "zkr13n/palettes.h"

#include <algorithm>

namespace zkr {

namespace {

// Whether one palette is made for all items: where each item is to be searched without a match table, each has its own.
bool IsMadeForAll(const uint32_t flags, int32_t bits) {
    return ChoiceOf(flags, bits) == PaletteChoice::Optimized && (flags & COLORRES_NO_MATCH_TABLE) == 0;
}

// The thread's match table while items are worked on; released with the object.
class SharedTable {
  public:
    SharedTable() = default;
    ~SharedTable() {
        if (table_ == nullptr) return;
        SwapMatchTable(earlier_);
        Z_FreeUserMatchTable(table_);
    }
    SharedTable(const SharedTable&) = delete;
    SharedTable& operator=(const SharedTable&) = delete;

    // An empty table where there is none. False where memory was short.
    bool Set(uint32_t* table) {
        table_ = table != nullptr ? table : static_cast<uint32_t*>(Z_Calloc(ColourKeys, sizeof(uint32_t)));
        if (table_ != nullptr) earlier_ = SwapMatchTable(table_);
        return table_ != nullptr;
    }

  private:
    uint32_t* table_ = nullptr;
    uint32_t* earlier_ = nullptr;
};

struct ListRequest {
    int32_t Bits;
    uint32_t Flags;
    RGBQUAD* Palette;
    HPALETTE Handle;
    uint32_t Colors;
};

// Makes the palette of all items and turns the request into one for that palette as it is.
ReturnCode BuildListPalette(BitmapList list, ListRequest& request, RGBQUAD* shared, SharedTable& table) {
    RGBQUAD ofHandle[MostEntries];
    const RGBQUAD* given = request.Palette;
    if (request.Handle != nullptr) {
        if (!ReadPaletteHandle(request.Handle, ofHandle, request.Colors)) return code::InvalidArgument;
        given = ofHandle;
    }
    PaletteSlots slots(request.Colors, (request.Flags & COLORRES_SYSTEM_COLORS) != 0, given);
    uint32_t* made = nullptr;
    uint32_t colors = request.Colors;
    if (const uint32_t wanted = slots.FreeCount(); wanted > 0) {
        RGBQUAD found[MostEntries];
        uint32_t count = wanted;
        OptimizedPalette optimized;
        const ReturnCode result = BuildOptimizedPalette(list, found, count, slots.IsOneRun(), optimized);
        if (result != code::Success) return result;
        slots.Fill(found, count, nullptr);
        made = optimized.MatchTable;
        if (made != nullptr) slots.MoveTable(made);
        if (!optimized.Quantised) colors -= wanted - count;
    }
    if (!table.Set(made)) return code::OutOfMemory;
    std::copy_n(slots.Entries(), MostEntries, shared);
    if (request.Palette != nullptr) std::copy_n(shared, request.Colors, request.Palette);
    request = {request.Bits,
               (request.Flags & ~ChoiceFlags) | COLORRES_USER_PALETTE | COLORRES_USE_MATCH_TABLE, shared,
               nullptr, colors};
    return code::Success;
}

ReturnCode Prepare(BitmapList list, uint32_t items, ListRequest& request, RGBQUAD* shared,
                   SharedTable& table) {
    if (request.Bits > MostIndexedBits) return code::Success;
    const uint32_t most = 1u << request.Bits;
    if (request.Colors == 0 || request.Colors > most) request.Colors = most;
    request.Flags &= ~uint32_t{COLORRES_ORDER_GRAY};
    if (IsMadeForAll(request.Flags, request.Bits))
        return items == 0 ? code::InvalidBitmap : BuildListPalette(list, request, shared, table);
    const uint32_t choice = request.Flags & ChoiceFlags;
    if (choice != COLORRES_USER_PALETTE && choice != COLORRES_HANDLE_AS_USER) return code::Success;
    request.Flags |= COLORRES_USE_MATCH_TABLE;
    return table.Set(nullptr) ? code::Success : code::OutOfMemory;
}

// The item goes back into the list whatever became of it.
ReturnCode ConvertItem(BitmapList list, uint32_t index, const ListRequest& request) {
    BitmapHandle item;
    const ReturnCode got = Z_GetBitmapListItem(list, index, &item);
    if (got != code::Success) return got;
    const ReturnCode result = Z_ColorResBitmap(&item, &item, request.Bits, request.Flags, request.Palette,
                                               request.Handle, request.Colors, nullptr, 0);
    Z_SetBitmapListItem(list, index, &item);
    return result;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_ColorResBitmapList(BitmapList list, int32_t bitsPerPixel, uint32_t flags,
                                       RGBQUAD* palette, HPALETTE paletteHandle, uint32_t colors) {
    if ((palette != nullptr && paletteHandle != nullptr) || !IsSupportedDepth(bitsPerPixel))
        return code::InvalidArgument;
    uint32_t items = 0;
    ReturnCode result = Z_GetBitmapListCount(list, &items);
    if (result != code::Success) return result;
    ListRequest request{bitsPerPixel, flags, palette, paletteHandle, colors};
    RGBQUAD shared[MostEntries];
    SharedTable table;
    result = Prepare(list, items, request, shared, table);
    for (uint32_t i = 0; i < items && result == code::Success; ++i)
        result = ConvertItem(list, i, request);
    return result;
}
