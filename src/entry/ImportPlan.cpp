// Matches headers, lays out the defaults, and fills records.
#include "entry/ImportPlan.h"

#include <algorithm>

#include "formatset/CsvLine.h"
#include "formatset/DateFormat.h"
#include "formatset/NumberText.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

static_assert(kMappedColumns == column::Count && kMappedExpiryDate == column::ExpiryDate);

namespace {

// The identifiers that the book gives are never read from a file; the other two keep nothing.
constexpr bool IsRead(std::size_t index) {
    return index != column::Server && index != column::VELTTradeID && index != column::VELTOrderID &&
           index != column::Multiplier;
}

constexpr std::size_t kExpiriesRemembered = 4096;

bool (*ReaderOf(CellType type))(std::string_view) {
    if (type == CellType::Integer) return IsUnsigned;
    return type == CellType::Double ? IsDouble : nullptr;
}

void AddDoubt(Doubts& doubts, std::uint8_t column) {
    if (column == column::ExpiryDate) {
        doubts.bits |= doubt::ExpiryDate;
        return;
    }
    if ((doubts.bits & doubt::Number) == 0 || column < doubts.column) doubts.column = column;
    doubts.bits |= doubt::Number;
}

}  // namespace

ImportPlan::ImportPlan(const ImportMapping& mapping, const IClock& clock)
    : mapping_(mapping), clock_(clock) {}

bool ImportPlan::ForcesClient() const {
    return !mapping_.columns[column::ClientID].starred.empty();
}

bool ImportPlan::UseHeader(std::string_view firstLine) {
    const bool byKeys = !mapping_.NamesFields();
    const std::string& clientField = mapping_.columns[column::ClientID].field;
    if (!byKeys && (clientField.empty() || firstLine.find(clientField) == std::string_view::npos))
        return false;
    std::array<std::int32_t, kMappedColumns> cells;
    cells.fill(-1);
    SplitCells(firstLine, headerCells_);
    for (std::size_t cell = 0; cell < headerCells_.size(); ++cell) {
        const std::string_view name = Trimmed(headerCells_[cell]);
        if (name.empty()) continue;
        for (std::size_t index = 0; index < kMappedColumns; ++index) {
            const std::string_view wanted =
                byKeys ? std::string_view(kTradeColumns[index].importKey) : mapping_.columns[index].field;
            if (name == wanted) cells[index] = static_cast<std::int32_t>(cell);
        }
    }
    Prepare(cells);
    return true;
}

void ImportPlan::UseNumbers() {
    std::array<std::int32_t, kMappedColumns> cells;
    cells.fill(-1);
    for (std::size_t index = 0; index < kMappedColumns; ++index) {
        const std::string& field = mapping_.columns[index].field;
        if (!field.empty()) cells[index] = ReadInteger(field);
    }
    Prepare(cells);
}

void ImportPlan::Prepare(const std::array<std::int32_t, kMappedColumns>& cells) {
    for (std::size_t index = 0; index < kMappedColumns; ++index) {
        if (!IsRead(index)) continue;
        const MappedColumn& mapped = mapping_.columns[index];
        const std::string& fallback = mapped.starred.empty() ? mapped.plainDefault : mapped.starred;
        Field field{0, kTradeColumns[index].put, ReaderOf(kTradeColumns[index].type),
                    static_cast<std::uint8_t>(index), false};
        if (!fallback.empty()) field.doubtfulDefault = !PutText(field, defaults_, Trimmed(fallback));
        if (mapped.starred.empty() && cells[index] >= 0) {
            field.cell = static_cast<std::size_t>(cells[index]);
            fields_.push_back(field);
            cellsNeeded_ = std::max(cellsNeeded_, field.cell + 1);
        } else if (field.doubtfulDefault) {
            AddDoubt(defaultDoubts_, field.column);
        }
    }
}

Doubts ImportPlan::Fill(const std::vector<std::string_view>& cells, TradeRecord& record) {
    record = defaults_;
    Doubts doubts = defaultDoubts_;
    for (const Field& field : fields_) {
        const std::string_view text =
            field.cell < cells.size() ? Trimmed(cells[field.cell]) : std::string_view();
        const bool sound = text.empty() ? !field.doubtfulDefault : PutText(field, record, text);
        if (!sound) AddDoubt(doubts, field.column);
    }
    return doubts;
}

// False: the text is doubtful.
bool ImportPlan::PutText(const Field& field, TradeRecord& record, std::string_view text) {
    if (field.column == column::ExpiryDate) return PutExpiry(record, text);
    field.put(record, text);
    return field.reads == nullptr || field.reads(text);
}

// A file has few expiries and many lines: each is converted once.
bool ImportPlan::PutExpiry(TradeRecord& record, std::string_view text) {
    const auto put = kTradeColumns[column::ExpiryDate].put;
    if (mapping_.expiryPattern.empty()) {
        put(record, text);
        return true;
    }
    auto found = expiries_.find(text);
    if (found == expiries_.end()) {
        if (expiries_.size() >= kExpiriesRemembered) expiries_.clear();
        // 0: no date under this pattern; -1: a date that cannot be.
        const auto time = static_cast<std::int64_t>(ParseDate(text, mapping_.expiryPattern));
        const bool sound = time != 0 && time != -1;
        found = expiries_.emplace(text, sound ? FormatDate(time, "ddMMMyyyy", clock_) : std::string()).first;
    }
    put(record, found->second.empty() ? text : std::string_view(found->second));
    return !found->second.empty();
}

}  // namespace Dravel
