#include "entry/Entry.h"

#include <utility>

#include "support/OuterCall.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

void Entry::BookOpened(const BookParts& parts) {
    parts_.emplace(parts);
    saver_ = std::make_unique<TradeSaver>(parts, context_.user);
    typing_ = std::make_unique<TradeEntry>(context_.host, context_.user, parts.book, parts.ui);
    context_.clients.Load();
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

void Entry::Save() {
    if (!saver_) return TellNothingSaved();
    saver_->Save();
}

void Entry::TellNothingSaved() {
    context_.user.Box("Dravel Save Failed\nThe book was not opened to its end.", "Dravel", Buttons::Ok,
                      Icon::Warning);
}

void Entry::FinishSaves() {
    if (saver_) saver_->Wait();
}

void Entry::SaveNow() {
    if (!saver_) return TellNothingSaved();
    saver_->SaveAndWait();
}

bool Entry::AskToSave() {
    const std::uint32_t answer =
        context_.user.Box("Do you want to save Dravel", "Dravel", Buttons::YesNoCancel, Icon::Warning);
    if (answer == kAnswerYes) SaveNow();
    return true;
}

void Entry::Choices(const TradeDraft& draft, int column, std::string_view typed,
                    std::vector<std::string>& choices) {
    if (typing_) typing_->Choices(draft, column, typed, choices);
}

EditEnd Entry::EndEdit(TradeDraft& draft, int column, std::string_view text, EditEnding ending,
                       IDraftView& view) {
    return typing_ ? typing_->EndEdit(draft, column, text, ending, view) : EditEnd::Refused;
}

int Entry::NextColumn(const TradeDraft& draft, int column) const {
    return typing_ ? typing_->NextColumn(draft, column) : -1;
}

std::string Entry::Missing(const TradeDraft& draft) const {
    return typing_ ? typing_->Missing(draft) : std::string();
}

void Entry::Delete(IDraftView& view) {
    if (typing_) typing_->Delete(view);
}

// The dialog closes when what runs inside it has returned.
void Entry::EndImport() {
    if (bookGoes_) bookGoes_();
}

// Importing twice at a time would let the inner run see half of the outer one.
void Entry::Import(void* owner, const std::filesystem::path& file) {
    if (!parts_ || !parts_->bar || importing_) return;
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
    if (parts_ && parts_->importEnded) parts_->importEnded();
}

void Entry::ShowImportReport(void* owner) {
    if (report_) context_.reportView.Show(owner, report_);
}

}  // namespace Dravel
