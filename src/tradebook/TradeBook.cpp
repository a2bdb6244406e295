#include "tradebook/TradeBook.h"

#include <algorithm>
#include <cstring>

#include "records/CodeTables.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

std::int32_t IdentifierOf(const TradeRecord& record) {
    return static_cast<std::int32_t>(record.veltTradeID);
}

}  // namespace

void TradeBook::BeginLoad() {
    const bool shown = !rows_.empty();
    store_.Clear();
    rows_.clear();
    ranks_.clear();
    trades_.Clear();
    keys_.Clear();
    totals_ = {};
    counter_ = 0;
    renumbered_.clear();
    lowestFree_ = 1;
    SetChanged(false);
    if (shown && observer_) observer_->RowsReset();
}

void TradeBook::Load(const TradeRecord& record, bool deleted) {
    if (HasIdentifier(record)) {
        counter_ = std::max(counter_, std::uint32_t{record.veltTradeID});
        if (const TradeStore::Slot known = trades_.Find(IdentifierOf(record)); known != TradeIndex::kNone) {
            StoredTrade& earlier = store_[known];
            if (std::memcmp(&earlier.record, &record, sizeof record) == 0) {
                earlier.deleted = deleted;
                return;
            }
            renumbered_.push_back({record.veltTradeID, known});
            earlier.record.veltTradeID = 0;
            trades_.Move(IdentifierOf(record), store_.Size());
        } else {
            trades_.Insert(IdentifierOf(record), store_.Size());
        }
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
    ranks_.resize(store_.Size());
    for (std::size_t i = 0; i < rows_.size(); ++i)
        ranks_[rows_[i]] = static_cast<std::uint32_t>(i);
    NameNamelessTrades();
    keys_.Reserve(rows_.size());
    for (const TradeStore::Slot slot : rows_)
        Enter(slot, DuplicateKey(Record(slot)));
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
// the lowest that is free, because a trade must never be turned away. None becomes free again, so the search
// goes on where the last one ended.
std::int32_t TradeBook::NextIdentifier() {
    if (counter_ < kLargestIdentifier) return static_cast<std::int32_t>(++counter_);
    while (trades_.Contains(lowestFree_))
        ++lowestFree_;
    return lowestFree_;
}

// The terminal may hand over trades while it is asked, so this comes before anything is decided by what the
// book holds.
void TradeBook::FindSecurity(TradeRecord& record) {
    if (!record.security) record.security = securities_.Find(record);
    if (record.security) FillContract(record, *record.security);
}

std::int32_t TradeBook::Add(TradeRecord& record, const ChangeSource& source) {
    FindSecurity(record);
    record.veltTradeID = record.veltOrderID = static_cast<std::uint32_t>(NextIdentifier());
    AddTrade(record, DuplicateKey(record), false, source);
    return IdentifierOf(record);
}

std::uint32_t TradeBook::AddUnlessHeld(TradeRecord& record, const ChangeSource& source) {
    FindSecurity(record);
    const DuplicateKey key(record);
    if (const TradeItem item = keys_.Find(key); item != DuplicateKeys::kNone) return Record(item).veltTradeID;
    record.veltTradeID = record.veltOrderID = static_cast<std::uint32_t>(NextIdentifier());
    if (record.orderID == 0) record.orderID = record.veltOrderID;
    AddTrade(record, key, false, source);
    return 0;
}

std::int32_t TradeBook::AddFromHost(TradeRecord& record, const ChangeSource& source) {
    FindSecurity(record);
    if (!HasIdentifier(record) || trades_.Contains(IdentifierOf(record))) {
        record.veltTradeID = static_cast<std::uint32_t>(NextIdentifier());
    }
    if (record.veltOrderID == 0) record.veltOrderID = record.veltTradeID;
    counter_ = std::max(counter_, std::uint32_t{record.veltTradeID});
    AddTrade(record, DuplicateKey(record), true, source);
    return IdentifierOf(record);
}

// The report comes last: the terminal may call back while it is being told, and must find the book in step.
void TradeBook::AddTrade(TradeRecord& record, const DuplicateKey& key, bool secondReport,
                         const ChangeSource& source) {
    const TradeItem item = Insert(record, key);
    if (recorder_) recorder_->Put(record, 0, source);
    SetChanged(true);
    if (observer_) observer_->RowAddedOnTop();
    ReportTrade(host_, store_[item].record, {.trade = !analysisOnly_, .second = secondReport});
}

TradeItem TradeBook::Insert(const TradeRecord& record, const DuplicateKey& key) {
    const TradeStore::Slot slot = store_.Add(record);
    PushRow(slot);
    trades_.Insert(IdentifierOf(record), slot);
    Enter(slot, key);
    ++revision_;
    return slot;
}

void TradeBook::Replace(TradeItem item, const TradeRecord& record) {
    Leave(item);
    store_[item].record = record;
    Enter(item, DuplicateKey(record));
    ++revision_;
}

void TradeBook::Enter(TradeItem item, const DuplicateKey& key) {
    const TradeRecord& record = Record(item);
    keys_.Enter(item, key);
    if (record.side == side::Buy) totals_.bought += record.quantity;
    if (record.side == side::Sell) totals_.sold += record.quantity;
}

void TradeBook::Leave(TradeItem item) {
    const TradeRecord& record = Record(item);
    keys_.Remove(item);
    if (record.side == side::Buy) totals_.bought -= record.quantity;
    if (record.side == side::Sell) totals_.sold -= record.quantity;
}

std::uint32_t TradeBook::HolderOf(const TradeRecord& record) const {
    const TradeItem item = keys_.Find(DuplicateKey(record));
    return item == DuplicateKeys::kNone ? 0u : +Record(item).veltTradeID;
}

// Ranks have gaps where trades went, so the next one follows from the top row's and not from their number.
void TradeBook::PushRow(TradeItem item) {
    const std::uint32_t rank = rows_.empty() ? 0 : ranks_[rows_.back()] + 1;
    ranks_.resize(store_.Size());
    ranks_[item] = rank;
    rows_.push_back(item);
}

std::uint32_t TradeBook::RowOf(TradeItem item) const {
    if (item >= ranks_.size() || store_[item].deleted) return kNoBookRow;
    const auto below = [this](TradeItem row, std::uint32_t rank) { return ranks_[row] < rank; };
    const auto found = std::lower_bound(rows_.begin(), rows_.end(), ranks_[item], below);
    if (found == rows_.end() || *found != item) return kNoBookRow;
    return static_cast<std::uint32_t>(rows_.end() - found) - 1;
}

bool TradeBook::Edit(TradeItem item, TradeRecord record) {
    FindSecurity(record);
    if (RowOf(item) == kNoBookRow) return false;
    record.veltTradeID = store_[item].record.veltTradeID;
    Replace(item, record);
    if (recorder_) recorder_->Put(record, Above(item), source_);
    SetChanged(true);
    if (observer_) observer_->RowEdited(item);
    ReportTrade(host_, store_[item].record, {.trade = !analysisOnly_});
    return true;
}

// Ascending, each once.
std::vector<std::uint32_t> TradeBook::RowsOf(std::span<const TradeItem> items) const {
    std::vector<std::uint32_t> rows;
    rows.reserve(items.size());
    for (const TradeItem item : items) {
        if (const std::uint32_t row = RowOf(item); row != kNoBookRow) rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

std::uint32_t TradeBook::Delete(std::span<const TradeItem> wanted) {
    const std::vector<std::uint32_t> rows = RowsOf(wanted);
    if (rows.empty()) return 0;
    const std::vector<TradeItem> items = TakeOut(rows);
    if (recorder_) {
        std::vector<std::uint32_t> identifiers;
        identifiers.reserve(items.size());
        for (const TradeItem item : items)
            identifiers.push_back(+Record(item).veltTradeID);
        recorder_->Deleted(identifiers, source_);
    }
    SetChanged(true);
    if (observer_) observer_->RowsRemoved(rows, items);
    for (const TradeItem item : items)
        ReportTrade(host_, store_[item].record, {.trade = !analysisOnly_, .second = true});
    return static_cast<std::uint32_t>(items.size());
}

// Rows ascending. One pass over what lies above the lowest row that goes, however many go.
std::vector<TradeItem> TradeBook::TakeOut(std::span<const std::uint32_t> rows) {
    std::vector<TradeItem> items;
    items.reserve(rows.size());
    for (const std::uint32_t row : rows) {
        items.push_back(ItemAt(row));
        store_[items.back()].deleted = 1;
        Leave(items.back());
    }
    const auto at = [this](std::uint32_t row) { return rows_.end() - 1 - row; };
    auto keep = at(rows.back());
    for (std::size_t i = rows.size(); i-- > 0;)
        keep = std::copy(at(rows[i]) + 1, i == 0 ? rows_.end() : at(rows[i - 1]), keep);
    rows_.erase(keep, rows_.end());
    ++revision_;
    return items;
}

void TradeBook::MoveRow(std::uint32_t from, std::uint32_t to) {
    if (from >= RowCount() || to >= RowCount() || from == to) return;
    Shift(from, to);
    if (recorder_) recorder_->Moved(+Row(to).veltTradeID, Above(ItemAt(to)));
    if (observer_) observer_->RowMoved(from, to);
}

// The ranks stay where they are: each belongs to a place, and the trades change places.
void TradeBook::Shift(std::uint32_t from, std::uint32_t to) {
    const auto at = [this](std::uint32_t row) { return rows_.end() - 1 - row; };
    const auto first = at(std::max(from, to)), last = at(std::min(from, to)) + 1;
    std::vector<std::uint32_t> ranks;
    for (auto row = first; row != last; ++row)
        ranks.push_back(ranks_[*row]);
    if (from < to) {
        std::rotate(first, last - 1, last);
    } else {
        std::rotate(first, first + 1, last);
    }
    for (auto row = first; row != last; ++row)
        ranks_[*row] = ranks[static_cast<std::size_t>(row - first)];
}

std::uint32_t TradeBook::Above(TradeItem item) const {
    const std::uint32_t row = RowOf(item);
    return row == 0 || row == kNoBookRow ? 0u : +Row(row - 1).veltTradeID;
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

void TradeBook::ReportAll(ReportKind kind) const {
    if (!host_.Listens()) return;
    std::vector<std::pair<std::uint32_t, TradeStore::Slot>> order;
    order.reserve(rows_.size());
    for (const TradeStore::Slot slot : rows_)
        order.emplace_back(std::uint32_t{store_[slot].record.veltTradeID}, slot);
    std::sort(order.begin(), order.end());
    for (const auto& [identifier, slot] : order)
        ReportTrade(host_, store_[slot].record, kind);
}

}  // namespace Dravel
