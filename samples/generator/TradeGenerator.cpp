// Makes orders and their trades, and the files to import.
#include "generator/TradeGenerator.h"

#include <algorithm>
#include <vector>

#include "formatset/DateFormat.h"
#include "generator/Universe.h"
#include "records/CodeTables.h"
#include "records/RecordText.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {
namespace {

constexpr std::int64_t kFirstSession = 1771232400;  // Monday 2026-02-16 09:00:00
constexpr std::int64_t kSessionMilliseconds = 390 * 60 * 1000;

// A moment counted in session time; sessions are on weekdays.
CivilTime MomentOf(std::int64_t milliseconds) {
    const std::int64_t session = milliseconds / kSessionMilliseconds;
    const std::int64_t within = milliseconds % kSessionMilliseconds;
    const std::int64_t day = session / 5 * 7 + session % 5;
    CivilTime time = CivilFromTime(kFirstSession + day * 86400 + within / 1000);
    time.millisecond = static_cast<std::int32_t>(within % 1000);
    return time;
}

std::string Digits(std::uint64_t value, std::size_t digits) {
    std::string text = std::to_string(value);
    return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

std::string TimeText(std::int64_t milliseconds, bool withMilliseconds) {
    const CivilTime time = MomentOf(milliseconds);
    const auto two = [](std::int32_t value) { return Digits(static_cast<std::uint64_t>(value), 2); };
    const std::string clock = two(time.hour) + ":" + two(time.minute) + ":" + two(time.second);
    if (!withMilliseconds)
        return two(time.day) + "/" + two(time.month) + "/" + std::to_string(time.year) + " " + clock;
    return std::to_string(time.year) + two(time.month) + two(time.day) + "-" + clock + "." +
           Digits(static_cast<std::uint64_t>(time.millisecond), 3);
}

constexpr std::string_view kDesks[] = {
    "", "", "", "spread leg", "roll to next month", "hedge of cash book", "client call", "desk 4"};

}  // namespace

std::uint64_t SampleRandom::Next() {
    // splitmix64: every seed gives a good sequence.
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

void TradeGenerator::Advance() {
    milliseconds_ += random_.Below(30);
}

void TradeGenerator::NewOrder() {
    const auto& contracts = Sample::Contracts();
    do {
        contract_ = random_.Below(static_cast<std::uint32_t>(contracts.size()));
    } while (!contracts[contract_].traded);
    order_ = {};
    FillContract(order_);
    const std::string client =
        Sample::Clients()[random_.Below(static_cast<std::uint32_t>(Sample::Clients().size()))];
    const std::string dealer = "DLR" + Digits(1 + random_.Below(8), 2);
    ++orders_;
    order_.orderID = static_cast<std::uint32_t>(500000 + orders_);
    SetText(order_.userID, dealer);
    SetText(order_.managerID, "MGR" + Digits(1 + random_.Below(3), 2));
    SetText(order_.orderTime, TimeText(milliseconds_, false));
    Advance();
    SetText(order_.exchangeOrderTime, TimeText(milliseconds_, false));
    SetText(order_.exchangeOrderNo, "11" + Digits(orders_, 14));
    SetText(order_.clientID, client);
    SetText(order_.memberID, "M" + client.substr(0, 3));
    SetText(order_.ctclID, "4000" + Digits(random_.Below(20), 4) + "0000");
    SetText(order_.referenceText, kDesks[random_.Below(static_cast<std::uint32_t>(std::size(kDesks)))]);
    SetText(order_.terminalInfo, Digits(random_.Next() % 1000000000000000u, 15));
    SetText(order_.pan, "ABCPX" + Digits(1000 + random_.Below(9000), 4) + "K");
    order_.side = random_.OneIn(2) ? side::Buy : side::Sell;
    order_.orderType = OrderTypeFromText(random_.OneIn(5) ? "Market" : "Limit");
    order_.openClose = OpenCloseFromText(random_.OneIn(3) ? "Close" : "Open");
    order_.productType = random_.OneIn(6) ? product::Intraday : product::Normal;
    fillsLeft_ = 1 + random_.Below(4);
}

void TradeGenerator::FillContract(TradeRecord& record) const {
    TakeContract(record, Sample::Contracts()[contract_].entry);
    record.security = nullptr;
}

void TradeGenerator::Fill(TradeRecord& record) {
    Advance();
    if (fillsLeft_ == 0) NewOrder();
    --fillsLeft_;
    ++trades_;
    record = order_;
    const Sample::Contract& contract = Sample::Contracts()[contract_];
    SetText(record.exchangeTradeID, "7" + Digits(trades_, 9));
    SetText(record.exchangeTradeTime, TimeText(milliseconds_, true));
    record.quantity = contract.lot * (1 + random_.Below(20));
    record.pendingQuantity = fillsLeft_ * contract.lot;
    const std::int64_t ticks = contract.price / contract.tick;
    const std::int64_t swing = std::min<std::int64_t>(std::max<std::int64_t>(ticks / 50, 2), 1 << 20);
    const std::int64_t moved = ticks - swing + random_.Below(static_cast<std::uint32_t>(2 * swing + 1));
    record.price = static_cast<double>(std::max<std::int64_t>(moved, 1) * contract.tick) / 100;
}

std::string TradeGenerator::CsvHeader() {
    std::string header;
    for (const TradeColumn& column : kTradeColumns)
        header.append(header.empty() ? "" : ",").append(column.importKey);
    return header;
}

void TradeGenerator::AppendCsvLine(const TradeRecord& record, std::string& text) {
    for (int index = 0; index < column::Count; ++index) {
        if (index > 0) text += ',';
        switch (index) {
            case column::VELTTradeID:
            case column::VELTOrderID:
                break;  // given by the book
            case column::TerminalInfo:
                text += TextOf(record.terminalInfo);
                break;
            case column::Pancard:
                text += TextOf(record.pan);
                break;
            default:
                kTradeColumns[static_cast<std::size_t>(index)].append(record, text);
        }
    }
}

std::string TradeGenerator::CsvLine(const TradeRecord& record) {
    std::string line;
    AppendCsvLine(record, line);
    return line;
}

namespace {

class SampleWriter {
 public:
    SampleWriter(const SampleFile& file, const std::function<void(std::string_view)>& write)
        : file_(file), write_(write), trades_(file.seed), random_(~file.seed) {}

    void Run() {
        if (file_.header) write_(TradeGenerator::CsvHeader() + "\r\n");
        std::uint64_t trades = file_.trades, duplicates = file_.duplicates, unknown = file_.unknownLines;
        if (trades == 0) duplicates = 0;  // nothing to repeat
        while (trades + duplicates + unknown > 0) {
            const std::uint64_t pick = random_.Next() % (trades + duplicates + unknown);
            if (pick < unknown) {
                --unknown;
                Unknown();
            } else if (pick < unknown + duplicates && !earlier_.empty()) {
                --duplicates;
                write_(earlier_[random_.Below(static_cast<std::uint32_t>(earlier_.size()))]);
            } else if (trades > 0) {
                --trades;
                Known();
            }
        }
    }

 private:
    void Known() {
        trades_.Fill(record_);
        const std::string line = TradeGenerator::CsvLine(record_) + "\r\n";
        write_(line);
        if (earlier_.size() < 1000) {
            earlier_.push_back(line);
        } else {
            earlier_[random_.Below(1000)] = line;
        }
    }
    void Unknown() {
        trades_.Fill(record_);
        SetText(record_.clientID, "NEW" + Digits(1 + random_.Below(std::max(file_.unknownClients, 1u)), 4));
        write_(TradeGenerator::CsvLine(record_) + "\r\n");
    }

    const SampleFile& file_;
    const std::function<void(std::string_view)>& write_;
    TradeGenerator trades_;
    SampleRandom random_;
    TradeRecord record_{};
    std::vector<std::string> earlier_;
};

}  // namespace

void WriteSampleFile(const SampleFile& file, const std::function<void(std::string_view)>& write) {
    SampleWriter(file, write).Run();
}

}  // namespace Dravel
