// The log on disk: one line an event in Log\Dravel_yyyyMMdd.log, written by a thread of its own; earlier days
// go into one ZIP a month.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "platform/Clock.h"
#include "platform/Event.h"
#include "platform/Files.h"
#include "platform/Lock.h"
#include "platform/Thread.h"
#include "support/Log.h"
#include "support/LogArchive.h"
#include "support/LogFile.h"
#include "support/StopSpan.h"

namespace Dravel {

// Text of lines that wait for the disk. Beyond the first, information is dropped; beyond the second, which
// only a disk that takes nothing for long can bring about, warnings and errors are, too: the terminal needs
// its memory. A line says how many.
inline constexpr std::size_t kLogQueue = std::size_t{4} << 20, kLogReserve = std::size_t{64} << 20;
// A day's file; beyond it, information is dropped.
inline constexpr std::uint64_t kMaxLogFile = std::uint64_t{64} << 20;
// What closing may take, in milliseconds.
inline constexpr std::uint32_t kLogClosing = 1500;

// Lines read "yyyyMMdd-HH:mm:ss.mmm LEVEL context: text" and end with CR LF; control characters become
// blanks, so that one line stays one line. Lines of a thread stay in order.
//
// While the thread runs, Line only queues. Before Start and behind Stop there is no thread: the caller's
// writes. A disk that refuses is asked again every second; lines wait meanwhile. Disk and clock are borrowed.
class CFileLog final : public ILog {
 public:
    using Listener = std::function<void(LogLevel)>;

    CFileLog(IFiles& files, const IClock& clock, std::filesystem::path folder);
    ~CFileLog() override;  // stops

    void Line(LogLevel level, std::string_view context, std::string_view text) override;

    // Starts the thread, which begins each day's file at midnight and archives the days before. Without a
    // thread left in the system the log goes on as before Start. Start and Stop: one thread, in turn.
    void Start();
    // Writes what waits and ends the thread. After kLogClosing information is dropped, and warnings and
    // errors go out in one piece; what a refusing disk has not taken waits for the next line or Start. An
    // archive that is being written is given up. A single call of the system is not broken off.
    void Stop();

    // Told of each warning and error as it comes, on the thread that logs it (the log's own for the warning
    // that lines were left out), under the log's lock: it must not wait for anything. Empty: nobody is told.
    void Tell(Listener listener);
    // Bytes of text that wait.
    std::size_t Waiting() const;

 private:
    struct Entry {
        LogLevel level;
        std::string text;
    };

    bool Queue(LogLevel level, std::string_view context, std::string_view text);
    bool Admit(LogLevel level, std::string_view line);
    void Push(LogLevel level, std::string line);
    bool QueueReport();
    bool NextIsSince(std::string_view day);
    bool TakeLines(std::string_view since);
    void TakeDay();
    bool Drain(std::size_t most, std::string_view since);
    void DrainAsCaller();
    void Work() noexcept;
    bool Round();
    bool ReachedDay(std::string_view day);
    void ArchiveWhenDue(const std::string& today);

    const IClock& clock_;

    mutable KRV::Thread::CKRVLock lock_;  // guards these
    std::deque<Entry> queue_;
    std::size_t waiting_ = 0;
    std::uint64_t dropped_ = 0;
    std::string fullDay_;  // the day whose file has reached its limit
    Listener listener_;
    bool running_ = false;

    KRV::Thread::CKRVLock disk_;  // guards these; taken before lock_
    LogFile file_;
    LogArchive archive_;
    std::string lines_, linesDay_;    // taken out of the queue, not on the disk yet
    std::string archivedDay_;         // up to which the archive is complete
    std::int64_t archiveFailed_ = 0;  // when it last could not be completed

    KRV::Thread::CKRVEvent wake_, stop_;
    KRV::Thread::CKRVThread thread_;
    StopSpan stopping_;  // from the call of Stop until it returns
};

}  // namespace Dravel
