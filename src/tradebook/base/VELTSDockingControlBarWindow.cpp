#include <windows.h>

#include <mutex>

#include "toolkit/Guarded.h"
#include "tradebook/base/VELTSDockingControlBar.h"

static constexpr UINT kRunPosted = WM_APP + 0x31;

void CVELTSDockingControlBar::Post(std::function<void()> work) {
    std::lock_guard guard(lock_);
    if (closed_) return;
    posted_.push_back(std::move(work));
    PostMessageW(static_cast<HWND>(Window()), kRunPosted, 0, 0);
}

void CVELTSDockingControlBar::RunPosted() {
    std::vector<std::function<void()>> work;
    {
        std::lock_guard guard(lock_);
        work.swap(posted_);
    }
    for (const auto& item : work) {
        if (closed_) return;  // by an item before it
        Dravel::Guarded("posted work", item);
    }
}

bool CVELTSDockingControlBar::OnMessage(std::uint32_t message, std::uintptr_t, std::intptr_t,
                                        std::intptr_t& result) {
    if (message != kRunPosted) return false;
    RunPosted();
    result = 0;
    return true;
}

void CVELTSDockingControlBar::OnDestroy() {
    std::lock_guard guard(lock_);
    closed_ = true;
    posted_.clear();
}
