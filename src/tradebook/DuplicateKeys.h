// The keys by which a trade is recognised when it comes a second time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tradebook/TradeStore.h"

namespace Dravel {

// A record's key: Symbol, ExchangeTradeID, ExchangeOrderNo and ExchangeTradeTime joined by "|".
class DuplicateKey {
 public:
    explicit DuplicateKey(const TradeRecord& record);
    std::string_view Text() const { return {bytes_, length_}; }
    std::uint32_t Hash() const { return hash_; }

 private:
    void Put(std::string_view text);

    static constexpr std::size_t kCapacity = 32 + 48 + 48 + 22 + 3;
    char bytes_[kCapacity];
    std::size_t length_ = 0;
    std::uint32_t hash_;
};

// Which stored trades hold a key. The texts are those of the stored record, so that a trade has the same key
// before and after it was cut to the record's capacities. A key blocks as long as one trade holds it.
// User-interface thread.
//
// One table with linear probing of a hash and a slot each; the texts stay in the records. A node and a text
// of its own for each of a million keys cost more than the import of their lines. Trades without identifiers
// and times share a key by the thousand: the first of them stands in the table, the others hang on it.
class DuplicateKeys {
 public:
    static constexpr TradeStore::Slot kNone = 0xFFFFFFFF;

    // Borrows the store, which must hold every slot that is entered, unchanged in its key, until it is
    // removed.
    explicit DuplicateKeys(const TradeStore& store) : store_(store) {}

    // A trade that holds the record's key, the first that entered with it while that one is there; kNone:
    // none does.
    TradeStore::Slot Find(const DuplicateKey& key) const;
    // A slot is entered at most once, with its record's key; one that was not entered is not removed.
    void Enter(TradeStore::Slot slot, const DuplicateKey& key);
    void Remove(TradeStore::Slot slot);
    void Clear();
    // Room for so many trades without growing on the way.
    void Reserve(std::size_t trades);

 private:
    struct Entry {
        std::uint32_t hash = 0;
        TradeStore::Slot slot = kNone;  // kNone: a free place
    };

    struct Neighbours {
        TradeStore::Slot before = kNone, after = kNone;
    };

    // The first place, from the hash's own on, that is free or suits.
    template <class Suits>
    std::size_t PlaceOf(std::uint32_t hash, Suits suits) const;
    std::size_t PlaceOf(const DuplicateKey& key) const;
    void Close(std::size_t gap);
    void Resize(std::size_t places);

    static constexpr std::size_t kSmallest = 64;
    const TradeStore& store_;
    std::vector<Entry> table_;  // its size is a power of two, at most three quarters of it are used
    std::size_t used_ = 0;
    std::unordered_map<TradeStore::Slot, Neighbours> shared_;  // trades that share their key
};

}  // namespace Dravel
