// A dispatch table whose moves of regions are written down, and can be made to fail.
#pragma once

#include "core/dispatch.h"
#include "core/return_codes.h"

#include <string>

namespace zkr::test {

class NotedSlots {
  public:
    inline static std::string Calls;
    inline static ReturnCode Result;

    NotedSlots() {
        Calls.clear();
        Result = code::Success;
        table_.FlipBitmapRegion = [](BitmapHandle* bitmap) { return Note("flip", *bitmap); };
        table_.ReverseRegion = [](BitmapHandle* bitmap) { return Note("reverse", *bitmap); };
        table_.RotateRegion = [](BitmapHandle* bitmap, int32_t width, int32_t height, int32_t angle) {
            return Note("turn by " + std::to_string(angle) + " of " + std::to_string(width) + " x " +
                            std::to_string(height),
                        *bitmap);
        };
        before_ = ExchangeDispatch(&table_);
    }
    ~NotedSlots() { ExchangeDispatch(before_); }
    NotedSlots(const NotedSlots&) = delete;
    NotedSlots& operator=(const NotedSlots&) = delete;

  private:
    // With the size and the region that the bitmap has when the slot is called.
    static ReturnCode Note(const std::string& what, const BitmapHandle& bitmap) {
        Calls += what + " in " + std::to_string(bitmap.Width) + " x " + std::to_string(bitmap.Height) +
                 (bitmap.Region != nullptr ? " with a region; " : "; ");
        return Result;
    }

    DispatchTable table_{};
    const DispatchTable* before_;
};

} // namespace zkr::test
