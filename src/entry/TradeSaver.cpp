#include "entry/TradeSaver.h"

#include <string>
#include <utility>

#include "platform/Event.h"
#include "records/BookJournal.h"
#include "tradebook/BookStatus.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

void TellSaveFailed(IUser& user, std::string_view reason) {
    user.Box("Dravel Save Failed\n" + std::string(reason), "Dravel", Buttons::Ok, Icon::Warning);
}

struct TradeSaver::Run {
    KRV::Thread::CKRVEvent done;  // set once `result` is there
    SaveResult result;
};

TradeSaver::~TradeSaver() {
    if (writer_) writer_->Stop();
}

KRV::Base::CKRVADAWriteAsync& TradeSaver::Writer() {
    if (!writer_) writer_ = std::make_unique<KRV::Base::CKRVADAWriteAsync>(parts_.log, parts_.journal);
    return *writer_;
}

void TradeSaver::StartJournal() {
    if (!parts_.journal) return;
    const auto wake = [this] {
        if (!Writer().Wake()) parts_.journal->Flush();
    };
    parts_.journal->Start(wake, [&ui = parts_.ui, stale = parts_.statusStale] { ui.Post(stale); });
}

// What follows is in no picture of this save.
void TradeSaver::MarkJournal() {
    if (!parts_.journal) return;
    parts_.journal->Mark();
    if (parts_.draftsToJournal) parts_.draftsToJournal();
}

void TradeSaver::Save() {
    parts_.book.SetChanged(false);
    if (running_) {
        again_ = true;
    } else {
        Begin();
    }
}

bool TradeSaver::SaveAndWait() {
    Save();
    Wait();
    return !failed_;
}

void TradeSaver::Wait() {
    while (const std::shared_ptr<Run> run = running_) {
        while (run->done.Wait(KRV::Base::kWriterWakeUp) == KRV::Thread::WaitResult::TimedOut) {
        }
        Finish(*run);
    }
}

void TradeSaver::Begin() try {
    if (!parts_.store) return Fail(kBookNotOwned);
    parts_.book.FillFromContracts();
    BookImage image(imageMemory_);
    for (std::uint32_t row = 0; row < parts_.book.RowCount(); ++row)
        image.Append(parts_.book.Row(row));
    MarkJournal();

    const auto run = std::make_shared<Run>();
    const auto done = [this, run, &ui = parts_.ui](const SaveResult& result) {
        run->result = result;
        run->done.Set();
        ui.Post([this, run] { Finish(*run); });
    };
    auto* const item = new BookSaveItem(*parts_.store, std::move(image), done);
    running_ = run;
    if (!Writer().Post(item)) KRV::Base::CarryOut(*item);
} catch (...) {
    running_.reset();
    Fail(kMemoryRanOut);
}

// Comes twice for a save that somebody waited for; the second time it is no longer the running one.
void TradeSaver::Finish(Run& run) {
    if (running_.get() != &run) return;
    const SaveResult result = run.result;
    running_.reset();
    failed_ = !result.ok;
    if (std::exchange(again_, false)) Begin();
    if (result.ok) {
        user_.Notice("Dravel Save Successfully");
        TellOfDrafts();
        if (result.foundChanged) TellOfOutsideChange(result.backup);
    } else {
        Fail(result.reason);
    }
}

// The book is what the user sees and saved; what the other program wrote is not in it.
void TradeSaver::TellOfOutsideChange(std::string_view backup) {
    std::string text =
        "Another program had written to the book's file since it was opened or last saved. Your book was "
        "saved in its place.";
    if (!backup.empty()) {
        text +=
            "\nWhat the other program wrote is not in your book. It is kept, in Dravel's folder, as\n"
            "Data\\Backup\\" +
            std::string(backup);
    }
    user_.Box(text, "Dravel", Buttons::Ok, Icon::Warning);
}

// They are in no file of a book that was saved.
void TradeSaver::TellOfDrafts() {
    const std::uint32_t rows = parts_.rowsBeingTyped ? parts_.rowsBeingTyped() : 0;
    if (rows != 0) user_.Notice(RowsBeingTyped(rows));
}

// The flag first: while the box is open, closing must already ask. A save that follows this one writes the
// whole book and sees to the flag itself.
void TradeSaver::Fail(std::string_view reason) {
    if (!running_) {
        parts_.book.SetChanged(true);
        failed_ = true;
    }
    parts_.log.Line(LogLevel::Error, "Save", reason);
    TellSaveFailed(user_, reason);
}

}  // namespace Dravel
