// What the texts of the filter bar hide, rule by rule.
#include "tradebook/TradeFilter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "formatset/LetterCase.h"
#include "records/RecordText.h"
#include "support/BookRig.h"
#include "tradebook/CellReader.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {
namespace {

struct FilterCase {
    int column;
    std::string cell;
    std::string filter;
    bool passes;
};

TEST(TradeFilterTest, EachRuleLetsPassWhatItSays) {
    const std::string zero("a\0b", 3);
    const FilterCase cases[] = {
        // Words
        {column::Side, "Buy", "buy", true},
        {column::Side, "Sell", "buy", false},
        {column::Side, "Sell", "BUY Or SELL", true},
        {column::Side, "Buy", "buy or", true},
        {column::Side, "Sell", "buy or", false},
        {column::Side, "Sell", "buy or \t", false},
        {column::Symbol, "DABUR", "ord", true},
        {column::Symbol, "NIFTY", "ord", false},
        {column::Symbol, "NIFTY", "or", false},
        {column::Symbol, "", "or", false},
        {column::Symbol, "NIFTY", "oror", false},
        {column::Symbol, "NIFTY", " nif ", true},
        {column::Symbol, "A B", "a b", true},
        {column::Symbol, "AB", "a b", false},
        {column::Symbol, "FORD", "ford", true},
        {column::Symbol, "FUND", "ford", true},
        {column::Symbol, "NIFTY", "", true},
        {column::Symbol, "NIFTY", "   ", true},
        {column::Symbol, "NIFTY", "<all>", true},
        {column::Symbol, "NIFTY", "<ALL>", false},
        {column::Symbol, "NIFTY", "NIFTYX", false},
        {column::Symbol, "NIFTY", zero, false},
        {column::Symbol, "\xC9T\xC9", "\xE9t", false},
        {column::ProductType, "INTRADAY", "tra", true},
        {column::Server, "", "dravel", true},
        {column::UserID, "[{", "{", true},
        {column::UserID, "[", "{", false},
        // Numbers
        {column::Quantity, "99", "<100", true},
        {column::Quantity, "100", "<100", false},
        {column::Quantity, "100", "100", true},
        {column::Quantity, "101", "100", false},
        {column::Quantity, "101", ">100", true},
        {column::Quantity, "100", ">100", false},
        {column::Quantity, "100", "=100", true},
        {column::Quantity, "100", " > = < 101", true},
        {column::Quantity, "99", "100<", true},
        {column::Quantity, "7", " <>= ", true},
        {column::Quantity, "7", "", true},
        {column::Quantity, "0", "abc", true},
        {column::Quantity, "7", "abc", false},
        {column::Quantity, "0", "-5", true},
        {column::Quantity, "12", "12abc", true},
        {column::Quantity, "4294967295", ">4294967294", true},
        {column::Quantity, "4294967295", "<99999999999999999999999", true},
        {column::Quantity, "7", ">99999999999999999999999", false},
        {column::Quantity, "7", "<all>", true},
        {column::Price, "5.5", ">0", false},
        {column::Price, "5.5", "<1", true},
        {column::StrikePrice, "100", "0", true},
        {column::ExchangeOrderNo, "123", "123", false},
        {column::ExchangeTradeID, "123", "=0", true},
        // All others: the whole text, letter case aside
        {column::OptionType, "CE", "c", true},
        {column::OptionType, "CE", "pe or ce", false},
        {column::ManagerID, "ADMIN or so", "min OR", true},
        {column::ManagerID, "ADMIN", " min", false},
        {column::OpenClose, "CloseToday", "today", true},
    };
    for (const FilterCase& one : cases) {
        TradeRecord record{};
        kTradeColumns[static_cast<std::size_t>(one.column)].put(record, one.cell);
        EXPECT_EQ(ColumnFilter(one.column, one.filter).Passes(record), one.passes)
            << "column " << one.column << " cell '" << one.cell << "' filter '" << one.filter << "'";
    }
    EXPECT_TRUE(ColumnFilter(-1, "x").Passes({}));
    EXPECT_TRUE(ColumnFilter(column::Count, "x").Passes({}));
}

TEST(TradeFilterTest, LowerCaseTouchesTheLettersOnly) {
    std::string all, expected;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
        expected += static_cast<char>(byte >= 'A' && byte <= 'Z' ? byte + 32 : byte);
    }
    for (std::size_t shift = 0; shift < 8; ++shift) {
        std::string text = all.substr(shift);
        LowerCase(text);
        EXPECT_EQ(text, expected.substr(shift));
    }
}

// The packed cells are read past the column table; they must be the same, whatever the record holds.
TEST(CellReaderTest, ReadsWhatTheColumnTableShows) {
    SecurityMasterEntry entry{};
    SetText(entry.exchange, std::string(48, 'E'));
    SetText(entry.symbol, "NIFTY");
    SetText(entry.optionType, "a\tB");
    entry.strikePrice = 12.5;
    entry.expiryTime = 1767225600;
    SecurityMasterEntry other = entry;
    other.expiryTime = 0;
    SetText(other.expiryText, "Soon");
    std::vector<CellReader> readers;
    for (int column = 0; column < column::Count; ++column)
        readers.emplace_back(column);
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        TradeRecord record = Dravel::Test::RandomTrade(seed);
        if (seed % 3 != 0) record.security = seed % 3 == 1 ? &entry : &other;
        for (int column = 0; column < column::Count; ++column) {
            CellReader& reader = readers[static_cast<std::size_t>(column)];
            std::string expected;
            CellText(record, column, expected);
            LowerCase(expected);
            reader.Fetch(record);
            const std::string_view cell = reader.Read(record);
            ASSERT_EQ(cell, expected) << "column " << column << " seed " << seed;
            for (std::size_t i = cell.size(); i < reader.Width(); ++i)
                ASSERT_EQ(cell.data()[i], 0) << "column " << column << " seed " << seed;
        }
    }
}

}  // namespace
}  // namespace Dravel
