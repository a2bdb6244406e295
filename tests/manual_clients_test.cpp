// The manual client list on its file and towards the terminal.
#include <gtest/gtest.h>

#include "entry/ManualClients.h"
#include "support/FakeClock.h"
#include "support/FakeHost.h"
#include "support/FaultFiles.h"

namespace Dravel {
namespace {

using Test::FakeClock;
using Test::FakeHost;
using Test::FaultFiles;
using Test::FileBytes;
using Test::Frame;
using Strings = std::vector<std::string>;

class ManualClientFile : public testing::Test {
 protected:
    static constexpr const char* kPath = "CSV/DravelFormateSet/ManualClientId.txt";

    void Put(const std::string& text) { disk.Put(kPath, FileBytes(text.begin(), text.end())); }
    std::string Stored() const {
        const FileBytes& bytes = disk.Content(kPath);
        return {bytes.begin(), bytes.end()};
    }
    Strings Ids() const { return {clients.Ids().begin(), clients.Ids().end()}; }
    Strings Announced() const {
        Strings ids;
        for (const Frame& frame : host.Sent(msg::ManualClient)) {
            EXPECT_EQ(frame.fields.size(), 1u);
            EXPECT_EQ(frame.fields[0].tag, tag::ClientID);
            ids.emplace_back(frame.fields[0].value.begin(), frame.fields[0].value.end());
        }
        return ids;
    }

    FakeClock clock;
    FaultFiles disk{clock};
    FakeHost host;
    ManualClients clients{disk, host, "CSV/DravelFormateSet"};
};

TEST_F(ManualClientFile, FirstRunMakesAnEmptyFile) {
    clients.Load();
    EXPECT_EQ(Stored(), "");
    EXPECT_TRUE(Ids().empty());
    EXPECT_TRUE(host.sent.empty());
}

TEST_F(ManualClientFile, LoadsLinesAsTheyStandAndHoldsThemOnce) {
    Put("B2\r\n\r\n A1 \r\nB2\nlast");
    clients.Load();
    EXPECT_EQ(Ids(), (Strings{" A1 ", "B2", "last"}));
    const Strings lines{"B2", " A1 ", "B2", "last"};
    EXPECT_EQ(Announced(), lines);
    host.sent.clear();
    clients.Load();  // the next book: the terminal may have forgotten them
    EXPECT_EQ(Announced(), lines);
    EXPECT_TRUE(clients.Holds("B2"));
    EXPECT_FALSE(clients.Holds("A1"));
    EXPECT_FALSE(clients.Holds(""));
}

TEST_F(ManualClientFile, ASaveWithoutAFileOnlyMakesItTheNextOneWrites) {
    clients.Add("Z9");
    clients.Add("C3");
    clients.Save();
    EXPECT_EQ(Stored(), "");
    EXPECT_TRUE(host.sent.empty());
    clients.Save();
    EXPECT_EQ(Stored(), "C3\r\nZ9\r\n");
    EXPECT_EQ(Announced(), (Strings{"C3", "Z9"}));
}

TEST_F(ManualClientFile, AListThatCouldNotBeReadIsNotReplaced) {
    Put("old\r\n");
    disk.plan = {.failAt = disk.Operations() + 1, .sticky = true, .fault = FileFault::InUse};
    clients.Load();
    clients.Add("new");
    clients.Save();
    disk.ClearPlan();
    EXPECT_EQ(Stored(), "old\r\n");
    clients.Save();
    EXPECT_EQ(Stored(), "new\r\nold\r\n");
    EXPECT_TRUE(clients.Holds("old"));
}

TEST_F(ManualClientFile, ALongListIsReadWhole) {
    host.listens = false;
    std::string list;
    for (char id = 'a'; id <= 'r'; ++id)
        list.append(std::size_t{1} << 20, id) += '\n';
    Put(list);
    clients.Load();
    EXPECT_EQ(Ids().size(), 18u);
}

TEST_F(ManualClientFile, LongIdentifiersCompareAsRecordsHoldThem) {
    Put("ABCDEFGHIJKLMNOPQRSTUVWXYZ\n");
    clients.Load();
    EXPECT_TRUE(clients.Holds("ABCDEFGHIJKLMNOPQRST"));
    EXPECT_FALSE(clients.Holds("ABCDEFGHIJKLMNOPQRS"));
    EXPECT_EQ(Announced(), Strings{"ABCDEFGHIJKLMNOPQRST"});
}

TEST_F(ManualClientFile, AFailureAtAnyOperationLeavesTheOldFileOrTheNew) {
    for (std::uint64_t k = 1; k < 20; ++k) {
        Put("old\r\n");
        ManualClients some(disk, host, "CSV/DravelFormateSet");
        some.Add("new");
        disk.plan.failAt = disk.Operations() + k;
        some.Save();
        disk.ClearPlan();
        EXPECT_TRUE(Stored() == "old\r\n" || Stored() == "new\r\nold\r\n")
            << "operation " << k << ": " << Stored();
        EXPECT_EQ(disk.OpenHandles(), 0u);
        some.Retry();
        EXPECT_EQ(Stored(), "new\r\nold\r\n") << k;
    }
}

TEST_F(ManualClientFile, TwoTerminalsKeepEachOthersClients) {
    Put("first\r\n");
    ManualClients other(disk, host, "CSV/DravelFormateSet");
    clients.Load();
    other.Load();
    clients.Add("mine");
    other.Add("theirs");
    clients.Save();
    other.Save();
    clients.Save();
    EXPECT_EQ(Stored(), "first\r\nmine\r\ntheirs\r\n");
    // The other is between its reading and its writing.
    std::unique_ptr<IFile> lock;
    ASSERT_TRUE(disk.OpenLock(std::string(kPath) + ".lock", lock));
    host.sent.clear();
    clients.Add("late");
    clients.Save();
    EXPECT_TRUE(host.sent.empty());
    EXPECT_EQ(Stored(), "first\r\nmine\r\ntheirs\r\n");
    lock.reset();
    clients.Retry();
    EXPECT_EQ(Stored(), "first\r\nlate\r\nmine\r\ntheirs\r\n");
    EXPECT_EQ(Announced().size(), 4u);
    clients.Retry();
    EXPECT_EQ(Announced().size(), 4u) << "once";
}

TEST_F(ManualClientFile, AListThatIsHeldAtFirstIsAnnouncedWhenItCanBeRead) {
    Put("old\r\n");
    std::unique_ptr<IFile> scanner;
    ASSERT_TRUE(disk.Open(kPath, FileMode::ReadWrite, FileShare::DenyAll, scanner));
    clients.Load();
    clients.Retry();
    EXPECT_TRUE(Announced().empty());
    scanner.reset();
    clients.Retry();
    clients.Retry();
    EXPECT_EQ(Announced(), Strings{"old"});
}

}  // namespace
}  // namespace Dravel
