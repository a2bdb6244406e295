// Divisors of prices: some contracts are quoted in another unit than they are exported in.
#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>

#include "platform/Files.h"
#include "records/TradeRecord.h"

namespace Dravel {

class PriceDivisors {
 public:
    // Reads one "key,divisor" a line. A missing file gives no divisors; a line without a key, or whose
    // divisor is no number above 0, is passed over. Of two lines with one key the later counts. A failure, of
    // a file that is there and cannot be read, leaves the prices undivided: to be tried again.
    FileStatus Load(IFiles& files, const std::filesystem::path& path);

    // The record's price, divided when its contract has a divisor: under the divisor key of the terminal's
    // entry, or under its symbol when that key is empty.
    double PriceOf(const TradeRecord& record) const;

 private:
    std::unordered_map<std::string, double> divisors_;
};

}  // namespace Dravel
