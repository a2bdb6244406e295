// The export of a book to a file against what nobody can leave out: making the digits of its numbers. One
// thread, 100,000 trades; each figure is the best of several rounds.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <span>
#include <vector>

#include "bench/SilentHost.h"
#include "generator/TradeGenerator.h"
#include "tradebook/TradeColumns.h"
#include "tradebook/TradeExport.h"

using namespace Dravel;

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kTrades = 100000;
constexpr int kRounds = 15;

// Each number of a trade, as the file has it, into one buffer.
std::size_t Digits(std::span<const TradeRecord* const> trades) {
    char buffer[1024];
    std::size_t bytes = 0;
    for (const TradeRecord* trade : trades) {
        char* at = buffer;
        char* const end = buffer + sizeof buffer;
        for (const std::uint32_t number : {+trade->veltTradeID, +trade->veltOrderID, +trade->orderID,
                                           +trade->quantity, +trade->pendingQuantity})
            at = std::to_chars(at, end, number).ptr;
        for (const double number : {+trade->strikePrice, +trade->price})
            at = std::to_chars(at, end, number, std::chars_format::fixed, 6).ptr;
        bytes += static_cast<std::size_t>(at - buffer);
    }
    return bytes;
}

// Processor time, also that of the system for the file: what else the machine does is not counted.
template <typename Work>
void Best(double& best, const Work& work) {
    const std::clock_t start = std::clock();
    work();
    best = std::min(best, static_cast<double>(std::clock() - start) * 1e9 / CLOCKS_PER_SEC);
}

}  // namespace

int main() {
    const fs::path path = fs::temp_directory_path() / "dravel-export-bench.csv";
    SilentHost host;
    TradeBook book(host);
    TradeGenerator generator(1);
    for (std::uint32_t i = 0; i < kTrades; ++i) {
        TradeRecord trade;
        generator.Fill(trade);
        book.Add(trade);
    }
    GridColumns columns;
    for (const TradeColumn& column : kTradeColumns)
        columns.Add({.key = column.key, .header = column.header});
    const PriceDivisors divisors;

    double ours = 1e18, limit = 1e18;
    std::size_t digits = 0;
    const auto trades = TradesInOrder(book);
    for (int round = 0; round < kRounds; ++round) {
        Best(limit, [&] { digits = Digits(trades); });
        Best(ours, [&] {
            ExportTrades(SystemFiles(), path, columns, ExportMode::AllColumns, TradesInOrder(book), divisors);
        });
    }
    std::printf(
        "export a trade / make its digits: ours %.0f ns, limit %.0f ns, ratio %.2f (at most 2.5); "
        "%.0f bytes a line, %.0f of them digits\n",
        ours / kTrades, limit / kTrades, ours / limit, static_cast<double>(fs::file_size(path)) / kTrades,
        static_cast<double>(digits) / kTrades);
    fs::remove(path);
    return 0;
}
