#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>

// Whatever the build: a broken promise is a finding.
inline void Expect(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}
