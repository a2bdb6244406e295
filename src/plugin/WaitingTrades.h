// The trades that the terminal hands over while no book can take them, in memory and in their file.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Clock.h"
#include "platform/Files.h"
#include "records/WaitingFile.h"
#include "records/WaitingLedger.h"
#include "support/Log.h"

namespace Dravel {

// User-interface thread. Lives as long as the library. Its first file is made with the first trade.
class WaitingTrades {
 public:
    using Kind = WaitingSource::Kind;

    // `folder` is that of the book; `process` tells the terminals apart that share it.
    WaitingTrades(IFiles& files, const IClock& clock, ILog& log, std::filesystem::path folder,
                  std::uint32_t process)
        : files_(files), clock_(clock), log_(log), folder_(std::move(folder)), process_(process) {}
    ~WaitingTrades();
    WaitingTrades(const WaitingTrades&) = delete;
    WaitingTrades& operator=(const WaitingTrades&) = delete;

    // On return the trade is in the file. When that is not possible it waits in memory, the log says why, and
    // it is tried again with the next one.
    void Take(const TradeRecord& record, Kind kind);
    // Hands the pending trades over, then those held back, each once. Their file goes when `ledger` has kept
    // them.
    void HandOver(IWaitingLedger& ledger, IWaitingBook& book);
    // Forgets the pending ones, in the file, too. Deliberate: the terminal asked for the bar a second time.
    void DiscardPending();
    // The ledger is no more: what was handed over and not kept is left to the next opening's question.
    void BookGone();

    std::size_t Count() const { return lists_[0].size() + lists_[1].size(); }

 private:
    struct Waiting {
        WaitingTrade trade;
        bool written = false;
    };
    std::deque<Waiting>& List(Kind kind) { return lists_[static_cast<std::size_t>(kind)]; }
    void WriteAll();
    FileStatus Write(Waiting& waiting);
    bool HandOverNext(Kind kind, IWaitingBook& book);
    void Kept(const WaitingFile* file);
    void StartAnew();

    IFiles& files_;
    const IClock& clock_;
    ILog& log_;
    std::filesystem::path folder_;
    std::uint32_t process_;
    std::deque<Waiting> lists_[2];  // by Kind
    std::unique_ptr<WaitingFile> file_;
    std::vector<std::unique_ptr<WaitingFile>> entered_;  // all their trades were handed over
    std::uint32_t last_ = 0;                             // number in file_
    bool handedOver_ = false;                            // some trades of file_
    bool failing_ = false;                               // the log knows
};

}  // namespace Dravel
