// The trades of the book as the grid shows them: sorted, filtered, grouped.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "toolkit/GridOrder.h"
#include "toolkit/GridSort.h"
#include "toolkit/GridSource.h"
#include "tradebook/TradeBook.h"
#include "tradebook/TradeFilter.h"
#include "tradebook/TradeSort.h"
#include "tradebook/TradeTexts.h"

namespace Dravel {

// Told of every change of the shown rows, after it happened; the words are GridModel's.
class IRowDisplay {
 public:
    virtual ~IRowDisplay() = default;
    virtual void Inserted(std::uint32_t at, std::uint32_t count) = 0;
    virtual void Removed(std::uint32_t at, std::uint32_t count) = 0;
    virtual void Swapped(std::uint32_t a, std::uint32_t b) = 0;
    // `newRow` gives the new row of an old one or kNoRow; it lives as long as the call.
    virtual void Reordered(std::uint32_t count,
                           const std::function<std::uint32_t(std::uint32_t)>& newRow) = 0;
    virtual void Reset() = 0;
    virtual void Changed(std::uint32_t row) = 0;  // says something else now
    // Whether one of the arrangement's filters hides a trade that came or changed. All trades at once are
    // filtered by the same ColumnFilter over packed cells.
    virtual bool Hides(const ColumnFilter& filter, TradeItem item) const = 0;
};

// How the rows are arranged. Columns are those of TradeColumns.h.
struct RowArrangement {
    std::vector<GridSortKey> sort;      // most important first
    std::vector<int> groups;            // outermost first
    std::vector<ColumnFilter> filters;  // a trade shows when all of them let it pass
};

// Rows between the book and the grid. User-interface thread.
//
// As long as nothing is sorted, filtered or grouped the rows are the book's and nothing is kept here. Else
// all trades of the book stand in a GridOrder, those that a filter or a closed group hides as hidden entries,
// so that a keystroke in the filter bar decides about entries and moves none. Trades that are equal under all
// keys stand as in the book. What is kept costs about 9 bytes a trade (13 with groups), and for each column
// that is filtered, sorted or grouped by 8 bytes for a number, 2 bytes or its own length for a text; it goes
// when it is needed no more.
class TradeRows final : public IBookObserver {
 public:
    // Both outlive it.
    TradeRows(const TradeBook& book, IRowDisplay& display) : book_(book), display_(display) {}

    void Arrange(RowArrangement arrangement);
    const RowArrangement& Arrangement() const { return arrangement_; }
    bool Sorted() const { return !arrangement_.sort.empty(); }
    bool Grouped() const { return !arrangement_.groups.empty(); }

    std::uint32_t RowCount() const { return arranged_ ? order_.RowCount() : book_.RowCount(); }
    // `row` below RowCount(). kNoItem for the head of a group.
    TradeItem ItemAt(std::uint32_t row) const;
    std::uint32_t RowOf(TradeItem item) const;  // kNoRow: not shown
    // Trades that the filter lets pass, also those in closed groups.
    std::uint32_t ShownTrades() const { return arranged_ ? shown_ : book_.RowCount(); }

    // What a row of a group's head says.
    GridGroupHead Head(std::uint32_t row) const;
    struct GroupFacts {
        int column = -1;
        TradeItem sample = kNoItem;  // a trade of the group
        std::uint32_t trades = 0;    // that the filter lets pass
    };
    GroupFacts Facts(std::uint32_t row) const;  // of a head
    // Opens or closes the group of a head; other rows change nothing. A group that was closed is closed again
    // when it comes back, until other columns are grouped by.
    void Toggle(std::uint32_t row);

    // As the book's observer, or called by the one that is.
    void RowAddedOnTop() override;
    void RowsReset() override;
    void RowEdited(TradeItem item) override;
    void RowsRemoved(std::span<const std::uint32_t> rows, std::span<const TradeItem> items) override;
    void RowMoved(std::uint32_t from, std::uint32_t to) override;
    void ChangedFlagSet(bool) override {}
    void BatchBegins() override {}
    void BatchEnds() override {}

    std::size_t Bytes() const;

 private:
    using Entry = GridOrder::Entry;
    struct Level {
        int column;
        bool ascending;
        bool operator==(const Level&) const = default;
    };
    static constexpr std::uint32_t kNoGroup = 0xFFFFFFFF;
    struct Group {
        std::uint32_t parent = kNoGroup;
        std::uint32_t level = 0;
        TradeItem sample = kNoItem;
        std::uint32_t trades = 0, shown = 0;
        bool open = true;
        bool inside = true;  // it and all around it are open: what is in it shows
    };
    // Rows that came or went together.
    struct Run {
        std::uint32_t at = 0, count = 0;
    };

    // Arranging (TradeRows.cpp)
    std::vector<Level> LevelsOf(const RowArrangement& arrangement) const;
    void KeepCells();
    void ExtendCells();
    void UpdateCells(TradeItem item);
    void Build();
    void Drop();
    std::vector<TradeItem> SortedItems() const;
    std::vector<Entry> WithHeads(const std::vector<TradeItem>& items);
    void Filter();
    void CountGroups();
    void SweepAll();
    std::vector<Entry> ShownEntries() const;
    void TellReordered(const std::function<Entry(std::uint32_t)>& old, bool headsStay);
    int Compare(std::size_t level, TradeItem a, TradeItem b) const;
    std::size_t SameLevels(TradeItem a, TradeItem b, std::size_t levels) const;
    bool Passes(TradeItem item) const;

    // Single trades (TradeRowsChange.cpp)
    bool StandsBefore(Entry entry, TradeItem item) const;
    Run Put(TradeItem item);
    Run Take(TradeItem item);
    void PlaceAnew(TradeItem item);
    void RemoveMany(std::span<const TradeItem> items);
    void TellRemoved(std::span<const std::uint32_t> rows);
    void FindSample(std::uint32_t group);
    void RedrawHeads(std::uint32_t group);
    std::uint32_t GroupFor(TradeItem item, GridOrder::Place place, std::vector<std::uint32_t>& fresh);

    // Groups (TradeRowsGroups.cpp)
    std::uint32_t NewGroup(std::uint32_t parent, std::uint32_t level, TradeItem sample);
    std::string PathOf(std::uint32_t group) const;
    bool Shows(Entry entry) const;
    void SetInside(Group& group) const;

    static Entry HeadEntry(std::uint32_t group) { return group | GridOrder::kHeadEntry; }
    static bool IsHead(Entry entry) { return (entry & GridOrder::kHeadEntry) != 0; }
    static std::uint32_t GroupOf(Entry head) { return head & ~GridOrder::kHeadEntry; }

    const TradeBook& book_;
    IRowDisplay& display_;
    RowArrangement arrangement_;
    std::vector<Level> levels_;  // groups, then the other sort keys
    bool arranged_ = false;
    GridOrder order_;
    std::vector<std::uint8_t> passes_;  // by item
    std::uint32_t shown_ = 0;
    std::vector<Group> groups_;
    std::vector<std::uint32_t> freeGroups_;
    std::vector<std::uint32_t> groupOf_;  // innermost, by item
    std::set<std::string> closed_;        // paths
    // By column, none where not needed.
    std::vector<std::unique_ptr<TradeTexts>> texts_;
    std::vector<std::unique_ptr<TradeNumbers>> numbers_;
};

}  // namespace Dravel
