// Where the trade of an identifier is stored.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "tradebook/TradeStore.h"

namespace Dravel {

// The book gives identifiers one after another, so nearly all of them index an array; those far from the
// others (a file may hold any number) go into a map. Identifiers are 1 or more.
class TradeIndex {
 public:
    static constexpr TradeStore::Slot kNone = 0xFFFFFFFF;

    TradeStore::Slot Find(std::int32_t identifier) const {
        const auto place = static_cast<std::size_t>(identifier);
        if (place < near_.size() && near_[place] != kNone) return near_[place];
        const auto found = far_.find(identifier);
        return found == far_.end() ? kNone : found->second;
    }
    bool Contains(std::int32_t identifier) const { return Find(identifier) != kNone; }

    // The identifier must not be there yet.
    void Insert(std::int32_t identifier, TradeStore::Slot slot) {
        const auto place = static_cast<std::size_t>(identifier);
        if (place > 2 * count_ + kSlack) {
            far_.emplace(identifier, slot);
        } else {
            if (place >= near_.size()) near_.resize(place + 1, kNone);
            near_[place] = slot;
        }
        ++count_;
    }
    // The identifier, which is there, goes over to another slot.
    void Move(std::int32_t identifier, TradeStore::Slot slot) {
        const auto place = static_cast<std::size_t>(identifier);
        const bool inArray = place < near_.size() && near_[place] != kNone;
        (inArray ? near_[place] : far_[identifier]) = slot;
    }
    void Clear() {
        near_.clear();
        far_.clear();
        count_ = 0;
    }

 private:
    static constexpr std::size_t kSlack = 65536;
    std::vector<TradeStore::Slot> near_;  // by identifier
    std::unordered_map<std::int32_t, TradeStore::Slot> far_;
    std::size_t count_ = 0;
};

}  // namespace Dravel
