#include "platform/portable/blit.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace zkr::platform {

namespace {

struct Area {
    int64_t left, top, right, bottom;

    bool IsEmpty() const { return left >= right || top >= bottom; }
    Area And(const Area& other) const {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
};

// Narrows a range of the target to places whose source is there. The way is monotonous, so that two cuts do.
void CutToSource(const Axis& axis, int64_t extent, int64_t& first, int64_t& end) {
    const auto there = [&](int64_t at) {
        const int64_t place = axis.Source(at);
        return place >= 0 && place < extent;
    };
    if (axis.RunsAlong()) {
        first = std::max(first, axis.to - axis.from);
        end = std::min(end, axis.to - axis.from + extent);
        return;
    }
    while (first < end && !there(first))
        ++first;
    while (first < end && !there(end - 1))
        --end;
}

class Painter {
  public:
    explicit Painter(const Blit& blit)
        : blit_(blit), target_(blit.target), bits_(blit.target.bitsPerPixel),
          pattern_(blit.operation.NeedsPattern()), source_(blit.operation.NeedsSource()) {}
    ~Painter() { std::free(columns_); }
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    bool Prepare(const Area& area, RowConverter* converter) {
        converter_ = converter;
        left_ = area.left;
        if (pattern_ && blit_.brush->IsSolid())
            blit_.brush->Store(0, 0, RowConverter::Most, bits_, patternBytes_, 0);
        if (!source_ || blit_.x.RunsAlong()) return true;
        columns_ = static_cast<int32_t*>(
            std::malloc(static_cast<size_t>(area.right - area.left) * sizeof *columns_));
        if (columns_ == nullptr) return false;
        for (int64_t x = area.left; x < area.right; ++x)
            columns_[x - area.left] = static_cast<int32_t>(blit_.x.Source(x));
        return true;
    }

    void Paint(const Area& area) {
        const bool copies = source_ && blit_.operation.CopiesSource();
        const bool straight = copies && bits_ >= 8;
        const bool packed = copies && bits_ < 8 && MovesBytes(area);
        const auto rowBytes = static_cast<size_t>((area.right - area.left) * bits_ / 8);
        int64_t before = -1; // the source row that the target row above shows
        for (int64_t y = area.top; y < area.bottom; ++y) {
            const int64_t from = source_ ? blit_.y.Source(y) : 0;
            if (!straight) {
                PaintRow(packed ? CopyBytes(area, y, from) : area, y, from);
                continue;
            }
            uint8_t* out = target_.Row(y) + area.left * bits_ / 8;
            if (from == before && columns_ != nullptr)
                std::memcpy(out, target_.Row(y - 1) + area.left * bits_ / 8, rowBytes);
            else
                Fetch(from, area.left, area.right - area.left, out, 0);
            before = from;
        }
    }

  private:
    // Whether packed pixels stay as they are and where they are in their bytes.
    bool MovesBytes(const Area& area) const {
        const int64_t bit = area.left * bits_, from = blit_.x.Source(area.left) * bits_;
        return columns_ == nullptr && converter_->KeepsPixels() && bit % 8 == 0 && from % 8 == 0;
    }

    // Copies the whole bytes of a row, and tells what is left of it.
    Area CopyBytes(const Area& area, int64_t y, int64_t from) const {
        const int64_t bytes = (area.right - area.left) * bits_ / 8;
        std::memcpy(target_.Row(y) + area.left * bits_ / 8,
                    blit_.source->Row(from) + blit_.x.Source(area.left) * bits_ / 8,
                    static_cast<size_t>(bytes));
        return {area.left + bytes * 8 / bits_, area.top, area.right, area.bottom};
    }

    void Fetch(int64_t row, int64_t x, int64_t count, uint8_t* out, int firstBit) {
        const uint8_t* pixels = blit_.source->Row(row);
        if (columns_ != nullptr)
            converter_->Pick(pixels, columns_ + (x - left_), count, out, firstBit);
        else
            converter_->Convert(pixels, blit_.x.Source(x), count, out, firstBit);
    }

    void PaintRow(const Area& area, int64_t y, int64_t from) {
        // A pixel less than fits, for the bits in front of the first one.
        constexpr int64_t Step = RowConverter::Most - 8;
        for (int64_t x = area.left; x < area.right; x += Step) {
            const auto count = static_cast<int>(std::min(Step, area.right - x));
            const int64_t bit = x * bits_;
            const auto firstBit = static_cast<int>(bit & 7);
            if (source_) Fetch(from, x, count, sourceBytes_, firstBit);
            if (pattern_ && !blit_.brush->IsSolid())
                blit_.brush->Store(x, y, count, bits_, patternBytes_, firstBit);
            blit_.operation.Run(target_.Row(y) + (bit >> 3), sourceBytes_, patternBytes_, firstBit,
                                count * bits_);
        }
    }

    static constexpr size_t WorkBytes = RowConverter::Most * 4 + 8;

    const Blit& blit_;
    const Pixels& target_;
    const int bits_;
    const bool pattern_, source_;
    int64_t left_ = 0;
    RowConverter* converter_ = nullptr;
    int32_t* columns_ = nullptr; // of the source, from left_ on; null: side by side
    uint8_t sourceBytes_[WorkBytes] = {}, patternBytes_[WorkBytes] = {};
};

} // namespace

bool Blit::Run() const {
    Area area{x.First(), y.First(), x.End(), y.End()};
    area = area.And({0, 0, target.width, target.height});
    if (clip != nullptr) {
        const RECT bounds = clip->Bounds();
        area = area.And({bounds.left, bounds.top, bounds.right, bounds.bottom});
    }
    const bool fetches = operation.NeedsSource();
    if (area.IsEmpty() || target.topRow == nullptr || (fetches && source->topRow == nullptr)) return true;
    if (fetches) {
        CutToSource(x, source->width, area.left, area.right);
        CutToSource(y, source->height, area.top, area.bottom);
        if (area.IsEmpty()) return true;
    }
    RowConverter converter(fetches ? *source : target, target, colours);
    Painter painter(*this);
    if (!painter.Prepare(area, &converter)) return false;
    if (clip == nullptr) {
        painter.Paint(area);
        return true;
    }
    for (size_t i = clip->FirstBelow(static_cast<int32_t>(area.top)); i < clip->Count(); ++i) {
        const RECT rect = (*clip)[i];
        if (rect.top >= area.bottom) break;
        const Area part = area.And({rect.left, rect.top, rect.right, rect.bottom});
        if (!part.IsEmpty()) painter.Paint(part);
    }
    return true;
}

} // namespace zkr::platform
