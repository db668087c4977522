// Drawing is a copy through Z_CombineBitmap, which leaves out what lies outside the frame's region.
#include "display/playback/canvas.h"

#include "core/depth.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/views.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/combine.h"
#include "zkr13n/copy.h"
#include "zkr13n/dither.h"
#include "zkr13n/fill.h"
#include "zkr13n/palettes.h"
#include "zkr13n/playback.h"
#include "zkr13n/region.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/views.h"

#include <array>
#include <cstring>

namespace zkr::playback {

namespace {

constexpr uint32_t Copy = COMBINE_DST_ONES | COMBINE_OP_AND; // of the source

// The frame's own region stands aside while one without the transparent colour takes its place.
class TransparentRegion {
  public:
    explicit TransparentRegion(BitmapHandle& frame) : frame_(frame), own_(frame.Region) {}
    ~TransparentRegion() {
        if (frame_.Region == own_) return;
        Z_FreeBitmapRgn(&frame_);
        frame_.Region = own_;
    }
    TransparentRegion(const TransparentRegion&) = delete;
    TransparentRegion& operator=(const TransparentRegion&) = delete;

    ReturnCode Cut() {
        RegionHandle* copy = nullptr;
        ReturnCode status = Z_CopyZircRgn(&copy, static_cast<const RegionHandle*>(own_));
        if (status != code::Success) return status;
        frame_.Region = copy;
        return Z_SetBitmapRgnColor(&frame_, frame_.TransparentColor, Z_RGN_ANDNOTRGN);
    }

  private:
    BitmapHandle& frame_;
    decltype(BitmapHandle::Region) own_;
};

using Entries = std::array<RGBQUAD, MostEntries>;

uint32_t ReadEntries(const BitmapHandle& bitmap, Entries& entries) {
    entries = {};
    const uint32_t count = std::min(bitmap.ColorsUsed, MostEntries);
    Z_GetBitmapPaletteEntries(&bitmap, 0, count, entries.data());
    return count;
}

bool HaveEqualPalettes(const BitmapHandle& one, const BitmapHandle& other) {
    Entries ours, theirs;
    return ReadEntries(one, ours) == ReadEntries(other, theirs) &&
           std::memcmp(ours.data(), theirs.data(), sizeof ours) == 0;
}

// A frame in the form of a target; it owns what it holds.
class ConvertedFrame {
  public:
    ConvertedFrame() = default;
    ~ConvertedFrame() { Z_FreeBitmap(&record); }
    ConvertedFrame(const ConvertedFrame&) = delete;
    ConvertedFrame& operator=(const ConvertedFrame&) = delete;

    ReturnCode Make(BitmapHandle& frame, const BitmapHandle& target) {
        if (target.BitsPerPixel > MostIndexedBits) {
            const uint32_t order = target.Order == Z_ORDER_BGR ? uint32_t{COLORRES_ORDER_BGR} : 0;
            return Z_ColorResBitmap(&frame, &record, target.BitsPerPixel, order, nullptr, nullptr, 0, nullptr,
                                    0);
        }
        Entries entries;
        const uint32_t count = ReadEntries(target, entries);
        return Z_ColorResBitmap(&frame, &record, target.BitsPerPixel,
                                COLORRES_USER_PALETTE | DitherFloydSteinberg << 16, entries.data(), nullptr,
                                count, nullptr, 0);
    }

    BitmapHandle record{};
};

} // namespace

void Canvas::Clear() {
    Z_FillBitmap(target_, target_->PlaybackBackColor);
    Add(PixelRect::Whole(*target_));
}

void Canvas::DropSaved() {
    Z_FreeBitmap(&saved_);
}

PixelRect Canvas::PlaceOf(const BitmapHandle& frame) const {
    RECT place = PixelRect::At(frame.PlaybackLeft, frame.PlaybackTop, frame.Width, frame.Height).AsRect();
    if (Z_RectToBitmap(target_, view::TopLeft, &place) != code::Success) return {};
    return PixelRect::Of(place);
}

bool Canvas::IsInForm(const BitmapHandle& frame) const {
    if (frame.BitsPerPixel != target_->BitsPerPixel) return false;
    return frame.BitsPerPixel <= MostIndexedBits ? HaveEqualPalettes(frame, *target_)
                                                 : frame.Order == target_->Order;
}

void Canvas::Render(BitmapHandle& frame) {
    if (frame.DisposalMethod == PLAYBACK_DISPOSE_PREVIOUS) {
        DropSaved();
        savedPlace_ = PlaceOf(frame);
        if (!savedPlace_.IsEmpty())
            Z_CopyBitmapRect(&saved_, target_, savedPlace_.Left, savedPlace_.Top,
                             static_cast<int32_t>(savedPlace_.Width()),
                             static_cast<int32_t>(savedPlace_.Height()));
    }
    Draw(frame);
}

void Canvas::Draw(BitmapHandle& frame) {
    {
        TransparentRegion region(frame);
        if (HasFlag(frame, flag::PlaybackTransparency) && region.Cut() != code::Success) return;
        ConvertedFrame converted;
        BitmapHandle* drawn = &frame;
        if (!IsInForm(frame)) {
            if (converted.Make(frame, *target_) != code::Success) return;
            drawn = &converted.record;
        }
        Z_CombineBitmap(target_, frame.PlaybackLeft, frame.PlaybackTop, frame.Width, frame.Height, drawn, 0,
                        0, Copy);
    }
    Record(frame);
}

void Canvas::Dispose(BitmapHandle& frame) {
    if (frame.DisposalMethod == PLAYBACK_DISPOSE_BACKGROUND) {
        FillPlace(PlaceOf(frame));
        Record(frame);
    } else if (frame.DisposalMethod == PLAYBACK_DISPOSE_PREVIOUS && IsAllocated(&saved_)) {
        RestorePlace(savedPlace_);
        DropSaved();
        Record(frame);
    }
}

// The background reaches no further than the canvas' own region, which a cut copy stands for meanwhile.
void Canvas::FillPlace(const PixelRect& place) {
    RegionHandle* copy = nullptr;
    const auto own = target_->Region;
    if (Z_CopyZircRgn(&copy, static_cast<const RegionHandle*>(own)) != code::Success) return;
    target_->Region = copy;
    const RECT rectangle = place.AsRect();
    if (Z_SetBitmapRgnRect(target_, nullptr, &rectangle, Z_RGN_AND) == code::Success)
        Z_FillBitmap(target_, target_->PlaybackBackColor);
    Z_FreeBitmapRgn(target_);
    target_->Region = own;
}

void Canvas::RestorePlace(const PixelRect& place) {
    RECT shown = place.AsRect();
    if (Z_RectFromBitmap(target_, view::TopLeft, &shown) != code::Success) return;
    const PixelRect all = PixelRect::Of(shown); // one that lies far away may come back inverted
    Z_CombineBitmap(target_, all.Left, all.Top, Saturated(all.Width()), Saturated(all.Height()), &saved_, 0,
                    0, Copy);
}

void Canvas::Record(BitmapHandle& frame) {
    RECT bounds = {};
    if (Z_GetBitmapRgnBounds(&frame, nullptr, &bounds) != code::Success) return;
    if (frame.ViewPerspective != view::TopLeft &&
        Z_RectFromBitmap(&frame, view::TopLeft, &bounds) != code::Success)
        return;
    RECT placed = {Saturated(int64_t{bounds.left} + frame.PlaybackLeft),
                   Saturated(int64_t{bounds.top} + frame.PlaybackTop),
                   Saturated(int64_t{bounds.right} + frame.PlaybackLeft),
                   Saturated(int64_t{bounds.bottom} + frame.PlaybackTop)};
    if (Z_RectToBitmap(target_, view::TopLeft, &placed) == code::Success) Add(PixelRect::Of(placed));
}

void Canvas::Add(const PixelRect& changed) {
    const PixelRect inside = Intersection(changed, PixelRect::Whole(*target_));
    if (inside.IsEmpty()) return;
    update_ = update_.IsEmpty() ? inside : Union(update_, inside);
}

} // namespace zkr::playback
