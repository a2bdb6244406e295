// The one shell round what the world calls in the library.
#pragma once

#include <exception>

#include "platform/FloatingPoint.h"
#include "support/OuterCall.h"
#include "toolkit/Module.h"

namespace Dravel {

// Runs `work` under our own floating point state and gives its result; when it throws, that is told to the
// failure log under the name `where`, and the result is `failed`.
template <class Result, class Work>
Result Shielded(const char* where, Result failed, const Work& work) noexcept {
    const FloatingPointScope ours;
    try {
        return work();
    } catch (const std::exception& failure) {
        ReportFailure(where, failure.what());
    } catch (...) {
        ReportFailure(where, "unknown exception");
    }
    return failed;
}

// The same as one call from outside. User-interface thread.
template <class Result, class Work>
Result Guarded(const char* where, Result failed, const Work& work) noexcept {
    const OuterCall call;
    return Shielded(where, failed, work);
}

// The same without a result.
template <class Work>
void Guarded(const char* where, const Work& work) noexcept {
    Guarded(where, false, [&] { return work(), true; });
}

}  // namespace Dravel
