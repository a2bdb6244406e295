// A book with its journal on a disk in memory, as the bar ties them, without any thread: the test says when
// the writer has its turn.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "records/BookJournal.h"
#include "support/BookRig.h"
#include "support/FakeHost.h"
#include "tradebook/JournalReplay.h"
#include "tradebook/TradeBook.h"

namespace Dravel::Test {

inline const char kJournal[] = "Data/DravelBook_Dravel.journal";

// What a dealer would see: the rows in their order, every byte of them, and the texts of each row being
// typed.
struct BookState {
    FileSum rows;
    std::string drafts;
    bool operator==(const BookState&) const = default;
};
inline BookState StateOf(const std::vector<TradeRecord>& rows) {
    return {{rows.size() * sizeof(TradeRecord), Checksum(rows.data(), rows.size() * sizeof(TradeRecord))},
            {}};
}

struct JournalRig {
    FakeClock clock;
    FakeLog log;
    FaultFiles disk{clock};
    FakeHost host;
    std::unique_ptr<BookFile> file;
    std::unique_ptr<BookJournal> journal;
    std::unique_ptr<TradeBook> book;
    std::map<std::uint32_t, DraftTexts> drafts;
    std::uint32_t lastDraft = 0;
    JournalOpening opening;
    std::uint64_t restored = 0;  // changes, at the last start

    JournalRig() { host.hasMaster = false; }

    // A new start of the program. False: the book is another's, or the disk refused.
    bool Start() {
        Drop();
        file = std::make_unique<BookFile>(
            disk, clock, log, KRV::Base::RecordFilePlace{"Data", "Data/Backup", "DravelBook_Dravel"});
        if (!file->Acquire()) return false;
        book = std::make_unique<TradeBook>(host);
        book->BeginLoad();
        file->LoadBook([this](const TradeRecord& trade, bool deleted) { book->Load(trade, deleted); });
        book->EndLoad();
        journal = std::make_unique<BookJournal>(disk, clock, log, "Data", "DravelBook_Dravel");
        JournalReplay replay(*book);
        if (!journal->Open(
                file->Sum(), [&](const JournalEntry& entry) { replay.Take(entry); }, opening))
            return false;
        book->EndRestore(replay.Changes() > 0);
        restored = replay.Changes();
        drafts = replay.Drafts();
        lastDraft = replay.LastDraft();
        book->SetRecorder(journal.get());
        file->SetWatch(journal.get());
        journal->Start({}, {});
        return true;
    }
    // The handles of a program that died are closed without a word.
    void Drop() {
        if (book) book->SetRecorder(nullptr);
        journal.reset();
        file.reset();
        book.reset();
        drafts.clear();
    }
    // The writer's turn.
    void Turn() {
        if (journal->DueIn() == 0) journal->Flush();
    }
    bool Save() {
        const bool changed = book->Changed();
        BookImage image;
        for (std::uint32_t row = 0; row < book->RowCount(); ++row)
            image.Append(book->Row(row));
        journal->Mark();
        for (const auto& [id, draft] : drafts)
            journal->DraftChanged(draft);
        book->SetChanged(false);
        if (file->Save(image).ok) return true;
        book->SetChanged(changed);
        return false;
    }
    // The bar goes as a user ends it.
    void Close(bool remove) {
        journal->Stop();
        if (remove) journal->Remove();
        Drop();
    }
    BookState State() const {
        std::vector<TradeRecord> rows;
        for (std::uint32_t row = 0; row < book->RowCount(); ++row)
            rows.push_back(book->Row(row));
        BookState state = StateOf(rows);
        for (const auto& [id, draft] : drafts) {
            state.drafts += std::to_string(id) + ":" + std::to_string(draft.trade);
            for (std::size_t i = 0; i < kDraftCells; ++i)
                if (draft.set.test(i)) state.drafts += "|" + std::to_string(i) + "=" + draft.cells[i];
        }
        return state;
    }
    std::vector<std::string> KeptAside() const {
        std::vector<std::string> kept;
        for (const std::string& name : disk.Names())
            if (name.starts_with(std::string(kJournal) + ".")) kept.push_back(name);
        return kept;
    }
};

}  // namespace Dravel::Test
