// What a fuzz target's body claims.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace Dravel::Fuzz {

// Ends the process, so that both the fuzzer and the replay of its corpus see a broken promise.
inline void Require(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

}  // namespace Dravel::Fuzz
