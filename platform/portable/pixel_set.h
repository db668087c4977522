// Sets of pixels, what region objects and the clips of device contexts hold: rectangles from top to bottom in
// bands. All rectangles of a band have the same top and bottom and stand apart from left to right; two bands
// that touch differ in their runs. So a set of pixels has one form, and all operations are linear in it.
#pragma once

#include "platform/portable/types.h"

#include <atomic>
#include <cstddef>

namespace zkr::platform {

// Rectangles that never change once they are shared between sets.
struct PixelRects {
    std::atomic<uint32_t> references{1};
    RECT bounds{};
    size_t count = 0; // of the rectangles behind this record

    RECT* Rects() { return reinterpret_cast<RECT*>(this + 1); }
};

// A set is a value: copying and moving it about share its rectangles and cost nothing.
class PixelSet {
  public:
    PixelSet() = default; // empty
    PixelSet(const PixelSet& other);
    PixelSet& operator=(PixelSet other) noexcept;
    ~PixelSet();

    bool IsEmpty() const { return rects_ == nullptr; }
    size_t Count() const { return rects_ == nullptr ? 0 : rects_->count; }
    RECT operator[](size_t i) const { return Moved(rects_->Rects()[i]); }
    RECT Bounds() const { return rects_ == nullptr ? RECT{} : Moved(rects_->bounds); }
    void CopyRects(size_t count, RECT* out) const;
    bool Contains(int32_t x, int32_t y) const;
    // The first rectangle that ends below a row.
    size_t FirstBelow(int32_t y) const;

    // False where a coordinate would leave 32 bits; the set stays.
    bool Offset(int32_t dx, int32_t dy);

  private:
    friend class BandWriter;

    RECT Moved(const RECT& rect) const;

    PixelRects* rects_ = nullptr; // null: empty
    uint32_t dx_ = 0, dy_ = 0;    // added to all coordinates, modulo 2^32
};

// Writes a set band by band from the top. Runs that touch become one, and so do equal bands.
class BandWriter {
  public:
    BandWriter() = default;
    ~BandWriter();
    BandWriter(const BandWriter&) = delete;
    BandWriter& operator=(const BandWriter&) = delete;

    void StartBand(int32_t top, int32_t bottom);
    void Add(int32_t left, int32_t right) { // runs in rising order; empty ones are left out
        if (left >= right) return;
        if (count_ > band_ && rects_->Rects()[count_ - 1].right == left)
            rects_->Rects()[count_ - 1].right = right;
        else
            Append(left, right);
    }
    void EndBand();
    bool Failed() const { return failed_; }
    bool Finish(PixelSet& out); // false where memory is short

  private:
    void Append(int32_t left, int32_t right);

    PixelRects* rects_ = nullptr;
    size_t count_ = 0, room_ = 0;
    size_t band_ = 0, bandBefore_ = 0; // the first rectangles of the last two bands
    int32_t top_ = 0, bottom_ = 0;
    bool failed_ = false;
};

// Which pixels of two sets a combination keeps.
enum class Keep : unsigned {
    OnlySecond = 2, // bits of the truth table
    OnlyFirst = 4,
    InBoth = 8,

    And = InBoth,
    Or = OnlyFirst | OnlySecond | InBoth,
    Xor = OnlyFirst | OnlySecond,
    Difference = OnlyFirst,
};

// All of these give false where memory is short, and then leave out as it was.
bool Combine(const PixelSet& first, const PixelSet& second, Keep keep, PixelSet& out);
bool SetOfRect(const RECT& rect, PixelSet& out); // empty for an inverted one
// Rectangles in any order; they may overlap, and empty ones do not count.
bool SetOfRects(const RECT* rects, size_t count, PixelSet& out);

} // namespace zkr::platform
