#include "tradebook/TradeFilter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "formatset/LetterCase.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

enum class Meaning : std::uint8_t { Part, Words, Number };

constexpr std::array<Meaning, column::Count> kMeanings = [] {
    std::array<Meaning, column::Count> meanings{};
    for (const int index : {0, 1, 7, 8, 9, 10, 11, 12, 13, 16, 17, 20, 21, 23, 27})
        meanings[static_cast<std::size_t>(index)] = Meaning::Words;
    for (const int index : {2, 3, 4, 5, 6, 15, 18, 19, 22})
        meanings[static_cast<std::size_t>(index)] = Meaning::Number;
    return meanings;
}();

std::string_view TrimmedPiece(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Leading digits; a number that 64 bits cannot hold is the largest.
std::int64_t LeadingNumber(std::string_view text) {
    if (text.empty() || text.front() < '0' || text.front() > '9') return 0;
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc::result_out_of_range ? std::numeric_limits<std::int64_t>::max() : value;
}

}  // namespace

ColumnFilter::ColumnFilter(int column, std::string_view text) : column_(column), text_(text) {
    if (column < 0 || column >= column::Count || text.empty() || text == kNoFilter) return;
    switch (kMeanings[static_cast<std::size_t>(column)]) {
        case Meaning::Words:
            ReadWords(std::string(text));
            break;
        case Meaning::Number:
            ReadNumber(text);
            break;
        case Meaning::Part:
            rule_ = Rule::Words;
            needles_.emplace_back(text);
            LowerCase(needles_.back());
            break;
    }
}

void ColumnFilter::ReadWords(std::string text) {
    LowerCase(text);
    std::string_view rest = text;
    bool cut = false;
    const auto take = [this](std::string_view piece) {
        if (piece = TrimmedPiece(piece); !piece.empty()) needles_.emplace_back(piece);
    };
    for (std::size_t at = 0; (at = rest.find("or")) != rest.npos; rest.remove_prefix(at + 2)) {
        take(rest.substr(0, at));
        cut = true;
    }
    take(rest);
    if (cut || !needles_.empty()) rule_ = Rule::Words;
}

void ColumnFilter::ReadNumber(std::string_view text) {
    const std::size_t digits = text.find_first_not_of(" <>=");
    if (digits == text.npos) return;
    number_ = LeadingNumber(text.substr(digits));
    const bool below = text.find('<') != text.npos, above = text.find('>') != text.npos;
    rule_ = below ? Rule::Below : above ? Rule::Above : Rule::Equal;
}

bool ColumnFilter::PassesNumber(std::int64_t value) const {
    switch (rule_) {
        case Rule::Below:
            return value < number_;
        case Rule::Above:
            return value > number_;
        case Rule::Equal:
            return value == number_;
        default:
            return true;
    }
}

bool ColumnFilter::CountsAsZero() const {
    return kTradeColumns[static_cast<std::size_t>(column_)].type != CellType::Integer;
}

bool ColumnFilter::Passes(const TradeRecord& record) const {
    if (rule_ == Rule::All) return true;
    if (rule_ != Rule::Words) return PassesNumber(CountsAsZero() ? 0 : CellInteger(record, column_));
    std::string text;
    CellText(record, column_, text);
    LowerCase(text);
    return std::any_of(needles_.begin(), needles_.end(),
                       [&](const std::string& needle) { return text.find(needle) != text.npos; });
}

std::uint32_t CellInteger(const TradeRecord& record, int column) {
    switch (column) {
        case column::VELTTradeID:
            return record.veltTradeID;
        case column::VELTOrderID:
            return record.veltOrderID;
        case column::OrderID:
            return record.orderID;
        case column::Quantity:
            return record.quantity;
        case column::PendingQuantity:
            return record.pendingQuantity;
        default:
            return 0;
    }
}

}  // namespace Dravel
