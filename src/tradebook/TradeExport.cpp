#include "tradebook/TradeExport.h"

#include <xmmintrin.h>  // x64, with every compiler

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "formatset/NumberText.h"
#include "records/CodeTables.h"
#include "records/RecordText.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

constexpr std::size_t kBlock = 256 * 1024;  // written at once
constexpr std::size_t kLongestLine = 4096;  // more than all capacities and two numbers of 317 characters
constexpr std::size_t kLongestNumber = sizeof(NumberBuffer);
static_assert(sizeof(TradeRecord) + sizeof(SecurityMasterEntry) + 2 * kLongestNumber + 64 < kLongestLine);

// Each writes its cell at `at`, where there is room for the longest line, and returns the cell's end.
using WriteCell = char* (*)(const TradeRecord& record, char* at);

// Eight bytes at a time, the zero searched in them while they are copied: the texts are short, and two calls
// of the run-time for each cost more than the digits of the numbers.
template <std::size_t Capacity>
char* Copy(const char (&text)[Capacity], char* at) {
    static_assert(std::endian::native == std::endian::little);
    constexpr std::uint64_t kOnes = 0x0101010101010101, kHighs = 0x8080808080808080;
    std::size_t i = 0;
    for (; i + 8 <= Capacity; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, text + i, 8);
        std::memcpy(at + i, &word, 8);
        const std::uint64_t zeros = (word - kOnes) & ~word & kHighs;  // the lowest bit set is exact
        if (zeros != 0) return at + i + std::countr_zero(zeros) / 8;
    }
    for (; i < Capacity && text[i] != 0; ++i)
        at[i] = text[i];
    return at + i;
}

char* Copy(std::string_view text, char* at) {
    std::memcpy(at, text.data(), text.size());
    return at + text.size();
}

template <auto Field>
char* Text(const TradeRecord& record, char* at) {
    return Copy(record.*Field, at);
}

// The terminal's entry counts before the record's own text.
template <auto Own, auto Entry>
char* Contract(const TradeRecord& record, char* at) {
    return record.security != nullptr ? Copy(record.security->*Entry, at) : Copy(record.*Own, at);
}

// The record is packed: its numbers lie at any offset and are copied.
template <std::size_t Offset>
std::uint32_t NumberAt(const TradeRecord& record) {
    std::uint32_t value;
    std::memcpy(&value, reinterpret_cast<const char*>(&record) + Offset, sizeof(value));
    return value;
}

template <std::size_t Offset>
char* Number(const TradeRecord& record, char* at) {
    return std::to_chars(at, at + kLongestNumber, NumberAt<Offset>(record)).ptr;
}

template <auto Field, auto Words>
char* Word(const TradeRecord& record, char* at) {
    return Copy(Words(record.*Field), at);
}

char* Product(const TradeRecord& record, char* at) {
    return Copy(ProductTypeText(NumberAt<offsetof(TradeRecord, productType)>(record)), at);
}

char* Server(const TradeRecord&, char* at) {
    return Copy(kServerName, at);
}

// The terminal's own expiry text; an entry that has only a time gives that.
char* Expiry(const TradeRecord& record, char* at) {
    if (record.security == nullptr) return Copy(record.expiryDate, at);
    if (record.security->expiryText[0] != 0) return Copy(record.security->expiryText, at);
    std::string text;
    AppendExpiry(*record.security, text);
    return Copy(text, at);
}

char* Strike(const TradeRecord& record, char* at) {
    return WriteSixDecimals(record.security != nullptr ? record.security->strikePrice : record.strikePrice,
                            at);
}

// In quotes, so that its commas do no harm. A quote inside it stays as it is.
char* Reference(const TradeRecord& record, char* at) {
    *at++ = '"';
    at = Copy(record.referenceText, at);
    *at++ = '"';
    return at;
}

char* Nothing(const TradeRecord&, char* at) {
    return at;
}

using R = TradeRecord;
using E = SecurityMasterEntry;
constexpr WriteCell kPrice = nullptr;  // needs the divisors

// What a file holds under each column, by its number. Unlike the grid it has whole texts and six decimals.
constexpr WriteCell kCells[] = {
    Server,
    Text<&R::userID>,
    Number<offsetof(R, veltTradeID)>,
    Number<offsetof(R, veltOrderID)>,
    Number<offsetof(R, orderID)>,
    Text<&R::exchangeOrderNo>,
    Text<&R::exchangeTradeID>,
    Text<&R::orderTime>,
    Text<&R::exchangeOrderTime>,
    Text<&R::exchangeTradeTime>,
    Contract<&R::exchange, &E::exchange>,
    Contract<&R::securityType, &E::securityType>,
    Contract<&R::symbol, &E::symbol>,
    Expiry,
    Contract<&R::optionType, &E::optionType>,
    Strike,
    Text<&R::clientID>,
    Word<&R::side, SideText>,
    Number<offsetof(R, quantity)>,
    kPrice,
    Contract<&R::securityID, &E::securityID>,
    Word<&R::orderType, OrderTypeText>,
    Number<offsetof(R, pendingQuantity)>,
    Reference,
    Text<&R::managerID>,
    Text<&R::memberID>,
    Text<&R::ctclID>,
    Product,
    Word<&R::openClose, OpenCloseText>,
    Nothing,  // Multiplier
    Text<&R::terminalInfo>,
    Text<&R::pan>,
};
static_assert(std::size(kCells) == column::Count);

std::vector<int> Selected(const GridColumns& columns, ExportMode mode) {
    const bool all = mode == ExportMode::AllColumns;
    std::vector<int> selected;
    for (int i = 0; i < (all ? columns.Count() : columns.ShownCount()); ++i)
        selected.push_back(all ? i : columns.AtPosition(i));
    std::erase_if(selected, [](int column) { return column >= column::Count; });
    return selected;
}

class Writer {
 public:
    Writer(IFile& file, const std::vector<int>& columns, const PriceDivisors& divisors)
        : file_(file), divisors_(divisors) {
        for (const int column : columns)
            cells_.push_back(kCells[static_cast<std::size_t>(column)]);
    }

    FileStatus Header(const GridColumns& columns, const std::vector<int>& selected) {
        std::string text;
        for (const int column : selected)
            text.append(columns[column].header).append(",");
        if (!text.empty()) text.pop_back();
        return file_.Write(text.data(), text.size());
    }

    FileStatus Line(const TradeRecord& record) {
        char* at = block_.get() + used_;
        *at++ = '\r';
        *at++ = '\n';
        for (const WriteCell cell : cells_) {
            at = cell != kPrice ? cell(record, at) : WriteSixDecimals(divisors_.PriceOf(record), at);
            *at++ = ',';
        }
        used_ = static_cast<std::size_t>(at - block_.get()) - (cells_.empty() ? 0 : 1);
        return used_ < kBlock ? FileStatus{} : Write();
    }

    FileStatus Write() {
        const std::size_t count = std::exchange(used_, 0);
        return count == 0 ? FileStatus{} : file_.Write(block_.get(), count);
    }

 private:
    IFile& file_;
    const PriceDivisors& divisors_;
    std::vector<WriteCell> cells_;  // by place in the line
    std::unique_ptr<char[]> block_ = std::make_unique_for_overwrite<char[]>(kBlock + kLongestLine);
    std::size_t used_ = 0;
};

// Asks for the memory of a record that is written soon: cell by cell it would be waited for a dozen times.
void Fetch(const TradeRecord& record) {
    const char* bytes = reinterpret_cast<const char*>(&record);
    for (std::size_t i = 0; i < sizeof(record); i += 64)
        _mm_prefetch(bytes + i, _MM_HINT_T0);
}

FileStatus Lines(std::span<const TradeRecord* const> trades, Writer& writer) {
    constexpr std::size_t kAhead = 2;
    for (std::size_t i = 0; i < trades.size(); ++i) {
        if (i + kAhead < trades.size()) Fetch(*trades[i + kAhead]);
        if (const FileStatus status = writer.Line(*trades[i]); !status) return status;
    }
    return writer.Write();
}

}  // namespace

std::vector<const TradeRecord*> TradesInOrder(const TradeBook& book) {
    std::vector<const TradeRecord*> trades;
    trades.reserve(book.RowCount());
    for (std::uint32_t row = book.RowCount(); row-- > 0;)
        trades.push_back(&book.Row(row));
    const auto byIdentifier = [](const TradeRecord* a, const TradeRecord* b) {
        return a->veltTradeID < b->veltTradeID;
    };
    // From the bottom row up they mostly stand so already.
    if (!std::is_sorted(trades.begin(), trades.end(), byIdentifier))
        std::sort(trades.begin(), trades.end(), byIdentifier);
    return trades;
}

ExportResult ExportTrades(IFiles& files, const std::filesystem::path& path, const GridColumns& columns,
                          ExportMode mode, std::span<const TradeRecord* const> trades,
                          const PriceDivisors& divisors) {
    std::unique_ptr<IFile> file;
    FileStatus status = files.Open(path, FileMode::Create, FileShare::DenyWrite, file);
    if (!status) return {false, status};
    const std::vector<int> selected = Selected(columns, mode);
    Writer writer(*file, selected, divisors);
    status = writer.Header(columns, selected);
    if (status) status = Lines(trades, writer);
    const FileStatus closed = file->Close();
    if (status) status = closed;
    file.reset();
    if (!status) files.Remove(path);
    return {true, status};
}

}  // namespace Dravel
