// Arrays that pass through members, and arrays that an object keeps.
#pragma once

#include "zkr13n/allocation.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

namespace zkr::automation {

// An array of a client, or one for it, which stays the object's and good until its next call.
struct Array {
    enum class Kind { None, Floats, SignedBytes, Bytes };
    Kind Elements = Kind::None;
    int32_t Count = 0;
    void* Data = nullptr;
    bool ByReference = false; // a client's: the bytes are to be used where they lie

    bool HoldsBytes() const { return Elements == Kind::Bytes || Elements == Kind::SignedBytes; }
};

// Plain values that grow and shrink; new ones are zero.
template <typename T> class Values {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    Values() = default;
    ~Values() { Z_Free(data_); }
    Values(const Values&) = delete;
    Values& operator=(const Values&) = delete;

    // False where memory is short, with everything as it was.
    bool Resize(int32_t count) {
        const auto size = static_cast<size_t>(count),
                   kept = static_cast<size_t>(count < count_ ? count : count_);
        if (size > std::numeric_limits<size_t>::max() / sizeof(T)) return false;
        // Memory that comes zeroed is not touched before it is used, however much a client asks for.
        T* made = size != 0 ? static_cast<T*>(Z_Calloc(size, sizeof(T))) : nullptr;
        if (made == nullptr && size != 0) return false;
        if (kept != 0) std::memcpy(made, data_, kept * sizeof(T));
        Z_Free(data_);
        data_ = made;
        count_ = count;
        return true;
    }
    int32_t Count() const { return count_; }
    bool Holds(int32_t index) const { return index >= 0 && index < count_; }
    void Exchange(Values& other) {
        std::swap(data_, other.data_);
        std::swap(count_, other.count_);
    }
    T* Data() { return data_; }
    T& operator[](int32_t index) { return data_[index]; }

  private:
    T* data_ = nullptr;
    int32_t count_ = 0;
};

} // namespace zkr::automation
