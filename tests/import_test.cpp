// Imports of CSV text into a book, with everybody around it made up.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "generator/TradeGenerator.h"
#include "generator/Universe.h"
#include "records/CodeTables.h"
#include "records/RecordText.h"
#include "support/FailingMemory.h"
#include "support/ImportRig.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {
namespace {

using Test::FakeHost;
using Test::Field;
using Test::ImportRig;
using Test::Little;
using Test::Strings;

class Imports : public testing::Test, protected ImportRig {};

const char kDone[] = "Dravel Import |File Imported Successfully";

TEST_F(Imports, KeysMapTrimmedCellsByteForByte) {
    EXPECT_TRUE(Import(
        "\xEF\xBB\xBF symbol\t,SIDE,side,clientid,velttradeid,veltorderid,expiry date,nonsense,price\r\n"
        " ABC ,Sell,Buy,C1,77,78, 26Feb2026 ,x,1e2\r\n"));
    ASSERT_EQ(book.trades.size(), 1u);
    EXPECT_EQ(TextOf(book.trades[0].symbol), "ABC");
    EXPECT_EQ(book.trades[0].side, side::Buy);
    EXPECT_EQ(book.Cells(column::VELTTradeID), "1 ");
    EXPECT_EQ(TextOf(book.trades[0].expiryDate), "26Feb2026");
    EXPECT_EQ(book.Cells(column::Price), "100 ");
    EXPECT_EQ(user.boxes, Strings{kDone});
    ASSERT_EQ(Finished(), 1u);
    EXPECT_EQ(host.Sent(msg::ImportFinished)[0].fields,
              (std::vector<Field>{{tag::Entry, Little(FakeHost::kEntry)}}));
}

TEST_F(Imports, ShortLinesAndOddNumbersKeepDefaults) {
    EXPECT_TRUE(
        Import("clientid,symbol,quantity,price,side,producttype\n"
               "\n"
               "C1\n"
               "C1,A,-5,abc,buy,CCE\n"
               "C1,B,12x,-1.5,Buy ,DELIVERY,more,cells\n"
               "C1,C,4294967296,nan, Sell,MME"));
    EXPECT_EQ(book.Cells(column::Symbol), " A B C ");
    EXPECT_EQ(book.Cells(column::Quantity), "0 0 12 0 ");
    EXPECT_EQ(book.Cells(column::Price), "0 0 -1.5 0 ");
    EXPECT_EQ(book.Cells(column::Side), "Both Both Buy Sell ");
    EXPECT_EQ(book.Cells(column::ProductType), "* * DELIVERY * ");
    EXPECT_EQ(run->Report().Lines(), 5u);
}

TEST_F(Imports, NothingToImportIsQuietButReported) {
    EXPECT_FALSE(Import("symbol,clientid\n"));
    EXPECT_FALSE(Import(""));
    EXPECT_TRUE(user.boxes.empty());
    EXPECT_EQ(Finished(), 2u);
}

TEST_F(Imports, RefusalsChangeNothing) {
    EXPECT_FALSE(Started("").Run("missing.csv"));
    mapping.columns[column::Symbol].field = "Scrip";
    EXPECT_FALSE(Import("Scrip\nABC\n"));  // no field for the client
    mapping.columns[column::ClientID].field = "Account";
    EXPECT_FALSE(Import("Scrip,account\nABC,C1\n"));
    EXPECT_EQ(user.boxes,
              (Strings{"Dravel Import |File Not Found", "Dravel Import |Please Select Proper File",
                       "Dravel Import |Please Select Proper File"}));
    EXPECT_EQ(Finished(), 0u);
    EXPECT_TRUE(book.trades.empty());
}

TEST_F(Imports, FieldNamesMapAndALaterEqualOneCounts) {
    mapping.columns[column::Symbol].field = "Scrip";
    mapping.columns[column::ReferenceText].field = "Scrip";
    mapping.columns[column::ClientID].field = "Account";
    mapping.columns[column::VELTTradeID].field = "No";
    EXPECT_TRUE(Import("No,Scrip, Account ,Scrip,symbol\n9,A,C1,B,C\n"));
    EXPECT_EQ(book.Cells(column::Symbol) + book.Cells(column::ReferenceText), "B B ");
}

TEST_F(Imports, WithoutAHeaderNumbersMapAndTheFirstLineIsATrade) {
    mapping.header = false;
    mapping.columns[column::ClientID].field = "1";
    mapping.columns[column::Symbol].field = "abc";  // no number: the first cell
    mapping.columns[column::Side].field = "-1";
    mapping.columns[column::Quantity].field = "2147483647";
    EXPECT_TRUE(Import("A,C1\nB,C2\n"));
    EXPECT_EQ(book.Cells(column::Symbol), "A B ");
    EXPECT_EQ(book.Cells(column::Side), "Both Both ");
}

TEST_F(Imports, DefaultsFillGapsAndStarredOnesAlwaysWin) {
    for (const int index : {column::Symbol, column::Exchange, column::ClientID, column::Side}) {
        const auto at = static_cast<std::size_t>(index);
        mapping.columns[at].field = kTradeColumns[at].importKey;
    }
    mapping.columns[column::Exchange].plainDefault = "XNSE";
    mapping.columns[column::Side].starred = "Sell";
    mapping.columns[column::Quantity].plainDefault = "7";
    mapping.columns[column::ClientID].starred = "HOUSE";  // nobody asks whether it is known
    mapping.columns[column::VELTTradeID].starred = "5";
    EXPECT_TRUE(Import("symbol,exchange,clientid,side\nA,,X,Buy\nB,XTKS,,Buy\nC\n"));
    EXPECT_EQ(book.Cells(column::Exchange), "XNSE XTKS XNSE ");
    EXPECT_EQ(book.Cells(column::Side), "Sell Sell Sell ");
    EXPECT_EQ(book.Cells(column::Quantity), "7 7 7 ");
    EXPECT_EQ(book.Cells(column::ClientID), "HOUSE HOUSE HOUSE ");
    EXPECT_EQ(book.Cells(column::VELTTradeID), "1 2 3 ");
}

TEST_F(Imports, ExpiriesAreConvertedOrKeptAndNoted) {
    mapping.expiryPattern = "dd/MM/yyyy";
    EXPECT_TRUE(Import("clientid,symbol,expiry date\nC1,A,26/02/2026\nC1,B,26-2\nC1,C,26/02/1969\nC1,D,\n"));
    EXPECT_EQ(book.Cells(column::ExpiryDate), "26Feb2026 26-2 26/02/1969  ");
}

TEST_F(Imports, ContractsAreAskedForOnceAndTakenWhole) {
    host.Know({"XNSE", "FUTIDX", "IND", "26Feb2026"}).expiryTime = 1772064000;
    host.Know({"XNSE", "OPTIDX", "IND", "26Feb2026", "CE", "24000.5"});
    EXPECT_TRUE(
        Import("clientid,exchangetradeid,exchange,securitytype,symbol,expiry date,optiontype,strikeprice\n"
               "C1,1,XNSE,FUTIDX,IND,26Feb2026,,\n"
               "C1,2,XNSE,OPTIDX,IND,26Feb2026,CE,24000.50\n"
               "C1,3,XNSE,FUTIDX,IND,26Feb2026,XX,1\n"
               "C1,4,XNSE,FUTIDX,GONE,26Feb2026,,\n"
               "C1,5,XNSE,FUTIDX,GONE,26Feb2026,,\n"));
    EXPECT_EQ(host.asked[master::Contract], 2);
    EXPECT_EQ(host.asked[master::OptionContract], 1);
    EXPECT_EQ(host.asked[master::Clients], 1);
    EXPECT_EQ(book.Cells(column::SecurityID), "ID1 ID2 ID1   ");
    EXPECT_EQ(TextOf(book.trades[1].securityID), "ID2");
    EXPECT_EQ(TextOf(book.trades[2].optionType), "");  // the contract's own
    EXPECT_EQ(run->Counts().unknownContracts, 2u);
}

TEST_F(Imports, ATerminalWithoutASecurityMasterIsNotAskedForContracts) {
    host.hasMaster = false;
    EXPECT_TRUE(Import("clientid,exchange,securitytype,symbol\nC1,XNSE,EQ,IND\nC2,XNSE,EQ,IDX\n"));
    EXPECT_TRUE(host.questions.empty());
    EXPECT_EQ(book.Cells(column::Symbol), "IND IDX ");
    EXPECT_EQ(run->Report().LinesDoubtful(), 0u);
}

TEST_F(Imports, DuplicatesAreSkippedWithANotice) {
    EXPECT_TRUE(Import("clientid,symbol,exchangetradeid\nC1,A,11\nC1,A,12\nC2,A,11\n"));
    EXPECT_EQ(user.notices, Strings{"Dravel Duplicate TRADEID :11"});
    EXPECT_FALSE(Import("clientid,symbol,exchangetradeid\nC1,A,11\n"));
    EXPECT_EQ(user.boxes, Strings{kDone});
    EXPECT_EQ(run->Counts().duplicates, 1u);
}

class UnknownClients : public Imports {
 protected:
    static constexpr const char* kFile =
        "clientid,symbol,userid,managerid\nB,1,,M\nC1,2\nA,3,U\nB,4\n,5\nB,4\n";
    UnknownClients() { manual.Load(); }
};
const char kQuestion[] =
    "Dravel Import|ClientID Not Found : , A, B.\nAre you sure you want to add manual client & import "
    "dravels?";

TEST_F(UnknownClients, AgreedToComeInFileOrderAndAreListed) {
    EXPECT_TRUE(Import(kFile));
    EXPECT_EQ(user.boxes, (Strings{kQuestion, kDone}));
    EXPECT_EQ(user.buttons[0], Buttons::OkCancel);
    EXPECT_EQ(book.Cells(column::Symbol), "2 1 3 4 5 ");
    EXPECT_EQ(book.Cells(column::UserID), " B U B  ");
    EXPECT_EQ(book.Cells(column::ManagerID), " M A B  ");
    EXPECT_EQ(Strings(manual.Ids().begin(), manual.Ids().end()), (Strings{"A", "B"}));
    EXPECT_EQ(disk.Content("set/ManualClientId.txt").size(), 6u);
    EXPECT_EQ(run->Counts().duplicates, 1u);  // the repeated held-back line
    EXPECT_TRUE(Import("clientid,symbol\nA,new\n"));
    EXPECT_EQ(user.boxes.size(), 3u);  // not asked again
}

TEST_F(UnknownClients, RefusedAreDroppedAndTheOthersStay) {
    user.answers = {kAnswerCancel};
    EXPECT_TRUE(Import(kFile));
    EXPECT_EQ(book.Cells(column::Symbol), "2 ");
    EXPECT_EQ(run->Counts().dropped, 5u);
    EXPECT_TRUE(manual.Ids().empty());
}

TEST_F(UnknownClients, CancelDropsThemUnasked) {
    CsvImport& import = Started(kFile);
    ASSERT_TRUE(import.Begin("in.csv"));
    EXPECT_TRUE(import.Step(2));
    import.Cancel();
    EXPECT_FALSE(import.Step(100));
    EXPECT_TRUE(import.Finish());
    EXPECT_TRUE(user.boxes.empty());
    EXPECT_EQ(book.Cells(column::Symbol), "2 ");
    EXPECT_EQ(run->Counts().dropped, 1u);
    EXPECT_TRUE(run->Counts().cancelled);
    EXPECT_EQ(Finished(), 1u);
    EXPECT_EQ(disk.OpenHandles(), 0u);
}

TEST_F(UnknownClients, CancelledHalfwayThroughThemTheFirstOnesStay) {
    CsvImport& import = Started(kFile);
    ASSERT_TRUE(import.Begin("in.csv"));
    while (user.boxes.empty())
        ASSERT_TRUE(import.Step(100));
    EXPECT_TRUE(import.Step(2));
    import.Cancel();
    EXPECT_FALSE(import.Step(100));
    EXPECT_TRUE(import.Finish());
    EXPECT_EQ(user.boxes, Strings{kQuestion});
    EXPECT_EQ(book.Cells(column::Symbol), "2 1 3 ");
    EXPECT_EQ(import.Counts().dropped, 3u);
    EXPECT_EQ(import.Report().LinesSkipped(), 3u);
    EXPECT_EQ(disk.Content("set/ManualClientId.txt").size(), 6u);  // A and B
}

TEST_F(UnknownClients, AStepWithinABoxDoesNothing) {
    CsvImport& import = Started(kFile);
    user.answers = {kAnswerCancel};
    user.whileShown = [&import] { EXPECT_TRUE(import.Step(100)); };
    ASSERT_TRUE(import.Begin("in.csv"));
    while (import.Step(1)) {
    }
    user.whileShown = nullptr;
    EXPECT_TRUE(import.Finish());
    EXPECT_EQ(book.trades.size(), 1u);
}

// What the terminal or the user is asked or told in the middle of a run is where something else can happen.
class Interrupted : public testing::Test {
 protected:
    // Six lines, two of them of unknown clients.
    CsvImport& Started(bool header = true) {
        rig = std::make_unique<ImportRig>();
        rig->manual.Load();
        report.reset();
        rig->mapping.header = header;
        for (int i = 0; i < 5 && !header; ++i) {
            static constexpr int kColumns[] = {column::ClientID, column::Exchange, column::SecurityType,
                                               column::Symbol, column::ExchangeTradeID};
            rig->mapping.columns[static_cast<std::size_t>(kColumns[i])].field = std::to_string(i);
        }
        return rig->Started(
            std::string(header ? "clientid,exchange,securitytype,symbol,exchangetradeid\n" : "") +
                "C1,XNSE,EQ,A,1\nX,XNSE,EQ,B,2\nC1,XNSE,EQ,A,1\n\nY,XNSE,EQ,C,3\nC2,XNSE,EQ,D,4\n",
            [this](std::unique_ptr<ImportReport> done) { report = std::move(done); });
    }
    // Imports them; `happens` at the `at`th question. False: there are not so many.
    bool RunAndAt(int at, const std::function<void()>& happens, bool header = true) {
        CsvImport& import = Started(header);
        int count = 0;
        rig->host.onAsk = rig->host.onSend = rig->book.onAdd = rig->user.whileShown = [&] {
            if (++count == at) happens();
        };
        import.Run("in.csv");
        EXPECT_EQ(rig->book.batches, 0);
        return count >= at;
    }
    // Nothing of the six lines is missing or there twice.
    void ExpectAllAccountedFor() const {
        ASSERT_TRUE(report);
        EXPECT_EQ(report->Lines(), 6u);
        std::set<std::uint64_t> listed;
        for (const ReportRow& row : report->Rows())
            EXPECT_TRUE(listed.insert(row.line).second) << row.line;
        EXPECT_EQ(rig->disk.OpenHandles(), 0u);
    }
    std::unique_ptr<ImportRig> rig;
    std::unique_ptr<ImportReport> report;  // handed on
};

TEST_F(Interrupted, AFailureBreaksTheRunOffAndAllIsAccountedFor) {
    for (const bool header : {false, true}) {
        int at = 1;
        for (; RunAndAt(
                 at, [] { throw std::bad_alloc(); }, header);
             ++at) {
            SCOPED_TRACE(at);
            const std::string told = rig->user.boxes.back();
            if (at == 1) {
                EXPECT_EQ(told, "Dravel Import |The file could not be imported: std::bad_alloc");
                continue;
            }
            EXPECT_TRUE(told.starts_with("Dravel Import |The import broke off: std::bad_alloc") ||
                        told == kDone);
            EXPECT_EQ(rig->Finished(), 1u);
            ExpectAllAccountedFor();
        }
        EXPECT_EQ(rig->user.boxes.back(), kDone);
        EXPECT_GT(at, 12);
    }
}

// Memory may be used up anywhere, also between two steps that account for the same line.
TEST_F(Interrupted, MemoryThatIsUsedUpAnywhereLosesNoLine) {
    bool failed = true;
    for (int at = 1; failed; ++at) {
        SCOPED_TRACE(at);
        CsvImport& import = Started();
        const std::filesystem::path file("in.csv");
        bool ran = false;
        {
            const Dravel::Test::FailingMemory memory(at);
            ran = import.Begin(file);
            while (ran && import.Step(2)) {
            }
            if (ran) import.Finish();
            failed = memory.HasFailed();
        }
        if (ran && report) ExpectAllAccountedFor();
        EXPECT_TRUE(failed || (ran && report && at > 100));
        EXPECT_EQ(rig->book.batches, 0);
    }
}

TEST_F(Interrupted, ABookThatIsGoneIsNeverTouchedAgainAndNobodyIsAsked) {
    int at = 1, calls = 0;
    std::size_t boxes = 0;
    const auto bookGoes = [&] {
        rig->run->BookGone();
        calls = rig->book.calls;
        boxes = rig->user.boxes.size();
    };
    for (; RunAndAt(at, bookGoes); ++at) {
        SCOPED_TRACE(at);
        EXPECT_EQ(rig->book.calls, calls);
        EXPECT_EQ(rig->user.boxes.size(), boxes);
        EXPECT_EQ(rig->Finished(), 1u);
        EXPECT_EQ(report != nullptr, boxes != 0 && rig->user.boxes.back() == kDone);
        const auto& list = rig->disk.Content("set/ManualClientId.txt");
        EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), std::ssize(rig->manual.Ids()));
    }
    EXPECT_GT(at, 12);
}

TEST_F(Imports, WhenTheBookGoesBetweenTheStepsWhatCameInStays) {
    CsvImport& import = Started("clientid,symbol\nC1,A\nC1,B\n");
    ASSERT_TRUE(import.Begin("in.csv"));
    EXPECT_TRUE(import.Step(1));
    import.BookGone();
    EXPECT_EQ(book.batches, 0);
    EXPECT_FALSE(import.Step(1));
    EXPECT_TRUE(import.Finish());
    EXPECT_EQ(book.Cells(column::Symbol), "A ");
    EXPECT_EQ(Finished(), 1u);
    EXPECT_TRUE(user.boxes.empty());
}

TEST_F(Imports, SampleFileGoesInAsItWasGenerated) {
    host.clients = Sample::Clients();
    for (const Sample::Contract& contract : Sample::Contracts()) {
        const SecurityMasterEntry& e = contract.entry;
        Strings texts{e.exchange, e.securityType, e.symbol, e.expiryText};
        if (texts[1].starts_with("OPT")) {
            texts.emplace_back(e.optionType);
            NumberBuffer buffer;
            texts.emplace_back(ShortestText(e.strikePrice, buffer));
        }
        SetText(host.Know(texts).securityID, e.securityID);
    }
    std::string text;
    WriteSampleFile({.trades = 2000, .seed = 5, .duplicates = 50, .unknownLines = 30, .unknownClients = 3},
                    [&text](std::string_view line) { text += line; });
    EXPECT_TRUE(Import(text));
    EXPECT_EQ(run->Report().Lines(), 2080u);
    EXPECT_EQ(run->Report().LinesDoubtful(), 0u);
    EXPECT_EQ(run->Counts().duplicates, 50u);
    EXPECT_EQ(run->Counts().heldBack, 30u);
    EXPECT_EQ(run->Counts().unknownContracts, 0u);
    TradeGenerator generator(5);
    std::map<std::string, std::string> made, imported;
    TradeRecord record;
    for (int i = 0; i < 2030; ++i) {
        generator.Fill(record);
        SetText(record.clientID, "");
        made[std::string(TextOf(record.exchangeTradeID))] = TradeGenerator::CsvLine(record);
    }
    for (TradeRecord& trade : book.trades) {
        SetText(trade.clientID, "");
        imported[std::string(TextOf(trade.exchangeTradeID))] = TradeGenerator::CsvLine(trade);
    }
    EXPECT_EQ(imported, made);
}

}  // namespace
}  // namespace Dravel
