#include "entry/CellReading.h"

#include <algorithm>

#include "records/CodeTables.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

bool IsSide(std::string_view text) {
    return SideFromText(text) != 0;
}
bool IsOrderType(std::string_view text) {
    return OrderTypeFromText(text) != 0;
}
bool IsProductType(std::string_view text) {
    return ProductTypeFromText(text) != 0 || text == "CCE" || text == "MME" || text == ProductTypeText(0);
}
bool IsOpenClose(std::string_view text) {
    return OpenCloseFromText(text) != 0 || text == OpenCloseText(0);
}

constexpr struct {
    int column;
    bool (*knows)(std::string_view text);
} kWords[] = {
    {column::Side, IsSide},
    {column::OrderType, IsOrderType},
    {column::ProductType, IsProductType},
    {column::OpenClose, IsOpenClose},
};

// What the field keeps of a text.
CellReading ReadingOfText(const TradeColumn& column, std::string_view text) {
    TradeRecord record{};
    CellReading reading;
    column.put(record, text);
    column.append(record, reading.text);
    if (reading.text != text) reading.how = TextReading::Part;
    return reading;
}

CellReading ReadingOfNumber(NumberKind kind, std::string_view text) {
    CellReading reading;
    reading.how = ReadingOf(kind, text, reading.text);
    return reading;
}

}  // namespace

bool HasCodes(int column) {
    return std::ranges::any_of(kWords, [column](const auto& words) { return words.column == column; });
}

CellReading ReadingOfCell(int index, std::string_view text) {
    const TradeColumn& column = kTradeColumns[static_cast<std::size_t>(index)];
    if (text.empty() || !column.editable) return {};
    for (const auto& words : kWords) {
        if (words.column != index) continue;
        return words.knows(text) ? CellReading{} : CellReading{TextReading::Part, "none"};
    }
    if (column.type == CellType::Integer) return ReadingOfNumber(NumberKind::Unsigned, text);
    if (column.type == CellType::Double) return ReadingOfNumber(NumberKind::Double, text);
    return ReadingOfText(column, text);
}

}  // namespace Dravel
