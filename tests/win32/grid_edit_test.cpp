// Cells of a real grid edited in place: keys, type-ahead, the list, and rows that come and go meanwhile.
#include "toolkit/AnsiText.h"
#include "win32/GridRig.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

class GridEdit : public GridWindow {
 protected:
    // The steps of an edit that begins at the third row.
    void Check(int column, const Case& one) {
        SetFocus(Window());
        grid.SetCurrent(3, column);
        grid.cells.clear();
        Told();
        Do(one.steps);
        EXPECT_EQ(State(), one.state) << one.steps;
        EXPECT_EQ(Told(), one.told) << one.steps;
        grid.EndEdit(false);
        EXPECT_EQ(List(), nullptr) << one.steps;
    }
};

}  // namespace

TEST_F(GridEdit, KeysOpenLeaveAndCancelAnEdit) {
    const Case cases[] = {
        {"f2", "3.1 '3.1' 0-3", ""},
        {"type:x", "3.1 'x' 1-1", ""},  // the first character is not lost
        {"f2 type:new enter", "4.1", "set 3.1=new"},
        {"f2 type:a tab", "3.2", "set 3.1=a"},
        {"f2 type:b shift-tab", "3.0", "set 3.1=b"},
        {"f2 type:c shift-enter", "2.1", "set 3.1=c"},
        {"f2 type:d down", "4.1", "set 3.1=d"},
        {"f2 type:e esc", "3.1", "cancel 3"},
        {"f2 type:f away", "3.1", "set 3.1=f"},
        {"f2 type:ab back", "3.1 'a' 1-1", ""},
        {"f2 type:ab ctrl-a", "3.1 'ab' 0-2", ""},
    };
    for (const Case& one : cases)
        Check(1, one);
    grid.SetCurrent(3, 2);
    EXPECT_FALSE(grid.EditCell(3, 2));
    Do("type:x");
    EXPECT_EQ(State(), "3.2");
}

// The field ends a text at a zero byte, and may know no character for others.
TEST_F(GridEdit, ATextThatNobodyChangedComesBackByteForByte) {
    SetFocus(Window());
    for (const std::string& text : {std::string("A\0B", 3), std::string("\xC3"), std::string("\xE9\x81")}) {
        grid.SetCurrent(3, 1);
        grid.cells[{3, 1}] = text;
        Told();
        Do("f2 enter");
        EXPECT_EQ(Told(), "set 3.1=" + text);
    }
}

TEST(AnsiTexts, WhatThePageDoesNotHaveIsNotReplacedByWhatLooksAlike) {
    const bool utf8 = GetACP() == CP_UTF8;
    EXPECT_EQ(Narrow(L"\x221E"), utf8 ? "\xE2\x88\x9E" : "?");
    EXPECT_EQ(Narrow(L"10"), "10");
    EXPECT_EQ(Utf8(L"\x221E"), "\xE2\x88\x9E");
    EXPECT_EQ(Widen(Narrow(L"\xE9")), L"\xE9");
}

TEST_F(GridEdit, TypeAheadCompletesAndTheListChooses) {
    const Case cases[] = {
        {"type:b", "3.0 'Buy' 1-3", ""},
        {"type:bo", "3.0 'Both' 2-4", ""},
        {"type:bx", "3.0 'Bx' 2-2", ""},
        {"type:bu back", "3.0 'Bu' 2-2", ""},  // what was taken away does not come back
        {"type:s enter", "4.0", "set 3.0=Sell"},
        {"f2 alt-down", "3.0 '3.0' 0-3 list", ""},
        {"f2 f4 down", "3.0 'Buy' 0-3 list", ""},
        {"f2 f4 down down down down", "3.0 'Both' 0-4 list", ""},
        {"f2 f4 pgdn esc", "3.0 'Buy' 0-3", ""},  // the list first
        {"f2 f4 esc esc", "3.0", "cancel 3"},
        {"f2 f4 down down enter", "4.0", "set 3.0=Sell"},
        {"f2 f4 f4", "3.0 '3.0' 0-3", ""},
        {"f2 f4 type:bo", "3.0 'Both' 2-4 list", ""},
        {"f2 f4 down away", "3.0", "set 3.0=Buy"},
    };
    for (const Case& one : cases)
        Check(0, one);
}

TEST_F(GridEdit, ARefusedTextKeepsTheEditor) {
    grid.refuse = true;
    grid.SetCurrent(3, 1);
    Do("f2 type:x enter");
    EXPECT_EQ(State(), "3.1 'x' 1-1");
    Do("away");
    EXPECT_EQ(State(), "3.1 'x' 1-1");
    EXPECT_EQ(GetFocus(), Control(kGridEditorID));  // it came back
    Do("click:100,100");
    EXPECT_EQ(State(), "3.1 'x' 1-1");  // the click changes nothing
    grid.SetCurrent(7, 1);
    EXPECT_EQ(grid.CurrentRow(), 3u);
    grid.refuse = false;
    EXPECT_TRUE(grid.EndEdit(true));
    EXPECT_EQ(Control(kGridEditorID), nullptr);
}

TEST_F(GridEdit, AnEditStaysOnItsRow) {
    grid.SetCurrent(3, 1);
    Do("f2 type:x");
    grid.rows += 2;
    grid.RowsInserted(0, 2);
    EXPECT_EQ(State(), "5.1 'x' 1-1");
    grid.ScrollToRow(12);  // out of view and back
    EXPECT_EQ(State(), "5.1 'x' 1-1");
    grid.ScrollToRow(0);
    Do("enter");
    EXPECT_EQ(Told(), "set 5.1=x");
    grid.SetCurrent(5, 1);
    Do("f2 type:y");
    grid.rows -= 1;
    grid.RowsRemoved(5, 1);  // another row stands there now: it must not take the text
    EXPECT_EQ(State(), "5.1");
    EXPECT_EQ(Told(), "");
    Do("f2 type:z");
    grid.RowsReset();
    EXPECT_FALSE(grid.Editing());
}

TEST_F(GridEdit, TheOwnerNamesTheNextCell) {
    grid.chain = true;
    grid.SetCurrent(3, 1);
    Do("f2 type:x enter");
    EXPECT_EQ(State(), "3.0 '3.0' 0-3");
    Do("type:s enter");
    EXPECT_EQ(Told(), "set 3.1=x; set 3.0=Sell");
    EXPECT_EQ(State(), "3.1 'x' 0-1");
}

TEST_F(GridEdit, TheNextCellIsThatOfTheRowWhereverItIsByThen) {
    grid.chain = true;
    grid.comes = 2;
    grid.SetCurrent(3, 1);
    Do("f2 type:x enter");
    EXPECT_EQ(Told(), "set 3.1=x; next of 5");
    EXPECT_EQ(State(), "5.0 '5.0' 0-3");
    Do("type:s tab");
    EXPECT_EQ(Told(), "set 7.0=Sell; next of 9");
}

TEST_F(GridEdit, AHundredThousandChoicesAreAList) {
    grid.choices.clear();
    for (int i = 0; i < 100'000; ++i)
        grid.choices.push_back("MADE" + std::to_string(i));
    grid.choices[77'777] = std::string(5000, 'q');
    grid.SetCurrent(3, 0);
    Do("type:made99999");
    EXPECT_EQ(State(), "3.0 'MADE99999' 9-9");
    Do("f4 up");
    EXPECT_EQ(State(), "3.0 'MADE99998' 0-9 list");
    SCROLLINFO bar{};
    bar.cbSize = sizeof bar;
    bar.fMask = SIF_ALL;
    GetScrollInfo(List(), SB_VERT, &bar);
    EXPECT_EQ(bar.nMax, 99'999);
    EXPECT_EQ(bar.nPos + static_cast<int>(bar.nPage), 100'000);
    grid.EndEdit(false);
    Do("type:q");
    EXPECT_EQ(TextOf(Control(kGridEditorID)).size(), 1000u);
}
