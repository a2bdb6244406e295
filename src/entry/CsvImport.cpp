// Runs an import, a slice at a time.
#include "entry/CsvImport.h"

#include <algorithm>
#include <utility>

#include "formatset/NumberText.h"
#include "message/TagMessageWriter.h"
#include "message/Tags.h"
#include "records/RecordText.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {
namespace {

constexpr std::string_view kTitle = "Dravel Import ";  // with its blank, deliberate
constexpr std::string_view kQuestionTitle = "Dravel Import";
constexpr std::size_t kRunSlice = 4096;  // lines

// A line as CsvLines gave it, from how it stands in the file.
std::string_view LineOf(std::string_view raw, std::uint64_t number) {
    if (raw.ends_with('\n')) raw.remove_suffix(1);
    if (raw.ends_with('\r')) raw.remove_suffix(1);
    return number == 1 ? WithoutByteOrderMark(raw) : raw;
}

// In UTF-8; empty when the name has no such form.
std::string NameOf(const std::filesystem::path& path) try {
    const std::u8string name = path.filename().u8string();
    return {name.begin(), name.end()};
} catch (...) {
    return {};
}

}  // namespace

CsvImport::CsvImport(const ImportPorts& ports, const ImportMapping& mapping)
    : ports_(ports),
      plan_(mapping, ports.clock),
      hasHeader_(mapping.header),
      contracts_(ports.host, ports.book) {}

void CsvImport::Tell(std::string_view text, Icon icon) {
    ports_.user.Box(text, kTitle, Buttons::Ok, icon);
}

// What goes wrong breaks the run off as a cancellation does, so that all is accounted for; when that goes
// wrong as well, the run ends where it stands.
template <class Work>
void CsvImport::Guarded(const Work& work) {
    try {
        work();
    } catch (...) {
        if (failure_) stage_ = Stage::Done;
        if (!failure_) failure_ = std::current_exception();
        counts_.cancelled = true;
        Cancel();
    }
}

std::string CsvImport::Failure() const {
    try {
        std::rethrow_exception(failure_);
    } catch (const std::exception& failure) {
        return failure.what();
    } catch (...) {
        return "unknown exception";
    }
}

bool CsvImport::Begin(const std::filesystem::path& path) {
    Guarded([&] { TryToBegin(path); });
    if (!failure_) return stage_ != Stage::Idle;
    stage_ = Stage::Idle;
    CloseFile();  // it may be what takes up the memory
    Guarded([this] { Tell("The file could not be imported: " + Failure(), Icon::Error); });
    return false;
}

void CsvImport::TryToBegin(const std::filesystem::path& path) {
    const bool opened =
        static_cast<bool>(ports_.files.Open(path, FileMode::Read, FileShare::DenyNone, file_));
    if (opened) lines_ = std::make_unique<CsvLines>(*file_);
    // Some systems open a folder and only then refuse to read it.
    if (!opened || !lines_->Readable()) return Tell("File Not Found", Icon::Warning);
    file_->Size(fileSize_);
    report_ = std::make_unique<ImportReport>(path);
    source_ = {ChangeKind::Import, NameOf(path), 0};
    if (!MatchFile()) return Tell("Please Select Proper File", Icon::Warning);
    stage_ = Stage::Reading;
    hostClients_.AddClientsOf(ports_.host);
}

bool CsvImport::MatchFile() {
    if (!hasHeader_) {
        plan_.UseNumbers();
        return true;
    }
    std::string_view firstLine;
    if (lines_->Next(firstLine)) {
        ++lineNumber_;
        report_->SetHeader(lines_->Raw());
    }
    if (lines_->TooLong()) return false;
    return plan_.UseHeader(firstLine);
}

bool CsvImport::Step(std::size_t maxLines) {
    if (stepping_) return true;
    struct Guard {
        bool& flag;
        explicit Guard(bool& stepping) : flag(stepping) { flag = true; }
        ~Guard() { flag = false; }
    } guard(stepping_);
    Guarded([=, this] { Advance(maxLines); });
    return stage_ != Stage::Done && stage_ != Stage::Idle;
}

void CsvImport::Advance(std::size_t maxLines) {
    if (cancelWanted_ && (stage_ == Stage::Reading || stage_ == Stage::Accepting)) Stop();
    if (stage_ == Stage::Reading) {
        ReadLines(maxLines);
    } else if (stage_ == Stage::Accepting) {
        AcceptLines(maxLines);
    } else if (stage_ == Stage::Listing) {
        ListLines(maxLines);
    }
}

// False: there are no more. A file that is shorter than it was at the beginning was cut off, and so was the
// line at its new end, if it has no end of its own: such a line is not believed.
bool CsvImport::NextLine(std::string_view& line) {
    const bool got = lines_->Next(line);
    const bool cutOff =
        lines_->Position() < fileSize_ && !lines_->TooLong() && (!got || !lines_->Raw().ends_with('\n'));
    if (got && !cutOff) {
        ++lineNumber_;
        return true;
    }
    if (lines_->Failed() || cutOff) {
        counts_.readFailed = true;
        report_->Skipped(++lineNumber_, got ? lines_->Raw() : std::string_view(), LineOutcome::Unreadable);
    }
    return false;
}

// What is shown of it is kept at once: passing over the rest overwrites it.
void CsvImport::BeginLongLine() {
    longLineBegin_ = lines_->Position() - lines_->Raw().size();
    longLine_ = lines_->Raw().substr(0, ImportReport::kShownText);
}

// A line that is too long is passed over piece by piece and then listed. False: a piece is left, and the step
// ends, since a file without line ends may have any size.
bool CsvImport::PassLongLine() {
    if (!lines_->TooLong()) return true;
    if (!lines_->PassRest()) return false;
    if (lines_->Failed()) {
        --lineNumber_;  // NextLine lists it as unreadable
        return true;
    }
    const std::uint64_t bytes = lines_->Position() - longLineBegin_;
    report_->Skipped(lineNumber_, longLine_, LineOutcome::TooLong,
                     static_cast<std::uint32_t>((bytes + 1048575) / 1048576));
    return true;
}

void CsvImport::HoldBatch() {
    if (batched_) return;
    ports_.book.BeginBatch();
    batched_ = true;
}

void CsvImport::ShowTrades() {
    if (std::exchange(batched_, false)) Guarded([this] { ports_.book.EndBatch(); });
}

void CsvImport::ReadLines(std::size_t maxLines) {
    HoldBatch();
    std::string_view line;
    for (std::size_t count = 0; count < maxLines && !bookGone_; ++count) {
        if (!PassLongLine()) return;
        if (!NextLine(line)) return EndOfFile();
        if (lines_->TooLong()) {
            BeginLongLine();
        } else {
            DealWith(line);
        }
    }
}

void CsvImport::DealWith(std::string_view line) {
    const std::string_view raw = lines_->Raw();
    if (line.empty()) return report_->Skipped(lineNumber_, raw, LineOutcome::Empty);
    MakeRecord(line, raw);
    if (bookGone_) return;
    if ((doubts_.bits & doubt::NoContract) != 0) ++counts_.unknownContracts;
    const std::string_view client = TextOf(record_.clientID);
    if (plan_.ForcesClient() || hostClients_.Holds(client) || ports_.manualClients.Holds(client)) {
        Enter(lineNumber_, raw);
    } else if (const std::uint32_t holder = ports_.book.HolderOf(record_); holder != 0) {
        SkipDuplicate(lineNumber_, raw, holder);
    } else {
        HoldBack();
    }
}

// With its contract, when the terminal knows it.
void CsvImport::MakeRecord(std::string_view line, std::string_view raw) {
    const std::size_t needed = plan_.CellsNeeded();
    SplitCells(line, cells_, needed);
    doubts_ = plan_.Fill(cells_, record_);
    if (const std::size_t inHeader = plan_.HeaderCells(); inHeader != 0) {
        std::size_t count = std::max<std::size_t>(cells_.size(), 1);
        if (cells_.size() == needed) {
            const char* const rest = needed == 0 ? line.data() : cells_.back().data() + cells_.back().size();
            count += static_cast<std::size_t>(std::count(rest, line.data() + line.size(), ','));
        }
        if (count != inHeader) doubts_.bits |= doubt::CellCount;
    }
    if (raw.find('"') != std::string_view::npos) doubts_.bits |= doubt::Quote;
    const ContractFound found = contracts_.Resolve(record_);
    if (found == ContractFound::ByIdentifier) doubts_.bits |= doubt::ByIdentifier;
    if (found == ContractFound::No && ports_.host.HasSecurityMaster()) doubts_.bits |= doubt::NoContract;
}

void CsvImport::SkipDuplicate(std::uint64_t number, std::string_view raw, std::uint32_t holder) {
    ++counts_.duplicates;
    ports_.user.Notice(std::string("Dravel Duplicate TRADEID :").append(TextOf(record_.exchangeTradeID)));
    report_->Skipped(number, raw, LineOutcome::Duplicate, holder);
}

// False: the book holds the trade already.
bool CsvImport::Enter(std::uint64_t number, std::string_view raw) {
    source_.number = static_cast<std::uint32_t>(number);
    if (const std::uint32_t holder = ports_.book.AddUnlessHeld(record_, source_); holder != 0) {
        SkipDuplicate(number, raw, holder);
        return false;
    }
    report_->Imported(number, raw, doubts_);
    return true;
}

void CsvImport::HoldBack() {
    const std::string_view client = TextOf(record_.clientID);
    ++counts_.heldBack;
    auto known = unknownClients_.find(client);
    if (known == unknownClients_.end())
        known = unknownClients_.emplace(client, report_->AddClient(client)).first;
    held_.push_back({lineNumber_, heldLines_.Keep(lines_->Raw()), known->second});
}

void CsvImport::CloseFile() {
    lines_.reset();
    file_.reset();
}

void CsvImport::EndOfFile() {
    CloseFile();
    ShowTrades();  // the question stands over a book that shows all
    stage_ = held_.empty() ? Stage::Done : Stage::Accepting;
    if (held_.empty() || UserAccepts()) return;
    DropHeldLines(LineOutcome::Refused);
    stage_ = Stage::Done;
}

bool CsvImport::UserAccepts() {
    std::string question = "ClientID Not Found : ";
    for (const auto& [client, number] : unknownClients_)
        question.append(client).append(", ");
    question.resize(question.rfind(','));
    question += ".\nAre you sure you want to add manual client & import dravels?";
    counts_.asked = true;
    return ports_.user.Box(question, kQuestionTitle, Buttons::OkCancel, Icon::Question) == kAnswerOk;
}

void CsvImport::AcceptLines(std::size_t maxLines) {
    HoldBatch();
    for (std::size_t count = 0; count < maxLines && accepted_ < held_.size() && !bookGone_; ++count) {
        Accept(held_[accepted_]);
        ++accepted_;
    }
    if (accepted_ < held_.size() && !bookGone_) return;
    ShowTrades();
    SaveAccepted();
    stage_ = Stage::Done;
}

// The clients of the held-back lines that came in are manual ones from now on.
void CsvImport::SaveAccepted() {
    if (accepted_ > 0) ports_.manualClients.Save();
}

void CsvImport::Accept(const HeldLine& held) {
    MakeRecord(LineOf(held.raw, held.number), held.raw);
    if (bookGone_) return;
    const std::string client(TextOf(record_.clientID));
    if (record_.userID[0] == '\0') SetText(record_.userID, client);
    if (record_.managerID[0] == '\0') SetText(record_.managerID, client);
    // An earlier held-back line, or the terminal, may have brought the same trade meanwhile.
    if (Enter(held.number, held.raw)) ports_.manualClients.Add(client);
}

// What is in the book stays there.
void CsvImport::Stop() {
    counts_.cancelled = true;
    ShowTrades();
    AccountForLine();
    DropHeldLines(LineOutcome::HeldBack);
    SaveAccepted();
    stage_ = stage_ == Stage::Reading ? Stage::Listing : Stage::Done;
}

// The line over which a run broke off is in the report, or it is not. One that is too long is listed when it
// has been passed over.
void CsvImport::AccountForLine() {
    const std::uint64_t known = report_->Lines() + held_.size() - accepted_ + (hasHeader_ ? 1 : 0);
    if (stage_ == Stage::Reading && known < lineNumber_ && !lines_->TooLong())
        report_->Skipped(lineNumber_, lines_->Raw(), LineOutcome::NotRead);
    if (stage_ == Stage::Accepting && known > lineNumber_) ++accepted_;
}

void CsvImport::BookGone() {
    const bool accepting = stage_ == Stage::Accepting;
    bookGone_ = counts_.cancelled = true;
    if (stage_ != Stage::Idle) stage_ = Stage::Done;
    ShowTrades();
    if (accepting && !stepping_) Guarded([this] { SaveAccepted(); });
}

void CsvImport::DropHeldLines(LineOutcome outcome) {
    counts_.dropped = held_.size() - accepted_;
    for (std::size_t i = accepted_; i < held_.size(); ++i)
        report_->Skipped(held_[i].number, held_[i].raw, outcome, held_[i].client);
    held_.resize(accepted_);
    heldLines_ = {};
}

void CsvImport::ListLines(std::size_t maxLines) {
    std::string_view line;
    for (std::size_t count = 0; count < maxLines; ++count) {
        if (!PassLongLine()) return;
        if (!NextLine(line)) {
            CloseFile();
            stage_ = Stage::Done;
            return;
        }
        if (lines_->TooLong()) {
            BeginLongLine();
        } else {
            report_->Skipped(lineNumber_, lines_->Raw(), LineOutcome::NotRead);
        }
    }
}

bool CsvImport::Finish() {
    if (stage_ == Stage::Idle) return false;
    if (stage_ != Stage::Done) {
        Cancel();
        while (!stepping_ && Step(kRunSlice)) {
        }
    }
    stage_ = Stage::Idle;
    const bool imported = report_->LinesImported() > 0;
    Guarded([this] { TellTerminal(); });
    Guarded([this] {
        report_->Close();
        if (ports_.reportTo && !bookGone_) ports_.reportTo(std::move(report_));
    });
    Guarded([=, this] { TellUser(imported); });
    return imported;
}

void CsvImport::TellTerminal() {
    if (!ports_.host.Listens()) return;
    CTagMessageWriter frame(msg::ImportFinished);
    frame.Append64(tag::Entry, ports_.host.MessageEntry());
    ports_.host.Send(frame);
}

void CsvImport::TellUser(bool imported) {
    if (bookGone_) return;
    if (failure_) {
        Tell("The import broke off: " + Failure() + ". The trades that came in stay in the book.",
             Icon::Error);
    } else if (imported && !counts_.cancelled) {
        Tell("File Imported Successfully", Icon::Information);
    }
}

bool CsvImport::Run(const std::filesystem::path& path, const std::function<void()>& between) {
    if (!Begin(path)) return false;
    while (Step(kRunSlice)) {
        if (between) between();
    }
    return Finish();
}

ImportProgress CsvImport::Progress() const {
    const std::uint64_t bytes = lines_ ? std::min(lines_->Position(), fileSize_) : fileSize_;
    return {bytes, fileSize_, lineNumber_ - (hasHeader_ && lineNumber_ > 0 ? 1 : 0)};
}

std::string ProgressText(const ImportProgress& progress) {
    const auto megabytes = [](std::uint64_t bytes) {
        const std::uint64_t tenths = (bytes * 10 + 524288) / 1048576;
        return GroupedText(tenths / 10) + "." + std::to_string(tenths % 10);
    };
    return GroupedText(progress.lines) + (progress.lines == 1 ? " line, " : " lines, ") +
           megabytes(progress.bytes) + " of " + megabytes(progress.bytesOfAll) + " MB";
}

}  // namespace Dravel
