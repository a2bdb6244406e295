#include "plugin/WaitingTrades.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "support/FaultText.h"

namespace Dravel {

namespace {

constexpr char kContext[] = "Waiting";

}  // namespace

WaitingTrades::~WaitingTrades() {
    if (file_) file_->Flush();
}

void WaitingTrades::Take(const TradeRecord& record, Kind kind) {
    List(kind).push_back({{++last_, record}});
    WriteAll();
}

// In the order in which they came, so that one that could not be written holds none of the later back for
// longer than the disk refuses.
void WaitingTrades::WriteAll() {
    FileStatus status;
    for (auto& list : lists_) {
        auto at = list.end();
        while (at != list.begin() && !std::prev(at)->written)
            --at;
        for (; at != list.end() && status; ++at)
            status = Write(*at);
    }
    if (failing_ == !status) return;
    failing_ = !status;
    if (failing_)
        log_.Line(
            LogLevel::Error, kContext,
            FaultText("Trades of the terminal wait in memory alone, their file cannot be written", status));
    else
        log_.Line(LogLevel::Info, kContext, "The trades that waited in memory are in their file now.");
}

FileStatus WaitingTrades::Write(Waiting& waiting) {
    FileStatus status;
    if (!file_) status = WaitingFile::Make(files_, clock_, folder_, process_, file_);
    if (status) status = file_->Append(WaitingFrame(waiting.trade));
    waiting.written = static_cast<bool>(status);
    return status;
}

// A trade that the book gets is off the list before that: whatever happens inside finds the list in step.
// False: the book is gone.
bool WaitingTrades::HandOverNext(Kind kind, IWaitingBook& book) {
    auto& list = List(kind);
    const WaitingFile* const file = file_.get();
    const std::uint32_t number = list.front().trade.number;
    TradeRecord record = list.front().trade.record;
    if (!book.Prepare(record)) return false;
    if (list.empty() || list.front().trade.number != number || file_.get() != file) return true;  // it went
    WaitingSource source{kind, {}, 0};
    if (file_ && list.front().written) source = {kind, file_->Name(), number};
    const Waiting waiting = list.front();
    list.pop_front();
    handedOver_ = true;
    const std::uint64_t before = book.Revision();
    try {
        book.Enter(record, source);
    } catch (...) {
        if (book.Revision() == before) list.push_front(waiting);  // it did not get in
        throw;
    }
    return true;
}

void WaitingTrades::HandOver(IWaitingLedger& ledger, IWaitingBook& book) {
    for (const Kind kind : {Kind::Pending, Kind::HeldBack}) {
        while (!List(kind).empty()) {
            if (!HandOverNext(kind, book)) return;
        }
    }
    if (!file_) return;
    file_->Flush();
    const WaitingFile* const file = entered_.emplace_back(std::move(file_)).get();
    StartAnew();
    ledger.WhenKept([this, file] { Kept(file); });
}

void WaitingTrades::StartAnew() {
    file_.reset();
    last_ = 0;
    handedOver_ = false;
}

void WaitingTrades::Kept(const WaitingFile* file) {
    const auto found = std::find_if(entered_.begin(), entered_.end(),
                                    [file](const auto& some) { return some.get() == file; });
    if (found == entered_.end()) return;
    if (const FileStatus status = (*found)->Drop(); !status)
        log_.Line(LogLevel::Warning, kContext, FaultText("A file of waiting trades stays", status));
    entered_.erase(found);
}

void WaitingTrades::DiscardPending() {
    auto& pending = List(Kind::Pending);
    if (pending.empty()) return;
    log_.Line(LogLevel::Warning, kContext,
              std::to_string(pending.size()) +
                  " trades that waited for the book were discarded, because the bar was opened again.");
    for (const Waiting& waiting : pending) {
        if (file_ && waiting.written) file_->Append(WaitingDropFrame(waiting.trade.number));
    }
    pending.clear();
    if (Count() > 0 || handedOver_ || !file_) return;
    file_->Drop();
    StartAnew();
}

// Trades that still wait move to a file of their own before the old one loses them: it is left with those
// that the lost book had.
void WaitingTrades::BookGone() {
    entered_.clear();
    if (!handedOver_) return;
    const std::unique_ptr<WaitingFile> old = std::move(file_);
    StartAnew();
    std::vector<std::pair<std::uint32_t, const Waiting*>> moved;  // with the number in the old file
    for (auto& list : lists_) {
        for (Waiting& waiting : list) {
            if (waiting.written) moved.emplace_back(waiting.trade.number, &waiting);
            waiting = {{++last_, waiting.trade.record}};
        }
    }
    WriteAll();
    for (const auto& [number, waiting] : moved) {
        if (old && waiting->written) old->Append(WaitingDropFrame(number));
    }
    if (old) old->Flush();
}

}  // namespace Dravel
