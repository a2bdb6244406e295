#include "toolkit/PopupWindow.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "toolkit/Geometry.h"
#include "toolkit/Module.h"
#include "toolkit/win32/WindowBinding.h"

namespace Dravel {
namespace {

constexpr UINT_PTR kStayTimer = 1, kFadeTimer = 2, kStackTimer = 3;
constexpr UINT kFadeMilliseconds = 40;
constexpr int kOpaque = 245, kFadeStep = 35;
// At 96 dpi.
constexpr int kWidth = 280, kPadding = 12, kStripe = 4, kGap = 8, kInset = 14;

struct Popup {
    LRESULT HandleMessage(void* handle, UINT message, WPARAM wparam, LPARAM lparam);
    void Paint() const;
    void Fade();

    HWND window = nullptr;
    std::wstring next;  // the text that it is about to show, empty: it shows what it should
    RECT place{};       // of the owner, or of the work area
    int height = 0;
    int alpha = kOpaque;
};

// Oldest first. Owns the notices' objects; their windows are the system's.
std::vector<std::unique_ptr<Popup>> g_popups;

HFONT NoticeFont() {
    return static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
}

int DpiOf(HWND window) {
    const UINT dpi = GetDpiForWindow(window);
    return dpi == 0 ? kBaseDpi : static_cast<int>(dpi);
}

// The newest stands at the bottom, the others above it.
void Stack() {
    int up = 0;
    for (auto popup = g_popups.rbegin(); popup != g_popups.rend(); ++popup) {
        const Popup& at = **popup;
        const int dpi = DpiOf(at.window), width = Scale(kWidth, dpi), inset = Scale(kInset, dpi);
        up += at.height;
        SetWindowPos(at.window, HWND_TOPMOST, at.place.right - inset - width, at.place.bottom - inset - up,
                     width, at.height, SWP_NOACTIVATE);
        up += Scale(kGap, dpi);
    }
}

int MeasureHeight(HWND window, const wchar_t* text) {
    const int dpi = DpiOf(window);
    const HDC device = GetDC(window);
    const HGDIOBJ old = SelectObject(device, NoticeFont());
    RECT room{0, 0, Scale(kWidth - 2 * kPadding - kStripe, dpi), 0};
    DrawTextW(device, text, -1, &room, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(device, old);
    ReleaseDC(window, device);
    return room.bottom + 2 * Scale(kPadding, dpi);
}

void ShowNextTexts() {
    for (const auto& popup : g_popups) {
        if (popup->next.empty()) continue;
        SetWindowTextW(popup->window, popup->next.c_str());
        popup->height = MeasureHeight(popup->window, popup->next.c_str());
        popup->next.clear();
        popup->alpha = kOpaque;
        SetLayeredWindowAttributes(popup->window, 0, kOpaque, LWA_ALPHA);
        KillTimer(popup->window, kFadeTimer);
        SetTimer(popup->window, kStayTimer, kPopupMilliseconds, nullptr);
        InvalidateRect(popup->window, nullptr, FALSE);
    }
    Stack();
}

LRESULT Popup::HandleMessage(void* handle, UINT message, WPARAM wparam, LPARAM lparam) {
    const auto own = static_cast<HWND>(handle);
    switch (message) {
        case WM_NCCREATE:
            window = own;
            break;
        case WM_MOUSEACTIVATE:
            return MA_NOACTIVATE;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            Paint();
            return 0;
        case WM_LBUTTONUP:
            DestroyWindow(own);
            return 0;
        case WM_TIMER:
            if (wparam == kStackTimer) {
                KillTimer(own, kStackTimer);
                ShowNextTexts();
            } else {
                Fade();
            }
            return 0;
        case WM_NCDESTROY: {
            const LRESULT result = DefWindowProcW(own, message, wparam, lparam);
            std::erase_if(g_popups, [&](const auto& popup) { return popup->window == own; });  // deletes this
            Stack();
            return result;
        }
        default:
            break;
    }
    return DefWindowProcW(own, message, wparam, lparam);
}

void Popup::Fade() {
    if (alpha == kOpaque) {
        KillTimer(window, kStayTimer);
        SetTimer(window, kFadeTimer, kFadeMilliseconds, nullptr);
    }
    alpha -= kFadeStep;
    if (alpha <= 0) {
        DestroyWindow(window);
    } else {
        SetLayeredWindowAttributes(window, 0, static_cast<BYTE>(alpha), LWA_ALPHA);
    }
}

void Popup::Paint() const {
    PAINTSTRUCT paint;
    const HDC device = BeginPaint(window, &paint);
    RECT client;
    GetClientRect(window, &client);
    const int dpi = DpiOf(window);
    FillRect(device, &client, GetSysColorBrush(COLOR_INFOBK));
    FrameRect(device, &client, GetSysColorBrush(COLOR_BTNSHADOW));
    const RECT stripe{0, 0, Scale(kStripe, dpi), client.bottom};
    FillRect(device, &stripe, GetSysColorBrush(COLOR_HIGHLIGHT));
    wchar_t text[1024] = L"";
    GetWindowTextW(window, text, 1024);
    const int padding = Scale(kPadding, dpi);
    RECT room{padding + stripe.right, padding, client.right - padding, client.bottom - padding};
    const HGDIOBJ old = SelectObject(device, NoticeFont());
    SetBkMode(device, TRANSPARENT);
    SetTextColor(device, GetSysColor(COLOR_INFOTEXT));
    DrawTextW(device, text, -1, &room, DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(device, old);
    EndPaint(window, &paint);
}

RECT PlaceOf(HWND owner) {
    RECT place{};
    if (owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner)) {
        GetWindowRect(owner, &place);
    } else {
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &place, 0);
    }
    return place;
}

}  // namespace

// When as many are up as may be, the oldest takes the text: notices come by the thousand when a file is
// imported twice, and nobody sees more of them than fit on the screen between two timers.
static void ReuseOldest(const wchar_t* text) {
    std::rotate(g_popups.begin(), g_popups.begin() + 1, g_popups.end());
    Popup& popup = *g_popups.back();
    popup.next = text;
    SetTimer(popup.window, kStackTimer, USER_TIMER_MINIMUM, nullptr);
}

static void MakePopup(HWND top, const wchar_t* text) {
    Popup* const popup = g_popups.emplace_back(std::make_unique<Popup>()).get();
    CreateWindowExW(WS_EX_LAYERED | WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kPopupClass, text,
                    WS_POPUP, 0, 0, 0, 0, top, nullptr, static_cast<HINSTANCE>(Module()), popup);
    if (popup->window == nullptr) {
        g_popups.pop_back();
        return;
    }
    popup->place = PlaceOf(top);
    popup->height = MeasureHeight(popup->window, text);
    SetLayeredWindowAttributes(popup->window, 0, kOpaque, LWA_ALPHA);
    Stack();
    ShowWindow(popup->window, SW_SHOWNOACTIVATE);
    SetTimer(popup->window, kStayTimer, kPopupMilliseconds, nullptr);
}

void ShowPopup(void* owner, const wchar_t* text) {
    const auto procedure = reinterpret_cast<void*>(&BoundProcedure<Popup>);
    if (!RegisterWindowClass(kPopupClass, procedure, CS_DROPSHADOW, 32512 /* IDC_ARROW */)) return;
    if (g_popups.size() >= static_cast<std::size_t>(kMaxPopups)) {
        ReuseOldest(text);
    } else {
        MakePopup(owner == nullptr ? nullptr : GetAncestor(static_cast<HWND>(owner), GA_ROOT), text);
    }
}

void ClosePopups() noexcept {
    while (!g_popups.empty()) {
        const HWND window = g_popups.back()->window;
        if (DestroyWindow(window) == 0) g_popups.pop_back();
    }
}

}  // namespace Dravel
