// What the journal costs the user-interface thread: the same trades imported, and entered one by one, with it
// and without. The thread's own processor time; the writer's thread does its work on the real disk meanwhile.
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

#include "bench/SilentHost.h"
#include "entry/CsvImport.h"
#include "generator/TradeGenerator.h"
#include "generator/Universe.h"
#include "records/ADAWriteAsync.h"
#include "records/BookJournal.h"
#include "tradebook/TradeBook.h"

using namespace Dravel;

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kLines = 100000;

struct SilentLog final : ILog {
    void Line(LogLevel, std::string_view, std::string_view) override {}
};

double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// A book with its journal and its writer, as the bar ties them.
struct Journaled {
    Journaled(const fs::path& folder, TradeBook& owner, bool on)
        : journal(SystemFiles(), SystemClock(), log, folder, "Bench"), writer(log, &journal), book(owner) {
        if (!on) return;
        JournalOpening opening;
        journal.Open(
            {}, [](const JournalEntry&) {}, opening);
        journal.Start([this] { writer.Wake(); }, {});
        book.SetRecorder(&journal);
    }
    ~Journaled() {
        book.SetRecorder(nullptr);
        writer.Stop();
        journal.Stop();
        journal.Remove();
    }
    SilentLog log;
    BookJournal journal;
    KRV::Base::CKRVADAWriteAsync writer;
    TradeBook& book;
};

double Import(const fs::path& folder, const fs::path& file, bool journaled) {
    SilentHost host;
    SilentUser user;
    TradeBook book(host);
    ManualClients clients(SystemFiles(), host, folder);
    for (const auto& client : Sample::Clients())
        clients.Add(client);
    const Journaled journal(folder, book, journaled);
    const double since = ThreadSeconds();
    CsvImport import({SystemFiles(), host, user, SystemClock(), book, clients}, {});
    import.Run(file);
    const double seconds = ThreadSeconds() - since;
    if (book.RowCount() != kLines) std::printf("WRONG: %u trades\n", book.RowCount());
    return seconds;
}

double Enter(const fs::path& folder, const std::vector<TradeRecord>& typed, bool journaled) {
    SilentHost host;
    TradeBook book(host);
    const Journaled journal(folder, book, journaled);
    const double since = ThreadSeconds();
    for (TradeRecord trade : typed)
        book.Add(trade);
    return ThreadSeconds() - since;
}

template <class Work>
void Compare(const char* what, const Work& work) {
    double with = 1e9, without = 1e9;
    for (int round = 0; round < 9; ++round) {
        without = std::min(without, work(false));
        with = std::min(with, work(true));
    }
    std::printf("%s: %.0f ns with the journal, %.0f ns without, ratio %.2f (at most 1.15)\n", what,
                with * 1e9 / kLines, without * 1e9 / kLines, with / without);
}

}  // namespace

int main() {
    const fs::path folder = fs::temp_directory_path() / "dravel-journal-bench";
    fs::create_directories(folder);
    std::ofstream out(folder / "trades.csv", std::ios::binary);
    WriteSampleFile({.trades = kLines}, [&](std::string_view text) {
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
    });
    out.close();
    std::vector<TradeRecord> typed(kLines);
    TradeGenerator generator(1);
    for (TradeRecord& trade : typed)
        generator.Fill(trade);
    Compare("import a line", [&](bool on) { return Import(folder, folder / "trades.csv", on); });
    Compare("enter a trade", [&](bool on) { return Enter(folder, typed, on); });
    fs::remove_all(folder);
}
