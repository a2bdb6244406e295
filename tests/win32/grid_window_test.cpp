// The grid's real window: cells edited in place, the filter bar's fields, groups, the header under the mouse.
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <map>
#include <sstream>

#include "toolkit/AnsiText.h"
#include "toolkit/Module.h"
#include "toolkit/PGridCtrl.h"

using namespace Dravel;

namespace {

// Column 0 "Side" has choices, 1 "Price" is a plain text, 2 "ID" may not be edited, 3 "Far" is out of view.
// Row r, column c says "r.c" until it is edited. Writes down what it is told.
class Grid final : public CKRVPGridCtrl, private IGridSource {
 public:
    ~Grid() override { Destroy(); }

    std::vector<std::string> told;
    std::vector<std::string> choices{"Buy", "Sell", "Both"};
    bool refuse = false, chain = false;
    mutable int asked = 0;  // for cells' texts
    int head = -1;          // the row that is a group's head
    std::uint32_t rows = 20;
    std::map<std::pair<std::uint32_t, int>, std::string> cells;  // edited ones

 private:
    bool OnCreate() override {
        for (const char* key : {"Side", "Price", "ID", "Far"})
            InsertColumn({key, key, std::string(key) == "ID" ? 400 : 80, GridAlign::Left, true, false});
        SetSource(this);
        return true;
    }
    std::uint32_t RowCount() const override { return rows; }
    void CellText(std::uint32_t row, int column, std::string& text) const override {
        ++asked;
        const auto edited = cells.find({row, column});
        text = edited != cells.end() ? edited->second : std::to_string(row) + "." + std::to_string(column);
    }
    GridRowStyle RowStyle(std::uint32_t) const override { return {}; }
    GridGroupHead GroupHead(std::uint32_t row) const override {
        return {.level = static_cast<int>(row) == head ? 0 : -1, .open = open_};
    }
    void GroupText(std::uint32_t, std::string& text) const override { text = "a group"; }

    bool OnBeginEdit(std::uint32_t, int column, std::string&, GridEditKind& kind) override {
        if (column == 0) kind = GridEditKind::Choice;
        return column != 2;
    }
    void OnEditChoices(std::uint32_t, int, std::string_view, std::vector<std::string>& list) override {
        list = choices;
    }
    bool OnEndEdit(std::uint32_t row, int column, const std::string& text) override {
        told.push_back((refuse ? "refused " : "set ") + std::to_string(row) + "." + std::to_string(column) +
                       "=" + text);
        if (!refuse) cells[{row, column}] = text;
        return !refuse;
    }
    void OnCancelEdit(std::uint32_t row, int) override { told.push_back("cancel " + std::to_string(row)); }
    bool OnNextCell(GridEditMove move, std::uint32_t&, int& column) override {
        column = 1 - column;
        return chain && move == GridEditMove::Down;
    }
    void OnGroupToggled(std::uint32_t row) override {
        open_ = !open_;
        told.push_back((open_ ? "open " : "close ") + std::to_string(row));
    }
    void OnFilterChanged(int column) override {
        told.push_back("filter " + std::to_string(column) +
                       (column < 0 ? "" : "=" + Model().Filter().Text(column)));
    }
    void OnSortChanged() override {
        std::string keys = "sort";
        for (const GridSortKey& key : Model().Sort().Keys())
            keys += (key.ascending ? " +" : " -") + std::to_string(key.column);
        told.push_back(keys);
    }
    void OnColumnsChanged() override { told.emplace_back("columns"); }
    void OnGroupsChanged() override { told.emplace_back("groups"); }
    bool OnCommand(std::uint32_t id) override {
        told.push_back("command " + std::to_string(id));
        return true;
    }

    bool open_ = true;
};

// Steps as words: keys ("f2", "enter", "shift-tab", "alt-down"), "type:abc", "click:X,Y", "drag:X,Y,X,Y",
// "double:X,Y", "away" (the focus leaves), "set:ID,text", each followed by what State() must then say.
class GridWindow : public testing::Test {
 protected:
    void SetUp() override {
        SetModule(GetModuleHandleW(nullptr));
        frame_ = CreateWindowExW(0, L"STATIC", L"frame", WS_POPUP | WS_VISIBLE, 20, 20, 600, 300, nullptr,
                                 nullptr, nullptr, nullptr);
        other_ = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 0, 280, 50, 20, frame_, nullptr,
                                 nullptr, nullptr);
        ASSERT_TRUE(grid.Create(frame_, {0, 0, 500, 260}, 1));
        SetForegroundWindow(frame_);
        SetFocus(Window());
        ASSERT_EQ(GetFocus(), Window()) << "needs a display";
        Pump();
    }
    void TearDown() override {
        DestroyWindow(frame_);
        Pump();
    }

    HWND Window() const { return static_cast<HWND>(grid.Window()); }
    HWND Control(int id) const { return GetDlgItem(Window(), id); }
    static void Pump() {
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageW(&message);
    }
    static std::string TextOf(HWND window) {
        wchar_t text[2048] = L"";
        GetWindowTextW(window, text, 2048);
        return Narrow(text);
    }
    HWND List() const { return FindWindowW(L"KRVPGridDropList", nullptr); }

    // "3.0" current cell, or "3.0 'Buy' 1-3 list" while it is edited.
    std::string State() const {
        std::ostringstream out;
        out << static_cast<int>(grid.CurrentRow()) << "." << grid.CurrentColumn();
        if (!grid.Editing()) return out.str();
        DWORD from = 0, to = 0;
        SendMessageW(Control(kGridEditorID), EM_GETSEL, reinterpret_cast<WPARAM>(&from),
                     reinterpret_cast<LPARAM>(&to));
        out << " '" << TextOf(Control(kGridEditorID)) << "' " << from << "-" << to << (List() ? " list" : "");
        return out.str();
    }

    std::string Told() {
        std::string all;
        for (const std::string& one : grid.told)
            all += (all.empty() ? "" : "; ") + one;
        grid.told.clear();
        return all;
    }

    GridWindow& Do(const std::string& steps) {
        std::istringstream in(steps);
        for (std::string word; in >> word; Pump())
            Step(word);
        return *this;
    }

    Grid grid;

 private:
    void Step(std::string word);
    void Press(WPARAM key, bool alt);
    void Hold(int key, bool down) {
        BYTE keys[256] = {};
        GetKeyboardState(keys);
        keys[key] = down ? 0x80 : 0;
        SetKeyboardState(keys);
    }

    HWND frame_ = nullptr, other_ = nullptr;
};

void GridWindow::Press(WPARAM key, bool alt) {
    const HWND to = GetFocus();
    SendMessageW(to, alt ? WM_SYSKEYDOWN : WM_KEYDOWN, key, 1);
    // What TranslateMessage makes of it.
    const std::pair<WPARAM, WPARAM> characters[] = {{VK_TAB, 9},  {VK_RETURN, 13}, {VK_ESCAPE, 27},
                                                    {VK_BACK, 8}, {VK_ADD, '+'},   {VK_SUBTRACT, '-'}};
    for (const auto& [down, unit] : characters)
        if (down == key && IsWindow(to)) SendMessageW(to, WM_CHAR, unit, 1);
    if (IsWindow(to)) SendMessageW(to, alt ? WM_SYSKEYUP : WM_KEYUP, key, 1);
}

void GridWindow::Step(std::string word) {
    const std::size_t colon = word.find(':');
    std::istringstream rest(colon == word.npos ? "" : word.substr(colon + 1));
    const std::string text = rest.str(), verb = word.substr(0, colon);
    if (verb == "type") {
        for (const char c : text)
            SendMessageW(GetFocus(), WM_CHAR, static_cast<BYTE>(c), 1);
        return;
    }
    if (verb == "away") {
        SetFocus(other_);
        return;
    }
    if (verb == "set") {
        const std::size_t comma = text.find(',');
        SetWindowTextW(Control(std::stoi(text)), Widen(text.substr(comma + 1)).c_str());
        return;
    }
    bool alt = false;
    std::vector<int> held;
    for (std::size_t dash; (dash = word.find('-')) != word.npos; word.erase(0, dash + 1)) {
        const std::string key = word.substr(0, dash);
        alt = alt || key == "alt";
        held.push_back(key == "shift" ? VK_SHIFT : key == "ctrl" ? VK_CONTROL : VK_MENU);
    }
    for (const int key : held)
        Hold(key, true);
    int x = 0, y = 0, toX = 0, toY = 0;
    char comma = 0;
    rest >> x >> comma >> y;
    static const std::map<std::string, WPARAM> kKeys = {
        {"f2", VK_F2},     {"f4", VK_F4},     {"enter", VK_RETURN}, {"tab", VK_TAB},       {"esc", VK_ESCAPE},
        {"up", VK_UP},     {"down", VK_DOWN}, {"left", VK_LEFT},    {"right", VK_RIGHT},   {"back", VK_BACK},
        {"pgdn", VK_NEXT}, {"a", 'A'},        {"plus", VK_ADD},     {"minus", VK_SUBTRACT}};
    const std::string name = word.substr(0, word.find(':'));
    if (name == "click" || name == "drag" || name == "double") {
        const UINT down = name == "double" ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN;
        SendMessageW(Window(), down, MK_LBUTTON, MAKELPARAM(x, y));
        if (name == "drag") {
            rest >> comma >> toX >> comma >> toY;
            SendMessageW(Window(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM((x + toX) / 2, toY));
            SendMessageW(Window(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(toX, toY));
            SendMessageW(Window(), WM_LBUTTONUP, 0, MAKELPARAM(toX, toY));
        } else {
            SendMessageW(Window(), WM_LBUTTONUP, 0, MAKELPARAM(x, y));
        }
    } else {
        ASSERT_TRUE(kKeys.contains(name)) << word;
        Press(kKeys.at(name), alt);
    }
    for (const int key : held)
        Hold(key, false);
}

struct Case {
    const char *steps, *state, *told;
};

}  // namespace

TEST_F(GridWindow, KeysOpenLeaveAndCancelAnEdit) {
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
    for (const Case& one : cases) {
        SetFocus(Window());
        grid.SetCurrent(3, 1);
        grid.cells.clear();
        Told();
        Do(one.steps);
        EXPECT_EQ(State(), one.state) << one.steps;
        EXPECT_EQ(Told(), one.told) << one.steps;
        grid.EndEdit(false);
    }
    grid.SetCurrent(3, 2);
    EXPECT_FALSE(grid.EditCell(3, 2));
    Do("type:x");
    EXPECT_EQ(State(), "3.2");
}

TEST_F(GridWindow, TypeAheadCompletesAndTheListChooses) {
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
    for (const Case& one : cases) {
        SetFocus(Window());
        grid.SetCurrent(3, 0);
        grid.cells.clear();
        Told();
        Do(one.steps);
        EXPECT_EQ(State(), one.state) << one.steps;
        EXPECT_EQ(Told(), one.told) << one.steps;
        grid.EndEdit(false);
        EXPECT_EQ(List(), nullptr) << one.steps;
    }
}

TEST_F(GridWindow, ARefusedTextKeepsTheEditor) {
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

TEST_F(GridWindow, AnEditStaysOnItsRow) {
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

TEST_F(GridWindow, TheOwnerNamesTheNextCell) {
    grid.chain = true;
    grid.SetCurrent(3, 1);
    Do("f2 type:x enter");
    EXPECT_EQ(State(), "3.0 '3.0' 0-3");
    Do("type:s enter");
    EXPECT_EQ(Told(), "set 3.1=x; set 3.0=Sell");
    EXPECT_EQ(State(), "3.1 'x' 0-1");
}

TEST_F(GridWindow, AHundredThousandChoicesAreAList) {
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
