// Brushes: one colour, or a pattern of pixels that is repeated from the brush origin.
#pragma once

#include "platform/portable/graphics.h"
#include "platform/portable/handle_table.h"
#include "platform/portable/surfaces.h"

#include <atomic>

namespace zkr::platform {

// Never changes once it is made.
struct Brush final : Object {
    static constexpr ObjectKind kind = ObjectKind::Brush;

    COLORREF colour = 0;
    Ref<Surface> pattern; // null: one colour

    void Hold() { references.fetch_add(1, std::memory_order_relaxed); }
    void Drop() {
        if (references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }
    void Release() override { Drop(); }

    std::atomic<uint32_t> references{1};
};

struct ContextState;

// A brush under a context, as values of the target's pixels.
class PreparedBrush {
  public:
    PreparedBrush() = default;
    ~PreparedBrush();
    PreparedBrush(const PreparedBrush&) = delete;
    PreparedBrush& operator=(const PreparedBrush&) = delete;

    bool Prepare(const ContextState& state, const Pixels& target); // false where memory is short

    bool IsSolid() const { return width_ == 1 && height_ == 1; }
    // The target's pixels from a place on, as kernels store them.
    void Store(int64_t x, int64_t y, int count, int bitsPerPixel, uint8_t* out, int firstBit) const;

  private:
    uint32_t one_ = 0;
    uint32_t* values_ = &one_; // row by row
    int width_ = 1, height_ = 1;
    POINT origin_{};
};

} // namespace zkr::platform
