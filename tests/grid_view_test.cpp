// Columns and view: order, freezing, scrolling, and what lies under a point.
#include <gtest/gtest.h>

#include "toolkit/GridSort.h"
#include "toolkit/GridView.h"

using namespace Dravel;

namespace {

// Five columns of 100, 50, 80 (hidden), 60, 40 pixels; the window shows 200 pixels of them and ten rows and a
// half.
class GridViewTest : public testing::Test {
 protected:
    GridViewTest() {
        for (const int width : {100, 50, 80, 60, 40}) {
            columns.Add({"col" + std::to_string(width), "", width, GridAlign::Left, width != 80, false});
        }
        view.SetMetrics({.headerHeight = 20, .bandHeight = 12, .rowHeight = 10, .rowHeaderWidth = 9});
        view.SetClient(209, 137);
        view.SetRowCount(1'000'000);
    }

    std::string At(int x, int y) const {
        static const char* const names[] = {"nothing", "corner",    "header", "divider",
                                            "band",    "rowheader", "cell"};
        const GridHit hit = view.HitTest(x, y);
        std::string text = names[static_cast<int>(hit.part)];
        if (hit.row != kNoRow) text += " " + std::to_string(hit.row);
        if (hit.column >= 0) text += " col" + std::to_string(columns[hit.column].width);
        return text;
    }

    GridColumns columns;
    GridView view{columns};
};

}  // namespace

TEST_F(GridViewTest, FindsWhatIsUnderAPoint) {
    EXPECT_EQ(At(4, 5), "corner");
    EXPECT_EQ(At(50, 5), "header col100");
    EXPECT_EQ(At(107, 5), "divider col100");
    EXPECT_EQ(At(111, 5), "divider col100");
    EXPECT_EQ(At(120, 5), "header col50");
    EXPECT_EQ(At(120, 25), "band col50");
    EXPECT_EQ(At(4, 33), "rowheader 0");
    EXPECT_EQ(At(120, 41), "cell 0 col50");
    EXPECT_EQ(At(120, 42), "cell 1 col50");
    EXPECT_EQ(At(170, 42), "cell 1 col60");  // the hidden one takes no room
    EXPECT_EQ(At(209, 42), "nothing");
    EXPECT_EQ(At(120, 137), "nothing");
    view.SetRowCount(3);
    EXPECT_EQ(At(120, 62), "nothing");
}

TEST_F(GridViewTest, FrozenColumnsStayWhileTheOthersScroll) {
    columns.SetFrozen(1);
    view.Clamp();
    EXPECT_EQ(view.MaxScrollX(), 50);
    view.SetScrollX(30);
    EXPECT_EQ(At(50, 42), "cell 1 col100");
    EXPECT_EQ(At(115, 42), "cell 1 col50");
    EXPECT_EQ(At(130, 42), "cell 1 col60");
    EXPECT_EQ(view.ClipLeft(1), 109);
    EXPECT_FALSE(view.EnsureColumn(0));
    EXPECT_TRUE(view.EnsureColumn(1));
    EXPECT_EQ(view.ScrollX(), 0);
    EXPECT_TRUE(view.EnsureColumn(4));
    EXPECT_EQ(view.ScrollX(), 50);
    columns.SetFrozen(99);  // more than there are
    view.Clamp();
    EXPECT_EQ(view.ScrollX(), 0);
    EXPECT_EQ(At(205, 42), "cell 1 col60");
    columns.SetFrozenRoom(155);  // two columns fit
    EXPECT_EQ(columns.Frozen(), 2);
    columns.SetFrozenRoom(20);
    EXPECT_EQ(columns.Frozen(), 0);
    columns.SetFrozenRoom(1000);
    EXPECT_EQ(columns.Frozen(), 4);
}

TEST_F(GridViewTest, ScrollsByWholeRowsOverTheFullRange) {
    EXPECT_EQ(view.PageRows(), 10u);
    view.SetTopRow(5'000'000'000);
    EXPECT_EQ(view.TopRow(), 999'990u);
    EXPECT_EQ(view.VisibleEnd(), 1'000'000u);
    view.SetTopRow(777'777);
    EXPECT_EQ(view.VisibleEnd(), 777'788u);  // the cut one too
    EXPECT_EQ(At(50, 41), "cell 777777 col100");
    EXPECT_TRUE(view.EnsureRow(777'787));
    EXPECT_EQ(view.TopRow(), 777'778u);
    EXPECT_EQ(view.CellRect(777'779, 0), (Rect{9, 42, 109, 52}));
    EXPECT_EQ(view.CellRect(777'777, 0), Rect{});
    EXPECT_EQ(view.Nearest(-50, -100).row, 777'764u);
    EXPECT_EQ(view.Nearest(500, 5000).row, 778'274u);
    view.SetRowCount(4);
    EXPECT_EQ(view.TopRow(), 0u);
    view.SetClient(0, 0);  // a window that was squeezed away
    EXPECT_EQ(view.VisibleEnd(), 0u);
    EXPECT_EQ(view.HitTest(0, 0), GridHit{});
}

TEST_F(GridViewTest, ColumnsMoveHideAndComeBack) {
    EXPECT_EQ(columns.OrderArray(), (std::vector<std::int32_t>{0, 1, -1, 2, 3}));
    columns.Move(4, 0);
    EXPECT_EQ(columns.OrderArray(), (std::vector<std::int32_t>{1, 2, -1, 3, 0}));
    columns.SetVisible(2, true);
    columns.SetVisible(0, false);
    EXPECT_EQ(columns.OrderArray(), (std::vector<std::int32_t>{-1, 1, 3, 2, 0}));
    const auto saved = columns.OrderArray();
    columns.SetOrderArray(std::vector<std::int32_t>{7, 7, 3});  // doubles, gaps, a missing tail
    EXPECT_EQ(columns.OrderArray(), (std::vector<std::int32_t>{1, 2, 0, -1, -1}));
    columns.SetOrderArray(saved);
    EXPECT_EQ(columns.OrderArray(), saved);
    columns.Move(99, 0);
    columns.SetWidth(-1, 10);
    columns.SetWidth(1, 100000);
    EXPECT_EQ(columns[1].width, kMaxColumnWidth);
    EXPECT_EQ(columns.OrderArray(), saved);
}

TEST_F(GridViewTest, WidthsFollowTheResolutionAndSurviveADrag) {
    columns.SetDpi(144);
    EXPECT_EQ(columns.TotalWidth(), 375);
    columns.SetPixelWidth(1, 90);
    EXPECT_EQ(columns[1].width, 60);
    columns.SetPixelWidth(1, -40);  // dragged past its left edge
    EXPECT_EQ(columns[1].width, kMinDraggedWidth);
}

TEST_F(GridViewTest, ADraggedHeaderPassesNoLockedColumn) {
    // Shown: col100, col50, col60, col40 at 9, 109, 159, 219.
    const struct {
        int column, x, mark;
    } drags[] = {
        {0, 20, -1}, {0, 120, -1}, {0, 140, 2},  {0, 1000, 4}, {4, 20, 0},
        {4, -50, 0}, {4, 218, -1}, {3, 208, -1}, {3, 80, 1},   {2, 20, -1},  // hidden
    };
    for (const auto& drag : drags)
        EXPECT_EQ(view.DropMark(drag.column, drag.x), drag.mark) << drag.column << " to " << drag.x;
    columns.SetLocked(1, true);
    EXPECT_EQ(view.DropMark(0, 1000), -1);  // would push the locked one to the left
    EXPECT_EQ(view.DropMark(4, -50), 2);
    EXPECT_EQ(view.DropMark(1, 1000), -1);
    EXPECT_EQ(columns.DragTarget(4, -7), 2);
    EXPECT_EQ(columns.DragTarget(3, 99), 3);
}

TEST_F(GridViewTest, FilterFieldsFollowTheirColumns) {
    EXPECT_EQ(view.FieldRect(0), (Rect{9, 20, 109, 32}));
    EXPECT_EQ(view.FieldRect(3), (Rect{159, 20, 209, 32}));  // cut by the window's edge
    EXPECT_EQ(view.FieldRect(4), Rect{});                    // beyond it
    EXPECT_EQ(view.FieldRect(2), Rect{});                    // hidden
    columns.SetFrozen(1);
    view.SetScrollX(20);
    EXPECT_EQ(view.FieldRect(1), (Rect{109, 20, 139, 32}));  // cut by the frozen part
    view.SetScrollX(46);
    EXPECT_EQ(view.FieldRect(1), Rect{});  // a sliver
    EXPECT_EQ(view.FieldRect(0), (Rect{9, 20, 109, 32}));
    view.SetMetrics({.headerHeight = 20, .bandHeight = 0, .rowHeight = 10, .rowHeaderWidth = 9});
    EXPECT_EQ(view.FieldRect(0), Rect{});
}

TEST_F(GridViewTest, AGroupHeadIsOnePartWithABox) {
    const GridHit cell = view.HitTest(120, 42);
    const Rect outer = view.GroupBox(1, 0), inner = view.GroupBox(1, 1);
    EXPECT_EQ(view.OnGroupHead(cell, outer.left + 2, 0), (GridHit{GridPart::GroupBox, 1, -1}));
    EXPECT_EQ(view.OnGroupHead(cell, inner.left + 2, 0), (GridHit{GridPart::GroupHead, 1, -1}));
    EXPECT_EQ(view.OnGroupHead(cell, inner.left + 2, 1).part, GridPart::GroupBox);
    EXPECT_LT(inner.right, view.GroupTextLeft(1));
    const GridHit header = view.HitTest(4, 42), nothing = view.HitTest(120, 5000);
    EXPECT_EQ(view.OnGroupHead(header, 4, 0), header);
    EXPECT_EQ(view.OnGroupHead(nothing, 120, 0), nothing);
}

TEST(GridSort, ClicksGoRoundAndCtrlKeepsTheOtherKeys) {
    GridSort sort;
    const struct {
        int column;
        bool multiple;
        std::vector<GridSortKey> keys;
    } clicks[] = {
        {3, false, {{3, true}}}, {3, false, {{3, false}}}, {5, true, {{3, false}, {5, true}}},
        {3, true, {{5, true}}},  {5, true, {{5, false}}},  {5, false, {}},
    };
    for (const auto& click : clicks) {
        sort.Click(click.column, click.multiple);
        EXPECT_EQ(sort.Keys(), click.keys);
    }
    sort.Set(1, true, true);
    sort.Set(2, false, true);
    sort.Set(1, false, true);
    EXPECT_EQ(sort.Keys(), (std::vector<GridSortKey>{{1, false}, {2, false}}));
    EXPECT_EQ(sort.Ordinal(2), 2);
    EXPECT_EQ(sort.Direction(7), 0);
}
