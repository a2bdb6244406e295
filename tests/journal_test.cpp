// What was done since the last save: kept through kills, crashes, full disks and torn files, and never
// carried out on a book that it does not follow.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "support/JournalRig.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

constexpr std::uint64_t kPromise = 500;  // milliseconds that may be lost

// A dealer, the terminal and bad luck, by one seed.
class JournalModel {
 public:
    explicit JournalModel(std::uint64_t seed) : random_(seed) {}

    void Run(int operations) {
        ASSERT_TRUE(rig_.Start());
        Note();
        Secure();
        for (done_ = 0; done_ < operations && !testing::Test::HasFatalFailure(); ++done_)
            Operation();
        if (rig_.journal) Kill(false);
    }

    int warned = 0;  // times that the status line told of a full disk

 private:
    std::uint64_t Below(std::uint64_t bound) { return random_() % bound; }
    // To make one of random bytes takes longer than all that the model does with it.
    TradeRecord AnyRecord() {
        static const Trades made = SomeTrades(64);
        TradeRecord trade = made[Below(made.size())];
        trade.quantity = static_cast<std::uint32_t>(random_());
        return trade;
    }
    TradeItem AnyTrade() {
        return rig_.book->ItemAt(static_cast<std::uint32_t>(Below(rig_.book->RowCount())));
    }

    void Operation() {
        switch (Below(16)) {
            case 0:
            case 1:
                return Save();
            case 2:
                return Below(4) == 0 ? End() : Pass(Below(400));
            case 3:
                return Kill(Below(2) == 0);
            case 4:
                return Below(3) == 0 ? PutBackABackup() : Pass(Below(400));
            case 5:
                return Below(3) == 0 ? FillTheDisk() : Pass(Below(100));
            case 6:
                return SecondProcess();
            default:
                Change();
                Pass(Below(60));
        }
    }

    // One change of the book or of a row being typed.
    void Change() {
        TradeBook& book = *rig_.book;
        const bool empty = book.RowCount() == 0;
        TradeRecord trade = AnyRecord();
        switch (Below(empty ? 4 : 8)) {
            case 0:
                book.Add(trade);
                break;
            case 1:
                trade.veltTradeID = static_cast<std::uint32_t>(Below(200));
                book.AddFromHost(trade);
                break;
            case 2:
                for (std::uint64_t i = Below(20); i-- > 0;) {
                    trade = AnyRecord();
                    book.AddUnlessHeld(trade,
                                       {ChangeKind::Import, "trades.csv", static_cast<std::uint32_t>(i)});
                    Note();
                }
                break;
            case 3:
                Type();
                break;
            case 4:
            case 5:
                book.Edit(AnyTrade(), trade);
                break;
            case 6:
                book.MoveRow(static_cast<std::uint32_t>(Below(book.RowCount())),
                             static_cast<std::uint32_t>(Below(book.RowCount())));
                break;
            case 7: {
                const TradeItem items[] = {AnyTrade(), AnyTrade(), AnyTrade()};
                book.Delete(items);
                break;
            }
        }
        Note();
    }

    void Type() {
        if (!rig_.drafts.empty() && Below(3) == 0) {
            const std::uint32_t id = rig_.drafts.begin()->first;
            rig_.drafts.erase(id);
            return rig_.journal->DraftGone(id);
        }
        DraftTexts draft;
        draft.id = Below(2) == 0 && rig_.lastDraft > 0 ? rig_.lastDraft : ++rig_.lastDraft;
        draft.trade = static_cast<std::uint32_t>(Below(3));
        for (int i = 0; i < 3; ++i) {
            const std::size_t cell = Below(kDraftCells);
            draft.set.set(cell);
            draft.cells[cell] = std::string(Below(30), static_cast<char>('!' + Below(90)));
        }
        rig_.drafts[draft.id] = draft;
        rig_.journal->DraftChanged(draft);
    }

    // The clock goes on; the writer has its turn whenever it is due.
    void Pass(std::uint64_t milliseconds) {
        for (; milliseconds > 0; --milliseconds) {
            ++rig_.clock.ticks;
            rig_.Turn();
        }
        Secure();
    }

    // While the disk works, the dealer goes on.
    struct Interleaved final : ISaveWatch {
        JournalModel& model;
        explicit Interleaved(JournalModel& owner) : model(owner) {}
        void Live() {
            if (model.Below(2) == 0) model.Change();
        }
        void Between() noexcept override {
            Live();
            model.rig_.journal->Between();
        }
        void BeforeSwap(const FileSum& book) noexcept override {
            Live();
            model.rig_.journal->BeforeSwap(book);
            Live();
        }
        void AfterSwap(bool swapped) noexcept override {
            Live();
            model.rig_.journal->AfterSwap(swapped);
            Live();
        }
    };

    void Save() {
        Interleaved interleaved(*this);
        rig_.file->SetWatch(&interleaved);
        const BookState state = rig_.State();
        const std::size_t pictured = states_.size() - 1;
        const bool saved = rig_.Save();
        rig_.file->SetWatch(rig_.journal.get());
        if (!saved) return;
        lower_ = std::max(lower_, pictured);
        // With no room for a journal the picture is all that there is.
        if (full_ && !rig_.journal->Warning().empty()) bare_ = BookState{state.rows, {}};
        saved_ = {state.rows, {}};
        savedFile_ = rig_.disk.Content(kBook);
        Pass(1);
    }

    // The question at the end: saved, discarded, or ended unanswered.
    void End() {
        const auto answer = Below(3);
        if (answer == 0) Save();
        const bool discarded = answer == 1;
        const bool saved = !rig_.book->Changed() && rig_.drafts.empty() && !rig_.journal->RowsMoved();
        rig_.Close(discarded || saved);
        if (discarded) Begin(saved_);
        lower_ = states_.size() - 1;  // the journal was written to its end
        Reopen();
    }

    void Kill(bool powerCut) {
        if (Below(2) == 0) {  // in the midst of what the disk does next
            rig_.disk.plan.crashAt = rig_.disk.Operations() + Below(30);
            for (int i = 0; i < 12; ++i) {
                Below(4) == 0 ? Save() : Change();
                if (Below(2) == 0) rig_.clock.ticks += 300, rig_.Turn();
            }
        }
        if (powerCut) {
            rig_.disk.Crash(kEveryKeep[Below(4)], Below(3));
        } else {
            rig_.disk.Kill();
        }
        rig_.disk.ClearPlan();
        full_ = false;
        Reopen();
    }

    void PutBackABackup() {
        if (!savedFile_) return;
        rig_.Close(false);
        const Trades trades = SomeTrades(1 + Below(3), static_cast<std::uint32_t>(500 + Below(1000000)));
        rig_.disk.Put(kBook, FramesOf(trades));
        std::unique_ptr<IFile> put;
        rig_.disk.Open(kBook, FileMode::ReadWrite, FileShare::DenyNone, put);
        put->Flush();
        put.reset();
        const BookState state = StateOf(trades);
        saved_ = state;
        Begin(state);
        Reopen();
    }

    // For a while nothing is promised but what is on the disk already.
    void FillTheDisk() {
        rig_.disk.plan.bytesLeft = Below(3000);
        full_ = true;
        for (int i = 0; i < 10; ++i) {
            Below(5) == 0 ? Save() : Change();
            Pass(Below(200));
        }
        warned += rig_.journal->Warning() == "Unsaved work is not protected: the disk is full";
        if (Below(2) == 0) return Kill(Below(2) == 0);
        rig_.disk.ClearPlan();
        full_ = false;
        Pass(600);
        if (rig_.journal->Warning().empty()) lower_ = states_.size() - 1;
    }

    void SecondProcess() {
        BookFile other(rig_.disk, rig_.clock, rig_.log,
                       KRV::Base::RecordFilePlace{"Data", "Data/Backup", "DravelBook_Dravel"});
        EXPECT_FALSE(other.Acquire());
    }

    void Note() { states_.push_back({rig_.clock.Ticks(), rig_.State()}); }
    // What is older than the promise must be there after any reopening.
    void Secure() {
        if (full_ || !rig_.journal->Warning().empty()) return;
        while (lower_ + 1 < states_.size() && states_[lower_ + 1].first + kPromise <= rig_.clock.Ticks())
            ++lower_;
    }
    void Begin(const BookState& state) {
        states_.assign(1, {rig_.clock.Ticks(), state});
        lower_ = 0;
    }

    void Reopen() {
        ASSERT_TRUE(rig_.Start());
        const BookState state = rig_.State();
        if (std::exchange(bare_, std::nullopt) == state) return Begin(state);
        std::size_t found = states_.size();
        while (found > lower_ && !(states_[found - 1].second == state))
            --found;
        ASSERT_GT(found, lower_) << "operation " << done_ << ": " << rig_.book->RowCount() << " rows, "
                                 << rig_.drafts.size() << " being typed; at least state " << lower_ << " of "
                                 << states_.size();
        Begin(state);
    }

    std::mt19937_64 random_;
    JournalRig rig_;
    std::vector<std::pair<std::uint64_t, BookState>> states_;  // since the last opening, with their moments
    std::size_t lower_ = 0;                                    // the first of them that a reopening may find
    BookState saved_;
    std::optional<FileBytes> savedFile_;
    std::optional<BookState> bare_;
    bool full_ = false;
    int done_ = 0;
};

TEST(Journal, WhatIsHalfASecondOldSurvivesEverything) {
    const char* const wanted = std::getenv("DRAVEL_SEEDS");
    const std::uint64_t seeds = wanted ? std::strtoull(wanted, nullptr, 10) : 200;
    int warned = 0;
    for (std::uint64_t seed = 1; seed <= seeds && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        JournalModel model(seed);
        model.Run(200);
        warned += model.warned;
    }
    EXPECT_GT(warned, 0);
}

// A saved book of three trades and a journal of five changes behind it.
FileBytes JournalOfFive(JournalRig& rig, std::vector<BookState>& states) {
    EXPECT_TRUE(rig.Start());
    for (TradeRecord trade : SomeTrades(3))
        rig.book->Add(trade);
    EXPECT_TRUE(rig.Save());
    states.push_back(rig.State());
    for (std::uint64_t i = 0; i < 5; ++i) {
        TradeRecord trade = RandomTrade(100 + i);
        const TradeItem last = rig.book->ItemAt(rig.book->RowCount() - 1);
        if (i % 2 == 0) {
            rig.book->Add(trade);
        } else if (i == 1) {
            rig.book->Edit(last, trade);
        } else {
            rig.book->Delete({&last, 1});
        }
        states.push_back(rig.State());
    }
    rig.journal->Flush();
    rig.Drop();
    return rig.disk.Content(kJournal);
}

TEST(Journal, ATornOneGivesBackWhatIsWholeAndKeepsWhatStandsBehindABadPlace) {
    std::vector<BookState> states;
    JournalRig rig;
    const FileBytes whole = JournalOfFive(rig, states);
    std::size_t best = 0;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        rig.disk.Put(kJournal, FileBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        ASSERT_TRUE(rig.Start());
        const auto found = std::find(states.begin(), states.end(), rig.State());
        ASSERT_NE(found, states.end()) << length;
        const auto index = static_cast<std::size_t>(found - states.begin());
        ASSERT_GE(index, best) << length;  // more bytes never bring back less
        best = index;
        // What is appended now must be found behind what was cut away.
        TradeRecord trade = RandomTrade(7);
        if (length % 97 == 0) {
            rig.book->Add(trade);
            const BookState state = rig.State();
            rig.journal->Flush();
            ASSERT_TRUE(rig.Start());
            ASSERT_EQ(rig.State(), state) << length;
        }
        rig.Drop();
    }
    EXPECT_EQ(best, 5u);
    EXPECT_TRUE(rig.KeptAside().empty());

    // A bad byte in the second change: the three behind it are kept beside, not carried out.
    FileBytes bad = whole;
    bad[bad.size() / 3] ^= 1;
    rig.disk.Put(kJournal, bad);
    ASSERT_TRUE(rig.Start());
    EXPECT_LT(rig.restored, 5u);
    ASSERT_TRUE(rig.opening.damaged.has_value());
    EXPECT_EQ(rig.disk.Content("Data/" + *rig.opening.damaged), bad);
}

TEST(Journal, ADamagedOneThatFindsNoRoomBesideIsTriedAgainAndLeavesNothing) {
    std::vector<BookState> states;
    JournalRig rig;
    FileBytes bad = JournalOfFive(rig, states);
    bad[bad.size() / 3] ^= 1;
    rig.disk.Put(kJournal, bad);
    rig.disk.plan.bytesLeft = 10;
    for (int tries = 0; tries < 3; ++tries) {
        EXPECT_FALSE(rig.Start());
        EXPECT_TRUE(rig.KeptAside().empty());
        EXPECT_EQ(rig.disk.Content(kJournal), bad);
    }
    rig.disk.ClearPlan();
    EXPECT_TRUE(rig.Start());
    EXPECT_EQ(rig.KeptAside().size(), 1u);
}

// Fails one operation before the swap and one behind it.
struct FailingSave final : ISaveWatch {
    FailingSave(JournalRig& owner, std::uint64_t first, std::uint64_t second)
        : rig(owner), before(first), after(second) {}
    void Fail(std::uint64_t operation) { rig.disk.plan.failAt = rig.disk.Operations() + operation; }
    void BeforeSwap(const FileSum& book) noexcept override {
        Fail(before);
        rig.journal->BeforeSwap(book);
        rig.disk.ClearPlan();
    }
    void AfterSwap(bool swapped) noexcept override {
        Fail(after);
        rig.journal->AfterSwap(swapped);
        rig.disk.ClearPlan();
    }
    JournalRig& rig;
    std::uint64_t before, after;
};

TEST(Journal, TwoFailuresRoundASwapLoseNothingBehindItsMark) {
    for (std::uint64_t before = 1; before <= 6; ++before) {
        for (std::uint64_t after = 1; after <= 24; ++after) {
            SCOPED_TRACE(std::to_string(before) + ", " + std::to_string(after));
            JournalRig rig;
            ASSERT_TRUE(rig.Start());
            TradeRecord old = RandomTrade(1), fresh = RandomTrade(2);
            rig.book->Add(old);
            BookImage image = ImageOf({rig.book->Row(0)});
            rig.journal->Mark();
            rig.book->Add(fresh);
            rig.journal->Flush();  // mark and trade are in the file before anything fails
            const BookState state = rig.State();
            FailingSave watch(rig, before, after);
            rig.file->SetWatch(&watch);
            ASSERT_TRUE(rig.file->Save(image).ok);
            rig.journal->Flush();
            ASSERT_EQ(rig.journal->Warning(), "");
            ASSERT_TRUE(rig.Start());
            ASSERT_EQ(rig.State(), state);
        }
    }
}

TEST(Journal, OneOfAnotherBookIsKeptBesideAndItsNumberNeverGivenAgain) {
    std::vector<BookState> states;
    JournalRig rig;
    JournalOfFive(rig, states);
    for (std::uint32_t n = 1; n <= 3; ++n) {
        rig.disk.Put(kBook, FramesOf(SomeTrades(2, 50 * n)));
        ASSERT_TRUE(rig.Start());
        EXPECT_EQ(rig.book->RowCount(), 2u);
        EXPECT_EQ(rig.restored, 0u);
        ASSERT_EQ(rig.opening.stranger, "DravelBook_Dravel.journal." + std::to_string(n));
        TradeRecord trade = RandomTrade(n);
        rig.book->Add(trade);
        rig.journal->Flush();  // the new journal's head knows the number
        rig.disk.Remove("Data/" + *rig.opening.stranger);
        ASSERT_TRUE(rig.Start());
        EXPECT_EQ(rig.restored, 1u);
        rig.Drop();
    }
}

TEST(Journal, TheHistoryHasEveryChangeOnce) {
    JournalRig rig;
    ASSERT_TRUE(rig.Start());
    std::uint64_t changes = 0;
    for (int day = 0; day < 6; ++day) {
        for (int i = 0; i < 4; ++i, ++changes) {
            TradeRecord trade = RandomTrade(changes);
            rig.book->Add(trade);
            if (i == 1 && day % 2 == 0) {  // killed, and begun again with the same journal
                rig.journal->Flush();
                rig.disk.Kill();
                ASSERT_TRUE(rig.Start());
            }
        }
        if (day == 3) {  // the machine dies while the history is written; the journal is still whole
            rig.disk.plan.crashAt = rig.disk.Operations() + 25;
            rig.Save();
            rig.disk.Crash(Keep::Half);
            rig.disk.ClearPlan();
            ASSERT_TRUE(rig.Start());
        }
        ASSERT_TRUE(rig.Save());
    }
    rig.Drop();
    std::unique_ptr<IFile> history;
    ASSERT_TRUE(
        rig.disk.Open("Data/History/Dravel_202103.journal", FileMode::Read, FileShare::DenyNone, history));
    JournalWalk walk(*history);
    std::map<std::uint64_t, int> seen;
    do {
        for (auto frame = walk.Next(); !frame.empty(); frame = walk.Next())
            if (CodeOf(frame) == msg::JournalPut) ++seen[NumberOf(frame)];
    } while (walk.Hunt());
    EXPECT_EQ(seen.size(), changes);
}

TEST(Journal, TooMuchThatWaitsClosesItUntilTheNextSave) {
    JournalRig rig;
    ASSERT_TRUE(rig.Start());
    rig.disk.plan.bytesLeft = 0;
    for (std::uint64_t i = 0; rig.journal->Warning() != "Unsaved work is not protected: save the book"; ++i) {
        ASSERT_LT(i, 200000u);
        TradeRecord trade = RandomTrade(1);
        rig.book->Add(trade);
        if (i % 20000 == 0) rig.journal->Flush();
    }
    rig.disk.ClearPlan();
    ASSERT_TRUE(rig.Save());
    EXPECT_EQ(rig.journal->Warning(), "");
    TradeRecord trade = RandomTrade(2);
    rig.book->Add(trade);
    rig.journal->Flush();
    const BookState state = rig.State();
    ASSERT_TRUE(rig.Start());
    EXPECT_EQ(rig.State(), state);
}

}  // namespace
