// Notices that need no answer: small windows that come up at the owner's bottom right, take no focus, and
// leave by themselves.
#pragma once

#include <cstdint>

namespace Dravel {

inline constexpr wchar_t kPopupClass[] = L"KRVPPopupWindow";
inline constexpr int kMaxPopups = 5;  // an older one makes room
inline constexpr std::uint32_t kPopupMilliseconds = 4000;

// Shows a notice above `owner` (HWND; null: the screen's work area). Its window text is the notice. UI
// thread.
void ShowPopup(void* owner, const wchar_t* text);
// Closes all at once. To be called before the owner or the library goes.
void ClosePopups() noexcept;

}  // namespace Dravel
