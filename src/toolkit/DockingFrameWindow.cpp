// The frames round a docking bar: the host's, whose room it shares while docked, and its own small one while
// floating.
#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include <algorithm>

#include "toolkit/Guarded.h"
#include "toolkit/Module.h"
#include "toolkit/win32/DockingImpl.h"
#include "toolkit/win32/WindowBinding.h"

using namespace Dravel;

namespace {

constexpr wchar_t kMiniFrameClass[] = L"KRVPMiniDockFrame";
constexpr DWORD kMiniStyle = WS_POPUP | WS_THICKFRAME | WS_CLIPCHILDREN;

Rect PlaceIn(HWND parent, HWND child) {
    RECT place{};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
    return {static_cast<int>(place.left), static_cast<int>(place.top), static_cast<int>(place.right),
            static_cast<int>(place.bottom)};
}

void Place(HWND window, const Rect& place) {
    SetWindowPos(window, nullptr, place.left, place.top, place.Width(), place.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

bool HasClass(HWND window, const wchar_t* name) {
    wchar_t own[64] = L"";
    GetClassNameW(window, own, 64);
    return lstrcmpiW(own, name) == 0;
}

}  // namespace

bool DockingFrame::CreateMini(const wchar_t* name) {
    const auto procedure = reinterpret_cast<void*>(&BoundProcedure<DockingFrame>);
    if (!RegisterWindowClass(kMiniFrameClass, procedure, 0, 32512 /* IDC_ARROW */)) return false;
    const DockState& state = bar.state_;
    mini =
        CreateWindowExW(WS_EX_TOOLWINDOW, kMiniFrameClass, name, kMiniStyle, state.left, state.top,
                        state.width, state.height, Host(), nullptr, static_cast<HINSTANCE>(Module()), this);
    return mini != nullptr;
}

void DockingFrame::Attach() {
    if (Host() == nullptr) return;
    const auto id = reinterpret_cast<UINT_PTR>(&bar);
    if (!SetWindowSubclass(Host(), &DockingFrame::FrameProcedure, id, id)) bar.frame_ = nullptr;
}

void DockingFrame::Detach() noexcept {
    if (Host() != nullptr)
        RemoveWindowSubclass(Host(), &DockingFrame::FrameProcedure, reinterpret_cast<UINT_PTR>(&bar));
    bar.frame_ = nullptr;
}

void DockingFrame::Release() noexcept {
    const HWND window = mini;
    if (window == nullptr) return;
    mini = nullptr;
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    if (miniDying_) return;
    if (bar.Docked()) {
        DestroyWindow(window);
        return;
    }
    // The bar was destroyed from outside while it stood in here. Its parent can't go before it has left
    // altogether, and this library may be gone by then, so the system ends the window by itself.
    ShowWindow(window, SW_HIDE);
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&DefWindowProcW));
    PostMessageW(window, WM_CLOSE, 0, 0);
}

LRESULT CALLBACK DockingFrame::FrameProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                              UINT_PTR id, DWORD_PTR data) noexcept {
    // Whatever the host does with the message, it returns through here, also after it has freed the library.
    const LibraryUse use;
    auto* owner = reinterpret_cast<CKRVPDockingControlBar*>(data);
    if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(window, &DockingFrame::FrameProcedure, id);
        owner->frame_ = nullptr;
        return DefSubclassProc(window, message, wparam, lparam);
    }
    // The host's own handling of the message is no call of ours: it may run as long as the host likes.
    if (message == WM_SIZE) {
        // The host's own layout first. It may end the bar.
        const auto barWindow = static_cast<HWND>(owner->window_);
        const LRESULT result = DefSubclassProc(window, message, wparam, lparam);
        if (CKRVPDockingControlBar::FromWindow(barWindow) == owner) {
            Guarded("frame", [owner] { owner->impl_->frame.Layout(); });
        }
        return result;
    }
    if (Guarded("frame", false, [&] { return owner->impl_->frame.FrameMessage(message, wparam); })) return 0;
    return DefSubclassProc(window, message, wparam, lparam);
}

// True: the message ends here.
bool DockingFrame::FrameMessage(UINT message, WPARAM wparam) {
    switch (message) {
        case WM_CLOSE:
            return !bar.OnFrameClose();
        case WM_ENDSESSION:
            bar.OnEndSession(wparam != 0);
            return false;
        case WM_DESTROY:
            hostDying_ = true;
            return false;
        default:
            return false;
    }
}

// The MDI client, else the largest other child.
HWND DockingFrame::FindFiller() const {
    HWND largest = nullptr;
    std::int64_t most = 0;
    for (HWND child = GetWindow(Host(), GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        if (HasClass(child, L"MDICLIENT")) return child;
        if (!IsWindowVisible(child) || HasClass(child, kBarClass)) continue;
        const Rect place = PlaceIn(Host(), child);
        const std::int64_t area = static_cast<std::int64_t>(place.Width()) * place.Height();
        if (area <= most) continue;
        most = area;
        largest = child;
    }
    return largest;
}

// The room is what the host's own layout gives its content. A host that did not lay it out again leaves it
// where the bar put it: then the room grows and shrinks with the frame.
void DockingFrame::UpdateRoom() {
    RECT client;
    GetClientRect(Host(), &client);
    const bool known = filler_ != nullptr && IsWindow(filler_) && GetParent(filler_) == Host();
    if (!known) filler_ = FindFiller();
    if (filler_ == nullptr) {
        room = {0, 0, static_cast<int>(client.right), static_cast<int>(client.bottom)};
    } else if (const Rect place = PlaceIn(Host(), filler_); !known || !(place == given_)) {
        room = place;
    } else {
        room.right += client.right - client_.cx;
        room.bottom += client.bottom - client_.cy;
    }
    client_ = {client.right, client.bottom};
}

void DockingFrame::Layout() {
    if (Host() == nullptr || layingOut_ || hostDying_ || IsIconic(Host())) return;
    layingOut_ = true;
    UpdateRoom();
    const bool takes = bar.window_ != nullptr && bar.shown_ && bar.Docked();
    const DockSplit split = takes ? SplitRoom(room, bar.state_, bar.Dpi()) : DockSplit{{}, room};
    given_ = split.rest;
    if (filler_ != nullptr) Place(filler_, split.rest);
    if (takes) Place(static_cast<HWND>(bar.window_), split.bar);
    layingOut_ = false;
}

void DockingFrame::PlaceMini() {
    const DockState state = bar.state_;  // moving the window writes the state
    if (mini != nullptr)
        Place(mini, {state.left, state.top, state.left + state.width, state.top + state.height});
    bar.state_ = state;
}

void DockingFrame::ShowMini(bool show) {
    if (show) PlaceMini();
    if (mini != nullptr) ShowWindow(mini, show ? SW_SHOWNA : SW_HIDE);
}

void DockingFrame::MoveBetween() {
    const auto window = static_cast<HWND>(bar.window_);
    const HWND parent = bar.Docked() ? Host() : mini;
    const HWND focus = GetFocus();
    const bool hadFocus = focus != nullptr && IsChild(window, focus);
    if (GetParent(window) != parent) SetParent(window, parent);
    if (bar.Docked()) {
        ShowMini(false);
        SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    } else {
        PlaceMini();
        RECT client;
        GetClientRect(mini, &client);
        Place(window, {0, 0, static_cast<int>(client.right), static_cast<int>(client.bottom)});
        ShowMini(bar.shown_);
    }
    Layout();
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
    if (hadFocus) SetFocus(focus);
}

std::intptr_t DockingFrame::HandleMessage(void* handle, std::uint32_t message, std::uintptr_t wparam,
                                          std::intptr_t lparam) {
    const auto window = static_cast<HWND>(handle);
    switch (message) {
        case WM_SIZE:
            if (bar.window_ != nullptr && !bar.Docked()) {
                Place(static_cast<HWND>(bar.window_), {0, 0, LOWORD(lparam), HIWORD(lparam)});
            }
            return 0;
        case WM_WINDOWPOSCHANGED:
            if (!bar.Docked() && IsWindowVisible(window)) {
                RECT place;
                GetWindowRect(window, &place);
                bar.state_ = {DockSide::Floating, static_cast<int>(place.left), static_cast<int>(place.top),
                              static_cast<int>(place.right - place.left),
                              static_cast<int>(place.bottom - place.top)};
            }
            break;
        case WM_EXITSIZEMOVE:
            bar.OnStateChanged();
            return 0;
        case WM_GETMINMAXINFO: {
            auto* limits = reinterpret_cast<MINMAXINFO*>(lparam);
            limits->ptMinTrackSize = {Scale(2 * kMinDockExtent, bar.Dpi()), Scale(kMinDockExtent, bar.Dpi())};
            return 0;
        }
        case WM_CLOSE:
            bar.OnPressCloseButton();
            return 0;
        case WM_SETFOCUS:
            if (bar.window_ != nullptr) SetFocus(static_cast<HWND>(bar.window_));
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_DESTROY:
            miniDying_ = true;
            return 0;
        case WM_NCDESTROY:
            mini = nullptr;
            break;
        default:
            break;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}
