#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process, which the fuzzer takes for a finding, unless the condition holds.
#define FUZZ_VERIFY(condition)                                                                     \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition);    \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)
