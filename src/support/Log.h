// The log: one line an event in Log\Dravel_yyyyMMdd.log.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Lock.h"

namespace Dravel {

enum class LogLevel : std::uint8_t { Info, Warning, Error };

// Any thread may write. Never fails towards its caller: a log that cannot be written is given up quietly.
class ILog {
 public:
    virtual ~ILog() = default;
    virtual void Line(LogLevel level, std::string_view context, std::string_view text) = 0;
};

// Most of one line's text, and of one day's file; what is beyond is left out.
inline constexpr std::size_t kMaxLogText = 4096;
inline constexpr std::uint64_t kMaxLogFile = 64u << 20;

// Appends "yyyyMMdd-HH:mm:ss.mmm LEVEL context: text" to `folder`/Dravel_yyyyMMdd.log, which stays open until
// the local day changes. A day whose file cannot be opened goes without a log. Control characters become
// blanks, so that one line stays one line. Disk and clock are borrowed.
class CFileLog final : public ILog {
 public:
    CFileLog(IFiles& files, const IClock& clock, std::filesystem::path folder);
    void Line(LogLevel level, std::string_view context, std::string_view text) override;

 private:
    void OpenDay(const std::string& day);

    IFiles& files_;
    const IClock& clock_;
    std::filesystem::path folder_;
    KRV::Thread::CKRVLock lock_;
    std::string day_;
    std::unique_ptr<IFile> file_;
    std::uint64_t size_ = 0;
};

}  // namespace Dravel
