// Runs an import, a slice at a time.
#include "entry/CsvImport.h"

#include "message/TagMessageWriter.h"
#include "message/Tags.h"
#include "records/RecordText.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {
namespace {

constexpr std::string_view kTitle = "Dravel Import ";  // with its blank, deliberate
constexpr std::string_view kQuestionTitle = "Dravel Import";
constexpr std::size_t kRunSlice = 4096;  // lines

// Shows the trades that come in while it lives together.
class Batch {
 public:
    explicit Batch(ITradeSink& book) : book_(book) { book_.BeginBatch(); }
    ~Batch() { book_.EndBatch(); }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

 private:
    ITradeSink& book_;
};

}  // namespace

CsvImport::CsvImport(const ImportPorts& ports, const ImportMapping& mapping)
    : ports_(ports), plan_(mapping, ports.clock), hasHeader_(mapping.header), contracts_(ports.host) {}

bool CsvImport::Tell(std::string_view text, Icon icon) {
    ports_.user.Box(text, kTitle, Buttons::Ok, icon);
    return false;
}

bool CsvImport::Begin(const std::filesystem::path& path) {
    if (!ports_.files.Open(path, FileMode::Read, FileShare::DenyNone, file_)) {
        return Tell("File Not Found", Icon::Warning);
    }
    file_->Size(fileSize_);
    lines_ = std::make_unique<CsvLines>(*file_);
    if (!MatchFile()) return Tell("Please Select Proper File", Icon::Warning);
    hostClients_.AddClientsOf(ports_.host);
    stage_ = Stage::Reading;
    return true;
}

bool CsvImport::MatchFile() {
    if (!hasHeader_) {
        plan_.UseNumbers();
        return true;
    }
    std::string_view firstLine;
    if (lines_->Next(firstLine)) ++lineNumber_;
    return plan_.UseHeader(firstLine);
}

bool CsvImport::Step(std::size_t maxLines) {
    if (stepping_) return true;
    struct Guard {
        bool& flag;
        explicit Guard(bool& stepping) : flag(stepping) { flag = true; }
        ~Guard() { flag = false; }
    } guard(stepping_);
    if (cancelWanted_ && stage_ != Stage::Done) DropHeldLines();
    if (stage_ == Stage::Reading) {
        ReadLines(maxLines);
    } else if (stage_ == Stage::Accepting) {
        AcceptLines(maxLines);
    }
    return stage_ != Stage::Done && stage_ != Stage::Idle;
}

void CsvImport::ReadLines(std::size_t maxLines) {
    if (!ReadSomeLines(maxLines)) EndOfFile();
}

// False: there are no more. The question at the end stands outside the batch, over a book that shows all.
bool CsvImport::ReadSomeLines(std::size_t maxLines) {
    const Batch batch(ports_.book);
    std::string_view line;
    for (std::size_t count = 0; count < maxLines; ++count) {
        if (!lines_->Next(line)) return false;
        ++lineNumber_;
        DealWith(line);
    }
    return true;
}

void CsvImport::DealWith(std::string_view line) {
    if (line.empty()) return;
    ++counts_.lines;
    if (!MakeRecord(line)) {
        ++counts_.doubtfulDates;
        Note(lineNumber_, ImportNoteKind::DoubtfulDate, TextOf(record_.expiryDate));
    }
    if (!contracts_.Resolve(record_)) ++counts_.unknownContracts;
    if (SkippedAsDuplicate(lineNumber_)) return;
    const std::string_view client = TextOf(record_.clientID);
    if (plan_.ForcesClient() || hostClients_.Holds(client) || ports_.manualClients.Holds(client)) {
        Enter();
    } else {
        HoldBack(line);
    }
}

// False: its expiry date is doubtful.
bool CsvImport::MakeRecord(std::string_view line) {
    SplitCells(line, cells_, plan_.CellsNeeded());
    return plan_.Fill(cells_, record_);
}

bool CsvImport::SkippedAsDuplicate(std::uint64_t number) {
    if (!ports_.book.Holds(record_)) return false;
    ++counts_.duplicates;
    const std::string_view tradeID = TextOf(record_.exchangeTradeID);
    ports_.user.Notice(std::string("Dravel Duplicate TRADEID :").append(tradeID));
    Note(number, ImportNoteKind::Duplicate, tradeID);
    return true;
}

void CsvImport::Enter() {
    ports_.book.Add(record_);
    ++counts_.imported;
}

void CsvImport::HoldBack(std::string_view line) {
    const std::string_view client = TextOf(record_.clientID);
    ++counts_.heldBack;
    if (!unknownClients_.contains(client)) unknownClients_.emplace(client);
    held_.push_back({lineNumber_, heldText_.size(), line.size()});
    heldText_ += line;
}

void CsvImport::EndOfFile() {
    counts_.readFailed = lines_->Failed();
    lines_.reset();
    file_.reset();
    stage_ = held_.empty() ? Stage::Done : Stage::Accepting;
    if (!held_.empty() && !UserAccepts()) DropHeldLines();
}

bool CsvImport::UserAccepts() {
    std::string question = "ClientID Not Found : ";
    for (const std::string& client : unknownClients_)
        question.append(client).append(", ");
    question.resize(question.rfind(','));
    question += ".\nAre you sure you want to add manual client & import dravels?";
    counts_.asked = true;
    return ports_.user.Box(question, kQuestionTitle, Buttons::OkCancel, Icon::Question) == kAnswerOk;
}

void CsvImport::AcceptLines(std::size_t maxLines) {
    const Batch batch(ports_.book);
    for (std::size_t count = 0; count < maxLines && accepted_ < held_.size(); ++count)
        Accept(held_[accepted_++]);
    if (accepted_ < held_.size()) return;
    ports_.manualClients.Save();
    stage_ = Stage::Done;
}

void CsvImport::Accept(const HeldLine& held) {
    MakeRecord(std::string_view(heldText_).substr(held.start, held.length));
    contracts_.Resolve(record_);
    // An earlier held-back line, or the terminal, may have brought the same trade meanwhile.
    if (SkippedAsDuplicate(held.number)) return;
    const std::string client(TextOf(record_.clientID));
    if (record_.userID[0] == '\0') SetText(record_.userID, client);
    if (record_.managerID[0] == '\0') SetText(record_.managerID, client);
    Enter();
    ports_.manualClients.Add(client);
}

// Ends the run; the lines still held back are listed with the client that nobody knows.
void CsvImport::DropHeldLines() {
    counts_.cancelled = cancelWanted_;
    counts_.dropped = held_.size() - accepted_;
    for (std::size_t i = accepted_; i < held_.size() && notes_.size() < kMaxNotes; ++i) {
        MakeRecord(std::string_view(heldText_).substr(held_[i].start, held_[i].length));
        Note(held_[i].number, ImportNoteKind::UnknownClient, TextOf(record_.clientID));
    }
    if (accepted_ > 0) ports_.manualClients.Save();
    lines_.reset();
    file_.reset();
    stage_ = Stage::Done;
}

bool CsvImport::Finish() {
    if (stage_ == Stage::Idle) return false;
    if (stage_ != Stage::Done) {
        Cancel();
        Step(0);
    }
    if (ports_.host.Listens()) {
        CTagMessageWriter frame(msg::ImportFinished);
        frame.Append64(tag::Entry, ports_.host.MessageEntry());
        ports_.host.Send(frame);
    }
    stage_ = Stage::Idle;
    const bool imported = counts_.imported > 0;
    if (imported && !counts_.cancelled) Tell("File Imported Successfully", Icon::Information);
    return imported;
}

bool CsvImport::Run(const std::filesystem::path& path, const std::function<void()>& between) {
    if (!Begin(path)) return false;
    while (Step(kRunSlice)) {
        if (between) between();
    }
    return Finish();
}

ImportProgress CsvImport::Progress() const {
    const bool reading = lines_ != nullptr;
    return {reading ? lines_->Position() : fileSize_, fileSize_, counts_.lines};
}

void CsvImport::Note(std::uint64_t line, ImportNoteKind kind, std::string_view text) {
    if (notes_.size() < kMaxNotes) notes_.push_back({line, kind, std::string(text)});
}

}  // namespace Dravel
