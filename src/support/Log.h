// What the house says to its log.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Dravel {

enum class LogLevel : std::uint8_t { Info, Warning, Error };

// Any thread may write. Never fails towards its caller, and never makes it wait for the disk.
class ILog {
 public:
    virtual ~ILog() = default;
    virtual void Line(LogLevel level, std::string_view context, std::string_view text) = 0;
};

// Most of one line's text; what is beyond is left out.
inline constexpr std::size_t kMaxLogText = 4096;

}  // namespace Dravel
