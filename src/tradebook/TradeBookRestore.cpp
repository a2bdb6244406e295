// Changes of the book that its journal brings back.
#include <algorithm>

#include "tradebook/TradeBook.h"

namespace Dravel {

// Below the trade `above`; on top when it is 0 or not there.
void TradeBook::Place(TradeItem item, std::uint32_t above) {
    const std::uint32_t from = RowOf(item);
    const std::uint32_t over = above == 0 ? kNoBookRow : RowOf(ItemOf(static_cast<std::int32_t>(above)));
    std::uint32_t to = over == kNoBookRow ? 0 : over + 1;
    if (over != kNoBookRow && from < to) --to;  // those between move up
    if (from != kNoBookRow && from != to) Shift(from, to);
}

void TradeBook::RestorePut(TradeRecord record, std::uint32_t above) {
    if (!HasIdentifier(record)) return;
    FindSecurity(record);
    const TradeItem known = ItemOf(static_cast<std::int32_t>(record.veltTradeID));
    if (RowOf(known) != kNoBookRow) return Replace(known, record);
    counter_ = std::max(counter_, std::uint32_t{record.veltTradeID});
    Place(known == kNoItem ? Insert(record, DuplicateKey(record)) : Revive(known, record), above);
}

// A deleted trade came back.
TradeItem TradeBook::Revive(TradeItem item, const TradeRecord& record) {
    store_[item] = {record, 0};
    PushRow(item);
    Enter(item, DuplicateKey(record));
    ++revision_;
    return item;
}

void TradeBook::RestoreDeleted(std::span<const std::uint32_t> identifiers) {
    std::vector<TradeItem> items;
    for (const std::uint32_t identifier : identifiers)
        items.push_back(ItemOf(static_cast<std::int32_t>(identifier)));
    if (const std::vector<std::uint32_t> rows = RowsOf(items); !rows.empty()) TakeOut(rows);
}

void TradeBook::RestoreMoved(std::uint32_t identifier, std::uint32_t above) {
    Place(ItemOf(static_cast<std::int32_t>(identifier)), above);
}

void TradeBook::EndRestore(bool changed) {
    if (changed) SetChanged(true);
    if (observer_) observer_->RowsReset();
}

}  // namespace Dravel
