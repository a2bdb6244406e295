// Import format sets: their files, what they come to when applied, their folder, and which one fits a file.
#include "formatset/FormatSet.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "entry/ImportSets.h"
#include "formatset/FileNameFormat.h"
#include "formatset/FormatSetFolder.h"
#include "support/FakeClock.h"
#include "support/FaultFiles.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {
namespace {

using Test::FakeClock;
using Test::FaultFiles;
using Test::FileBytes;

const auto kTitles = TextsOfColumns(&TradeColumn::header), kKeys = TextsOfColumns(&TradeColumn::importKey);

FormatSet SampleSet() {
    FormatSet set;
    set.fileNameFormat = "Trades_{yyyyMMdd}.csv";
    set.filePath = "D:\\Feeds=x";
    set.rows[column::Symbol].field = "Scrip";
    set.rows[column::ClientID].field = "Party Code";
    set.rows[column::ExpiryDate] = {"Exp", "dd-MMM-yyyy", ""};
    set.rows[column::Side] = {"", "dd", "*BUY"};
    set.rows[column::Pancard].defaultValue = "last";
    return set;
}

TEST(FormatSets, TextIsThatOfTheFileAndReadsBack) {
    FormatSet set = SampleSet();
    const std::string text = FormatSetText(set, kTitles);
    EXPECT_TRUE(text.starts_with(
        "Header=true,FileNameFormat=Trades_{yyyyMMdd}.csv,FilePath=D:\\Feeds=x\nServer,,,\nUserID,,,\n"));
    EXPECT_NE(text.find("\nExpiry Date,Exp,dd-MMM-yyyy,\n"), std::string::npos);
    EXPECT_TRUE(text.ends_with("\nPancard,,,last\n"));
    EXPECT_EQ(std::count(text.begin(), text.end(), ','), 2 + 3 * 32);
    EXPECT_EQ(ReadFormatSet(text), set);
    set.header = false;
    EXPECT_EQ(ReadFormatSet(FormatSetText(set, kTitles)), set);
    EXPECT_TRUE(FormatSetText(set, kTitles).starts_with("Header=false,"));
}

TEST(FormatSets, FirstLineIsReadLetterCaseAside) {
    const struct {
        const char* line;
        bool header;
        const char *name, *path;
        bool rows;
    } cases[] = {
        {"HEADER = TRUE ,FileNameFormat=x.csv,FilePath=D:\\In", true, "x.csv", "D:\\In", true},
        {"\xEF\xBB\xBFheader=true,FILENAMEFORMAT= A b ,filepath = d:\\x=y ", true, "A b", "d:\\x=y", true},
        {"Header=truely,FileNameFormat=x", false, "x", "", true},
        {"Header,FileNameFormat=,FilePath", false, "", "", true},
        {"Header=false,FilePath=D:\\In", false, "", "", false},
        {"Header=false", false, "", "", false},
        {"FileNameFormat=x,Header=false", true, "", "", false},
        {"", true, "", "", false},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.line);
        const FormatSet set = ReadFormatSet(std::string(one.line) + "\r\nServer,S,,\r\n");
        EXPECT_EQ(set.header, one.header);
        EXPECT_EQ(set.fileNameFormat, one.name);
        EXPECT_EQ(set.filePath, one.path);
        EXPECT_EQ(set.rows[0].field, one.rows ? "S" : "");
    }
}

TEST(FormatSets, AnyFileGivesASet) {
    std::string text = "Header=true,FileNameFormat=,FilePath=\nServer\nUserID,u\n\nA,b,c,d,e,f\n";
    for (int line = 0; line < 100; ++line)
        text += "x,f,p,v\n";
    const FormatSet set = ReadFormatSet(text);
    EXPECT_EQ(set.rows[0], FormatSetRow{});
    EXPECT_EQ(set.rows[1], (FormatSetRow{"u", "", ""}));
    EXPECT_EQ(set.rows[2], FormatSetRow{});
    EXPECT_EQ(set.rows[3], (FormatSetRow{"b", "c", "d"}));
    EXPECT_EQ(set.rows[31], (FormatSetRow{"f", "p", "v"}));
    EXPECT_EQ(ReadFormatSet(std::string(100000, ',')), FormatSet{});
}

TEST(FormatSets, ApplyingPartsDefaultsAndTakesTheExpiryPatternAlone) {
    FormatSet set = SampleSet();
    set.rows[column::Price].defaultValue = "B*UY";
    set.rows[column::Quantity].defaultValue = "*";
    const ImportMapping mapping = MappingOf(set);
    EXPECT_EQ(mapping.expiryPattern, "dd-MMM-yyyy");
    EXPECT_EQ(mapping.columns[column::ClientID].field, "Party Code");
    EXPECT_EQ(mapping.columns[column::Side].starred, "BUY");
    EXPECT_EQ(mapping.columns[column::Side].plainDefault, "");
    EXPECT_EQ(mapping.columns[column::Price].starred, "*UY");
    EXPECT_EQ(mapping.columns[column::Quantity].starred, "");
    EXPECT_EQ(mapping.columns[column::Pancard].plainDefault, "last");
    EXPECT_EQ(mapping.fileNameFormat, set.fileNameFormat);
    EXPECT_TRUE(mapping.NamesFields());
    EXPECT_FALSE(MappingOf(FormatSet{}).NamesFields());
}

TEST(FormatSets, ASetThatWouldRefuseEveryFileIsTold) {
    FormatSet set;
    EXPECT_TRUE(TakesFiles(set));
    set.rows[12].field = "Scrip";
    EXPECT_FALSE(TakesFiles(set));
    set.header = false;
    EXPECT_TRUE(TakesFiles(set));
    set.header = true;
    set.rows[16].field = "Client";
    EXPECT_TRUE(TakesFiles(set));
}

TEST(FormatSets, ValuesThatWouldBreakTheFileAreFound) {
    EXPECT_EQ(UnwritableValue(SampleSet()), nullptr);
    std::string FormatSet::*const texts[] = {&FormatSet::fileNameFormat, &FormatSet::filePath};
    std::string FormatSetRow::*const cells[] = {&FormatSetRow::field, &FormatSetRow::format,
                                                &FormatSetRow::defaultValue};
    for (const char* bad : {"a,b", "a\nb", "\r"}) {
        for (const auto text : texts) {
            FormatSet set = SampleSet();
            set.*text = bad;
            EXPECT_EQ(UnwritableValue(set), &(set.*text));
        }
        for (const auto cell : cells) {
            FormatSet set = SampleSet();
            set.rows[31].*cell = bad;
            EXPECT_EQ(UnwritableValue(set), &(set.rows[31].*cell));
        }
    }
}

TEST(FormatSets, SampleNamesColumnsAsAnImportWithoutASetDoes) {
    const auto named = ColumnsNamedIn(" symbol ,SIDE,expiry date,expirydate,,price\t", kKeys);
    EXPECT_EQ(named.count(), 3u);
    EXPECT_TRUE(named[column::Symbol] && named[column::ExpiryDate] && named[column::Price]);
}

TEST(FormatSets, TheSetThatNamesMostOfAFilesColumnsFitsIt) {
    FormatSet small, large, numbers, clientless;
    small.rows[column::ClientID].field = "Party";
    large = small;
    large.rows[column::Symbol].field = "Scrip";
    numbers = small;
    numbers.header = false;
    clientless.rows[column::Symbol].field = "Scrip";
    const FormatSet sets[] = {numbers, clientless, small, large, large};
    EXPECT_EQ(SetForHeader(sets, "x, Party ,Scrip"), 3u);
    EXPECT_EQ(SetForHeader(sets, "Party,Scripless"), 2u);
    EXPECT_EQ(SetForHeader(sets, "Scrip"), 5u);
    EXPECT_EQ(SetForHeader(sets, ""), 5u);
}

TEST(FormatSets, NamesArePlainFileNames) {
    for (const char* good :
         {"Broker A", "a", ".hidden", "CONSOLE", "com10", "nul1", "x.y", "b,c", "COM", "lptA"})
        EXPECT_TRUE(IsSetName(good)) << good;
    for (const char* bad : {"",    " ",      "a ",   " a",    "a.",  ".",    "..",     "a/b",   "a\\b",
                            "C:a", "a?",     "*",    "a|b",   "<",   "\"",   "CON",    "nul",   "Aux.txt",
                            "prn", "com1.x", "LPT9", "CON .", "a\n", "a\tb", "nul .x", "conin$"})
        EXPECT_FALSE(IsSetName(bad)) << bad;
    EXPECT_TRUE(IsSetName(std::string(kSetNameLimit, 'x')));
    EXPECT_FALSE(IsSetName(std::string(kSetNameLimit + 1, 'x')));
}

struct SetFolder : testing::Test {
    std::string NameList() const {
        std::string list;
        for (const auto& name : folder.Names())
            list += name.string() + "|";
        return list;
    }
    void Put(const std::string& name, const std::string& text) {
        disk.MakeFolders("set");
        disk.Put("set/" + name, FileBytes(text.begin(), text.end()));
    }
    FakeClock clock;
    FaultFiles disk{clock};
    FormatSetFolder folder{disk, "set"};
    FormatSet loaded;
};

TEST_F(SetFolder, SetsAreSavedListedRenamedAndRemoved) {
    EXPECT_EQ(NameList(), "");
    ASSERT_TRUE(folder.Save("beta", SampleSet(), kTitles));
    ASSERT_TRUE(folder.Save("Alpha", FormatSet{}, kTitles));
    Put("gamma.csv", "");
    Put("ManualClientId.txt", "");
    Put("beta.CSV.new", "");
    EXPECT_EQ(NameList(), "Alpha|beta|gamma|");
    ASSERT_TRUE(folder.Load("beta", loaded));
    EXPECT_EQ(loaded, SampleSet());
    EXPECT_EQ(disk.Content("set/beta.CSV")[11], ',');
    EXPECT_EQ(folder.Find("BETA"), "beta");
    EXPECT_EQ(folder.FreeName("Beta"), "Beta 2");
    EXPECT_EQ(folder.FreeName("delta"), "delta");
    EXPECT_EQ(folder.Rename("beta", "ALPHA").fault, FileFault::Exists);
    EXPECT_TRUE(folder.Rename("beta", "Beta"));
    EXPECT_TRUE(folder.Remove("Alpha"));
    EXPECT_EQ(NameList(), "Beta|gamma|");
}

TEST_F(SetFolder, WhatIsNoSetTouchesNothing) {
    ASSERT_TRUE(folder.Save("a", SampleSet(), kTitles));
    ASSERT_TRUE(folder.Load("a", loaded));
    EXPECT_EQ(folder.Load("missing", loaded).fault, FileFault::NotFound);
    Put("long.CSV", std::string(10 * 1024 * 1024, 'x'));
    EXPECT_EQ(folder.Load("long", loaded).fault, FileFault::Other);
    Put("zero.CSV", std::string("Header=false,FileNameFormat=\0", 29));
    EXPECT_EQ(folder.Load("zero", loaded).fault, FileFault::Other);
    EXPECT_EQ(loaded, SampleSet());
}

TEST_F(SetFolder, ASaveThatFailsLeavesTheOldSet) {
    ASSERT_TRUE(folder.Save("a", SampleSet(), kTitles));
    const auto before = disk.Content("set/a.CSV");
    disk.CountAnew();
    ASSERT_TRUE(folder.Save("other", FormatSet{}, kTitles));
    const std::uint64_t steps = disk.Operations();
    ASSERT_GT(steps, 3u);
    int failures = 0;
    for (std::uint64_t step = 1; step <= steps; ++step) {
        disk.CountAnew();
        disk.plan.failAt = step;
        const bool saved{folder.Save("a", FormatSet{}, kTitles)};
        disk.ClearPlan();
        failures += !saved;
        if (!saved) {
            EXPECT_EQ(disk.Content("set/a.CSV"), before) << step;
        }
        ASSERT_TRUE(folder.Save("a", SampleSet(), kTitles));
    }
    EXPECT_GE(failures, 3);
}

TEST_F(SetFolder, ASaveWaitsForWhoeverReadsTheFile) {
    ASSERT_TRUE(folder.Save("a", FormatSet{}, kTitles));
    disk.HoldOpen("set/a.CSV", true);
    EXPECT_EQ(folder.Save("a", SampleSet(), kTitles).fault, FileFault::InUse);
    EXPECT_FALSE(disk.Has("set/a.CSV.new"));
    int looks = 0;
    disk.watch = [&] {
        if (++looks == 7) disk.HoldOpen("set/a.CSV", false);
    };
    EXPECT_TRUE(folder.Save("a", SampleSet(), kTitles));
    ASSERT_TRUE(folder.Load("a", loaded));
    EXPECT_EQ(loaded, SampleSet());
}

TEST_F(SetFolder, FirstLineIsReadWhateverFollows) {
    std::string line;
    Put("x.csv",
        "\xEF\xBB\xBF"
        "a,b\r\nc\n");
    EXPECT_TRUE(FirstLineOf(disk, "set/x.csv", line));
    EXPECT_EQ(line, "a,b");
    const std::string longLine = std::string(1 << 20, 'x') + ",last";
    Put("x.csv", longLine + "\r\nc\n");
    EXPECT_TRUE(FirstLineOf(disk, "set/x.csv", line));
    EXPECT_EQ(line, longLine);
    // A name that is cut could be another's.
    Put("x.csv", "a,b," + std::string(kFirstLineLimit, 'y'));
    EXPECT_TRUE(FirstLineOf(disk, "set/x.csv", line));
    EXPECT_EQ(line, "a,b");
    Put("x.csv", "");
    EXPECT_TRUE(FirstLineOf(disk, "set/x.csv", line));
    EXPECT_EQ(line, "");
    EXPECT_FALSE(FirstLineOf(disk, "set/none.csv", line));
}

// What the import dialog offers.
TEST_F(SetFolder, ImportChoosesAndSuggestsSets) {
    FormatSet fitting, other;
    fitting.rows[column::ClientID].field = "Party";
    other.rows[column::ClientID].field = "Account";
    folder.Save("fits", fitting, kTitles);
    folder.Save("other", other, kTitles);
    Put("broken.CSV", std::string(1, '\0'));
    Put("trades.txt", "Party,x\n1,2\n");
    ImportSets sets(disk, "set");
    sets.Reload();
    ASSERT_EQ(sets.Names().size(), 3u);
    sets.Choose("OTHER");
    EXPECT_EQ(sets.Chosen(), "other");
    EXPECT_EQ(sets.Mapping().columns[column::ClientID].field, "Account");
    EXPECT_EQ(sets.Suggestion("set/trades.txt"), "fits");
    sets.Choose("fits");
    EXPECT_EQ(sets.Suggestion("set/trades.txt"), "");
    EXPECT_EQ(sets.Suggestion("set/missing"), "");
    for (const char* none : {"broken", "missing", ""}) {
        sets.Choose("fits");
        sets.Choose(none);
        EXPECT_EQ(sets.Chosen(), "") << none;
        EXPECT_FALSE(sets.Mapping().NamesFields()) << none;
    }
    sets.Choose("fits");
    folder.Remove("fits");
    sets.Reload();
    EXPECT_EQ(sets.Chosen(), "");
}

TEST(FileNameFormats, CarryTheLocalDate) {
    const struct {
        const char *format, *name;
        CivilTime day{};
    } cases[] = {
        {"Trades_yyyy-mm-dd", "Trades_2021-03-05"},
        {"dd-mm-yy", "05-03-21"},
        {"dd dd yyyy yyyy yy", "05 dd 2021 21yy yy"},
        {"plain.csv", "plain.csv"},
        {"", ""},
        {"T_{yyyyMMdd}.csv", "T_20210305.csv"},
        {"{dd}{dd}dd", "05{dd}dd"},
        {"a{yyyyMMdd_HHmm}b", "a20210305_0130b"},
        {"{nonsense}", "05/03/2021"},
        {"{}", "05/03/2021"},
        {"{dd", "{05"},
        {"}dd{", "}05{"},
    };
    FakeClock clock;
    clock.now = 1614886200;  // 2021-03-04 19:30 UTC
    clock.zone = 6 * 3600;
    for (const auto& one : cases)
        EXPECT_EQ(ExpandFileName(one.format, clock), one.name) << one.format;
    clock.now = 946728000;  // 2000-01-01
    EXPECT_EQ(ExpandFileName("yy-yyyy-dd", clock), "yy-2000-01");
}

}  // namespace
}  // namespace Dravel
