// The opening of a book that cannot be had at once: what is said, what is refused, and that in the end
// everything is in it, once.
#include "tradebook/BookOpening.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <set>

#include "entry/Entry.h"
#include "support/BookRig.h"
#include "support/FakeHost.h"
#include "support/FakeUser.h"
#include "support/NoReports.h"
#include "tradebook/GridCommands.h"

namespace Dravel {
namespace {

using namespace Test;

// A terminal's book on a disk that several of them share.
class Terminal final : IOpeningSteps {
 public:
    explicit Terminal(FaultFiles& shared, FakeClock& clock)
        : disk(shared),
          file(disk, clock, log, KRV::Base::RecordFilePlace{"Data", "Data/Backup", "DravelBook_Dravel"},
               &book.Securities()) {}

    // As the plug-in takes them, in an order that the terminal chooses.
    void Hand(std::uint32_t number) {
        TradeRecord trade{};
        trade.orderID = number;
        trade.productType = 1;
        opening.Through() ? static_cast<void>(book.AddFromHost(trade)) : waiting.push_back(trade);
    }
    SaveResult Save() {
        BookImage image;
        for (std::uint32_t row = 0; row < book.RowCount(); ++row)
            image.Append(book.Row(row));
        return file.Save(image);
    }
    // The trades by the number that they were handed over with, in rising order.
    std::vector<std::uint32_t> Numbers() const {
        std::vector<std::uint32_t> numbers;
        for (std::uint32_t row = 0; row < book.RowCount(); ++row)
            numbers.push_back(+book.Row(row).orderID);
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    }
    std::size_t Identifiers() const {
        std::set<std::uint32_t> all;
        for (std::uint32_t row = 0; row < book.RowCount(); ++row)
            all.insert(+book.Row(row).veltTradeID);
        return all.size();
    }
    std::size_t Reports() const { return host.Sent(msg::TradeReport).size(); }
    std::size_t SecondReports() const { return host.Sent(msg::SecondTradeReport).size(); }
    void GoOnceTo(const std::string& step) {
        steps += step + " ";
        if (step == throwIn) {
            throwIn.clear();
            throw std::bad_alloc();
        }
        if (step == stopIn) opening.Stop();
    }

    FaultFiles& disk;
    FakeLog log;
    FakeHost host;
    FakeUser user;
    TradeBook book{host};
    BookFile file;
    std::deque<TradeRecord> waiting;
    std::string steps, throwIn, stopIn;
    bool settingsRead = true;
    BookOpening opening{{file, book, disk, user, log, *this}};

 private:
    void TellDamage(const KRV::VELT::TradeLoadReport&) override {}
    FileStatus RestoreChanges() override {
        GoOnceTo("changes");
        return {};
    }
    void ShowLook() override { GoOnceTo("look"); }
    bool ReportBook() override {
        GoOnceTo("report");
        if (settingsRead) book.ReportAll();
        return settingsRead;
    }
    void EnterWaiting() override {
        GoOnceTo("waiting");
        while (!waiting.empty()) {
            TradeRecord trade = waiting.front();
            waiting.pop_front();
            book.AddFromHost(trade);
        }
    }
    void OpeningChanged() override {}
};

class Opening : public testing::Test {
 protected:
    // Three trades, saved; nobody has the book then.
    Opening() {
        Terminal first(disk, clock);
        first.opening.Try();
        for (const std::uint32_t number : {1u, 2u, 3u})
            first.Hand(number);
        EXPECT_TRUE(first.Save().ok);
        stored = disk.Content(kBook);
    }

    FakeClock clock;
    FaultFiles disk{clock};
    FileBytes stored;
};

// What stands in the way of a book, from its making until it is let go.
struct Obstacle {
    const char* name;
    BookState state;
    const char* status;
    const char* said;  // begins so
    std::function<std::shared_ptr<void>(FaultFiles&, FakeClock&)> put;
};

std::shared_ptr<void> Held(FaultFiles& disk, const char* path) {
    std::unique_ptr<IFile> file;
    EXPECT_TRUE(disk.Open(path, FileMode::Append, FileShare::DenyAll, file));
    return file;
}

std::shared_ptr<void> ReadOnly(FaultFiles& disk, const char* path) {
    disk.readOnly.insert(path);
    return {nullptr, [&disk](void*) { disk.readOnly.clear(); }};
}

std::shared_ptr<void> Failing(FaultFiles& disk, FaultFiles::Plan plan) {
    disk.CountAnew();
    disk.plan = plan;
    return {nullptr, [&disk](void*) { disk.ClearPlan(); }};
}

const Obstacle kObstacles[] = {
    {"file held", BookState::Trying, "Not loaded",
     "The book could not be opened: another program holds the file. Trying again.",
     [](FaultFiles& disk, FakeClock&) { return Held(disk, kBook); }},
    {"lock and file held", BookState::Trying, "Not loaded",
     "The book could not be opened: another program holds the file. Trying again.",
     [](FaultFiles& disk, FakeClock&) {
         return std::make_shared<std::pair<std::shared_ptr<void>, std::shared_ptr<void>>>(
             Held(disk, kBookLock), Held(disk, kBook));
     }},
    {"another terminal", BookState::ShownOnly, "Open in another terminal",
     "The book is open in another terminal.",
     [](FaultFiles& disk, FakeClock& clock) {
         const auto other = std::make_shared<Terminal>(disk, clock);
         other->opening.Try();
         return other;
     }},
    {"another user's terminal", BookState::ShownOnly, "Open in another terminal",
     "The book is open in another terminal.",
     [](FaultFiles& disk, FakeClock& clock) {
         const auto other = std::make_shared<Terminal>(disk, clock);
         other->opening.Try();
         disk.readOnly.insert("Data");
         return std::shared_ptr<void>(nullptr, [other, &disk](void*) { disk.readOnly.clear(); });
     }},
    {"folder read-only", BookState::ReadOnly, "Changes cannot be kept: the folder is read-only",
     "Changes cannot be kept: the folder is read-only",
     [](FaultFiles& disk, FakeClock&) { return ReadOnly(disk, "Data"); }},
    {"file read-only", BookState::ReadOnly, "Changes cannot be kept: the folder is read-only",
     "Changes cannot be kept: the folder is read-only",
     [](FaultFiles& disk, FakeClock&) { return ReadOnly(disk, kBook); }},
    {"disk refuses", BookState::Trying, "Not loaded", "The book could not be opened: ",
     [](FaultFiles& disk, FakeClock&) {
         return Failing(disk, {.failAt = 1, .sticky = true, .fault = FileFault::Other});
     }},
    {"access denied for all", BookState::Trying, "Not loaded",
     "The book could not be opened: access denied. Trying again.",
     [](FaultFiles& disk, FakeClock&) {
         return Failing(disk, {.failAt = 1, .sticky = true, .fault = FileFault::Denied});
     }},
};

TEST_F(Opening, WhatStandsInTheWayIsSaidAndThenEverythingIsThereOnce) {
    for (const Obstacle& obstacle : kObstacles) {
        SCOPED_TRACE(obstacle.name);
        disk.Put(kBook, stored);
        Terminal terminal(disk, clock);
        std::shared_ptr<void> way = obstacle.put(disk, clock);
        for (int tries = 0; tries < 10; ++tries) {
            terminal.opening.Try();
            if (tries == 0) terminal.Hand(4);
        }
        const bool readOnly = obstacle.state == BookState::ReadOnly;
        const bool shown = obstacle.state == BookState::ShownOnly;
        EXPECT_EQ(terminal.opening.State(), obstacle.state);
        EXPECT_EQ(terminal.opening.Status(), obstacle.status);
        EXPECT_TRUE(terminal.opening.Refusal().starts_with(obstacle.said)) << terminal.opening.Refusal();
        EXPECT_EQ(terminal.opening.InsteadOfRows(),
                  readOnly || shown ? std::string() : terminal.opening.Refusal());
        EXPECT_EQ(terminal.opening.Through(), readOnly);
        EXPECT_FALSE(terminal.opening.MayChange());
        EXPECT_EQ(+terminal.book.RowCount(), readOnly ? 4u : shown ? 3u : 0u);
        EXPECT_EQ(terminal.Reports(), readOnly ? 4u : 0u);
        EXPECT_EQ(terminal.user.notices, std::vector<std::string>{terminal.opening.Refusal()});
        EXPECT_EQ(terminal.user.boxes, std::vector<std::string>{});
        EXPECT_EQ(std::count_if(terminal.log.lines.begin(), terminal.log.lines.end(),
                                [](const std::string& line) { return line.starts_with("Opening"); }),
                  1);
        EXPECT_TRUE(terminal.log.Has(" (error 100")) << "what the system said, for who looks into the log";
        EXPECT_FALSE(terminal.Save().ok) << "nothing is ever written over a book that is not ours";
        way.reset();
        EXPECT_EQ(disk.Content(kBook), stored);
        if (readOnly) continue;

        terminal.opening.Try();
        EXPECT_EQ(terminal.opening.State(), BookState::Open);
        EXPECT_EQ(terminal.opening.Refusal() + std::string(terminal.opening.Status()), "");
        EXPECT_EQ(terminal.Numbers(), (std::vector<std::uint32_t>{1, 2, 3, 4}));
        EXPECT_EQ(+terminal.book.Row(0).veltTradeID, 4u) << "behind the stored ones";
        EXPECT_EQ(terminal.Reports(), 4u);
        EXPECT_EQ(terminal.SecondReports(), 1u);
        EXPECT_EQ(terminal.steps, std::string(shown ? "look " : "") + "changes report waiting ");
        EXPECT_TRUE(terminal.Save().ok);
    }
}

TEST_F(Opening, WhatTheOtherTerminalSavesIsShownAnew) {
    Terminal owner(disk, clock), second(disk, clock);
    owner.opening.Try();
    second.opening.Try();
    EXPECT_EQ(second.Numbers(), (std::vector<std::uint32_t>{1, 2, 3}));
    owner.Hand(7);
    second.opening.Try();
    EXPECT_EQ(second.book.RowCount(), 3u) << "not saved there yet";
    EXPECT_TRUE(owner.Save().ok);
    second.opening.Try();
    EXPECT_EQ(second.Numbers(), (std::vector<std::uint32_t>{1, 2, 3, 7}));
    EXPECT_EQ(second.Reports(), 0u);
    EXPECT_TRUE(owner.Save().ok) << "who only looks holds nothing open";
    owner.file.Release();
    // Nobody has it, and now nobody can read it: other people's trades do not stay.
    const auto held = Held(disk, kBook);
    second.opening.Try();
    EXPECT_EQ(second.opening.State(), BookState::Trying);
    EXPECT_EQ(second.book.RowCount(), 0u);
}

// Each step fails once, for want of memory, and is carried out again.
TEST_F(Opening, AStepThatFailsIsMadeUpFor) {
    for (const std::string failing : {"look", "changes", "report", "waiting"}) {
        SCOPED_TRACE(failing);
        disk.Put(kBook, stored);
        auto other = std::make_unique<Terminal>(disk, clock);
        if (failing == "look") other->opening.Try();
        Terminal terminal(disk, clock);
        terminal.throwIn = failing;
        terminal.Hand(4);
        terminal.opening.Try();
        EXPECT_FALSE(terminal.opening.Through());
        EXPECT_EQ(terminal.opening.Status(), "Not loaded");
        terminal.Hand(5);
        other.reset();
        terminal.opening.Try();
        EXPECT_EQ(terminal.opening.State(), BookState::Open);
        EXPECT_EQ(terminal.Numbers(), (std::vector<std::uint32_t>{1, 2, 3, 4, 5}));
        EXPECT_EQ(terminal.Identifiers(), 5u);
        EXPECT_EQ(terminal.Reports(), 5u);
    }
}

TEST_F(Opening, AfterTheBarWentNothingGoesOn) {
    for (const std::string last : {"changes", "report", "waiting"}) {
        Terminal terminal(disk, clock);
        terminal.stopIn = last;
        terminal.opening.Try();
        terminal.opening.Try();
        EXPECT_TRUE(terminal.steps.ends_with(last + " ")) << terminal.steps;
        EXPECT_FALSE(terminal.opening.Through());
    }
}

TEST_F(Opening, WaitsForWhatTheReportsDependOn) {
    Terminal terminal(disk, clock);
    terminal.settingsRead = false;
    for (int tries = 0; tries < 3; ++tries)
        terminal.opening.Try();
    EXPECT_EQ(terminal.steps, "changes report report report ");
    EXPECT_FALSE(terminal.opening.Through());
    EXPECT_EQ(terminal.Reports(), 0u);
    terminal.settingsRead = true;
    terminal.opening.Try();
    EXPECT_TRUE(terminal.opening.Through());
    EXPECT_EQ(terminal.Reports(), 3u);
}

// What a disk breaks off is neither half a book at once nor ever an empty one.
TEST_F(Opening, ABookThatIsBrokenOffIsReadAgain) {
    Terminal watching(disk, clock);
    disk.CountAnew();
    watching.opening.Try();
    const std::uint64_t operations = disk.Operations();
    watching.file.Release();
    for (std::uint64_t failing = 1; failing <= operations; ++failing) {
        SCOPED_TRACE(failing);
        Terminal terminal(disk, clock);
        disk.CountAnew();
        disk.plan = {.failAt = failing};
        terminal.opening.Try();
        disk.ClearPlan();
        EXPECT_TRUE(terminal.opening.Through() || terminal.book.RowCount() == 0);
        EXPECT_EQ(terminal.opening.Through() ? 3u : 0u, terminal.Reports());
        terminal.opening.Try();
        EXPECT_EQ(terminal.opening.State(), BookState::Open);
        EXPECT_EQ(terminal.Numbers(), (std::vector<std::uint32_t>{1, 2, 3}));
        EXPECT_EQ(terminal.Reports(), 3u);
    }
}

// Whatever is in the way and for how long, in whatever order trades come: each stands in the book once, under
// an identifier of its own, and was reported once for each time that the book was opened.
TEST_F(Opening, EveryTradeIsInOnceWhateverHappens) {
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        disk.Put(kBook, stored);
        std::vector<std::uint32_t> saved{1, 2, 3}, handed;
        std::uint32_t number = 10;
        Terminal terminal(disk, clock);
        std::shared_ptr<void> way;
        std::unique_ptr<Terminal> other;
        for (int step = 0; step < 12 && !terminal.opening.Through(); ++step) {
            clock.now += 1;
            switch (random() % 6) {
                case 0:
                    if (!way && !other) way = Held(disk, kBook);
                    break;
                case 1:
                    way.reset();
                    break;
                case 2:
                    if (!way && !other) (other = std::make_unique<Terminal>(disk, clock))->opening.Try();
                    break;
                case 3:
                    if (!other || !other->opening.Through()) break;
                    other->Hand(++number);
                    saved.push_back(number);
                    EXPECT_TRUE(other->Save().ok);
                    break;
                case 4:
                    other.reset();
                    break;
                default:
                    terminal.Hand(++number);
                    handed.push_back(number);
            }
            if (random() % 2 == 0) terminal.opening.Try();
        }
        way.reset();
        other.reset();
        terminal.opening.Try();
        const std::size_t storedThen = saved.size();
        saved.insert(saved.end(), handed.begin(), handed.end());
        std::sort(saved.begin(), saved.end());
        ASSERT_EQ(terminal.opening.State(), BookState::Open);
        ASSERT_EQ(terminal.Numbers(), saved);
        ASSERT_EQ(terminal.Identifiers(), saved.size());
        ASSERT_EQ(terminal.Reports(), saved.size());
        ASSERT_EQ(terminal.SecondReports(), saved.size() - storedThen);
    }
}

struct FakeGate final : IBookGate {
    bool through = false, change = false;
    bool Through() const override { return through; }
    bool MayChange() const override { return change; }
    std::string Refusal() const override { return change ? "" : "not now"; }
};

TEST(BookGateTest, EveryCommandKnowsWhatItNeeds) {
    FakeGate shut, readOnly, open;
    readOnly.through = open.through = open.change = true;
    for (std::uint32_t id = command::First; id <= command::Last; ++id) {
        const bool look =
            (id >= command::CopyHtml && id <= command::ImportReport && id != command::Properties);
        const bool reads =
            look || id == command::Save || id == command::ExportCsv || id == command::Properties;
        EXPECT_EQ(Meets(shut, NeedOf(id)), look) << id;
        EXPECT_EQ(Meets(readOnly, NeedOf(id)), reads) << id;
        EXPECT_TRUE(Meets(open, NeedOf(id))) << id;
    }
    EXPECT_EQ(NeedOf(2003), BookNeed::Nothing) << "no command of the book";
}

// Entry is behind every path to the book, whoever forgets to ask the gate.
TEST(BookGateTest, EntryRefusesAndASaveSaysSo) {
    FakeClock clock;
    FaultFiles disk(clock);
    FakeHost host;
    FakeUser user;
    FakeLog log;
    FakeGate gate;
    TradeBook book(host);
    ManualClients clients(disk, host, "CSV");
    NoReports reports;
    struct Now final : IUiThread {
        void Post(std::function<void()> work) override { work(); }
    } ui;
    Entry entry({host, user, disk, clock, clients, nullptr, reports});
    const auto saves = [&](std::string_view reason) {
        user.boxes.clear();
        user.answers = {kAnswerOk, kAnswerOk, kAnswerYes, kAnswerOk};
        entry.Save();
        EXPECT_FALSE(entry.SaveNow());
        EXPECT_EQ(entry.AskToSave(), AskEnd::Failed);
        const std::string failed = "Dravel|Dravel Save Failed\n" + std::string(reason);
        EXPECT_EQ(user.boxes,
                  (std::vector<std::string>{failed, failed, "Dravel|Do you want to save Dravel", failed}));
    };
    saves("The book is closed.");
    entry.BookOpened({book, nullptr, ui, log, nullptr, {}, {}, &gate});
    saves("not now");
    EXPECT_FALSE(book.Changed()) << "a save that never began changes nothing";
    entry.Import(nullptr, "in.csv");  // there is no dialog to be opened
    gate.change = true;
    saves(kBookNotOwned);
}

}  // namespace
}  // namespace Dravel
