// The cells of the 32 columns: shown from a record, put back into one.
#include <gtest/gtest.h>

#include <set>

#include "records/RecordText.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {
namespace {

std::string Cell(const TradeRecord& record, int index) {
    std::string text = "emptied first";
    CellText(record, index, text);
    return text;
}

void Put(TradeRecord& record, int index, std::string_view text) {
    kTradeColumns[static_cast<std::size_t>(index)].put(record, text);
}

// What a cell shows after a text was put into it.
TEST(TradeColumns, TextsPutBack) {
    const struct {
        int column;
        const char* put;
        const char* shown;
    } cases[] = {
        {column::Server, "Elsewhere", "Dravel"},
        {column::VELTTradeID, "12", "12"},
        {column::OrderID, "-1", "0"},
        {column::Symbol, "a symbol of more than thirty-two bytes", "a symbol of more than thirty-two"},
        {column::StrikePrice, "24000.50", "24000.5"},
        {column::Side, "Sell", "Sell"},
        {column::Side, "SELL", "Both"},
        {column::Quantity, "4294967295", "4294967295"},
        {column::Price, "0.10", "0.1"},
        {column::OrderType, "StopLimit", "StopLimit"},
        {column::OrderType, "limit", ""},
        {column::ProductType, "INTRADAY", "INTRADAY"},
        {column::ProductType, "CCE", "*"},
        {column::ProductType, "MME", "*"},
        {column::OpenClose, "ForceOff", "ForceOff"},
        {column::OpenClose, "NONE", "NONE"},
        {column::Multiplier, "3", ""},
        {column::TerminalInfo, "", "0"},
        {column::TerminalInfo, "123456", "1"},
        {column::Pancard, "ABCPX1234K", "1"},
    };
    for (const auto& c : cases) {
        TradeRecord record{};
        Put(record, c.column, c.put);
        EXPECT_EQ(Cell(record, c.column), c.shown)
            << kTradeColumns[static_cast<std::size_t>(c.column)].key << c.put;
    }
}

TEST(TradeColumns, TheTerminalsContractCountsWhileItIsKnown) {
    SecurityMasterEntry entry{};
    SetText(entry.symbol, "MASTER");
    SetText(entry.expiryText, "by text");
    entry.strikePrice = 5;
    TradeRecord record{};
    Put(record, column::Symbol, "OWN");
    Put(record, column::ExpiryDate, "own expiry");
    record.security = &entry;
    EXPECT_EQ(
        Cell(record, column::Symbol) + Cell(record, column::ExpiryDate) + Cell(record, column::StrikePrice),
        "MASTERby text5");
    entry.expiryTime = 1772064000 + 43200;  // noon, so that the day is the same in most zones
    EXPECT_EQ(Cell(record, column::ExpiryDate), "26Feb2026");
    EXPECT_EQ(TextOf(record.symbol), "OWN");
    Put(record, column::StrikePrice, "6");
    EXPECT_EQ(
        Cell(record, column::Symbol) + Cell(record, column::ExpiryDate) + Cell(record, column::StrikePrice),
        "OWNown expiry6");
    TakeContract(record, entry);
    EXPECT_EQ(TextOf(record.symbol), "MASTER");
    EXPECT_EQ(TextOf(record.expiryDate), "26Feb2026");
    TradeRecord other{};
    other.quantity = 9;
    CopyContract(other, record);
    EXPECT_EQ(Cell(other, column::Symbol) + Cell(other, column::Quantity), "MASTER9");
    EXPECT_EQ(TextOf(other.expiryDate), "26Feb2026");
}

TEST(TradeColumns, KeysAreUniqueAndTheVisibleOnesAreTen) {
    std::set<std::string> keys, importKeys;
    int visible = 0;
    for (const TradeColumn& column : kTradeColumns) {
        keys.insert(column.key);
        importKeys.insert(column.importKey);
        visible += column.visible;
        EXPECT_EQ(std::string(column.key).substr(0, 3), "col");
    }
    EXPECT_EQ(keys.size(), 32u);
    EXPECT_EQ(importKeys.size(), 32u);
    EXPECT_EQ(visible, 10);
}

}  // namespace
}  // namespace Dravel
