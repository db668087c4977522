// Where storage comes to lie on a device. Columns and rows of storage, scaled first where the scale is not one to one, run
// along one of the device's axes each, forwards or backwards.
#pragma once

#include "core/rectangle.h"
#include "core/return_codes.h"
#include "zkr13n/bitmap.h"

#include <algorithm>
#include <cstdint>

namespace zkr {

// From From on, up to To, which is not part of it.
struct Range {
    int64_t From;
    int64_t To;

    constexpr bool IsEmpty() const { return To <= From; }
    constexpr int64_t Length() const { return To - From; }
    constexpr Range And(const Range& other) const {
        return {std::max(From, other.From), std::min(To, other.To)};
    }
};

struct Area {
    Range Columns; // or X
    Range Rows;    // or Y

    static constexpr Area Of(const PixelRect& rect) {
        return {{rect.Left, rect.Right}, {rect.Top, rect.Bottom}};
    }
    constexpr bool IsEmpty() const { return Columns.IsEmpty() || Rows.IsEmpty(); }
    constexpr Area And(const Area& other) const { return {Columns.And(other.Columns), Rows.And(other.Rows)}; }
};

// One axis of storage.
struct PaintAxis {
    int32_t Size = 0;       // of the bitmap
    Range Source{};         // what of it the destination shows
    int64_t DeviceFrom = 0; // where that begins on the device
    int64_t DeviceSize = 0; // and how far it reaches there
    bool Reversed = false;

    bool IsScaled() const { return Source.Length() != DeviceSize; }

    // The bitmap's scaled size, at least 1, by the scale of the source; may not fit 32 bits.
    int64_t ScaledSize() const;

    // The scaled place of an edge of 0 and more, or of the source's own start: the first scaled pixel at or behind it.
    int64_t ScaledEdge(int64_t edge) const;
    Range Scaled(const Range& range) const { return {ScaledEdge(range.From), ScaledEdge(range.To)}; }

    // Scaled places to the device and back.
    Range OnDevice(const Range& scaled) const { return Moved(scaled, ScaledEdge(Source.From), DeviceFrom); }
    Range FromDevice(const Range& device) const { return Moved(device, DeviceFrom, ScaledEdge(Source.From)); }

  private:
    Range Moved(const Range& range, int64_t from, int64_t to) const {
        if (!Reversed) return {range.From - from + to, range.To - from + to};
        return {from + DeviceSize - range.To + to, from + DeviceSize - range.From + to};
    }
};

struct Placement {
    PaintAxis Columns;
    PaintAxis Rows;
    bool Turned = false; // columns of storage run along the device's Y

    // Of a source and the rectangle of the device that shows it, neither of them empty, in a view; a value that is none is
    // taken as VIEW_TOP_LEFT.
    Placement(const BitmapHandle& bitmap, const Area& source, const Area& device, int32_t view,
              bool upsideDown);

    bool IsScaled() const { return Columns.IsScaled() || Rows.IsScaled(); }
    Area OnDevice(const Area& scaled) const {
        const Range x = Columns.OnDevice(scaled.Columns), y = Rows.OnDevice(scaled.Rows);
        return Turned ? Area{y, x} : Area{x, y};
    }
    Area FromDevice(const Area& device) const {
        return {Columns.FromDevice(Turned ? device.Rows : device.Columns),
                Rows.FromDevice(Turned ? device.Columns : device.Rows)};
    }
};

} // namespace zkr
