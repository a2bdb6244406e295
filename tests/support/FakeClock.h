// A clock that tests set; its zone is a fixed offset, and resting costs no time.
#pragma once

#include <chrono>
#include <functional>

#include "platform/Clock.h"

namespace Dravel::Test {

class FakeClock final : public IClock {
 public:
    static constexpr std::int64_t kStart = 1614762300;  // 2021-03-03 09:05:00 UTC

    std::int64_t Now() const override { return now; }
    CivilTime LocalNow() const override {
        using namespace std::chrono;
        const sys_seconds local{seconds(now + zone)};
        const year_month_day date{floor<days>(local)};
        const hh_mm_ss time{local - floor<days>(local)};
        return {static_cast<int>(date.year()),
                static_cast<std::int32_t>(static_cast<unsigned>(date.month())),
                static_cast<std::int32_t>(static_cast<unsigned>(date.day())),
                static_cast<std::int32_t>(time.hours().count()),
                static_cast<std::int32_t>(time.minutes().count()),
                static_cast<std::int32_t>(time.seconds().count()),
                7};
    }
    std::int32_t ZoneOffset(std::int64_t) const override { return zone; }
    std::uint64_t Ticks() const override { return ticks + slept; }
    void Sleep(std::uint32_t milliseconds) const override {
        slept += milliseconds;
        if (sleeping) sleeping();
    }

    std::function<void()> sleeping;  // called in each rest
    std::int64_t now = kStart;
    std::int32_t zone = 0;
    std::uint64_t ticks = 0;  // what Ticks counts beside the rests
    mutable std::uint64_t slept = 0;
};

}  // namespace Dravel::Test
