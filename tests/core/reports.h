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
    size_t StopAt; // the report, counted from 0, that stops the work

    explicit Reports(Setter set, size_t stopAt = SIZE_MAX, ReturnCode with = Stopped)
        : StopAt(stopAt), set_(set), with_(with) {
        set_(Hear, reinterpret_cast<intptr_t>(this));
    }
    ~Reports() { set_(nullptr, 0); }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

  private:
    static ReturnCode Z_CALL Hear(int32_t percent, intptr_t userData) {
        auto& self = *reinterpret_cast<Reports*>(userData);
        self.Seen.push_back(percent);
        return self.Seen.size() > self.StopAt ? self.with_ : 1;
    }
    Setter set_;
    ReturnCode with_;
};

} // namespace zkr::test
