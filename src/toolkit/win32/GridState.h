// What a grid's window holds beside the model: its font, its back buffer, and the mouse and key actions under
// way.
#pragma once

#include <windows.h>

#include <bitset>
#include <chrono>
#include <cwchar>
#include <string>

#include "toolkit/PGridCtrl.h"
#include "toolkit/win32/GridEditor.h"
#include "toolkit/win32/GridFilterBar.h"
#include "toolkit/win32/GridTip.h"

namespace Dravel {

enum class GridDrag : std::uint8_t { None, Rows, Divider, Header };

// Timers of the grid's window: scrolling while a drag is held outside, and the end of moving columns.
inline constexpr UINT_PTR kGridScrollTimer = 1, kGridSettleTimer = 2;

// Posted by the editor to the grid: give it the keyboard back.
inline constexpr UINT kGridRefocus = WM_APP + 0x31;

// Characters that a field within the grid must not see: what their keys do was done when they went down, and
// an edit control beeps at them or shows a box. Copy, back, paste, cut and undo are its own.
inline bool IsStrayCharacter(WPARAM unit) {
    return unit == 127 || (unit < ' ' && unit != 3 && unit != 8 && unit != 22 && unit != 24 && unit != 26);
}
// Keys that open the list of a cell, and close it.
inline bool OpensList(std::uint32_t key, GridModifierKeys held) {
    if (key == VK_F4) return held == GridModifierKeys{};
    return held == GridModifierKeys{.alt = true} && (key == VK_DOWN || key == VK_UP);
}
// Keys that edit a field's text; any other may be a command of the grid.
inline bool EditsText(WPARAM key, GridModifierKeys held) {
    if (key == VK_DELETE || key == VK_INSERT || key == VK_BACK) return true;
    return held == GridModifierKeys{.ctrl = true} && key != 0 && wcschr(L"ACVXZ", static_cast<int>(key));
}

inline GridModifierKeys HeldModifiers() {
    const auto held = [](int key) { return GetKeyState(key) < 0; };
    return {.shift = held(VK_SHIFT), .ctrl = held(VK_CONTROL), .alt = held(VK_MENU)};
}

}  // namespace Dravel

struct CKRVPGridCtrl::State {
    explicit State(CKRVPGridCtrl& grid) : filter(grid), editor(grid), tip(grid) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        Dravel::DeleteFontHandle(font);
        if (buffer != nullptr) DeleteObject(buffer);
    }

    GridFilterBar filter;
    GridEditor editor;
    GridTip tip;
    HFONT font = nullptr;
    int textHeight = 13;
    int dpi = Dravel::kBaseDpi;
    HBITMAP buffer = nullptr;
    SIZE bufferSize{};
    bool focused = false;
    bool unpainted = false;  // what is shown is out of date, since this time
    std::chrono::steady_clock::time_point unpaintedSince;

    Dravel::GridDrag drag = Dravel::GridDrag::None;
    int dragColumn = -1;
    int dragX = 0;                        // where it began
    int dragWidth = 0;                    // divider: the column's width then, pixels
    bool dragMoved = false;               // header: it is a move and not a click
    int dropMark = -1;                    // header: the position before which it would be put, -1: it stays
    int wheelRows = 0, wheelColumns = 0;  // remainders below one notch
    std::bitset<256> pressed;             // keys whose press this window saw

    // What the owner was last told.
    std::uint32_t row = Dravel::kNoRow;
    int column = -1;
    Dravel::GridSelection selection;
    bool inScrollBars = false;
    bool stale = false;  // changed between BeginUpdate and EndUpdate

    std::wstring instead;  // stands in the place of the rows
    std::string ansi;      // buffers of a cell's text
    std::wstring wide;
};

// Input half: each returns true when the message is done with.
struct GridInput {
    explicit GridInput(CKRVPGridCtrl& owner) : grid(owner), state(*owner.state_), model(owner.model_) {}

    bool Message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);
    bool Key(UINT message, WPARAM wparam, LPARAM lparam);
    bool Scroll(UINT message, WPARAM wparam);
    void EndDrag();
    void AutoScroll();
    bool FieldKey(UINT message, WPARAM wparam, LPARAM lparam, bool own);

    CKRVPGridCtrl& grid;
    CKRVPGridCtrl::State& state;
    Dravel::GridModel& model;

 private:
    bool Mouse(UINT message, LPARAM lparam);
    bool Wheel(UINT message, WPARAM wparam);
    bool SetCursorShape() const;
    void ContextMenu(LPARAM lparam);
    HWND Window() const { return static_cast<HWND>(grid.window_); }
    bool TakeFocus();
    void LeftDown(int x, int y, bool doubleClick);
    void RightDown(int x, int y);
    void Move(int x, int y);
    void LeftUp();
    bool CancelDrag();
    Dravel::GridHit Hit(int x, int y) const;
    void DragDivider(int x);
    void DragHeader(int x);
    void ScrollHeader(int x, int width);
    void HeaderClick(int column);
    Dravel::GridMenu HeaderMenuEntries(int column) const;
    void HeaderMenu(int x, int y, int column);
    void HeaderCommand(Dravel::GridHeaderCommand command, int column);
    void Freeze(int count);
    bool GroupKey(std::uint32_t key);
    bool Character(std::uint32_t unit);
    bool DoubleClick(const Dravel::GridHit& hit);
    void Begin(Dravel::GridDrag kind, int column, int x);
    void DropHeader(int column, int mark);
    bool Accelerator(std::uint32_t key, Dravel::GridModifierKeys modifiers);
    void UseAlt(UINT message, std::uint32_t key, LPARAM lparam) const;
    bool ListKey(std::uint32_t key, Dravel::GridModifierKeys modifiers);
    bool KeyDown(UINT message, std::uint32_t key, LPARAM lparam);
    bool ModelKey(std::uint32_t key, Dravel::GridModifierKeys modifiers);
    bool LeaveKey(std::uint32_t key);
    bool OfferToBar(UINT message, WPARAM wparam, LPARAM lparam) const;
};

// Painting half.
struct GridPaint {
    static void Paint(CKRVPGridCtrl& grid, HDC screen, const RECT& dirty);
    // Draws what stands in the place of the rows, if anything does.
    static void Instead(const CKRVPGridCtrl::State& state, HDC device, const RECT& rows);
};

// Width in pixels that a text takes in the grid's font.
int GridTextWidth(HDC device, const std::wstring& text);
// Room left and right of a cell's text, and what a sort mark takes, at 96 dpi.
inline constexpr int kGridCellPadding = 5, kGridSortMarkWidth = 14;
