// What stands round the grid: the status line's words, the list of notices, the bar's place.
#include <gtest/gtest.h>

#include "support/FakeClock.h"
#include "tradebook/BookStatus.h"
#include "tradebook/base/BarPlace.h"
#include "tradebook/base/NoticeList.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel {
namespace {

TEST(BookStatusTest, CountsAreGroupedAndAFilterIsSeen) {
    const auto all = StatusTexts({.shown = 1,
                                  .all = 1,
                                  .selected = 0,
                                  .bought = 0,
                                  .sold = 0,
                                  .changed = false,
                                  .import = "9 of 10 imported, report",
                                  .notice = "Dravel Save Successfully"});
    EXPECT_EQ(all[statuspart::Trades], "1 trade");
    EXPECT_EQ(all[statuspart::Selected], "0 selected");
    EXPECT_EQ(all[statuspart::Changed], "Saved");
    EXPECT_EQ(all[statuspart::Import], "9 of 10 imported, report");
    EXPECT_EQ(all[statuspart::Notice], "Dravel Save Successfully");
    const auto some = StatusTexts({.shown = 999,
                                   .all = 1000000,
                                   .selected = 12345,
                                   .bought = 100,
                                   .sold = 18446744073709551615u,
                                   .changed = true,
                                   .import = {},
                                   .notice = {}});
    EXPECT_EQ(some[statuspart::Trades], "999 of 1,000,000 trades");
    EXPECT_EQ(some[statuspart::Selected], "12,345 selected");
    EXPECT_EQ(some[statuspart::Bought], "Bought 100");
    EXPECT_EQ(some[statuspart::Sold], "Sold 18,446,744,073,709,551,615");
    EXPECT_EQ(some[statuspart::Changed], "Not saved");
    EXPECT_EQ(StatusTexts({.beingTyped = 1})[statuspart::Changed], "Saved, 1 row is still being typed");
    EXPECT_EQ(StatusTexts({.beingTyped = 1200, .changed = true})[statuspart::Changed],
              "Not saved, 1,200 rows are still being typed");
}

TEST(NoticeListTest, AnOlderNoticeMakesRoom) {
    Dravel::Test::FakeClock clock;
    NoticeList notices(clock);
    std::size_t told = 0;
    notices.SetListener([&] { ++told; });
    for (std::size_t i = 0; i < NoticeList::kMost + 3; ++i)
        notices.Add(std::to_string(i));
    EXPECT_EQ(told, NoticeList::kMost + 3);
    EXPECT_EQ(notices.All().size(), NoticeList::kMost);
    EXPECT_EQ(notices.All().front().text, "3");
    EXPECT_EQ(notices.All().back().time.size(), std::string_view("dd/MM/yyyy HH:mm:ss").size());
}

TEST(BarPlaceTest, ComesBackAndWhatIsDamagedKeepsTheDefault) {
    CVELTPXMLSettings settings;
    const DockState first{DockSide::Bottom, 100, 100, 600, 400}, left{DockSide::Left, -5, 7, 300, 900};
    DockState place = first;
    EXPECT_FALSE(LoadBarPlace(settings, "Bar", place));
    EXPECT_TRUE(SaveBarPlace(settings, "Bar", left));
    EXPECT_TRUE(LoadBarPlace(settings, "Bar", place));
    EXPECT_EQ(place, left);
    settings.CreateKey("Bar");
    settings.WriteInteger("Dock", 5);
    settings.WriteText("Width", "wide");
    place = first;
    EXPECT_TRUE(LoadBarPlace(settings, "Bar", place));
    EXPECT_EQ(place, (DockState{DockSide::Bottom, -5, 7, 600, 900}));
}

}  // namespace
}  // namespace Dravel
