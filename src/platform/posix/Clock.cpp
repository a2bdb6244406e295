#include "platform/Clock.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace Dravel {

namespace {

class PosixClock final : public IClock {
 public:
    std::int64_t Now() const override { return std::time(nullptr); }

    CivilTime LocalNow() const override {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        std::tm local{};
        localtime_r(&now.tv_sec, &local);
        return {local.tm_year + 1900,
                local.tm_mon + 1,
                local.tm_mday,
                local.tm_hour,
                local.tm_min,
                local.tm_sec,
                static_cast<std::int32_t>(now.tv_nsec / 1000000)};
    }

    std::int32_t ZoneOffset(std::int64_t time) const override {
        const std::time_t seconds = time;
        std::tm local{};
        if (!localtime_r(&seconds, &local)) return 0;
        return static_cast<std::int32_t>(timegm(&local) - seconds);
    }

    std::uint64_t Ticks() const override {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<std::uint64_t>(now.tv_sec) * 1000 +
               static_cast<std::uint64_t>(now.tv_nsec) / 1000000;
    }

    void Sleep(std::uint32_t milliseconds) const override {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
};

}  // namespace

IClock& SystemClock() {
    static PosixClock clock;
    return clock;
}

}  // namespace Dravel
