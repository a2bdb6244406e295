// The import of trades from a CSV file into the book.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "entry/ClientList.h"
#include "entry/ContractCache.h"
#include "entry/ImportPlan.h"
#include "entry/ManualClients.h"
#include "formatset/CsvLine.h"
#include "formatset/ImportMapping.h"
#include "host/Host.h"
#include "host/User.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "tradebook/BookPort.h"

namespace Dravel {

// Everybody whom an import talks to. All outlive it.
struct ImportPorts {
    IFiles& files;
    IHost& host;
    IUser& user;
    const IClock& clock;
    ITradeSink& book;
    ManualClients& manualClients;
};

struct ImportCounts {
    std::uint64_t lines = 0;       // data lines with cells
    std::uint64_t imported = 0;    // trades that entered the book
    std::uint64_t duplicates = 0;  // skipped, held-back ones included
    std::uint64_t heldBack = 0;    // lines of unknown clients
    std::uint64_t dropped = 0;     // of those: not imported, because the user said no or cancelled
    std::uint64_t doubtfulDates = 0;
    std::uint64_t unknownContracts = 0;
    bool asked = false;  // the question about unknown clients was put
    bool cancelled = false;
    bool readFailed = false;  // the file ended where it could not be read on
};

enum class ImportNoteKind : std::uint8_t { Duplicate, UnknownClient, DoubtfulDate };

// One line that the import report lists.
struct ImportNote {
    std::uint64_t line;  // 1 is the file's first line
    ImportNoteKind kind;
    std::string text;  // the exchange trade id, the client, the date as it stands in the file
};

struct ImportProgress {
    std::uint64_t bytes = 0;
    std::uint64_t bytesOfAll = 0;
    std::uint64_t lines = 0;
};

// One run: Begin, Step until it returns false, Finish. On the user-interface thread; between the steps the
// caller lets the windows live, and the book may take other trades. A step that is called from within a step
// (a box lets timers through) does nothing.
class CsvImport {
 public:
    // The mapping must not change while the run lasts.
    CsvImport(const ImportPorts& ports, const ImportMapping& mapping);

    // Opens the file and matches its header. False: it was told in a box why not, and the run is over without
    // a trace.
    bool Begin(const std::filesystem::path& path);
    // Deals with up to `maxLines` lines; at the end of the file asks about unknown clients, then deals with
    // their lines likewise. False: nothing is left to do.
    bool Step(std::size_t maxLines);
    // The next step drops the lines that are held back, without asking, and ends the run.
    void Cancel() { cancelWanted_ = true; }
    // Tells the terminal that the import is over, and, unless it was cancelled, the user. True: at least one
    // trade entered the book.
    bool Finish();

    // All of it in one go; `between` is called between the steps.
    bool Run(const std::filesystem::path& path, const std::function<void()>& between = {});

    const ImportCounts& Counts() const { return counts_; }
    // The first kMaxNotes of them; the counts are of all.
    static constexpr std::size_t kMaxNotes = 10000;
    const std::vector<ImportNote>& Notes() const { return notes_; }
    ImportProgress Progress() const;

 private:
    enum class Stage : std::uint8_t { Idle, Reading, Accepting, Done };
    // Lines are kept as they stand in the file: a record is several times as long.
    struct HeldLine {
        std::uint64_t number;
        std::size_t start, length;
    };

    bool Tell(std::string_view text, Icon icon);
    bool MatchFile();
    void ReadLines(std::size_t maxLines);
    bool ReadSomeLines(std::size_t maxLines);
    void DealWith(std::string_view line);
    void HoldBack(std::string_view line);
    void AcceptLines(std::size_t maxLines);
    void Accept(const HeldLine& held);
    bool MakeRecord(std::string_view line);
    bool SkippedAsDuplicate(std::uint64_t number);
    void Enter();
    void EndOfFile();
    bool UserAccepts();
    void DropHeldLines();
    void Note(std::uint64_t line, ImportNoteKind kind, std::string_view text);

    ImportPorts ports_;
    ImportPlan plan_;
    bool hasHeader_;
    ContractCache contracts_;
    ClientList hostClients_;

    std::unique_ptr<IFile> file_;
    std::unique_ptr<CsvLines> lines_;
    std::uint64_t fileSize_ = 0;
    std::uint64_t lineNumber_ = 0;
    std::vector<std::string_view> cells_;
    TradeRecord record_{};  // the line's trade

    std::string heldText_;
    std::vector<HeldLine> held_;
    std::size_t accepted_ = 0;
    std::set<std::string, std::less<>> unknownClients_;

    ImportCounts counts_;
    std::vector<ImportNote> notes_;
    Stage stage_ = Stage::Idle;
    bool cancelWanted_ = false;
    bool stepping_ = false;
};

}  // namespace Dravel
