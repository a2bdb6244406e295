// What the report says of the lines of an import, and the lines that it saves. Also files that nobody would
// make.
#include <gtest/gtest.h>

#include <filesystem>

#include "records/RecordText.h"
#include "support/ImportRig.h"
#include "tradebook/TradeBook.h"

namespace Dravel {
namespace {

using Test::ImportRig;
using Test::Strings;

class Reports : public testing::Test, protected ImportRig {
 protected:
    Reports() { host.hasMaster = false; }  // or every line would be one of an unknown contract
    // Nothing is lost, nothing counted twice.
    void TearDown() override {
        if (!run) return;
        EXPECT_EQ(run->Report().LinesImported(), book.trades.size());
        EXPECT_EQ(disk.OpenHandles(), 0u);
    }
};

TEST_F(Reports, EveryLineThatWasLeftOutWithItsReasonInOrder) {
    user.answers = {kAnswerCancel};
    EXPECT_TRUE(
        Import("clientid,symbol,exchangetradeid\n"
               "C1,A,1\nX,A,2\n\nC2,A,1\n\r\nY,B,1\nX,B,2\nC2,C,1"));
    EXPECT_EQ(Listed(), (Strings{"3 client X not accepted", "4 empty line", "5 duplicate of trade 1",
                                 "6 empty line", "7 client Y not accepted", "8 client X not accepted"}));
    EXPECT_EQ(run->Report().Summary(), "2 of 8 imported, report");
    EXPECT_EQ(Saved(), "clientid,symbol,exchangetradeid\nX,A,2\n\nC2,A,1\n\r\nY,B,1\nX,B,2\n");
}

TEST_F(Reports, LinesThatCameInWithADoubt) {
    host.hasMaster = true;
    host.Know({"XNSE", "EQ", "IND", "26Feb2026"});
    mapping.expiryPattern = "dd/MM/yyyy";
    const std::string good = ",XNSE,EQ,IND,26/02/2026";
    EXPECT_TRUE(
        Import("clientid,exchangetradeid,quantity,price,exchange,securitytype,symbol,expiry date\n"
               "C1,1,5,1.5" +
               good +
               "\n"
               "C1,2,5,1.5" +
               good +
               ",\n"
               "C1,3,5\n"
               "C1,4,\"5\",1.5" +
               good +
               "\n"
               "C1,5,-5,1,5" +
               good +
               "\n"
               "C1,6,5,1e2,XNSE,EQ,IND,26-2\n"
               "C1,7,,,XNSE,EQ,GONE,26/02/2026\n"));
    const std::string number = "a number that does not read (Quantity)";
    EXPECT_EQ(Listed(), (Strings{"3 imported: another number of cells than the header",
                                 "4 imported: another number of cells than the header, contract not found",
                                 "5 imported: a quote in the line, " + number,
                                 "6 imported: another number of cells than the header, " + number +
                                     ", an expiry date that does not read, contract not found",
                                 "7 imported: an expiry date that does not read, contract not found",
                                 "8 imported: contract not found"}));
    EXPECT_EQ(run->Report().Overview(), "7 of 7 lines imported, 6 of them with a doubt; 0 left out.");
}

TEST_F(Reports, AContractThatOnlyItsIdentifierNamesIsTakenWholeAndDoubtful) {
    host.hasMaster = true;
    host.Know({"XNSE", "EQ", "IND", ""});
    SecurityMasterEntry& entry = host.Identify("XNSE", "900");
    SetText(entry.securityType, "FUTIDX"), SetText(entry.symbol, "BNK12");
    SetText(entry.expiryText, "26Mar2026");
    book.contracts["900"] = &entry;
    EXPECT_TRUE(
        Import("clientid,exchangetradeid,exchange,securitytype,symbol,securityid\n"
               "C1,1,XNSE,Futures,Bank,900\n"
               "C1,2,XNSE,EQ,IND,900\n"
               "C1,3,XNSE,EQ,GONE,901\n"
               "C1,4,XNSE,,,900\n"));
    EXPECT_EQ(Listed(),
              (Strings{"2 imported: contract found by its SecurityID alone", "4 imported: contract not found",
                       "5 imported: contract found by its SecurityID alone"}));
    std::string own;
    for (const TradeRecord& trade : book.trades)
        own.append(TextOf(trade.symbol)).append(TextOf(trade.expiryDate)) += ' ';
    EXPECT_EQ(own, "BNK1226Mar2026 IND GONE BNK1226Mar2026 ");
    EXPECT_EQ(run->Counts().unknownContracts, 1u);
}

TEST_F(Reports, DoubtfulDefaultsCountWhereNoCellReplacesThem) {
    mapping.columns[column::ClientID].field = "clientid";
    mapping.columns[column::Quantity] = {"quantity", "many", ""};
    mapping.columns[column::Symbol].field = "symbol";
    EXPECT_TRUE(Import("clientid,quantity,symbol\nC1,5,A\nC1,,B\n"));
    EXPECT_EQ(Listed(), Strings{"3 imported: a number that does not read (Quantity)"});
    book = {};
    mapping.columns[column::Price].starred = "1,5";
    EXPECT_TRUE(Import("clientid,quantity\nC1,5\n"));
    EXPECT_EQ(Listed(), Strings{"2 imported: a number that does not read (Price)"});
}

TEST_F(Reports, CancelledRunsListWhatWasNotRead) {
    CsvImport& import = Started(
        "\xEF\xBB\xBF"
        "clientid,symbol\r\nX,1\r\nC1,2\r\nC1,3\r\n\r\nC1,4");
    ASSERT_TRUE(import.Begin("in.csv"));
    EXPECT_TRUE(import.Step(2));
    import.Cancel();
    EXPECT_TRUE(import.Finish());
    EXPECT_TRUE(user.boxes.empty());
    EXPECT_EQ(Listed(), (Strings{"2 client X unknown, import cancelled", "4 not read, import cancelled",
                                 "5 not read, import cancelled", "6 not read, import cancelled"}));
    EXPECT_EQ(Saved(),
              "\xEF\xBB\xBF"
              "clientid,symbol\r\nX,1\r\nC1,3\r\n\r\nC1,4");
    EXPECT_TRUE(Import(Saved() + "\r\n"));  // what was left out, mended
    EXPECT_EQ(book.Cells(column::Symbol), "2 3 4 1 ");
    book.trades.resize(3);  // those of this run
}

TEST_F(Reports, TheTradeThatHoldsTheKeyIsNamedAlsoWhenTheFirstOneWent) {
    TradeBook real(host);
    TradeRecord trade{};
    SetText(trade.symbol, "A");
    for (int i = 0; i < 3; ++i) {
        trade.security = nullptr;
        real.Add(trade);
    }
    EXPECT_EQ(real.HolderOf(trade), 1u);
    const TradeItem first[] = {real.ItemOf(1)};
    real.Delete(first);
    EXPECT_TRUE(real.HolderOf(trade) == 2 || real.HolderOf(trade) == 3);
    const TradeItem others[] = {real.ItemOf(2), real.ItemOf(3)};
    real.Delete(others);
    EXPECT_EQ(real.HolderOf(trade), 0u);
}

TEST(ImportReports, PastItsBoundItCountsOn) {
    ImportReport report("in.csv", {.skipped = 3, .text = 20, .doubtful = 1});
    for (std::uint64_t line = 2; line < 4; ++line)
        report.Imported(line, "C1\n", {doubt::Quote, 0});
    report.Skipped(4, "1234567\n", LineOutcome::Empty);
    report.Skipped(5, "too long for the rest\n", LineOutcome::Empty);
    report.Skipped(6, "1\n", LineOutcome::Empty);  // would have room, but the list has ended
    report.Close();
    EXPECT_EQ(report.Rows().size(), 2u);
    EXPECT_EQ(report.LinesUnlisted(), 3u);
    EXPECT_EQ(
        report.Overview(),
        "2 of 5 lines imported, 2 of them with a doubt; 3 left out. 3 are not listed: there are too many.");
    EXPECT_EQ(ImportReport::TextToShow(report.Rows()[1]), "1234567");
}

TEST_F(Reports, ASaveThatFailsLeavesWhatWasThere) {
    user.answers = {kAnswerCancel};
    Import("clientid\nX\n");
    const std::string whole = Saved();
    for (std::uint64_t at = 1; at <= 5; ++at) {
        disk.CountAnew();
        disk.plan.failAt = at;
        EXPECT_FALSE(run->Report().SaveSkipped(disk, kSaved)) << at;
        disk.ClearPlan();
        EXPECT_EQ(std::string(disk.Content(kSaved).begin(), disk.Content(kSaved).end()), whole);
        EXPECT_FALSE(disk.Has(std::string(kSaved) + ".new"));
    }
}

// The disk does something while the import is at line `at`.
struct Meanwhile {
    const char* name;
    std::size_t from, to;  // size of the file before and after, in lines of four bytes
    std::size_t bytesMore;
    Strings listed;
    std::size_t imported;
};

TEST_F(Reports, FilesThatChangeWhileTheyAreRead) {
    constexpr std::size_t kMany = 60000;  // more than a block of the reader
    const Meanwhile cases[] = {
        {"grows", kMany, kMany + 10, 0, {}, kMany + 10},
        {"is cut behind a line",
         kMany,
         kMany - 10,
         0,
         {std::to_string(kMany - 8) + " the file could not be read on"},
         kMany - 10},
        {"is cut within a line",
         kMany,
         kMany - 10,
         2,
         {std::to_string(kMany - 8) + " the file could not be read on"},
         kMany - 10},
    };
    for (const Meanwhile& change : cases) {
        const auto file = [](std::size_t lines) {
            std::string text = "clientid,exchangetradeid\n";
            for (std::size_t i = 0; i < lines; ++i)
                text += "C1," + std::to_string(i) + "\n";
            return text;
        };
        std::string after = file(change.to);
        if (change.bytesMore != 0) after += file(change.from).substr(after.size(), change.bytesMore);
        book = {};
        CsvImport& import = Started(file(change.from));
        ASSERT_TRUE(import.Begin("in.csv"));
        import.Step(10);
        std::unique_ptr<IFile> writer;
        ASSERT_TRUE(disk.Open("in.csv", FileMode::Create, FileShare::DenyNone, writer));
        ASSERT_TRUE(writer->Write(after.data(), after.size()));
        writer.reset();
        EXPECT_TRUE(import.Step(10));
        while (import.Step(1000)) {
        }
        EXPECT_TRUE(import.Finish());
        EXPECT_EQ(Listed(), change.listed) << change.name;
        EXPECT_EQ(book.trades.size(), change.imported) << change.name;
        EXPECT_EQ(import.Counts().readFailed, !change.listed.empty());
    }
}

TEST_F(Reports, AFileThatBreaksOffSaysWhere) {
    std::string text = "clientid,exchangetradeid\n";
    for (int i = 0; i < 60000; ++i)
        text += "C1," + std::to_string(i) + "\n";
    CsvImport& import = Started(text);
    ASSERT_TRUE(import.Begin("in.csv"));
    disk.plan.failAt = disk.Operations() + 1;
    disk.plan.sticky = true;
    while (import.Step(1000)) {
    }
    EXPECT_TRUE(import.Finish());
    EXPECT_EQ(Listed(), Strings{std::to_string(book.trades.size() + 2) + " the file could not be read on"});
    disk.ClearPlan();
}

TEST_F(Reports, AFileThatCannotBeReadAtAllIsNotFound) {
    for (const bool header : {true, false}) {
        mapping.header = header;
        CsvImport& import = Started("clientid\nC1\n");
        disk.plan.failAt = disk.Operations() + 2;  // it opens
        EXPECT_FALSE(import.Run("in.csv"));
        disk.ClearPlan();
        CsvImport folder({SystemFiles(), host, user, clock, book, manual}, mapping);
        EXPECT_FALSE(folder.Run(std::filesystem::temp_directory_path()));
    }
    EXPECT_EQ(user.boxes, Strings(4, "Dravel Import |File Not Found"));
    run.reset();
    EXPECT_EQ(Finished(), 0u);
}

TEST_F(Reports, LinesOfAnyLengthAndAnyBytes) {
    const std::string nul(1, '\0'), ten(10 << 20, 'x'), half(1 << 19, 'x');
    user.answers = {kAnswerCancel};
    EXPECT_TRUE(Import("clientid,symbol,exchangetradeid\nC1,A" + nul + "B,1\nC1," + ten + ",2\nC1,C," + nul +
                       "\nC1,A,1" + nul + "\n" + half));
    EXPECT_EQ(book.Cells(column::Symbol), "A " + ten.substr(0, 32) + " C ");
    EXPECT_EQ(run->Report().Rows()[0].outcome, LineOutcome::Duplicate);
    EXPECT_EQ(Saved(), "clientid,symbol,exchangetradeid\nC1,A,1" + nul + "\n" + half);
}

// A file without line ends would be held in memory whole, and read in one go.
TEST_F(Reports, LinesThatAreTooLongArePassedOverAndListed) {
    const std::string header = "clientid,symbol,exchangetradeid\n",
                      line = "C1,B," + std::string(17 << 20, 'x');
    const std::string text = header + "C1,A,1\n" + line + "\nC1,C,2\n" + std::string((16 << 20) + 1, 'y');
    const Strings tooLong{"3 one line of 18 MB, longer than 16 MB; it is not saved",
                          "5 one line of 17 MB, longer than 16 MB; it is not saved"};
    EXPECT_TRUE(Import(text));
    EXPECT_EQ(book.Cells(column::Symbol), "A C ");
    EXPECT_EQ(Listed(), tooLong);
    EXPECT_EQ(ImportReport::TextToShow(run->Report().Rows()[0]), line.substr(0, 255));
    EXPECT_EQ(run->Report().Summary(), "2 of 4 imported, report");
    EXPECT_EQ(Saved(), header);

    book = {};
    ASSERT_TRUE(Started(text).Begin("in.csv"));
    for (std::uint64_t at = 0; at < (17u << 20); at = run->Progress().bytes) {
        ASSERT_TRUE(run->Step(1000));
        EXPECT_TRUE(at < (16u << 20) || run->Progress().bytes - at <= (2u << 20)) << "a step is short";
    }
    run->Cancel();
    run->Finish();
    EXPECT_EQ(Listed(), (Strings{tooLong[0], "4 not read, import cancelled", tooLong[1]}));
    EXPECT_FALSE(Import(line)) << "no header";
    EXPECT_EQ(user.boxes.back(), "Dravel Import |Please Select Proper File");
    run.reset();
}

TEST_F(Reports, FiveThousandColumns) {
    std::string header = "clientid", line = "C1";
    for (int i = 1; i < 5000; ++i) {
        header += i == 4999 ? ",symbol" : ",x";
        line += i == 4999 ? ",LAST" : "," + std::to_string(i);
    }
    EXPECT_TRUE(Import(header + "\n" + line + "\n" + line + ",1\n"));
    EXPECT_EQ(book.Cells(column::Symbol), "LAST ");
    EXPECT_EQ(Listed(), Strings{"3 duplicate of trade 1"});
}

TEST(ImportProgress, InWords) {
    EXPECT_EQ(ProgressText({3565158, 10695475, 12345}), "12,345 lines, 3.4 of 10.2 MB");
    EXPECT_EQ(ProgressText({10, 20, 1}), "1 line, 0.0 of 0.0 MB");
}

}  // namespace
}  // namespace Dravel
