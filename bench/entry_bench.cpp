// What it costs that a trade enters the book, without the terminal's own work: identifier, store, map, keys,
// totals, row, and the frame of its report, in a book of 1,000,000 trades. One thread, processor time.
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include "generator/TradeGenerator.h"
#include "host/Host.h"
#include "message/TagMessageWriter.h"
#include "tradebook/TradeBook.h"
#include "tradebook/TradeRows.h"

using namespace Dravel;

namespace {

constexpr std::uint32_t kBook = 1000000, kTyped = 100000;

// Listens, and does nothing with what it hears.
class ListeningHost final : public IHost {
 public:
    MasterAnswer Ask(std::uint32_t, std::span<const char* const>) override { return {}; }
    bool HasSecurityMaster() const override { return true; }
    void Send(CTagMessageWriter& frame) override {
        frame.GetData();
        bytes += frame.GetLength();
    }
    bool Listens() const override { return true; }
    void Focus(void*, int) override {}
    std::uint64_t MessageEntry() const override { return 0; }

    std::uint64_t bytes = 0;
};

// The grid's part: the row comes in on top.
struct Rows final : IRowDisplay {
    explicit Rows(const TradeBook& trades) : book(trades), rows(trades, *this) {}
    void Inserted(std::uint32_t, std::uint32_t) override { ++shown; }
    void Removed(std::uint32_t, std::uint32_t) override {}
    void Swapped(std::uint32_t, std::uint32_t) override {}
    void Reordered(std::uint32_t, const std::function<std::uint32_t(std::uint32_t)>&) override {}
    void Reset() override {}
    void Changed(std::uint32_t) override { ++shown; }
    bool Hides(const ColumnFilter& filter, TradeItem item) const override {
        return !filter.Passes(book.Record(item));
    }

    const TradeBook& book;
    TradeRows rows;
    std::uint64_t shown = 0;
};

double Microseconds() {
    return static_cast<double>(std::clock()) * 1e6 / CLOCKS_PER_SEC;
}

void Print(const char* what, double since) {
    std::printf("%s: %.2f us (at most 2)\n", what, (Microseconds() - since) / kTyped);
}

}  // namespace

int main() {
    ListeningHost host;
    TradeBook book(host);
    Rows rows(book);
    TradeGenerator generator(1);
    book.BeginLoad();
    TradeRecord record{};
    for (std::uint32_t i = 0; i < kBook; ++i) {
        generator.Fill(record);
        book.Load(record, false);
    }
    book.EndLoad();
    book.SetObserver(&rows.rows);
    std::vector<TradeRecord> typed(kTyped);
    for (TradeRecord& trade : typed)
        generator.Fill(trade);

    double since = Microseconds();
    for (TradeRecord& trade : typed)
        book.Add(trade);
    Print("enter a trade", since);
    since = Microseconds();
    for (std::uint32_t i = 0; i < kTyped; ++i) {
        TradeRecord changed = book.Row(i);
        changed.price = changed.price + 1;
        book.Edit(book.ItemAt(i), changed);
    }
    Print("change a trade", since);
    if (rows.shown != 2 * kTyped || book.RowCount() != kBook + kTyped) std::printf("WRONG: rows\n");
    book.SetObserver(nullptr);
}
