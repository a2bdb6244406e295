// Caption strip, close button and splitter of a docking bar: how they look and what the mouse does with them.
#include <windows.h>
// Needs the types of the line above.
#include <windowsx.h>

#include <algorithm>
#include <cstdlib>

#include "toolkit/win32/DockingImpl.h"

using namespace Dravel;

namespace {

// At 96 dpi.
constexpr int kSplitter = 5, kCaptionPadding = 4, kCloseSize = 15, kCross = 7, kDropMargin = 24;

const RECT* System(const Rect& rect) {
    return reinterpret_cast<const RECT*>(&rect);
}

void Fill(HDC device, const Rect& area, COLORREF colour) {
    SetBkColor(device, colour);
    ExtTextOutW(device, 0, 0, ETO_OPAQUE, System(area), nullptr, 0, nullptr);
}

// Where the pointer was when the message was sent: on a busy thread it may be elsewhere by now.
POINT PointerOfMessage() {
    const DWORD at = GetMessagePos();
    return {GET_X_LPARAM(at), GET_Y_LPARAM(at)};
}

}  // namespace

Rect DockingInput::Client() const {
    RECT client{};
    if (Window() != nullptr) GetClientRect(Window(), &client);
    return {0, 0, static_cast<int>(client.right), static_cast<int>(client.bottom)};
}

Rect DockingInput::Splitter() const {
    Rect strip = Client();
    const int width = Scale(kSplitter, bar.Dpi());
    switch (bar.state_.side) {
        case DockSide::Left:
            strip.left = strip.right - width;
            break;
        case DockSide::Right:
            strip.right = strip.left + width;
            break;
        case DockSide::Top:
            strip.top = strip.bottom - width;
            break;
        case DockSide::Bottom:
            strip.bottom = strip.top + width;
            break;
        default:
            return {};
    }
    return strip;
}

Rect DockingInput::Caption() const {
    Rect strip = Client();
    const Rect splitter = Splitter();
    switch (bar.state_.side) {
        case DockSide::Left:
            strip.right = splitter.left;
            break;
        case DockSide::Right:
            strip.left = splitter.right;
            break;
        case DockSide::Bottom:
            strip.top = splitter.bottom;
            break;
        default:
            break;
    }
    strip.bottom = strip.top + std::max(textHeight + 2 * Scale(kCaptionPadding, bar.Dpi()),
                                        Scale(kCloseSize + 4, bar.Dpi()));
    return strip;
}

Rect DockingInput::Content() const {
    Rect content = Caption();
    content.top = content.bottom;
    content.bottom = bar.state_.side == DockSide::Top ? Splitter().top : Client().bottom;
    content.bottom = std::max(content.bottom, content.top);
    content.right = std::max(content.right, content.left);
    return content;
}

Rect DockingInput::CloseButton() const {
    const Rect strip = Caption();
    const int size = Scale(kCloseSize, bar.Dpi());
    const int top = strip.top + (strip.Height() - size) / 2,
              right = strip.right - Scale(kCaptionPadding, bar.Dpi());
    return {right - size, top, right, top + size};
}

void DockingInput::UpdateFont() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0,
                               static_cast<UINT>(bar.Dpi()));
    if (font != nullptr) DeleteObject(font);
    font = CreateFontIndirectW(&metrics.lfSmCaptionFont);
    const HDC device = GetDC(Window());
    const HGDIOBJ old = SelectObject(device, font);
    TEXTMETRICW text{};
    if (GetTextMetricsW(device, &text)) textHeight = text.tmHeight;
    SelectObject(device, old);
    ReleaseDC(Window(), device);
}

void DockingInput::Paint(HDC device) const {
    const HWND focus = GetFocus();
    const bool active = focus != nullptr && (focus == Window() || IsChild(Window(), focus));
    const COLORREF back = GetSysColor(active ? COLOR_HIGHLIGHT : COLOR_BTNFACE);
    const COLORREF text = GetSysColor(active ? COLOR_HIGHLIGHTTEXT : COLOR_BTNTEXT);
    const Rect caption = Caption();
    Fill(device, Client(), GetSysColor(COLOR_BTNFACE));
    Fill(device, caption, back);
    Rect edge = caption;
    edge.top = edge.bottom - 1;
    Fill(device, edge, GetSysColor(COLOR_BTNSHADOW));
    wchar_t name[128] = L"";
    GetWindowTextW(Window(), name, 128);
    RECT room{caption.left + Scale(2 * kCaptionPadding, bar.Dpi()), caption.top, CloseButton().left,
              caption.bottom - 1};
    const HGDIOBJ old = SelectObject(device, font);
    SetBkMode(device, TRANSPARENT);
    SetTextColor(device, text);
    DrawTextW(device, name, -1, &room, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    SelectObject(device, old);
    PaintClose(device, back, text);
}

void DockingInput::PaintClose(HDC device, COLORREF back, COLORREF text) const {
    const Rect button = CloseButton();
    if (hot_) {
        const bool down = drag_ == BarDrag::Close;
        back = down ? RGB(172, 28, 28) : RGB(214, 52, 52);
        text = RGB(255, 255, 255);
    }
    Fill(device, button, back);
    const int cross = Scale(kCross, bar.Dpi()), left = button.left + (button.Width() - cross) / 2;
    const int top = button.top + (button.Height() - cross) / 2;
    const HPEN pen = CreatePen(PS_SOLID, std::max(Scale(3, bar.Dpi()) / 2, 1), text);
    const HGDIOBJ old = SelectObject(device, pen);
    MoveToEx(device, left, top, nullptr);
    LineTo(device, left + cross, top + cross);
    MoveToEx(device, left + cross - 1, top, nullptr);
    LineTo(device, left - 1, top + cross);
    SelectObject(device, old);
    DeleteObject(pen);
}

bool DockingInput::SetCursorShape() const {
    POINT at{};
    if (!GetCursorPos(&at) || !ScreenToClient(Window(), &at) || !Splitter().Contains(at.x, at.y))
        return false;
    const bool sideways = bar.state_.side == DockSide::Left || bar.state_.side == DockSide::Right;
    SetCursor(LoadCursorW(nullptr, sideways ? IDC_SIZEWE : IDC_SIZENS));
    return true;
}

bool DockingInput::Mouse(UINT message, int x, int y) {
    switch (message) {
        case WM_LBUTTONDOWN:
            Down(x, y);
            return true;
        case WM_LBUTTONDBLCLK:
            if (!Caption().Contains(x, y) || CloseButton().Contains(x, y)) {
                Down(x, y);
            } else if (bar.frame_ != nullptr) {
                bar.Dock(bar.Docked() ? DockSide::Floating : lastSide);
                bar.OnStateChanged();
            }
            return true;
        case WM_MOUSEMOVE:
            Move(x, y);
            return true;
        case WM_MOUSELEAVE:
            SetHot(false);
            return true;
        case WM_LBUTTONUP:
            Up(x, y);
            return true;
        default:
            return false;
    }
}

void DockingInput::SetHot(bool hot) {
    if (hot == hot_) return;
    hot_ = hot;
    bar.FocusMoved();
}

void DockingInput::Down(int x, int y) {
    const HWND window = Window();
    if (Splitter().Contains(x, y)) {
        drag_ = BarDrag::Splitter;
    } else if (CloseButton().Contains(x, y)) {
        drag_ = BarDrag::Close;
        bar.FocusMoved();
    } else if (Caption().Contains(x, y)) {
        drag_ = BarDrag::Caption;
        SetFocus(window);
        if (Window() != window) return;
    } else {
        return;
    }
    moved_ = false;
    start_ = PointerOfMessage();
    if (bar.impl_->frame.mini != nullptr) GetWindowRect(bar.impl_->frame.mini, &startPlace_);
    SetCapture(window);
}

void DockingInput::Move(int x, int y) {
    const POINT at = PointerOfMessage();
    const bool overClose = CloseButton().Contains(x, y);
    if (overClose && !hot_) {
        TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, Window(), 0};
        TrackMouseEvent(&leave);
    }
    SetHot(overClose && (drag_ == BarDrag::None || drag_ == BarDrag::Close));
    if (drag_ == BarDrag::Splitter) {
        POINT inside = at;
        ScreenToClient(static_cast<HWND>(bar.frame_), &inside);
        DragSplitter(bar.state_, bar.impl_->frame.room, inside.x, inside.y);
        bar.impl_->frame.Layout();
    } else if (drag_ == BarDrag::Caption) {
        const int reach = 2 * GetSystemMetrics(SM_CXDRAG);
        moved_ = moved_ || std::abs(at.x - start_.x) > reach || std::abs(at.y - start_.y) > reach;
        if (!moved_) return;
        SetCursor(LoadCursorW(nullptr, IDC_SIZEALL));
        if (bar.Docked()) return;
        SetWindowPos(bar.impl_->frame.mini, nullptr, startPlace_.left + at.x - start_.x,
                     startPlace_.top + at.y - start_.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

void DockingInput::Up(int x, int y) {
    const BarDrag drag = drag_;
    const bool moved = moved_;
    const POINT at = PointerOfMessage();
    EndDrag();
    if (drag == BarDrag::Close && CloseButton().Contains(x, y)) return bar.OnPressCloseButton();
    if (drag == BarDrag::Caption && moved) DropCaption(at);
    if (drag == BarDrag::Splitter || (drag == BarDrag::Caption && moved)) bar.OnStateChanged();
}

// Near an edge of the frame's room it docks there, elsewhere it floats under the pointer. Ctrl keeps it from
// docking.
void DockingInput::DropCaption(POINT at) {
    DockSide side = DockSide::Floating;
    if (bar.frame_ != nullptr && GetKeyState(VK_CONTROL) >= 0) {
        Rect room = bar.impl_->frame.room;
        MapWindowPoints(static_cast<HWND>(bar.frame_), nullptr, reinterpret_cast<POINT*>(&room), 2);
        side = DropSide(room, at.x, at.y, Scale(kDropMargin, bar.Dpi()));
    }
    if (side == DockSide::Floating && !bar.Docked()) return;
    if (side == DockSide::Floating) {
        bar.state_.left = at.x - bar.state_.width / 3;
        bar.state_.top = at.y - Caption().Height() / 2;
    }
    bar.Dock(side);
}

void DockingInput::EndDrag() {
    if (drag_ == BarDrag::None) return;
    drag_ = BarDrag::None;
    if (GetCapture() == Window()) ReleaseCapture();
    bar.FocusMoved();
}
