// Window look-ups over EnumWindows; no window is asked for anything that would need its thread.
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

BOOL CALLBACK Collect(HWND window, LPARAM into) {
    reinterpret_cast<std::vector<HWND>*>(into)->push_back(window);
    return TRUE;
}

BOOL CALLBACK CollectOwn(HWND window, LPARAM into) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId() ? Collect(window, into) : TRUE;
}

HWND FindClass(const wchar_t* type, HWND within) {
    for (HWND window : Descendants(within))
        if (ClassOf(window) == type) return window;
    return nullptr;
}

}  // namespace

std::wstring ClassOf(HWND window) {
    wchar_t type[128] = L"";
    const int size = GetClassNameW(window, type, 128);
    return {type, static_cast<std::size_t>(size > 0 ? size : 0)};
}

std::wstring KeptText(HWND window) {
    std::wstring text(1024, L'\0');
    const int size = InternalGetWindowText(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(size > 0 ? size : 0));
    return text;
}

std::wstring ControlText(HWND window) {
    DWORD_PTR size = 0;
    if (!SendMessageTimeoutW(window, WM_GETTEXTLENGTH, 0, 0, SMTO_NORMAL, 1000, &size))
        return KeptText(window);
    std::wstring text(size + 1, L'\0');
    if (!SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                             SMTO_NORMAL, 1000, &size))
        return KeptText(window);
    text.resize(size);
    return text;
}

std::vector<HWND> TopWindows() {
    std::vector<HWND> windows;
    EnumWindows(CollectOwn, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

std::vector<HWND> Descendants(HWND parent) {
    std::vector<HWND> windows;
    EnumChildWindows(parent, Collect, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

HWND FindBar() {
    for (HWND top : TopWindows()) {
        if (ClassOf(top) == kBarClass) return top;
        if (HWND bar = FindClass(kBarClass, top)) return bar;
    }
    return nullptr;
}

HWND FindGrid() {
    HWND bar = FindBar();
    return bar ? FindClass(kGridClass, bar) : nullptr;
}

std::vector<HWND> Dialogs() {
    std::vector<HWND> dialogs;
    for (HWND window : TopWindows())
        if (IsWindowVisible(window) && ClassOf(window) == L"#32770") dialogs.push_back(window);
    return dialogs;
}

}  // namespace Dravel::DevHost
