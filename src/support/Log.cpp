#include "support/Log.h"

#include <mutex>
#include <utility>

#include "formatset/DateFormat.h"

namespace Dravel {

namespace {

constexpr std::string_view kLevels[] = {"INFO", "WARNING", "ERROR"};

constexpr std::size_t kDayLength = 8;  // "yyyyMMdd", what a stamp begins with

void AppendPlain(std::string& line, std::string_view text) {
    for (const char c : text.substr(0, kMaxLogText)) {
        line += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
}

}  // namespace

CFileLog::CFileLog(IFiles& files, const IClock& clock, std::filesystem::path folder)
    : files_(files), clock_(clock), folder_(std::move(folder)) {}

void CFileLog::Line(LogLevel level, std::string_view context, std::string_view text) try {
    const std::lock_guard guard(lock_);
    char stamp[22];
    LocalTimeStamp(stamp, clock_);
    std::string line(stamp);
    if (const std::string day = line.substr(0, kDayLength); day != day_) OpenDay(day);
    if (!file_) return;
    line += ' ';
    line += kLevels[static_cast<std::size_t>(level)];
    line += ' ';
    AppendPlain(line, context);
    line += ": ";
    AppendPlain(line, text);
    line += "\r\n";
    if (size_ + line.size() > kMaxLogFile) return;
    if (file_->Write(line.data(), line.size())) size_ += line.size();
} catch (...) {
    // Who logs has other worries already.
}

void CFileLog::OpenDay(const std::string& day) {
    file_.reset();
    day_ = day;
    files_.MakeFolders(folder_);
    files_.Open(folder_ / ("Dravel_" + day + ".log"), FileMode::Append, FileShare::DenyNone, file_);
    size_ = 0;
    if (file_) file_->Size(size_);
}

}  // namespace Dravel
