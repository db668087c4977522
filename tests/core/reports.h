// Hears what an operation reports to one of the two status callbacks, and stops it where a test wants.
#pragma once

#include "zkr13n/frame.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zkr::test {

struct Reports {
    using Setter = decltype(&Z_SetStatusCallBack);
    static constexpr ReturnCode Stopped = -29;

    std::vector<int32_t> Seen;
    size_t StopAt = SIZE_MAX; // the report, counted from 0, that is answered by Stopped

    explicit Reports(Setter set) : set_(set) { set_(Hear, reinterpret_cast<intptr_t>(this)); }
    ~Reports() { set_(nullptr, 0); }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

  private:
    static ReturnCode Z_CALL Hear(int32_t percent, intptr_t userData) {
        auto& self = *reinterpret_cast<Reports*>(userData);
        self.Seen.push_back(percent);
        return self.Seen.size() > self.StopAt ? Stopped : 1;
    }
    Setter set_;
};

} // namespace zkr::test
