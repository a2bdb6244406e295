#include <windows.h>

#include "tradebook/DravelBar.h"

// A margin of one pixel is left for the frame that OnPaint draws.
void CDravelBar::OnSize(const Dravel::Rect& content) {
    if (!grid_ || !Shown()) return;
    SetWindowPos(static_cast<HWND>(grid_->Window()), nullptr, content.left + 1, content.top + 1,
                 content.right - content.left - 2, content.bottom - content.top - 2,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void CDravelBar::OnPaint(void* hdc, const Dravel::Rect& content) {
    const RECT frame{content.left, content.top, content.right, content.bottom};
    FrameRect(static_cast<HDC>(hdc), &frame, GetSysColorBrush(COLOR_3DSHADOW));
}

void CDravelBar::OnSetFocus() {
    TellHost(kGotFocus);
    if (grid_) SetFocus(static_cast<HWND>(grid_->Window()));
}
