// The shown rows against a plain model that sorts, filters and groups all trades anew after every step, and
// a grid whose selection must stay on the same trades.
#include "tradebook/TradeRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "formatset/LetterCase.h"
#include "records/RecordText.h"
#include "support/FakeHost.h"
#include "toolkit/GridModel.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace fake = Test;

namespace {

// What stands in a row: a trade, or the head of a group with its level and its text.
struct Shown {
    TradeItem item = kNoItem;
    int level = -1;
    bool open = true;
    std::string group;
    std::uint32_t trades = 0;

    bool operator==(const Shown&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Shown& row) {
        return out << (row.level < 0
                           ? std::to_string(row.item)
                           : "[" + std::to_string(row.level) + row.group + (row.open ? "" : " closed") + " " +
                                 std::to_string(row.trades) + "]");
    }
};

std::string Cell(const TradeRecord& record, int column) {
    std::string text;
    CellText(record, column, text);
    return text == "-0" ? "0" : text;  // equal numbers are in one group
}

// A book, its rows, and a grid's model that hears of them.
class RowsRig : public IRowDisplay {
 public:
    RowsRig() {
        book.SetObserver(&rows);
        grid.View().SetClient(300, 200);
    }

    TradeItem Add(TradeRecord record) { return book.ItemOf(book.Add(record)); }
    Shown At(std::uint32_t row) const {
        const GridGroupHead head = rows.Head(row);
        if (head.level < 0) return {rows.ItemAt(row), -1, true, {}, 0};
        const TradeRows::GroupFacts facts = rows.Facts(row);
        std::string cell = Cell(book.Record(facts.sample), facts.column);
        LowerCase(cell);
        return {kNoItem, head.level, head.open, cell, facts.trades};
    }
    std::vector<Shown> All() const {
        std::vector<Shown> all;
        for (std::uint32_t row = 0; row < rows.RowCount(); ++row)
            all.push_back(At(row));
        return all;
    }
    std::set<TradeItem> Selected() const {
        std::set<TradeItem> items;
        for (const GridRange& range : grid.Selection().Ranges()) {
            for (std::uint32_t row = range.first; row <= range.last; ++row) {
                if (rows.ItemAt(row) != kNoItem) items.insert(rows.ItemAt(row));
            }
        }
        return items;
    }

    fake::FakeHost host;
    TradeBook book{host};
    GridModel grid;
    TradeRows rows{book, *this};
    int resets = 0;

 private:
    void Inserted(std::uint32_t at, std::uint32_t count) override { grid.RowsInserted(at, count); }
    void Removed(std::uint32_t at, std::uint32_t count) override { grid.RowsRemoved(at, count); }
    void Swapped(std::uint32_t a, std::uint32_t b) override { grid.RowsSwapped(a, b); }
    void Reordered(std::uint32_t count, const std::function<std::uint32_t(std::uint32_t)>& newRow) override {
        grid.RowsReordered(count, newRow);
    }
    void Reset() override {
        grid.RowsReset(rows.RowCount());
        ++resets;
    }
    void Changed(std::uint32_t row) override { EXPECT_LT(row, rows.RowCount()); }
    bool Hides(const ColumnFilter& filter, TradeItem item) const override {
        return !filter.Passes(book.Record(item));
    }
};

// The plain model: everything by the slowest and simplest way.
struct PlainRows {
    const TradeBook& book;
    RowArrangement how;
    std::set<std::string> closed;

    static std::string Text(const TradeRecord& record, int column) {
        std::string text = Cell(record, column);
        LowerCase(text);
        return text;
    }
    // Empty, then dates by the calendar, then all else; texts by their bytes; numbers as such.
    static int Compare(const TradeRecord& a, const TradeRecord& b, int column) {
        const auto sign = [](auto x, auto y) { return x < y ? -1 : x > y ? 1 : 0; };
        if (column == column::Price) return sign(+a.price, +b.price);
        if (column == column::Quantity) return sign(+a.quantity, +b.quantity);
        const std::string left = Text(a, column), right = Text(b, column);
        if (column == column::ExpiryDate) {
            const auto date = [](const std::string& text) {
                static const std::map<std::string, int> months{{"jan", 1}, {"feb", 2}, {"dec", 12}};
                if (text.empty()) return 0;
                if (text.size() != 9 || !months.contains(text.substr(2, 3))) return 1 << 30;
                return (std::stoi(text.substr(5)) * 100 + months.at(text.substr(2, 3))) * 100 +
                       std::stoi(text.substr(0, 2));
            };
            if (date(left) != date(right)) return sign(date(left), date(right));
        }
        return sign(left.compare(right), 0);
    }
    bool Passes(TradeItem item) const {
        return std::ranges::all_of(how.filters,
                                   [&](const ColumnFilter& f) { return f.Passes(book.Record(item)); });
    }
    std::vector<std::pair<int, bool>> Keys() const {
        std::vector<std::pair<int, bool>> keys;
        for (const int column : how.groups) {
            const auto key = std::ranges::find(how.sort, column, &GridSortKey::column);
            keys.emplace_back(column, key == how.sort.end() || key->ascending);
        }
        for (const GridSortKey& key : how.sort)
            keys.emplace_back(key.column, key.ascending);
        return keys;
    }
    std::vector<Shown> All() const {
        std::vector<TradeItem> items;
        for (std::uint32_t row = 0; row < book.RowCount(); ++row) {
            if (Passes(book.ItemAt(row))) items.push_back(book.ItemAt(row));
        }
        std::stable_sort(items.begin(), items.end(), [&](TradeItem a, TradeItem b) {
            for (const auto& [column, ascending] : Keys()) {
                const int order = Compare(book.Record(a), book.Record(b), column);
                if (order != 0) return ascending ? order < 0 : order > 0;
            }
            return false;
        });
        return WithHeads(items);
    }
    std::vector<Shown> WithHeads(const std::vector<TradeItem>& items) const {
        std::vector<Shown> all;
        std::string above;
        for (std::size_t i = 0; i < items.size(); ++i) {
            std::string path;
            bool open = true;
            for (std::size_t level = 0; level < how.groups.size(); ++level) {
                const std::string cell = Text(book.Record(items[i]), how.groups[level]);
                path += (level == 0 ? "" : std::string(1, '\0')) + cell;
                const bool here = !closed.contains(path);
                if (i == 0 || !(above + '\0').starts_with(path + '\0')) {
                    const auto trades = std::count_if(items.begin(), items.end(), [&](TradeItem item) {
                        return (PathOf(item) + '\0').starts_with(path + '\0');
                    });
                    if (open)
                        all.push_back({kNoItem, static_cast<int>(level), here, cell,
                                       static_cast<std::uint32_t>(trades)});
                }
                open = open && here;
            }
            above = path;
            if (open) all.push_back({items[i], -1, true, {}, 0});
        }
        return all;
    }
    std::string PathOf(TradeItem item) const {
        std::string path;
        for (std::size_t level = 0; level < how.groups.size(); ++level)
            path += (level == 0 ? "" : std::string(1, '\0')) + Text(book.Record(item), how.groups[level]);
        return path;
    }
};

// Trades with few different cells, so that everything is equal often.
class RandomTrades {
 public:
    explicit RandomTrades(unsigned seed) : random_(seed) {}
    std::uint32_t Below(std::uint32_t n) { return static_cast<std::uint32_t>(random_() % n); }
    template <class T>
    const T& OneOf(const std::vector<T>& choices) {
        return choices[Below(static_cast<std::uint32_t>(choices.size()))];
    }
    TradeRecord Next() {
        TradeRecord record{};
        SetText(record.exchange, OneOf<std::string>({"NSE", "nse", "BSE", "", "MCX"}));
        SetText(record.symbol, OneOf<std::string>({"A", "AB", "abc", "B", "", "\xFFz", "Zor"}));
        SetText(record.expiryDate,
                OneOf<std::string>({"27JAN2026", "01Feb2026", "31Dec2025", "", "soon", "01feb2026"}));
        SetText(record.exchangeTradeTime,
                std::to_string(Below(wide_ ? 1000000 : 4)) + (Below(4) == 0 ? ":long tail here" : ""));
        SetText(record.referenceText, std::string(40, 'x') + std::to_string(Below(wide_ ? 1000000 : 3)));
        record.side = static_cast<std::uint8_t>(1 + Below(3));
        record.quantity = Below(5) == 0 ? 4000000000u : Below(4);
        record.price = OneOf<double>({-1.5, 0.0, -0.0, 2.25, 1e300, 100.05});
        return record;
    }
    RowArrangement Arrangement() {
        RowArrangement how;
        if (Below(4) == 0) return how;
        const std::vector<int> columns{
            column::Exchange, column::Symbol, column::ExpiryDate,        column::Side,
            column::Quantity, column::Price,  column::ExchangeTradeTime, column::ReferenceText};
        GridSort sort;
        for (std::uint32_t keys = Below(4); keys > 0; --keys)
            sort.Set(OneOf(columns), Below(2) == 0, true);
        how.sort = sort.Keys();
        GridGroups groups;
        for (std::uint32_t levels = Below(2) == 0 ? 0 : Below(4); levels > 0; --levels)
            groups.Add(OneOf(columns));
        how.groups = groups.Columns();
        if (Below(2) == 0) return how;
        how.filters.emplace_back(column::Symbol, OneOf<std::string>({"a", "b or z", "", "none", "or"}));
        if (Below(2) == 0) how.filters.emplace_back(column::Quantity, OneOf<std::string>({">1", "<3", "2"}));
        if (Below(4) == 0) how.filters.emplace_back(column::Price, OneOf<std::string>({">1", "0"}));
        if (Below(4) == 0)
            how.filters.emplace_back(column::ExchangeTradeTime, OneOf<std::string>({"1", ":l", "3:"}));
        return how;
    }
    void Widen() { wide_ = true; }

 private:
    std::mt19937 random_;
    bool wide_ = false;
};

class RowsTest : public testing::Test, protected RowsRig {
 protected:
    PlainRows Plain() const { return {book, rows.Arrangement(), closed}; }
    void Check(const char* step) {
        const std::vector<Shown> expected = Plain().All();
        ASSERT_EQ(All(), expected) << step;
        ASSERT_EQ(grid.RowCount(), rows.RowCount()) << step;
        std::uint32_t passing = 0;
        for (std::uint32_t row = 0; row < book.RowCount(); ++row)
            passing += Plain().Passes(book.ItemAt(row)) ? 1 : 0;
        ASSERT_EQ(rows.ShownTrades(), passing) << step;
        for (std::uint32_t row = 0; row < expected.size(); ++row) {
            if (expected[row].item != kNoItem) {
                ASSERT_EQ(rows.RowOf(expected[row].item), row) << step;
            }
        }
    }
    // Selected trades that still show must be the selected ones, and the current row's trade stays current.
    template <class Step>
    void Keeping(const char* name, const Step& step) {
        std::set<TradeItem> selected = Selected();
        const std::uint32_t current = grid.CurrentRow();
        const TradeItem item = current < rows.RowCount() ? rows.ItemAt(current) : kNoItem;
        step();
        Check(name);
        if (HasFatalFailure()) return;
        std::erase_if(selected, [this](TradeItem one) { return rows.RowOf(one) == kNoRow; });
        ASSERT_EQ(Selected(), selected) << name;
        if (item != kNoItem && rows.RowOf(item) != kNoRow) {
            ASSERT_EQ(grid.CurrentRow(), rows.RowOf(item)) << name;
        }
        // Whatever became of it, there is still one: the keyboard must not start at the top.
        if (current != kNoRow && rows.RowCount() > 0) {
            ASSERT_NE(grid.CurrentRow(), kNoRow) << name;
        }
    }
    void Toggle(std::uint32_t row) {
        // The path as the plain model names it: that of any trade under the head, as far as its level.
        const TradeRows::GroupFacts facts = rows.Facts(row);
        const RowArrangement& how = rows.Arrangement();
        std::string path;
        for (int level = 0; level <= rows.Head(row).level; ++level)
            path += (level == 0 ? "" : std::string(1, '\0')) +
                    PlainRows::Text(book.Record(facts.sample), how.groups[static_cast<std::size_t>(level)]);
        if (!closed.erase(path)) closed.insert(path);
        rows.Toggle(row);
    }

    std::set<std::string> closed;
};

// One letter a column: Words, Part (the whole text), Number, or Zero: a number that counts as 0. The book
// filters all trades at once, one that is edited by itself.
TEST(TradeRowsTest, EachColumnFiltersByItsOwnRule) {
    constexpr std::string_view kRules = "WWNNNZZWWWWWWWPZWWNZWWNWPPPWPPPP";
    RowsRig rig;
    TradeRecord record{};
    record.side = 1;
    for (const TradeColumn& column : kTradeColumns)
        column.put(record, column.type == CellType::Text   ? "Ab"
                           : column.type == CellType::Byte ? "Buy"
                                                           : "7");
    const TradeItem item = rig.Add(record);
    for (int column = 0; column < column::Count; ++column) {
        const char rule = kRules[static_cast<std::size_t>(column)];
        const std::string cell = Cell(rig.book.Record(item), column);
        const struct {
            std::string filter, passesUnder;
        } cases[] = {{"#or" + cell, cell.empty() ? "Z" : "WZ"}, {">0", "N"}, {"<1", "Z"}, {"  ", "WNZ"}};
        for (const auto& [filter, rules] : cases) {
            rig.rows.Arrange({{}, {}, {ColumnFilter(column, filter)}});
            const bool passes = rules.find(rule) != rules.npos;
            EXPECT_EQ(rig.rows.RowCount(), passes ? 1u : 0u) << column << " " << filter;
            rig.rows.RowEdited(item);
            EXPECT_EQ(rig.rows.RowCount(), passes ? 1u : 0u) << column << " " << filter << " edited";
        }
        rig.rows.Arrange({{}, {column}, {}});
        EXPECT_EQ(rig.rows.RowCount(), 2u) << column << " has a group with its head";
        rig.rows.Arrange({});
    }
}

TEST_F(RowsTest, EveryStepAgreesWithThePlainModelAndKeepsTheSelection) {
    for (unsigned seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE(seed);
        RandomTrades trades(seed);
        if (seed % 4 == 0) trades.Widen();
        book.BeginLoad();
        for (std::uint32_t i = 0; i < 40; ++i)
            book.Load(trades.Next(), false);
        book.EndLoad();
        for (int step = 0; step < 250; ++step) {
            const std::uint32_t count = book.RowCount();
            const auto some = [&] { return book.ItemAt(trades.Below(count)); };
            switch (const std::uint32_t choice = trades.Below(count == 0 ? 2 : 12)) {
                case 0:
                case 1:
                    Keeping("add", [&] { Add(trades.Next()); });
                    break;
                case 2:
                case 3:
                    Keeping("edit", [&] { book.Edit(some(), trades.Next()); });
                    break;
                case 4:
                    Keeping("delete", [&] { book.Delete(std::vector{some(), some()}); });
                    break;
                case 5:
                    Keeping("move", [&] { book.MoveRow(trades.Below(count), trades.Below(count)); });
                    break;
                case 6:
                case 7: {
                    RowArrangement how = trades.Arrangement();
                    if (choice == 7) how.groups = rows.Arrangement().groups;
                    if (choice == 7 && trades.Below(2) == 0) how.sort = rows.Arrangement().sort;
                    if (how.groups != rows.Arrangement().groups) closed.clear();
                    Keeping("arrange", [&] { rows.Arrange(how); });
                    break;
                }
                case 8:
                    if (rows.RowCount() == 0) break;
                    if (const std::uint32_t row = trades.Below(rows.RowCount()); rows.Head(row).level >= 0)
                        Keeping("toggle", [&] { Toggle(row); });
                    break;
                default:
                    if (rows.RowCount() == 0) break;
                    grid.SetCurrent(trades.Below(rows.RowCount()), -1);
                    grid.AddSelection({trades.Below(rows.RowCount()), trades.Below(rows.RowCount())});
            }
            if (HasFatalFailure()) return;
        }
    }
}

// Enough rows for several chunks, dictionaries that overflow, and removals that are told at once.
TEST_F(RowsTest, ManyTradesAtOnce) {
    RandomTrades trades(7);
    trades.Widen();
    book.BeginLoad();
    for (std::uint32_t i = 0; i < 5000; ++i)
        book.Load(trades.Next(), false);
    book.EndLoad();
    rows.Arrange({{{column::ReferenceText, false}, {column::ExchangeTradeTime, true}},
                  {},
                  {ColumnFilter(column::ExchangeTradeTime, "12 or 7:")}});
    Check("sorted by texts that all differ");
    grid.SetCurrent(7, -1);
    grid.AddSelection({100, 2000});
    Keeping("edit", [&] { book.Edit(book.ItemAt(300), trades.Next()); });
    for (std::uint32_t row = 0; row < 1000; row += 5)
        book.Edit(book.ItemAt(row), trades.Next());
    Check("after many edits");
    grid.SelectAll();
    Keeping("filter", [&] {
        RowArrangement how = rows.Arrangement();
        how.filters = {ColumnFilter(column::ReferenceText, "77")};
        rows.Arrange(how);
    });
    Keeping("unsorted", [&] { rows.Arrange({}); });
    const auto everyOther = [&] {
        std::vector<TradeItem> items;
        for (std::uint32_t row = 0; row < book.RowCount(); row += 2)
            items.push_back(book.ItemAt(row));
        return items;
    };
    Keeping("delete every other one, unsorted", [&] { book.Delete(everyOther()); });
    Keeping("group", [&] {
        rows.Arrange({{{column::Price, true}}, {column::Exchange, column::Symbol}, {}});
    });
    Keeping("delete every other one, grouped", [&] { book.Delete(everyOther()); });
    for (std::uint32_t i = 0; i < 1500; ++i)
        Add(trades.Next());
    Check("after many came");
    for (std::uint32_t row = 0; row < rows.RowCount(); row += 7) {
        if (rows.Head(row).level >= 0) Keeping("close", [&] { Toggle(row); });
    }
    Keeping("delete all", [&] {
        std::vector<TradeItem> items;
        for (std::uint32_t row = 0; row < book.RowCount(); ++row)
            items.push_back(book.ItemAt(row));
        book.Delete(items);
    });
    EXPECT_EQ(rows.RowCount(), 0u);
}

TEST_F(RowsTest, AClosedGroupComesBackClosed) {
    TradeRecord record{};
    SetText(record.exchange, "NSE");
    const TradeItem item = Add(record);
    rows.Arrange({{}, {column::Exchange}, {}});
    Toggle(0);
    EXPECT_EQ(rows.RowCount(), 1u);
    book.Delete(std::vector{item});
    EXPECT_EQ(rows.RowCount(), 0u);
    SetText(record.exchange, "nse");
    Add(record);
    EXPECT_EQ(rows.RowCount(), 1u) << "the head alone";
    EXPECT_FALSE(rows.Head(0).open);
    rows.Arrange({});
    rows.Arrange({{}, {column::Exchange}, {}});
    EXPECT_EQ(rows.RowCount(), 2u) << "grouping anew forgets";
}

TEST_F(RowsTest, WhatIsNotNeededIsGivenBack) {
    RandomTrades trades(3);
    for (int i = 0; i < 100; ++i)
        Add(trades.Next());
    const std::size_t idle = rows.Bytes();
    EXPECT_LT(idle, 64u);
    rows.Arrange({{{column::Symbol, true}}, {column::Exchange}, {ColumnFilter(column::Symbol, "a")}});
    EXPECT_GT(rows.Bytes(), 64u);
    rows.Arrange({});
    EXPECT_EQ(rows.Bytes(), idle);
    EXPECT_EQ(resets, 0) << "nothing of this may lose the selection";
}

}  // namespace
}  // namespace Dravel
