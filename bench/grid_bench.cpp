// The rows of the grid against what the machine can do at best. One thread, 1,000,000 trades; each figure is
// the best of several rounds, in time of the processor: rounds are too long not to be interrupted.
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/SilentHost.h"
#include "formatset/LetterCase.h"
#include "generator/TradeGenerator.h"
#include "records/RecordText.h"
#include "tradebook/TradeColumns.h"
#include "tradebook/TradeRows.h"

using namespace Dravel;

namespace {

constexpr std::uint32_t kTrades = 1000000;
constexpr int kRounds = 5;

using Work = std::function<void()>;

double Milliseconds(const Work& work) {
    const std::clock_t start = std::clock();
    work();
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// `before` each round, untimed. Turn and turn about, so that what else the machine does hits both alike.
void Compare(const char* name, double atMost, const Work& before, const Work& ours, const Work& limit) {
    double best = 1e18, bestLimit = 1e18;
    for (int round = 0; round < kRounds; ++round) {
        bestLimit = std::min(bestLimit, Milliseconds(limit));
        before();
        best = std::min(best, Milliseconds(ours));
    }
    std::printf("%s: ours %.1f ms, limit %.1f ms, ratio %.2f (at most %.1f)\n", name, best, bestLimit,
                best / bestLimit, atMost);
}

// A grid of which nothing is selected.
struct NoDisplay final : IRowDisplay {
    explicit NoDisplay(const TradeBook& shown) : book(shown) {}
    void Inserted(std::uint32_t, std::uint32_t) override {}
    void Removed(std::uint32_t, std::uint32_t) override {}
    void Swapped(std::uint32_t, std::uint32_t) override {}
    void Reordered(std::uint32_t, const std::function<std::uint32_t(std::uint32_t)>&) override {}
    void Reset() override {}
    void Changed(std::uint32_t) override {}
    bool Hides(const ColumnFilter& filter, TradeItem item) const override {
        return !filter.Passes(book.Record(item));
    }

    const TradeBook& book;
};

struct Bench {
    void Load() {
        TradeRecord record{};
        book.BeginLoad();
        for (std::uint32_t i = 0; i < kTrades; ++i) {
            trades.Fill(record);
            book.Load(record, false);
        }
        book.EndLoad();
    }
    Work Arrange(RowArrangement how) {
        return [this, how] { rows.Arrange(how); };
    }

    SilentHost host;
    TradeGenerator trades{1};
    TradeBook book{host};
    NoDisplay display{book};
    TradeRows rows{book, display};
};

// The limit of filtering: the record's text of every row, put into lower case and searched.
template <auto Field>
std::uint32_t ScanRows(const TradeBook& book, std::string_view needle) {
    std::uint32_t found = 0;
    char lower[64];
    for (std::uint32_t row = 0; row < kTrades; ++row) {
        const std::string_view text = TextOf(book.Row(row).*Field);
        for (std::size_t i = 0; i < text.size(); ++i)
            lower[i] = text[i] >= 'A' && text[i] <= 'Z' ? static_cast<char>(text[i] + 32) : text[i];
        found += std::string_view(lower, text.size()).find(needle) != std::string_view::npos ? 1 : 0;
    }
    return found;
}

// What is typed letter by letter, each letter a filter of its own; the time is that of a letter on average.
template <auto Field>
void BenchFilter(Bench& bench, const char* name, int column, const std::string& typed) {
    std::vector<RowArrangement> letters;
    for (std::size_t length = 1; length <= typed.size(); ++length)
        letters.push_back({{}, {}, {ColumnFilter(column, typed.substr(0, length))}});
    double worst = 0, first = 1e18;
    for (int round = 0; round < kRounds; ++round) {
        bench.rows.Arrange({});
        first = std::min(first, Milliseconds(bench.Arrange(letters[0])));
    }
    for (const RowArrangement& letter : letters) {
        double best = 1e18;
        for (int round = 0; round < kRounds; ++round) {
            bench.rows.Arrange({{}, {}, {ColumnFilter(column, "#")}});
            best = std::min(best, Milliseconds(bench.Arrange(letter)));
        }
        worst = std::max(worst, best);
    }
    double limit = 1e18;
    std::uint32_t found = 0;
    for (int round = 0; round < kRounds; ++round)
        limit = std::min(limit, Milliseconds([&] { found = ScanRows<Field>(bench.book, typed); }));
    if (found != bench.rows.ShownTrades()) std::abort();
    std::printf("filter %s / scan row by row: ours %.1f ms, limit %.1f ms, ratio %.2f (at most 1.0)\n", name,
                worst, limit, worst / limit);
    std::printf("first keystroke in %s: %.1f ms, ratio %.2f (at most 100 ms)\n", name, first, first / limit);
    bench.rows.Arrange({});
}

// The limit of sorting: std::stable_sort of pointers by the cell.
template <class Cell>
Work PointerSort(const TradeBook& book, const Cell& cell) {
    return [&book, cell] {
        std::vector<const TradeRecord*> pointers(kTrades);
        for (std::uint32_t row = 0; row < kTrades; ++row)
            pointers[row] = &book.Row(row);
        std::stable_sort(pointers.begin(), pointers.end(),
                         [&cell](const TradeRecord* a, const TradeRecord* b) { return cell(*a) < cell(*b); });
    };
}

void BenchSorts(Bench& bench) {
    const Work unsorted = bench.Arrange({});
    const auto by = [&](int column) { return bench.Arrange({{{column, true}}, {}, {}}); };
    const auto text = [&](const char* name, int column, auto cell) {
        Compare(name, 0.5, unsorted, by(column), PointerSort(bench.book, cell));
    };
    text("sort by symbol / stable_sort of pointers", column::Symbol,
         [](const TradeRecord& record) { return TextOf(record.symbol); });
    text("sort by exchange trade time / stable_sort of pointers", column::ExchangeTradeTime,
         [](const TradeRecord& record) { return TextOf(record.exchangeTradeTime); });
    text("sort by client / stable_sort of pointers", column::ClientID,
         [](const TradeRecord& record) { return TextOf(record.clientID); });
    Compare("sort by price / stable_sort of pointers", 0.3, unsorted, by(column::Price),
            PointerSort(bench.book, [](const TradeRecord& record) { return +record.price; }));
    Compare("sort by quantity / stable_sort of pointers", 0.3, unsorted, by(column::Quantity),
            PointerSort(bench.book, [](const TradeRecord& record) { return +record.quantity; }));
    unsorted();
}

// What a trade that comes costs more while its rows are shown than while nobody looks.
void BenchInsert(Bench& bench, const char* name, double atMost, const RowArrangement& how) {
    constexpr int kInserts = 20000;
    bench.rows.Arrange(how);
    const Work add = [&bench] {
        TradeRecord record{};
        for (int i = 0; i < kInserts; ++i) {
            bench.trades.Fill(record);
            bench.book.Add(record);
        }
    };
    double alone = 1e18, shown = 1e18;
    for (int round = 0; round < 3; ++round) {
        bench.book.SetObserver(nullptr);
        alone = std::min(alone, Milliseconds(add));
        bench.book.SetObserver(&bench.rows);
        bench.rows.RowsReset();
        shown = std::min(shown, Milliseconds(add));
    }
    std::printf("insert on top, %s: %.2f us (at most %.0f us)\n", name,
                std::max(shown - alone, 0.0) * 1000 / kInserts, atMost);
    bench.rows.Arrange({});
}

// Everything at once: all columns filtered, three levels of groups, and sorted.
void BenchMemory(Bench& bench) {
    const std::size_t records = std::size_t{bench.book.ItemCount()} * sizeof(StoredTrade);
    const auto print = [&](const char* name) {
        const struct mallinfo2 held = mallinfo2();
        std::printf("memory, %s: %.0f bytes a trade beyond its record (at most 400)\n", name,
                    static_cast<double>(held.uordblks + held.hblkhd - records) / bench.book.ItemCount());
    };
    print("plain rows");
    RowArrangement all;
    for (int column = 0; column < column::Count; ++column)
        all.filters.emplace_back(column, column == column::Price ? "<1" : ">0 or 0 or e or n");
    all.groups = {column::Exchange, column::Symbol, column::ClientID};
    all.sort = {{column::ExchangeTradeTime, true}, {column::Price, false}};
    bench.rows.Arrange(all);
    print("everything on");
    bench.rows.Arrange({});
    print("everything off again");
}

}  // namespace

int main() {
    const auto bench = std::make_unique<Bench>();
    bench->book.SetObserver(&bench->rows);
    bench->Load();
    BenchFilter<&TradeRecord::symbol>(*bench, "symbol", column::Symbol, "nifty");
    BenchFilter<&TradeRecord::clientID>(*bench, "client", column::ClientID, "c01");
    BenchFilter<&TradeRecord::exchangeTradeTime>(*bench, "exchange trade time", column::ExchangeTradeTime,
                                                 "10:15");
    BenchSorts(*bench);
    BenchInsert(*bench, "unsorted", 1, {});
    BenchInsert(*bench, "sorted by time", 10, {{{column::ExchangeTradeTime, true}}, {}, {}});
    BenchInsert(*bench, "sorted by price", 10, {{{column::Price, true}}, {}, {}});
    BenchInsert(*bench, "sorted by symbol and quantity", 10,
                {{{column::Symbol, true}, {column::Quantity, false}}, {}, {}});
    BenchInsert(
        *bench, "filtered and grouped", 10,
        {{{column::Price, true}}, {column::Exchange, column::Symbol}, {ColumnFilter(column::Side, "buy")}});
    BenchMemory(*bench);
    return 0;
}
