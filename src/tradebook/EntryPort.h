// What the window of the book asks of trade entry, which lives above it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"
#include "support/Log.h"
#include "tradebook/TradeDraft.h"
#include "tradebook/base/UiThread.h"

namespace Dravel {

class BookFile;
class BookJournal;
class IBookGate;
struct BarContext;

// How the user ends the edit of a cell.
enum class EditEnding : std::uint8_t {
    Key,       // Enter, Tab, an arrow
    KeyAgain,  // the same with the text that was asked about just before
    Left,      // the keyboard goes elsewhere, a command, the leave check
};

// How the end of a cell's edit went.
enum class EditEnd : std::uint8_t {
    Kept,       // the text stands in the draft
    Refused,    // it is none of the terminal's choices: the cell says what it said before
    Asked,      // it would be taken only in part: the user is asked to end the edit again
    GivenBack,  // it would be, and the user left: the cell says what it said before
    Committed,  // the row entered the book; the draft is gone
    Spoken,     // the text stands there, and the user was told what is wrong with the row
};

// What came of the question whether to save.
enum class AskEnd : std::uint8_t {
    Unanswered,  // the terminal ended under the question
    NotWanted,
    Saved,
    Failed,
};

// The parts of an open book. All outlive the time between BookOpened and BookClosed.
struct BookParts {
    TradeBook& book;
    BookFile* store;  // nullptr: nothing can be saved
    IUiThread& ui;
    ILog& log;
    const BarContext* bar;                   // nullptr: no bar shows the book
    std::function<void()> statusStale = {};  // the status line is to say something else
    std::function<std::uint32_t()> rowsBeingTyped = {};
    const IBookGate* gate = nullptr;             // nullptr: the book is there, and may be changed
    BookJournal* journal = nullptr;              // nullptr: nothing is kept but by saving
    std::function<void()> draftsToJournal = {};  // tells it every row being typed
};

// User-interface thread throughout.
class IEntry {
 public:
    virtual ~IEntry() = default;
    virtual void BookOpened(const BookParts& parts) = 0;
    // The journal is open: what it is told from now on is written.
    virtual void JournalOpened() = 0;
    // Carries out what is still to be written and ends the writer thread.
    virtual void BookClosed() = 0;
    // Begins to save; the result comes later, as a notice or a box. A save that cannot even begin is told in
    // a box at once.
    virtual void Save() = 0;
    // Asks whether to save, and saves, waiting for the result, when the answer is yes. Whatever comes of it
    // the caller goes on hiding or closing, so Cancel acts like No: deliberate. Only the closing of the
    // terminal's frame looks at a save that failed.
    virtual AskEnd AskToSave() = 0;
    // Saves without asking and waits for the result: the session ends. False: it failed, and the user was
    // told.
    virtual bool SaveNow() = 0;
    // Ends an import that runs, as far as it has come: what comes in later would miss the save at the end.
    virtual void EndImport() = 0;
    // Waits for what was saved before; a failure is told, and sets the changed flag again. To be called
    // before the flag decides about a question at the end.
    virtual void FinishSaves() = 0;
    // The drop-down of a cell while `typed` stands in its editor; empty: the cell has no list now.
    virtual void Choices(const TradeDraft& draft, int column, std::string_view typed,
                         std::vector<std::string>& choices) = 0;
    // The user ended the edit of a cell with this text.
    virtual EditEnd EndEdit(TradeDraft& draft, int column, std::string_view text, EditEnding ending,
                            IDraftView& view) = 0;
    // Where Enter goes from a cell: the next one that is to be filled; -1: the row lacks nothing.
    virtual int NextColumn(const TradeDraft& draft, int column) const = 0;
    // What a row still lacks, for the status line; empty: nothing.
    virtual std::string Missing(const TradeDraft& draft) const = 0;
    // Asks, and deletes the selected trades; without any the current row, if it is one being typed.
    virtual void Delete(IDraftView& view) = 0;
    // The import dialog, modal to `owner`, with `file` filled in when it is not empty.
    virtual void Import(void* owner, const std::filesystem::path& file) = 0;
    // What the last import since the book was opened came to, for the status line; empty: there was none.
    virtual std::string ImportSummary() const = 0;
    // The report about it, in a window of its own; nothing when there was none.
    virtual void ShowImportReport(void* owner) = 0;
    // Every two seconds: reads and writes what could not be read or written before.
    virtual void RetryFiles() = 0;
    // An import runs: the bar must neither hide nor close.
    virtual bool Busy() const = 0;
};

}  // namespace Dravel
