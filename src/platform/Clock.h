// The clock and the local time zone, behind one interface so that tests can set both.
#pragma once

#include <cstdint>

namespace Dravel {

// A broken-down time; month and day count from 1.
struct CivilTime {
    std::int32_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
};

class IClock {
 public:
    virtual ~IClock() = default;
    // Seconds since 1970-01-01 00:00:00 UTC.
    virtual std::int64_t Now() const = 0;
    // The current local time with its milliseconds.
    virtual CivilTime LocalNow() const = 0;
    // Seconds to add to UTC `time` to get local time at that moment (the zone's rules, summer time included).
    virtual std::int32_t ZoneOffset(std::int64_t time) const = 0;
    // Milliseconds of a clock that nobody sets, counted from some moment before the first call.
    virtual std::uint64_t Ticks() const = 0;
    // Lets the calling thread rest; a test's clock returns at once.
    virtual void Sleep(std::uint32_t milliseconds) const = 0;
};

// The clock and zone of this system. Lives as long as the process.
IClock& SystemClock();

}  // namespace Dravel
