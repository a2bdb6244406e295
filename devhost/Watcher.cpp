// Polls the windows of the process for notices and for boxes with a prepared answer.
#include "Watcher.h"

#include <algorithm>

#include "Dialogs.h"
#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

constexpr DWORD kPoll = 10;

}  // namespace

Watcher::Watcher()
    : thread_([this] {
          while (!stop_) {
              Look();
              Sleep(kPoll);
          }
      }) {}

Watcher::~Watcher() {
    stop_ = true;
    thread_.join();
}

std::vector<std::wstring> Watcher::Notices() const {
    const std::lock_guard hold(lock_);
    return notices_;
}

void Watcher::ClearNotices() {
    const std::lock_guard hold(lock_);
    notices_.clear();
}

void Watcher::Prepare(PreparedAnswer answer) {
    const std::lock_guard hold(lock_);
    prepared_.push_back(std::move(answer));
}

std::size_t Watcher::PreparedLeft() const {
    const std::lock_guard hold(lock_);
    return prepared_.size();
}

void Watcher::Look() {
    const std::lock_guard hold(lock_);
    LookForNotices(TopWindows());
    AnswerBoxes();
}

// A window may be used for one notice after the other, so it counts again when its text changes.
void Watcher::LookForNotices(const std::vector<HWND>& windows) {
    std::vector<std::pair<HWND, std::wstring>> now;
    for (HWND window : windows) {
        if (ClassOf(window) != kNoticeClass) continue;
        std::wstring text = KeptText(window);
        if (text.empty()) continue;
        now.emplace_back(window, std::move(text));
        if (std::find(onScreen_.begin(), onScreen_.end(), now.back()) == onScreen_.end())
            notices_.push_back(now.back().second);
    }
    onScreen_ = std::move(now);
}

void Watcher::AnswerBoxes() {
    if (prepared_.empty()) return;
    std::erase_if(answered_, [](HWND window) { return !IsWindow(window); });
    const PreparedAnswer& next = prepared_.front();
    const HWND box = FindBox(next.title, next.text);
    if (!box || std::find(answered_.begin(), answered_.end(), box) != answered_.end()) return;
    if (!PressButton(box, next.button).empty()) return;
    answered_.push_back(box);
    prepared_.pop_front();
}

}  // namespace Dravel::DevHost
