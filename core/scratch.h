// Working memory of one operation: from Z_Malloc, released at the end of the scope.
#pragma once

#include "core/assertion.h"
#include "zkr13n/allocation.h"
#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zkr {

template <typename T> class ScratchBuffer {
    static_assert(std::is_trivial_v<T>);

  public:
    // Test with operator bool: an allocation that failed, or a count whose bytes do not fit, leaves it empty.
    explicit ScratchBuffer(size_t count)
        : data_(count <= std::numeric_limits<size_t>::max() / sizeof(T)
                    ? static_cast<T*>(Z_Malloc(count * sizeof(T)))
                    : nullptr) {}
    ~ScratchBuffer() { Z_Free(data_); }
    ScratchBuffer(const ScratchBuffer&) = delete;
    ScratchBuffer& operator=(const ScratchBuffer&) = delete;

    explicit operator bool() const { return data_ != nullptr; }
    T* data() { return data_; }
    T& operator[](size_t index) {
        ZKR_ASSERT(data_ != nullptr);
        return data_[index];
    }

  private:
    T* data_;
};

// One storage row of a bitmap.
class ScratchRow : public ScratchBuffer<uint8_t> {
  public:
    explicit ScratchRow(const BitmapHandle& bitmap) : ScratchBuffer(bitmap.BytesPerLine) {}
};

} // namespace zkr
