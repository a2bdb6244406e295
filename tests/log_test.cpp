// The log without its thread: lines, days, disks that refuse; and the archive, over every fault of the disk.
#include <gtest/gtest.h>

#include <utility>

#include "support/FakeClock.h"
#include "support/FaultFiles.h"
#include "support/FileLog.h"
#include "support/LogRig.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

FileBytes Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

struct LogTest : ::testing::Test {
    FakeClock clock;
    FaultFiles files{clock};
    CFileLog log{files, clock, "Log"};

    std::string Day(const char* day) {
        const auto logs = ReadLogs(files, "Log");
        const auto found = logs.find("Dravel_" + std::string(day) + ".log");
        return found == logs.end() ? "(none)" : found->second;
    }
    // The texts of a day, without stamp and level.
    std::string Texts(const char* day) {
        std::string texts;
        const std::string all = Day(day);
        for (std::size_t at = 0, end; (end = all.find("\r\n", at)) != all.npos; at = end + 2) {
            const std::string line = all.substr(at, end - at);
            texts += line.substr(line.find(": ") + 2) + "|";
        }
        return texts;
    }
    void Say(std::string_view text) { log.Line(LogLevel::Error, "Test", text); }
};

struct ArchiveTest : LogTest {
    LogArchive archive{files, "Log"};
    ZipPulse goOn = [] { return true; };

    void SetUp() override { PutDays(); }
    void PutDays() {
        files.Put("Log/Dravel_20210131.log", Bytes("the last of January\r\n"));
        files.Put("Log/Dravel_20210201.log", Bytes(std::string(70000, 'x')));
        files.Put("Log/Dravel_20210228.log", {});
        files.Put("Log/Dravel_20210303.log", Bytes("today\r\n"));
        files.Put("Log/Dravel_20210303_0905.dmp", Bytes("no log"));
        files.Put("Log/Dravel_2021023x.log", Bytes("no day"));
    }
    using Logs = std::map<std::string, std::string>;
    Logs Archived(const char* month) { return ReadZip(files, "Log/Dravel_" + std::string(month) + ".zip"); }
    const Logs january{{"Dravel_20210131.log", "the last of January\r\n"}};
    const Logs february{{"Dravel_20210201.log", std::string(70000, 'x')}, {"Dravel_20210228.log", ""}};

    void ExpectAllArchived() {
        EXPECT_EQ(Archived("202101"), january);
        EXPECT_EQ(Archived("202102"), february);
        EXPECT_EQ(files.Names(),
                  (std::vector<std::string>{"Log/Dravel_202101.zip", "Log/Dravel_202102.zip",
                                            "Log/Dravel_2021023x.log", "Log/Dravel_20210303.log",
                                            "Log/Dravel_20210303_0905.dmp"}));
        EXPECT_EQ(files.OpenHandles(), 0u);
    }
};

}  // namespace

TEST_F(LogTest, ALineIsOneLineOfItsDay) {
    log.Line(LogLevel::Warning, "Here", "two\r\nlines");
    clock.now += 86400;
    log.Line(LogLevel::Info, "There", std::string(100000, 'x'));
    EXPECT_EQ(Day("20210303"), "20210303-09:05:00.007 WARNING Here: two  lines\r\n");
    EXPECT_EQ(Day("20210304").size(), kMaxLogText + 36);
    EXPECT_EQ(files.OpenHandles(), 0u) << "without a thread nobody would let go of the file";
}

TEST_F(LogTest, LinesThatADiskRefusesWaitForIt) {
    Say("kept");
    files.plan = {.failAt = 1, .sticky = true};
    files.CountAnew();
    for (const char* text : {"a", "b", "c"})
        Say(text);
    EXPECT_GT(log.Waiting() + 1, 40u);
    files.ClearPlan();
    clock.now += 86400;
    Say("d");
    EXPECT_EQ(Texts("20210303"), "kept|a|b|c|") << "on the day on which they were said";
    EXPECT_EQ(Texts("20210304"), "d|");
    EXPECT_EQ(log.Waiting(), 0u);
}

// A full disk cuts the text at any byte; what arrived is neither lost nor written again.
TEST_F(LogTest, ADiskThatFillsUpAtAnyByteCutsAndDoublesNothing) {
    for (std::uint64_t room = 0; room < 100; ++room) {
        FaultFiles small{clock};
        CFileLog full{small, clock, "Log"};
        full.Line(LogLevel::Info, "Test", "before");
        small.plan.bytesLeft = room;
        for (const char* text : {"1", "2", "3"})
            full.Line(LogLevel::Error, "Test", text);
        small.plan.bytesLeft = 7;
        full.Line(LogLevel::Error, "Test", "4");
        small.ClearPlan();
        full.Line(LogLevel::Error, "Test", "5");
        std::string texts;
        for (const std::uint8_t byte : small.Content("Log/Dravel_20210303.log"))
            texts += static_cast<char>(byte);
        std::string expected = "20210303-09:05:00.007 INFO Test: before\r\n";
        for (const char* text : {"1", "2", "3", "4", "5"})
            expected += "20210303-09:05:00.007 ERROR Test: " + std::string(text) + "\r\n";
        ASSERT_EQ(texts, expected) << room;
    }
}

TEST_F(LogTest, AFullQueueDropsInformationAndSaysSo) {
    constexpr std::size_t kLines = kLogQueue / kMaxLogText + 100;
    files.plan = {.failAt = 1, .sticky = true};
    for (std::size_t i = 0; i < kLines; ++i)
        log.Line(LogLevel::Info, "Test", std::string(kMaxLogText, 'x'));
    for (int i = 0; i < 2000; ++i)
        Say("error");
    EXPECT_GT(log.Waiting(), kLogQueue);
    files.ClearPlan();
    Say("last");
    const std::string all = Day("20210303");
    const std::size_t informed = Count(all, " INFO Test: x");
    EXPECT_LT(informed, kLines);
    EXPECT_EQ(Count(all, " ERROR Test: error\r\n"), 2000u);
    EXPECT_TRUE(all.ends_with("Test: last\r\n20210303-09:05:00.007 WARNING CFileLog: " +
                              std::to_string(kLines - informed) + " lines were left out.\r\n"));
}

TEST_F(LogTest, ListenersHearOfWhatIsNotInformation) {
    std::string heard;
    log.Tell([&](LogLevel level) {
        heard += level == LogLevel::Error ? 'E' : level == LogLevel::Warning ? 'W' : '?';
    });
    for (const LogLevel level : {LogLevel::Info, LogLevel::Warning, LogLevel::Error})
        log.Line(level, "Test", "");
    EXPECT_EQ(std::exchange(heard, ""), "WE");
    files.plan = {.failAt = 1, .sticky = true};
    for (std::size_t i = 0; i < kLogQueue / kMaxLogText + 1; ++i)
        log.Line(LogLevel::Info, "Test", std::string(kMaxLogText, 'x'));
    files.ClearPlan();
    log.Line(LogLevel::Info, "Test", "");
    EXPECT_EQ(heard, "W") << "of the warning that says what was left out, too";
    log.Tell({});
    Say("unheard");
    EXPECT_EQ(heard, "W");
}

TEST_F(ArchiveTest, DaysOfEarlierMonthsGoIntoTheirArchives) {
    EXPECT_TRUE(archive.Run("20210303", goOn));
    ExpectAllArchived();
    files.Put("Log/Dravel_20210215.log", Bytes("late"));
    EXPECT_TRUE(archive.Run("20210303", goOn));
    Logs more = february;
    more["Dravel_20210215.log"] = "late";
    EXPECT_EQ(Archived("202102"), more) << "what the archive held is still in it";
}

TEST_F(ArchiveTest, ADayIsArchivedOnceAndLosesNothingWhenItGoesOn) {
    EXPECT_TRUE(archive.Run("20210303", goOn));
    PutDays();
    EXPECT_TRUE(archive.Run("20210303", goOn));
    ExpectAllArchived();
    files.Put("Log/Dravel_20210131.log", Bytes("the clock was set back"));
    EXPECT_TRUE(archive.Run("20210303", goOn));
    Logs more = january;
    more["Dravel_20210131_2.log"] = "the clock was set back";
    EXPECT_EQ(Archived("202101"), more);
}

TEST_F(ArchiveTest, WhatIsInUseOrGivenUpWaits) {
    files.HoldOpen("Log/Dravel_20210201.log", true);
    std::unique_ptr<IFile> writer;
    ASSERT_TRUE(files.Open("Log/Dravel_20210131.log", FileMode::Append, FileShare::DenyNone, writer));
    EXPECT_FALSE(archive.Run("20210303", goOn));
    EXPECT_TRUE(files.Has("Log/Dravel_20210131.log") && files.Has("Log/Dravel_20210201.log"));
    EXPECT_FALSE(files.Has("Log/Dravel_202101.zip"));
    writer.reset();
    files.HoldOpen("Log/Dravel_20210201.log", false);
    for (int pulses = 0; pulses < 7; ++pulses) {
        int left = pulses;
        EXPECT_EQ(archive.Run("20210303", [&] { return left-- > 0; }), false) << pulses;
        EXPECT_FALSE(files.Has("Log/Dravel_202102.zip.new"));
    }
    EXPECT_TRUE(archive.Run("20210303", goOn));
    ExpectAllArchived();
}

TEST_F(ArchiveTest, ADamagedArchiveIsMovedAside) {
    for (const char* damaged : {"", "PK", "no archive at all, and longer than an end mark"}) {
        files.Put("Log/Dravel_202101.zip", Bytes(damaged));
        files.Put("Log/Dravel_20210131.log", Bytes("the last of January\r\n"));
        EXPECT_TRUE(archive.Run("20210303", goOn));
        EXPECT_EQ(Archived("202101"), january);
    }
    EXPECT_EQ(files.Content("Log/Dravel_202101.zip.damaged2"), Bytes("PK"));
}

// An entry that does not unpack is found when the copy is read back; one that only a password would open, in
// the directory. The month goes into a new archive at once.
TEST_F(ArchiveTest, AnArchiveWithADamagedEntryIsMovedAside) {
    constexpr std::size_t kInText = 60, kLastFlags = 22 + 46 + 19 - 8;  // from the begin, from the end
    ASSERT_TRUE(archive.Run("20210303", goOn));
    const FileBytes whole = files.Content("Log/Dravel_202102.zip");
    files.Put("Log/Dravel_20210215.log", Bytes("late"));
    for (int pulses = 0; pulses < 5; ++pulses) {
        int left = pulses;
        EXPECT_FALSE(archive.Run("20210303", [&] { return left-- > 0; }));
        EXPECT_EQ(files.Content("Log/Dravel_202102.zip"), whole) << "given up is not damaged";
    }
    int aside = 0;
    for (const std::size_t place : {kInText, whole.size() - kLastFlags}) {
        FileBytes damaged = whole;
        damaged[place] ^= 1;
        files.Put("Log/Dravel_202102.zip", damaged);
        files.Put("Log/Dravel_20210215.log", Bytes("late"));
        EXPECT_TRUE(archive.Run("20210303", goOn)) << place;
        EXPECT_EQ(Archived("202102"), (Logs{{"Dravel_20210215.log", "late"}})) << place;
        EXPECT_EQ(files.Content("Log/Dravel_202102.zip.damaged" + std::to_string(++aside)), damaged) << place;
    }
}

// Another terminal writes to the file of yesterday as soon as nobody holds it any more.
TEST_F(ArchiveTest, WhatIsWrittenBehindThePackingStays) {
    bool written = false;
    EXPECT_FALSE(archive.Run("20210303", [&] {
        std::unique_ptr<IFile> file;
        if (!written && files.Has("Log/Dravel_202102.zip.new") &&
            files.Open("Log/Dravel_20210201.log", FileMode::Append, FileShare::DenyNone, file)) {
            written = static_cast<bool>(file->Write("late", 4));
        }
        return true;
    }));
    ASSERT_TRUE(written);
    EXPECT_EQ(files.Content("Log/Dravel_20210201.log"), Bytes(std::string(70000, 'x') + "late"));
    EXPECT_FALSE(files.Has("Log/Dravel_20210228.log"));
    EXPECT_TRUE(archive.Run("20210303", goOn));
    EXPECT_EQ(Archived("202102")["Dravel_20210201_2.log"], std::string(70000, 'x') + "late");
}

// Whatever operation fails, and wherever the machine dies: each day is in its file or in its archive, whole,
// and the next run finishes.
TEST_F(ArchiveTest, NoFaultLosesADay) {
    files.CountAnew();
    ASSERT_TRUE(archive.Run("20210303", goOn));
    const std::uint64_t operations = files.Operations();
    ASSERT_GT(operations, 40u);
    for (std::uint64_t at = 1; at <= operations; ++at) {
        for (const int way : {0, 1, 2, 3}) {
            for (const std::string& name : files.Names())
                files.Remove(name);
            PutDays();
            files.CountAnew();
            if (way == 0) files.plan.failAt = at;
            if (way == 1) files.plan = {.failAt = at, .sticky = true, .fault = FileFault::Full};
            if (way >= 2) files.plan.crashAt = at;
            archive.Run("20210303", goOn);
            files.ClearPlan();
            if (way == 2) files.Crash(Keep::Half);
            if (way == 3) files.Kill();
            Logs logs = ReadLogs(files, "Log");
            for (const Logs& month : {january, february}) {
                for (const auto& [name, text] : month)
                    ASSERT_EQ(logs[name], text) << name << " at " << at << " way " << way;
            }
            ASSERT_TRUE(archive.Run("20210303", goOn)) << at << " way " << way;
            ASSERT_EQ(Archived("202101"), january) << at << " way " << way;
            ASSERT_EQ(Archived("202102"), february) << at << " way " << way;
        }
    }
}

// Every prefix of an archive, and every byte of it turned: it is refused, or an entry is found damaged, or
// what is read is what was written.
TEST_F(ArchiveTest, DamagedArchivesAreReadSafely) {
    files.Put("Log/Dravel_20210201.log", Bytes("short"));
    ASSERT_TRUE(archive.Run("20210303", goOn));
    const FileBytes whole = files.Content("Log/Dravel_202102.zip");
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        files.Put("cut.zip", {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut)});
        EXPECT_EQ(ReadZip(files, "cut.zip").count("(no archive)"), 1u) << cut;
    }
    for (std::size_t at = 0; at < whole.size() * 8; ++at) {
        FileBytes turned = whole;
        turned[at / 8] ^= static_cast<std::uint8_t>(1u << at % 8);
        files.Put("turned.zip", turned);
        for (const auto& [name, text] : ReadZip(files, "turned.zip"))
            EXPECT_TRUE(text.empty() || text == "short" || text == "(damaged)") << at << text;
    }
}

// What a directory says of its entries is held against the bytes, one wrong field at a time.
TEST_F(ArchiveTest, ADirectoryThatDoesNotFitIsRefused) {
    const auto write = [this](const char* name) {
        std::unique_ptr<IFile> to, from;
        ASSERT_TRUE(files.Open("Log/z.zip", FileMode::Create, FileShare::DenyNone, to));
        ZipWriter zip(*to, goOn);
        for (const char* entry : {"first", name}) {
            ASSERT_TRUE(files.Open("Log/today", FileMode::Read, FileShare::DenyNone, from));
            ASSERT_TRUE(zip.Add(entry, clock.LocalNow(), *from));
        }
        ASSERT_TRUE(zip.Finish());
    };
    files.Put("Log/today", Bytes("today"));
    write("");
    EXPECT_EQ(ReadZip(files, "Log/z.zip"), (Logs{{"first", "today"}, {"", "today"}}))
        << "a name may be empty";
    write("second");
    const FileBytes whole = files.Content("Log/z.zip");
    const std::size_t begin = whole.size() - 22 - 2 * 46 - 11, second = begin + 46 + 5;
    const struct {
        std::size_t at;
        int more;
        const char* found;  // of the entry, when the directory is read
    } cases[] = {
        {begin, 1, nullptr},            // the mark of a record
        {second + 3, 1, nullptr},       //
        {begin + 28, 46 + 6, nullptr},  // a name that takes the next record's place
        {begin + 28, 46 + 6 + 1, nullptr},
        {second + 30, 1, nullptr},      // more behind a record than there is
        {second + 32, 1, nullptr},      //
        {begin + 10, 1, nullptr},       // neither stored nor deflated
        {begin + 20, 1, "(damaged)"},   // a byte behind the end of what was packed
        {begin + 24, 1, "(damaged)"},   // a longer text
        {begin + 24, -1, "(damaged)"},  // a shorter one
        {second + 20, 40, nullptr},     // up to the directory and beyond
    };
    for (const auto& [at, more, found] : cases) {
        FileBytes wrong = whole;
        wrong[at] = static_cast<std::uint8_t>(wrong[at] + more);
        files.Put("wrong.zip", wrong);
        Logs read = ReadZip(files, "wrong.zip");
        EXPECT_EQ(read.count("(no archive)"), found ? 0u : 1u) << at - begin << " " << more;
        EXPECT_EQ(read["first"], found ? found : "") << at - begin << " " << more;
    }
}
