// The bar and the journal of its book: what an opening brings back, and when a journal is needed no more.
#include <string>

#include "formatset/NumberText.h"
#include "platform/Account.h"
#include "tradebook/DravelBar.h"
#include "tradebook/JournalReplay.h"

using namespace Dravel;

FileStatus CDravelBar::RestoreChanges() {
    JournalReplay replay(book_);
    JournalOpening opening;
    const FileStatus status = journal_.Open(
        store_.Sum(), [&replay](const JournalEntry& entry) { replay.Take(entry); }, opening);
    if (!status) return status;
    book_.EndRestore(replay.Changes() > 0);
    grid_->RestoreDrafts(replay.Drafts(), replay.LastDraft());
    journalOpen_ = true;
    book_.SetUser(AccountName());
    book_.SetRecorder(&journal_);
    store_.SetWatch(&journal_);
    grid_->SetJournal(&journal_);
    context_.entry.JournalOpened();
    TellOfJournal(opening, replay.Changes());
    return {};
}

void CDravelBar::TellOfJournal(const JournalOpening& opening, std::uint64_t changes) {
    IUser& user = context_.user;
    if (opening.stranger)
        user.Notice("The journal of unsaved work belongs to another book. It was kept as \"" +
                    *opening.stranger + "\".");
    if (opening.damaged)
        user.Notice(
            "The journal of unsaved work is damaged. What stands in front of the damage was "
            "restored; all of it was kept as \"" +
            *opening.damaged + "\".");
    if (changes > 0)
        user.Notice(GroupedText(changes) + (changes == 1 ? " change" : " changes") + " since the last save " +
                    (changes == 1 ? "was" : "were") + " restored");
}

// It goes when nothing in it is needed: all is saved and nothing is being typed, or the user would not have
// it saved and has done nothing since.
void CDravelBar::EndJournal() {
    book_.SetRecorder(nullptr);
    store_.SetWatch(nullptr);
    if (grid_) grid_->SetJournal(nullptr);
    if (!journalOpen_) return;
    journal_.Stop();
    ledger_.Look();
    const bool kept = !book_.Changed() && grid_->RowsBeingTyped() == 0 && !journal_.RowsMoved();
    if (opening_.Through() && (kept || discardedAt_ == journal_.Told())) journal_.Remove();
}
