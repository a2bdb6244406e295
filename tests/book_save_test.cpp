// Saving the book: at every byte and every operation a crash, a full disk or a fault may come, and the old
// book or the new one must be there. Never less.
#include <gtest/gtest.h>

#include "support/BookRig.h"
#include "support/Frames.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

constexpr std::int64_t kDay = 86400;

std::size_t LostIn(const std::vector<std::optional<FileBytes>>& states, const FileBytes& before,
                   const FileBytes& after) {
    std::size_t lost = 0;
    for (const auto& state : states) {
        lost += !state || (*state != before && *state != after);
    }
    return lost;
}

// Saves `after` over `before` and looks at each moment of it what a crash would leave. Returns moments, and
// how many of all states would lose something.
std::pair<std::size_t, std::size_t> WatchSave(const Trades& before, const Trades& after, bool noFlush) {
    BookRig rig;
    EXPECT_TRUE(rig.Start() && rig.Save(before));
    rig.clock.now += kDay;  // with a backup on the way
    const FileBytes old = FramesOf(before), fresh = FramesOf(after);
    const BookImage image = ImageOf(after);
    std::size_t moments = 0, lost = 0;
    std::uint64_t seen = 0;
    rig.disk.plan.noFlush = noFlush;
    rig.disk.watch = [&] {
        ++moments;
        const std::uint64_t state = rig.disk.CrashState(kBook);
        if (state != seen) lost += LostIn(rig.disk.AfterCrash(kBook), old, fresh);
        seen = state;
    };
    EXPECT_TRUE(rig.file->Save(image).ok);
    rig.disk.watch = nullptr;
    EXPECT_EQ(rig.disk.Content(kBook), fresh);
    return {moments, lost};
}

}  // namespace

TEST(BookSave, ThousandTradesCrashedAtEveryByteLeaveTheOldBookOrTheNew) {
    const auto [moments, lost] = WatchSave(SomeTrades(900), SomeTrades(1000, 2000), false);
    EXPECT_EQ(lost, 0u);
    EXPECT_GT(moments, FramesOf(SomeTrades(1000, 2000)).size());
}

TEST(BookSave, AnImageInMemoryUsedBeforeHoldsItsOwnTradesOnly) {
    BookRig rig;
    ASSERT_TRUE(rig.Start());
    const auto memory = std::make_shared<ImageMemory>();
    for (const std::size_t count : {5000u, 7u, 0u, 3000u}) {
        const Trades trades = SomeTrades(count, static_cast<std::uint32_t>(count));
        BookImage image(memory);
        for (const TradeRecord& trade : trades)
            image.Append(trade);
        ASSERT_TRUE(rig.file->Save(image).ok);
        EXPECT_EQ(rig.disk.Content(kBook), FramesOf(trades)) << count;
    }
}

TEST(BookSave, TheSameWithoutTheFlushFindsLosses) {
    EXPECT_GT(WatchSave(SomeTrades(900), SomeTrades(1000, 2000), true).second, 0u);
}

TEST(BookSave, CrashedAtEveryByteAndOperationItReopens) {
    const Trades old = SomeTrades(3), fresh = SomeTrades(4, 100);
    const std::size_t bytes = FramesOf(fresh).size() + SumsBytes(fresh);
    std::size_t olds = 0, news = 0;
    const std::size_t written = FramesOf(old).size() + SumsBytes(old);
    for (std::uint64_t at = 1; at <= bytes + 60; ++at) {
        for (const Keep keep : kEveryKeep) {
            // Between two bytes of one write only the file being written differs: one choice each will do.
            if (at <= bytes && keep != kEveryKeep[at % 4]) continue;
            BookRig rig;
            ASSERT_TRUE(rig.Start() && rig.Save(old));
            rig.clock.now += kDay;
            rig.disk.CountAnew();
            (at > bytes ? rig.disk.plan.crashAt : rig.disk.plan.crashAtByte) =
                at > bytes ? at - bytes : written + at;
            rig.Save(fresh);
            rig.disk.Crash(keep, at % 3);
            rig.disk.ClearPlan();
            const Trades found = rig.Reopen();
            ASSERT_TRUE(rig.report.Clean()) << at << ": one of the sums fits, old or new";
            ASSERT_TRUE(Same(found, old) || Same(found, fresh)) << at;
            (Same(found, old) ? olds : news) += 1;
            ASSERT_TRUE(rig.Save(fresh)) << "what the crash left behind is in nobody's way";
            ASSERT_TRUE(Same(rig.Reopen(), fresh));
            ASSERT_EQ(rig.disk.Names(), rig.NamesOfAnOpenBook());
        }
    }
    EXPECT_GT(olds, 0u);
    EXPECT_GT(news, 0u);
}

TEST(BookSave, FullDiskAtEveryByteKeepsTheOldBookAndSaysSo) {
    const Trades old = SomeTrades(3), fresh = SomeTrades(4, 100);
    BookRig rig;
    ASSERT_TRUE(rig.Start() && rig.Save(old));
    const BookImage image = ImageOf(fresh);
    for (std::uint64_t room = 0; room < image.Bytes(); ++room) {
        rig.disk.plan.bytesLeft = room;
        const SaveResult result = rig.file->Save(image);
        ASSERT_FALSE(result.ok) << room;
        ASSERT_EQ(result.reason, "The new book could not be written: the disk is full.");
        ASSERT_EQ(rig.disk.Content(kBook), FramesOf(old));
        ASSERT_FALSE(rig.disk.Has(std::string(kBook) + ".new")) << "the room is given back";
    }
    rig.disk.plan.bytesLeft = image.Bytes();
    EXPECT_TRUE(rig.file->Save(image).ok);
    EXPECT_TRUE(Same(rig.Reopen(), fresh));
}

// Every operation failing in every way, once and for ever: old or new, the truth told, no book accused of a
// change that was a save, and the next save succeeds.
TEST(BookSave, EveryOperationFailing) {
    const Trades old = SomeTrades(3), fresh = SomeTrades(4, 100);
    for (const bool damaged : {false, true}) {
        for (const FileFault fault : {FileFault::NotFound, FileFault::PathNotFound, FileFault::Exists,
                                      FileFault::InUse, FileFault::Full, FileFault::Other}) {
            for (std::uint64_t k = 1; k <= 60; ++k) {
                BookRig rig;
                ASSERT_TRUE(rig.Start() && rig.Save(old));
                rig.disk.Put(kBook, FramesOf(old) + FileBytes(damaged ? 9 : 0, '?'));
                if (damaged) rig.disk.plan.noLinks = true;
                ASSERT_TRUE(Same(rig.Reopen(), old));
                rig.clock.now += kDay;
                rig.disk.CountAnew();
                rig.disk.plan.failAt = k / 2;
                rig.disk.plan.sticky = k % 2;
                rig.disk.plan.fault = fault;
                const bool ok = rig.Save(fresh);
                rig.disk.ClearPlan();
                const FileBytes& now = rig.disk.Content(kBook);
                ASSERT_EQ(ok, now == FramesOf(fresh)) << k;
                if (ok) {
                    ASSERT_EQ(rig.Backups().size(), 1u) << k << " fault " << int(fault);
                }
                ASSERT_LE(rig.disk.OpenHandles(), 2u) << "lock and book";
                BookRig later;
                later.disk.TakeFrom(rig.disk);
                later.Reopen();
                ASSERT_EQ(later.report.Clean(), ok || !damaged) << k << " fault " << int(fault);
                ASSERT_TRUE(rig.Save(fresh)) << k;
                ASSERT_TRUE(Same(rig.Reopen(), fresh));
                ASSERT_EQ(rig.disk.Content("Data/Backup/" + rig.Backups().at(0)).size(),
                          FramesOf(old).size() + (damaged ? 9 : 0));
            }
        }
    }
}

// A crash during a save, then a fault at each operation of the start, load and save that follow.
TEST(BookSave, FaultsAfterACrash) {
    const Trades old = SomeTrades(2), fresh = SomeTrades(3, 100);
    for (std::uint64_t crash = 1; crash <= 25; ++crash) {
        for (std::uint64_t k = 1; k <= 40; ++k) {
            BookRig rig;
            ASSERT_TRUE(rig.Start() && rig.Save(old));
            rig.disk.CountAnew();
            rig.disk.plan.crashAt = crash;
            rig.Save(fresh);
            rig.disk.Crash(kEveryKeep[k % 4], crash % 2);
            rig.disk.ClearPlan();
            const FileBytes left = rig.disk.Content(kBook);
            rig.disk.CountAnew();
            rig.disk.plan.failAt = k;
            if (rig.Start()) {
                const Trades found = rig.Load();
                // What was not read stays in a backup when the user saves all the same.
                if (rig.Save(found) && !Same(found, TradesIn(left))) {
                    ASSERT_EQ(rig.Backups().size(), 1u);
                    ASSERT_EQ(rig.disk.Content("Data/Backup/" + rig.Backups()[0]), left);
                    continue;
                }
            }
            rig.disk.ClearPlan();
            ASSERT_TRUE(Same(rig.Reopen(), old) || Same(rig.Reopen(), fresh)) << crash << " " << k;
            ASSERT_TRUE(rig.report.Clean()) << crash << " " << k;
        }
    }
}

TEST(BookSave, ASecondOwnerHasNoStore) {
    BookRig rig;
    ASSERT_TRUE(rig.Start() && rig.Save(SomeTrades(3)));
    const auto second = rig.Make();
    EXPECT_FALSE(second->Acquire());
    EXPECT_FALSE(second->Owned());
    EXPECT_FALSE(second->LoadBook([](const TradeRecord&, bool) { FAIL(); }).complete);
    const SaveResult result = second->Save(ImageOf(SomeTrades(1)));
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.reason.empty());
    EXPECT_FALSE(second->Append(SomeTrades(1)[0], false));
    EXPECT_EQ(rig.disk.Content(kBook), FramesOf(SomeTrades(3)));
    rig.file->Release();
    EXPECT_FALSE(rig.disk.Has(kBookLock));
    EXPECT_TRUE(second->Acquire()) << "free again";

    rig.Kill();
    EXPECT_TRUE(rig.Start()) << "an owner that was killed holds nothing";
}

TEST(BookSave, ABookThatCannotBeOpenedIsNotTouched) {
    BookRig rig;
    rig.disk.Put(kBook, FramesOf(SomeTrades(3)));
    for (std::uint64_t k = 2; k <= 5; ++k) {
        rig.disk.CountAnew();
        rig.disk.plan.failAt = k;
        const bool ours = rig.Start();
        EXPECT_EQ(ours, rig.file->Owned());
        if (!ours) {
            EXPECT_FALSE(rig.Save({}));
        }
        rig.disk.ClearPlan();
        EXPECT_EQ(rig.disk.Content(kBook), FramesOf(SomeTrades(3))) << k;
    }
}

TEST(BookSave, AnotherProgramHoldingTheBookIsWaitedFor) {
    BookRig rig;
    ASSERT_TRUE(rig.Start() && rig.Save(SomeTrades(1)));
    rig.disk.HoldOpen(kBook, true);
    const SaveResult held = rig.file->Save(ImageOf(SomeTrades(2)));
    EXPECT_FALSE(held.ok);
    EXPECT_EQ(held.reason, "The old book could not be replaced: another program holds the file.");
    EXPECT_EQ(rig.clock.slept, 500u);
    EXPECT_EQ(rig.disk.Content(kBook), FramesOf(SomeTrades(1)));
    rig.disk.HoldOpen(kBook, false);
    EXPECT_TRUE(rig.Save(SomeTrades(2)));
}

TEST(BookSave, BackupRules) {
    BookRig rig;
    rig.clock.zone = 5 * 3600 + 1800;
    ASSERT_TRUE(rig.Start() && rig.Save({}));
    EXPECT_TRUE(rig.disk.Content(kBook).empty()) << "an empty book is an empty file";
    rig.clock.now += kDay;
    ASSERT_TRUE(rig.Save(SomeTrades(1)));
    EXPECT_TRUE(rig.Backups().empty()) << "of an empty file there is nothing to keep";
    ASSERT_TRUE(rig.Save(SomeTrades(2)));
    EXPECT_TRUE(rig.Backups().empty()) << "a file of the same day";

    rig.clock.now += 9 * 3600;  // 23:35 local time: still the same day, though not by UTC's reckoning
    ASSERT_TRUE(rig.Save(SomeTrades(3)));
    EXPECT_TRUE(rig.Backups().empty());
    rig.clock.now += 1800;
    ASSERT_TRUE(rig.Save(SomeTrades(4)));
    ASSERT_TRUE(rig.Save(SomeTrades(5)));
    ASSERT_EQ(rig.Backups(), std::vector<std::string>{"DravelBook_Dravel_20210305_0005.ada"}) << "once";
    EXPECT_EQ(rig.disk.Content("Data/Backup/" + rig.Backups()[0]), FramesOf(SomeTrades(3)));

    // Damage: at any save, beside the one of the same minute; and once it is saved over, no more.
    rig.Kill();
    rig.disk.Put(kBook, FramesOf(SomeTrades(2)) + FileBytes(5, '?'));
    EXPECT_TRUE(Same(rig.Reopen(), SomeTrades(2)));
    EXPECT_TRUE(rig.log.Has("5 bytes passed over"));
    rig.disk.plan.noLinks = true;
    ASSERT_TRUE(rig.Save(SomeTrades(2)));
    ASSERT_TRUE(rig.Save(SomeTrades(2)));
    ASSERT_EQ(rig.Backups().size(), 2u);
    EXPECT_EQ(rig.Backups()[1], "DravelBook_Dravel_20210305_0005_2.ada");
    EXPECT_EQ(rig.disk.Content("Data/Backup/" + rig.Backups()[1]),
              FramesOf(SomeTrades(2)) + FileBytes(5, '?'));

    // As where two books were joined by hand, each with a trade 1.
    rig.Reopen();
    rig.file->TradesRenumbered(1);
    EXPECT_TRUE(rig.log.Has("1 trades of the record file had the identifier of a later"));
    ASSERT_TRUE(rig.Save(SomeTrades(1)));
    EXPECT_EQ(rig.Backups().size(), 3u);

    // A save that fails behind its backup: the next one over the same file makes no other, one over a later
    // file does.
    for (const std::size_t backups : {4u, 5u}) {
        rig.clock.now += kDay;
        rig.disk.HoldOpen(kBook, true);
        ASSERT_FALSE(rig.Save(SomeTrades(3)));
        rig.disk.HoldOpen(kBook, false);
        EXPECT_EQ(rig.Backups().size(), backups);
        ASSERT_TRUE(rig.Save(SomeTrades(3)));
        EXPECT_EQ(rig.Backups().size(), backups);
    }
}

TEST(BookSave, ADiskThatLosesBytesInSilenceIsFoundOut) {
    BookRig rig;
    const Trades old = SomeTrades(3), fresh = SomeTrades(4, 100);
    ASSERT_TRUE(rig.Start() && rig.Save(old));
    rig.disk.plan.loseAtByte = FramesOf(old).size() + SumsBytes(old) + FramesOf(fresh).size();
    EXPECT_FALSE(rig.Save(fresh)) << "one byte less";
    EXPECT_EQ(rig.disk.Content(kBook), FramesOf(old));
}

TEST(BookSave, LaterOfTwoFramesAndDeletedOnesReachTheCallerInOrder) {
    BookRig rig;
    BookImage image;
    const Trades trades = SomeTrades(3);
    image.Append(trades[0]);
    image.Append(trades[1], true);
    image.Append(trades[0]);
    ASSERT_TRUE(rig.Start() && rig.file->Save(image).ok);
    std::string told;
    rig.report = rig.file->LoadBook([&](const TradeRecord& trade, bool deleted) {
        told += std::to_string(trade.veltTradeID) + (deleted ? "d " : " ");
    });
    EXPECT_EQ(told, "1 2d 1 ");
    EXPECT_EQ(rig.report.deleted, 1u);
    EXPECT_EQ(rig.report.damagedFrames, 1u) << "no save of the book writes a deleted mark";
    EXPECT_TRUE(rig.file->Append(trades[2], false));
    EXPECT_EQ(rig.Reopen().size(), 3u);
}

// Random work against a model: whatever happens, what a save acknowledged is there after the next start.
TEST(BookSave, SimulationAgainstAModel) {
    for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        BookRig rig;
        Trades book = rig.Reopen(), saved, tried;
        std::uint32_t next = 1;
        for (int step = 0; step < 20; ++step) {
            switch (random() % 8) {
                case 0:
                case 1: {
                    const auto more = SomeTrades(1 + random() % 3, next);
                    next += static_cast<std::uint32_t>(more.size());
                    book.insert(book.end(), more.begin(), more.end());
                    break;
                }
                case 2:
                    if (!book.empty())
                        book.erase(book.begin() + static_cast<std::ptrdiff_t>(random() % book.size()));
                    break;
                case 3:
                    if (!book.empty())
                        book[random() % book.size()].quantity = static_cast<std::uint32_t>(random());
                    break;
                case 4:
                    rig.clock.now += static_cast<std::int64_t>(random() % (2 * kDay));
                    break;
                case 5:
                    rig.disk.CountAnew();
                    rig.disk.plan.failAt = 1 + random() % 20;
                    rig.disk.plan.sticky = random() % 2;
                    rig.disk.plan.fault = static_cast<FileFault>(1 + random() % 6);
                    if (random() % 3 == 0) rig.disk.plan.bytesLeft = random() % 5000;
                    if (random() % 3 == 0) rig.disk.plan.crashAt = 1 + random() % 20;
                    [[fallthrough]];
                case 6:
                    tried = book;
                    if (rig.Save(book)) saved = book;
                    if (rig.disk.plan.crashAt == FaultFiles::kNever) {
                        rig.disk.ClearPlan();
                        break;
                    }
                    [[fallthrough]];
                case 7:
                    rig.disk.Crash(kEveryKeep[random() % 4], random() % 3);
                    rig.disk.ClearPlan();
                    book = rig.Reopen();
                    ASSERT_TRUE(rig.file->Owned());
                    ASSERT_TRUE(rig.report.Clean());
                    ASSERT_TRUE(Same(book, saved) || Same(book, tried));
                    saved = tried = book;
                    break;
            }
        }
    }
}
