#include "platform/Clock.h"

#include <windows.h>

namespace Dravel {

namespace {

// 1970-01-01 in the system's count of 100 ns since 1601-01-01.
constexpr std::int64_t kEpoch = 116444736000000000;
constexpr std::int64_t kTicksPerSecond = 10000000;

std::int64_t SystemTicks(const FILETIME& time) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(time.dwHighDateTime) << 32 |
                                     time.dwLowDateTime);
}

class Win32Clock final : public IClock {
 public:
    std::int64_t Now() const override {
        FILETIME now;
        GetSystemTimeAsFileTime(&now);
        return (SystemTicks(now) - kEpoch) / kTicksPerSecond;
    }

    CivilTime LocalNow() const override {
        SYSTEMTIME now;
        GetLocalTime(&now);
        return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
    }

    // The system's own rules, not the C run-time's: that one reads a TZ variable in a form of its own.
    std::int32_t ZoneOffset(std::int64_t time) const override {
        const std::int64_t ticks = time * kTicksPerSecond + kEpoch;
        const FILETIME utcFile{static_cast<DWORD>(ticks),
                               static_cast<DWORD>(static_cast<std::uint64_t>(ticks) >> 32)};
        SYSTEMTIME utc, local;
        FILETIME localFile;
        if (!FileTimeToSystemTime(&utcFile, &utc) ||
            !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) ||
            !SystemTimeToFileTime(&local, &localFile)) {
            return 0;
        }
        return static_cast<std::int32_t>((SystemTicks(localFile) - ticks) / kTicksPerSecond);
    }

    std::uint64_t Ticks() const override { return GetTickCount64(); }

    void Sleep(std::uint32_t milliseconds) const override { ::Sleep(milliseconds); }
};

}  // namespace

IClock& SystemClock() {
    static Win32Clock clock;
    return clock;
}

}  // namespace Dravel
