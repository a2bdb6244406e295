// The import of trades from a CSV file into the book.
#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "entry/ClientList.h"
#include "entry/ContractCache.h"
#include "entry/ImportPlan.h"
#include "entry/ImportReport.h"
#include "entry/LineArena.h"
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
    // Takes the report at the end of a run; empty: nobody wants it.
    std::function<void(std::unique_ptr<ImportReport>)> reportTo = {};
    // Where the dialog puts what ends it. Called when the book goes, while it still lives.
    std::function<void()>* bookGoes = nullptr;
};

struct ImportCounts {
    std::uint64_t duplicates = 0;  // skipped, held-back ones included
    std::uint64_t heldBack = 0;    // lines of unknown clients
    std::uint64_t dropped = 0;     // of those: not imported, because the user said no or cancelled
    std::uint64_t unknownContracts = 0;
    bool asked = false;       // the question about unknown clients was put
    bool cancelled = false;   // by the user, a failure, or the end of the book
    bool readFailed = false;  // the file ended where it could not be read on, or was cut off meanwhile
};

struct ImportProgress {
    std::uint64_t bytes = 0;
    std::uint64_t bytesOfAll = 0;
    std::uint64_t lines = 0;
};
// "12,345 lines, 3.4 of 10.2 MB"
std::string ProgressText(const ImportProgress& progress);

// One run: Begin, Step until it returns false, Finish. On the user-interface thread; between the steps the
// caller lets the windows live, and the book may take other trades. A step that is called from within a step
// (a box lets timers through) does nothing.
//
// Nothing here throws but the constructor. A failure, memory that is used up for instance, breaks the run off
// as the user's Cancel would; Finish then says so.
class CsvImport {
 public:
    // The mapping must not change while the run lasts.
    CsvImport(const ImportPorts& ports, const ImportMapping& mapping);
    ~CsvImport() { ShowTrades(); }
    CsvImport(const CsvImport&) = delete;
    CsvImport& operator=(const CsvImport&) = delete;

    // Opens the file and matches its header. False: it was told in a box why not, and the run is over without
    // a trace.
    bool Begin(const std::filesystem::path& path);
    // Deals with up to `maxLines` lines; at the end of the file asks about unknown clients, then deals with
    // their lines likewise. False: nothing is left to do.
    bool Step(std::size_t maxLines);
    // The trades that came in are shown: at the latest before the question and at the end, else when this is
    // called. Showing them costs as much as importing some thousand lines.
    void ShowTrades();
    // What was imported stays. The next step drops the lines that are held back, without asking; further ones
    // only list the lines that were not read yet.
    void Cancel() { cancelWanted_ = true; }
    // The book goes, perhaps because of what this run is just telling or asking somebody: the run is over and
    // never touches the book again. Nothing is said any more, and the report goes to nobody.
    void BookGone();
    // Tells the terminal that the import is over, hands the report on, and tells the user, but not one who
    // cancelled it. True: at least one trade entered the book.
    bool Finish();

    // All of it in one go; `between` is called between the steps.
    bool Run(const std::filesystem::path& path, const std::function<void()>& between = {});

    const ImportCounts& Counts() const { return counts_; }
    // Until Finish has handed it on.
    const ImportReport& Report() const { return *report_; }
    ImportProgress Progress() const;

 private:
    enum class Stage : std::uint8_t { Idle, Reading, Accepting, Listing, Done };
    // Lines are kept as they stand in the file: a record is several times as long.
    struct HeldLine {
        std::uint64_t number;
        std::string_view raw;  // in heldLines_
        std::uint32_t client;  // in the report
    };

    template <class Work>
    void Guarded(const Work& work);
    std::string Failure() const;
    void Tell(std::string_view text, Icon icon);
    void TryToBegin(const std::filesystem::path& path);
    bool MatchFile();
    void Advance(std::size_t maxLines);
    bool NextLine(std::string_view& line);
    void BeginLongLine();
    bool PassLongLine();
    void HoldBatch();
    void ReadLines(std::size_t maxLines);
    void DealWith(std::string_view line);
    void HoldBack();
    void AcceptLines(std::size_t maxLines);
    void Accept(const HeldLine& held);
    void ListLines(std::size_t maxLines);
    void MakeRecord(std::string_view line, std::string_view raw);
    void SkipDuplicate(std::uint64_t number, std::string_view raw, std::uint32_t holder);
    bool Enter(std::uint64_t number, std::string_view raw);
    void EndOfFile();
    void CloseFile();
    bool UserAccepts();
    void Stop();
    void AccountForLine();
    void DropHeldLines(LineOutcome outcome);
    void SaveAccepted();
    void TellTerminal();
    void TellUser(bool imported);

    ImportPorts ports_;
    ImportPlan plan_;
    bool hasHeader_;
    ContractCache contracts_;
    ClientList hostClients_;

    std::unique_ptr<IFile> file_;
    std::unique_ptr<CsvLines> lines_;
    std::uint64_t fileSize_ = 0;
    std::uint64_t lineNumber_ = 0;
    std::string longLine_;             // the beginning of one that is too long
    std::uint64_t longLineBegin_ = 0;  // where it begins in the file
    std::vector<std::string_view> cells_;
    TradeRecord record_{};  // the line's trade
    Doubts doubts_;         // about it
    ChangeSource source_;   // of it

    LineArena heldLines_;
    std::vector<HeldLine> held_;
    std::size_t accepted_ = 0;
    std::map<std::string, std::uint32_t, std::less<>> unknownClients_;  // to their numbers in the report

    ImportCounts counts_;
    std::unique_ptr<ImportReport> report_;
    Stage stage_ = Stage::Idle;
    bool cancelWanted_ = false;
    bool stepping_ = false;
    bool bookGone_ = false;
    bool batched_ = false;        // the book shows what comes in together; over several steps
    std::exception_ptr failure_;  // the first one
};

}  // namespace Dravel
