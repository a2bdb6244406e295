#include "tradebook/BookOpening.h"

#include <exception>
#include <iterator>
#include <new>
#include <utility>

#include "platform/FileTools.h"
#include "support/FaultText.h"

namespace Dravel {

namespace {

constexpr char kContext[] = "Opening", kFailed[] = "The book could not be opened",
               kCannotKeep[] = "Changes cannot be kept: the folder is read-only";
constexpr std::size_t kReporting = 3;  // the first step that is not undone by loading again

}  // namespace

void BookOpening::Try() noexcept {
    if (running_ || stopped_ || Through()) return;
    struct Running {
        bool& flag;
        explicit Running(bool& running) : flag(running) { flag = true; }
        ~Running() { flag = false; }
    } const running(running_);
    try {
        GoOn();
    } catch (const std::bad_alloc&) {
        Abandon("memory ran out.");
    } catch (const std::exception& failure) {
        Abandon(failure.what());
    } catch (...) {
        Abandon("an unknown failure.");
    }
}

void BookOpening::GoOn() {
    static constexpr Step kSteps[] = {&BookOpening::Claim,          &BookOpening::LoadStored,
                                      &BookOpening::RestoreChanges, &BookOpening::ReportBook,
                                      &BookOpening::EnterWaiting,   &BookOpening::GetThrough};
    static_assert(std::size(kSteps) > kReporting);
    while (step_ < std::size(kSteps)) {
        const Step step = kSteps[step_];
        if (!(this->*step)() || stopped_) return;
        ++step_;
    }
}

bool BookOpening::Claim() {
    const BookClaim claim = parts_.file.Acquire();
    readOnly_ = claim.access == BookAccess::ReadOnly;
    code_ = claim.status.code;
    if (claim.access == BookAccess::Elsewhere) return ShowLastSaved(claim.status);
    if (claim.access == BookAccess::Refused) return Fail(claim.status);
    if (readOnly_) {
        const FileStatus read = parts_.file.OpenToRead();
        if (!read && !Missing(read)) return Fail(read);
    }
    Become(BookState::Loading);
    return true;
}

// The owner's saves replace the file: it is read in one go and shown anew whenever it is another one. While
// it cannot be read, what is shown stays.
bool BookOpening::ShowLastSaved(const FileStatus& claimed) {
    const bool shows = state_ == BookState::ShownOnly;
    FileInfo info;
    FileStatus status = parts_.files.Info(parts_.file.LivePath(), info);
    if (shows && status && info.size == shown_.size && info.modified == shown_.modified) return false;
    if (status) status = parts_.file.OpenToRead();
    if (!status) return !shows && Fail(claimed);
    if (!shows) parts_.steps.ShowLook();
    const bool whole = !stopped_ && LoadFile().complete;
    parts_.file.Close();
    if (stopped_) return false;
    if (!whole) {
        parts_.book.BeginLoad();
        return Fail("the disk failed on the way.");
    }
    shown_ = info;
    Become(BookState::ShownOnly);
    return false;
}

// What the disk breaks off is read again: what fails for a moment would else pass for half a book, and what
// cannot be read at all for an empty one.
bool BookOpening::LoadStored() {
    const KRV::VELT::TradeLoadReport report = LoadFile();
    if (readOnly_) parts_.file.Close();
    if (stopped_) return true;
    if (!report.complete && (++brokenOff_ < kPatience || parts_.book.RowCount() == 0)) {
        Abandon("the disk failed on the way.");
        return false;
    }
    parts_.steps.TellDamage(report);
    return true;
}

// A book that has no file yet is complete.
KRV::VELT::TradeLoadReport BookOpening::LoadFile() {
    TradeBook& book = parts_.book;
    book.BeginLoad();
    KRV::VELT::TradeLoadReport report;
    report.complete = !parts_.file.IsOpen();
    if (!report.complete)
        report = parts_.file.LoadBook(
            [&book](const TradeRecord& record, bool deleted) { book.Load(record, deleted); });
    book.EndLoad();
    if (const std::size_t renumbered = book.RenumberedTrades().size(); renumbered > 0)
        parts_.file.TradesRenumbered(renumbered);
    return report;
}

bool BookOpening::RestoreChanges() {
    const FileStatus restored = readOnly_ ? FileStatus{} : parts_.steps.RestoreChanges();
    if (!restored) Abandon(FaultText("the journal cannot be read", restored));
    return static_cast<bool>(restored);
}

bool BookOpening::ReportBook() {
    return parts_.steps.ReportBook();
}

bool BookOpening::EnterWaiting() {
    parts_.steps.EnterWaiting();
    return true;
}

bool BookOpening::GetThrough() {
    Become(readOnly_ ? BookState::ReadOnly : BookState::Open);
    return true;
}

bool BookOpening::Fail(std::string_view what) {
    return FailWith(std::string(kFailed) + ": " + std::string(what));
}

bool BookOpening::Fail(const FileStatus& status) {
    return FailWith(FaultText(kFailed, status));
}

bool BookOpening::FailWith(const std::string& reason) {
    if (state_ == BookState::ShownOnly) parts_.book.BeginLoad();
    Become(BookState::Trying, reason + " Trying again.");
    return false;
}

// As long as the terminal was told of no trade the opening begins anew; after that it goes on with the step
// that failed.
void BookOpening::Abandon(std::string_view what) noexcept {
    try {
        if (step_ >= kReporting) return parts_.log.Line(LogLevel::Error, kContext, what);
        step_ = 0;
        parts_.file.Release();
        parts_.book.BeginLoad();
        Fail(what);
    } catch (...) {
        // There is no memory for a word about it; the next try tells.
    }
}

// The log hears of everything that is new, the user once of each state.
void BookOpening::Become(BookState state, std::string reason) {
    if (state == state_ && reason == reason_) return;
    state_ = state;
    reason_ = std::move(reason);
    parts_.steps.OpeningChanged();
    if (MayChange() || state_ == BookState::Loading) return;
    const std::string said = Refusal();
    const std::uint32_t bit = 1u << static_cast<unsigned>(state_);
    const bool first = (noticed_ & bit) == 0;
    noticed_ |= bit;
    parts_.log.Line(LogLevel::Warning, kContext,
                    code_ == 0 ? said : said + " (error " + std::to_string(code_) + ")");
    if (first) parts_.user.Notice(said);
}

std::string BookOpening::Refusal() const {
    switch (state_) {
        case BookState::Loading:
            return step_ == kReporting ? "The settings cannot be read yet. The book opens when they can."
                                       : "The book is being loaded.";
        case BookState::Trying:
            return reason_;
        case BookState::ShownOnly:
            return "The book is open in another terminal. Its last saved trades are shown and cannot be "
                   "changed here.";
        case BookState::ReadOnly:
            return kCannotKeep;
        case BookState::Open:
            break;
    }
    return {};
}

std::string_view BookOpening::Status() const {
    switch (state_) {
        case BookState::Loading:
        case BookState::Trying:
            return "Not loaded";
        case BookState::ShownOnly:
            return "Open in another terminal";
        case BookState::ReadOnly:
            return kCannotKeep;
        case BookState::Open:
            break;
    }
    return {};
}

}  // namespace Dravel
