#include "plugin/LeftTrades.h"

#include <algorithm>
#include <utility>

#include "formatset/DateFormat.h"
#include "records/TradeFrame.h"
#include "support/FaultText.h"

namespace Dravel {

namespace {

constexpr char kContext[] = "Waiting";
// A single torn frame is the last one, whose handler never returned. More is damage.
constexpr std::size_t kLongestTear = 2 * kMaxTradeFrame;

std::string Counted(std::size_t trades) {
    return std::to_string(trades) + (trades == 1 ? " trade" : " trades");
}

}  // namespace

void LeftTrades::Ask(IUser& user, IWaitingLedger& ledger, IWaitingBook& book) {
    gone_ = false;
    for (Left& left : Find(ledger)) {
        const std::size_t count = left.contents.trades.size();
        const std::string trades = Counted(count) + " that the terminal handed over on " +
                                   FormatDate(left.time, "ddMMMyyyy", clock_);
        const std::uint32_t answer =
            user.Box(trades + " never reached the book. Add " + (count == 1 ? "it?" : "them?"), "Dravel",
                     Buttons::YesNoCancel, Icon::Question);
        if (gone_) return;
        if (answer == kAnswerYes && Add(left, book)) {
            const WaitingFile* const file = added_.emplace_back(std::move(left)).file.get();
            ledger.WhenKept([this, file] { Kept(file); });
        } else if (answer == kAnswerNo) {
            log_.Line(LogLevel::Warning, kContext, trades + " were dropped, as the user said.");
            Remove(left);
        }
    }
}

// Those of a process that lives are held by it. Each that is found is held from now on, so that it is asked
// about in one terminal only.
std::vector<LeftTrades::Left> LeftTrades::Find(IWaitingLedger& ledger) {
    std::vector<std::filesystem::path> names;
    files_.List(folder_, names);
    std::sort(names.begin(), names.end());
    std::vector<Left> found;
    for (const std::filesystem::path& name : names) {
        Left left;
        FileInfo info;
        if (!WaitingFile::IsName(name) || !files_.Info(folder_ / name, info)) continue;
        left.time = info.modified;
        if (!WaitingFile::TakeOver(files_, clock_, folder_ / name, left.file, left.contents)) continue;
        std::erase_if(left.contents.trades, [&](const WaitingTrade& trade) {
            return ledger.HoldsWaiting(left.file->Name(), trade.number);
        });
        if (left.contents.trades.empty()) {
            Remove(left);
        } else {
            found.push_back(std::move(left));
        }
    }
    return found;
}

bool LeftTrades::Add(Left& left, IWaitingBook& book) {
    for (const WaitingTrade& trade : left.contents.trades) {
        TradeRecord record = trade.record;
        if (!book.Prepare(record) || gone_) return false;
        book.Enter(record, {WaitingSource::Kind::Pending, left.file->Name(), trade.number});
        if (gone_) return false;
    }
    log_.Line(LogLevel::Info, kContext, Counted(left.contents.trades.size()) + " of an earlier run added.");
    return true;
}

// What stands behind damage may be trades, too: nobody reads them, but the bytes are kept.
void LeftTrades::Remove(Left& left) {
    const std::filesystem::path path = left.file->Path();
    FileStatus status;
    if (left.contents.unread > kLongestTear) {
        left.file.reset();
        std::filesystem::path beside = path;
        beside += ".damaged";
        status = files_.Rename(path, beside);
        log_.Line(LogLevel::Warning, kContext,
                  std::to_string(left.contents.unread) +
                      " bytes of waiting trades could not be read; kept as " + beside.filename().string());
    } else {
        status = left.file->Drop();
    }
    if (!status) log_.Line(LogLevel::Warning, kContext, FaultText("A file of waiting trades stays", status));
}

void LeftTrades::Kept(const WaitingFile* file) {
    const auto found = std::find_if(added_.begin(), added_.end(),
                                    [file](const Left& left) { return left.file.get() == file; });
    if (found == added_.end()) return;
    Remove(*found);
    added_.erase(found);
}

}  // namespace Dravel
