// Single trades that come, go or change while the rows are arranged.
#include <algorithm>

#include "tradebook/TradeRows.h"

namespace Dravel {

namespace {

// More separate changes than this are told as a new order: each costs work that grows with the selection.
constexpr std::size_t kFewChanges = 64;

}  // namespace

// A head stands before all that is in its group; trades that are equal under all keys stand as in the book.
bool TradeRows::StandsBefore(Entry entry, TradeItem item) const {
    const bool head = IsHead(entry);
    const TradeItem other = head ? groups_[GroupOf(entry)].sample : entry;
    const std::size_t levels = head ? groups_[GroupOf(entry)].level + 1 : levels_.size();
    for (std::size_t level = 0; level < levels; ++level) {
        if (const int order = Compare(level, other, item); order != 0) return order < 0;
    }
    return head || book_.Rank(other) > book_.Rank(item);
}

// The innermost group for a trade that comes to `place`; those that had to be made for it are in `fresh`.
std::uint32_t TradeRows::GroupFor(TradeItem item, GridOrder::Place place, std::vector<std::uint32_t>& fresh) {
    std::uint32_t group = kNoGroup;
    std::size_t same = 0;
    // What the trade has in common with any entry it has in common with the one above its place.
    if (const Entry above = order_.EntryBefore(place); above != GridOrder::kNone) {
        group = IsHead(above) ? GroupOf(above) : groupOf_[above];
        std::size_t depth = groups_[group].level + 1;
        same = SameLevels(groups_[group].sample, item, depth);
        for (; depth > same; --depth)
            group = groups_[group].parent;
    }
    for (std::size_t level = same; level < arrangement_.groups.size(); ++level) {
        group = NewGroup(group, static_cast<std::uint32_t>(level), item);
        fresh.push_back(group);
    }
    return group;
}

// Puts a trade whose texts and `passes_` are right into the order. Returns the rows that came.
TradeRows::Run TradeRows::Put(TradeItem item) {
    const auto place = order_.LowerBound([&](Entry entry) { return StandsBefore(entry, item); });
    std::vector<std::uint32_t> fresh;
    const std::uint32_t group = Grouped() ? GroupFor(item, place, fresh) : kNoGroup;
    order_.Insert(place, item, false);
    Entry below = item;
    for (std::size_t i = fresh.size(); i-- > 0; below = HeadEntry(fresh[i]))
        order_.Insert(order_.PlaceOf(below), HeadEntry(fresh[i]), false);
    if (Grouped()) {
        groupOf_.resize(book_.ItemCount(), kNoGroup);
        groupOf_[item] = group;
    }
    const std::uint32_t passes = passes_[item];
    shown_ += passes;
    for (std::uint32_t at = group; at != kNoGroup; at = groups_[at].parent) {
        ++groups_[at].trades;
        groups_[at].shown += passes;
    }
    if (passes == 0) return {};

    Run run;
    Entry top = GridOrder::kNone;
    const auto show = [&](Entry entry) {
        if (!Shows(entry)) return;
        order_.Show(entry, true);
        top = entry;
        ++run.count;
    };
    show(item);
    // Heads come with the first trade that shows in their group.
    for (std::uint32_t at = group; at != kNoGroup && groups_[at].shown == 1; at = groups_[at].parent)
        show(HeadEntry(at));
    if (run.count != 0) run.at = order_.RowOf(top);
    return run;
}

// Takes a trade out of the order, whatever its record says by now. Returns the rows that went.
TradeRows::Run TradeRows::Take(TradeItem item) {
    const std::uint32_t passes = passes_[item];
    const std::uint32_t group = Grouped() ? groupOf_[item] : kNoGroup;
    Run run;
    const auto goes = [&](Entry entry) {
        const std::uint32_t row = order_.RowOf(entry);
        if (row == kNoRow) return;
        run.at = row;
        ++run.count;
    };
    goes(item);
    shown_ -= passes;
    for (std::uint32_t at = group; at != kNoGroup; at = groups_[at].parent) {
        --groups_[at].trades;
        groups_[at].shown -= passes;
        if (groups_[at].shown == 0) goes(HeadEntry(at));
    }
    order_.Remove(item);
    for (std::uint32_t at = group, outer = kNoGroup; at != kNoGroup; at = outer) {
        outer = groups_[at].parent;
        if (groups_[at].trades == 0) {
            order_.Remove(HeadEntry(at));
            freeGroups_.push_back(at);
            continue;
        }
        if (groups_[at].shown == 0) order_.Show(HeadEntry(at), false);
        if (groups_[at].sample == item) FindSample(at);
    }
    if (Grouped()) groupOf_[item] = kNoGroup;
    return run;
}

void TradeRows::FindSample(std::uint32_t group) {
    Entry entry = order_.EntryAfter(HeadEntry(group));
    while (IsHead(entry))
        entry = order_.EntryAfter(entry);
    groups_[group].sample = entry;
}

void TradeRows::RedrawHeads(std::uint32_t group) {
    for (; group != kNoGroup; group = groups_[group].parent) {
        if (const std::uint32_t row = order_.RowOf(HeadEntry(group)); row != kNoRow) display_.Changed(row);
    }
}

void TradeRows::RowAddedOnTop() {
    if (!arranged_) return display_.Inserted(0, 1);
    const TradeItem item = book_.ItemAt(0);
    ExtendCells();
    passes_.resize(book_.ItemCount(), 0);
    passes_[item] = Passes(item) ? 1 : 0;
    const Run run = Put(item);
    if (run.count != 0) display_.Inserted(run.at, run.count);
    if (Grouped()) RedrawHeads(groupOf_[item]);
}

void TradeRows::RowsReset() {
    if (arranged_) {
        texts_.clear();
        numbers_.clear();
        KeepCells();
        Build();
        Filter();
    }
    display_.Reset();
}

void TradeRows::RowEdited(TradeItem item) {
    if (arranged_) {
        PlaceAnew(item);
    } else {
        display_.Changed(RowOf(item));
    }
}

// After its record or its place in the book changed.
void TradeRows::PlaceAnew(TradeItem item) {
    const std::uint32_t from = order_.RowOf(item);
    std::vector<std::uint32_t> left;  // the groups that it leaves
    for (std::uint32_t at = Grouped() ? groupOf_[item] : kNoGroup; at != kNoGroup; at = groups_[at].parent)
        left.push_back(at);
    const Run gone = Take(item);
    UpdateCells(item);
    passes_[item] = Passes(item) ? 1 : 0;
    const Run come = Put(item);
    const std::uint32_t to = order_.RowOf(item);
    if (from == kNoRow || to == kNoRow) {
        if (gone.count != 0) display_.Removed(gone.at, gone.count);
        if (come.count != 0) display_.Inserted(come.at, come.count);
    } else if (gone.at == come.at && gone.count == come.count) {
        for (std::uint32_t row = come.at; row < come.at + come.count; ++row)
            display_.Changed(row);
    } else {
        display_.Reordered(RowCount(), [&](std::uint32_t row) {
            if (row == from) return to;
            if (row >= gone.at && row < gone.at + gone.count) return kNoRow;
            if (row >= gone.at) row -= gone.count;
            return row >= come.at ? row + come.count : row;
        });
    }
    if (!Grouped()) return;
    RedrawHeads(groupOf_[item]);
    for (const std::uint32_t group : left) {
        const std::uint32_t row = order_.RowOf(HeadEntry(group));
        if (row != kNoRow) display_.Changed(row);
    }
}

void TradeRows::RowMoved(std::uint32_t from, std::uint32_t to) {
    if (arranged_) return PlaceAnew(book_.ItemAt(to));
    if (from + 1 == to || to + 1 == from) return display_.Swapped(from, to);
    display_.Reordered(RowCount(), [=](std::uint32_t row) {
        if (row == from) return to;
        if (row > from && row <= to) return row - 1;
        return row >= to && row < from ? row + 1 : row;
    });
}

void TradeRows::RowsRemoved(std::span<const std::uint32_t> rows, std::span<const TradeItem> items) {
    if (!arranged_) return TellRemoved(rows);
    if (items.size() > kFewChanges) return RemoveMany(items);
    for (const TradeItem item : items) {
        const std::uint32_t around = Grouped() ? groupOf_[item] : kNoGroup;
        const std::uint32_t outer = around == kNoGroup ? kNoGroup : groups_[around].parent;
        const Run run = Take(item);
        if (run.count != 0) display_.Removed(run.at, run.count);
        RedrawHeads(around != kNoGroup && order_.Holds(HeadEntry(around)) ? around : outer);
    }
}

void TradeRows::TellRemoved(std::span<const std::uint32_t> rows) {
    std::vector<GridRange> ranges;
    for (const std::uint32_t row : rows) {
        if (!ranges.empty() && ranges.back().last + 1 == row) {
            ranges.back().last = row;
        } else {
            ranges.push_back({row, row});
        }
    }
    if (ranges.size() <= kFewChanges) {
        for (auto range = ranges.rbegin(); range != ranges.rend(); ++range)
            display_.Removed(range->first, range->Count());
        return;
    }
    display_.Reordered(RowCount(), [rows](std::uint32_t row) {
        const auto gone = std::lower_bound(rows.begin(), rows.end(), row);
        if (gone != rows.end() && *gone == row) return kNoRow;
        return row - static_cast<std::uint32_t>(gone - rows.begin());
    });
}

void TradeRows::RemoveMany(std::span<const TradeItem> items) {
    const std::vector<Entry> old = ShownEntries();
    std::vector<bool> gone(book_.ItemCount());
    for (const TradeItem item : items) {
        gone[item] = true;
        for (std::uint32_t at = Grouped() ? groupOf_[item] : kNoGroup; at != kNoGroup;
             at = groups_[at].parent)
            --groups_[at].trades;
    }
    std::vector<Entry> left;
    order_.ForEach([&](Entry entry) {
        if (IsHead(entry)) {
            if (groups_[GroupOf(entry)].trades == 0) return freeGroups_.push_back(GroupOf(entry));
        } else {
            if (gone[entry]) return;
            for (std::uint32_t at = Grouped() ? groupOf_[entry] : kNoGroup; at != kNoGroup;
                 at = groups_[at].parent) {
                if (gone[groups_[at].sample]) groups_[at].sample = entry;
            }
        }
        left.push_back(entry);
    });
    order_.Assign(left);
    CountGroups();
    SweepAll();
    TellReordered([&old](std::uint32_t row) { return old[row]; }, true);
}

}  // namespace Dravel
