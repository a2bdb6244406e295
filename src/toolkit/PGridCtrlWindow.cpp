// The grid window's life, its messages, and the operations that change the model and redraw.
#include <utility>

#include "toolkit/ActivationContext.h"
#include "toolkit/AnsiText.h"
#include "toolkit/DockingBar.h"
#include "toolkit/Module.h"
#include "toolkit/win32/GridState.h"
#include "toolkit/win32/WindowBinding.h"

namespace {

using namespace Dravel;

// Room above and below a text, at 96 dpi.
constexpr int kRowPadding = 3, kHeaderPadding = 5, kBandPadding = 3;
// What frozen columns leave of the window for the others.
constexpr int kLeastScrolled = 60;
// A paint this late is made at once; the clock, the paint itself and the next row come on top of it.
constexpr std::chrono::milliseconds kLatePaint{25};

HWND Handle(void* window) {
    return static_cast<HWND>(window);
}

// Drawing a bar costs more than drawing the rows, so one that stays as it is is left alone. The vertical one
// is always there: a grid that gets its first rows keeps its width.
void SetBar(HWND window, int bar, int max, UINT page, int position) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    if (GetScrollInfo(window, bar, &info) && info.nMax == max && info.nPage == page && info.nPos == position)
        return;
    info.nMin = 0;
    info.nMax = max;
    info.nPage = page;
    info.nPos = position;
    if (bar == SB_VERT) info.fMask |= SIF_DISABLENOSCROLL;
    SetScrollInfo(window, bar, &info, TRUE);
}

}  // namespace

CKRVPGridCtrl::CKRVPGridCtrl() : state_(std::make_unique<State>(*this)) {}

CKRVPGridCtrl::~CKRVPGridCtrl() {
    Destroy();
}

bool CKRVPGridCtrl::Create(void* parent, const Rect& place, std::uint32_t id, const wchar_t* className) {
    if (window_ != nullptr) return false;
    const auto procedure = reinterpret_cast<void*>(&BoundProcedure<CKRVPGridCtrl>);
    if (!RegisterWindowClass(className, procedure, CS_DBLCLKS, 32512 /* IDC_ARROW */)) return false;
    const ActivationScope scope;
    const HWND window = CreateWindowExW(
        0, className, L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPCHILDREN | WS_HSCROLL | WS_VSCROLL,
        place.left, place.top, place.Width(), place.Height(), Handle(parent),
        reinterpret_cast<HMENU>(static_cast<std::uintptr_t>(id)), static_cast<HINSTANCE>(Module()), this);
    return window != nullptr;
}

void CKRVPGridCtrl::Destroy() {
    if (window_ != nullptr) DestroyWindow(Handle(window_));
}

std::intptr_t CKRVPGridCtrl::HandleMessage(void* window, std::uint32_t message, std::uintptr_t wparam,
                                           std::intptr_t lparam) {
    if (message == WM_NCCREATE) window_ = window;
    std::intptr_t result = 0;
    if (message == WM_NCDESTROY) {
        window_ = nullptr;
        return DefWindowProcW(Handle(window), message, wparam, lparam);
    }
    if (Dispatch(message, wparam, lparam, result) || OnMessage(message, wparam, lparam, result))
        return result;
    return DefWindowProcW(Handle(window), message, wparam, lparam);
}

bool CKRVPGridCtrl::Dispatch(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                             std::intptr_t& result) {
    GridInput input(*this);
    switch (message) {
        case WM_CREATE:
            result = Created() ? 0 : -1;
            return true;
        case WM_DESTROY:
            Destroyed();
            return true;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            FocusChanged(message == WM_SETFOCUS);
            return true;
        case WM_CTLCOLOREDIT:
            result = reinterpret_cast<std::intptr_t>(
                state_->filter.Colour(reinterpret_cast<HDC>(wparam), reinterpret_cast<HWND>(lparam)));
            return result != 0;
        case WM_COMMAND:
            return lparam == 0 ? OnCommand(LOWORD(wparam))
                               : Notified(LOWORD(wparam), HIWORD(wparam), reinterpret_cast<void*>(lparam));
        case WM_TIMER:
            if (wparam == kGridScrollTimer) input.AutoScroll();
            if (wparam == kGridSettleTimer) state_->filter.EndMoving();
            return true;
        case kGridRefocus:
            state_->editor.Refocus();
            return true;
        case WM_VSCROLL:
        case WM_HSCROLL:
            UpdateScrollBars();
            return input.Scroll(message, wparam);
        default:
            return Look(message, wparam, lparam, result) || input.Message(message, wparam, lparam, result);
    }
}

// Messages about what the window looks like.
bool CKRVPGridCtrl::Look(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                         std::intptr_t& result) {
    switch (message) {
        case WM_ERASEBKGND:
            result = 1;
            return true;
        case WM_PAINT:
            Paint();
            return true;
        case WM_PRINTCLIENT: {
            RECT client;
            GetClientRect(Handle(window_), &client);
            GridPaint::Paint(*this, reinterpret_cast<HDC>(wparam), client);
            return true;
        }
        case WM_SIZE:
            model_.View().SetClient(LOWORD(lparam), HIWORD(lparam));
            SetFrozenRoom();
            UpdateScrollBars();
            ViewMoved();
            return true;
        case WM_GETFONT:
            result = reinterpret_cast<std::intptr_t>(state_->font);
            return true;
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED:
            state_->filter.ColoursChanged();
            Redraw();
            return true;
        case WM_DPICHANGED_AFTERPARENT:
            if (UpdateDpi()) MakeFont(fontBytes_);
            UpdateMetrics();
            return true;
        default:
            return false;
    }
}

void CKRVPGridCtrl::Paint() {
    // Once a paint and not once a change: trades come one by one.
    UpdateScrollBars();
    state_->unpainted = false;
    PAINTSTRUCT paint;
    const HDC screen = BeginPaint(Handle(window_), &paint);
    GridPaint::Paint(*this, screen, paint.rcPaint);
    EndPaint(Handle(window_), &paint);
}

void CKRVPGridCtrl::FocusChanged(bool gained) {
    state_->focused = gained;
    state_->pressed.reset();
    Redraw();
    if (auto* bar = CKRVPDockingControlBar::FromWindow(window_)) bar->FocusMoved();
    OnFocus(gained);
}

bool CKRVPGridCtrl::Notified(int id, int code, void* control) {
    return state_->editor.Notify(id, code, Handle(control)) ||
           state_->filter.Notify(id, code, Handle(control)) ||
           OnControl(static_cast<std::uint32_t>(id), static_cast<std::uint32_t>(code), control);
}

bool CKRVPGridCtrl::Created() {
    UpdateDpi();
    if (state_->font == nullptr && !SetGridFont(FontOfWindow(GetParent(Handle(window_))))) return false;
    UpdateMetrics();
    return OnCreate();
}

void CKRVPGridCtrl::Destroyed() {
    state_->editor.Drop();
    state_->tip.Drop();
    OnDestroy();
}

bool CKRVPGridCtrl::MakeFont(const FontBytes& font) {
    const int system = static_cast<int>(GetDpiForSystem());
    const auto made = static_cast<HFONT>(CreateFontHandle(ScaleFont(font, state_->dpi, system)));
    if (made == nullptr) return false;
    const HFONT old = state_->font;
    state_->font = made;
    state_->filter.SetFont();
    state_->editor.SetFont();
    DeleteFontHandle(old);
    return true;
}

bool CKRVPGridCtrl::SetGridFont(const FontBytes& font) {
    if (!MakeFont(font)) return false;
    fontBytes_ = font;
    UpdateMetrics();
    return true;
}

bool CKRVPGridCtrl::UpdateDpi() {
    const UINT dpi = window_ == nullptr ? 0 : GetDpiForWindow(Handle(window_));
    const int before = state_->dpi;
    state_->dpi = dpi == 0 ? kBaseDpi : static_cast<int>(dpi);
    return state_->dpi != before;
}

void CKRVPGridCtrl::UpdateMetrics() {
    if (window_ == nullptr) return;
    const HDC device = GetDC(Handle(window_));
    const HGDIOBJ old = SelectObject(device, state_->font);
    TEXTMETRICW text{};
    GetTextMetricsW(device, &text);
    SelectObject(device, old);
    ReleaseDC(Handle(window_), device);
    state_->textHeight = text.tmHeight;
    const int dpi = state_->dpi;
    model_.Columns().SetDpi(dpi);
    model_.View().SetMetrics(
        {.headerHeight = header_ ? text.tmHeight + 2 * Scale(kHeaderPadding, dpi) + 1 : 0,
         .bandHeight = FilterBarShown() ? text.tmHeight + 2 + 2 * Scale(kBandPadding, dpi) + 1 : 0,
         .rowHeight = text.tmHeight + 2 * Scale(kRowPadding, dpi) + 1,
         .rowHeaderWidth = rowHeader_ ? Scale(rowHeaderWidth_, dpi) : 0});
    SetFrozenRoom();
    ModelChanged();
}

void CKRVPGridCtrl::SetFrozenRoom() {
    RECT client{};
    GetClientRect(Handle(window_), &client);
    const int taken = model_.View().Metrics().rowHeaderWidth + Scale(kLeastScrolled, state_->dpi);
    model_.Columns().SetFrozenRoom(std::max<int>(client.right - taken, 0));
    model_.View().Clamp();
}

void CKRVPGridCtrl::UpdateScrollBars() {
    // Setting a bar may show or hide it, which sizes the window and comes back here.
    if (window_ == nullptr || state_->inScrollBars) return;
    state_->inScrollBars = true;
    const GridView& view = model_.View();
    SetBar(Handle(window_), SB_VERT, RowCount() == 0 ? 0 : static_cast<int>(RowCount() - 1), view.PageRows(),
           static_cast<int>(view.TopRow()));
    SetBar(Handle(window_), SB_HORZ, std::max(view.ScrollWidth() + view.MaxScrollX() - 1, 0),
           static_cast<UINT>(view.ScrollWidth()), view.ScrollX());
    state_->inScrollBars = false;
}

void CKRVPGridCtrl::ModelChanged() {
    if (window_ == nullptr) return;
    if (updates_ > 0) {
        state_->stale = true;
        return;
    }
    model_.View().Clamp();
    ViewMoved();
    if (state_->row == CurrentRow() && state_->column == CurrentColumn() && state_->selection == Selection())
        return;
    state_->row = CurrentRow();
    state_->column = CurrentColumn();
    state_->selection = Selection();
    OnSelectionChanged();
}

void CKRVPGridCtrl::ViewMoved() {
    Redraw();
    state_->tip.Hide();
    state_->filter.Layout();
    state_->editor.Layout();
    OnViewChanged();
}

GridGroupHead CKRVPGridCtrl::HeadOf(std::uint32_t row) const {
    return source_ != nullptr && row < std::min(RowCount(), source_->RowCount()) ? source_->GroupHead(row)
                                                                                 : GridGroupHead{};
}

void CKRVPGridCtrl::EndUpdate() {
    if (updates_ > 0 && --updates_ == 0 && state_->stale) {
        state_->stale = false;
        ModelChanged();
    }
}

void CKRVPGridCtrl::Redraw() {
    if (window_ == nullptr) return;
    InvalidateRect(Handle(window_), nullptr, FALSE);
    if (std::exchange(state_->unpainted, true)) return;
    state_->unpaintedSince = std::chrono::steady_clock::now();
}

void CKRVPGridCtrl::PaintWhenLate() {
    if (window_ == nullptr || !state_->unpainted) return;
    if (std::chrono::steady_clock::now() - state_->unpaintedSince >= kLatePaint)
        UpdateWindow(Handle(window_));
}

void CKRVPGridCtrl::RedrawRow(std::uint32_t row) {
    const GridView& view = model_.View();
    if (window_ == nullptr || row < view.TopRow() || row >= view.VisibleEnd()) return;
    RECT band;
    GetClientRect(Handle(window_), &band);
    band.top = view.RowTop(row);
    band.bottom = band.top + view.Metrics().rowHeight;
    InvalidateRect(Handle(window_), &band, FALSE);
}

void CKRVPGridCtrl::FitColumn(int column) {
    const int position = Columns().Position(column);
    if (window_ == nullptr || position < 0) return;
    const HDC device = GetDC(Handle(window_));
    const HGDIOBJ old = SelectObject(device, state_->font);
    int width =
        GridTextWidth(device, Widen(Columns()[column].header)) + Scale(kGridSortMarkWidth, state_->dpi);
    const std::uint32_t end =
        std::min(model_.View().VisibleEnd(), source_ == nullptr ? 0 : source_->RowCount());
    for (std::uint32_t row = model_.View().TopRow(); row < end; ++row) {
        if (HeadOf(row).level >= 0) continue;
        state_->ansi.clear();
        source_->CellText(row, column, state_->ansi);
        Widen(state_->ansi, state_->wide);
        width = std::max(width, GridTextWidth(device, state_->wide));
    }
    SelectObject(device, old);
    ReleaseDC(Handle(window_), device);
    // One more for the line, one for the rounding between resolutions.
    model_.Columns().SetPixelWidth(position, width + 2 * Scale(kGridCellPadding, state_->dpi) + 2);
    ModelChanged();
}

int GridTextWidth(HDC device, const std::wstring& text) {
    SIZE size{};
    GetTextExtentPoint32W(device, text.data(), static_cast<int>(text.size()), &size);
    return size.cx;
}
