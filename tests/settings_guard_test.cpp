// Settings whose file cannot be read, is damaged, or cannot be written: nothing of the user's is lost.
#include "tradebook/base/SettingsGuard.h"

#include <gtest/gtest.h>

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

constexpr char kFile[] = "root/Settings.xml";

class SettingsGuardTest : public testing::Test {
 protected:
    // An opening of the plug-in.
    struct Opening {
        explicit Opening(SettingsGuardTest& test)
            : guard(test.disk, test.clock, test.log, settings, "root/Settings.xml") {
            guard.WhenKnown([this] { ++known; });
            guard.Open();
        }
        // "Key.Name"
        std::string Value(const std::string& key, const std::string& name) {
            std::string text = "-";
            if (settings.Open(key)) settings.ReadText(name, text);
            return text;
        }
        void Set(const std::string& key, const std::string& name, const std::string& value) {
            settings.CreateKey(key);
            settings.WriteText(name, value);
        }

        CVELTPXMLSettings settings;
        SettingsGuard guard;
        int known = 0;
    };

    void SetUp() override { Fresh(); }
    void Fresh() {
        disk.Format();
        CVELTPXMLSettings settings;
        settings.CreateKey("Grid");
        settings.WriteText("Analysis", "1");
        settings.CreateKey("Bar");
        settings.WriteText("Left", "100");
        settings.SaveFile(disk, kFile);
        whole = disk.Content(kFile);
        disk.CountAnew();
    }
    FileBytes Copy(int number) const {
        const std::string name = std::string(kFile) + ".damaged" + (number > 1 ? std::to_string(number) : "");
        return disk.Has(name) ? disk.Content(name) : FileBytes();
    }

    FakeClock clock;
    FaultFiles disk{clock};
    FakeLog log;
    FakeUser user;
    FileBytes whole;
};

TEST_F(SettingsGuardTest, AFileThatIsHeldIsNeitherReplacedNorForgotten) {
    std::unique_ptr<IFile> scanner;
    ASSERT_TRUE(disk.Open(kFile, FileMode::ReadWrite, FileShare::DenyAll, scanner));
    Opening opening(*this);
    EXPECT_FALSE(opening.guard.Known());
    EXPECT_EQ(opening.guard.TakeNotice(),
              "The settings cannot be read: another program holds the file. No trade is reported until they "
              "can be. Trying again.");
    opening.Set("Bar", "Left", "7");
    opening.Set("MessageBox\\Dravel", "T1", "6");
    opening.guard.Save();
    opening.guard.Retry();
    EXPECT_EQ(disk.Content(kFile), whole);
    EXPECT_EQ(opening.known, 0);
    scanner.reset();
    opening.guard.Retry();
    EXPECT_EQ(opening.guard.TakeNotice(), "The settings could be read.");
    opening.guard.Retry();
    EXPECT_EQ(opening.known, 1);
    for (int i = 0; i < 2; ++i) {
        Opening again(*this);
        EXPECT_TRUE(again.guard.Known());
        EXPECT_EQ(again.Value("Grid", "Analysis"), "1");
        EXPECT_EQ(again.Value("Bar", "Left"), "7");
        EXPECT_EQ(again.Value("MessageBox\\Dravel", "T1"), "6");
    }
    EXPECT_TRUE(user.boxes.empty());
}

// One refusal anywhere: what the file said is there at the end, and so is what was changed.
TEST_F(SettingsGuardTest, ARefusalOfAnyOperationLosesNothing) {
    for (const FileFault fault : {FileFault::InUse, FileFault::Denied, FileFault::Other, FileFault::Full}) {
        for (std::uint64_t k = 1; k <= 16; ++k) {
            Fresh();
            disk.plan = {.failAt = k, .fault = fault};
            {
                Opening opening(*this);
                opening.Set("Bar", "Left", "7");
                opening.guard.Save();
                opening.guard.Retry();
                disk.ClearPlan();
            }
            Opening again(*this);
            ASSERT_EQ(again.Value("Grid", "Analysis"), "1") << k;
            ASSERT_EQ(again.Value("Bar", "Left"), "7") << k;
            ASSERT_EQ(disk.Names().size(), 1u) << k;
        }
    }
}

TEST_F(SettingsGuardTest, TheUserIsAskedAfterTenSeconds) {
    const struct {
        std::uint32_t answer;
        bool readMeanwhile, known, kept;
    } kCases[] = {
        {kAnswerYes, false, true, true},   // the defaults, and the file stays as it is
        {kAnswerNo, false, false, false},  // taken over later
        {0, false, false, false},          // the box went with its window
        {kAnswerYes, true, true, false},   // too late: the settings were there before the answer
    };
    for (const auto& [answer, readMeanwhile, known, kept] : kCases) {
        Fresh();
        user = FakeUser();
        disk.plan = {.failAt = 1, .sticky = true, .fault = FileFault::Denied};
        Opening opening(*this);
        clock.ticks += SettingsGuard::kPatience - 1;
        EXPECT_FALSE(opening.guard.AskIsDue());
        clock.ticks += 1;
        ASSERT_TRUE(opening.guard.AskIsDue());
        user.answers = {answer};
        if (readMeanwhile) {
            user.whileShown = [&] {
                disk.ClearPlan();
                opening.guard.Retry();
            };
        }
        opening.guard.Ask(user);
        EXPECT_EQ(user.boxes, std::vector<std::string>{
                                  "Dravel|The settings cannot be read: access denied. Open the book with the "
                                  "defaults? All trades are then reported to the terminal."});
        EXPECT_EQ(opening.guard.Known(), known);
        EXPECT_EQ(opening.known, known);
        EXPECT_FALSE(opening.guard.AskIsDue()) << "once an opening";
        disk.ClearPlan();
        opening.Set("Bar", "Left", "7");
        opening.guard.Save();
        opening.guard.Retry();
        EXPECT_EQ(disk.Content(kFile) == whole, kept);
        EXPECT_EQ(opening.Value("Grid", "Analysis"), kept ? "-" : "1");
        EXPECT_EQ(Opening(*this).Value("Grid", "Analysis"), "1");
    }
}

// What cannot be read has its default, and the old bytes lie beside the file before anything is written.
TEST_F(SettingsGuardTest, ADamagedFileIsKeptBesideEachUnderANameOfItsOwn) {
    for (const bool links : {true, false}) {
        for (std::size_t cut = 0; cut + 2 < whole.size(); cut += 5) {
            Fresh();
            disk.plan.noLinks = !links;
            const FileBytes damaged(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut));
            for (int number = 1; number <= 2; ++number) {
                disk.Put(kFile, damaged);
                Opening opening(*this);
                ASSERT_TRUE(opening.guard.Known());
                ASSERT_TRUE(opening.guard.TakeNotice().starts_with("The settings were damaged")) << cut;
                ASSERT_TRUE(opening.guard.TakeNotice().empty());
                opening.Set("Bar", "Left", "7");
                opening.guard.Save();
                ASSERT_EQ(Copy(number), damaged) << cut;
                Opening again(*this);
                ASSERT_EQ(again.Value("Bar", "Left"), "7");
                ASSERT_TRUE(again.guard.TakeNotice().empty()) << cut;
            }
            ASSERT_EQ(Copy(1), damaged);
        }
    }
    // As long as there is no copy, nothing is written over it.
    for (std::uint64_t k = 1; k <= 24; ++k) {
        Fresh();
        const FileBytes damaged(40, 'x');
        disk.Put(kFile, damaged);
        disk.plan = {.failAt = k, .sticky = true, .noLinks = true};
        Opening opening(*this);
        opening.Set("Bar", "Left", "7");
        opening.guard.Save();
        ASSERT_TRUE(disk.Content(kFile) == damaged || Copy(1) == damaged) << k;
        disk.ClearPlan();
        opening.guard.Retry();
        ASSERT_EQ(Copy(1), damaged) << k;
        ASSERT_EQ(Opening(*this).Value("Bar", "Left"), "7") << k;
    }
}

}  // namespace
}  // namespace Dravel
