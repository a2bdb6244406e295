// The ledger of a book that is safe when it is saved.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "records/WaitingLedger.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

// Knows of no trade of an earlier run. Belongs to the open book.
class SavedLedger final : public IWaitingLedger {
 public:
    explicit SavedLedger(TradeBook& book) : book_(book) {
        book_.WhenSaved([this](std::uint64_t revision) { Saved(revision); });
    }
    ~SavedLedger() override { book_.WhenSaved({}); }
    SavedLedger(const SavedLedger&) = delete;
    SavedLedger& operator=(const SavedLedger&) = delete;

    bool HoldsWaiting(const std::string&, std::uint32_t) override { return false; }
    void Enters(std::string_view, std::uint32_t) override {}
    // A save that runs already is one of an older book.
    void WhenKept(std::function<void()> done) override {
        waiting_.emplace_back(book_.Revision(), std::move(done));
    }

 private:
    void Saved(std::uint64_t revision) {
        const auto kept = std::stable_partition(waiting_.begin(), waiting_.end(),
                                                [&](const auto& wait) { return wait.first > revision; });
        std::vector<std::pair<std::uint64_t, std::function<void()>>> done(
            std::make_move_iterator(kept), std::make_move_iterator(waiting_.end()));
        waiting_.erase(kept, waiting_.end());
        for (const auto& wait : done)
            wait.second();
    }

    TradeBook& book_;
    std::vector<std::pair<std::uint64_t, std::function<void()>>> waiting_;  // with the revision to be saved
};

}  // namespace Dravel
