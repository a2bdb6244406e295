// Carries the changes of a journal out on a book that was just loaded.
#pragma once

#include <cstdint>
#include <map>

#include "records/JournalFrames.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

// User-interface thread. Take each entry, then end the book's restoration by TradeBook::EndRestore.
class JournalReplay {
 public:
    explicit JournalReplay(TradeBook& book) : book_(book) {}

    void Take(const JournalEntry& entry);

    // Trades put or deleted. Moved rows are not counted: nobody needs to hear of them.
    std::uint64_t Changes() const { return changes_; }
    // The rows that were being typed at the end, by their identifiers, the oldest first.
    const std::map<std::uint32_t, DraftTexts>& Drafts() const { return drafts_; }
    // The largest identifier of any row that was typed.
    std::uint32_t LastDraft() const { return lastDraft_; }

 private:
    TradeBook& book_;
    std::map<std::uint32_t, DraftTexts> drafts_;
    std::uint64_t changes_ = 0;
    std::uint32_t lastDraft_ = 0;
};

}  // namespace Dravel
