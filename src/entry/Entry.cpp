#include "entry/Entry.h"

#include <utility>

#include "support/OuterCall.h"
#include "tradebook/BookGate.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

void Entry::BookOpened(const BookParts& parts) {
    parts_.emplace(parts);
    saver_ = std::make_unique<TradeSaver>(parts, context_.user);
    typing_ = std::make_unique<TradeEntry>(context_.host, context_.user, parts.book, parts.ui);
    context_.clients.Load();
}

void Entry::JournalOpened() {
    if (saver_) saver_->StartJournal();
}

void Entry::BookClosed() {
    EndImport();
    context_.reportView.Close();
    report_.reset();
    // Either may be asking, the terminal or the user.
    KeepForCalls(std::move(typing_));
    KeepForCalls(std::move(saver_));
    parts_.reset();
}

std::string Entry::Refusal() const {
    if (!parts_) return "The book is closed.";
    return parts_->gate ? parts_->gate->Refusal() : std::string();
}

// Nobody may take what was not even begun for a save.
bool Entry::CannotSave() {
    const std::string reason = Refusal();
    if (saver_ && reason.empty()) return false;
    TellSaveFailed(context_.user, reason);
    return true;
}

void Entry::Save() {
    if (!CannotSave()) saver_->Save();
}

void Entry::FinishSaves() {
    if (saver_) saver_->Wait();
}

bool Entry::SaveNow() {
    return !CannotSave() && saver_->SaveAndWait();
}

AskEnd Entry::AskToSave() {
    const std::uint32_t answer =
        context_.user.Box("Do you want to save Dravel", "Dravel", Buttons::YesNoCancel, Icon::Warning);
    if (answer == kAnswerNo || answer == kAnswerCancel) return AskEnd::NotWanted;
    if (answer != kAnswerYes) return AskEnd::Unanswered;
    return SaveNow() ? AskEnd::Saved : AskEnd::Failed;
}

void Entry::Choices(const TradeDraft& draft, int column, std::string_view typed,
                    std::vector<std::string>& choices) {
    if (typing_) typing_->Choices(draft, column, typed, choices);
}

EditEnd Entry::EndEdit(TradeDraft& draft, int column, std::string_view text, EditEnding ending,
                       IDraftView& view) {
    return typing_ && Refusal().empty() ? typing_->EndEdit(draft, column, text, ending, view)
                                        : EditEnd::Refused;
}

int Entry::NextColumn(const TradeDraft& draft, int column) const {
    return typing_ ? typing_->NextColumn(draft, column) : -1;
}

std::string Entry::Missing(const TradeDraft& draft) const {
    return typing_ ? typing_->Missing(draft) : std::string();
}

void Entry::Delete(IDraftView& view) {
    if (typing_ && Refusal().empty()) typing_->Delete(view);
}

// The dialog closes when what runs inside it has returned.
void Entry::EndImport() {
    if (bookGoes_) bookGoes_();
}

// Importing twice at a time would let the inner run see half of the outer one.
void Entry::Import(void* owner, const std::filesystem::path& file) {
    if (!parts_ || !parts_->bar || importing_ || !Refusal().empty()) return;
    struct Open {
        Entry& entry;
        explicit Open(Entry& owner) : entry(owner) { entry.importing_ = true; }
        ~Open() {
            entry.bookGoes_ = nullptr;
            entry.importing_ = false;
        }
    } const open(*this);
    parts_->book.Securities().AskAgain();
    context_.importDialog(
        owner,
        {context_.files, context_.host, context_.user, context_.clock, parts_->book, context_.clients,
         [this](std::unique_ptr<ImportReport> report) { TakeReport(std::move(report)); }, &bookGoes_},
        *parts_->bar, file);
}

void Entry::TakeReport(std::unique_ptr<ImportReport> report) {
    report_ = std::move(report);
    context_.reportView.Renew(report_);
    if (parts_ && parts_->statusStale) parts_->statusStale();
}

void Entry::ShowImportReport(void* owner) {
    if (report_) context_.reportView.Show(owner, report_);
}

}  // namespace Dravel
