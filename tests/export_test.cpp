// The exported file, byte for byte, and what becomes of it on a disk that fails.
#include "tradebook/TradeExport.h"

#include <gtest/gtest.h>

#include "records/CodeTables.h"
#include "records/RecordText.h"
#include "support/FakeClock.h"
#include "support/FakeHost.h"
#include "support/FaultFiles.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace fake = Test;

namespace {

constexpr char kPath[] = "CSV/x.csv";

class ExportTest : public testing::Test {
 protected:
    ExportTest() {
        disk.MakeFolders("CSV");
        for (const TradeColumn& column : kTradeColumns)
            columns.Add({.key = column.key, .header = column.header, .visible = column.visible});
    }
    TradeRecord& Trade(std::uint32_t id) {
        TradeRecord& record = records.emplace_back();
        record.veltTradeID = id;
        return record;
    }
    void Load() {
        book.BeginLoad();
        for (const TradeRecord& record : records)
            book.Load(record, false);
        book.EndLoad();
    }
    ExportResult Export(ExportMode mode) {
        Load();
        return ExportTrades(disk, kPath, columns, mode, TradesInOrder(book), divisors);
    }
    std::string Text() {
        const auto& bytes = disk.Content(kPath);
        return {bytes.begin(), bytes.end()};
    }
    // The cell of a column in the line of the last trade.
    std::string Cell(int column) {
        EXPECT_TRUE(Export(ExportMode::AllColumns).status);
        std::string line = Text().substr(Text().rfind('\n') + 1) + ",";
        for (; column > 0; --column)
            line.erase(0, line.find(',') + 1);
        return line.substr(0, line.find(','));
    }

    fake::FakeClock clock;
    fake::FaultFiles disk{clock};
    fake::FakeHost host;
    TradeBook book{host};
    GridColumns columns;
    PriceDivisors divisors;
    std::vector<TradeRecord> records;
};

TEST_F(ExportTest, OneTradeIsTwoLinesWithoutALineEndAtTheEnd) {
    TradeRecord& trade = Trade(7);
    SetText(trade.userID, "U1");
    trade.veltOrderID = 8;
    trade.orderID = 4294967295u;
    SetText(trade.exchangeOrderNo, "EO");
    SetText(trade.exchangeTradeID, "ET");
    SetText(trade.orderTime, "t1");
    SetText(trade.exchangeOrderTime, "t2");
    SetText(trade.exchangeTradeTime, "t3");
    SetText(trade.exchange, "XNSE");
    SetText(trade.securityType, "OPTIDX");
    SetText(trade.symbol, "IND50");
    SetText(trade.expiryDate, "26Feb2026");
    SetText(trade.optionType, "CE");
    trade.strikePrice = 24000.5;
    SetText(trade.clientID, "C1");
    trade.side = side::Buy;
    trade.quantity = 100;
    trade.price = 1234.5;
    SetText(trade.securityID, "100001");
    trade.orderType = 2;
    trade.pendingQuantity = 3;
    SetText(trade.referenceText, "a, \"b\"");
    SetText(trade.managerID, "M");
    SetText(trade.memberID, "MB");
    SetText(trade.ctclID, "CT");
    trade.productType = product::Intraday;
    trade.openClose = 1;
    SetText(trade.terminalInfo, "T9");
    SetText(trade.pan, "ABCPX1234K");
    ASSERT_TRUE(Export(ExportMode::AllColumns).opened);
    EXPECT_EQ(
        Text(),
        "Server,UserID,VELTTradeID,VELTOrderID,OrderID,ExchangeOrderNo,ExchangeTradeID,OrderTime,"
        "ExchangeOrderTime,ExchangeTradeTime,Exchange,SecurityType,Symbol,Expiry Date,OptionType,"
        "StrikePrice,ClientID,Side,Quantity,Price,SecurityID,OrderType,PendingQuantity,ReferenceText,"
        "ManagerID,MemberID,CTCLID,ProductType,OpenClose,Multiplier,TerminalInfo,Pancard\r\n"
        "Dravel,U1,7,8,4294967295,EO,ET,t1,t2,t3,XNSE,OPTIDX,IND50,26Feb2026,CE,24000.500000,C1,Buy,100,"
        "1234.500000,100001,Limit,3,\"a, \"b\"\",M,MB,CT,INTRADAY,Open,,T9,ABCPX1234K");
    // Only what is shown, in the order on the screen.
    columns.SetHeader(column::Price, "Rate");
    columns.Move(column::Price, 0);
    columns.SetVisible(column::Symbol, false);
    columns.SetVisible(column::Pancard, true);
    ASSERT_TRUE(Export(ExportMode::VisibleColumns).status);
    EXPECT_EQ(Text(),
              "Rate,VELTTradeID,VELTOrderID,Exchange,Expiry "
              "Date,Side,Quantity,OrderType,PendingQuantity,Pancard\r\n"
              "1234.500000,7,8,XNSE,26Feb2026,Buy,100,Limit,3,ABCPX1234K");
}

TEST_F(ExportTest, TradesStandInTheOrderOfTheirIdentifiersWithoutTheDeletedOnes) {
    for (const std::uint32_t id : {5u, 1u, 2147483647u, 9u})
        Trade(id);
    Load();
    book.BeginLoad();
    for (const TradeRecord& record : records)
        book.Load(record, record.veltTradeID == 9);
    book.EndLoad();
    std::vector<std::uint32_t> order;
    for (const TradeRecord* trade : TradesInOrder(book))
        order.push_back(+trade->veltTradeID);
    EXPECT_EQ(order, (std::vector<std::uint32_t>{1, 5, 2147483647}));
}

TEST_F(ExportTest, CodesAndNumbersOutsideTheUsual) {
    TradeRecord& trade = Trade(1);
    trade.side = 3;
    trade.productType = 4;
    trade.price = 0.0000005;
    trade.strikePrice = -1e300;
    EXPECT_EQ(
        Cell(column::Side) + Cell(column::ProductType) + Cell(column::OpenClose) + Cell(column::OrderType),
        "Both*NONE");
    EXPECT_EQ(Cell(column::Price), "0.000000");  // half to even, as printf writes it
    EXPECT_EQ(Cell(column::StrikePrice).size(), 1 + 301 + 7u);
    EXPECT_EQ(Cell(column::ReferenceText), "\"\"");
}

TEST_F(ExportTest, TheTerminalsContractAndItsPriceDivisorCount) {
    const auto write = [&](std::string_view text) {
        disk.Put("PriceDivisor.csv", fake::FileBytes(text.begin(), text.end()));
        divisors.Load(disk, "PriceDivisor.csv");
    };
    SecurityMasterEntry& entry = host.Know({"XNSE", "OPTIDX", "SYM", "own text", "CE", "5"});
    Trade(1).price = 300;
    records[0].security = &entry;
    SetText(records[0].symbol, "OWN");
    EXPECT_EQ(Cell(column::Symbol) + Cell(column::ExpiryDate) + Cell(column::StrikePrice),
              "SYMown text5.000000");
    entry.expiryTime = 1772064000 + 43200;
    EXPECT_EQ(Cell(column::ExpiryDate), "own text");
    SetText(entry.expiryText, "");
    EXPECT_EQ(Cell(column::ExpiryDate), "26Feb2026");

    EXPECT_EQ(Cell(column::Price), "300.000000");
    write("KEY,4\r\nSYM , 100\n,7\nOWN,3\nKEY,0\nKEY,-2\nKEY,x\nKEY\n");
    EXPECT_EQ(Cell(column::Price), "3.000000");  // without a divisor key by its symbol
    SetText(entry.divisorKey, "KEY");
    EXPECT_EQ(Cell(column::Price), "75.000000");
    SetText(entry.divisorKey, "NONE");
    EXPECT_EQ(Cell(column::Price), "300.000000");
    records[0].security = nullptr;
    EXPECT_EQ(Cell(column::Price), "300.000000");
    // One that is there and cannot be read is not taken for none.
    for (std::uint64_t k = 1; k <= 2; ++k) {
        disk.plan = {.failAt = disk.Operations() + k, .fault = FileFault::InUse};
        EXPECT_FALSE(divisors.Load(disk, "PriceDivisor.csv")) << k;
        disk.ClearPlan();
    }
    EXPECT_TRUE(divisors.Load(disk, "PriceDivisor.csv"));
    EXPECT_TRUE(divisors.Load(disk, "gone.csv"));
    records[0].security = &entry;
    SetText(entry.divisorKey, "KEY");
    EXPECT_EQ(Cell(column::Price), "300.000000");
}

// At whatever operation the disk fails: it was not opened and the old file stands, or the torn one is gone.
TEST_F(ExportTest, ADiskThatFailsLeavesNoTornFile) {
    for (std::uint32_t id = 1; id <= 3000; ++id)
        SetText(Trade(id).referenceText, std::string(64, 'r'));
    ASSERT_TRUE(Export(ExportMode::AllColumns).status);
    const std::string whole = Text();
    ASSERT_GT(whole.size(), 256u * 1024);
    disk.CountAnew();
    ASSERT_TRUE(Export(ExportMode::AllColumns).status);
    const std::uint64_t operations = disk.Operations();
    for (std::uint64_t k = 1; k <= operations; ++k) {
        disk.Put(kPath, {'o', 'l', 'd'});
        disk.CountAnew();
        disk.plan.failAt = k;
        disk.plan.fault = FileFault::Full;
        const ExportResult result = Export(ExportMode::AllColumns);
        disk.ClearPlan();
        EXPECT_EQ(result.status.fault, FileFault::Full) << k;
        EXPECT_EQ(result.opened, k != 1) << k;
        EXPECT_EQ(disk.Has(kPath) ? Text() : "", k == 1 ? "old" : "") << k;
        EXPECT_EQ(disk.OpenHandles(), 0u);
    }
    disk.plan.bytesLeft = whole.size() - 1;
    EXPECT_FALSE(Export(ExportMode::AllColumns).status);
    EXPECT_FALSE(disk.Has(kPath));
    disk.plan.bytesLeft = whole.size();
    EXPECT_TRUE(Export(ExportMode::AllColumns).status);
    EXPECT_EQ(Text(), whole);
    EXPECT_EQ(ExportTrades(disk, "Gone/x.csv", columns, ExportMode::AllColumns, TradesInOrder(book), divisors)
                  .status.fault,
              FileFault::PathNotFound);
}

}  // namespace
}  // namespace Dravel
