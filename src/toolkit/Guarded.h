// The one shell round what the world calls in the library.
#pragma once

#include <exception>

#include "platform/FloatingPoint.h"
#include "support/OuterCall.h"
#include "toolkit/Module.h"

namespace Dravel {

// Runs `work` as one call from outside, under our own floating point state, and gives its result; when it
// throws, that is told to the failure log under the name `where`, and the result is `failed`. User-interface
// thread.
template <class Result, class Work>
Result Guarded(const char* where, Result failed, const Work& work) noexcept {
    const FloatingPointScope ours;
    const OuterCall call;
    try {
        return work();
    } catch (const std::exception& failure) {
        ReportFailure(where, failure.what());
    } catch (...) {
        ReportFailure(where, "unknown exception");
    }
    return failed;
}

// The same without a result.
template <class Work>
void Guarded(const char* where, const Work& work) noexcept {
    Guarded(where, false, [&] { return work(), true; });
}

}  // namespace Dravel
