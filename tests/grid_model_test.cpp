// The grid without a window: keys, clicks, and changes of the rows, by tables of steps.
#include "toolkit/GridModel.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Dravel;

namespace {

// Steps as words: "click 3", "ctrl-click 5", "shift-click 7", "drag 4", "down", "shift-down", "pgdn",
// "ctrl-home", "insert 0 2", "remove 3 1", "swap 1 2", "scroll 10". Twenty rows, five of them in view, three
// columns.
class Driver {
 public:
    explicit Driver(std::uint32_t rows = 20) {
        for (const char* key : {"colA", "colB", "colC"})
            model.Columns().Add({key, key, 100, GridAlign::Left, true, false});
        model.View().SetMetrics({.headerHeight = 20, .bandHeight = 0, .rowHeight = 10, .rowHeaderWidth = 9});
        model.View().SetClient(209, 70);
        model.RowsReset(rows);
    }

    Driver& Do(const std::string& steps) {
        std::istringstream in(steps);
        for (std::string word; in >> word;)
            Step(word, in);
        return *this;
    }

    // "current cell, top row, ranges": "4:0 top 2 sel 1-3 5-5".
    std::string State() const {
        std::ostringstream out;
        out << (model.CurrentRow() == kNoRow ? std::string("-") : std::to_string(model.CurrentRow()));
        out << ":" << model.CurrentColumn() << " top " << model.View().TopRow() << " sel";
        for (const GridRange& range : model.Selection().Ranges())
            out << " " << range.first << "-" << range.last;
        return out.str();
    }

    GridModel model;

 private:
    void Step(std::string word, std::istringstream& in) {
        GridModifiers held;
        while (word.starts_with("ctrl-") || word.starts_with("shift-")) {
            (word[0] == 'c' ? held.ctrl : held.shift) = true;
            word.erase(0, word.find('-') + 1);
        }
        std::uint32_t a = 0, b = 0;
        if (word == "click" && in >> a) return model.Press({GridPart::Cell, a, 0}, held);
        if (word == "drag" && in >> a) return model.DragTo({GridPart::Cell, a, 0});
        if (word == "insert" && in >> a >> b) return model.RowsInserted(a, b);
        if (word == "remove" && in >> a >> b) return model.RowsRemoved(a, b);
        if (word == "swap" && in >> a >> b) return model.RowsSwapped(a, b);
        if (word == "scroll" && in >> a) return model.View().SetTopRow(a);
        static const std::pair<const char*, GridKey> keys[] = {
            {"up", GridKey::Up},       {"down", GridKey::Down},     {"left", GridKey::Left},
            {"right", GridKey::Right}, {"home", GridKey::Home},     {"end", GridKey::End},
            {"pgup", GridKey::PageUp}, {"pgdn", GridKey::PageDown}, {"space", GridKey::Space},
            {"a", GridKey::A},         {"tab", GridKey::Tab},       {"enter", GridKey::Enter}};
        for (const auto& [name, key] : keys) {
            if (word == name) {
                model.Key(key, held);
                return;
            }
        }
        FAIL() << "unknown step " << word;
    }
};

struct Case {
    const char* steps;
    const char* state;
};

void Check(std::initializer_list<Case> cases) {
    for (const Case& one : cases)
        EXPECT_EQ(Driver().Do(one.steps).State(), one.state) << one.steps;
}

}  // namespace

TEST(GridModel, KeysMoveTheCurrentCellAsInASpreadsheet) {
    Check({
        {"", "-:-1 top 0 sel"},
        {"down", "0:0 top 0 sel 0-0"},
        {"down down down", "2:0 top 0 sel 2-2"},
        {"click 4 down", "5:0 top 1 sel 5-5"},
        {"click 0 up", "0:0 top 0 sel 0-0"},
        {"click 3 pgdn", "7:0 top 4 sel 7-7"},
        {"click 3 pgdn pgdn pgdn pgdn pgdn", "19:0 top 15 sel 19-19"},
        {"click 3 ctrl-end", "19:2 top 15 sel 19-19"},
        {"click 3 ctrl-end ctrl-home", "0:0 top 0 sel 0-0"},
        {"click 3 right right right", "3:2 top 0 sel 3-3"},
        {"click 3 end home", "3:0 top 0 sel 3-3"},
        {"click 3 ctrl-right", "3:2 top 0 sel 3-3"},
        {"click 3 ctrl-a", "3:0 top 0 sel 0-19"},
        {"click 3 ctrl-down ctrl-up", "3:0 top 0 sel 3-3"},  // the owner's keys
        {"click 3 tab tab tab", "3:2 top 0 sel 3-3"},
        {"click 3 tab shift-tab shift-tab", "3:0 top 0 sel 3-3"},
        {"click 3 shift-down enter", "5:0 top 1 sel 5-5"},  // moves, and does not extend
        {"click 1 shift-enter shift-enter", "0:0 top 0 sel 0-0"},
        {"click 3 ctrl-tab ctrl-enter", "3:0 top 0 sel 3-3"},
    });
}

TEST(GridModel, ShiftAndCtrlBuildRanges) {
    Check({
        {"click 3 shift-down shift-down", "5:0 top 1 sel 3-5"},
        {"click 3 shift-down shift-up shift-up", "2:0 top 0 sel 2-3"},
        {"click 3 shift-click 1", "1:0 top 0 sel 1-3"},
        {"click 1 shift-click 4 shift-click 2", "2:0 top 0 sel 1-2"},
        {"click 1 ctrl-click 3 ctrl-click 4", "4:0 top 0 sel 1-1 3-4"},
        {"click 1 ctrl-click 3 ctrl-click 1", "1:0 top 0 sel 3-3"},
        {"click 1 ctrl-click 3 drag 4 drag 3", "3:0 top 0 sel 1-1 3-3"},
        {"click 1 ctrl-click 3 ctrl-shift-click 4", "4:0 top 0 sel 1-1 3-4"},
        {"click 0 shift-click 4 ctrl-click 2", "2:0 top 0 sel 0-1 3-4"},
        {"click 2 drag 4 drag 0", "0:0 top 0 sel 0-2"},
        {"click 2 ctrl-space", "2:0 top 0 sel"},
        {"click 2 ctrl-shift-down", "2:0 top 0 sel 2-2"},
        {"click 2 ctrl-shift-end", "19:2 top 15 sel 2-19"},
    });
}

TEST(GridModel, RowsThatComeAndGoLeaveEverythingOnItsTrade) {
    Check({
        {"click 2 insert 0 1", "3:0 top 0 sel 3-3"},           // at the very top the new row comes into view
        {"click 2 scroll 3 insert 0 2", "4:0 top 5 sel 4-4"},  // scrolled: the view does not jump
        {"click 2 scroll 3 insert 10 2", "2:0 top 3 sel 2-2"},
        {"click 1 shift-click 4 insert 3 2", "6:0 top 0 sel 1-2 5-6"},
        {"click 1 shift-click 4 remove 2 2", "2:0 top 0 sel 1-2"},
        {"click 4 remove 4 1", "4:0 top 0 sel"},
        {"click 4 remove 0 20", "-:0 top 0 sel"},
        {"click 4 scroll 9 remove 0 3", "1:0 top 6 sel 1-1"},
        {"click 4 scroll 9 remove 5 15", "4:0 top 0 sel 4-4"},
        {"click 2 swap 2 3", "3:0 top 0 sel 3-3"},
        {"ctrl-a insert 0 1 remove 0 1", "0:-1 top 0 sel 0-19"},
        {"click 1 remove 5 100", "1:0 top 0 sel 1-1"},
    });
}

TEST(GridModel, AnotherOrderKeepsTheCurrentRowWhereItIsOnTheScreen) {
    Driver grid;
    grid.Do("scroll 8 click 10 shift-click 11");
    grid.model.RowsReordered(20, [](std::uint32_t row) { return 19 - row; });
    EXPECT_EQ(grid.State(), "8:0 top 5 sel 8-9");
    grid.model.RowsReordered(4, [](std::uint32_t row) { return row < 8 || row > 11 ? kNoRow : row - 8; });
    EXPECT_EQ(grid.State(), "0:0 top 0 sel 0-1");
    grid.model.RowsReordered(0, [](std::uint32_t) { return 7u; });  // a place that does not exist
    EXPECT_EQ(grid.State(), "-:0 top 0 sel");
}

TEST(GridModel, ACurrentRowThatGoesInAnotherOrderLeavesTheNearestOne) {
    const std::pair<std::uint32_t, std::uint32_t> wentAndNow[] = {{6, 6}, {10, 6}, {20, 5}};
    for (const auto& [end, now] : wentAndNow) {  // the rows from 6 to `end` go
        Driver grid;
        grid.Do("click 6").model.RowsReordered(26 - end, [end = end](std::uint32_t row) {
            return row < 6 ? row : row < end ? kNoRow : row - (end - 6);
        });
        EXPECT_EQ(grid.model.CurrentRow(), now) << end;
    }
    Driver grid;
    grid.Do("click 6").model.RowsReordered(4, [](std::uint32_t) { return kNoRow; });
    EXPECT_EQ(grid.State(), "3:0 top 0 sel") << "all went: the place itself";
}

TEST(GridModel, AnEmptyGridTakesEveryKeyAndClick) {
    Driver grid(0);
    grid.Do("down up pgdn ctrl-end ctrl-a shift-down end right click 3 drag 2 remove 0 5 swap 0 1");
    EXPECT_EQ(grid.model.CurrentRow(), kNoRow);
    EXPECT_TRUE(grid.model.Selection().Empty());
    GridModel bare;  // no columns either
    for (const GridKey key : {GridKey::Left, GridKey::End, GridKey::Down, GridKey::A})
        bare.Key(key, {});
    EXPECT_EQ(bare.CurrentColumn(), -1);
}
