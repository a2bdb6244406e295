// The book: the stored trades, their rows, their keys, the counter and the changed flag, always in step.
#pragma once

#include <cstdint>
#include <vector>

#include "host/Host.h"
#include "tradebook/BookPort.h"
#include "tradebook/DuplicateKeys.h"
#include "tradebook/SecurityLookup.h"
#include "tradebook/TradeIndex.h"
#include "tradebook/TradeReport.h"
#include "tradebook/TradeStore.h"

namespace Dravel {

// Told of every change of the rows, after it happened. Row 0 is the top row.
class IBookObserver {
 public:
    virtual ~IBookObserver() = default;
    virtual void RowAddedOnTop() = 0;
    virtual void RowsReset() = 0;
    virtual void ChangedFlagSet(bool changed) = 0;
    // Between the two the rows may be shown late. They nest.
    virtual void BatchBegins() = 0;
    virtual void BatchEnds() = 0;
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
    explicit TradeBook(IHost& host) : host_(host), securities_(host) {}

    // Loading: BeginLoad empties the book, Load takes the frames in file order (the first is the top row),
    // EndLoad gives identifiers to the trades that have none and shows the rows. Of two frames with one
    // identifier the later counts, in the earlier one's place; a deleted one is not shown. Nothing is
    // reported and the changed flag stays clear.
    void BeginLoad();
    void Load(const TradeRecord& record, bool deleted);
    void EndLoad();

    // A new trade, on top: takes the next value of the counter as VELTTradeID and VELTOrderID (and as OrderID
    // when that is 0), enters its key, is reported, sets the changed flag. Returns its identifier.
    std::int32_t Add(TradeRecord& record) override;
    // A trade that the terminal hands over: as Add, but it keeps an identifier of its own that nobody else
    // holds, and is reported a second time too.
    std::int32_t AddFromHost(TradeRecord& record);
    bool Holds(const TradeRecord& record) const override { return keys_.Holds(record); }
    void BeginBatch() override {
        if (observer_) observer_->BatchBegins();
    }
    void EndBatch() override {
        if (observer_) observer_->BatchEnds();
    }

    // Reports every trade of the book in ascending order of its identifier.
    void ReportAll() const;

    std::uint32_t RowCount() const { return static_cast<std::uint32_t>(rows_.size()); }
    const TradeRecord& Row(std::uint32_t row) const { return store_[rows_[rows_.size() - 1 - row]].record; }
    // nullptr when no trade has the identifier. Deleted trades are found too: they keep their mark until the
    // next load.
    const StoredTrade* Find(std::int32_t tradeID) const;

    std::uint32_t Counter() const { return counter_; }
    bool Changed() const { return changed_; }
    // Counts the changes of the book since it was made; two equal values mean the same trades.
    std::uint64_t Revision() const { return revision_; }
    void SetChanged(bool changed);
    bool AnalysisOnly() const { return analysisOnly_; }
    void SetAnalysisOnly(bool on) { analysisOnly_ = on; }
    const RunningTotals& Totals() const { return totals_; }
    void SetObserver(IBookObserver* observer) { observer_ = observer; }

 private:
    void AddTrade(TradeRecord& record, bool secondReport);
    void NameNamelessTrades();
    std::int32_t NextIdentifier();
    void Enter(const TradeRecord& record);

    IHost& host_;
    SecurityLookup securities_;
    IBookObserver* observer_ = nullptr;
    TradeStore store_;
    std::vector<TradeStore::Slot> rows_;  // the last is the top row, so that a trade comes in at the end
    TradeIndex trades_;
    DuplicateKeys keys_;
    RunningTotals totals_;
    std::uint64_t revision_ = 0;
    std::uint32_t counter_ = 0;
    bool changed_ = false;
    bool analysisOnly_ = false;
};

}  // namespace Dravel
