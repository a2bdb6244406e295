// The log with its thread, on a real disk.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <random>
#include <thread>

#include "support/FakeClock.h"
#include "support/FileLog.h"
#include "support/LogRig.h"
#include "support/StopSpan.h"

using namespace Dravel;
using namespace Dravel::Test;
namespace fs = std::filesystem;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kLinesEach = 4000;
#else
constexpr int kLinesEach = 20000;
#endif

// May be set while others read it; local time may take its time.
struct SharedClock final : IClock {
    std::atomic<std::int64_t> now = 1612051200;  // 2021-01-31 00:00:00
    std::atomic<int> delay = 0;  // milliseconds, for any thread but the one that made the clock
    const std::thread::id maker = std::this_thread::get_id();
    FakeClock At() const {
        FakeClock clock;
        clock.now = now;
        return clock;
    }
    std::int64_t Now() const override { return now; }
    CivilTime LocalNow() const override {
        if (std::this_thread::get_id() != maker)
            std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        return At().LocalNow();
    }
    std::int32_t ZoneOffset(std::int64_t) const override { return 0; }
    std::uint64_t Ticks() const override { return 0; }
    void Sleep(std::uint32_t) const override {}
};

// Each write takes its time; refuses while `broken`. `onOpen` hears of each file that is about to be opened.
struct SlowFiles final : IFiles {
    struct File final : IFile {
        File(SlowFiles& disk, std::unique_ptr<IFile> real) : files(disk), file(std::move(real)) {}
        FileStatus Read(void* into, std::size_t n, std::size_t& got) override {
            return file->Read(into, n, got);
        }
        FileStatus Write(const void* bytes, std::size_t n) override {
            std::this_thread::sleep_for(std::chrono::milliseconds(files.delay));
            if (files.broken) return {FileFault::Full, 0};
            return file->Write(bytes, n);
        }
        FileStatus Flush() override { return file->Flush(); }
        FileStatus Seek(std::uint64_t at) override { return file->Seek(at); }
        FileStatus Cut(std::uint64_t bytes) override { return file->Cut(bytes); }
        FileStatus Size(std::uint64_t& n) override { return file->Size(n); }
        FileStatus Close() override { return file->Close(); }
        SlowFiles& files;
        std::unique_ptr<IFile> file;
    };
    FileStatus Open(const fs::path& path, FileMode mode, FileShare share,
                    std::unique_ptr<IFile>& file) override {
        if (onOpen) onOpen(path, mode);
        std::unique_ptr<IFile> real;
        const FileStatus status = disk.Open(path, mode, share, real);
        if (status) file = std::make_unique<File>(*this, std::move(real));
        return status;
    }
    FileStatus OpenLock(const fs::path& a, std::unique_ptr<IFile>& f) override { return disk.OpenLock(a, f); }
    FileStatus Rename(const fs::path& a, const fs::path& b) override { return disk.Rename(a, b); }
    FileStatus Replace(const fs::path& a, const fs::path& b) override { return disk.Replace(a, b); }
    FileStatus Link(const fs::path& a, const fs::path& b) override { return disk.Link(a, b); }
    FileStatus Remove(const fs::path& a) override { return disk.Remove(a); }
    FileStatus Info(const fs::path& a, FileInfo& i) override { return disk.Info(a, i); }
    FileStatus MakeFolders(const fs::path& a) override { return disk.MakeFolders(a); }
    FileStatus List(const fs::path& a, std::vector<fs::path>& n) override { return disk.List(a, n); }

    IFiles& disk = SystemFiles();
    std::atomic<int> delay = 0;
    std::atomic<bool> broken = false;
    std::function<void(const fs::path&, FileMode)> onOpen;
};

struct ThreadsLog : ::testing::Test {
    fs::path root = fs::temp_directory_path() / ("dravel-log-" + std::to_string(std::random_device()()));
    SharedClock clock;
    SlowFiles files;
    CFileLog log{files, clock, root / "Log"};

    ~ThreadsLog() override {
        log.Stop();
        fs::remove_all(root);
    }
    std::map<std::string, std::string> Logs() { return ReadLogs(SystemFiles(), root / "Log"); }
    std::size_t Lines(std::string_view text) {
        std::size_t lines = 0;
        for (const auto& [name, all] : Logs())
            lines += Count(all, text);
        return lines;
    }
    bool Eventually(const std::function<bool()>& holds) {
        for (int i = 0; i < 6000 && !holds(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return holds();
    }
    std::int64_t MillisecondsToStop() {
        const auto begin = std::chrono::steady_clock::now();
        log.Stop();
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin)
            .count();
    }
};

}  // namespace

// Eight threads, two midnights, one of them a month's end: every line is there once, each thread's in order,
// on the day of its stamp.
TEST_F(ThreadsLog, NothingIsLostAcrossMidnights) {
    constexpr int kThreads = 8;
    log.Start();
    std::atomic<int> written = 0, daysPassed = 0;
    std::vector<std::thread> writers;
    for (int t = 0; t < kThreads; ++t) {
        writers.emplace_back([&, t] {
            const std::string context = "T" + std::to_string(t);
            for (int i = 0; i < kLinesEach; ++i) {
                // Nobody is through before the next day, whichever thread the system prefers.
                while (log.Waiting() > kLogQueue / 2 || daysPassed < i / (kLinesEach / 3 + 100))
                    std::this_thread::yield();
                log.Line(i % 10 ? LogLevel::Info : LogLevel::Error, context, std::to_string(i));
                ++written;
            }
        });
    }
    for (const int part : {1, 2}) {
        while (written < kThreads * kLinesEach * part / 3)
            std::this_thread::yield();
        clock.now += 86400;
        daysPassed = part;
    }
    for (std::thread& writer : writers)
        writer.join();
    const auto archives = [&] {
        return fs::exists(root / "Log" / "Dravel_202101.zip") &&
               fs::exists(root / "Log" / "Dravel_202102.zip") &&
               !fs::exists(root / "Log" / "Dravel_20210201.log");
    };
    EXPECT_TRUE(Eventually(archives));
    EXPECT_LT(MillisecondsToStop(), 2000);

    const auto logs = Logs();
    std::vector<int> next(kThreads, 0);
    for (const char* day : {"20210131", "20210201", "20210202"}) {
        const auto found = logs.find("Dravel_" + std::string(day) + ".log");
        ASSERT_NE(found, logs.end()) << day;
        const std::string& text = found->second;
        EXPECT_GT(text.size(), 10000u) << day;
        for (std::size_t at = 0, end; (end = text.find("\r\n", at)) != text.npos; at = end + 2) {
            const std::string_view line = std::string_view(text).substr(at, end - at);
            ASSERT_TRUE(line.starts_with(day)) << line;
            const std::size_t thread = line.find(" T") + 2;
            const int t = line[thread] - '0';
            ASSERT_EQ(line.substr(thread + 3), std::to_string(next.at(static_cast<std::size_t>(t))++))
                << line;
        }
    }
    EXPECT_EQ(next, std::vector<int>(kThreads, kLinesEach));
}

// The end of a stop may come between any two looks at it: what was logged just then was dropped for being
// late.
TEST(ThreadsStopSpan, OneThatEndsHasNotLastedLong) {
    StopSpan span;
    std::atomic<bool> done = false;
    std::thread looker([&] {
        for (int i = 0; i < 200000; ++i)
            ASSERT_FALSE(span.Lasts(20000));
        done = true;
    });
    while (!done) {
        span.Begin();
        EXPECT_TRUE(span.Lasts());
        span.End();
        EXPECT_FALSE(span.Lasts());
    }
    looker.join();
    span.Begin();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_TRUE(span.Lasts(20));
}

TEST_F(ThreadsLog, ANewDayBeginsThoughNothingIsSaid) {
    clock.now += 86399;
    log.Start();
    EXPECT_TRUE(Eventually([&] { return fs::exists(root / "Log" / "Dravel_20210131.log"); }));
    ++clock.now;
    EXPECT_TRUE(Eventually([&] { return fs::exists(root / "Log" / "Dravel_202101.zip"); }));
    EXPECT_TRUE(fs::exists(root / "Log" / "Dravel_20210201.log"));
}

// More errors than one round writes come from a disk that was full over midnight: the file that they belong
// to is archived when it has all of them.
TEST_F(ThreadsLog, NothingIsLostWhenADiskWasFullOverMidnight) {
    constexpr std::size_t kLines = 3 * kLogQueue / 1000;
    std::atomic<std::size_t> waited = 0;
    files.onOpen = [&](const fs::path& path, FileMode) {
        if (path.extension() == ".new") waited = std::max<std::size_t>(waited, log.Waiting());
    };
    files.broken = true;
    log.Start();
    for (std::size_t i = 0; i < kLines; ++i)
        log.Line(LogLevel::Error, "Test", std::string(1000, 'x'));
    clock.now += 86400;
    files.broken = false;
    EXPECT_TRUE(Eventually([&] { return fs::exists(root / "Log" / "Dravel_202101.zip"); }));
    EXPECT_TRUE(Eventually([&] { return log.Waiting() == 0; }));
    log.Stop();
    EXPECT_EQ(Lines(" ERROR Test: x"), kLines);
    EXPECT_EQ(waited, 0u) << "archived before it was whole";
}

// The clock is set back over midnight while the day's archive is written: what is said meanwhile belongs to
// the file that is packed already and about to go.
TEST_F(ThreadsLog, NothingIsLostWhenTheClockIsSetBackWhileArchiving) {
    constexpr std::size_t kLines = 300;
    std::atomic<int> readBack = 0;  // archives
    files.onOpen = [&](const fs::path& path, FileMode mode) {
        if (path.extension() != ".new" || mode != FileMode::Read || ++readBack > 1) return;
        clock.now -= 86400;
        for (std::size_t i = 0; i < kLines; ++i)
            log.Line(LogLevel::Error, "Test", "late");
        clock.now += 86400;
    };
    log.Line(LogLevel::Error, "Test", "in time");
    clock.now += 86400;
    log.Start();
    // Nothing is opened meanwhile: an archive that somebody reads is not replaced.
    const auto archived = [&] { return readBack == 2 && !fs::exists(root / "Log" / "Dravel_20210131.log"); };
    EXPECT_TRUE(Eventually(archived));
    log.Stop();
    EXPECT_TRUE(Logs().contains("Dravel_20210131_2.log"));
    EXPECT_EQ(Lines("ERROR Test: in time"), 1u);
    EXPECT_EQ(Lines("ERROR Test: late"), kLines);
}

// A stop that comes between the thread's look at it and its wait must end the wait, which is a minute long.
TEST_F(ThreadsLog, AStopAtAnyMomentIsHeard) {
    clock.delay = 2;
    for (int moment = 0; moment < 24; ++moment) {
        log.Start();
        std::this_thread::sleep_for(std::chrono::milliseconds(moment));
        ASSERT_LT(MillisecondsToStop(), 20000) << moment;
    }
}

// A disk that stands still while the queue overflows and is slow then: nobody who writes waits for it, errors
// all arrive, information is dropped and counted, closing does not wait for the rest.
TEST_F(ThreadsLog, ClosingIsShortAndErrorsArrive) {
    std::atomic<bool> allSaid = false, heldUp = false;
    files.onOpen = [&](const fs::path&, FileMode) {
        if (!Eventually([&] { return allSaid.load(); })) heldUp = true;
    };
    files.delay = 100;
    log.Start();
    const std::string text(1000, 'x');
    for (int i = 0; i < 6000; ++i)
        log.Line(i % 100 ? LogLevel::Info : LogLevel::Error, "Test", text);
    allSaid = true;
    EXPECT_LT(MillisecondsToStop(), 2000);
    EXPECT_FALSE(heldUp) << "somebody waited for the disk";
    const std::string all = Logs()["Dravel_20210131.log"];
    EXPECT_EQ(Count(all, " ERROR "), 60u);
    const std::size_t informed = Count(all, " INFO ");
    EXPECT_LT(informed, 5940u);
    EXPECT_TRUE(all.ends_with(std::to_string(5940 - informed) + " lines were left out.\r\n"));
}

TEST_F(ThreadsLog, ADiskThatComesBackGetsWhatWaited) {
    files.broken = true;
    log.Start();
    log.Line(LogLevel::Error, "Test", "first");
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_LT(MillisecondsToStop(), 2000);
    log.Start();
    log.Line(LogLevel::Error, "Test", "second");
    files.broken = false;
    EXPECT_TRUE(Eventually([&] { return Count(Logs()["Dravel_20210131.log"], "ERROR") == 2; }));
    log.Stop();
    log.Line(LogLevel::Info, "Test", "behind the end");
    EXPECT_EQ(Count(Logs()["Dravel_20210131.log"], "Test: behind the end"), 1u);
}

// Writers and stops in every order: what was said is there.
TEST_F(ThreadsLog, NothingIsLostOverManyStartsAndStops) {
    std::atomic<bool> done = false;
    std::thread writer([&] {
        for (int i = 0; i < 2000; ++i)
            log.Line(LogLevel::Info, "Test", "line");
        done = true;
    });
    while (!done) {
        log.Start();
        log.Stop();
    }
    writer.join();
    EXPECT_EQ(Count(Logs()["Dravel_20210131.log"], "Test: line"), 2000u);
}
