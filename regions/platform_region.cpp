// Records to and from platform regions. The platform takes rectangles in lists of some thousand; longer ones are made
// in parts that are united two by two.
#include "regions/platform_region.h"

#include "core/assertion.h"
#include "core/scratch.h"
#include "regions/transforms.h"

#include <algorithm>
#include <cstring>

namespace zkr {

namespace {

constexpr size_t HeaderRectangles = sizeof(platform::RGNDATAHEADER) / sizeof(RECT);
static_assert(sizeof(platform::RGNDATAHEADER) == 32 && sizeof(RECT) == 16);

void SetHeader(platform::RGNDATAHEADER& header, size_t count, const PixelRect& bound) {
    header.dwSize = sizeof(platform::RGNDATAHEADER);
    header.iType = RDH_RECTANGLES;
    header.nCount = static_cast<uint32_t>(count);
    header.nRgnSize = static_cast<uint32_t>(count * sizeof(RECT));
    header.rcBound = bound.AsRect();
}

// Makes platform regions of stretches of one list, from its front to its end. The platform wants a header in front of
// the rectangles: it takes the place of two that have been used, or of the two spare ones before the first.
class RectangleList {
  public:
    RectangleList(RECT* rectangles, size_t count, const PixelRect& bound)
        : next_(rectangles), count_(count), bound_(bound) {}

    HRGN Make() { return Make(count_, MostAtOnce); }

  private:
    static constexpr size_t MostAtOnce = 4000;

    // Of the next `count` rectangles. What the platform refuses is tried again in halves. The depth of the recursion
    // is the logarithm of the count.
    HRGN Make(size_t count, size_t limit) {
        if (count <= limit) {
            if (const HRGN region = MakeAtOnce(count)) return region;
            if (limit <= 1 || count <= 1) return nullptr;
            limit = std::min(limit / 2, count);
        }
        const size_t second = (count + 1) / 2;
        OwnedPlatformRegion first(Make(count - second, limit));
        if (!first) return nullptr;
        const OwnedPlatformRegion rest(Make(second, limit));
        if (!rest || platform::CombineRgn(first.get(), first.get(), rest.get(), RGN_OR) == ERROR)
            return nullptr;
        return first.Release();
    }

    HRGN MakeAtOnce(size_t count) {
        platform::RGNDATAHEADER header;
        const PixelRect bound = {bound_.Left, next_[0].top, bound_.Right, next_[count - 1].bottom};
        SetHeader(header, count, bound);
        RECT* const data = next_ - HeaderRectangles;
        std::memcpy(data, &header, sizeof(header));
        const HRGN region = platform::ExtCreateRegion(
            nullptr, static_cast<uint32_t>((count + HeaderRectangles) * sizeof(RECT)),
            reinterpret_cast<const platform::RGNDATA*>(data));
        if (region != nullptr) next_ += count;
        return region;
    }

    RECT* next_;
    size_t count_;
    PixelRect bound_;
};

bool AreEqual(const Runs& a, const Runs& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

// Writes the rectangles of equal rows as the transform shows them; gives their number.
size_t ListRectangles(const BitmapHandle* bitmap, const RegionHandle& region, const RegionXform* xform,
                      RECT* rectangles, PixelRect& bound) {
    size_t count = 0;
    bound = {};
    for (int32_t row = region.Top, next; row < region.Bottom; row = next) {
        const Runs runs = RowRuns(region, row);
        next = row + 1;
        while (next < region.Bottom && AreEqual(runs, RowRuns(region, next)))
            ++next;
        for (size_t i = 0; i < runs.size(); i += 2) {
            RECT rectangle = {runs[i], row, runs[i + 1], next};
            [[maybe_unused]] const ReturnCode status = TransformRect(bitmap, xform, &rectangle);
            ZKR_ASSERT(status == code::Success); // both have been tested
            const PixelRect shown = PixelRect::Of(rectangle);
            if (shown.IsEmpty()) continue;
            bound = Union(bound, shown);
            rectangles[count++] = rectangle;
        }
    }
    return count;
}

// Rectangles in bands: those of one band have its top and bottom and stand side by side.
bool LieInBands(std::span<const RECT> rectangles) {
    for (size_t i = 1; i < rectangles.size(); ++i) {
        const RECT& before = rectangles[i - 1];
        const RECT& here = rectangles[i];
        const bool sameBand = before.top == here.top;
        if (sameBand ? before.bottom != here.bottom || here.left < before.right : before.bottom > here.top)
            return false;
    }
    return true;
}

ReturnCode BuildBands(std::span<const RECT> rectangles, const PixelRect& box, OwnedRegion& result) {
    RegionBuilder builder;
    ReturnCode status = builder.Begin(box, rectangles.size() * 2, rectangles.size() * 2);
    int64_t row = box.Top;
    for (size_t i = 0; i < rectangles.size() && status == code::Success;) {
        const RECT band = rectangles[i];
        builder.SkipRows(band.top - row);
        for (; i < rectangles.size() && rectangles[i].top == band.top; ++i)
            builder.AddRun(rectangles[i].left, rectangles[i].right);
        status = builder.EndRows(int64_t{band.bottom} - band.top);
        row = band.bottom;
    }
    if (status == code::Success) builder.Finish(result);
    return status;
}

} // namespace

HRGN DuplicatePlatformRegion(HRGN region) {
    OwnedPlatformRegion copy(platform::CreateRectRgn(0, 0, 0, 0));
    if (!copy || platform::CombineRgn(copy.get(), region, nullptr, RGN_COPY) == ERROR) return nullptr;
    return copy.Release();
}

ReturnCode RegionToPlatform(const BitmapHandle* bitmap, const RegionHandle* region, const RegionXform* xform,
                            HRGN* result) {
    if (region == nullptr || result == nullptr) return code::InvalidArgument;
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (xform != nullptr && !IsValidXform(*xform)) return code::InvalidArgument;
    const size_t most = region->SegmentBytes / (2 * sizeof(int32_t));
    ScratchBuffer<RECT> list(most + HeaderRectangles);
    if (!list) return code::OutOfMemory;
    RECT* const rectangles = list.data() + HeaderRectangles;
    PixelRect bound;
    const size_t count = ListRectangles(bitmap, *region, xform, rectangles, bound);
    std::sort(rectangles, rectangles + count,
              [](const RECT& a, const RECT& b) { return a.top != b.top ? a.top < b.top : a.left < b.left; });
    const HRGN made =
        count == 0 ? platform::CreateRectRgn(0, 0, 0, 0) : RectangleList(rectangles, count, bound).Make();
    if (made == nullptr) return code::OutOfMemory;
    *result = made;
    return code::Success;
}

ReturnCode RegionFromPlatform(HRGN platformRegion, OwnedRegion& result) {
    RECT box{};
    if (platformRegion == nullptr || platform::GetRgnBox(platformRegion, &box) == ERROR)
        return code::InvalidArgument;
    const uint32_t bytes = platform::GetRegionData(platformRegion, 0, nullptr);
    if (bytes < sizeof(platform::RGNDATAHEADER)) return code::InvalidArgument;
    ScratchBuffer<RECT> data(bytes / sizeof(RECT) + 1);
    if (!data) return code::OutOfMemory;
    const uint32_t got =
        platform::GetRegionData(platformRegion, bytes, reinterpret_cast<platform::RGNDATA*>(data.data()));
    platform::RGNDATAHEADER header;
    std::memcpy(&header, data.data(), sizeof(header));
    if (got != bytes || header.dwSize != sizeof(header) || header.iType != RDH_RECTANGLES ||
        header.nCount > (bytes - sizeof(header)) / sizeof(RECT))
        return code::InvalidArgument;
    const std::span<const RECT> rectangles(data.data() + HeaderRectangles, header.nCount);
    if (!LieInBands(rectangles)) return code::InvalidArgument;
    return BuildBands(rectangles, PixelRect::Of(box), result);
}

} // namespace zkr
