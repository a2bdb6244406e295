#include "support/Log.h"

#include <charconv>
#include <mutex>
#include <utility>

namespace Dravel {

namespace {

constexpr std::string_view kLevels[] = {"INFO", "WARNING", "ERROR"};

void AppendNumber(std::string& text, std::int32_t value, std::size_t width, std::string_view before = {}) {
    char digits[12];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const auto count = static_cast<std::size_t>(end - digits);
    text += before;
    if (count < width) text.append(width - count, '0');
    text.append(digits, count);
}

std::string DayOf(const CivilTime& time) {
    std::string day;
    AppendNumber(day, time.year, 4);
    AppendNumber(day, time.month, 2);
    AppendNumber(day, time.day, 2);
    return day;
}

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
    const CivilTime now = clock_.LocalNow();
    std::string line = DayOf(now);
    if (line != day_) OpenDay(line);
    if (!file_) return;
    AppendNumber(line, now.hour, 2, "-");
    AppendNumber(line, now.minute, 2, ":");
    AppendNumber(line, now.second, 2, ":");
    AppendNumber(line, now.millisecond, 3, ".");
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
