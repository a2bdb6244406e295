// Sees the pop-up notices and message boxes that come and go while a script waits for something else.
#pragma once

#include <windows.h>

#include <atomic>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Dravel::DevHost {

// An answer prepared for a box that will come.
struct PreparedAnswer {
    std::wstring title, text;  // patterns as for Matches
    std::string button;
};

// A thread of its own that looks every few milliseconds; asks no window procedure for anything.
class Watcher {
 public:
    Watcher();
    ~Watcher();
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    // Notices seen so far, oldest first. Clear forgets them; one still on the screen is not seen again.
    std::vector<std::wstring> Notices() const;
    void ClearNotices();
    void Prepare(PreparedAnswer answer);
    std::size_t PreparedLeft() const;

 private:
    void Look();
    void LookForNotices(const std::vector<HWND>& windows);
    void AnswerBoxes();

    mutable std::mutex lock_;
    std::vector<std::pair<HWND, std::wstring>> onScreen_;
    std::vector<std::wstring> notices_;
    std::deque<PreparedAnswer> prepared_;
    std::vector<HWND> answered_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

}  // namespace Dravel::DevHost
