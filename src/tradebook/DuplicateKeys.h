// The keys by which a trade is recognised when it comes a second time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "records/TradeRecord.h"

namespace Dravel {

// A counted set: a key blocks as long as one trade of the book holds it. Not for two threads at once.
//
// One table with linear probing over texts that lie one behind another: a node and a text of its own for each
// of a million keys cost more than the import of their lines. A key that nobody holds any more keeps its
// place, counted 0.
class DuplicateKeys {
 public:
    // Symbol, ExchangeTradeID, ExchangeOrderNo and ExchangeTradeTime joined by "|", from the record's own
    // texts, so that a trade has the same key before and after it was cut to the record's capacities.
    static std::string KeyOf(const TradeRecord& record);

    bool Holds(const TradeRecord& record) const;
    // VELTTradeID of the trade that entered the record's key first among those that hold it; 0: nobody holds
    // it, or that trade went and others still do.
    std::uint32_t HolderOf(const TradeRecord& record) const;
    void Enter(const TradeRecord& record);
    void Remove(const TradeRecord& record);
    void Clear();
    // Room for so many trades without growing on the way.
    void Reserve(std::size_t trades);

 private:
    struct Key;
    struct Entry {
        const char* text = nullptr;  // in blocks_; null: a free place
        std::uint32_t hash = 0;
        std::uint32_t length = 0;
        std::uint32_t count = 0;
        std::uint32_t holder = 0;
    };

    // The entry of the key or the free place where it would stand. The table has a free place.
    std::size_t PlaceOf(const Key& key) const;
    void Resize(std::size_t places);
    const char* KeepText(std::string_view text);

    static constexpr std::size_t kSmallest = 64, kBlock = 1 << 16;
    std::vector<Entry> table_;  // its size is a power of two, at most half of it is used
    std::size_t used_ = 0;
    std::vector<std::unique_ptr<char[]>> blocks_;
    std::size_t blockUsed_ = kBlock;
};

}  // namespace Dravel
