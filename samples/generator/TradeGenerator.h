// Realistic trades, the same for the same seed on every system.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "records/TradeRecord.h"

namespace Dravel {

// A small generator of our own: the distributions of the standard library differ between libraries.
class SampleRandom {
 public:
    explicit SampleRandom(std::uint64_t seed) : state_(seed) {}
    std::uint64_t Next();
    // 0 to `below` - 1.
    std::uint32_t Below(std::uint32_t below) {
        return static_cast<std::uint32_t>((Next() >> 32) * below >> 32);
    }
    bool OneIn(std::uint32_t n) { return Below(n) == 0; }

 private:
    std::uint64_t state_;
};

// Trades of trading sessions in ascending time: an order brings one to four of them, on the tick, in whole
// lots, in contracts of Sample::Contracts() for clients of Sample::Clients(). No two have the same duplicate
// key.
class TradeGenerator {
 public:
    explicit TradeGenerator(std::uint64_t seed) : random_(seed) {}

    // Overwrites the whole record. The book's identifiers stay 0 and the contract is not looked up.
    void Fill(TradeRecord& record);

    // The 32 import keys, and the record's cells under them, both without a line end.
    static std::string CsvHeader();
    static void AppendCsvLine(const TradeRecord& record, std::string& text);
    static std::string CsvLine(const TradeRecord& record);

 private:
    void NewOrder();
    void Advance();
    void FillContract(TradeRecord& record) const;

    SampleRandom random_;
    TradeRecord order_{};  // what the trades of one order have in common
    std::size_t contract_ = 0;
    std::uint32_t fillsLeft_ = 0;
    std::uint64_t orders_ = 0;
    std::uint64_t trades_ = 0;
    std::int64_t milliseconds_ = 0;  // since the first session opened
};

struct SampleFile {
    std::uint64_t trades = 0;  // lines of known clients, each a trade of its own
    std::uint64_t seed = 1;
    std::uint64_t duplicates = 0;      // further lines that repeat an earlier one of those
    std::uint64_t unknownLines = 0;    // further lines whose client nobody knows
    std::uint32_t unknownClients = 1;  // how many different ones
    bool header = true;
};

// Writes a file to import, line by line with CR LF, the extra lines strewn among the others.
void WriteSampleFile(const SampleFile& file, const std::function<void(std::string_view)>& write);

}  // namespace Dravel
