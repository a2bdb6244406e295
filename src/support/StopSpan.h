// How long a thread has been asked to stop.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>

namespace Dravel {

// Begin and End on one thread, Lasts on any. Times are milliseconds of the steady clock.
class StopSpan {
 public:
    void Begin() { since_ = std::max<std::int64_t>(Now(), 1); }
    void End() { since_ = 0; }

    // Whether Begin was called and End was not, at least `least` milliseconds ago. The time is read once: End
    // may come at any moment, and its 0 must not be taken for a stop that has lasted since the epoch.
    bool Lasts(std::int64_t least = 0) const {
        const std::int64_t since = since_;
        return since != 0 && (least == 0 || Now() - since >= least);
    }

 private:
    static std::int64_t Now() {
        using namespace std::chrono;
        return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    }

    std::atomic<std::int64_t> since_ = 0;  // 0: no stop is asked for
};

}  // namespace Dravel
