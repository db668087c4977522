// CErrorTrap: turns the fatal errors of C codecs, which leave by a callback that must not return, into
// Failures. What Run() calls must hold no object with a destructor while it is inside the codec.
#pragma once

#include "failure.h"

#include <csetjmp>
#include <cstdio>
#include <string>

namespace zkr::app {

class CErrorTrap {
  public:
    explicit CErrorTrap(const std::string& file) : file_(file) {}

    template <class Call> void Run(Call&& call) {
        if (setjmp(landing_) != 0) throw Failure(file_, message_);
        call();
    }

    // For the codec's error callback: ends the Run() that is under way.
    [[noreturn]] void Raise(const char* message) {
        std::snprintf(message_, sizeof message_, "%s", message);
        std::longjmp(landing_, 1);
    }

  private:
    const std::string& file_;
    std::jmp_buf landing_;
    char message_[256] = {};
};

} // namespace zkr::app
