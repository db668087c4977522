// A system call that tests can make to fail. ZKR_FAULTABLE(name, kind, failure, error) brings the system's
// function into scope: as itself, or in fault builds behind a test of Due() that gives the failure result.
// ZKR_MAKING is the same for calls that make what is counted as alive, and ZKR_RELEASING(name, released) for
// those that end its life when they give the result named.
#pragma once

#include "platform/faults.h"
#include "zkr13n/platform_types.h"

#if ZKR_FAULT_INJECTION

namespace zkr::platform {

template <typename Function> class Guarded;

template <typename Result, typename... Arguments> class Guarded<Result __stdcall(Arguments...)> {
  public:
    using Call = Result(__stdcall*)(Arguments...);

    Guarded(Call call, fault::Kind kind, Result failure, DWORD error, bool makes)
        : call_(call), kind_(kind), failure_(failure), error_(error), makes_(makes) {}

    Result operator()(Arguments... arguments) const {
        if (fault::Due(kind_)) {
            ::SetLastError(error_);
            return failure_;
        }
        const Result result = call_(arguments...);
        if (makes_ && result != failure_) fault::Made();
        return result;
    }

  private:
    Call call_;
    fault::Kind kind_;
    Result failure_;
    DWORD error_;
    bool makes_;
};

template <typename Function> class Releasing;

template <typename Result, typename... Arguments> class Releasing<Result __stdcall(Arguments...)> {
  public:
    using Call = Result(__stdcall*)(Arguments...);

    Releasing(Call call, Result released) : call_(call), released_(released) {}

    Result operator()(Arguments... arguments) const {
        const Result result = call_(arguments...);
        if (result == released_) fault::Released();
        return result;
    }

  private:
    Call call_;
    Result released_;
};

} // namespace zkr::platform

#define ZKR_GUARDED(name, kind, failure, error, makes)                                                       \
    inline const Guarded<decltype(::name)> name {                                                            \
        ::name, fault::kind, failure, error, makes                                                           \
    }
#define ZKR_FAULTABLE(name, kind, failure, error) ZKR_GUARDED(name, kind, failure, error, false)
#define ZKR_MAKING(name, kind, failure, error) ZKR_GUARDED(name, kind, failure, error, true)
#define ZKR_RELEASING(name, released)                                                                        \
    inline const Releasing<decltype(::name)> name {                                                          \
        ::name, released                                                                                     \
    }

#else

#define ZKR_FAULTABLE(name, kind, failure, error) using ::name
#define ZKR_MAKING(name, kind, failure, error) using ::name
#define ZKR_RELEASING(name, released) using ::name

#endif
