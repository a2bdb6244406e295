// Ten thousand random files under random mappings against a slow reader that follows the rules of the import
// word by word: the same trades, the same lines left out for the same reasons, the same boxes.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>

#include "formatset/DateFormat.h"
#include "generator/TradeGenerator.h"
#include "records/CodeTables.h"
#include "records/RecordText.h"
#include "support/ImportRig.h"
#include "tradebook/TradeBook.h"

namespace Dravel {
namespace {

using Test::FakeClock;
using Test::FakeHost;
using Test::FakeUser;
using Test::FaultFiles;
using Test::FileBytes;
using Test::Strings;

#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t kFiles = 1000;  // they are slow there
#else
constexpr std::size_t kFiles = 10000;
#endif

// A file, how it is to be read, and what the user does.
struct Case {
    std::string file;
    ImportMapping mapping;
    bool accepts = true;
    std::optional<std::size_t> cancelAfter;  // lines
};

struct Result {
    std::vector<TradeRecord> trades;  // in the order of their identifiers
    Strings listed;                   // "line reason"
    Strings boxes, notices;
    std::string saved;
    std::set<std::string, std::less<>> manual;
    std::uint64_t lines = 0, imported = 0;
    std::size_t finished = 0;
};

std::string Trim(std::string text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.pop_back();
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.erase(0, 1);
    return text;
}

Strings Cells(const std::string& line) {
    Strings cells;
    if (line.empty()) return cells;
    cells.emplace_back();
    for (const char c : line) {
        if (c == ',') {
            cells.emplace_back();
        } else {
            cells.back() += c;
        }
    }
    return cells;
}

template <std::size_t N>
void Put(char (&field)[N], const std::string& text) {
    const std::string cut = std::string(text.c_str()).substr(0, N);
    std::fill(std::begin(field), std::end(field), '\0');
    std::copy(cut.begin(), cut.end(), field);
}

// The leading number of a text; `whole`: nothing else is in it.
std::string LeadingNumber(const std::string& text, bool fraction, bool& whole) {
    std::size_t at = 0, first = 0;
    const auto digits = [&] {
        const std::size_t from = at;
        while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])))
            ++at;
        return at - from;
    };
    while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at])))
        ++at;
    first = at;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    std::size_t count = digits();
    if (fraction && at < text.size() && text[at] == '.') {
        ++at;
        count += digits();
    }
    whole = false;
    if (count == 0) return "0";
    std::size_t end = at;
    if (fraction && at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
        if (digits() != 0) end = at;
    }
    whole = end == text.size();
    return text.substr(first, end - first);
}

bool Integer(const std::string& text, std::uint32_t& value) {
    bool whole = false;
    const double number = std::strtod(LeadingNumber(text, false, whole).c_str(), nullptr);
    const bool minus = text.find('-') != std::string::npos;
    const bool fits = number >= 0 && number <= 4294967295.0;
    value = fits ? static_cast<std::uint32_t>(number) : 0;
    return whole && fits && !minus;
}

bool Double(const std::string& text, double& value) {
    bool whole = false;
    const std::string number = LeadingNumber(text, true, whole);
    value = std::strtod(number.c_str(), nullptr);
    const bool lost =
        std::isinf(value) || (value == 0 && number.find_first_of("123456789") < number.find('e'));
    if (lost) value = 0;
    return whole && !lost;
}

class PlainReader {
 public:
    PlainReader(const Case& given, FakeHost& host, const IClock& clock, std::vector<TradeRecord> inBook)
        : case_(given), map_(given.mapping), host_(host), clock_(clock) {
        result_.trades = std::move(inBook);
        for (const TradeRecord& trade : result_.trades)
            holders_.emplace(KeyOf(trade), +trade.veltTradeID);
    }

    Result Read() {
        SplitLines();
        if (!Match()) {
            result_.boxes.push_back("Dravel Import |Please Select Proper File");
            return result_;
        }
        for (std::size_t at = map_.header ? 1 : 0; at < raw_.size(); ++at) {
            ++result_.lines;
            if (case_.cancelAfter && result_.lines > *case_.cancelAfter) {
                LeaveOut(at, "not read, import cancelled");
            } else {
                ReadLine(at);
            }
        }
        AskAboutClients();
        result_.finished = 1;
        if (result_.imported > 0 && !case_.cancelAfter)
            result_.boxes.push_back("Dravel Import |File Imported Successfully");
        if (map_.header && !raw_.empty()) result_.saved = raw_[0];
        for (const auto& [at, reason] : reasons_) {
            result_.listed.push_back(std::to_string(at + 1) + " " + reason);
            if (!reason.starts_with("imported")) result_.saved += raw_[at];
        }
        return result_;
    }

 private:
    void SplitLines() {
        for (const char c : case_.file) {
            if (raw_.empty() || raw_.back().ends_with('\n')) raw_.emplace_back();
            raw_.back() += c;
        }
        for (std::size_t at = 0; at < raw_.size(); ++at) {
            std::string line = raw_[at];
            if (line.ends_with('\n')) line.pop_back();
            if (line.ends_with('\r')) line.pop_back();
            if (at == 0 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
            lines_.push_back(line);
        }
    }

    bool Match() {
        std::fill(std::begin(index_), std::end(index_), -1);
        bool empty = true;
        for (const MappedColumn& column : map_.columns)
            empty = empty && column.field.empty();
        if (!map_.header) {
            for (std::size_t i = 0; i < kMappedColumns; ++i) {
                if (!map_.columns[i].field.empty()) index_[i] = std::atoi(map_.columns[i].field.c_str());
            }
            return true;
        }
        const std::string first = lines_.empty() ? std::string() : lines_[0];
        const std::string client = map_.columns[column::ClientID].field;
        if (!empty && (client.empty() || first.find(client) == std::string::npos)) return false;
        header_ = Cells(first);
        for (std::size_t cell = 0; cell < header_.size(); ++cell) {
            for (std::size_t i = 0; i < kMappedColumns; ++i) {
                const std::string name = empty ? kTradeColumns[i].importKey : map_.columns[i].field;
                if (!name.empty() && Trim(header_[cell]) == name) index_[i] = static_cast<int>(cell);
            }
        }
        return true;
    }

    // The text that counts for a field.
    std::string Chosen(int field) const {
        const auto at = static_cast<std::size_t>(field);
        const MappedColumn& column = map_.columns[at];
        if (!column.starred.empty()) return Trim(column.starred);
        std::string text;
        if (index_[at] >= 0 && static_cast<std::size_t>(index_[at]) < cells_.size())
            text = Trim(cells_[static_cast<std::size_t>(index_[at])]);
        return text.empty() ? Trim(column.plainDefault) : text;
    }

    void Number(int field, bool sound) {
        if (!sound && !Chosen(field).empty() && badNumber_.empty())
            badNumber_ = kTradeColumns[static_cast<std::size_t>(field)].header;
    }
    template <class Field>
    void Count(int field, Field put) {
        std::uint32_t value = 0;
        Number(field, Integer(Chosen(field), value));
        put(value);
    }

    TradeRecord Fill() {
        TradeRecord r{};
        badNumber_.clear();
        Put(r.userID, Chosen(1));
        Count(4, [&](std::uint32_t value) { r.orderID = value; });
        Put(r.exchangeOrderNo, Chosen(5));
        Put(r.exchangeTradeID, Chosen(6));
        Put(r.orderTime, Chosen(7));
        Put(r.exchangeOrderTime, Chosen(8));
        Put(r.exchangeTradeTime, Chosen(9));
        Put(r.exchange, Chosen(10));
        Put(r.securityType, Chosen(11));
        Put(r.symbol, Chosen(12));
        Put(r.expiryDate, Expiry());
        Put(r.optionType, Chosen(14));
        double number = 0;
        Number(15, Double(Chosen(15), number));
        r.strikePrice = number;
        Put(r.clientID, Chosen(16));
        if (!Chosen(17).empty()) r.side = SideFromText(Chosen(17));
        Count(18, [&](std::uint32_t value) { r.quantity = value; });
        Number(19, Double(Chosen(19), number));
        r.price = number;
        Put(r.securityID, Chosen(20));
        if (!Chosen(21).empty()) r.orderType = OrderTypeFromText(Chosen(21));
        Count(22, [&](std::uint32_t value) { r.pendingQuantity = value; });
        Put(r.referenceText, Chosen(23));
        Put(r.managerID, Chosen(24));
        Put(r.memberID, Chosen(25));
        Put(r.ctclID, Chosen(26));
        if (!Chosen(27).empty()) r.productType = ProductTypeFromText(Chosen(27));
        if (!Chosen(28).empty()) r.openClose = OpenCloseFromText(Chosen(28));
        Put(r.terminalInfo, Chosen(30));
        Put(r.pan, Chosen(31));
        return r;
    }

    std::string Expiry() {
        const std::string text = Chosen(13);
        badDate_ = false;
        if (map_.expiryPattern.empty() || text.empty()) return text;
        const auto time = static_cast<std::int64_t>(ParseDate(text, map_.expiryPattern));
        badDate_ = time == 0 || time == -1;
        return badDate_ ? text : FormatDate(time, "ddMMMyyyy", clock_);
    }

    bool TakeContract(TradeRecord& r) {
        const auto text = [](const auto& field) { return std::string(TextOf(field)); };
        Strings texts{text(r.exchange), text(r.securityType), text(r.symbol), text(r.expiryDate)};
        const bool option = texts[1].find("OPT") != std::string::npos;
        if (option) {
            texts.push_back(text(r.optionType));
            AppendShortest(texts.emplace_back(), r.strikePrice);
        }
        std::vector<const char*> asked;
        for (const std::string& one : texts)
            asked.push_back(one.c_str());
        const SecurityMasterEntry* const entry =
            host_.Ask(option ? master::OptionContract : master::Contract, asked).entry;
        if (entry == nullptr) return false;
        Put(r.exchange, text(entry->exchange));
        Put(r.securityID, text(entry->securityID));
        Put(r.securityType, text(entry->securityType));
        Put(r.symbol, text(entry->symbol));
        Put(r.expiryDate, text(entry->expiryText));
        Put(r.optionType, text(entry->optionType));
        r.strikePrice = entry->strikePrice;
        r.security = entry;
        return true;
    }

    static std::string KeyOf(const TradeRecord& r) {
        std::string key;
        key.append(TextOf(r.symbol)).append("|").append(TextOf(r.exchangeTradeID)).append("|");
        return key.append(TextOf(r.exchangeOrderNo)).append("|").append(TextOf(r.exchangeTradeTime));
    }

    void LeaveOut(std::size_t at, std::string reason) { reasons_[at] = std::move(reason); }

    // The trade of a line, with its doubts; false: the book has it already.
    bool TradeOf(std::size_t at, TradeRecord& trade) {
        cells_ = Cells(lines_[at]);
        trade = Fill();
        Strings doubts;
        if (!header_.empty() && cells_.size() != header_.size())
            doubts.push_back("another number of cells than the header");
        if (raw_[at].find('"') != std::string::npos) doubts.push_back("a quote in the line");
        if (!badNumber_.empty()) doubts.push_back("a number that does not read (" + badNumber_ + ")");
        if (badDate_) doubts.push_back("an expiry date that does not read");
        if (!TakeContract(trade)) doubts.push_back("contract not found");
        doubts_.clear();
        for (const std::string& one : doubts)
            doubts_ += (doubts_.empty() ? "imported: " : ", ") + one;
        const auto holder = holders_.find(KeyOf(trade));
        if (holder == holders_.end()) return true;
        LeaveOut(at, "duplicate of trade " + std::to_string(holder->second));
        result_.notices.push_back("Dravel Duplicate TRADEID :" + std::string(TextOf(trade.exchangeTradeID)));
        return false;
    }

    void ReadLine(std::size_t at) {
        if (lines_[at].empty()) return LeaveOut(at, "empty line");
        TradeRecord trade;
        if (!TradeOf(at, trade)) return;
        const std::string client(TextOf(trade.clientID));
        const bool known = client == "C1" || client == kLongClient || client == "M1";
        if (known || !map_.columns[column::ClientID].starred.empty()) {
            Take(at, trade);
        } else {
            held_.emplace_back(at, client);
        }
    }

    void Take(std::size_t at, TradeRecord trade) {
        trade.veltTradeID = trade.veltOrderID = static_cast<std::uint32_t>(result_.trades.size() + 1);
        if (trade.orderID == 0) trade.orderID = trade.veltOrderID;
        holders_.emplace(KeyOf(trade), +trade.veltTradeID);
        result_.trades.push_back(trade);
        ++result_.imported;
        if (!doubts_.empty()) LeaveOut(at, doubts_);
    }

    void AskAboutClients() {
        if (held_.empty()) return;
        std::set<std::string> clients;
        for (const auto& held : held_)
            clients.insert(held.second);
        std::string question;
        for (const std::string& client : clients)
            question += (question.empty() ? "Dravel Import|ClientID Not Found : " : ", ") + client;
        if (!case_.cancelAfter)
            result_.boxes.push_back(question +
                                    ".\nAre you sure you want to add manual client & import dravels?");
        for (const auto& [at, client] : held_) {
            TradeRecord trade;
            if (case_.cancelAfter) {
                LeaveOut(at, "client " + client + " unknown, import cancelled");
            } else if (!case_.accepts) {
                LeaveOut(at, "client " + client + " not accepted");
            } else if (TradeOf(at, trade)) {
                if (TextOf(trade.userID).empty()) Put(trade.userID, client);
                if (TextOf(trade.managerID).empty()) Put(trade.managerID, client);
                if (!client.empty()) result_.manual.insert(client);
                Take(at, trade);
            }
        }
    }

 public:
    static constexpr const char* kLongClient = "TWENTY-BYTES-OF-NAME";

 private:
    const Case& case_;
    const ImportMapping& map_;
    FakeHost& host_;
    const IClock& clock_;
    Result result_;
    Strings raw_, lines_, header_, cells_;
    int index_[kMappedColumns];
    std::map<std::string, std::uint32_t> holders_;
    std::map<std::size_t, std::string> reasons_;
    std::vector<std::pair<std::size_t, std::string>> held_;
    std::string badNumber_, doubts_;
    bool badDate_ = false;
};

class Maker {
 public:
    explicit Maker(std::uint64_t seed) : random_(seed) {}

    Case Make() {
        Case made;
        made.accepts = !random_.OneIn(3);
        const bool set = random_.OneIn(2);
        made.mapping.header = !set || !random_.OneIn(3);
        if (random_.OneIn(2)) made.mapping.expiryPattern = Pick(kPatterns);
        if (set) MakeSet(made.mapping);
        const std::uint32_t columns = 1 + random_.Below(12);
        made.file = random_.OneIn(8) ? "\xEF\xBB\xBF" : "";
        if (made.mapping.header) {
            MakeHeader(made.mapping, columns);
            AppendLine(made.file, headerCells_);
        } else {
            for (headerCells_.clear(); headerCells_.size() < columns;)
                headerCells_.push_back(kTradeColumns[AnyColumn()].importKey);
        }
        const std::uint32_t lines = random_.Below(9);
        for (std::uint32_t line = 0; line < lines; ++line)
            MakeLine(made.file);
        if (random_.OneIn(4) && made.file.ends_with('\n')) made.file.pop_back();
        if (random_.OneIn(10) && lines != 0) made.cancelAfter = random_.Below(lines);
        return made;
    }

 private:
    template <std::size_t N>
    std::string Pick(const std::string (&pool)[N]) {
        return pool[random_.Below(N)];
    }
    // The interesting ones more often.
    std::size_t AnyColumn() {
        static constexpr int kLoved[] = {column::ClientID,    column::Symbol,       column::ExchangeTradeID,
                                         column::Quantity,    column::Price,        column::ExpiryDate,
                                         column::StrikePrice, column::SecurityType, column::Exchange};
        return random_.OneIn(2) ? static_cast<std::size_t>(kLoved[random_.Below(9)]) : random_.Below(32);
    }

    void MakeSet(ImportMapping& mapping) {
        for (std::uint32_t i = random_.Below(12); i-- > 0;) {
            MappedColumn& column = mapping.columns[AnyColumn()];
            column.field = mapping.header ? Pick(kNames) : Pick(kNumbersOfColumns);
            if (random_.OneIn(3)) column.plainDefault = AnyText();
            if (random_.OneIn(6)) column.starred = AnyText();
        }
        MappedColumn& client = mapping.columns[column::ClientID];
        if (!random_.OneIn(8)) client.field = mapping.header ? "Account" : Pick(kNumbersOfColumns);
        if (random_.OneIn(8)) mapping.columns[AnyColumn()].plainDefault = AnyText();
    }

    void MakeHeader(const ImportMapping& mapping, std::uint32_t columns) {
        headerCells_.clear();
        const bool names = mapping.NamesFields();
        while (headerCells_.size() < columns) {
            std::string cell = names ? Pick(kNames) : kTradeColumns[AnyColumn()].importKey;
            if (random_.OneIn(10)) cell = Pick(kTexts);
            if (random_.OneIn(6)) cell = " " + cell + "\t";
            headerCells_.push_back(cell);
        }
    }

    std::string AnyText() {
        switch (random_.Below(4)) {
            case 0:
                return Pick(kNumbers);
            case 1:
                return Pick(kDates);
            case 2:
                return Pick(kClients);
            default:
                return Pick(kTexts);
        }
    }

    // Mostly what the header promises.
    std::string CellUnder(const std::string& header) {
        if (random_.OneIn(8)) return AnyText();
        if (header == "clientid" || header == "Account") return Pick(kClients);
        if (header == "expiry date") return Pick(kDates);
        if (header == "quantity" || header == "price" || header == "strikeprice" || header == "Px")
            return Pick(kNumbers);
        return Pick(kTexts);
    }

    void MakeLine(std::string& file) {
        Strings cells;
        const bool odd = random_.OneIn(5);
        const std::size_t count = odd ? random_.Below(14) : headerCells_.size();
        while (cells.size() < count)
            cells.push_back(cells.size() < headerCells_.size() ? CellUnder(headerCells_[cells.size()])
                                                               : AnyText());
        AppendLine(file, cells);
    }

    void AppendLine(std::string& file, const Strings& cells) {
        for (std::size_t i = 0; i < cells.size(); ++i)
            file += (i == 0 ? "" : ",") + cells[i];
        if (random_.OneIn(4)) file += '\r';
        file += '\n';
    }

    const std::string kClients[8] = {
        "C1", "C1", " C1 ", "M1", "X", "Y", PlainReader::kLongClient + std::string("-AND-MORE"), ""};
    const std::string kNumbers[16] = {"0",   "5",  "12x", "-5", "+7",    "4294967295", "4294967296", "1.5",
                                      "1e2", ".5", "abc", " 3", "1e999", "",           "\"5\"",      "2"};
    const std::string kDates[8] = {"26Feb2026",  "26/02/2026", "2026-02-26", "26-2",
                                   "26/02/1969", "",           "99/99/2026", "26FEB2026"};
    const std::string kTexts[16] = {"A",
                                    "B",
                                    "A",
                                    "",
                                    " A",
                                    "A\tB",
                                    "Buy",
                                    "Sell",
                                    "buy",
                                    "XNSE",
                                    "EQ",
                                    "OPT",
                                    "Limit",
                                    "CCE",
                                    std::string("A\0B", 3),
                                    "a text that is longer than any of the fields of a trade can hold"};
    const std::string kPatterns[6] = {"dd/MM/yyyy", "yyyy-MM-dd", "ddMMMyyyy",
                                      "ddMMyy",     "nonsense",   "yyyy/MM/dd"};
    const std::string kNames[8] = {"Account", "Account",     "Scrip",    "Px",
                                   "symbol",  "expiry date", "exchange", "No"};
    const std::string kNumbersOfColumns[8] = {"0", "1", "2", "3", "5", "11", "-1", "abc"};

    SampleRandom random_;
    Strings headerCells_;
};

Result RunOurs(const Case& given, FakeHost& host, const FakeClock& clock,
               const std::vector<TradeRecord>& inBook) {
    FaultFiles disk{clock};
    FakeUser user;
    TradeBook book(host);
    ManualClients manual(disk, host, "set");
    manual.Add("M1");
    manual.Load();
    for (TradeRecord trade : inBook)
        book.Add(trade);
    disk.Put("in.csv", FileBytes(given.file.begin(), given.file.end()));
    if (!given.accepts) user.answers = {kAnswerCancel};
    host.sent.clear();
    CsvImport import({disk, host, user, clock, book, manual}, given.mapping);
    Result ours;
    if (import.Begin("in.csv")) {
        for (std::size_t line = 0; given.cancelAfter && line < *given.cancelAfter; ++line)
            import.Step(1);
        if (given.cancelAfter) import.Cancel();
        while (import.Step(3)) {
        }
        import.Finish();
        const ImportReport& report = import.Report();
        for (const ReportRow& row : report.Rows())
            ours.listed.push_back(std::to_string(row.line) + " " + report.Reason(row));
        if (!report.SaveSkipped(disk, "set/skipped.csv")) ours.saved = "failed";
        const FileBytes& saved = disk.Content("set/skipped.csv");
        ours.saved.append(saved.begin(), saved.end());
        ours.lines = report.Lines();
        ours.imported = report.LinesImported();
        EXPECT_EQ(report.Lines(), report.LinesImported() + report.LinesSkipped());
    }
    for (std::uint32_t row = book.RowCount(); row-- > 0;)
        ours.trades.push_back(book.Row(row));
    ours.boxes = user.boxes;
    ours.notices = user.notices;
    ours.manual = manual.Ids();
    ours.manual.erase("M1");
    ours.finished = host.Sent(msg::ImportFinished).size();
    EXPECT_EQ(host.Sent(msg::TradeReport).size(), host.listens ? ours.imported : 0u);
    return ours;
}

TEST(ImportProperty, EveryFileIsReadAsTheRulesSay) {
    FakeClock clock;
    FakeHost host;
    host.clients = {"C1", PlainReader::kLongClient + std::string("!")};
    host.Know({"XNSE", "EQ", "A", "26Feb2026"});
    host.Know({"XNSE", "EQ", "B", ""});
    host.Know({"", "", "A", "26Feb2026"});
    host.Know({"", "", "B", ""});
    host.Know({"XNSE", "OPT", "A", "26Feb2026", "", "5"});
    std::vector<TradeRecord> inBook;
    {
        TradeBook book(host);
        for (const char* symbol : {"A", "B", "B"}) {
            TradeRecord trade{};
            SetText(trade.symbol, symbol);
            SetText(trade.exchangeTradeID, "A");
            book.Add(trade);
            inBook.push_back(trade);
        }
    }
    std::size_t imported = 0, left = 0, doubtful = 0, refused = 0;
    Maker maker(20240607);
    for (std::size_t round = 0; round < kFiles && !testing::Test::HasFailure(); ++round) {
        const Case made = maker.Make();
        host.listens = round % 8 == 0;
        Result expected = PlainReader(made, host, clock, inBook).Read();
        const Result ours = RunOurs(made, host, clock, inBook);
        if (!host.listens) expected.finished = 0;
        SCOPED_TRACE("file " + std::to_string(round) + ":\n" + made.file);
        EXPECT_EQ(ours.boxes, expected.boxes);
        EXPECT_EQ(ours.listed, expected.listed);
        EXPECT_EQ(ours.notices, expected.notices);
        EXPECT_EQ(ours.saved, expected.saved);
        EXPECT_EQ(ours.manual, expected.manual);
        EXPECT_EQ(ours.lines, expected.lines);
        EXPECT_EQ(ours.finished, expected.finished);
        ASSERT_EQ(ours.trades.size(), expected.trades.size());
        for (std::size_t i = 0; i < ours.trades.size(); ++i)
            EXPECT_EQ(std::memcmp(&ours.trades[i], &expected.trades[i], sizeof(TradeRecord)), 0)
                << i << "\n"
                << TradeGenerator::CsvLine(ours.trades[i]) << "\n"
                << TradeGenerator::CsvLine(expected.trades[i]);
        imported += ours.imported;
        left += ours.lines - ours.imported;
        refused += expected.lines == 0;
        for (const std::string& row : ours.listed)
            doubtful += row.find("imported:") != std::string::npos;
    }
    // It tried what it is to try.
    EXPECT_GT(imported, kFiles / 2);
    EXPECT_GT(left, kFiles / 2);
    EXPECT_GT(doubtful, kFiles / 10);
    EXPECT_GT(refused, kFiles / 30);
}

}  // namespace
}  // namespace Dravel
