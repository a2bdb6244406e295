// The docking bar's own window: life, messages, and where it stands.
#include "toolkit/DockingBar.h"

#include <windows.h>
// Needs the types of the line above.
#include <windowsx.h>

#include "toolkit/ActivationContext.h"
#include "toolkit/Module.h"
#include "toolkit/win32/DockingImpl.h"
#include "toolkit/win32/WindowBinding.h"

using namespace Dravel;

namespace {

HWND Handle(void* window) {
    return static_cast<HWND>(window);
}
constexpr WNDPROC kProcedure = &BoundProcedure<CKRVPDockingControlBar>;

}  // namespace

CKRVPDockingControlBar::CKRVPDockingControlBar() : impl_(std::make_unique<Impl>(*this)) {}

CKRVPDockingControlBar::~CKRVPDockingControlBar() {
    Destroy();
}

bool CKRVPDockingControlBar::Create(void* frame, const wchar_t* name, const Rect& floating,
                                    std::uint32_t id) {
    if (window_ != nullptr) return false;
    if (!RegisterWindowClass(kBarClass, reinterpret_cast<void*>(kProcedure), CS_DBLCLKS,
                             32512 /* IDC_ARROW */))
        return false;
    frame_ = frame;
    id_ = id;
    state_ = {DockSide::Floating, floating.left, floating.top, floating.Width(), floating.Height()};
    const ActivationScope scope;
    if (!impl_->frame.CreateMini(name)) return false;
    RECT client;
    GetClientRect(impl_->frame.mini, &client);
    const HWND made = CreateWindowExW(
        0, kBarClass, name, WS_CHILD | WS_DISABLED | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, client.right,
        client.bottom, impl_->frame.mini, reinterpret_cast<HMENU>(static_cast<std::uintptr_t>(id)),
        static_cast<HINSTANCE>(Module()), this);
    if (made == nullptr) return false;  // OnNcDestroy may have deleted this
    impl_->frame.Attach();
    return true;
}

void CKRVPDockingControlBar::Destroy() {
    if (window_ == nullptr) {
        impl_->frame.Release();
    } else {
        DestroyWindow(Docked() || impl_->frame.mini == nullptr ? Handle(window_) : impl_->frame.mini);
    }
}

CKRVPDockingControlBar* CKRVPDockingControlBar::FromWindow(void* window) {
    for (HWND at = Handle(window); at != nullptr; at = GetAncestor(at, GA_PARENT)) {
        if (reinterpret_cast<WNDPROC>(GetClassLongPtrW(at, GCLP_WNDPROC)) == kProcedure) {
            return reinterpret_cast<CKRVPDockingControlBar*>(GetWindowLongPtrW(at, GWLP_USERDATA));
        }
    }
    return nullptr;
}

void CKRVPDockingControlBar::Dock(DockSide side) {
    if (window_ == nullptr) return;
    if (frame_ == nullptr || side > DockSide::Bottom) side = DockSide::Floating;
    if (side != DockSide::Floating) impl_->input.lastSide = side;
    state_.side = side;
    impl_->frame.MoveBetween();
    OnSize(Content());
    InvalidateRect(Handle(window_), nullptr, FALSE);
}

void CKRVPDockingControlBar::Show(bool show) {
    if (window_ == nullptr || show == shown_) return;
    const HWND focus = GetFocus();
    const bool hadFocus = focus != nullptr && (focus == window_ || IsChild(Handle(window_), focus));
    shown_ = show;
    // Disabled as long as it is hidden: a host that gives the keyboard back to the child that had it last
    // would give it to one that nobody sees. It goes first, so that the host hears of it before the hiding.
    EnableWindow(Handle(window_), show);
    if (!show && hadFocus) SetFocus(Handle(frame_));
    if (window_ == nullptr) return;  // who gets the keyboard may do anything
    ShowWindow(Handle(window_), show ? SW_SHOWNA : SW_HIDE);
    if (!Docked()) impl_->frame.ShowMini(show);
    impl_->frame.Layout();
    if (show) OnSize(Content());
    OnShow(show);
}

void CKRVPDockingControlBar::Focus() {
    if (window_ == nullptr || !shown_) return;
    if (!Docked()) SetForegroundWindow(impl_->frame.mini);
    SetFocus(Handle(window_));
}

void CKRVPDockingControlBar::SetState(const DockState& state) {
    const Rect screen{GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_YVIRTUALSCREEN),
                      GetSystemMetrics(SM_XVIRTUALSCREEN) + GetSystemMetrics(SM_CXVIRTUALSCREEN),
                      GetSystemMetrics(SM_YVIRTUALSCREEN) + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
    state_ = SaneDockState(state, state_, screen);
    impl_->frame.PlaceMini();
    Dock(state_.side);
}

Rect CKRVPDockingControlBar::Content() const {
    return impl_->input.Content();
}
void* CKRVPDockingControlBar::BarFont() const {
    return impl_->input.font;
}

int CKRVPDockingControlBar::Dpi() const {
    const UINT dpi = window_ == nullptr ? 0 : GetDpiForWindow(Handle(window_));
    return dpi == 0 ? kBaseDpi : static_cast<int>(dpi);
}

void CKRVPDockingControlBar::FocusMoved() {
    const Rect caption = impl_->input.Caption();
    if (window_ != nullptr) InvalidateRect(Handle(window_), reinterpret_cast<const RECT*>(&caption), FALSE);
}

std::intptr_t CKRVPDockingControlBar::HandleMessage(void* window, std::uint32_t message,
                                                    std::uintptr_t wparam, std::intptr_t lparam) {
    if (message == WM_NCCREATE) window_ = window;
    if (message == WM_NCDESTROY) {
        const LRESULT last = DefWindowProcW(Handle(window), message, wparam, lparam);
        Destroyed(window);  // may delete this
        return last;
    }
    std::intptr_t result = 0;
    if (Dispatch(message, wparam, lparam, result) || OnMessage(message, wparam, lparam, result))
        return result;
    return DefWindowProcW(Handle(window), message, wparam, lparam);
}

void CKRVPDockingControlBar::Destroyed(void*) {
    window_ = nullptr;
    shown_ = false;
    impl_->frame.Detach();
    impl_->frame.Release();
    OnNcDestroy();
}

bool CKRVPDockingControlBar::Dispatch(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                                      std::intptr_t& result) {
    DockingInput& input = impl_->input;
    if (message == impl_->tabClose && message != 0) {
        OnTabCloseButton();
        return true;
    }
    switch (message) {
        case WM_CREATE:
            input.UpdateFont();
            result = OnCreate() ? 0 : -1;
            return true;
        case WM_DESTROY:
            shown_ = false;
            impl_->frame.Layout();  // the content gets the whole room back
            OnDestroy();
            return true;
        case WM_SIZE:
            InvalidateRect(Handle(window_), nullptr, FALSE);
            OnSize(Content());
            return true;
        case WM_ERASEBKGND:
            result = 1;
            return true;
        case WM_PAINT: {
            PAINTSTRUCT paint;
            const HDC device = BeginPaint(Handle(window_), &paint);
            input.Paint(device);
            OnPaint(device, Content());
            EndPaint(Handle(window_), &paint);
            return true;
        }
        case WM_SETFOCUS:
            FocusMoved();
            OnSetFocus();
            return true;
        case WM_KILLFOCUS:
            FocusMoved();
            return true;
        case WM_DPICHANGED_AFTERPARENT:
            input.UpdateFont();
            OnSize(Content());
            return true;
        case WM_KEYDOWN:
            if (OfferKey(window_, message, wparam, lparam)) return true;
            if (wparam == VK_ESCAPE) OnEscape();
            return wparam == VK_ESCAPE;
        case WM_COMMAND:
            return OnCommand(LOWORD(wparam), HIWORD(wparam), reinterpret_cast<void*>(lparam));
        case WM_SETCURSOR:
            result = LOWORD(lparam) == HTCLIENT && reinterpret_cast<HWND>(wparam) == window_ &&
                     input.SetCursorShape();
            return result != 0;
        case WM_CAPTURECHANGED:
            input.EndDrag();
            return true;
        default:
            return ((message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) || message == WM_MOUSELEAVE) &&
                   input.Mouse(message, GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam));
    }
}
