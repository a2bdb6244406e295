#include "tradebook/DuplicateKeys.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>

#include "records/RecordText.h"

namespace Dravel {

DuplicateKey::DuplicateKey(const TradeRecord& record) {
    Put(TextOf(record.symbol));
    bytes_[length_++] = '|';
    Put(TextOf(record.exchangeTradeID));
    bytes_[length_++] = '|';
    Put(TextOf(record.exchangeOrderNo));
    bytes_[length_++] = '|';
    Put(TextOf(record.exchangeTradeTime));
    hash_ = static_cast<std::uint32_t>(std::hash<std::string_view>{}(Text()));
}

void DuplicateKey::Put(std::string_view text) {
    std::memcpy(bytes_ + length_, text.data(), text.size());
    length_ += text.size();
}

template <class Suits>
std::size_t DuplicateKeys::PlaceOf(std::uint32_t hash, Suits suits) const {
    const std::size_t mask = table_.size() - 1;
    std::size_t place = hash & mask;
    while (table_[place].slot != kNone && !suits(table_[place]))
        place = (place + 1) & mask;
    return place;
}

std::size_t DuplicateKeys::PlaceOf(const DuplicateKey& key) const {
    return PlaceOf(key.Hash(), [&](const Entry& entry) {
        return entry.hash == key.Hash() && DuplicateKey(store_[entry.slot].record).Text() == key.Text();
    });
}

TradeStore::Slot DuplicateKeys::Find(const DuplicateKey& key) const {
    return table_.empty() ? kNone : table_[PlaceOf(key)].slot;
}

void DuplicateKeys::Enter(TradeStore::Slot slot, const DuplicateKey& key) {
    if (4 * (used_ + 1) > 3 * table_.size()) Resize(std::max(kSmallest, 2 * table_.size()));
    Entry& entry = table_[PlaceOf(key)];
    if (entry.slot == kNone) {
        entry = {key.Hash(), slot};
        ++used_;
        return;
    }
    const TradeStore::Slot second = shared_[entry.slot].after;
    shared_[slot] = {entry.slot, second};
    shared_[entry.slot].after = slot;
    if (second != kNone) shared_[second].before = slot;
}

void DuplicateKeys::Remove(TradeStore::Slot slot) {
    if (table_.empty()) return;
    Neighbours beside;
    if (const auto found = shared_.find(slot); found != shared_.end()) {
        beside = found->second;
        shared_.erase(found);
    }
    if (beside.after != kNone) shared_[beside.after].before = beside.before;
    if (beside.before != kNone) {
        shared_[beside.before].after = beside.after;
        return;
    }
    const std::uint32_t hash = DuplicateKey(store_[slot].record).Hash();
    const std::size_t place = PlaceOf(hash, [slot](const Entry& entry) { return entry.slot == slot; });
    if (beside.after != kNone) {
        table_[place].slot = beside.after;
    } else if (table_[place].slot == slot) {
        Close(place);
    }
}

// Those behind the gap move up to it when it lies between the place where they would like to stand and the
// one where they do: so a search never stops short of them.
void DuplicateKeys::Close(std::size_t gap) {
    const std::size_t mask = table_.size() - 1;
    for (std::size_t place = (gap + 1) & mask; table_[place].slot != kNone; place = (place + 1) & mask) {
        const std::size_t wanted = table_[place].hash & mask;
        if (((place - wanted) & mask) < ((place - gap) & mask)) continue;
        table_[gap] = table_[place];
        gap = place;
    }
    table_[gap] = {};
    --used_;
}

void DuplicateKeys::Clear() {
    table_.clear();
    shared_.clear();
    used_ = 0;
}

void DuplicateKeys::Reserve(std::size_t trades) {
    const std::size_t places = std::bit_ceil(std::max(kSmallest, (trades + 1) * 4 / 3 + 1));
    if (places > table_.size()) Resize(places);
}

void DuplicateKeys::Resize(std::size_t places) {
    std::vector<Entry> old(places);
    old.swap(table_);
    for (const Entry& entry : old) {
        if (entry.slot != kNone) table_[PlaceOf(entry.hash, [](const Entry&) { return false; })] = entry;
    }
}

}  // namespace Dravel
