// Saving as the user meets it: what the flag says, what is shown, and what is on the disk afterwards.
#include "entry/TradeSaver.h"

#include <gtest/gtest.h>

#include <mutex>

#include "entry/Entry.h"
#include "support/BookRig.h"
#include "support/FakeHost.h"
#include "support/FakeUser.h"
#include "support/NoReports.h"
#include "tradebook/TradeBook.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

// The message queue of the user-interface thread, run when the test says so.
class Posted final : public IUiThread {
 public:
    void Post(std::function<void()> work) override {
        const std::lock_guard guard(mutex_);
        work_.push_back(std::move(work));
    }
    void Run() {
        std::vector<std::function<void()>> work;
        {
            const std::lock_guard guard(mutex_);
            work.swap(work_);
        }
        for (const auto& item : work)
            item();
    }
    bool Empty() {
        const std::lock_guard guard(mutex_);
        return work_.empty();
    }

 private:
    std::mutex mutex_;
    std::vector<std::function<void()>> work_;
};

class ThreadsSaveTest : public testing::Test {
 protected:
    ThreadsSaveTest() {
        EXPECT_TRUE(rig.Start());
        book.BeginLoad();
        book.EndLoad();
    }
    void Add(int trades) {
        for (const TradeRecord& trade : SomeTrades(static_cast<std::size_t>(trades), book.Counter() + 1)) {
            TradeRecord record = trade;
            book.Add(record);
        }
    }
    void RunUntilDone() {
        while (posted.Empty())
            SystemClock().Sleep(1);
        posted.Run();
    }
    std::size_t OnDisk() { return TradesIn(rig.disk.Content(kBook)).size(); }

    BookRig rig;
    FakeHost host;
    FakeUser user;
    Posted posted;
    TradeBook book{host};
    BookParts parts{book, nullptr, posted, rig.log, nullptr};
};

TEST_F(ThreadsSaveTest, SavingClearsTheFlagAndSaysSoWhenTheBytesAreThere) {
    parts.store = rig.file.get();
    TradeSaver saver(parts, user);
    Add(3);
    saver.Save();
    EXPECT_FALSE(book.Changed());
    EXPECT_TRUE(user.notices.empty()) << "not before the disk has it";
    RunUntilDone();
    EXPECT_EQ(user.notices, std::vector<std::string>{"Dravel Save Successfully"});
    EXPECT_EQ(OnDisk(), 3u);
}

TEST_F(ThreadsSaveTest, ASaveSaysThatRowsAreStillBeingTyped) {
    parts.store = rig.file.get();
    std::uint32_t rows = 1;
    parts.rowsBeingTyped = [&] { return rows; };
    TradeSaver saver(parts, user);
    Add(1);
    saver.SaveAndWait();
    rows = 0;
    saver.SaveAndWait();
    EXPECT_EQ(user.notices,
              (std::vector<std::string>{"Dravel Save Successfully", "1 row is still being typed",
                                        "Dravel Save Successfully"}));
}

TEST_F(ThreadsSaveTest, AFullDiskKeepsTheOldBookTellsTheUserAndSetsTheFlagAgain) {
    parts.store = rig.file.get();
    TradeSaver saver(parts, user);
    Add(3);
    saver.SaveAndWait();
    Add(500);
    rig.disk.plan.bytesLeft = 1000;
    bool flagWhileShown = false;
    user.whileShown = [&] { flagWhileShown = book.Changed(); };
    saver.SaveAndWait();
    posted.Run();
    ASSERT_EQ(user.boxes.size(), 1u);
    EXPECT_TRUE(user.boxes[0].starts_with("Dravel|Dravel Save Failed\n")) << user.boxes[0];
    EXPECT_TRUE(book.Changed());
    EXPECT_TRUE(flagWhileShown);
    EXPECT_EQ(OnDisk(), 3u);
    rig.disk.ClearPlan();
    saver.SaveAndWait();
    EXPECT_EQ(OnDisk(), 503u);
}

TEST_F(ThreadsSaveTest, WhatAnotherProgramWroteIsToldOfWithItsBackup) {
    parts.store = rig.file.get();
    TradeSaver saver(parts, user);
    Add(2);
    saver.SaveAndWait();
    EXPECT_TRUE(user.boxes.empty());
    rig.disk.Put(kBook, FramesOf(SomeTrades(7)));
    saver.SaveAndWait();
    ASSERT_EQ(user.boxes.size(), 1u);
    EXPECT_TRUE(user.boxes[0].starts_with("Dravel|Another program had written to the book's file"));
    EXPECT_TRUE(user.boxes[0].ends_with("Data\\Backup\\" + rig.Backups().at(0)));
    EXPECT_EQ(OnDisk(), 2u);
}

TEST_F(ThreadsSaveTest, WithoutAStoreNothingIsWrittenAndTheFlagStays) {
    TradeSaver saver(parts, user);
    Add(1);
    saver.Save();
    EXPECT_TRUE(book.Changed());
    EXPECT_EQ(user.boxes.size(), 1u);
    EXPECT_EQ(OnDisk(), 0u);
}

TEST_F(ThreadsSaveTest, ASaveDuringASaveFollowsItWithTheBookAsItIsThen) {
    parts.store = rig.file.get();
    TradeSaver saver(parts, user);
    Add(200);
    saver.Save();
    Add(7);
    saver.Save();
    saver.Save();
    saver.SaveAndWait();
    EXPECT_EQ(OnDisk(), 207u);
    posted.Run();
    EXPECT_LE(user.notices.size(), 3u);
    EXPECT_FALSE(book.Changed());
}

TEST_F(ThreadsSaveTest, TheEndWaitsForARunningSave) {
    parts.store = rig.file.get();
    {
        TradeSaver saver(parts, user);
        Add(300);
        saver.Save();
    }
    EXPECT_EQ(OnDisk(), 300u);
}

TEST_F(ThreadsSaveTest, WaitingEndsWithTheSaveThatFollows) {
    parts.store = rig.file.get();
    TradeSaver saver(parts, user);
    Add(300);
    saver.Save();
    Add(1);
    saver.Save();
    saver.Wait();
    EXPECT_EQ(OnDisk(), 301u);
    EXPECT_EQ(user.notices.size(), 2u);
    EXPECT_FALSE(book.Changed());
}

TEST_F(ThreadsSaveTest, WaitingTellsOfAFailureBeforeTheFlagIsLookedAt) {
    parts.store = rig.file.get();
    TradeSaver saver(parts, user);
    rig.disk.plan.bytesLeft = 1000;
    Add(300);
    saver.Save();
    EXPECT_FALSE(book.Changed());
    saver.Wait();
    EXPECT_TRUE(book.Changed());
    EXPECT_EQ(user.boxes.size(), 1u);
}

TEST_F(ThreadsSaveTest, AGoodSaveAfterAFailedOneLeavesTheFlagClear) {
    parts.store = rig.file.get();
    TradeSaver saver(parts, user);
    rig.disk.plan.bytesLeft = 1000;
    Add(300);
    saver.Save();
    while (posted.Empty())
        SystemClock().Sleep(1);
    rig.disk.ClearPlan();
    saver.Save();
    saver.Wait();
    EXPECT_EQ(user.boxes.size(), 1u);
    EXPECT_EQ(OnDisk(), 300u);
    EXPECT_FALSE(book.Changed());
}

TEST_F(ThreadsSaveTest, AskingSavesOnYesOnlyAndAlwaysGoesOn) {
    parts.store = rig.file.get();
    ManualClients clients(rig.disk, host, "CSV");
    NoReports reports;
    Entry entry({host, user, rig.disk, rig.clock, clients, nullptr, reports});
    entry.BookOpened(parts);
    Add(2);
    for (const std::uint32_t answer : {kAnswerCancel, kAnswerNo}) {
        user.answers = {answer};
        EXPECT_EQ(entry.AskToSave(), AskEnd::NotWanted);
        EXPECT_EQ(OnDisk(), 0u);
        EXPECT_TRUE(book.Changed());
    }
    user.answers = {kAnswerYes};
    EXPECT_EQ(entry.AskToSave(), AskEnd::Saved);
    EXPECT_EQ(OnDisk(), 2u);
    EXPECT_EQ(user.boxes.back(), "Dravel|Do you want to save Dravel");
    EXPECT_EQ(user.buttons.back(), Buttons::YesNoCancel);
    EXPECT_EQ(user.icons.back(), Icon::Warning);
    entry.BookClosed();
    entry.Save();
    EXPECT_EQ(OnDisk(), 2u);
}

}  // namespace
