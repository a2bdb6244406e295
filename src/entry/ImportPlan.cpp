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
        const bool expiry = index == column::ExpiryDate;
        const std::string& fallback = mapped.starred.empty() ? mapped.plainDefault : mapped.starred;
        if (!fallback.empty()) {
            const std::string_view text = Trimmed(fallback);
            if (expiry) {
                defaultsSound_ = PutExpiry(defaults_, text);
            } else {
                kTradeColumns[index].put(defaults_, text);
            }
        }
        if (!mapped.starred.empty() || cells[index] < 0) continue;
        const auto cell = static_cast<std::size_t>(cells[index]);
        fields_.push_back({cell, kTradeColumns[index].put, expiry});
        cellsNeeded_ = std::max(cellsNeeded_, cell + 1);
    }
}

bool ImportPlan::Fill(const std::vector<std::string_view>& cells, TradeRecord& record) {
    record = defaults_;
    bool sound = defaultsSound_;
    for (const Field& field : fields_) {
        if (field.cell >= cells.size()) continue;
        const std::string_view text = Trimmed(cells[field.cell]);
        if (text.empty()) continue;
        if (field.expiry) {
            sound = PutExpiry(record, text);
        } else {
            field.put(record, text);
        }
    }
    return sound;
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
