// Processes do not fork here, and nobody works while the process ends: its other threads are gone by then.
#pragma once

namespace zkr::platform {

enum class ForkOrder { Outer, Inner };

class ForkPart {
  public:
    ForkPart(ForkOrder, void (*)(), void (*)(bool)) {}
};

inline bool OthersMayWorkOn() {
    return false;
}

} // namespace zkr::platform
