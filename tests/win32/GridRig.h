// A real grid in a real window, driven by words.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <map>
#include <sstream>

#include "toolkit/AnsiText.h"
#include "toolkit/Module.h"
#include "toolkit/PGridCtrl.h"

namespace Dravel::Test {

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
    std::uint32_t comes = 0;  // rows on top whenever a text is taken or choices are asked for
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
        Come();
        list = choices;
    }
    bool OnEndEdit(std::uint32_t row, int column, const std::string& text) override {
        told.push_back((refuse ? "refused " : "set ") + std::to_string(row) + "." + std::to_string(column) +
                       "=" + text);
        Come();
        if (!refuse) cells[{row, column}] = text;
        return !refuse;
    }
    void OnCancelEdit(std::uint32_t row, int) override { told.push_back("cancel " + std::to_string(row)); }
    GridNext OnNextCell(GridEditMove move, std::uint32_t& row, int& column) override {
        if (comes != 0) told.push_back("next of " + std::to_string(row));
        column = 1 - column;
        return chain && move == GridEditMove::Down ? GridNext::Cell : GridNext::Neighbour;
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

    void Come() {
        rows += comes;
        RowsInserted(0, comes);
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

inline void GridWindow::Press(WPARAM key, bool alt) {
    const HWND to = GetFocus();
    SendMessageW(to, alt ? WM_SYSKEYDOWN : WM_KEYDOWN, key, 1);
    // What TranslateMessage makes of it.
    const std::pair<WPARAM, WPARAM> characters[] = {{VK_TAB, 9},  {VK_RETURN, 13}, {VK_ESCAPE, 27},
                                                    {VK_BACK, 8}, {VK_ADD, '+'},   {VK_SUBTRACT, '-'}};
    for (const auto& [down, unit] : characters)
        if (down == key && IsWindow(to)) SendMessageW(to, WM_CHAR, unit, 1);
    if (IsWindow(to)) SendMessageW(to, alt ? WM_SYSKEYUP : WM_KEYUP, key, 1);
}

inline void GridWindow::Step(std::string word) {
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

}  // namespace Dravel::Test
