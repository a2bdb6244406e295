// A million log lines from eight threads across two midnights and a month's end. Leaves the folder that is
// given as argument for a look with unzip.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "support/FileLog.h"

using namespace Dravel;

namespace {

constexpr int kThreads = 8, kLinesEach = 125000;
constexpr std::string_view kText = "a line of the length that lines of this log have on most days";

using Clock = std::chrono::steady_clock;

double Microseconds(Clock::time_point begin) {
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

// The system's clock, set ahead by days.
struct ShiftedClock final : IClock {
    std::atomic<std::int64_t> day = 30;
    std::int64_t Now() const override { return SystemClock().Now() + day * 86400; }
    CivilTime LocalNow() const override {
        CivilTime now = SystemClock().LocalNow();
        now.year = 2021;
        now.month = day > 31 ? 2 : 1;
        now.day = static_cast<std::int32_t>(day - (day > 31 ? 31 : 0));
        return now;
    }
    std::int32_t ZoneOffset(std::int64_t) const override { return 0; }
    std::uint64_t Ticks() const override { return 0; }
    void Sleep(std::uint32_t) const override {}
};

// The limit: the same bytes from one thread to one file, 64 KiB a call.
double PlainWriteMicroseconds(const std::filesystem::path& path, std::size_t lineLength) {
    const std::string block(64 * 1024, 'x');
    const auto begin = Clock::now();
    std::FILE* const file = std::fopen(path.string().c_str(), "wb");
    for (std::size_t left = lineLength * kThreads * kLinesEach; left > block.size(); left -= block.size())
        std::fwrite(block.data(), 1, block.size(), file);
    std::fclose(file);
    const double time = Microseconds(begin);
    std::filesystem::remove(path);
    return time;
}

}  // namespace

int main(int count, char** arguments) {
    // A folder that is named stays, to look at the archives.
    const std::filesystem::path folder =
        count > 1 ? arguments[1] : std::filesystem::temp_directory_path() / "dravel-log-bench";
    ShiftedClock clock;
    CFileLog log(SystemFiles(), clock, folder);
    log.Start();
    std::atomic<int> written = 0;
    std::vector<std::vector<float>> times(kThreads);
    std::vector<std::thread> writers;
    const auto begin = Clock::now();
    for (int t = 0; t < kThreads; ++t) {
        writers.emplace_back([&, t] {
            const std::string context = "Thread" + std::to_string(t);
            for (int i = 0; i < kLinesEach; ++i) {
                while (log.Waiting() > kLogQueue / 2)
                    std::this_thread::sleep_for(std::chrono::microseconds(100));
                const auto start = Clock::now();
                log.Line(i % 10 ? LogLevel::Info : LogLevel::Error, context, kText);
                times[static_cast<std::size_t>(t)].push_back(static_cast<float>(Microseconds(start)));
                if (++written % (kThreads * kLinesEach / 4) == 0) ++clock.day;
            }
        });
    }
    for (std::thread& writer : writers)
        writer.join();
    const double all = Microseconds(begin);
    while (std::filesystem::exists(folder / "Dravel_20210201.log"))
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    const double archived = Microseconds(begin);
    const auto closing = Clock::now();
    log.Stop();
    const double closed = Microseconds(closing);
    std::vector<float> sorted;
    for (const auto& each : times)
        sorted.insert(sorted.end(), each.begin(), each.end());
    std::ranges::sort(sorted);
    const double limit = PlainWriteMicroseconds(folder / "limit.bin", kText.size() + 44);
    std::printf("1,000,000 lines: ours %.0f ms, limit %.0f ms, ratio %.1f (at most 40.0)\n", all / 1000,
                limit / 1000, all / limit);
    std::printf("one line: median %.2f us, 99.9 %% below %.1f us\n",
                static_cast<double>(sorted[sorted.size() / 2]),
                static_cast<double>(sorted[sorted.size() * 999 / 1000]));
    std::printf("three days archived %.0f ms after the first line\n", archived / 1000);
    std::printf("closing: %.0f ms (at most 2000)\n", closed / 1000);
    if (count == 1) std::filesystem::remove_all(folder);
}
