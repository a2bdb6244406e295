#include <windows.h>

#include <algorithm>

#include "toolkit/ModalLoop.h"
#include "tradebook/BookStatus.h"
#include "tradebook/DlgNotices.h"
#include "tradebook/DravelBar.h"

using namespace Dravel;

static constexpr UINT_PTR kRetryTimer = 1;

// What the status line leaves of the content.
Rect CDravelBar::GridRoom(const Rect& content) const {
    Rect room = content;
    if (status_.Window()) room.bottom = std::max(room.top, room.bottom - status_.Height());
    return room;
}

// A margin of one pixel is left for the frame that OnPaint draws.
void CDravelBar::OnSize(const Rect& content) {
    if (!grid_ || !Shown()) return;
    const Rect room = GridRoom(content);
    SetWindowPos(static_cast<HWND>(grid_->Window()), nullptr, room.left + 1, room.top + 1, room.Width() - 2,
                 room.Height() - 2, SWP_NOZORDER | SWP_NOACTIVATE);
    if (!status_.Window()) return;
    status_.SetFont(BarFont());
    status_.Place({content.left, room.bottom, content.right, content.bottom});
}

void CDravelBar::OnPaint(void* hdc, const Rect& content) {
    const Rect room = GridRoom(content);
    const RECT frame{room.left, room.top, room.right, room.bottom};
    FrameRect(static_cast<HDC>(hdc), &frame, GetSysColorBrush(COLOR_3DSHADOW));
}

void CDravelBar::OnSetFocus() {
    TellHost(kGotFocus);
    if (grid_) SetFocus(static_cast<HWND>(grid_->Window()));
}

// For as long as the bar lives, shown or hidden: the timer goes with its window.
void CDravelBar::WatchFiles() {
    SetTimer(static_cast<HWND>(Window()), kRetryTimer, BookOpening::kTryEvery, nullptr);
    Post([this] { RetryFiles(); });
}

// Nobody types into what he does not see, wherever the key comes from.
bool CDravelBar::PreTranslateMessage(void*, std::uint32_t message, std::uintptr_t wparam,
                                     std::intptr_t lparam) {
    if (!Shown()) return true;
    if (message != WM_KEYDOWN || wparam != VK_ESCAPE) return false;
    constexpr std::intptr_t kHeld = std::intptr_t{1} << 30;  // the key was down before
    escape_.Ended(ModalLoop::EndedAt());
    return !escape_.Pressed(context_.clock.Ticks(), (lparam & kHeld) != 0);
}

// A click on the last notice shows them all, one on what the last import came to shows its report.
bool CDravelBar::OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                           std::intptr_t& result) {
    if (message == WM_TIMER && wparam == kRetryTimer) {
        RetryFiles();
        result = 0;
        return true;
    }
    const int part = message == WM_NOTIFY ? status_.ClickedPart(lparam) : -1;
    if (part == statuspart::Notice) {
        ShowNoticeList(Window(), context_.notices);
    } else if (part == statuspart::Import) {
        context_.entry.ShowImportReport(Window());
    } else {
        return CVELTSDockingControlBar::OnMessage(message, wparam, lparam, result);
    }
    return true;
}
