// A system call that tests can make to fail. ZKR_FAULTABLE(name, kind, failure, error) brings the system's
// function into scope: as itself, or in fault builds behind a test of Due() that gives the failure result.
#pragma once

#include "platform/faults.h"
#include "zkr13n/platform_types.h"

#if ZKR_FAULT_INJECTION

namespace zkr::platform {

template <typename Function> class Guarded;

template <typename Result, typename... Arguments> class Guarded<Result __stdcall(Arguments...)> {
  public:
    using Call = Result(__stdcall*)(Arguments...);

    Guarded(Call call, fault::Kind kind, Result failure, DWORD error)
        : call_(call), kind_(kind), failure_(failure), error_(error) {}

    Result operator()(Arguments... arguments) const {
        if (!fault::Due(kind_)) return call_(arguments...);
        ::SetLastError(error_);
        return failure_;
    }

  private:
    Call call_;
    fault::Kind kind_;
    Result failure_;
    DWORD error_;
};

} // namespace zkr::platform

#define ZKR_FAULTABLE(name, kind, failure, error)                                                            \
    inline const Guarded<decltype(::name)> name {                                                            \
        ::name, fault::kind, failure, error                                                                  \
    }

#else

#define ZKR_FAULTABLE(name, kind, failure, error) using ::name

#endif
