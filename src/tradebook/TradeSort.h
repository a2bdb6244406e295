// Puts items of the book in the order of one column after another.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tradebook/OrderKeys.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

// The number of a cell of an integer or double column as one that orders like it: -0 equals 0, what is no
// number comes last.
std::uint64_t NumberKey(const TradeRecord& record, int column);

// The number keys of one column, one an item of the book (deleted ones too). User-interface thread.
class TradeNumbers {
 public:
    // Borrows the book; takes in its items.
    TradeNumbers(const TradeBook& book, int column) : book_(book), column_(column) { Extend(); }

    void Extend();                // takes in the items that came since
    void Update(TradeItem item);  // the record has changed
    // Of an integer column: the value itself.
    std::uint64_t operator[](TradeItem item) const { return keys_[item]; }
    OrderKeys Keys() const;
    std::size_t Bytes() const { return keys_.capacity() * sizeof(std::uint64_t); }

 private:
    const TradeBook& book_;
    int column_;
    std::vector<std::uint64_t> keys_;
};

// Sorts `items` by their keys, those with equal keys stay as they stand. `compare` decides between items
// whose keys are equal and not whole; below 0: the first comes first.
void StableSort(std::vector<TradeItem>& items, const OrderKeys& keys, bool ascending,
                const std::function<int(TradeItem, TradeItem)>& compare);

}  // namespace Dravel
