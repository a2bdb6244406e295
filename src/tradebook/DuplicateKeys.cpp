#include "tradebook/DuplicateKeys.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <utility>

#include "records/RecordText.h"

namespace Dravel {

// A record's key on the stack.
struct DuplicateKeys::Key {
    static constexpr std::size_t kCapacity = 32 + 48 + 48 + 22 + 3;
    char bytes[kCapacity];
    std::size_t length = 0;
    std::uint32_t hash = 0;

    explicit Key(const TradeRecord& record) {
        Put(TextOf(record.symbol));
        bytes[length++] = '|';
        Put(TextOf(record.exchangeTradeID));
        bytes[length++] = '|';
        Put(TextOf(record.exchangeOrderNo));
        bytes[length++] = '|';
        Put(TextOf(record.exchangeTradeTime));
        hash = static_cast<std::uint32_t>(std::hash<std::string_view>{}(Text()));
    }
    std::string_view Text() const { return {bytes, length}; }

 private:
    void Put(std::string_view text) {
        std::memcpy(bytes + length, text.data(), text.size());
        length += text.size();
    }
};

std::string DuplicateKeys::KeyOf(const TradeRecord& record) {
    return std::string(Key(record).Text());
}

std::size_t DuplicateKeys::PlaceOf(const Key& key) const {
    const std::size_t mask = table_.size() - 1;
    for (std::size_t place = key.hash & mask;; place = (place + 1) & mask) {
        const Entry& entry = table_[place];
        if (!entry.text) return place;
        if (entry.hash == key.hash && std::string_view(entry.text, entry.length) == key.Text()) return place;
    }
}

bool DuplicateKeys::Holds(const TradeRecord& record) const {
    return !table_.empty() && table_[PlaceOf(Key(record))].count != 0;
}

std::uint32_t DuplicateKeys::HolderOf(const TradeRecord& record) const {
    return table_.empty() ? 0 : table_[PlaceOf(Key(record))].holder;
}

void DuplicateKeys::Enter(const TradeRecord& record) {
    if (2 * (used_ + 1) > table_.size()) Resize(std::max(kSmallest, 2 * table_.size()));
    const Key key(record);
    Entry& entry = table_[PlaceOf(key)];
    if (!entry.text) {
        entry = {KeepText(key.Text()), key.hash, static_cast<std::uint32_t>(key.length)};
        ++used_;
    }
    if (entry.count++ == 0) entry.holder = record.veltTradeID;
}

void DuplicateKeys::Remove(const TradeRecord& record) {
    if (table_.empty()) return;
    Entry& entry = table_[PlaceOf(Key(record))];
    if (entry.count != 0) --entry.count;
    if (entry.count == 0 || entry.holder == record.veltTradeID) entry.holder = 0;
}

void DuplicateKeys::Clear() {
    table_.clear();
    blocks_.clear();
    used_ = 0;
    blockUsed_ = kBlock;
}

void DuplicateKeys::Reserve(std::size_t trades) {
    const std::size_t places = std::bit_ceil(std::max(kSmallest, 2 * (trades + 1)));
    if (places > table_.size()) Resize(places);
}

void DuplicateKeys::Resize(std::size_t places) {
    std::vector<Entry> old(places);
    old.swap(table_);
    const std::size_t mask = places - 1;
    for (const Entry& entry : old) {
        if (!entry.text) continue;
        std::size_t place = entry.hash & mask;
        while (table_[place].text)
            place = (place + 1) & mask;
        table_[place] = entry;
    }
}

const char* DuplicateKeys::KeepText(std::string_view text) {
    if (kBlock - blockUsed_ < text.size()) {
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(kBlock));
        blockUsed_ = 0;
    }
    char* const at = blocks_.back().get() + blockUsed_;
    std::memcpy(at, text.data(), text.size());
    blockUsed_ += text.size();
    return at;
}

}  // namespace Dravel
