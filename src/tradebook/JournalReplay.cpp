#include "tradebook/JournalReplay.h"

#include <algorithm>

namespace Dravel {

void JournalReplay::Take(const JournalEntry& entry) {
    switch (entry.code) {
        case msg::JournalPut:
            book_.RestorePut(entry.record, entry.above);
            ++changes_;
            break;
        case msg::JournalDeleted:
            book_.RestoreDeleted(entry.identifiers);
            changes_ += entry.identifiers.size();
            break;
        case msg::JournalMoved:
            if (!entry.identifiers.empty()) book_.RestoreMoved(entry.identifiers.front(), entry.above);
            break;
        case msg::JournalDraft:
            drafts_[entry.draft.id] = entry.draft;
            lastDraft_ = std::max(lastDraft_, entry.draft.id);
            break;
        case msg::JournalDraftGone:
            drafts_.erase(entry.draft.id);
            lastDraft_ = std::max(lastDraft_, entry.draft.id);
            break;
        default:
            break;
    }
}

}  // namespace Dravel
