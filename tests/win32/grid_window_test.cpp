// A grid's real window: the filter bar's fields, groups, painting, the header under the mouse.
#include "win32/GridRig.h"

using namespace Dravel;
using namespace Dravel::Test;

TEST_F(GridWindow, FilterFieldsFollowTheColumns) {
    grid.EnableFilterBar("<all>", "Test");
    EXPECT_EQ(Told(), "");  // no text: nothing filters
    EXPECT_TRUE(IsWindowVisible(Control(2000)));
    EXPECT_FALSE(IsWindowVisible(Control(2003)));  // out of view
    grid.MoveColumn(1, 0);
    grid.FreezeColumns(1);
    RECT first{}, second{};
    GetWindowRect(Control(2001), &first);
    GetWindowRect(Control(2000), &second);
    EXPECT_LT(first.left, second.left);
    Do("set:2001,ab");
    EXPECT_EQ(Told(), "filter 1=ab");
    grid.EnsureVisible(0, 3);  // scrolls: the frozen one stays, the next goes
    EXPECT_TRUE(IsWindowVisible(Control(2001)));
    EXPECT_FALSE(IsWindowVisible(Control(2000)));
    EXPECT_TRUE(IsWindowVisible(Control(2003)));
    grid.DisableFilterBar();
    EXPECT_EQ(Told(), "filter -1");
    EXPECT_FALSE(IsWindowVisible(Control(2001)));
    grid.EnableFilterBar("<all>", "Test");
    EXPECT_EQ(Told(), "filter -1");
    EXPECT_EQ(TextOf(Control(2001)), "ab");  // outlasts hiding
    grid.SetColumnVisible(1, false);
    EXPECT_EQ(Told(), "filter 1=");  // nobody sees what it filters by
    grid.SetFilterText(0, "x");
    EXPECT_EQ(TextOf(Control(2000)), "x");
    EXPECT_EQ(Told(), "filter 0=x");
    grid.SetFilterText(0, "<all>");
    EXPECT_FALSE(grid.Model().Filter().Active(0));
}

TEST_F(GridWindow, KeysWalkTheFilterFields) {
    grid.EnableFilterBar("<all>", "Test");
    grid.FocusFilter(0);
    Do("type:ab");
    EXPECT_EQ(Told(), "filter 0=a; filter 0=ab");
    Do("esc");
    EXPECT_EQ(Told(), "filter 0=");
    EXPECT_EQ(GetFocus(), Control(2000));
    Do("esc");
    EXPECT_EQ(GetFocus(), Window());
    grid.FocusFilter(0);
    Do("tab tab tab");
    EXPECT_EQ(GetFocus(), Control(2003));  // came into view
    EXPECT_TRUE(IsWindowVisible(Control(2003)));
    Do("tab");
    EXPECT_EQ(GetFocus(), Control(2000));
    Do("shift-tab shift-tab enter");
    EXPECT_EQ(GetFocus(), Window());
    EXPECT_EQ(State(), "0.2");
    grid.FocusFilter(1);
    Do("down");
    EXPECT_EQ(GetFocus(), Window());
    // A field that has the keyboard keeps it out of view, and gives it back when the bar goes.
    grid.FocusFilter(0);
    Do("type:a");
    grid.EnsureVisible(0, 3);
    EXPECT_EQ(GetFocus(), Control(2000));
    grid.DisableFilterBar();
    EXPECT_EQ(GetFocus(), Window());
    const GridAccelerator keys[] = {{'A', {.ctrl = true}, 7}, {VK_F4, {.ctrl = true}, 8}};
    grid.SetAccelerators(keys);
    grid.EnableFilterBar("<all>", "Test");
    grid.FocusFilter(0);
    Told();
    Do("ctrl-f4 ctrl-a");  // a command of the grid, and one that the field needs
    EXPECT_EQ(Told(), "command 8");
}

TEST_F(GridWindow, GroupHeadsOpenAndCloseAndAreNoCells) {
    grid.head = 2;
    const GridView& view = grid.Model().View();
    const Rect box = view.GroupBox(2, 0);
    const std::string inBox = std::to_string(box.left + 2) + "," + std::to_string(box.top + 2);
    const std::string onHead = "150," + std::to_string(box.top + 2);
    grid.SetCurrent(2, 1);
    const Case cases[] = {
        {"left", "2.1", "close 2"}, {"left", "2.1", ""},  // closed already
        {"right", "2.1", "open 2"}, {"minus", "2.1", "close 2"},
        {"plus", "2.1", "open 2"},  {"f2 type:x", "2.1", ""},  // not to be edited
        {"down right", "3.2", ""},
    };
    for (const Case& one : cases) {
        Do(one.steps);
        EXPECT_EQ(State(), one.state) << one.steps;
        EXPECT_EQ(Told(), one.told) << one.steps;
    }
    Do("click:" + inBox);
    EXPECT_EQ(Told(), "close 2");
    Do("click:" + onHead);
    EXPECT_EQ(Told(), "");
    Do("double:" + onHead);
    EXPECT_EQ(Told(), "open 2");
}

TEST_F(GridWindow, PaintingAsksForVisibleCellsWhateverTheNumberOfRows) {
    const auto paint = [&] {
        UpdateWindow(Window());
        grid.asked = 0;
        grid.Redraw();
        UpdateWindow(Window());
        return grid.asked;
    };
    const int few = paint();
    EXPECT_GT(few, 0);
    grid.rows = 1'000'000;
    grid.RowsReset();
    const GridView& view = grid.Model().View();
    EXPECT_EQ(paint(), static_cast<int>(view.VisibleEnd()) * 3);  // the fourth column is out of view
    EXPECT_LT(paint(), 2 * few);
    // The bar counts in 32 bits, its messages in 16.
    SendMessageW(Window(), WM_VSCROLL, SB_BOTTOM, 0);
    EXPECT_EQ(view.TopRow(), 1'000'000 - view.PageRows());
    SCROLLINFO bar{};
    bar.cbSize = sizeof bar;
    bar.fMask = SIF_POS;
    UpdateWindow(Window());
    GetScrollInfo(Window(), SB_VERT, &bar);
    EXPECT_EQ(bar.nPos, static_cast<int>(view.TopRow()));
    // A row that comes in on top leaves the view on its rows.
    const std::uint32_t top = view.TopRow();
    ++grid.rows;
    grid.RowsInserted(0, 1);
    EXPECT_EQ(view.TopRow(), top + 1);
}

TEST_F(GridWindow, TheHeaderSortsMovesAndSizes) {
    // Columns begin at 9, 89, 169, 569.
    Do("click:50,5 click:50,5 click:120,5");
    EXPECT_EQ(Told(), "sort +0; sort -0; sort +1");
    Do("ctrl-click:50,5");
    EXPECT_EQ(Told(), "sort +0");  // multiple sort is off
    grid.SwitchMultipleSort();
    Do("ctrl-click:120,5 shift-click:120,5");
    EXPECT_EQ(Told(), "sort +0 +1; sort +0 -1");
    grid.SwitchMultipleSort();
    EXPECT_EQ(Told(), "sort +0");  // the most important one is left
    Do("drag:50,5,160,5");
    EXPECT_EQ(Told(), "columns");
    EXPECT_EQ(grid.Columns().AtPosition(0), 1);
    Do("drag:89,5,119,5");  // the edge between the two
    EXPECT_EQ(grid.Columns()[1].width, 110);
    EXPECT_EQ(Told(), "columns");
    grid.SetColumnLocked(0, true);
    Do("drag:50,5,180,5 drag:199,5,260,5");
    EXPECT_EQ(grid.Columns().AtPosition(0), 1);
    EXPECT_EQ(grid.Columns()[0].width, 80);
    EXPECT_EQ(Told(), "");
    // Escape in the middle of a drag.
    SendMessageW(Window(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(119, 5));
    SendMessageW(Window(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(300, 5));
    EXPECT_GT(grid.Columns()[1].width, 200);
    Do("esc");
    EXPECT_EQ(grid.Columns()[1].width, 110);
    Do("double:119,5");
    EXPECT_LT(grid.Columns()[1].width, 80);  // fits "Price" and "19.1"
}
