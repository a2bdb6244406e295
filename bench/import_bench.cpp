// The import of a CSV file into the book against splitting and converting its cells by hand. One thread;
// 100,000 lines as the best of several rounds, then 1,000,000 lines through a format set that names all
// columns, for the line's cost and the memory.
#include <sys/resource.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/SilentHost.h"
#include "entry/CsvImport.h"
#include "generator/TradeGenerator.h"
#include "generator/Universe.h"
#include "records/CodeTables.h"
#include "tradebook/TradeBook.h"
#include "tradebook/TradeColumns.h"

using namespace Dravel;

namespace {

namespace fs = std::filesystem;

double Seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

void MakeFile(const fs::path& path, std::uint64_t lines) {
    std::ofstream out(path, std::ios::binary);
    WriteSampleFile({.trades = lines}, [&](std::string_view text) {
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
    });
}

double Import(const fs::path& folder, const fs::path& file, std::uint64_t lines,
              const ImportMapping& mapping = {}) {
    SilentHost host;
    SilentUser user;
    TradeBook book(host);
    ManualClients clients(SystemFiles(), host, folder);
    for (const auto& client : Sample::Clients())
        clients.Add(client);
    const auto start = std::chrono::steady_clock::now();
    CsvImport import({SystemFiles(), host, user, SystemClock(), book, clients}, mapping);
    import.Run(file);
    const double seconds = Seconds(start);
    if (book.RowCount() != lines)
        std::printf("WRONG: %u trades of %llu lines\n", book.RowCount(),
                    static_cast<unsigned long long>(lines));
    return seconds;
}

// What nobody can leave out: find the cells, copy the texts, convert the numbers and words, into one record a
// line.
struct Straight {
    template <std::size_t N>
    static void Put(char (&into)[N], std::string_view text) {
        const std::size_t size = std::min(text.size(), N);
        std::memcpy(into, text.data(), size);
        if (size < N) into[size] = 0;
    }
    template <typename T>
    static T Number(std::string_view text) {
        T value{};
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    }
    static void Convert(const std::string_view* c, TradeRecord& r) {
        std::memset(&r, 0, sizeof r);
        Put(r.userID, c[1]), r.orderID = Number<std::uint32_t>(c[4]), Put(r.exchangeOrderNo, c[5]);
        Put(r.exchangeTradeID, c[6]), Put(r.orderTime, c[7]), Put(r.exchangeOrderTime, c[8]);
        Put(r.exchangeTradeTime, c[9]), Put(r.exchange, c[10]), Put(r.securityType, c[11]),
            Put(r.symbol, c[12]);
        Put(r.expiryDate, c[13]), Put(r.optionType, c[14]), r.strikePrice = Number<double>(c[15]);
        Put(r.clientID, c[16]), r.side = SideFromText(c[17]), r.quantity = Number<std::uint32_t>(c[18]);
        r.price = Number<double>(c[19]), Put(r.securityID, c[20]), r.orderType = OrderTypeFromText(c[21]);
        r.pendingQuantity = Number<std::uint32_t>(c[22]), Put(r.referenceText, c[23]),
        Put(r.managerID, c[24]);
        Put(r.memberID, c[25]), Put(r.ctclID, c[26]), r.productType = ProductTypeFromText(c[27]);
        r.openClose = OpenCloseFromText(c[28]), Put(r.terminalInfo, c[30]), Put(r.pan, c[31]);
    }
};

// Every column by name, the expiry converted.
ImportMapping NameAllColumns() {
    ImportMapping set;
    for (std::size_t i = 0; i < kMappedColumns; ++i)
        set.columns[i].field = kTradeColumns[i].importKey;
    set.expiryPattern = "ddMMMyyyy";
    return set;
}

double SplitAndConvert(const fs::path& file, std::uint64_t lines) {
    // Kept as the book keeps its records: in blocks, each page touched for the first time.
    constexpr std::size_t kBlock = 1024;
    const auto start = std::chrono::steady_clock::now();
    std::ifstream in(file, std::ios::binary);
    std::string text(fs::file_size(file), 0);
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    std::vector<std::unique_ptr<TradeRecord[]>> blocks;
    std::size_t count = 0;
    const char* at = static_cast<const char*>(std::memchr(text.data(), '\n', text.size())) + 1;
    for (const char* const end = text.data() + text.size(); at < end;) {
        const char* const stop =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        std::string_view cells[32];
        for (std::string_view& cell : cells) {
            const char* const comma = std::find(at, stop, ',');
            cell = {at, static_cast<std::size_t>(comma - at)};
            at = std::min(comma + 1, stop);
        }
        if (count % kBlock == 0) blocks.push_back(std::make_unique_for_overwrite<TradeRecord[]>(kBlock));
        Straight::Convert(cells, blocks.back()[count++ % kBlock]);
        at = stop + 1;
    }
    const double seconds = Seconds(start);
    if (count != lines) std::printf("WRONG: %zu lines split\n", count);
    return seconds;
}

}  // namespace

int main() {
    const fs::path folder = fs::temp_directory_path() / "dravel-import-bench";
    fs::create_directories(folder);
    constexpr std::uint64_t kSmall = 100000, kLarge = 1000000;
    MakeFile(folder / "small.csv", kSmall);
    MakeFile(folder / "large.csv", kLarge);

    double ours = 1e9, limit = 1e9;
    for (int round = 0; round < 7; ++round) {
        limit = std::min(limit, SplitAndConvert(folder / "small.csv", kSmall));
        ours = std::min(ours, Import(folder, folder / "small.csv", kSmall));
    }
    std::printf("import a line: ours %.0f ns, limit %.0f ns, ratio %.2f (at most 2.0)\n", ours * 1e9 / kSmall,
                limit * 1e9 / kSmall, ours / limit);
    const ImportMapping set = NameAllColumns();
    double large = 1e9, largeLimit = 1e9;
    for (int round = 0; round < 3; ++round) {
        largeLimit = std::min(largeLimit, SplitAndConvert(folder / "large.csv", kLarge));
        large = std::min(large, Import(folder, folder / "large.csv", kLarge, set));
    }
    std::printf(
        "1,000,000 lines through a format set: ours %.0f ns, limit %.0f ns, ratio %.2f (at most 2.0)\n",
        large * 1e9 / kLarge, largeLimit * 1e9 / kLarge, large / largeLimit);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("1,000,000 lines: %.2f times the cost of 100,000 a line; peak memory %.2f GB (at most 2)\n",
                large / kLarge / (ours / kSmall), static_cast<double>(usage.ru_maxrss) / 1048576);
    fs::remove_all(folder);
}
