// Mouse, scroll bars and wheel of a grid's window.
#include <windows.h>
// Needs the types of the line above.
#include <windowsx.h>

#include "toolkit/win32/GridState.h"

using namespace Dravel;

namespace {

constexpr UINT kAutoScrollMilliseconds = 50;
constexpr int kWheelColumnsPixels = 60;  // sideways per notch, at 96 dpi

GridModifiers Modifiers() {
    const GridModifierKeys held = HeldModifiers();
    return {.shift = held.shift, .ctrl = held.ctrl};
}

UINT Setting(UINT what, UINT otherwise) {
    UINT value = otherwise;
    SystemParametersInfoW(what, 0, &value, 0);
    return value;
}

}  // namespace

bool GridInput::Message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) {
    switch (message) {
        case WM_GETDLGCODE:
            result = DLGC_WANTALLKEYS | DLGC_WANTARROWS | DLGC_WANTCHARS;
            return true;
        case WM_CONTEXTMENU:
            ContextMenu(lparam);
            return true;
        case WM_SETCURSOR:
            result =
                LOWORD(lparam) == HTCLIENT && reinterpret_cast<HWND>(wparam) == Window() && SetCursorShape();
            return result != 0;
        case WM_CAPTURECHANGED:
            EndDrag();
            return true;
        case WM_MOUSEWHEEL:
        case WM_MOUSEHWHEEL:
            return Wheel(message, wparam);
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
        case WM_KEYUP:
        case WM_CHAR:
            return Key(message, wparam, lparam);
        case WM_SYSCHAR:
            return wparam == VK_RETURN;  // of Alt+Enter; the system would look for it in the frame's menu
        default:
            return Mouse(message, lparam);
    }
}

bool GridInput::Mouse(UINT message, LPARAM lparam) {
    const int x = GET_X_LPARAM(lparam), y = GET_Y_LPARAM(lparam);
    switch (message) {
        case WM_LBUTTONDOWN:
            state.tip.Hide();
            LeftDown(x, y, false);
            return true;
        case WM_LBUTTONDBLCLK:
            LeftDown(x, y, true);
            return true;
        case WM_MOUSEMOVE:
            Move(x, y);
            if (state.drag == GridDrag::None) state.tip.PointerMoved(Hit(x, y));
            return true;
        case WM_MOUSEHOVER:
            if (state.drag == GridDrag::None) state.tip.PointerRests(Hit(x, y));
            return true;
        case WM_MOUSELEAVE:
            state.tip.PointerMoved({});
            return true;
        case WM_LBUTTONUP:
            Move(x, y);  // the last step of a quick drag may come with the release only
            LeftUp();
            return true;
        case WM_RBUTTONDOWN:
            RightDown(x, y);
            return true;
        default:
            return false;
    }
}

// Taking the focus ends an edit, here or elsewhere, which may do anything, even close the bar. False: do
// nothing more, the grid is gone or the edit goes on.
bool GridInput::TakeFocus() {
    const HWND window = Window();
    SetFocus(window);
    return IsWindow(window) && grid.window_ == window && !state.editor.Active();
}

void GridInput::Begin(GridDrag kind, int column, int x) {
    SetCapture(Window());
    state.drag = kind;
    state.dragColumn = column;
    state.dragX = x;
    state.dragMoved = false;
    state.dropMark = -1;
    const int position = model.Columns().Position(column);
    state.dragWidth = position < 0 ? 0 : model.Columns().PixelWidth(position);
    if (kind != GridDrag::Divider) SetTimer(Window(), kGridScrollTimer, kAutoScrollMilliseconds, nullptr);
}

// What is under a point, group heads told from ordinary rows.
GridHit GridInput::Hit(int x, int y) const {
    GridHit hit = model.View().HitTest(x, y);
    // A head goes on beside the last column.
    const GridHit row = hit.part == GridPart::Nothing ? model.View().HitTest(0, y) : hit;
    const GridGroupHead head = grid.HeadOf(row.row);
    if (head.level < 0) return hit;
    if (hit.part == GridPart::Nothing) hit = {GridPart::Cell, row.row, -1};
    return model.View().OnGroupHead(hit, x, head.level);
}

void GridInput::LeftDown(int x, int y, bool doubleClick) {
    if (state.editor.PressButton(x, y) || !TakeFocus()) return;
    const GridHit hit = Hit(x, y);
    if (doubleClick && DoubleClick(hit)) return;
    const bool locked = hit.column >= 0 && model.Columns()[hit.column].locked;
    if (hit.part == GridPart::Divider) {
        if (!locked) Begin(GridDrag::Divider, hit.column, x);
    } else if (hit.part == GridPart::Header) {
        Begin(GridDrag::Header, hit.column, x);
    } else if (hit.part == GridPart::Corner) {
        model.SelectAll();
        grid.ModelChanged();
    } else if (hit.part == GridPart::GroupBox) {
        model.Press(hit, {});
        grid.ModelChanged();
        grid.OnGroupToggled(hit.row);
    } else if (hit.row != kNoRow) {
        model.Press(hit, Modifiers());
        Begin(GridDrag::Rows, -1, x);
        grid.ModelChanged();
    }
}

bool GridInput::DoubleClick(const GridHit& hit) {
    if (hit.part == GridPart::Divider) {
        if (!model.Columns()[hit.column].locked) {
            grid.FitColumn(hit.column);
            grid.OnColumnsChanged();
        }
        return true;
    }
    if (Modifiers().ctrl || Modifiers().shift) return false;
    if (hit.part == GridPart::GroupHead) {
        grid.OnGroupToggled(hit.row);
        return true;
    }
    if (hit.part != GridPart::Cell) return false;
    model.SetCurrent(hit.row, hit.column);
    grid.ModelChanged();
    if (!grid.EditCell(hit.row, hit.column)) grid.OnCellDoubleClick(hit.row, hit.column);
    return true;
}

// A menu on a row outside the selection is about that row alone.
void GridInput::RightDown(int x, int y) {
    if (!TakeFocus()) return;
    const GridHit hit = Hit(x, y);
    if (hit.row == kNoRow) return;
    if (model.Selection().Contains(hit.row)) {
        model.MoveCurrent(hit.row, hit.column >= 0 ? hit.column : model.CurrentColumn());
    } else {
        model.Press(hit, {});
    }
    grid.ModelChanged();
}

void GridInput::Move(int x, int y) {
    switch (state.drag) {
        case GridDrag::Rows:
            if (const GridHit hit = model.View().HitTest(x, y);
                hit.row != kNoRow && hit.row != model.CurrentRow()) {
                model.DragTo(hit);
                grid.ModelChanged();
            }
            break;
        case GridDrag::Divider:
            DragDivider(x);
            break;
        case GridDrag::Header:
            DragHeader(x);
            break;
        case GridDrag::None:
            break;
    }
}

void GridInput::LeftUp() {
    const GridDrag drag = state.drag;
    const int column = state.dragColumn, mark = state.dropMark;
    const bool moved = state.dragMoved;
    EndDrag();
    if (drag == GridDrag::Divider) grid.OnColumnsChanged();
    if (drag == GridDrag::Header) moved ? DropHeader(column, mark) : HeaderClick(column);
}

// Escape: a divider goes back, a header stays where it was.
bool GridInput::CancelDrag() {
    if (state.drag == GridDrag::None) return false;
    if (state.drag == GridDrag::Divider) DragDivider(state.dragX);
    EndDrag();
    return true;
}

void GridInput::EndDrag() {
    if (state.drag == GridDrag::None) return;
    KillTimer(Window(), kGridScrollTimer);
    state.drag = GridDrag::None;
    state.dragMoved = false;
    state.dropMark = -1;
    if (GetCapture() == Window()) ReleaseCapture();
    grid.Redraw();
}

// The selection follows a pointer held above or below the rows.
void GridInput::AutoScroll() {
    POINT at{};
    if (state.drag == GridDrag::None || !GetCursorPos(&at) || !ScreenToClient(Window(), &at)) return;
    RECT client;
    GetClientRect(Window(), &client);
    if (state.drag == GridDrag::Header) return ScrollHeader(at.x, client.right);
    if (at.y >= model.View().RowsTop() && at.y < client.bottom) return;
    const GridHit hit = model.View().Nearest(at.x, at.y);
    if (hit.row == kNoRow || hit.row == model.CurrentRow()) return;
    model.DragTo(hit);
    grid.ModelChanged();
}

bool GridInput::Scroll(UINT message, WPARAM wparam) {
    const bool vertical = message == WM_VSCROLL;
    GridView& view = model.View();
    // The message carries 16 bits of the thumb's place; the bar knows all 32.
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    GetScrollInfo(Window(), vertical ? SB_VERT : SB_HORZ, &info);
    const std::int64_t at = vertical ? view.TopRow() : view.ScrollX();
    const std::int64_t line = vertical ? 1 : Scale(kWheelColumnsPixels / 3, state.dpi);
    const std::int64_t page = vertical ? view.PageRows() : view.ScrollWidth();
    const std::pair<int, std::int64_t> places[] = {
        {SB_LINEUP, at - line},
        {SB_LINEDOWN, at + line},
        {SB_PAGEUP, at - page},
        {SB_PAGEDOWN, at + page},
        {SB_TOP, 0},
        {SB_BOTTOM, vertical ? view.MaxTopRow() : view.MaxScrollX()},
        {SB_THUMBTRACK, info.nTrackPos},
        {SB_THUMBPOSITION, info.nTrackPos},
    };
    std::int64_t to = at;
    for (const auto& [code, place] : places)
        if (LOWORD(wparam) == code) to = place;
    if (to == at) return true;
    if (vertical) {
        view.SetTopRow(to);
    } else {
        state.filter.BeginMoving();
        view.SetScrollX(to);
    }
    grid.ModelChanged();
    return true;
}

bool GridInput::Wheel(UINT message, WPARAM wparam) {
    const int turned = GET_WHEEL_DELTA_WPARAM(wparam);
    GridView& view = model.View();
    if (message == WM_MOUSEHWHEEL || HeldModifiers().shift) {
        state.filter.BeginMoving();
        state.wheelColumns +=
            (message == WM_MOUSEHWHEEL ? turned : -turned) * Scale(kWheelColumnsPixels, state.dpi);
        view.SetScrollX(view.ScrollX() + state.wheelColumns / WHEEL_DELTA);
        state.wheelColumns %= WHEEL_DELTA;
    } else {
        const UINT lines = Setting(SPI_GETWHEELSCROLLLINES, 3);
        const int notch = lines == WHEEL_PAGESCROLL ? static_cast<int>(view.PageRows())
                                                    : static_cast<int>(std::min(lines, 100u));
        state.wheelRows -= turned * notch;
        view.SetTopRow(view.TopRow() + static_cast<std::int64_t>(state.wheelRows / WHEEL_DELTA));
        state.wheelRows %= WHEEL_DELTA;
    }
    grid.ModelChanged();
    return true;
}

bool GridInput::SetCursorShape() const {
    POINT at{};
    if (!GetCursorPos(&at) || !ScreenToClient(Window(), &at)) return false;
    const GridHit hit = model.View().HitTest(at.x, at.y);
    if (hit.part != GridPart::Divider || model.Columns()[hit.column].locked) return false;
    SetCursor(LoadCursorW(nullptr, IDC_SIZEWE));
    return true;
}

void GridInput::ContextMenu(LPARAM lparam) {
    if (state.editor.Active()) return;  // its text was refused: that comes first
    POINT at{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    GridHit hit{GridPart::Cell, model.CurrentRow(), model.CurrentColumn()};
    if (lparam == -1) {
        const Rect cell = model.View().CellRect(hit.row, hit.column);
        at = cell == Rect{} ? POINT{model.View().Metrics().rowHeaderWidth, model.View().RowsTop()}
                            : POINT{cell.left, cell.bottom};
        ClientToScreen(Window(), &at);
    } else {
        POINT inside = at;
        ScreenToClient(Window(), &inside);
        hit = Hit(inside.x, inside.y);
        const GridMetrics& metrics = model.View().Metrics();
        if (inside.y >= 0 && inside.y < metrics.headerHeight) return HeaderMenu(at.x, at.y, hit.column);
    }
    if (hit.part == GridPart::Band) return;
    grid.OnContextMenu(at.x, at.y, hit);
}
