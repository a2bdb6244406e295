#include "tradebook/TradeRows.h"

#include <algorithm>
#include <type_traits>

#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

bool IsNumber(int column) {
    const CellType type = kTradeColumns[static_cast<std::size_t>(column)].type;
    return type == CellType::Integer || type == CellType::Double;
}

bool IsColumn(int column) {
    return column >= 0 && column < column::Count;
}

}  // namespace

void TradeRows::Arrange(RowArrangement arrangement) {
    std::erase_if(arrangement.sort, [](const GridSortKey& key) { return !IsColumn(key.column); });
    std::vector<int> groups;
    for (const int column : arrangement.groups) {
        if (IsColumn(column) && std::ranges::find(groups, column) == groups.end()) groups.push_back(column);
    }
    arrangement.groups = std::move(groups);
    std::erase_if(arrangement.filters,
                  [](const ColumnFilter& filter) { return filter.Kind() == ColumnFilter::Rule::All; });
    std::vector<Level> levels = LevelsOf(arrangement);
    const bool sameGroups = arrangement.groups == arrangement_.groups;
    const bool sameOrder = sameGroups && levels == levels_;
    const bool sameFilters = arrangement.filters == arrangement_.filters;
    arrangement_ = std::move(arrangement);
    if (sameOrder && sameFilters) return;

    const std::vector<Entry> old = arranged_ ? ShownEntries() : std::vector<Entry>();
    const bool wasPlain = !arranged_;
    const bool arrange = !levels.empty() || !arrangement_.filters.empty();
    const bool sameEntries = sameOrder && arranged_ && arrange;
    levels_ = std::move(levels);
    if (!sameGroups) closed_.clear();
    if (arrange) {
        KeepCells();
        if (!sameEntries) Build();
        Filter();
    } else {
        Drop();
    }
    TellReordered([&](std::uint32_t row) { return wasPlain ? book_.ItemAt(row) : old[row]; }, sameEntries);
}

// A column that is grouped by and sorted by counts where it is grouped, in the direction of its sort key.
std::vector<TradeRows::Level> TradeRows::LevelsOf(const RowArrangement& arrangement) const {
    std::vector<Level> levels;
    const auto known = [&levels](int column) {
        return std::ranges::find(levels, column, &Level::column) != levels.end();
    };
    for (const int column : arrangement.groups) {
        const auto key = std::ranges::find(arrangement.sort, column, &GridSortKey::column);
        if (!known(column)) levels.push_back({column, key == arrangement.sort.end() || key->ascending});
    }
    for (const GridSortKey& key : arrangement.sort) {
        if (!known(key.column)) levels.push_back({key.column, key.ascending});
    }
    return levels;
}

// Cells of the columns that the arrangement asks for, and of no others.
void TradeRows::KeepCells() {
    std::vector<bool> wanted(column::Count);
    for (const Level& level : levels_)
        wanted[static_cast<std::size_t>(level.column)] = true;
    for (const ColumnFilter& filter : arrangement_.filters) {
        const bool words = filter.Kind() == ColumnFilter::Rule::Words;
        if (words || !filter.CountsAsZero()) wanted[static_cast<std::size_t>(filter.Column())] = true;
    }
    texts_.resize(column::Count);
    numbers_.resize(column::Count);
    const auto keep = [this](auto& cells, int column, bool want) {
        using Cells = typename std::remove_reference_t<decltype(cells)>::element_type;
        if (!want) cells.reset();
        if (want && !cells) cells = std::make_unique<Cells>(book_, column);
    };
    for (int column = 0; column < column::Count; ++column) {
        const auto at = static_cast<std::size_t>(column);
        keep(texts_[at], column, wanted[at] && !IsNumber(column));
        keep(numbers_[at], column, wanted[at] && IsNumber(column));
    }
}

void TradeRows::ExtendCells() {
    for (const auto& texts : texts_) {
        if (texts) texts->Extend();
    }
    for (const auto& numbers : numbers_) {
        if (numbers) numbers->Extend();
    }
}

void TradeRows::UpdateCells(TradeItem item) {
    for (const auto& texts : texts_) {
        if (texts) texts->Update(item);
    }
    for (const auto& numbers : numbers_) {
        if (numbers) numbers->Update(item);
    }
}

void TradeRows::Build() {
    groups_.clear();
    freeGroups_.clear();
    groupOf_.clear();
    const std::vector<TradeItem> items = SortedItems();
    order_.Assign(Grouped() ? WithHeads(items) : items);
    arranged_ = true;
}

void TradeRows::Drop() {
    arranged_ = false;
    order_.Clear();
    const auto giveBack = [](auto& vector) { std::remove_reference_t<decltype(vector)>().swap(vector); };
    giveBack(passes_);
    giveBack(groups_);
    giveBack(freeGroups_);
    giveBack(groupOf_);
    giveBack(texts_);
    giveBack(numbers_);
}

// The least important key first: each sort keeps the order of those before it among equals.
std::vector<TradeItem> TradeRows::SortedItems() const {
    std::vector<TradeItem> items(book_.RowCount());
    for (std::uint32_t row = 0; row < items.size(); ++row)
        items[row] = book_.ItemAt(row);
    for (std::size_t i = levels_.size(); i-- > 0;) {
        const Level& level = levels_[i];
        const TradeTexts* const texts = texts_[static_cast<std::size_t>(level.column)].get();
        const auto compare = [texts](TradeItem a, TradeItem b) { return texts->Compare(a, b); };
        StableSort(items, texts ? texts->Keys() : numbers_[static_cast<std::size_t>(level.column)]->Keys(),
                   level.ascending, compare);
    }
    return items;
}

std::vector<TradeRows::Entry> TradeRows::WithHeads(const std::vector<TradeItem>& items) {
    std::vector<Entry> entries;
    entries.reserve(items.size());
    std::vector<std::uint32_t> chain(arrangement_.groups.size(), kNoGroup);
    groupOf_.assign(book_.ItemCount(), kNoGroup);
    for (std::size_t i = 0; i < items.size(); ++i) {
        std::size_t level = i == 0 ? 0 : SameLevels(items[i - 1], items[i], chain.size());
        for (; level < chain.size(); ++level) {
            chain[level] = NewGroup(level == 0 ? kNoGroup : chain[level - 1],
                                    static_cast<std::uint32_t>(level), items[i]);
            entries.push_back(HeadEntry(chain[level]));
        }
        for (const std::uint32_t group : chain)
            ++groups_[group].trades;
        groupOf_[items[i]] = chain.back();
        entries.push_back(items[i]);
    }
    return entries;
}

void TradeRows::Filter() {
    passes_.assign(book_.ItemCount(), 1);
    for (const ColumnFilter& filter : arrangement_.filters) {
        if (filter.Kind() == ColumnFilter::Rule::Words) {
            texts_[static_cast<std::size_t>(filter.Column())]->KeepMatches(filter.Needles(), passes_);
        } else if (filter.CountsAsZero()) {
            if (!filter.PassesNumber(0)) std::fill(passes_.begin(), passes_.end(), std::uint8_t{0});
        } else {
            const TradeNumbers& numbers = *numbers_[static_cast<std::size_t>(filter.Column())];
            for (TradeItem item = 0; item < passes_.size(); ++item) {
                const bool passes = filter.PassesNumber(static_cast<std::int64_t>(numbers[item]));
                passes_[item] &= static_cast<std::uint8_t>(passes);
            }
        }
    }
    CountGroups();
    SweepAll();
}

void TradeRows::CountGroups() {
    for (Group& group : groups_)
        group.shown = 0;
    if (!Grouped()) return;
    order_.ForEach([this](Entry entry) {
        if (IsHead(entry) || passes_[entry] == 0) return;
        for (std::uint32_t group = groupOf_[entry]; group != kNoGroup; group = groups_[group].parent)
            ++groups_[group].shown;
    });
}

void TradeRows::SweepAll() {
    using Sight = GridOrder::Sight;
    if (!Grouped()) {
        order_.Sweep(
            {}, [&passes = passes_](Entry entry) { return passes[entry] != 0 ? Sight::Show : Sight::Hide; });
        shown_ = order_.RowCount();
        return;
    }
    shown_ = 0;
    order_.Sweep({}, [this](Entry entry) {
        if (!IsHead(entry)) shown_ += passes_[entry];
        return Shows(entry) ? Sight::Show : Sight::Hide;
    });
}

std::vector<TradeRows::Entry> TradeRows::ShownEntries() const {
    std::vector<Entry> entries;
    entries.reserve(RowCount());
    if (arranged_) {
        order_.ForEachShown([&entries](Entry entry) { entries.push_back(entry); });
    } else {
        for (std::uint32_t row = 0; row < book_.RowCount(); ++row)
            entries.push_back(book_.ItemAt(row));
    }
    return entries;
}

// `old` gives the entry that stood in a row before. `headsStay`: heads are the same entries as before.
void TradeRows::TellReordered(const std::function<Entry(std::uint32_t)>& old, bool headsStay) {
    constexpr std::uint32_t kMany =
        4096;  // from here on a table of all rows is cheaper than looking for each
    std::uint32_t asked = 0;
    std::vector<std::uint32_t> rows;
    const auto newRow = [&](std::uint32_t row) {
        const Entry entry = old(row);
        if (IsHead(entry)) return headsStay ? order_.RowOf(entry) : kNoRow;
        if (++asked < kMany) return RowOf(entry);
        if (rows.empty()) {
            rows.assign(book_.ItemCount(), kNoRow);
            const std::vector<Entry> shown = ShownEntries();
            for (std::uint32_t now = 0; now < shown.size(); ++now) {
                if (!IsHead(shown[now])) rows[shown[now]] = now;
            }
        }
        return rows[entry];
    };
    display_.Reordered(RowCount(), newRow);
}

int TradeRows::Compare(std::size_t at, TradeItem a, TradeItem b) const {
    const Level& level = levels_[at];
    int order = 0;
    if (const TradeTexts* texts = texts_[static_cast<std::size_t>(level.column)].get(); texts) {
        order = texts->Compare(a, b);
    } else {
        const TradeNumbers& numbers = *numbers_[static_cast<std::size_t>(level.column)];
        order = numbers[a] < numbers[b] ? -1 : numbers[a] > numbers[b] ? 1 : 0;
    }
    return level.ascending ? order : -order;
}

// How many of the first `levels` levels have equal cells, up to the first that has not.
std::size_t TradeRows::SameLevels(TradeItem a, TradeItem b, std::size_t levels) const {
    std::size_t level = 0;
    while (level < levels && Compare(level, a, b) == 0)
        ++level;
    return level;
}

bool TradeRows::Passes(TradeItem item) const {
    return std::ranges::none_of(arrangement_.filters,
                                [&](const ColumnFilter& filter) { return display_.Hides(filter, item); });
}

TradeItem TradeRows::ItemAt(std::uint32_t row) const {
    if (!arranged_) return book_.ItemAt(row);
    const Entry entry = order_.At(row);
    return IsHead(entry) ? kNoItem : entry;
}

std::uint32_t TradeRows::RowOf(TradeItem item) const {
    static_assert(kNoBookRow == kNoRow);
    return arranged_ ? order_.RowOf(item) : book_.RowOf(item);
}

std::size_t TradeRows::Bytes() const {
    std::size_t bytes = order_.Bytes() + passes_.capacity() + groups_.capacity() * sizeof(Group) +
                        (groupOf_.capacity() + freeGroups_.capacity()) * sizeof(std::uint32_t);
    for (const auto& texts : texts_)
        bytes += texts ? texts->Bytes() : 0;
    for (const auto& numbers : numbers_)
        bytes += numbers ? numbers->Bytes() : 0;
    return bytes;
}

}  // namespace Dravel
