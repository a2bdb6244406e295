#include "tradebook/TradeBook.h"

#include <algorithm>
#include <limits>

#include "records/CodeTables.h"

namespace Dravel {

namespace {

constexpr std::uint32_t kLargestIdentifier = std::numeric_limits<std::int32_t>::max();

bool HasIdentifier(const TradeRecord& record) {
    return record.veltTradeID >= 1 && record.veltTradeID <= kLargestIdentifier;
}

std::int32_t IdentifierOf(const TradeRecord& record) {
    return static_cast<std::int32_t>(record.veltTradeID);
}

}  // namespace

void TradeBook::BeginLoad() {
    store_.Clear();
    rows_.clear();
    trades_.Clear();
    keys_.Clear();
    totals_ = {};
    counter_ = 0;
    SetChanged(false);
}

void TradeBook::Load(const TradeRecord& record, bool deleted) {
    if (HasIdentifier(record)) {
        counter_ = std::max(counter_, std::uint32_t{record.veltTradeID});
        if (const TradeStore::Slot known = trades_.Find(IdentifierOf(record)); known != TradeIndex::kNone) {
            store_[known] = {record, deleted};
            return;
        }
        trades_.Insert(IdentifierOf(record), store_.Size());
    } else if (deleted) {
        return;  // nothing that a later frame could speak of
    }
    const TradeStore::Slot slot = store_.Add(record);
    store_[slot].deleted = deleted;
    rows_.push_back(slot);
}

void TradeBook::EndLoad() {
    std::erase_if(rows_, [this](TradeStore::Slot slot) { return store_[slot].deleted != 0; });
    std::reverse(rows_.begin(), rows_.end());
    NameNamelessTrades();
    keys_.Reserve(rows_.size());
    for (const TradeStore::Slot slot : rows_)
        Enter(store_[slot].record);
    if (observer_) observer_->RowsReset();
}

// Only after the whole file is known, so that no given identifier meets a stored one. From the bottom row up,
// so that the newest trade keeps the largest.
void TradeBook::NameNamelessTrades() {
    for (const TradeStore::Slot slot : rows_) {
        TradeRecord& record = store_[slot].record;
        if (HasIdentifier(record)) continue;
        const std::int32_t identifier = NextIdentifier();
        record.veltTradeID = static_cast<std::uint32_t>(identifier);
        trades_.Insert(identifier, slot);
    }
}

// The next value of the counter. When a stored trade had the largest identifier there is no next one: then
// the lowest that is free, because a trade must never be turned away.
std::int32_t TradeBook::NextIdentifier() {
    if (counter_ < kLargestIdentifier) return static_cast<std::int32_t>(++counter_);
    std::int32_t identifier = 1;
    while (trades_.Contains(identifier))
        ++identifier;
    return identifier;
}

std::int32_t TradeBook::Add(TradeRecord& record) {
    record.veltTradeID = record.veltOrderID = static_cast<std::uint32_t>(NextIdentifier());
    if (record.orderID == 0) record.orderID = record.veltOrderID;
    AddTrade(record, false);
    return IdentifierOf(record);
}

std::int32_t TradeBook::AddFromHost(TradeRecord& record) {
    if (!HasIdentifier(record) || trades_.Contains(IdentifierOf(record))) {
        record.veltTradeID = static_cast<std::uint32_t>(NextIdentifier());
    }
    counter_ = std::max(counter_, std::uint32_t{record.veltTradeID});
    AddTrade(record, true);
    return IdentifierOf(record);
}

// The report comes last: the terminal may call back while it is being told, and must find the book in step.
void TradeBook::AddTrade(TradeRecord& record, bool secondReport) {
    if (!record.security) record.security = securities_.Find(record);
    const TradeStore::Slot slot = store_.Add(record);
    rows_.push_back(slot);
    trades_.Insert(IdentifierOf(record), slot);
    Enter(record);
    ++revision_;
    SetChanged(true);
    if (observer_) observer_->RowAddedOnTop();
    ReportTrade(host_, store_[slot].record, {.trade = !analysisOnly_, .second = secondReport});
}

void TradeBook::Enter(const TradeRecord& record) {
    keys_.Enter(record);
    if (record.side == side::Buy) totals_.bought += record.quantity;
    if (record.side == side::Sell) totals_.sold += record.quantity;
}

void TradeBook::SetChanged(bool changed) {
    if (changed_ == changed) return;
    changed_ = changed;
    if (observer_) observer_->ChangedFlagSet(changed);
}

const StoredTrade* TradeBook::Find(std::int32_t tradeID) const {
    if (tradeID < 1) return nullptr;
    const TradeStore::Slot slot = trades_.Find(tradeID);
    return slot == TradeIndex::kNone ? nullptr : &store_[slot];
}

void TradeBook::ReportAll() const {
    if (!host_.Listens()) return;
    std::vector<std::pair<std::uint32_t, TradeStore::Slot>> order;
    order.reserve(rows_.size());
    for (const TradeStore::Slot slot : rows_)
        order.emplace_back(std::uint32_t{store_[slot].record.veltTradeID}, slot);
    std::sort(order.begin(), order.end());
    for (const auto& [identifier, slot] : order)
        ReportTrade(host_, store_[slot].record, {});
}

}  // namespace Dravel
