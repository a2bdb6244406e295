#include <windows.h>

#include "toolkit/Guarded.h"
#include "tradebook/base/VELTSDockingControlBar.h"

static constexpr UINT kRunPosted = WM_APP + 0x31;
static constexpr UINT_PTR kPostedTimer = 0x31;

// A thread's queue takes 10,000 messages. When it is full, a timer, which needs no room in it, comes to the
// work; only the window's own thread can set that, and hears of it from another by a message that needs no
// room either.
void CVELTSDockingControlBar::Post(std::function<void()> work) {
    posted_.Add(std::move(work), [this] {
        const auto window = static_cast<HWND>(Window());
        if (PostMessageW(window, kRunPosted, 0, 0)) return;
        if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) {
            SetTimer(window, kPostedTimer, USER_TIMER_MINIMUM, nullptr);
        } else {
            SendNotifyMessageW(window, kRunPosted, 0, 0);
        }
    });
}

bool CVELTSDockingControlBar::OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t,
                                        std::intptr_t& result) {
    const bool timer = message == WM_TIMER && wparam == kPostedTimer;
    if (message != kRunPosted && !timer) return false;
    const auto window = static_cast<HWND>(Window());
    result = 0;
    // A message that was sent arrives in the midst of anything.
    if (InSendMessage()) return SetTimer(window, kPostedTimer, USER_TIMER_MINIMUM, nullptr), true;
    if (timer) KillTimer(window, kPostedTimer);
    posted_.Run([](const auto& work) { Dravel::Guarded("posted work", work); });
    return true;
}

void CVELTSDockingControlBar::OnDestroy() {
    posted_.Close();
}
