#include "platform/portable/pixel_set.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace zkr::platform {

namespace {

constexpr size_t MaxRects = size_t{1} << 23; // of one set: 128 megabytes

size_t BytesFor(size_t rects) {
    return sizeof(PixelRects) + rects * sizeof(RECT);
}
void Drop(PixelRects* rects) {
    if (rects != nullptr && rects->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        std::free(static_cast<void*>(rects));
}
int32_t Plus(int32_t a, uint32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + b);
}
bool Fits(int64_t value) {
    return value == static_cast<int32_t>(value);
}

} // namespace

PixelSet::PixelSet(const PixelSet& other) : rects_(other.rects_), dx_(other.dx_), dy_(other.dy_) {
    if (rects_ != nullptr) rects_->references.fetch_add(1, std::memory_order_relaxed);
}
PixelSet& PixelSet::operator=(PixelSet other) noexcept {
    std::swap(rects_, other.rects_);
    std::swap(dx_, other.dx_);
    std::swap(dy_, other.dy_);
    return *this;
}
PixelSet::~PixelSet() {
    Drop(rects_);
}

RECT PixelSet::Moved(const RECT& rect) const {
    return {Plus(rect.left, dx_), Plus(rect.top, dy_), Plus(rect.right, dx_), Plus(rect.bottom, dy_)};
}

void PixelSet::CopyRects(size_t count, RECT* out) const {
    for (size_t i = 0; i < count; ++i)
        out[i] = (*this)[i];
}

size_t PixelSet::FirstBelow(int32_t y) const {
    if (rects_ == nullptr) return 0;
    const RECT* begin = rects_->Rects();
    const auto* found = std::partition_point(begin, begin + rects_->count,
                                             [&](const RECT& rect) { return Plus(rect.bottom, dy_) <= y; });
    return static_cast<size_t>(found - begin);
}

bool PixelSet::Contains(int32_t x, int32_t y) const {
    for (size_t i = FirstBelow(y); i < Count(); ++i) {
        const RECT rect = (*this)[i];
        if (rect.top > y || rect.left > x) return false;
        if (x < rect.right) return true;
    }
    return false;
}

bool PixelSet::Offset(int32_t dx, int32_t dy) {
    if (rects_ == nullptr) return true;
    const RECT bounds = Bounds();
    if (!Fits(int64_t{bounds.left} + dx) || !Fits(int64_t{bounds.right} + dx) ||
        !Fits(int64_t{bounds.top} + dy) || !Fits(int64_t{bounds.bottom} + dy)) {
        return false;
    }
    dx_ += static_cast<uint32_t>(dx);
    dy_ += static_cast<uint32_t>(dy);
    return true;
}

BandWriter::~BandWriter() {
    std::free(rects_);
}

void BandWriter::StartBand(int32_t top, int32_t bottom) {
    top_ = top;
    bottom_ = bottom;
}

void BandWriter::Append(int32_t left, int32_t right) {
    if (failed_) return;
    if (count_ == room_) {
        const size_t room = room_ == 0 ? 16 : room_ * 2;
        auto* grown =
            room > MaxRects
                ? nullptr
                : static_cast<PixelRects*>(std::realloc(static_cast<void*>(rects_), BytesFor(room)));
        if (grown == nullptr) {
            failed_ = true;
            return;
        }
        rects_ = grown;
        room_ = room;
    }
    rects_->Rects()[count_++] = {left, top_, right, bottom_};
}

void BandWriter::EndBand() {
    const size_t runs = count_ - band_;
    if (runs == 0) return;
    RECT* before = rects_->Rects() + bandBefore_;
    const RECT* now = rects_->Rects() + band_;
    const auto sameRun = [](const RECT& a, const RECT& b) { return a.left == b.left && a.right == b.right; };
    if (band_ - bandBefore_ == runs && before->bottom == top_ &&
        std::equal(now, now + runs, before, sameRun)) {
        for (size_t i = 0; i < runs; ++i)
            before[i].bottom = bottom_;
        count_ = band_;
        return;
    }
    bandBefore_ = band_;
    band_ = count_;
}

bool BandWriter::Finish(PixelSet& out) {
    if (failed_) return false;
    PixelSet made;
    if (count_ != 0) {
        if (void* shrunk = std::realloc(static_cast<void*>(rects_), BytesFor(count_)))
            rects_ = static_cast<PixelRects*>(shrunk);
        new (&rects_->references) std::atomic<uint32_t>(1);
        rects_->count = count_;
        RECT bounds = rects_->Rects()[0];
        for (const RECT* rect = rects_->Rects(); rect != rects_->Rects() + count_; ++rect) {
            bounds.left = std::min(bounds.left, rect->left);
            bounds.right = std::max(bounds.right, rect->right);
        }
        bounds.bottom = rects_->Rects()[count_ - 1].bottom;
        rects_->bounds = bounds;
        made.rects_ = std::exchange(rects_, nullptr);
    }
    out = std::move(made);
    return true;
}

namespace {

// The bands of a set from the top.
class Bands {
  public:
    explicit Bands(const PixelSet& set) : set_(set) { Find(0); }

    bool Valid() const { return first_ < set_.Count(); }
    int32_t Top() const { return top_; }
    int32_t Bottom() const { return bottom_; }
    size_t Edges() const { return 2 * (end_ - first_); }
    int32_t Edge(size_t i) const { // of the runs, from left to right
        const RECT rect = set_[first_ + i / 2];
        return i % 2 == 0 ? rect.left : rect.right;
    }
    void Next() { Find(end_); }

  private:
    void Find(size_t first) {
        first_ = end_ = first;
        if (!Valid()) return;
        top_ = set_[first].top;
        bottom_ = set_[first].bottom;
        while (end_ < set_.Count() && set_[end_].top == top_)
            ++end_;
    }

    const PixelSet& set_;
    size_t first_ = 0, end_ = 0;
    int32_t top_ = 0, bottom_ = 0;
};

bool Keeps(Keep keep, bool inFirst, bool inSecond) {
    return (static_cast<unsigned>(keep) >> (inFirst * 2 + inSecond) & 1) != 0;
}

// The rows where only one of two sets has a band.
void AddRuns(const Bands& bands, BandWriter& writer) {
    for (size_t i = 0; i < bands.Edges(); i += 2)
        writer.Add(bands.Edge(i), bands.Edge(i + 1));
}

void MergeRuns(const Bands& first, const Bands& second, Keep keep, BandWriter& writer) {
    const size_t firstEdges = first.Edges(), secondEdges = second.Edges();
    size_t i = 0, j = 0;
    bool inside = false;
    int32_t start = 0;
    while (i < firstEdges || j < secondEdges) {
        const bool stepFirst = i < firstEdges && (j >= secondEdges || first.Edge(i) <= second.Edge(j));
        const bool stepSecond = j < secondEdges && (i >= firstEdges || second.Edge(j) <= first.Edge(i));
        const int32_t x = stepFirst ? first.Edge(i) : second.Edge(j);
        i += stepFirst;
        j += stepSecond;
        const bool now = Keeps(keep, i % 2 == 1, j % 2 == 1);
        if (inside && !now) writer.Add(start, x);
        if (now && !inside) start = x;
        inside = now;
    }
}

} // namespace

bool Combine(const PixelSet& first, const PixelSet& second, Keep keep, PixelSet& out) {
    if (first.IsEmpty() || second.IsEmpty()) {
        const bool kept = Keeps(keep, second.IsEmpty(), first.IsEmpty());
        out = !kept ? PixelSet() : second.IsEmpty() ? first : second;
        return true;
    }
    BandWriter writer;
    Bands a(first), b(second);
    int32_t y = std::min(a.Top(), b.Top());
    while ((a.Valid() || b.Valid()) && !writer.Failed()) {
        const bool inA = a.Valid() && a.Top() <= y, inB = b.Valid() && b.Top() <= y;
        int32_t end = 0x7FFFFFFF;
        if (a.Valid()) end = std::min(end, inA ? a.Bottom() : a.Top());
        if (b.Valid()) end = std::min(end, inB ? b.Bottom() : b.Top());
        writer.StartBand(y, end);
        if (inA && inB)
            MergeRuns(a, b, keep, writer);
        else if ((inA && Keeps(keep, true, false)) || (inB && Keeps(keep, false, true)))
            AddRuns(inA ? a : b, writer);
        writer.EndBand();
        if (inA && a.Bottom() == end) a.Next();
        if (inB && b.Bottom() == end) b.Next();
        y = end;
    }
    return writer.Finish(out);
}

bool SetOfRect(const RECT& rect, PixelSet& out) {
    BandWriter writer;
    if (rect.top < rect.bottom) {
        writer.StartBand(rect.top, rect.bottom);
        writer.Add(rect.left, rect.right);
        writer.EndBand();
    }
    return writer.Finish(out);
}

namespace {

bool IsEmptyRect(const RECT& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

// Whether rectangles stand in bands from the top and, in each, apart from left to right.
bool StandInBands(const RECT* rects, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (IsEmptyRect(rects[i])) return false;
        if (i == 0) continue;
        const RECT &before = rects[i - 1], &now = rects[i];
        const bool sameBand =
            now.top == before.top && now.bottom == before.bottom && now.left >= before.right;
        if (!sameBand && now.top < before.bottom) return false;
    }
    return true;
}

bool SetOfBands(const RECT* rects, size_t count, PixelSet& out) {
    BandWriter writer;
    for (size_t i = 0; i < count && !writer.Failed();) {
        const int32_t top = rects[i].top;
        writer.StartBand(top, rects[i].bottom);
        for (; i < count && rects[i].top == top; ++i)
            writer.Add(rects[i].left, rects[i].right);
        writer.EndBand();
    }
    return writer.Finish(out);
}

bool SetOfSorted(const RECT* rects, size_t count, PixelSet& out) {
    if (StandInBands(rects, count)) return SetOfBands(rects, count, out);
    if (count == 1) return SetOfRect(rects[0], out);
    PixelSet upper, lower;
    return SetOfSorted(rects, count / 2, upper) && SetOfSorted(rects + count / 2, count - count / 2, lower) &&
           Combine(upper, lower, Keep::Or, out);
}

} // namespace

bool SetOfRects(const RECT* rects, size_t count, PixelSet& out) {
    if (count > MaxRects) return false;
    if (count == 0 || StandInBands(rects, count)) return SetOfBands(rects, count, out);
    auto* sorted = static_cast<RECT*>(std::malloc(count * sizeof(RECT)));
    if (sorted == nullptr) return false;
    RECT* end =
        std::copy_if(rects, rects + count, sorted, [](const RECT& rect) { return !IsEmptyRect(rect); });
    std::sort(sorted, end,
              [](const RECT& a, const RECT& b) { return a.top != b.top ? a.top < b.top : a.left < b.left; });
    const bool made = SetOfSorted(sorted, static_cast<size_t>(end - sorted), out);
    std::free(sorted);
    return made;
}

} // namespace zkr::platform
