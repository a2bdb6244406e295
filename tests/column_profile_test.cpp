// A grid's columns come back as the user left them, whatever the profile's file holds.
#include "tradebook/base/ColumnProfile.h"

#include <gtest/gtest.h>

#include "support/FakeClock.h"
#include "support/FaultFiles.h"
#include "tradebook/base/GridNames.h"

namespace Dravel {

namespace fake = Test;

namespace {

constexpr char kFile[] = "root/ColumnProfile/P/ColumnProfile.xml";
constexpr char kDamaged[] = "root/ColumnProfile/P/ColumnProfile.xml.damaged";

// Columns a, b, c, d of widths 10, 20, 30, 40; d is hidden.
class ProfileTest : public testing::Test {
 protected:
    void Open() {
        grid = std::make_unique<GridModel>();
        profile = std::make_unique<ColumnProfile>(disk, "root", "P");
        multiple = profile->MultipleSort();
        for (int i = 0; i < 4; ++i) {
            const std::string letter(1, static_cast<char>('a' + i));
            profile->AddColumn(
                *grid, {.key = letter, .header = "H" + letter, .width = 10 * (i + 1), .visible = i < 3},
                multiple);
        }
        profile->Restore(*grid);
    }
    // "a.Width=7 b.Sort=-1": the file of a profile with these values.
    void File(const std::string& values) {
        CVELTPXMLSettings settings;
        std::istringstream words(values);
        for (std::string word; words >> word;) {
            const auto dot = word.find('.'), equals = word.find('=');
            settings.CreateKey("P" + (dot == 0 ? "" : "\\" + word.substr(0, dot)));
            settings.WriteText(word.substr(dot + 1, equals - dot - 1), word.substr(equals + 1));
        }
        settings.SaveFile(disk, kFile);
    }
    // Shown columns in their order with width, alignment and lock; then the hidden ones; sort keys; groups.
    std::string Layout() const {
        const GridColumns& columns = grid->Columns();
        std::string text;
        const auto add = [&](int column) {
            text += columns[column].key + std::to_string(columns[column].width);
            text += "lrc"[static_cast<int>(columns[column].align)];
            text += columns[column].locked ? "! " : " ";
        };
        for (int i = 0; i < columns.ShownCount(); ++i)
            add(columns.AtPosition(i));
        text += "- ";
        for (int i = 0; i < columns.Count(); ++i) {
            if (!columns[i].visible) add(i);
        }
        for (const GridSortKey& key : grid->Sort().Keys())
            text += (key.ascending ? "+" : "-") + columns[key.column].key;
        for (const int column : grid->Groups().Columns())
            text += "/" + columns[column].key;
        return text;
    }
    std::string LayoutOf(const std::string& values) {
        File(values);
        Open();
        return Layout();
    }

    fake::FakeClock clock;
    fake::FaultFiles disk{clock};
    std::unique_ptr<GridModel> grid;
    std::unique_ptr<ColumnProfile> profile;
    bool multiple = false;
};

TEST_F(ProfileTest, SavedValuesReplaceTheDefaultsWhereTheyAreUsable) {
    const std::string kDefaults = "a10l b20l c30l - d40l ";
    const struct {
        const char* values;
        std::string layout;
    } cases[] = {
        {"", kDefaults},
        {"a.Width=2048 b.Width=0 c.Width=2049 d.Width=99", "a2048l b20l c30l - d99l "},
        {"a.Width=-5 b.Width=99999999999999 c.Width=abc", kDefaults},
        {"a.Align=1 b.Align=2 c.Align=3 d.Align=-1", "a10r b20c c30l - d40l "},
        {"a.Visible=0 d.Visible=1", "b20l c30l d40l - a10l "},
        {"a.Locked=1 b.Locked=-7", "a10l! b20l! c30l - d40l "},
        {"a.Sort=-1 c.Sort=1 b.Sort=2", kDefaults + "-a+c"},
        {".IsMultipleSort=0 a.Sort=-1 c.Sort=1", kDefaults + "+c"},
        {"a.Sort=-1 a.SortOrder=2 c.Sort=1 c.SortOrder=1", kDefaults + "+c-a"},
        {"a.SortOrder=1 b.Sort=1", kDefaults + "+b"},
        // Order: places that no column can have are left out, the others close up.
        {"c.Order=0 b.Order=1 a.Order=2", "c30l b20l a10l - d40l "},
        {"c.Order=0 b.Order=4 a.Order=2147483647", "c30l a10l b20l - d40l "},
        {"b.Order=0 c.Order=0", "c30l a10l b20l - d40l "},  // the later of two takes the place
        {"d.Order=0 c.Order=1", "c30l a10l b20l - d40l "},  // a hidden one has none
        {"c.Order=-1 b.Order=-2147483648", kDefaults},
        {"c.Group=0 d.Group=5", kDefaults + "/c/d"},
        {"a.Group=1 b.Group=1 c.Group=-1", kDefaults + "/b"},
        {"a.Header=x a.Unknown=1 zz.Width=5", kDefaults},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LayoutOf(c.values), c.layout) << c.values;
}

TEST_F(ProfileTest, HeadersAreTakenUnlessTheyAreDamaged) {
    File("a.Header=Mine b.Header= c.Header=" + std::string(300, 'x'));
    Open();
    EXPECT_EQ(grid->Columns()[0].header, "Mine");
    EXPECT_EQ(grid->Columns()[1].header, "Hb");
    EXPECT_EQ(grid->Columns()[2].header, "Hc");
    ASSERT_EQ(profile->Records().size(), 4u);
    EXPECT_EQ(profile->Records()[0].header, "Mine");
    EXPECT_EQ(profile->Records()[3].spare, -1);
}

TEST_F(ProfileTest, ALayoutSurvivesSavingAndLoading) {
    Open();
    EXPECT_TRUE(multiple);
    grid->Columns().SetVisible(3, true);
    grid->Columns().SetVisible(0, false);
    grid->Columns().SetWidth(0, 77);  // hidden, and keeps its width
    grid->Columns().SetWidth(2, 2048);
    grid->Columns().Move(3, 0);
    grid->Columns().SetLocked(1, true);
    grid->Columns().SetAlign(2, GridAlign::Centre);
    grid->Sort().Set(3, false, true);
    grid->Sort().Set(1, true, true);  // keys not in the order of the columns
    grid->Groups().Add(2);
    grid->Groups().Add(0);
    const std::string left = Layout();
    EXPECT_EQ(left, "d40l b20l! c2048c - a77l -d+b/c/a");
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(profile->Save(*grid, true));
        Open();
        EXPECT_EQ(Layout(), left);
        EXPECT_TRUE(multiple);
    }
    ASSERT_TRUE(profile->Save(*grid, false));
    Open();
    EXPECT_FALSE(multiple);
}

TEST_F(ProfileTest, TheFileIsTheOneThatOtherProgramsRead) {
    Open();
    grid->Sort().Set(0, false, false);
    ASSERT_TRUE(profile->Save(*grid, true));
    const auto& bytes = disk.Content(kFile);
    const std::string text(bytes.begin(), bytes.end());
    EXPECT_EQ(
        text.substr(0, text.find("<b>")),
        "<CURRENT_USER>\r\n<P>\r\n<IsMultipleSort>\"1\"</IsMultipleSort>\r\n<a>\r\n<Header>\"Ha\"</"
        "Header>\r\n"
        "<Width>\"10\"</Width>\r\n<Visible>\"1\"</Visible>\r\n<Align>\"0\"</Align>\r\n<Sort>\"-1\"</Sort>\r\n"
        "<Locked>\"0\"</Locked>\r\n<Order>\"0\"</Order>\r\n<Group>\"-1\"</Group>\r\n</a>\r\n");
}

// Whatever stands in the file: the grid has all its columns in widths that it can show, and a save mends it.
TEST_F(ProfileTest, EveryDamagedFileGivesALayoutAndIsMended) {
    Open();
    grid->Sort().Set(2, true, true);
    ASSERT_TRUE(profile->Save(*grid, true));
    const fake::FileBytes whole = disk.Content(kFile);
    std::vector<fake::FileBytes> damaged;
    for (std::size_t cut = 0; cut < whole.size(); cut += 3)
        damaged.emplace_back(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut));
    for (std::size_t at = 0; at < whole.size(); at += 2) {
        damaged.push_back(whole);
        damaged.back()[at] ^= static_cast<std::uint8_t>(1u << at % 8);
    }
    const std::string keys = "<CURRENT_USER><P><a><Width><x>\"1\"</x></Width></a><IsMultipleSort><y></y>";
    damaged.emplace_back(keys.begin(), keys.end());
    for (const fake::FileBytes& bytes : damaged) {
        disk.Put(kFile, bytes);
        Open();
        ASSERT_EQ(grid->Columns().Count(), 4);
        for (int i = 0; i < 4; ++i)
            ASSERT_LE(grid->Columns()[i].width, kMaxColumnWidth);
        const std::string shown = Layout();
        const bool told = !profile->TakeNotice().empty();
        ASSERT_TRUE(profile->Save(*grid, multiple));
        Open();
        ASSERT_EQ(Layout(), shown) << std::string(bytes.begin(), bytes.end());
        ASSERT_EQ(told, disk.Has(kDamaged));
        if (!told) continue;
        ASSERT_EQ(disk.Content(kDamaged), bytes);
        disk.Remove(kDamaged);
    }
}

// What the user changed before the file could be read stays; all else is the file's.
TEST_F(ProfileTest, AFileThatIsHeldIsTakenOverLaterUnderTheUsersChanges) {
    using Change = void (*)(GridModel&);
    const struct {
        Change change;
        const char* layout;
    } kCases[] = {
        {[](GridModel&) {}, "d7l c30r a10l - b20l +c/a"},
        {[](GridModel& model) { model.Columns().SetWidth(2, 99); }, "d7l c99r a10l - b20l +c/a"},
        {[](GridModel& model) { model.Columns().Move(2, 0); }, "c30r a10l d7l - b20l +c/a"},
        {[](GridModel& model) { model.Columns().SetVisible(0, false); }, "c30r d7l - a10l b20l +c/a"},
        {[](GridModel& model) { model.Sort().Set(0, false, true); }, "d7l c30r a10l - b20l -a/a"},
        {[](GridModel& model) { model.Groups().Add(3); }, "d7l c30r a10l - b20l +c/d"},
    };
    for (const auto& [change, layout] : kCases) {
        File("d.Width=7 d.Visible=1 d.Order=0 c.Order=1 c.Align=1 a.Order=2 b.Visible=0 c.Sort=1 a.Group=0");
        const fake::FileBytes before = disk.Content(kFile);
        std::unique_ptr<IFile> scanner;
        ASSERT_TRUE(disk.Open(kFile, FileMode::ReadWrite, FileShare::DenyAll, scanner));
        Open();
        EXPECT_EQ(Layout(), "a10l b20l c30l - d40l ");
        change(*grid);
        EXPECT_FALSE(profile->Save(*grid, multiple));
        EXPECT_FALSE(profile->Retry(*grid, multiple));
        scanner.reset();
        EXPECT_EQ(disk.Content(kFile), before);
        EXPECT_TRUE(profile->Retry(*grid, multiple));
        EXPECT_EQ(Layout(), layout);
        Open();
        EXPECT_EQ(Layout(), layout) << "saved when it could be read";
    }
}

TEST_F(ProfileTest, AFullDiskLeavesTheOldFile) {
    Open();
    ASSERT_TRUE(profile->Save(*grid, true));
    const fake::FileBytes before = disk.Content(kFile);
    grid->Columns().SetWidth(0, 50);
    disk.plan.bytesLeft = 10;
    EXPECT_FALSE(profile->Save(*grid, true));
    EXPECT_EQ(disk.Content(kFile), before);
    disk.ClearPlan();
    EXPECT_TRUE(profile->Save(*grid, true));
    ColumnProfile nowhere(disk, "", "P");
    EXPECT_TRUE(nowhere.Path().empty());
    const auto names = disk.Names();
    EXPECT_TRUE(nowhere.Save(*grid, true));
    EXPECT_EQ(disk.Names(), names);
}

TEST(GridNames, CodesOutsideTheTableHaveNone) {
    EXPECT_EQ(GridNameOf(19), "Dravel");
    EXPECT_EQ(GridNameOf(22), "NetPostionHistory");
    EXPECT_EQ(GridNameOf(49), "NetPosExpiry");
    for (const int code : {10, 43, 50, -1, 2147483647})
        EXPECT_EQ(GridNameOf(code), "") << code;
}

}  // namespace
}  // namespace Dravel
