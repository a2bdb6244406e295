// How a terminal may make a plug-in's life hard: answers of the security master that are late, empty or odd,
// messages in the midst of a request, and a watch over how long the book waits for its paints.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/HostTypes.h"

namespace Dravel::DevHost {

// User-interface thread.
class MasterMood {
 public:
    // "normal", "nothing" (no list, no contract), "long" (each text 1,000 bytes long), "nulls" (every other
    // text of a list is missing), "no-list" (a count without a list). False: no such mood.
    bool Set(std::string_view name);
    // Milliseconds that each answer takes.
    void SetDelay(std::uint32_t milliseconds) { delay_ = milliseconds; }
    // Done once, in the midst of the next request.
    void Next(std::function<void()> work) { next_ = std::move(work); }

    // Called before each request is answered.
    void Arrive();
    // Called with each answer on its way; what it points to then stays valid until the next call.
    void Spoil(MasterAnswer& answer);

 private:
    void GiveNothing(MasterAnswer& answer);
    void CountOnly(MasterAnswer& answer);
    void Lengthen(MasterAnswer& answer);
    void LeaveOut(MasterAnswer& answer);

    void (MasterMood::*spoil_)(MasterAnswer&) = nullptr;
    std::uint32_t delay_ = 0;
    std::function<void()> next_;
    std::vector<std::string> texts_;
    std::vector<const char*> list_;
};

// Callbacks that go wrong. User-interface thread.
class CallbackMood {
 public:
    // What the callback of that name does from now on, every one without a name: "work", "throw" an
    // exception, "fault", or come back with the rounding mode set "round-up", which the terminal's own thread
    // is left in, too. False: no such mood.
    bool Set(std::string_view mood, std::string_view name);
    // Called by each callback when its work is done.
    void Leave(std::string_view name) const;

 private:
    void (*end_)() = nullptr;
    std::string name_;
};

// Counts the paints of a window from Start on, and finds the longest time between two of them. The window
// must live until Stop. User-interface thread.
class PaintWatch {
 public:
    void Start(HWND window);
    void Stop();
    std::uint32_t Paints() const { return paints_; }
    std::int64_t LongestWait() const { return longest_ * 1000 / frequency_; }  // milliseconds

 private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                      DWORD_PTR watch);
    void Painted();

    HWND window_ = nullptr;
    std::uint32_t paints_ = 0;
    std::int64_t last_ = 0, longest_ = 0, frequency_ = 1;
};

}  // namespace Dravel::DevHost
