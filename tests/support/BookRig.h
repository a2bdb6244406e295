// A book on a disk in memory, and the trades to put into it: open, save, break and reopen in one line each.
#pragma once

#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "records/BookFile.h"
#include "records/RecordText.h"
#include "support/FakeClock.h"
#include "support/FakeLog.h"
#include "support/FaultFiles.h"

namespace Dravel::Test {

using Trades = std::vector<TradeRecord>;

// Every field random: texts of any length up to the capacity, any byte but zero in them ("#" more often than
// chance).
TradeRecord RandomTrade(std::uint64_t seed);
// `count` trades with identifiers from `first` on.
Trades SomeTrades(std::size_t count, std::uint32_t first = 1);
// The same, every frame as long as the others: where one frame is wrong by its length, others end, too.
Trades TradesOfOneLength(std::size_t count, std::size_t frameBytes = 512);
BookImage ImageOf(const Trades& trades);
FileBytes FramesOf(const Trades& trades);
// Size of the file with the sums of a book of these trades.
inline std::size_t SumsBytes(const Trades& trades) {
    return (trades.size() + 5) * 8;
}

inline bool Same(const TradeRecord& a, const TradeRecord& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}
inline bool Same(const Trades& a, const Trades& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](auto& x, auto& y) { return Same(x, y); });
}

inline const char kBook[] = "Data/DravelBook_Dravel.ada";
inline const char kBookSums[] = "Data/DravelBook_Dravel.sums";
inline const char kBookLock[] = "Data/DravelBook_Dravel.lock";

struct BookRig {
    FakeClock clock;
    FakeLog log;
    FaultFiles disk{clock};
    std::unique_ptr<BookFile> file;
    KRV::VELT::TradeLoadReport report;

    std::unique_ptr<BookFile> Make();
    // A new start of the program: true when the book is ours.
    bool Start();
    Trades Load();
    bool Save(const Trades& trades) { return file->Save(ImageOf(trades)).ok; }
    // Start and load; what a user would see, without the deleted ones.
    Trades Reopen();
    void Kill() {
        disk.Kill();
        file.reset();
    }
    std::vector<std::string> Backups() const;
    // What lies on the disk when the book was opened and nothing is left over.
    std::vector<std::string> NamesOfAnOpenBook() const;
};

// The trades in the bytes of a record file.
Trades TradesIn(const FileBytes& bytes, KRV::VELT::TradeLoadReport* report = nullptr);

}  // namespace Dravel::Test
