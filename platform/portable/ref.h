// A holder of something that counts its holders: T has Hold() and Drop().
#pragma once

#include <utility>

namespace zkr::platform {

template <typename T> class Ref {
  public:
    Ref() = default;
    explicit Ref(T* object) : object_(object) {
        if (object_ != nullptr) object_->Hold();
    }
    Ref(const Ref& other) : Ref(other.object_) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_ != nullptr) object_->Drop();
    }

    explicit operator bool() const { return object_ != nullptr; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    T* Get() const { return object_; }

  private:
    T* object_ = nullptr;
};

} // namespace zkr::platform
