// Finds windows of this process the way a person finds them: by what they are and what they say.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace Dravel::DevHost {

inline constexpr wchar_t kBarClass[] = L"KRVPDockingControlBar";
inline constexpr wchar_t kGridClass[] = L"KRVPGridCtrl";
inline constexpr wchar_t kNoticeClass[] = L"KRVPPopupWindow";

std::wstring ClassOf(HWND window);
// The text as the system keeps it: asks no window procedure, so it never waits for a busy thread.
std::wstring KeptText(HWND window);
// The text that the control itself gives; at most one second.
std::wstring ControlText(HWND window);

std::vector<HWND> TopWindows();  // of this process, visible or not
std::vector<HWND> Descendants(HWND parent);
// The plug-in's bar and its trade grid, nullptr when there is none. Floating bars count.
HWND FindBar();
HWND FindGrid();
// Visible dialogs of this process, topmost first: those of the dialog class and owned windows that disable
// the frame.
std::vector<HWND> Dialogs();

}  // namespace Dravel::DevHost
