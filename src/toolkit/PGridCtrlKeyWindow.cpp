// Keys of a grid's window: first the bar's, then the accelerators, the owner's, the model's, and what is left
// goes on to the bar or dialog around it.
#include "toolkit/DockingBar.h"
#include "toolkit/win32/GridState.h"

using namespace Dravel;

namespace {

constexpr LPARAM kRepeated = LPARAM{1} << 30;  // the key was down before
constexpr std::uint32_t kFirstText = 32;       // what is below are the characters that control keys make

struct KeyPair {
    std::uint32_t system;
    GridKey key;
};
constexpr KeyPair kKeys[] = {
    {VK_UP, GridKey::Up},        {VK_DOWN, GridKey::Down},     {VK_LEFT, GridKey::Left},
    {VK_RIGHT, GridKey::Right},  {VK_HOME, GridKey::Home},     {VK_END, GridKey::End},
    {VK_PRIOR, GridKey::PageUp}, {VK_NEXT, GridKey::PageDown}, {VK_SPACE, GridKey::Space},
    {'A', GridKey::A},           {VK_TAB, GridKey::Tab},       {VK_RETURN, GridKey::Enter},
};

bool IsDialog(HWND window) {
    return window != nullptr && GetClassLongPtrW(window, GCW_ATOM) == 32770;  // the system's dialog class
}

}  // namespace

bool GridInput::Key(UINT message, WPARAM wparam, LPARAM lparam) {
    const auto key = static_cast<std::uint32_t>(wparam);
    if (OfferToBar(message, wparam, lparam)) return true;
    if (message == WM_CHAR) return Character(key);
    if (message != WM_KEYUP) return KeyDown(message, key, lparam);
    const bool seen = key < state.pressed.size() && state.pressed[key];
    if (key < state.pressed.size()) state.pressed.reset(key);
    return grid.OnKeyUp(key, seen);
}

bool GridInput::OfferToBar(UINT message, WPARAM wparam, LPARAM lparam) const {
    CKRVPDockingControlBar* bar = CKRVPDockingControlBar::FromWindow(GetParent(Window()));
    return bar != nullptr && bar->OfferKey(Window(), message, wparam, lparam);
}

// The system opens the frame's menu when Alt is let go, unless it saw another key go down meanwhile. One that
// the grid acts on would never come to it, so it gets a key that means nothing to it. First of all: the
// command may open a dialog, where Alt is then let go.
void GridInput::UseAlt(UINT message, std::uint32_t key, LPARAM lparam) const {
    if (message == WM_SYSKEYDOWN && key != VK_MENU && key != VK_F10)
        DefWindowProcW(Window(), message, VK_DOWN, lparam);
}

// Alt+Down and F4 open the list of the cell.
bool GridInput::ListKey(std::uint32_t key, GridModifierKeys modifiers) {
    if (!OpensList(key, modifiers)) return false;
    state.editor.OpenWithList();
    return true;
}

bool GridInput::KeyDown(UINT message, std::uint32_t key, LPARAM lparam) {
    const GridModifierKeys modifiers = HeldModifiers();
    UseAlt(message, key, lparam);
    if (key < state.pressed.size()) state.pressed.set(key);
    if (key == VK_ESCAPE && CancelDrag()) return true;
    if (Accelerator(key, modifiers)) return true;
    if (grid.OnKeyDown(key, modifiers, (lparam & kRepeated) != 0)) return true;
    if (ListKey(key, modifiers)) return true;
    return message == WM_KEYDOWN && (ModelKey(key, modifiers) || LeaveKey(key));
}

// The first character that is typed over a cell opens its editor and is not lost.
bool GridInput::Character(std::uint32_t unit) {
    // What Ctrl makes of a key is a command, and so is a blank with Shift; Ctrl with Alt is AltGr, which
    // types.
    const GridModifierKeys held = HeldModifiers();
    if ((held.ctrl && !held.alt) || (held.shift && unit == ' ')) return true;
    if (unit < kFirstText || unit == 127 || grid.OnChar(unit)) return true;
    return state.editor.Open(static_cast<wchar_t>(unit));
}

// A key in a window within the grid: `own` when that window needs it for its text.
bool GridInput::FieldKey(UINT message, WPARAM wparam, LPARAM lparam, bool own) {
    UseAlt(message, static_cast<std::uint32_t>(wparam), lparam);
    if (OfferToBar(message, wparam, lparam)) return true;
    return !own && Accelerator(static_cast<std::uint32_t>(wparam), HeldModifiers());
}

bool GridInput::Accelerator(std::uint32_t key, GridModifierKeys modifiers) {
    for (const GridAccelerator& entry : grid.accelerators_) {
        if (entry.key != key || !(entry.modifiers == modifiers)) continue;
        // The command may end the grid or replace the table.
        SendMessageW(Window(), WM_COMMAND, MAKEWPARAM(entry.command, 1), 0);
        return true;
    }
    return false;
}

bool GridInput::ModelKey(std::uint32_t key, GridModifierKeys modifiers) {
    if (modifiers.alt) return false;
    if (GroupKey(key)) return true;
    if (key == 'F' && modifiers.ctrl && modifiers.shift && grid.FilterBarShown()) {
        const int column = model.CurrentColumn();
        grid.FocusFilter(column < 0 ? model.Columns().AtPosition(0) : column);
        return true;
    }
    if (key == VK_F2 && !modifiers.ctrl && !modifiers.shift) {
        state.editor.Open(0);
        return true;
    }
    // In a dialog Tab and Enter are the dialog's.
    if ((key == VK_TAB || key == VK_RETURN) && IsDialog(GetParent(Window()))) return false;
    for (const KeyPair& pair : kKeys) {
        if (pair.system != key) continue;
        if (!model.Key(pair.key, {.shift = modifiers.shift, .ctrl = modifiers.ctrl})) return false;
        grid.ModelChanged();
        return true;
    }
    return false;
}

// Left and minus close the group of the head that is current, Right and plus open it.
bool GridInput::GroupKey(std::uint32_t key) {
    const GridGroupHead head = grid.HeadOf(model.CurrentRow());
    const bool closes = key == VK_LEFT || key == VK_SUBTRACT || key == VK_OEM_MINUS;
    const bool opens = key == VK_RIGHT || key == VK_ADD || key == VK_OEM_PLUS;
    if (head.level < 0 || (!closes && !opens)) return false;
    if (head.open == closes) grid.OnGroupToggled(model.CurrentRow());
    return true;
}

// Escape that nobody took is the bar's; in a dialog the three keys that the grid keeps from it work as
// everywhere.
bool GridInput::LeaveKey(std::uint32_t key) {
    const HWND parent = GetParent(Window());
    if (!IsDialog(parent)) {
        CKRVPDockingControlBar* bar = key == VK_ESCAPE ? CKRVPDockingControlBar::FromWindow(parent) : nullptr;
        if (bar != nullptr) bar->PressEscape();
        return bar != nullptr;
    }
    if (key == VK_TAB) {
        PostMessageW(parent, WM_NEXTDLGCTL, HeldModifiers().shift, FALSE);
    } else if (key == VK_ESCAPE || key == VK_RETURN) {
        const LRESULT standard = SendMessageW(parent, DM_GETDEFID, 0, 0);
        const WORD command = HIWORD(standard) == DC_HASDEFID ? LOWORD(standard) : IDOK;
        PostMessageW(parent, WM_COMMAND, key == VK_ESCAPE ? IDCANCEL : command, 0);
    } else {
        return false;
    }
    return true;
}
