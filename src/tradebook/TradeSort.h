// Puts items of the book in the order of one column after another.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tradebook/OrderKeys.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

// A number that orders doubles as numbers: -0 equals 0, what is no number comes last.
std::uint64_t OrderOfDouble(double value);

// The number of a cell of an integer or double column, as an order key.
std::uint64_t NumberKey(const TradeRecord& record, int column);
// By item, for all items of the book.
OrderKeys NumberKeys(const TradeBook& book, int column);

// Sorts `items` by their keys, those with equal keys stay as they stand. `compare` decides between items
// whose keys are equal and not whole; below 0: the first comes first.
void StableSort(std::vector<TradeItem>& items, const OrderKeys& keys, bool ascending,
                const std::function<int(TradeItem, TradeItem)>& compare);

}  // namespace Dravel
