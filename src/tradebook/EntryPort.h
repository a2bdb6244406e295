// What the window of the book asks of trade entry, which lives above it.
#pragma once

#include "platform/Files.h"
#include "support/Log.h"
#include "tradebook/base/UiThread.h"

namespace Dravel {

class BookFile;
class TradeBook;

// The parts of an open book. All outlive the time between BookOpened and BookClosed.
struct BookParts {
    TradeBook& book;
    BookFile* store;  // nullptr: another program owns the book's file, nothing can be saved
    IUiThread& ui;
    ILog& log;
};

// User-interface thread throughout.
class IEntry {
 public:
    virtual ~IEntry() = default;
    virtual void BookOpened(const BookParts& parts) = 0;
    // Carries out what is still to be written and ends the writer thread.
    virtual void BookClosed() = 0;
    // Begins to save; the result comes later, as a notice or a box.
    virtual void Save() = 0;
    // Asks whether to save, and saves, waiting for the result, when the answer is yes. True whatever the
    // answer: the caller goes on closing, so Cancel acts like No. Deliberate.
    virtual bool AskToSave() = 0;
    // Saves without asking and waits for the result: the session ends.
    virtual void SaveNow() = 0;
    // The import dialog, modal to `owner`.
    virtual void Import(void* owner) = 0;
    // An import runs: the bar must neither hide nor close.
    virtual bool Busy() const = 0;
};

}  // namespace Dravel
