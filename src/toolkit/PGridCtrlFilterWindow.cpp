// The fields of a grid's filter bar: where they stand, what keys do in them, and the hint in an empty one.
#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include "toolkit/ActivationContext.h"
#include "toolkit/AnsiText.h"
#include "toolkit/DockingBar.h"
#include "toolkit/Guarded.h"
#include "toolkit/Module.h"
#include "toolkit/win32/GridColours.h"
#include "toolkit/win32/GridState.h"

using namespace Dravel;

namespace {

constexpr UINT kSettleMilliseconds = 100;
constexpr int kMaxUnits = 1024;  // of a filter's text, UTF-16

std::wstring TextOf(HWND field) {
    std::wstring text(kMaxUnits, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(field, text.data(), kMaxUnits + 1)));
    return text;
}

}  // namespace

GridFilterBar::Field& GridFilterBar::At(int column) {
    const auto index = static_cast<std::size_t>(column);
    if (index >= fields_.size()) fields_.resize(index + 1);
    return fields_[index];
}

int GridFilterBar::ColumnOf(HWND window) const {
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (fields_[i].window == window && window != nullptr) return static_cast<int>(i);
    return -1;
}

void GridFilterBar::Make(int column) {
    const ActivationScope scope;
    const auto id = static_cast<std::uintptr_t>(kGridFilterID + column);
    const HWND field =
        CreateWindowExW(0, L"EDIT", Widen(grid_.Model().Filter().Text(column)).c_str(),
                        WS_CHILD | ES_AUTOHSCROLL, 0, 0, 0, 0, static_cast<HWND>(grid_.Window()),
                        reinterpret_cast<HMENU>(id), static_cast<HINSTANCE>(Module()), nullptr);
    if (field == nullptr) return;
    At(column) = {.window = field, .place = {}, .shown = false};
    SetWindowSubclass(field, &GridFilterBar::Procedure, static_cast<UINT_PTR>(column),
                      reinterpret_cast<DWORD_PTR>(this));
    SendMessageW(field, EM_LIMITTEXT, kMaxUnits, 0);
    SendMessageW(field, WM_SETFONT, reinterpret_cast<WPARAM>(grid_.state_->font), FALSE);
    const auto margin = static_cast<WORD>(Scale(kGridCellPadding - 1, grid_.state_->dpi));
    SendMessageW(field, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(margin, margin));
}

void GridFilterBar::Layout() {
    const HWND window = static_cast<HWND>(grid_.Window());
    const bool bar = grid_.FilterBarShown();
    if (window == nullptr || (!bar && fields_.empty())) return;
    for (int column = 0; column < grid_.Columns().Count(); ++column) {
        const bool wanted = bar && grid_.Columns()[column].visible;
        if (wanted && At(column).window == nullptr) Make(column);
        if (At(column).window == nullptr) continue;
        const Rect place = grid_.Model().View().FieldRect(column);
        // Focus must not stay in a field that is gone; one that only scrolled away keeps it.
        if (!wanted && GetFocus() == At(column).window) SetFocus(window);
        Place(column, place, wanted && !(place == Rect{}));
    }
}

void GridFilterBar::BeginMoving() {
    if (!grid_.FilterBarShown()) return;
    moving_ = true;
    SetTimer(static_cast<HWND>(grid_.Window()), kGridSettleTimer, kSettleMilliseconds, nullptr);
}

void GridFilterBar::EndMoving() {
    KillTimer(static_cast<HWND>(grid_.Window()), kGridSettleTimer);
    moving_ = false;
    Layout();
}

bool GridFilterBar::Shows(int column) const {
    const auto index = static_cast<std::size_t>(column);
    return index < fields_.size() && fields_[index].shown;
}

void GridFilterBar::Place(int column, const Rect& place, bool shown) {
    Field& field = At(column);
    const int height = grid_.state_->textHeight + 2;
    const LONG top = place.top + (place.Height() - 1 - height) / 2;
    RECT at{place.left, top, place.right - 1, top + height};
    if (!shown && GetFocus() == field.window && grid_.Columns()[column].visible) {
        at = {-32000, at.top, -32000 + 100, at.top + height};
        shown = true;
    }
    const bool moved = !EqualRect(&field.place, &at);
    if (moving_ && moved && GetFocus() != field.window) shown = false;
    if (field.shown == shown && (!shown || !moved)) return;
    const HWND window = field.window;
    const UINT visible = shown == field.shown ? 0u : (shown ? SWP_SHOWWINDOW : SWP_HIDEWINDOW);
    field.shown = shown;
    if (shown) {
        field.place = at;
        SetWindowPos(window, nullptr, at.left, at.top, at.right - at.left, at.bottom - at.top,
                     SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS | visible);
    } else {
        SetWindowPos(window, nullptr, 0, 0, 0, 0,
                     SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOMOVE | SWP_NOSIZE | visible);
    }
}

void GridFilterBar::SetFont() {
    const auto margin = static_cast<WORD>(Scale(kGridCellPadding - 1, grid_.state_->dpi));
    for (const Field& field : fields_) {
        if (field.window == nullptr) continue;
        SendMessageW(field.window, WM_SETFONT, reinterpret_cast<WPARAM>(grid_.state_->font), TRUE);
        SendMessageW(field.window, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(margin, margin));
    }
}

void GridFilterBar::ShowText(int column) {
    if (static_cast<std::size_t>(column) >= fields_.size() || At(column).window == nullptr || writing_)
        return;
    writing_ = true;
    SetWindowTextW(At(column).window, Widen(grid_.Model().Filter().Text(column)).c_str());
    writing_ = false;
    grid_.Redraw();
}

void GridFilterBar::Focus(int column) {
    if (!grid_.FilterBarShown() || grid_.Columns().Position(column) < 0) return;
    grid_.MutableModel().View().EnsureColumn(column);
    grid_.ModelChanged();
    if (static_cast<std::size_t>(column) >= fields_.size() || At(column).window == nullptr) return;
    SetFocus(At(column).window);
    SendMessageW(At(column).window, EM_SETSEL, 0, -1);
}

bool GridFilterBar::Notify(int id, int code, HWND field) {
    const int column = ColumnOf(field);
    if (column < 0 || id != kGridFilterID + column) return false;
    if (code != EN_CHANGE || writing_) return true;
    if (!grid_.MutableModel().Filter().Set(column, Narrow(TextOf(field)))) return true;
    InvalidateRect(field, nullptr, TRUE);  // its colour says whether it filters
    grid_.Redraw();
    grid_.OnFilterChanged(column);
    return true;
}

HBRUSH GridFilterBar::Colour(HDC device, HWND field) {
    const int column = ColumnOf(field);
    if (column < 0) return nullptr;
    const GridColours colours;
    const bool active = grid_.Model().Filter().Active(column);
    SetTextColor(device, colours.text);
    SetBkColor(device, active ? colours.filter : colours.window);
    if (!active) return GetSysColorBrush(COLOR_WINDOW);
    if (brush_ == nullptr) brush_ = CreateSolidBrush(colours.filter);
    return brush_;
}

void GridFilterBar::DropBrush() {
    if (brush_ != nullptr) DeleteObject(brush_);
    brush_ = nullptr;
}

LRESULT CALLBACK GridFilterBar::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                          UINT_PTR id, DWORD_PTR bar) noexcept {
    auto& self = *reinterpret_cast<GridFilterBar*>(bar);
    return Guarded("filter field", LRESULT{0},
                   [&] { return self.Message(window, message, wparam, lparam, static_cast<int>(id)); });
}

LRESULT GridFilterBar::Message(HWND window, UINT message, WPARAM wparam, LPARAM lparam, int column) {
    switch (message) {
        case WM_NCDESTROY:
            RemoveWindowSubclass(window, &GridFilterBar::Procedure, static_cast<UINT_PTR>(column));
            At(column) = {};
            break;
        case WM_GETDLGCODE:
            return DefSubclassProc(window, message, wparam, lparam) | DLGC_WANTALLKEYS;
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            if (GridInput(grid_).FieldKey(message, wparam, lparam, EditsText(wparam, HeldModifiers())))
                return 0;
            if (message == WM_KEYDOWN && KeyDown(window, wparam, column)) return 0;
            break;
        case WM_CHAR:
            if (IsStrayCharacter(wparam)) return 0;
            break;
        case WM_MOUSEWHEEL:
        case WM_MOUSEHWHEEL:
            return SendMessageW(static_cast<HWND>(grid_.Window()), message, wparam, lparam);
        case WM_PAINT:
        case WM_PRINTCLIENT: {
            const LRESULT result = DefSubclassProc(window, message, wparam, lparam);
            const bool print = message == WM_PRINTCLIENT;
            const HDC device = print ? reinterpret_cast<HDC>(wparam) : GetDC(window);
            PaintHint(window, device);
            if (!print) ReleaseDC(window, device);
            return result;
        }
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            InvalidateRect(window, nullptr, TRUE);
            if (auto* bar = CKRVPDockingControlBar::FromWindow(window)) bar->FocusMoved();
            break;
        default:
            break;
    }
    return DefSubclassProc(window, message, wparam, lparam);
}

bool GridFilterBar::KeyDown(HWND window, WPARAM key, int column) {
    const GridModifierKeys held = HeldModifiers();
    if (held == GridModifierKeys{.ctrl = true} && key == 'A') {
        SendMessageW(window, EM_SETSEL, 0, -1);
        return true;
    }
    if (held.ctrl || held.alt) return false;
    if (key == VK_ESCAPE && GetWindowTextLengthW(window) > 0) {
        SetWindowTextW(window, L"");
        return true;
    }
    return LeaveKey(key, column);
}

bool GridFilterBar::LeaveKey(WPARAM key, int column) {
    switch (key) {
        case VK_ESCAPE:
            SetFocus(static_cast<HWND>(grid_.Window()));
            return true;
        case VK_DOWN:
        case VK_RETURN:
            GoToRows(column);
            return true;
        case VK_TAB:
            Walk(column, HeldModifiers().shift);
            return true;
        default:
            return false;
    }
}

void GridFilterBar::GoToRows(int column) {
    const HWND window = static_cast<HWND>(grid_.Window());
    SetFocus(window);
    // Who takes the focus may do anything.
    if (!IsWindow(window) || grid_.RowCount() == 0) return;
    if (grid_.CurrentRow() == kNoRow) return grid_.SetCurrent(grid_.Model().View().TopRow(), column);
    grid_.MutableModel().MoveCurrent(grid_.CurrentRow(), column);  // the selection stays
    grid_.ModelChanged();
}

// From field to field in the order on the screen, round at the ends.
void GridFilterBar::Walk(int column, bool back) {
    const int count = grid_.Columns().ShownCount();
    const int position = grid_.Columns().Position(column);
    if (count > 0 && position >= 0)
        Focus(grid_.Columns().AtPosition((position + (back ? count - 1 : 1)) % count));
}

void GridFilterBar::PaintHint(HWND window, HDC device) const {
    if (GetWindowTextLengthW(window) > 0 || GetFocus() == window) return;
    const std::wstring hint = Widen(grid_.Model().Filter().Hint());
    RECT room;
    GetClientRect(window, &room);
    const int margin = Scale(kGridCellPadding - 1, grid_.state_->dpi);
    room.left += margin;
    room.right -= margin;
    const HGDIOBJ font = SelectObject(device, grid_.state_->font);
    const COLORREF text = SetTextColor(device, GetSysColor(COLOR_GRAYTEXT));
    const int mode = SetBkMode(device, TRANSPARENT);
    ExtTextOutW(device, room.left, (room.bottom - grid_.state_->textHeight) / 2, ETO_CLIPPED, &room,
                hint.data(), static_cast<UINT>(hint.size()), nullptr);
    SetBkMode(device, mode);
    SetTextColor(device, text);
    SelectObject(device, font);
}
