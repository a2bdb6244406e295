// Trades that wait for the book: none is lost, none comes twice, whatever kills or refuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <set>

#include "plugin/LeftTrades.h"
#include "plugin/WaitingTrades.h"
#include "records/RecordText.h"
#include "support/FakeClock.h"
#include "support/FakeLog.h"
#include "support/FakeUser.h"
#include "support/FaultFiles.h"

namespace Dravel {
namespace {

using Test::FakeClock;
using Test::FakeLog;
using Test::FakeUser;
using Test::FaultFiles;
using Test::FileBytes;
using Test::Keep;
using Kind = WaitingSource::Kind;
using Quantities = std::vector<std::uint32_t>;

TradeRecord Trade(std::uint32_t quantity) {
    TradeRecord record{};
    record.quantity = quantity;
    record.price = quantity + 0.25;
    record.veltTradeID = quantity + 7;
    record.productType = 2;
    SetText(record.exchange, "XNSE");
    SetText(record.exchangeTradeID, "T" + std::to_string(quantity));
    return record;
}

FileBytes Frames(std::uint32_t count) {
    FileBytes bytes;
    for (std::uint32_t number = 1; number <= count; ++number) {
        const auto frame = WaitingFrame({number, Trade(number)});
        bytes.insert(bytes.end(), frame.begin(), frame.end());
    }
    return bytes;
}

TEST(WaitingFrames, AFileThatIsTornOrDamagedGivesAllWholeTradesBeforeThat) {
    const FileBytes whole = Frames(3);
    const std::size_t frame = whole.size() / 3;
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        const FileBytes bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut));
        const WaitingContents contents = ParseWaiting(bytes);
        ASSERT_EQ(contents.trades.size(), cut / frame) << cut;
        ASSERT_EQ(contents.unread, cut % frame);
    }
    for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
        FileBytes bytes = whole;
        bytes[bit / 8] ^= static_cast<std::uint8_t>(1u << bit % 8);
        const WaitingContents contents = ParseWaiting(bytes);
        ASSERT_EQ(contents.trades.size(), bit / 8 / frame) << bit;
        for (std::uint32_t i = 0; i < contents.trades.size(); ++i) {
            const TradeRecord expected = Trade(i + 1);
            ASSERT_EQ(contents.trades[i].number, i + 1);
            ASSERT_EQ(std::memcmp(&contents.trades[i].record, &expected, sizeof expected), 0);
        }
    }
}

// A terminal process with its book, on a disk that outlives it.
struct Process final : IWaitingLedger, IWaitingBook {
    explicit Process(FaultFiles& files, const FakeClock& time, std::uint32_t id = 41)
        : disk(files), clock(time), waiting(files, time, log, "Data", id), left(files, time, log, "Data") {}

    bool HoldsWaiting(const std::string& file, std::uint32_t number) override {
        return held.contains({file, number});
    }
    void WhenKept(std::function<void()> done) override { callbacks.push_back(std::move(done)); }
    void Keep() {
        for (const auto& done : std::exchange(callbacks, {}))
            done();
    }
    void HandOver() { waiting.HandOver(*this, *this); }
    void AskAboutLeft() { left.Ask(user, *this, *this); }
    void CloseBook() {
        ++closed;
        callbacks.clear();
        waiting.BookGone();
        left.BookGone();
    }
    // The terminal may do anything while it is asked: it takes the bar away here, when the room is used up.
    bool Prepare(TradeRecord&) override {
        if (room == 0) CloseBook();
        return room > 0;
    }
    std::uint64_t Revision() const override { return named.size(); }
    void Enter(TradeRecord& record, const WaitingSource& source) override {
        if (std::exchange(throws, false)) throw std::bad_alloc();
        named.emplace_back(source.file, source.number);
        (source.kind == Kind::Pending ? pending : heldBack).push_back(+record.quantity);
        if (--room == 0 && record.quantity % 2) CloseBook();
    }

    FaultFiles& disk;
    const FakeClock& clock;
    FakeLog log;
    FakeUser user;
    WaitingTrades waiting;
    LeftTrades left;
    std::set<std::pair<std::string, std::uint32_t>> held;
    std::vector<std::pair<std::string, std::uint32_t>> named;
    std::vector<std::function<void()>> callbacks;
    Quantities pending, heldBack;
    int closed = 0;
    bool throws = false;           // at the next trade
    std::size_t room = 1'000'000;  // trades until the terminal ends the book
};

class WaitingTradesTest : public testing::Test {
 protected:
    // What the question of a new process, answered with Yes, adds.
    Quantities FoundByTheNext(std::uint32_t answer = kAnswerYes) {
        Process next(disk, clock, 42);
        next.user.answers.assign(50, answer);
        next.AskAboutLeft();
        asked = next.user.boxes;
        next.Keep();
        return next.pending;
    }

    FakeClock clock;
    FaultFiles disk{clock};
    std::vector<std::string> asked;
};

TEST_F(WaitingTradesTest, AKillAtAnyOperationLosesNoTradeWhoseHandlerReturned) {
    std::uint64_t operations = 1;
    for (std::uint64_t crash = 1; crash <= operations; ++crash) {
        disk.Format();
        disk.plan.crashAt = crash;
        Quantities returned;
        {
            Process process(disk, clock);
            for (std::uint32_t quantity = 1; quantity <= 6; ++quantity) {
                clock.ticks += quantity * 100;
                process.waiting.Take(Trade(quantity), quantity % 2 ? Kind::Pending : Kind::HeldBack);
                if (disk.Operations() < crash) returned.push_back(quantity);
            }
            operations = disk.Operations() + 1;
            disk.Kill();
        }
        disk.ClearPlan();
        Quantities found = FoundByTheNext();
        ASSERT_GE(found.size(), returned.size()) << crash;
        found.resize(returned.size());
        ASSERT_EQ(found, returned) << crash;
        ASSERT_TRUE(disk.Names().empty()) << crash;
    }
    EXPECT_GT(operations, 8u);
}

TEST_F(WaitingTradesTest, ADiskThatRefusesLosesNothingInMemoryAndGetsAllLater) {
    for (std::uint64_t k = 1; k <= 24; ++k) {
        for (const bool full : {false, true}) {
            disk.Format();
            Process process(disk, clock);
            process.waiting.Take(Trade(1), Kind::Pending);
            if (full) {
                disk.plan.bytesLeft = k * 37;
            } else {
                disk.plan = {.failAt = disk.Operations() + k, .sticky = true};
            }
            for (std::uint32_t quantity = 2; quantity <= 6; ++quantity)
                process.waiting.Take(Trade(quantity), Kind::Pending);
            disk.ClearPlan();
            process.waiting.Take(Trade(7), Kind::Pending);
            const std::string file = disk.Names().at(0);
            ASSERT_EQ(ParseWaiting(disk.Content(file)).trades.size(), 7u) << k << full;
            process.HandOver();
            ASSERT_EQ(process.pending, (Quantities{1, 2, 3, 4, 5, 6, 7}));
            process.Keep();
            ASSERT_TRUE(disk.Names().empty());
        }
    }
}

TEST_F(WaitingTradesTest, AThousandInARowCostAThousandWritesAndFewFlushes) {
    Process process(disk, clock);
    for (std::uint32_t quantity = 1; quantity <= 1000; ++quantity) {
        clock.ticks += 1;
        process.waiting.Take(Trade(quantity), Kind::Pending);
    }
    EXPECT_LE(disk.Operations(), 1000u + 6);
    clock.ticks += WaitingFile::kFlushPause;
    process.waiting.Take(Trade(1001), Kind::Pending);
    disk.Crash(Keep::Nothing);  // a power cut
    EXPECT_EQ(FoundByTheNext().size(), 1001u);
}

TEST_F(WaitingTradesTest, TheAnswerDecidesAboutTheFile) {
    for (const auto& [answer, added, again] :
         {std::tuple{kAnswerYes, 20u, 0u}, {kAnswerNo, 0u, 0u}, {kAnswerCancel, 0u, 20u}, {0u, 0u, 20u}}) {
        disk.Format();
        clock.now = 1795132800 + 43200;  // 2026-11-20, noon
        {
            Process process(disk, clock);
            for (std::uint32_t quantity = 1; quantity <= 20; ++quantity)
                process.waiting.Take(Trade(quantity), Kind::Pending);
            EXPECT_TRUE(FoundByTheNext().empty()) << "its process lives";
            EXPECT_TRUE(asked.empty());
            disk.Kill();
        }
        EXPECT_EQ(FoundByTheNext(answer).size(), added);
        EXPECT_EQ(asked,
                  std::vector<std::string>{"Dravel|20 trades that the terminal handed over on 20Nov2026 "
                                           "never reached the book. Add them?"});
        EXPECT_EQ(FoundByTheNext().size(), again) << answer;
        EXPECT_TRUE(disk.Names().empty());
        EXPECT_EQ(disk.OpenHandles(), 0u);
    }
}

TEST_F(WaitingTradesTest, WhatTheLedgerHoldsIsNotAskedAbout) {
    disk.Put("Data/DravelBook_Dravel.waiting-9-5", Frames(2));
    disk.Put("Data/DravelBook_Dravel.waiting-9-6", Frames(2));
    FileBytes damaged = Frames(12);
    damaged[0] = 'x';
    disk.Put("Data/DravelBook_Dravel.waiting-9-7", damaged);
    disk.Put("Data/DravelBook_Dravel.waiting-9-8", {});
    Process process(disk, clock);
    for (const auto& [file, number] : {std::pair{"5", 1u}, {"5", 2u}, {"6", 1u}})
        process.held.insert({std::string("DravelBook_Dravel.waiting-9-") + file, number});
    process.user.answers = {kAnswerYes};
    process.AskAboutLeft();
    ASSERT_EQ(process.user.boxes.size(), 1u);
    EXPECT_TRUE(process.user.boxes[0].starts_with("Dravel|1 trade that")) << process.user.boxes[0];
    EXPECT_EQ(process.pending, Quantities{2});
    EXPECT_EQ(process.named.back(), std::pair(std::string("DravelBook_Dravel.waiting-9-6"), 2u));
    process.Keep();
    // Bytes that may hold trades are kept.
    EXPECT_EQ(disk.Names(), std::vector<std::string>{"Data/DravelBook_Dravel.waiting-9-7.damaged"});
}

// Where every trade of a process must be: what is in no kept book and was not discarded is found by the next
// process, each once.
struct WaitingModel {
    explicit WaitingModel(Process& of) : process(of) {}

    void Take(std::uint32_t quantity, Kind kind) {
        process.waiting.Take(Trade(quantity), kind);
        lists[static_cast<std::size_t>(kind)].push_back(quantity);
    }
    void Discard() {
        process.waiting.DiscardPending();
        lists[0].clear();
    }
    void Keep() {
        process.Keep();
        complete.clear();
    }
    void Close() {
        process.CloseBook();
        Gone();
    }
    void HandOver(std::size_t room) {
        const int closed = process.closed;
        const std::size_t before = process.pending.size() + process.heldBack.size();
        process.room = room;
        process.HandOver();
        std::size_t entered = process.pending.size() + process.heldBack.size() - before;
        for (Quantities& list : lists) {
            const auto end = list.begin() + static_cast<std::ptrdiff_t>(std::min(entered, list.size()));
            entered -= static_cast<std::size_t>(end - list.begin());
            partial.insert(partial.end(), list.begin(), end);
            list.erase(list.begin(), end);
        }
        ASSERT_EQ(process.waiting.Count(), lists[0].size() + lists[1].size());
        if (process.closed != closed) return Gone();
        Move(partial, complete);
    }
    void Gone() {
        Move(partial, left);
        Move(complete, left);
    }
    static void Move(Quantities& from, Quantities& to) {
        to.insert(to.end(), from.begin(), from.end());
        from.clear();
    }
    Quantities Expected() const {
        Quantities all;
        for (const Quantities* list : {&lists[0], &lists[1], &partial, &complete, &left})
            all.insert(all.end(), list->begin(), list->end());
        std::sort(all.begin(), all.end());
        return all;
    }

    Process& process;
    Quantities lists[2];                 // that wait
    Quantities partial, complete, left;  // entered: not all of their file, all, in a book that went unkept
};

TEST_F(WaitingTradesTest, AnyOrderOfEventsLosesNoTradeAndDoublesNone) {
    for (std::uint32_t seed = 1; seed <= 120; ++seed) {
        std::mt19937 random(seed);
        disk.Format();
        Quantities expected;
        {
            Process process(disk, clock);
            WaitingModel model(process);
            for (std::uint32_t quantity = 1; quantity <= 40; ++quantity) {
                clock.ticks += random() % 400;
                switch (random() % 12) {
                    case 0:
                    case 1:
                        model.HandOver(random() % 2 ? random() % 5 : 1'000'000);
                        break;
                    case 2:
                        model.Discard();
                        break;
                    case 3:
                        model.Keep();
                        break;
                    case 4:
                        model.Close();
                        break;
                    default:
                        model.Take(quantity, random() % 2 ? Kind::Pending : Kind::HeldBack);
                }
            }
            expected = model.Expected();
            disk.Kill();
        }
        Quantities found = FoundByTheNext();
        std::sort(found.begin(), found.end());
        ASSERT_EQ(found, expected) << "seed " << seed;
        ASSERT_TRUE(disk.Names().empty()) << "seed " << seed;
    }
}

}  // namespace
TEST_F(WaitingTradesTest, ATradeThatDoesNotGetInStays) {
    Process process(disk, clock);
    process.waiting.Take(Trade(1), Kind::Pending);
    process.waiting.Take(Trade(2), Kind::HeldBack);
    process.throws = true;
    EXPECT_THROW(process.HandOver(), std::bad_alloc);
    process.HandOver();
    EXPECT_EQ(process.pending.size(), 1u);
    EXPECT_EQ(process.heldBack.size(), 1u);
}

}  // namespace Dravel
