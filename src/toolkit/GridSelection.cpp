#include "toolkit/GridSelection.h"

#include <algorithm>

namespace Dravel {
namespace {

// First range that ends at or after `row`.
template <class Ranges>
auto FromRow(Ranges& ranges, std::uint32_t row) {
    return std::lower_bound(ranges.begin(), ranges.end(), row,
                            [](const GridRange& range, std::uint32_t at) { return range.last < at; });
}

}  // namespace

std::uint32_t GridSelection::RowCount() const {
    std::uint32_t count = 0;
    for (const GridRange& range : ranges_)
        count += range.Count();
    return count;
}

bool GridSelection::Contains(std::uint32_t row) const {
    const auto range = FromRow(ranges_, row);
    return range != ranges_.end() && range->first <= row;
}

void GridSelection::Set(GridRange range) {
    ranges_.assign(1, range);
}

void GridSelection::Add(GridRange range) {
    // Ranges that merely touch are joined too.
    const auto begin = FromRow(ranges_, range.first == 0 ? 0 : range.first - 1);
    auto end = begin;
    while (end != ranges_.end() && end->first <= (range.last == kNoRow ? kNoRow : range.last + 1)) {
        range.first = std::min(range.first, end->first);
        range.last = std::max(range.last, end->last);
        ++end;
    }
    ranges_.insert(ranges_.erase(begin, end), range);
}

void GridSelection::Remove(GridRange range) {
    auto at = FromRow(ranges_, range.first);
    while (at != ranges_.end() && at->first <= range.last) {
        const GridRange old = *at;
        at = ranges_.erase(at);
        if (old.first < range.first) at = ranges_.insert(at, {old.first, range.first - 1}) + 1;
        if (old.last > range.last) at = ranges_.insert(at, {range.last + 1, old.last}) + 1;
    }
}

void GridSelection::Toggle(std::uint32_t row) {
    if (Contains(row)) {
        Remove({row, row});
    } else {
        Add({row, row});
    }
}

void GridSelection::RowsInserted(std::uint32_t at, std::uint32_t count) {
    if (count == 0) return;
    auto range = FromRow(ranges_, at);
    if (range != ranges_.end() && range->first < at) {
        const GridRange below{at, range->last};
        range->last = at - 1;
        range = ranges_.insert(range + 1, below);
    }
    for (; range != ranges_.end(); ++range) {
        range->first += count;
        range->last += count;
    }
}

void GridSelection::RowsRemoved(std::uint32_t at, std::uint32_t count) {
    if (count == 0) return;
    Remove({at, at + count - 1});
    auto range = FromRow(ranges_, at);
    for (auto moved = range; moved != ranges_.end(); ++moved) {
        moved->first -= count;
        moved->last -= count;
    }
    // The two sides of the gap may touch now.
    if (range == ranges_.end() || range == ranges_.begin() || (range - 1)->last + 1 != range->first) return;
    (range - 1)->last = range->last;
    ranges_.erase(range);
}

void GridSelection::RowsSwapped(std::uint32_t a, std::uint32_t b) {
    if (Contains(a) == Contains(b)) return;
    Toggle(a);
    Toggle(b);
}

void GridSelection::RowsReordered(const std::function<std::uint32_t(std::uint32_t)>& newRow) {
    std::vector<std::uint32_t> rows;
    for (const GridRange& range : ranges_) {
        for (std::uint32_t row = range.first;; ++row) {
            if (const std::uint32_t moved = newRow(row); moved != kNoRow) rows.push_back(moved);
            if (row == range.last) break;
        }
    }
    std::sort(rows.begin(), rows.end());
    ranges_.clear();
    for (const std::uint32_t row : rows) {
        if (!ranges_.empty() && ranges_.back().last + 1 >= row) {
            ranges_.back().last = row;
        } else {
            ranges_.push_back({row, row});
        }
    }
}

}  // namespace Dravel
