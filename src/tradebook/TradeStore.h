// The records of the book in blocks that never move.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "records/TradeRecord.h"

namespace Dravel {

// A trade as the trades map keeps it: the record and its deleted mark (1: deleted since the book was loaded).
struct StoredTrade {
    TradeRecord record;
    std::uint8_t deleted;
};

// Slots 0, 1, 2, ... Growing copies nothing, so a million trades never stand in memory twice.
class TradeStore {
 public:
    using Slot = std::uint32_t;

    Slot Add(const TradeRecord& record) {
        if (size_ % kBlock == 0) blocks_.push_back(std::make_unique_for_overwrite<StoredTrade[]>(kBlock));
        StoredTrade& trade = (*this)[size_];
        trade.record = record;
        trade.deleted = 0;
        return size_++;
    }
    StoredTrade& operator[](Slot slot) { return blocks_[slot / kBlock][slot % kBlock]; }
    const StoredTrade& operator[](Slot slot) const { return blocks_[slot / kBlock][slot % kBlock]; }
    Slot Size() const { return size_; }
    void Clear() {
        blocks_.clear();
        size_ = 0;
    }

 private:
    static constexpr Slot kBlock = 1024;
    std::vector<std::unique_ptr<StoredTrade[]>> blocks_;
    Slot size_ = 0;
};

}  // namespace Dravel
