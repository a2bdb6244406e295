#include "entry/Entry.h"

#include "tradebook/TradeBook.h"

namespace Dravel {

void Entry::BookOpened(const BookParts& parts) {
    parts_.emplace(parts);
    saver_ = std::make_unique<TradeSaver>(parts, context_.user);
    context_.clients.Load();
}

void Entry::BookClosed() {
    saver_.reset();
    parts_.reset();
}

void Entry::Save() {
    if (saver_) saver_->Save();
}

void Entry::SaveNow() {
    if (saver_) saver_->SaveAndWait();
}

bool Entry::AskToSave() {
    const std::uint32_t answer =
        context_.user.Box("Do you want to save Dravel", "Dravel", Buttons::YesNoCancel, Icon::Warning);
    if (answer == kAnswerYes) SaveNow();
    return true;
}

// Importing twice at a time would let the inner run see half of the outer one.
void Entry::Import(void* owner) {
    if (!parts_ || importing_) return;
    importing_ = true;
    context_.importDialog(owner, {context_.files, context_.host, context_.user, context_.clock, parts_->book,
                                  context_.clients});
    importing_ = false;
}

}  // namespace Dravel
