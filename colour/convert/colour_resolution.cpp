// Z_ColorResBitmap: tests the request, makes form and palette of the target, and passes the rows.
//
// All reading goes through a copy of the source's record, so that the target may be the source. Until the
// last row is done both images exist, and whatever fails, the source's record is put back.
#include "zkr13n/color_resolution.h"

#include "colour/convert/colour_resolution_rows.h"
#include "colour/convert/palette_choice.h"
#include "colour/palettes/fixed_palettes.h"
#include "colour/pixels/colour_value.h"
#include "colour/quantise/optimized_palette.h"
#include "colour/quantise/palette_slots.h"
#include "core/attachments.h"
#include "core/predicates.h"
#include "core/record_like.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/thread_settings.h"
#include "zkr13n/dither.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"
#include "zkr13n/playback.h"
#include "zkr13n/storage.h"

#include <algorithm>

namespace zkr {

namespace {

// Where the flags hold the dithering method.
constexpr uint32_t MethodShift = 16, MethodMask = 0xFF;

struct Request {
    int32_t Bits;
    uint32_t Flags;
    RGBQUAD* Palette;
    HPALETTE Handle;
    uint32_t Colors;
    RowReceiver Receiver;

    bool Has(uint32_t flag) const { return (Flags & flag) != 0; }
    bool IsIndexed() const { return Bits <= MostIndexedBits; }
};

bool CanChoose(const Request& request) {
    const bool hasPalette = request.Palette != nullptr || request.Handle != nullptr;
    const PaletteChoice choice = ChoiceOf(request.Flags, request.Bits);
    return choice != PaletteChoice::Invalid && (choice != PaletteChoice::User || hasPalette);
}

ReturnCode CheckRequest(const BitmapHandle* source, Request& request) {
    if (!IsAllocated(source)) return code::InvalidArgument;
    const bool grayTarget = request.Bits == 12 || (request.Bits == 16 && request.Has(COLORRES_ORDER_GRAY));
    if ((IsGray(*source) || grayTarget) && Z_IsSupportLocked(Z_SUPPORT_EXTGRAY) != 0)
        return code::ExtendedGrayLocked;
    if (request.Palette != nullptr && request.Handle != nullptr) return code::InvalidArgument;
    if (!IsSupportedDepth(request.Bits)) return code::InvalidArgument;
    if (!request.IsIndexed())
        return request.Has(COLORRES_ORDER_GRAY) == grayTarget ? code::Success : code::InvalidArgument;
    const uint32_t most = 1u << request.Bits;
    if (request.Colors == 0 || request.Colors > most) request.Colors = most;
    request.Flags &= ~uint32_t{COLORRES_ORDER_BGR | COLORRES_ORDER_GRAY};
    if (request.Handle != nullptr && request.Has(COLORRES_HANDLE_AS_USER))
        request.Flags = (request.Flags & ~uint32_t{COLORRES_HANDLE_AS_USER}) | COLORRES_USER_PALETTE;
    return CanChoose(request) ? code::Success : code::InvalidArgument;
}

class ColorResolution {
  public:
    ColorResolution(BitmapHandle* source, BitmapHandle* target, const Request& request)
        : source_(source), target_(target != nullptr ? target : &unstored_), request_(request),
          reading_(*source) {}
    ~ColorResolution() {
        if (ownsTable_) Z_FreeUserMatchTable(table_);
    }
    ColorResolution(const ColorResolution&) = delete;
    ColorResolution& operator=(const ColorResolution&) = delete;

    ReturnCode Run() {
        RGBQUAD ofHandle[MostEntries];
        const RGBQUAD* given = request_.Palette;
        if (request_.IsIndexed() && request_.Handle != nullptr) {
            if (!ReadPaletteHandle(request_.Handle, ofHandle, request_.Colors)) return code::InvalidArgument;
            given = ofHandle;
        }
        ReturnCode result = MakeForm();
        if (result == code::Success) result = request_.IsIndexed() ? ChoosePalette(given) : code::Success;
        if (result == code::Success && target_ != &unstored_) result = AllocatePlainLike(*target_, reading_);
        if (result == code::Success) result = PassRows();
        return Finish(result);
    }

  private:
    // Everything of the target but palette and storage.
    ReturnCode MakeForm() {
        const ReturnCode result = InitRecordLike(*target_, reading_, reading_.Width, reading_.Height,
                                                 request_.Bits, carry::RegionUnclipped);
        if (result != code::Success) return result;
        if (!request_.IsIndexed()) {
            target_->Order = request_.Has(COLORRES_ORDER_GRAY)  ? Z_ORDER_GRAY
                             : request_.Has(COLORRES_ORDER_BGR) ? Z_ORDER_BGR
                                                                : Z_ORDER_RGB;
            if (target_->Order == Z_ORDER_GRAY) Z_InitGrayParams(target_);
        }
        return CopyRegion(*target_, reading_, 0, 0);
    }

    ReturnCode ChoosePalette(const RGBQUAD* given) {
        std::fill(palette_, palette_ + MostEntries, RGBQUAD{});
        isDithered_ = true;
        switch (ChoiceOf(request_.Flags, request_.Bits)) {
        case PaletteChoice::Optimized: return Optimize(given);
        case PaletteChoice::User:
            if (request_.Has(COLORRES_USE_MATCH_TABLE)) table_ = CurrentMatchTable();
            return SetPalette(given, request_.Colors);
        case PaletteChoice::Cube: return SetPalette(CubePalette216.data(), MostEntries);
        default: return SetPalette(FixedPalette(request_.Bits).data(), 1u << request_.Bits);
        }
    }

    ReturnCode SetPalette(const RGBQUAD* entries, uint32_t colors) {
        std::copy_n(entries, colors, palette_);
        return CreatePalette(colors);
    }

    ReturnCode CreatePalette(uint32_t colors) {
        target_->ColorsUsed = colors;
        target_->Palette = colors > 0 ? Z_CreatePalette(palette_, colors) : nullptr;
        return target_->Palette != nullptr || colors == 0 ? code::Success : code::OutOfMemory;
    }

    ReturnCode Optimize(const RGBQUAD* given) {
        uint32_t colors = request_.Colors;
        PaletteSlots slots(colors, request_.Has(COLORRES_SYSTEM_COLORS), given);
        const uint32_t wanted = slots.FreeCount();
        isDithered_ =
            request_.Bits < reading_.BitsPerPixel || wanted <= reading_.ColorsUsed || !slots.IsOneRun();
        if (wanted > 0) {
            uint32_t count = wanted;
            RGBQUAD found[MostEntries];
            OptimizedPalette optimized;
            const bool wantsTable = slots.IsOneRun() && !request_.Has(COLORRES_NO_MATCH_TABLE);
            const ReturnCode result = BuildOptimizedPalette(reading_, found, count, wantsTable, optimized,
                                                            request_.Has(COLORRES_FEW_PEELS));
            if (result != code::Success) return result;
            table_ = optimized.MatchTable;
            ownsTable_ = true;
            if (table_ != nullptr) slots.MoveTable(table_);
            slots.Fill(found, count, request_.Palette);
            if (!optimized.Quantised) {
                colors -= wanted - count;
                if (slots.IsOneRun()) isDithered_ = false;
            }
        }
        std::copy_n(slots.Entries(), MostEntries, palette_);
        return CreatePalette(colors);
    }

    ReturnCode PassRows() {
        Z_CopyPlaybackParms(target_, &reading_);
        BitmapHandle* const stored = target_ != &unstored_ ? target_ : nullptr;
        if (!isDithered_) return ResolveByConversion(reading_, *target_, stored, palette_, request_.Receiver);
        const int32_t method = reading_.DitheringMethod;
        void* const earlierRun = reading_.DitherData;
        reading_.DitheringMethod = static_cast<int32_t>(request_.Flags >> MethodShift & MethodMask);
        ReturnCode result =
            Z_StartDitheringExt(&reading_, palette_, target_->ColorsUsed, request_.Bits, table_);
        reading_.DitheringMethod = method;
        if (result == code::Success) {
            result = ResolveByDithering(reading_, *target_, stored, request_.Receiver);
            Z_StopDithering(&reading_);
        }
        reading_.DitherData = earlierRun;
        return result;
    }

    // Releases one of the two images where only one is to stay.
    ReturnCode Finish(ReturnCode result) {
        const bool succeeded = result == code::Success;
        if (!succeeded || target_ == &unstored_) Z_FreeBitmap(target_);
        if (target_ == source_) {
            if (succeeded)
                Z_FreeBitmap(&reading_);
            else
                *source_ = reading_;
        }
        return result;
    }

    BitmapHandle* source_;
    BitmapHandle* target_;
    BitmapHandle unstored_ = {}; // the target's form where there is no target
    Request request_;
    BitmapHandle reading_;         // the source's record as it was
    RGBQUAD palette_[MostEntries]; // of an indexed target
    bool isDithered_ = false;
    uint32_t* table_ = nullptr;
    bool ownsTable_ = false; // made here, rather than the thread's
};

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_ColorResBitmap(BitmapHandle* source, BitmapHandle* target, int32_t bitsPerPixel,
                                   uint32_t flags, RGBQUAD* palette, HPALETTE paletteHandle, uint32_t colors,
                                   ColorResCallback callback, intptr_t userData) {
    Request request{bitsPerPixel, flags, palette, paletteHandle, colors, {callback, userData}};
    const ReturnCode result = CheckRequest(source, request);
    return result == code::Success ? ColorResolution(source, target, request).Run() : result;
}
