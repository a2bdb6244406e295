// The book: the stored trades, their rows, their keys, the counter and the changed flag, always in step.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "host/Host.h"
#include "platform/Clock.h"
#include "records/ChangeRecorder.h"
#include "tradebook/BookPort.h"
#include "tradebook/DuplicateKeys.h"
#include "tradebook/SecurityLookup.h"
#include "tradebook/TradeIndex.h"
#include "tradebook/TradeReport.h"
#include "tradebook/TradeStore.h"

namespace Dravel {

// A trade of the book for as long as the book is loaded, whatever happens to its row; also that of a deleted
// one. Counted 0, 1, 2, ... in the order in which the trades came.
using TradeItem = TradeStore::Slot;
inline constexpr TradeItem kNoItem = TradeIndex::kNone;
inline constexpr std::uint32_t kNoBookRow = 0xFFFFFFFF;
inline constexpr std::uint32_t kLargestIdentifier = 0x7FFFFFFF;

// Told of every change of the rows, after it happened. Row 0 is the top row.
class IBookObserver {
 public:
    virtual ~IBookObserver() = default;
    virtual void RowAddedOnTop() = 0;
    virtual void RowsReset() = 0;
    virtual void RowEdited(TradeItem item) = 0;
    // `rows` ascending, as they were numbered before; `items[i]` stood in `rows[i]`.
    virtual void RowsRemoved(std::span<const std::uint32_t> rows, std::span<const TradeItem> items) = 0;
    // The trade of row `from` now stands in row `to`; those between moved by one.
    virtual void RowMoved(std::uint32_t from, std::uint32_t to) = 0;
    virtual void ChangedFlagSet(bool changed) = 0;
    // Between the two the rows may be shown late. They nest.
    virtual void BatchBegins() = 0;
    virtual void BatchEnds() = 0;
};

// A trade that was stored with the identifier of another one and was given its own when it was loaded.
struct Renumbered {
    std::uint32_t was = 0;
    TradeItem item = kNoItem;
};

// Quantities of the trades shown.
struct RunningTotals {
    std::uint64_t bought = 0;
    std::uint64_t sold = 0;
};

// Lives on the user-interface thread. Every trade enters through Add or through loading; there is no other
// way in.
class TradeBook final : public ITradeSink {
 public:
    explicit TradeBook(IHost& host, const IClock& clock = SystemClock())
        : host_(host), securities_(host, clock) {}

    // Loading: BeginLoad empties the book, Load takes the frames in file order (the first is the top row),
    // EndLoad gives identifiers to the trades that have none and shows the rows. Two different frames with
    // one identifier are two trades: the later one keeps it. Of two equal ones only the deleted mark of the
    // later counts. A deleted trade is not shown. Nothing is reported and the changed flag stays clear.
    void BeginLoad();
    void Load(const TradeRecord& record, bool deleted);
    void EndLoad();
    // Of the last load: trades that lost their identifier to a later, different one.
    std::span<const Renumbered> RenumberedTrades() const { return renumbered_; }

    // A new trade, on top: takes the next value of the counter as VELTTradeID and VELTOrderID, enters its
    // key, is reported, sets the changed flag. Returns its identifier.
    std::int32_t Add(TradeRecord& record) { return Add(record, source_); }
    std::int32_t Add(TradeRecord& record, const ChangeSource& source);
    std::uint32_t AddUnlessHeld(TradeRecord& record, const ChangeSource& source) override;
    // A trade that the terminal hands over: as Add, but it keeps identifiers of its own, as VELTTradeID one
    // that nobody else holds, and is reported a second time too.
    std::int32_t AddFromHost(TradeRecord& record, const ChangeSource& source = {ChangeKind::Terminal, {}, 0});
    std::uint32_t HolderOf(const TradeRecord& record) const override;
    const SecurityMasterEntry* ContractOf(const TradeRecord& record) override {
        return securities_.Find(record);
    }
    // Puts `record` in the place of the trade, which keeps its identifier, looks up the contract when the
    // record has none, reports the trade and sets the changed flag. False: the trade was deleted.
    bool Edit(TradeItem item, TradeRecord record);
    // Takes the trades out of rows, keys and totals and sets the changed flag; they keep their mark in the
    // map. Each is reported a second time, too. Items without a row are passed over. Returns how many went.
    std::uint32_t Delete(std::span<const TradeItem> items);
    // Changes the order that is saved and nothing else: the changed flag stays as it is. Rows that do not
    // exist change nothing. O(rows between the two).
    void MoveRow(std::uint32_t from, std::uint32_t to);
    void BeginBatch() override {
        if (observer_) observer_->BatchBegins();
    }
    void EndBatch() override {
        if (observer_) observer_->BatchEnds();
    }

    // Changes that were recorded since the book was saved, carried out again behind a load: nothing is
    // reported or recorded, and the rows are shown at the end. A put takes the place of the trade with its
    // identifier, or comes in below the trade `above`; what speaks of a trade that is not there does nothing.
    void RestorePut(TradeRecord record, std::uint32_t above);
    void RestoreDeleted(std::span<const std::uint32_t> identifiers);
    void RestoreMoved(std::uint32_t identifier, std::uint32_t above);
    // `changed`: something other than the order of the rows.
    void EndRestore(bool changed);
    // Gives the trades of the book what they lack of their contract, without flag or report. The first fills
    // texts that are empty from the contracts that are known; the second first asks the terminal anew for
    // those that are not.
    void FillFromContracts();
    void FindContracts();

    // Reports every trade of the book in ascending order of its identifier.
    void ReportAll(ReportKind kind = {}) const;

    std::uint32_t RowCount() const { return static_cast<std::uint32_t>(rows_.size()); }
    const TradeRecord& Row(std::uint32_t row) const { return Record(ItemAt(row)); }
    TradeItem ItemAt(std::uint32_t row) const { return rows_[rows_.size() - 1 - row]; }
    // kNoBookRow when the trade has no row. O(log rows).
    std::uint32_t RowOf(TradeItem item) const;
    // Falls from the top row to the bottom one; changes only for trades that move.
    std::uint32_t Rank(TradeItem item) const { return ranks_[item]; }
    const TradeRecord& Record(TradeItem item) const { return store_[item].record; }
    // One more than the largest item there ever was since loading.
    std::uint32_t ItemCount() const { return store_.Size(); }
    // kNoItem when no trade has the identifier; a deleted one is found.
    TradeItem ItemOf(std::int32_t tradeID) const { return tradeID < 1 ? kNoItem : trades_.Find(tradeID); }
    // nullptr when no trade has the identifier. Deleted trades are found too: they keep their mark until the
    // next load.
    const StoredTrade* Find(std::int32_t tradeID) const;

    std::uint32_t Counter() const { return counter_; }
    bool Changed() const { return changed_; }
    // Counts the changes of the book since it was made; two equal values mean the same trades.
    std::uint64_t Revision() const { return revision_; }
    void SetChanged(bool changed);
    void SetAnalysisOnly(bool on) { analysisOnly_ = on; }
    const RunningTotals& Totals() const { return totals_; }
    // What finds the terminal's entry of a trade's contract, for whoever reads stored trades.
    SecurityLookup& Securities() { return securities_; }
    void SetObserver(IBookObserver* observer) { observer_ = observer; }
    // Told of every change before the terminal is; nullptr: nobody.
    void SetRecorder(IChangeRecorder* recorder) { recorder_ = recorder; }
    // Whose changes come from now on, where they are not told with them: the user's.
    void SetUser(const std::string& name) { source_.name = name; }

 private:
    void FindSecurity(TradeRecord& record);
    void TakeFromContract(TradeItem item, const SecurityMasterEntry& contract);
    void ContractsTaken(std::span<const TradeItem> items);
    void AddTrade(TradeRecord& record, const DuplicateKey& key, bool secondReport,
                  const ChangeSource& source);
    TradeItem Insert(const TradeRecord& record, const DuplicateKey& key);
    void Replace(TradeItem item, const TradeRecord& record);
    std::vector<TradeItem> TakeOut(std::span<const std::uint32_t> rows);
    void Shift(std::uint32_t from, std::uint32_t to);
    void Place(TradeItem item, std::uint32_t above);
    TradeItem Revive(TradeItem item, const TradeRecord& record);
    std::uint32_t Above(TradeItem item) const;
    void NameNamelessTrades();
    std::int32_t NextIdentifier();
    void Enter(TradeItem item, const DuplicateKey& key);
    void Leave(TradeItem item);
    void PushRow(TradeItem item);
    std::vector<std::uint32_t> RowsOf(std::span<const TradeItem> items) const;

    IHost& host_;
    SecurityLookup securities_;
    IBookObserver* observer_ = nullptr;
    IChangeRecorder* recorder_ = nullptr;
    ChangeSource source_;
    TradeStore store_;
    std::vector<TradeItem> rows_;       // the last is the top row, so that a trade comes in at the end
    std::vector<std::uint32_t> ranks_;  // by item; ascending along rows_, so that an item's row can be found
    TradeIndex trades_;
    DuplicateKeys keys_{store_};
    RunningTotals totals_;
    std::uint64_t revision_ = 0;
    std::uint32_t counter_ = 0;
    std::vector<Renumbered> renumbered_;
    std::int32_t lowestFree_ = 1;  // no lower identifier is free
    bool changed_ = false;
    bool analysisOnly_ = false;
};

}  // namespace Dravel
