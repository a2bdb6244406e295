// The drop-down list of a cell's editor.
#include <windows.h>
// Needs the types of the line above.
#include <windowsx.h>

#include <algorithm>

#include "toolkit/AnsiText.h"
#include "toolkit/Geometry.h"
#include "toolkit/Module.h"
#include "toolkit/win32/BufferedPaint.h"
#include "toolkit/win32/GridColours.h"
#include "toolkit/win32/GridDropList.h"
#include "toolkit/win32/WindowBinding.h"

using namespace Dravel;

namespace {

constexpr wchar_t kListClass[] = L"KRVPGridDropList";
constexpr std::size_t kMaxRows = 12, kMeasured = 200;          // rows shown, and choices whose width counts
constexpr int kPadding = 5, kRowPadding = 2, kMaxWidth = 480;  // at 96 dpi
constexpr UINT_PTR kMovedTimer = 1;
constexpr UINT kMovedMilliseconds = 100;

int RowHeight(HWND window, HFONT font, int dpi) {
    const HDC device = GetDC(window);
    const HGDIOBJ old = SelectObject(device, font);
    TEXTMETRICW metrics{};
    GetTextMetricsW(device, &metrics);
    SelectObject(device, old);
    ReleaseDC(window, device);
    return std::max<int>(metrics.tmHeight + 2 * Scale(kRowPadding, dpi), 1);
}

}  // namespace

bool GridDropList::Open(HWND field, const RECT& cell, HFONT font, int dpi) {
    Close();
    if (choices_.Empty()) return false;
    const auto procedure = reinterpret_cast<void*>(&BoundProcedure<GridDropList>);
    if (!RegisterWindowClass(kListClass, procedure, CS_DROPSHADOW, 32512 /* IDC_ARROW */)) return false;
    field_ = field;
    font_ = font;
    dpi_ = dpi;
    wheel_ = 0;
    GetCursorPos(&pointer_);
    CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, kListClass, L"",
                    WS_POPUP | WS_BORDER | WS_VSCROLL, 0, 0, 0, 0, GetAncestor(field, GA_ROOT), nullptr,
                    static_cast<HINSTANCE>(Module()), this);
    if (window_ == nullptr) return false;
    rowHeight_ = RowHeight(window_, font_, dpi_);
    Place(cell);
    return true;
}

int GridDropList::WidthWanted(int atLeast) const {
    const HDC device = GetDC(window_);
    const HGDIOBJ old = SelectObject(device, font_);
    int width = atLeast;
    for (std::size_t i = 0; i < std::min(choices_.Count(), kMeasured); ++i) {
        SIZE size{};
        const std::wstring text = Widen(choices_[i]);
        GetTextExtentPoint32W(device, text.data(), static_cast<int>(text.size()), &size);
        width =
            std::max<int>(width, size.cx + 2 * Scale(kPadding, dpi_) + GetSystemMetrics(SM_CXVSCROLL) + 2);
    }
    SelectObject(device, old);
    ReleaseDC(window_, device);
    return std::min(width, std::max(atLeast, Scale(kMaxWidth, dpi_)));
}

void GridDropList::Place(const RECT& cell) {
    GetWindowRect(field_, &fieldAt_);
    RECT at = cell;
    MapWindowPoints(field_, nullptr, reinterpret_cast<POINT*>(&at), 2);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromRect(&at, MONITOR_DEFAULTTONEAREST), &monitor);
    const RECT& room = monitor.rcWork;
    const LONG below = room.bottom - at.bottom, above = at.top - room.top;
    const auto wanted = static_cast<LONG>(std::min(choices_.Count(), kMaxRows)) * rowHeight_ + 2;
    const bool under = wanted <= below || below >= above;
    const LONG height = std::min(wanted, std::max<LONG>(under ? below : above, rowHeight_ + 2));
    const int width = WidthWanted(at.right - at.left);
    const LONG left = std::max(std::min(at.left, room.right - width), room.left);
    choices_.SetPage(static_cast<std::size_t>(std::max<LONG>((height - 2) / rowHeight_, 1)));
    SetBar();
    SetWindowPos(window_, HWND_TOPMOST, left, under ? at.bottom : at.top - height, width, height,
                 SWP_NOACTIVATE);
    ShowWindow(window_, SW_SHOWNOACTIVATE);
    SetTimer(window_, kMovedTimer, kMovedMilliseconds, nullptr);
}

void GridDropList::Close() {
    if (window_ != nullptr) DestroyWindow(window_);
}

// The terminal's frame may be moved under the list, which nobody tells a window within it.
void GridDropList::CloseWhenMoved() {
    RECT now{};
    if (!GetWindowRect(field_, &now) || !EqualRect(&now, &fieldAt_)) Close();
}

void GridDropList::SetBar() {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = choices_.Empty() ? 0 : static_cast<int>(choices_.Count() - 1);
    info.nPage = static_cast<UINT>(choices_.Page());
    info.nPos = static_cast<int>(choices_.Top());
    SetScrollInfo(window_, SB_VERT, &info, TRUE);
}

void GridDropList::Changed() {
    if (window_ == nullptr) return;
    if (choices_.Empty()) return Close();
    SetBar();
    InvalidateRect(window_, nullptr, FALSE);
}

void GridDropList::Wheel(int delta) {
    wheel_ -= delta * 3;
    choices_.SetTop(static_cast<std::int64_t>(choices_.Top()) + wheel_ / WHEEL_DELTA);
    wheel_ %= WHEEL_DELTA;
    Changed();
}

void GridDropList::Scroll(WPARAM wparam) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    GetScrollInfo(window_, SB_VERT, &info);
    const auto top = static_cast<std::int64_t>(choices_.Top()),
               page = static_cast<std::int64_t>(choices_.Page());
    const std::pair<int, std::int64_t> places[] = {
        {SB_LINEUP, top - 1},
        {SB_LINEDOWN, top + 1},
        {SB_PAGEUP, top - page},
        {SB_PAGEDOWN, top + page},
        {SB_TOP, 0},
        {SB_BOTTOM, static_cast<std::int64_t>(choices_.MaxTop())},
        {SB_THUMBTRACK, info.nTrackPos},
        {SB_THUMBPOSITION, info.nTrackPos},
    };
    for (const auto& [code, to] : places)
        if (LOWORD(wparam) == code) choices_.SetTop(to);
    Changed();
}

std::size_t GridDropList::RowAt(LPARAM lparam) const {
    const int y = GET_Y_LPARAM(lparam);
    const std::size_t row = choices_.Top() + static_cast<std::size_t>(std::max(y, 0) / rowHeight_);
    return row < choices_.Count() ? row : GridChoices::kNone;
}

// A pointer that lies still chooses nothing: the list may have opened or scrolled under it.
void GridDropList::Hover(LPARAM lparam) {
    POINT now{};
    GetCursorPos(&now);
    if (now.x == pointer_.x && now.y == pointer_.y) return;
    pointer_ = now;
    const std::size_t row = RowAt(lparam);
    if (row == GridChoices::kNone || row == choices_.Chosen()) return;
    choices_.Choose(row);
    Changed();
}

std::intptr_t GridDropList::HandleMessage(void* handle, std::uint32_t message, std::uintptr_t wparam,
                                          std::intptr_t lparam) {
    const auto window = static_cast<HWND>(handle);
    switch (message) {
        case WM_NCCREATE:
            window_ = window;
            break;
        case WM_NCDESTROY:
            window_ = nullptr;
            break;
        case WM_MOUSEACTIVATE:
            return MA_NOACTIVATE;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT: {
            PAINTSTRUCT paint;
            const HDC screen = BeginPaint(window, &paint);
            Paint(screen, paint.rcPaint);
            EndPaint(window, &paint);
            return 0;
        }
        case WM_VSCROLL:
            Scroll(wparam);
            return 0;
        case WM_MOUSEWHEEL:
            Wheel(GET_WHEEL_DELTA_WPARAM(wparam));
            return 0;
        case WM_MOUSEMOVE:
            Hover(lparam);
            return 0;
        case WM_LBUTTONUP:
            choices_.Choose(RowAt(lparam));
            if (choices_.Chosen() != GridChoices::kNone) taken_();
            return 0;
        case WM_TIMER:
            CloseWhenMoved();
            return 0;
        default:
            break;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}

void GridDropList::Paint(HDC screen, const RECT& dirty) {
    const BufferedPaint buffer(screen, window_);
    const HDC device = buffer.Device();
    const RECT& client = buffer.Client();
    SelectObject(device, font_);
    const GridColours colours;
    SetBkColor(device, colours.window);
    ExtTextOutW(device, 0, 0, ETO_OPAQUE, &client, nullptr, 0, nullptr);
    RECT row{0, 0, client.right, rowHeight_};
    for (std::size_t i = choices_.Top(); i < choices_.Count() && row.top < client.bottom; ++i) {
        const bool chosen = i == choices_.Chosen();
        SetBkColor(device, chosen ? colours.highlight : colours.window);
        SetTextColor(device, chosen ? colours.highlightText : colours.text);
        Widen(choices_[i], text_);
        ExtTextOutW(device, Scale(kPadding, dpi_), row.top + Scale(kRowPadding, dpi_),
                    ETO_OPAQUE | ETO_CLIPPED, &row, text_.data(), static_cast<UINT>(text_.size()), nullptr);
        OffsetRect(&row, 0, rowHeight_);
    }
    buffer.Show(dirty);
}
