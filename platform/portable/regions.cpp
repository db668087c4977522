#include "platform/portable/regions.h"

#include "platform/faults.h"
#include "platform/portable/shapes.h"
#include "zkr13n/surface.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>

namespace zkr::platform {

namespace {

RECT Ordered(const RECT& rect) {
    return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom), std::max(rect.left, rect.right),
            std::max(rect.top, rect.bottom)};
}

// A region of what make(set) makes.
template <typename Make> HRGN MakeRegionBy(Make make) {
    PixelSet set;
    if (fault::Due(fault::Region) || !make(set)) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return MakeRegion(std::move(set));
}

template <typename Result> Result Refuse(Result result) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return result;
}

} // namespace

HRGN MakeRegion(PixelSet set) {
    auto* region = new (std::nothrow) RegionObject;
    if (region == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    region->set = std::move(set);
    HANDLE handle = InsertHandle(RegionObject::kind, *region);
    if (handle == nullptr) region->Release();
    return static_cast<HRGN>(handle);
}

HRGN CreateRectRgn(int left, int top, int right, int bottom) {
    const RECT rect{left, top, right, bottom};
    return CreateRectRgnIndirect(&rect);
}

HRGN CreateRectRgnIndirect(const RECT* rect) {
    if (rect == nullptr) return Refuse(HRGN{});
    return MakeRegionBy([&](PixelSet& set) { return SetOfRect(Ordered(*rect), set); });
}

HRGN CreateEllipticRgnIndirect(const RECT* rect) {
    if (rect == nullptr) return Refuse(HRGN{});
    return MakeRegionBy([&](PixelSet& set) {
        constexpr int64_t Whole = std::numeric_limits<int64_t>::max();
        return SetOfRoundRect(Ordered(*rect), Whole, Whole, set);
    });
}

HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int cornerWidth, int cornerHeight) {
    const RECT rect{left, top, right, bottom};
    return MakeRegionBy(
        [&](PixelSet& set) { return SetOfRoundRect(Ordered(rect), cornerWidth, cornerHeight, set); });
}

HRGN CreatePolygonRgn(const POINT* points, int count, int fillMode) {
    if (points == nullptr || count < 2 || (fillMode != ALTERNATE && fillMode != WINDING))
        return Refuse(HRGN{});
    return MakeRegionBy([&](PixelSet& set) {
        Outline outline;
        const auto at = [&](int i) {
            return Outline::Point{points[i].x * Outline::One, points[i].y * Outline::One};
        };
        bool made = outline.MoveTo(at(0));
        for (int i = 1; i < count && made; ++i)
            made = outline.LineTo(at(i));
        return made && outline.Close() && outline.Fill(fillMode == ALTERNATE, set);
    });
}

HRGN ExtCreateRegion(const XFORM* transform, DWORD bytes, const RGNDATA* data) {
    if (transform != nullptr || data == nullptr || bytes < sizeof(RGNDATAHEADER)) return Refuse(HRGN{});
    const RGNDATAHEADER& header = data->rdh;
    if (header.dwSize < sizeof header || header.dwSize > bytes || header.iType != RDH_RECTANGLES ||
        header.nCount > (bytes - header.dwSize) / sizeof(RECT)) {
        return Refuse(HRGN{});
    }
    const auto* rects = reinterpret_cast<const RECT*>(reinterpret_cast<const char*>(data) + header.dwSize);
    return MakeRegionBy([&](PixelSet& set) { return SetOfRects(rects, header.nCount, set); });
}

int CombineRgn(HRGN destinationHandle, HRGN firstHandle, HRGN secondHandle, int mode) {
    const Pin<RegionObject> destination(destinationHandle), first(firstHandle);
    if (!destination || !first) return ERROR;
    PixelSet result = first->Get();
    if (mode != RGN_COPY) {
        constexpr Keep Modes[] = {Keep::And, Keep::Or, Keep::Xor, Keep::Difference};
        if (mode < RGN_AND || mode > RGN_DIFF) return Refuse(ERROR);
        const Pin<RegionObject> second(secondHandle);
        if (!second) return ERROR;
        if (fault::Due(fault::Region) || !Combine(result, second->Get(), Modes[mode - RGN_AND], result)) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return ERROR;
        }
    } else if (fault::Due(fault::Region)) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return ERROR;
    }
    const int complexity = Complexity(result);
    destination->Put(std::move(result));
    return complexity;
}

int OffsetRgn(HRGN handle, int dx, int dy) {
    const Pin<RegionObject> region(handle);
    if (!region) return ERROR;
    const std::scoped_lock lock(region->mutex);
    return region->set.Offset(dx, dy) ? Complexity(region->set) : Refuse(ERROR);
}

int GetRgnBox(HRGN handle, RECT* box) {
    const Pin<RegionObject> region(handle);
    if (!region) return ERROR;
    if (box == nullptr) return Refuse(ERROR);
    const PixelSet set = region->Get();
    *box = set.Bounds();
    return Complexity(set);
}

DWORD GetRegionData(HRGN handle, DWORD bytes, RGNDATA* data) {
    const Pin<RegionObject> region(handle);
    if (!region) return 0;
    const PixelSet set = region->Get();
    const auto rectBytes = static_cast<DWORD>(set.Count() * sizeof(RECT));
    const DWORD needed = sizeof(RGNDATAHEADER) + rectBytes;
    if (fault::Due(fault::Region)) return 0;
    if (data == nullptr) return needed;
    if (bytes < needed) return Refuse(DWORD{0});
    data->rdh = {sizeof(RGNDATAHEADER), RDH_RECTANGLES, static_cast<DWORD>(set.Count()), rectBytes,
                 set.Bounds()};
    set.CopyRects(set.Count(),
                  reinterpret_cast<RECT*>(reinterpret_cast<char*>(data) + sizeof(RGNDATAHEADER)));
    return needed;
}

} // namespace zkr::platform

using namespace zkr::platform;

ReturnCode Z_CALL Z_CreatePlatformRegion(const RECT* rects, int32_t count, HRGN* regionOut) {
    if (count < 0 || (rects == nullptr && count > 0) || regionOut == nullptr) return Z_ERROR_ARGUMENT;
    HRGN region =
        MakeRegionBy([&](PixelSet& set) { return SetOfRects(rects, static_cast<size_t>(count), set); });
    if (region == nullptr) return Z_ERROR_MEMORY;
    *regionOut = region;
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_GetPlatformRegionRects(HRGN handle, RECT* rects, int32_t* count) {
    const Pin<RegionObject> region(handle);
    if (!region || count == nullptr || *count < 0 || (rects == nullptr && *count > 0))
        return Z_ERROR_ARGUMENT;
    const PixelSet set = region->Get();
    set.CopyRects(std::min(set.Count(), static_cast<size_t>(*count)), rects);
    *count = static_cast<int32_t>(set.Count());
    return Z_SUCCESS;
}
