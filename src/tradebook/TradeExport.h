// The book as a comma-separated file.
#pragma once

#include <filesystem>
#include <span>
#include <vector>

#include "platform/Files.h"
#include "toolkit/GridColumns.h"
#include "tradebook/PriceDivisors.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

enum class ExportMode : std::uint8_t {
    AllColumns,      // shown or not, in the order of their numbers
    VisibleColumns,  // as they stand on the screen
};

struct ExportResult {
    bool opened = false;  // false: nothing was written, and what was there is untouched
    FileStatus status;    // of the step that failed
};

// The trades of the book in ascending order of their identifiers; deleted ones are none of it. Valid until
// the book changes.
std::vector<const TradeRecord*> TradesInOrder(const TradeBook& book);

// Writes a line of column headers and a line for each trade, parted by CR LF, none after the last; replaces
// an existing file. Cells stand without quotes, whatever they hold, but for the reference text, which always
// has them. What could not be written whole is removed.
ExportResult ExportTrades(IFiles& files, const std::filesystem::path& path, const GridColumns& columns,
                          ExportMode mode, std::span<const TradeRecord* const> trades,
                          const PriceDivisors& divisors);

}  // namespace Dravel
