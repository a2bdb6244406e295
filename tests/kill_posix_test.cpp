// A real process that saves a real book, killed at every system call of the save.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "support/BookRig.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

namespace fs = std::filesystem;

constexpr char kMarker[] = "/the-save-begins-here";

struct TempFolder {
    fs::path path = fs::temp_directory_path() / ("dravel-kill-" + std::to_string(getpid()));
    TempFolder() { fs::create_directories(path); }
    ~TempFolder() { fs::remove_all(path); }
};

int RunCommand(const std::string& command) {
    const int status = std::system((command + " >/dev/null 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Each system call of the save as its name and which of its kind it is in the whole run.
std::vector<std::pair<std::string, int>> CallsBehindTheMarker(const fs::path& trace) {
    std::vector<std::pair<std::string, int>> calls;
    std::map<std::string, int> counts;
    bool behind = false;
    std::ifstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t from = line.find_first_not_of("0123456789 "), to = line.find('(');
        if (to == std::string::npos || from > to) continue;
        const std::string name = line.substr(from, to - from);
        const int count = ++counts[name];
        if (behind && name != "exit_group") calls.emplace_back(name, count);
        behind = behind || line.find(kMarker) != std::string::npos;
    }
    return calls;
}

Trades BookIn(const fs::path& folder) {
    FakeLog log;
    BookFile file(SystemFiles(), SystemClock(), log, {folder, folder / "Backup", "Book"});
    Trades trades;
    EXPECT_TRUE(file.Acquire()) << "the killed owner holds nothing";
    EXPECT_TRUE(file.LoadBook([&](const TradeRecord& trade, bool) { trades.push_back(trade); }).Clean());
    return trades;
}

void PutOldBook(const fs::path& folder, const FileBytes& bytes) {
    fs::remove_all(folder);
    fs::create_directories(folder);
    std::ofstream(folder / "Book.ada", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    // Of an earlier day, so that the save makes its backup, too.
    fs::last_write_time(folder / "Book.ada", fs::file_time_type::clock::now() - std::chrono::hours(48));
}

}  // namespace

// Run by the test below in a process of its own; alone it does nothing.
TEST(KillChild, DISABLED_Save) {
    const char* folder = std::getenv("DRAVEL_KILL_FOLDER");
    if (!folder) return;
    FakeLog log;
    const fs::path path = folder;
    BookFile file(SystemFiles(), SystemClock(), log, {path, path / "Backup", "Book"});
    const BookImage image = ImageOf(SomeTrades(1000, 5000));
    if (!file.Acquire()) _exit(3);
    if (access(kMarker, F_OK) == 0) _exit(4);
    _exit(file.Save(image).ok ? 0 : 5);
}

TEST(Kill, AtEverySystemCallOfASaveLeavesTheOldBookOrTheNew) {
    const TempFolder temp;
    const fs::path book = temp.path / "book", trace = temp.path / "trace";
    const Trades old = SomeTrades(900), fresh = SomeTrades(1000, 5000);
    const FileBytes oldBytes = FramesOf(old);
    const std::string child = " " + fs::read_symlink("/proc/self/exe").string() +
                              " --gtest_filter=KillChild.DISABLED_Save --gtest_also_run_disabled_tests";
    setenv("DRAVEL_KILL_FOLDER", book.c_str(), 1);

    PutOldBook(book, oldBytes);
    if (RunCommand("strace -f -o " + trace.string() + child) != 0)
        GTEST_SKIP() << "no strace, or it may not trace here";
    ASSERT_TRUE(Same(BookIn(book), fresh));
    const auto calls = CallsBehindTheMarker(trace);
    ASSERT_GT(calls.size(), 10u);

    std::size_t olds = 0, news = 0, less = 0;
    for (const auto& [call, k] : calls) {
        PutOldBook(book, oldBytes);
        RunCommand("strace -f -o /dev/null -e trace=" + call + " -e inject=" + call +
                   ":signal=KILL:when=" + std::to_string(k) + child);
        const Trades found = BookIn(book);
        olds += Same(found, old);
        news += Same(found, fresh);
        less += !Same(found, old) && !Same(found, fresh);
    }
    unsetenv("DRAVEL_KILL_FOLDER");
    std::printf("killed at %zu system calls: %zu old, %zu new, %zu less\n", calls.size(), olds, news, less);
    EXPECT_EQ(less, 0u);
    EXPECT_GT(olds, 0u);
    EXPECT_GT(news, 0u);
}
