// What the trades of the book take from the terminal's contracts.
#include "tradebook/TradeBook.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

// A row may get another place by it, and its trade another key.
void TradeBook::TakeFromContract(TradeItem item, const SecurityMasterEntry& contract) {
    TradeRecord& record = store_[item].record;
    record.security = &contract;
    if (!LacksOfContract(record, contract)) return;
    Leave(item);
    FillContract(record, contract);
    Enter(item, DuplicateKey(record));
    if (recorder_) recorder_->Put(record, Above(item), source_);
}

// Placing row by row what is most of a book would take longer than placing all of it.
void TradeBook::ContractsTaken(std::span<const TradeItem> items) {
    constexpr std::size_t kMostPlacedSingly = 1000;
    if (items.empty()) return;
    ++revision_;
    if (!observer_) return;
    if (items.size() > kMostPlacedSingly) return observer_->RowsReset();
    for (const TradeItem item : items)
        observer_->RowEdited(item);
}

void TradeBook::FillFromContracts() {
    std::vector<TradeItem> taken;
    for (TradeItem item = 0; item < store_.Size(); ++item) {
        const auto& [record, deleted] = store_[item];
        if (deleted || !record.security || !LacksOfContract(record, *record.security)) continue;
        TakeFromContract(item, *record.security);
        taken.push_back(item);
    }
    ContractsTaken(taken);
}

// By items: they stay what they are whatever the terminal does while it is asked, unless the book is loaded
// anew.
void TradeBook::FindContracts() {
    if (!host_.HasSecurityMaster()) return;
    securities_.AskAgain();
    std::vector<TradeItem> taken;
    for (TradeItem item = 0; item < store_.Size(); ++item) {
        if (store_[item].deleted || store_[item].record.security) continue;
        const SecurityMasterEntry* const contract = securities_.Find(store_[item].record);
        if (!contract || item >= store_.Size() || store_[item].deleted) continue;
        TakeFromContract(item, *contract);
        taken.push_back(item);
    }
    std::erase_if(taken, [this](TradeItem item) { return item >= store_.Size() || store_[item].deleted; });
    ContractsTaken(taken);
}

}  // namespace Dravel
