// Invariants of the library's own code. The builds for the sanitizers, for fuzzing and for injected faults test them and
// end the process where one does not hold; the product tests nothing.
#pragma once

#ifdef ZKR_ASSERTIONS
#include <cstdio>
#include <cstdlib>
#define ZKR_ASSERT(condition)                                                                                \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition);              \
            std::abort();                                                                                    \
        }                                                                                                    \
    } while (false)
#else
#define ZKR_ASSERT(condition) static_cast<void>(0)
#endif
