// Keys and mouse of a property list, the typing of numbers, and reading it as a list box.
#include "toolkit/win32/PropertyListState.h"
// Needs the types of the line above.
#include <commctrl.h>

#include <cwchar>
#include <utility>

#include "toolkit/ColourPicker.h"
#include "toolkit/Guarded.h"
#include "toolkit/Module.h"

using namespace Dravel;

namespace {

constexpr UINT kEditId = 1;
constexpr int kMostDigits = 9;  // of a number: it fits 32 bits

constexpr struct {
    WPARAM system;
    PropertyKey key;
} kKeys[] = {
    {VK_UP, PropertyKey::Up},        {VK_DOWN, PropertyKey::Down},     {VK_LEFT, PropertyKey::Left},
    {VK_RIGHT, PropertyKey::Right},  {VK_HOME, PropertyKey::Home},     {VK_END, PropertyKey::End},
    {VK_PRIOR, PropertyKey::PageUp}, {VK_NEXT, PropertyKey::PageDown},
};

// The field wants Enter and Escape for itself, which otherwise end the dialog.
LRESULT CALLBACK EditProcedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR,
                               DWORD_PTR list) noexcept;

LRESULT EditMessage(HWND edit, UINT message, WPARAM wparam, LPARAM lparam, DWORD_PTR list) {
    if (message == WM_GETDLGCODE) return DefSubclassProc(edit, message, wparam, lparam) | DLGC_WANTALLKEYS;
    if (message == WM_CHAR && (wparam == VK_RETURN || wparam == VK_ESCAPE || wparam == VK_TAB)) return 0;
    if (message == WM_KEYDOWN && (wparam == VK_RETURN || wparam == VK_ESCAPE || wparam == VK_TAB)) {
        const HWND parent = GetParent(edit);
        try {
            PropertyInput(*reinterpret_cast<CKRVPPropertyList*>(list)).EndEdit(wparam != VK_ESCAPE);
        } catch (...) {
            ReportFailure("property list", "the number was not taken");
        }
        if (wparam == VK_TAB)
            PostMessageW(GetParent(parent), WM_NEXTDLGCTL, GetKeyState(VK_SHIFT) < 0, FALSE);
        return 0;
    }
    if (message == WM_NCDESTROY) RemoveWindowSubclass(edit, &EditProcedure, kEditId);
    return DefSubclassProc(edit, message, wparam, lparam);
}

LRESULT CALLBACK EditProcedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR,
                               DWORD_PTR list) noexcept {
    return Guarded("property field", LRESULT{0},
                   [&] { return EditMessage(edit, message, wparam, lparam, list); });
}

}  // namespace

void PropertyInput::Scroll(int rows) {
    EndEdit(true);
    state.top += rows;
    list.Refresh();
}

void PropertyInput::GoTo(int row) {
    list.list_.SetCurrent(row);
    const int visible = state.Visible(window), current = list.list_.Current();
    state.top = std::clamp(state.top, current - visible + 1, current);
    list.Refresh();
}

bool PropertyInput::KeyDown(WPARAM key) {
    if (GetKeyState(VK_MENU) < 0 && key != VK_DOWN) return false;
    if (key == VK_RETURN || key == VK_F4 || (key == VK_DOWN && GetKeyState(VK_MENU) < 0)) {
        Act();
        return true;
    }
    if (key == VK_F2) {
        BeginEdit(nullptr);
        return true;
    }
    for (const auto& entry : kKeys) {
        if (entry.system != key) continue;
        list.list_.Move(entry.key, state.Visible(window) - 1);
        GoTo(list.list_.Current());
        return true;
    }
    return false;
}

bool PropertyInput::Char(WPARAM unit) {
    const PropertyItem* item = list.list_.Item(list.list_.Current());
    if (unit == L' ' && (!item || item->kind == PropertyKind::Check)) {
        Act();
        return true;
    }
    if (unit < L'0' || unit > L'9' || !item || item->kind != PropertyKind::Number) return false;
    const wchar_t first[] = {static_cast<wchar_t>(unit), 0};
    BeginEdit(first);
    return true;
}

void PropertyInput::Press(int x, int y, bool twice) {
    EndEdit(true);
    SetFocus(window);
    const int row = state.RowAt(window, y);
    if (row < 0 || row >= list.list_.RowCount()) return;
    const bool again = row == list.list_.Current();
    GoTo(row);
    const PropertyItem* item = list.list_.Item(row);
    if (!item) {
        if (twice || x < state.Indent()) Act();
        return;
    }
    const RECT value = state.Value(window, row);
    if (x < value.left) return;
    const bool button = x >= value.right - (value.bottom - value.top);
    if (item->kind == PropertyKind::Check || item->kind == PropertyKind::Number || twice || (again && button))
        Act();
}

// What Enter, a check box and the button of a picker do.
void PropertyInput::Act() {
    const int row = list.list_.Current();
    const PropertyItem* item = list.list_.Item(row);
    if (!item) {
        list.list_.Toggle(row);
        GoTo(list.list_.Current());
    } else if (item->kind == PropertyKind::Number) {
        BeginEdit(nullptr);
    } else {
        Pick(*item);
    }
}

void PropertyInput::Pick(const PropertyItem& item) {
    PropertyChange change{item.id, item.value, {}};
    if (item.kind == PropertyKind::Check) {
        change.value = item.value == 0 ? 1u : 0u;
    } else if (item.kind == PropertyKind::Colour) {
        const auto choice = PickColour(GetParent(window), item.value);
        if (!choice) return;
        change.value = choice->colour;
    } else {
        change.font = list.font;
        if (!ChooseFontDialog(GetParent(window), change.font)) return;
        change.value.reset();
        list.font = change.font;
    }
    if (list.onChange) list.onChange(change);
    list.Refresh();
}

void PropertyInput::BeginEdit(const wchar_t* text) {
    const int row = list.list_.Current();
    const PropertyItem* item = list.list_.Item(row);
    if (!item || item->kind != PropertyKind::Number || state.edit) return;
    GoTo(row);
    RECT place = state.Value(window, row);
    const std::wstring start = text ? text : PropertyList::ValueText(*item);
    state.editId = item->id;
    state.edit = CreateWindowExW(
        0, L"EDIT", start.c_str(), WS_CHILD | WS_VISIBLE | ES_NUMBER | ES_AUTOHSCROLL,
        place.left + Scale(3, state.dpi), place.top + Scale(2, state.dpi),
        place.right - place.left - Scale(4, state.dpi), place.bottom - place.top - Scale(3, state.dpi),
        window, reinterpret_cast<HMENU>(static_cast<std::uintptr_t>(kEditId)),
        static_cast<HINSTANCE>(Module()), nullptr);
    if (!state.edit) return;
    SendMessageW(state.edit, WM_SETFONT, reinterpret_cast<WPARAM>(state.font), FALSE);
    SendMessageW(state.edit, EM_LIMITTEXT, kMostDigits, 0);
    SetWindowSubclass(state.edit, &EditProcedure, kEditId, reinterpret_cast<DWORD_PTR>(&list));
    SetFocus(state.edit);
    SendMessageW(state.edit, EM_SETSEL, text ? start.size() : 0,
                 text ? static_cast<LPARAM>(start.size()) : -1);
}

void PropertyInput::EndEdit(bool keep) {
    const HWND edit = std::exchange(state.edit, nullptr);
    if (!edit) return;
    wchar_t text[kMostDigits + 2] = L"";
    const int length = GetWindowTextW(edit, text, kMostDigits + 1);
    const bool focused = GetFocus() == edit;
    if (focused) SetFocus(window);
    DestroyWindow(edit);
    list.Refresh();
    if (!keep || length == 0 || !list.onChange) return;
    std::uint32_t number = 0;
    for (int i = 0; i < length; ++i) {
        if (text[i] < L'0' || text[i] > L'9') return;
        number = number * 10 + static_cast<std::uint32_t>(text[i] - L'0');
    }
    const PropertyItem* item = list.list_.Find(state.editId);
    if (!item || item->value == number) return;
    list.onChange({state.editId, number, {}});
    list.Refresh();
}

// An item before a group of the same name.
int PropertyInput::FindRow(const wchar_t* name) const {
    int head = LB_ERR;
    for (int row = 0; row < list.list_.RowCount(); ++row) {
        const PropertyItem* item = list.list_.Item(row);
        if (item && item->name == name) return row;
        if (!item && list.list_.GroupOf(row).name == name) head = row;
    }
    return head;
}

bool PropertyInput::ReadAsListBox(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) {
    const int row = static_cast<int>(wparam);
    const bool known = row >= 0 && row < list.list_.RowCount();
    switch (message) {
        case LB_GETCOUNT:
            result = list.list_.RowCount();
            return true;
        case LB_GETCURSEL:
            result = list.list_.Current();
            return true;
        case LB_SETCURSEL:
            if (known) GoTo(row);
            result = known ? row : LB_ERR;
            return true;
        case LB_GETTEXTLEN:
            result = known ? static_cast<LRESULT>(list.list_.RowText(row).size()) : LB_ERR;
            return true;
        case LB_GETTEXT: {
            result = LB_ERR;
            if (!known || lparam == 0) return true;
            const std::wstring text = list.list_.RowText(row);
            std::wmemcpy(reinterpret_cast<wchar_t*>(lparam), text.c_str(), text.size() + 1);
            result = static_cast<LRESULT>(text.size());
            return true;
        }
        case LB_FINDSTRINGEXACT:
            result = lparam ? FindRow(reinterpret_cast<const wchar_t*>(lparam)) : LB_ERR;
            return true;
        default:
            return false;
    }
}
