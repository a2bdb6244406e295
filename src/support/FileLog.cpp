#include "support/FileLog.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "formatset/DateFormat.h"

namespace Dravel {

namespace {

constexpr std::string_view kLevels[] = {"INFO", "WARNING", "ERROR"};
constexpr std::size_t kDayLength = 8;          // "yyyyMMdd", what a stamp begins with
constexpr std::size_t kChunk = 64 * 1024;      // text for one call of the disk
constexpr std::uint32_t kAskAgain = 1000;      // milliseconds until a disk that refused is asked again
constexpr std::uint32_t kLongestWait = 60000;  // milliseconds; the clock may be set or stand still meanwhile
constexpr std::int64_t kArchiveAgain = 600;    // seconds until what could not be archived is tried again
constexpr char kContext[] = "CFileLog";

void AppendPlain(std::string& line, std::string_view text) {
    for (const char c : text.substr(0, kMaxLogText))
        line += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
}

std::string Stamp(const IClock& clock) {
    char stamp[22];
    LocalTimeStamp(stamp, clock);
    return stamp;
}

std::string Today(const IClock& clock) {
    return Stamp(clock).substr(0, kDayLength);
}

std::string_view DayOf(std::string_view line) {
    return line.substr(0, kDayLength);
}

std::string LineText(const IClock& clock, LogLevel level, std::string_view context, std::string_view text) {
    std::string line = Stamp(clock);
    (line += ' ') += kLevels[static_cast<std::size_t>(level)];
    line += ' ';
    AppendPlain(line, context);
    line += ": ";
    AppendPlain(line, text);
    return line += "\r\n";
}

std::uint32_t UntilMidnight(const IClock& clock) {
    const CivilTime now = clock.LocalNow();
    const auto passed =
        static_cast<std::uint32_t>(((now.hour * 60 + now.minute) * 60 + now.second) * 1000 + now.millisecond);
    return passed < 86400000 ? 86400000 - passed : 0;
}

}  // namespace

CFileLog::CFileLog(IFiles& files, const IClock& clock, std::filesystem::path folder)
    : clock_(clock), file_(files, folder), archive_(files, std::move(folder)) {}

CFileLog::~CFileLog() {
    Stop();
}

void CFileLog::Line(LogLevel level, std::string_view context, std::string_view text) try {
    if (!Queue(level, context, text)) DrainAsCaller();
} catch (...) {
    // Who logs has other worries already.
}

// False: there is no thread to write it.
bool CFileLog::Queue(LogLevel level, std::string_view context, std::string_view text) {
    const std::lock_guard guard(lock_);
    // The stamp is taken under the lock, so that stamps only grow.
    std::string line = LineText(clock_, level, context, text);
    const bool first = queue_.empty();
    if (Admit(level, line)) Push(level, std::move(line));
    if (listener_ && level != LogLevel::Info) listener_(level);
    if (running_ && first) wake_.Set();
    return running_;
}

bool CFileLog::Admit(LogLevel level, std::string_view line) {
    const bool information = level == LogLevel::Info;
    const bool room = waiting_ + line.size() <= (information ? kLogQueue : kLogReserve);
    if (room && !(information && DayOf(line) == fullDay_)) return true;
    ++dropped_;
    return false;
}

void CFileLog::Push(LogLevel level, std::string line) {
    queue_.push_back({level, std::move(line)});
    waiting_ += queue_.back().text.size();
}

// Says how many lines were dropped, once there is room again.
bool CFileLog::QueueReport() {
    if (dropped_ == 0 || (Today(clock_) == fullDay_ && running_)) return false;
    const std::string text = std::to_string(dropped_) + " lines were left out.";
    Push(LogLevel::Warning, LineText(clock_, LogLevel::Warning, kContext, text));
    dropped_ = 0;
    if (listener_) listener_(LogLevel::Warning);
    return true;
}

// The lock is held, and the disk's. False: what comes next is of a day before `day`.
bool CFileLog::NextIsSince(std::string_view day) {
    if (!lines_.empty()) return linesDay_ >= day;
    return queue_.empty() || DayOf(queue_.front().text) >= day;
}

// Moves lines of one day out of the queue. False: there are none, or the next ones are of a day before
// `since`.
bool CFileLog::TakeLines(std::string_view since) {
    const std::lock_guard guard(lock_);
    while (lines_.empty() && (!queue_.empty() || QueueReport()) && NextIsSince(since))
        TakeDay();
    return !lines_.empty() && NextIsSince(since);
}

void CFileLog::TakeDay() {
    const bool hurry = stopping_.Lasts(kLogClosing);
    linesDay_ = DayOf(queue_.front().text);
    while (!queue_.empty() && DayOf(queue_.front().text) == linesDay_ && (hurry || lines_.size() < kChunk)) {
        const Entry& entry = queue_.front();
        if (hurry && entry.level == LogLevel::Info) {
            ++dropped_;
        } else {
            lines_ += entry.text;
        }
        waiting_ -= entry.text.size();
        queue_.pop_front();
    }
}

// Writes what waits, about `most` bytes of it, up to the first line of a day before `since`. The disk's lock
// is held. False: the disk refuses.
bool CFileLog::Drain(std::size_t most, std::string_view since) {
    for (std::size_t written = 0; written < most && TakeLines(since);) {
        if (!file_.Append(linesDay_, lines_)) return false;
        written += lines_.size();
        if (linesDay_ < archivedDay_) archivedDay_.clear();
        lines_.clear();
        if (file_.Size() < kMaxLogFile) continue;
        const std::lock_guard guard(lock_);
        fullDay_ = linesDay_;
    }
    return true;
}

void CFileLog::DrainAsCaller() {
    const std::lock_guard guard(disk_);
    Drain(SIZE_MAX, {});
    file_.Close();
}

void CFileLog::Start() {
    const std::lock_guard guard(lock_);
    if (running_ || !wake_.Valid() || !stop_.Valid()) return;
    stopping_.End();
    stop_.Reset();
    wake_.Reset();
    running_ = thread_.Start([this] { Work(); });
}

void CFileLog::Stop() {
    if (!thread_.Runs()) return;
    stopping_.Begin();
    stop_.Set();
    wake_.Set();
    thread_.Join();
    {
        const std::lock_guard guard(lock_);
        running_ = false;
    }
    try {
        DrainAsCaller();
    } catch (...) {  // out of memory: the lines wait
    }
    stopping_.End();
}

void CFileLog::Tell(Listener listener) {
    const std::lock_guard guard(lock_);
    listener_ = std::move(listener);
}

std::size_t CFileLog::Waiting() const {
    const std::lock_guard guard(lock_);
    return waiting_;
}

// Reset before the look at what it tells of: a line or a stop that comes later sets it again.
void CFileLog::Work() noexcept {
    for (wake_.Reset(); !stopping_.Lasts(); wake_.Reset()) {
        const std::uint32_t wait = std::min(kLongestWait, UntilMidnight(clock_));
        bool done = false;
        try {
            done = Round();
        } catch (...) {  // out of memory: like a disk that refuses
        }
        if (done) {
            wake_.Wait(Waiting() == 0 ? wait : 0);
        } else {
            stop_.Wait(kAskAgain);
        }
    }
}

bool CFileLog::Round() {
    const std::lock_guard guard(disk_);
    const std::string today = Today(clock_);
    if (!Drain(kLogQueue, {}) || !file_.Begin(today)) return false;
    if (ReachedDay(today)) ArchiveWhenDue(today);
    if (Today(clock_) != today) wake_.Set();
    return true;
}

// False: lines of the days before still wait to get into their files.
bool CFileLog::ReachedDay(std::string_view day) {
    const std::lock_guard guard(lock_);
    return NextIsSince(day);
}

void CFileLog::ArchiveWhenDue(const std::string& today) {
    const std::int64_t now = clock_.Now(), since = now - archiveFailed_;
    if (archivedDay_ == today || (since >= 0 && since < kArchiveAgain)) return;
    // Lines that come meanwhile are not kept waiting, nor is the archive by many of them. Those of an earlier
    // day, because the clock is set back, do wait: the archive removes what it has packed.
    const ZipPulse pulse = [&] { return Drain(4 * kChunk, today), !stopping_.Lasts(); };
    if (archive_.Run(today, pulse)) {
        archivedDay_ = today;
    } else if (!stopping_.Lasts()) {
        archiveFailed_ = now;
        Line(LogLevel::Info, kContext, "Files of earlier days could not be archived yet.");
    }
}

}  // namespace Dravel
