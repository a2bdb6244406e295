// When an Escape that nobody else took hides the bar.
#pragma once

#include <algorithm>
#include <cstdint>

namespace Dravel {

// Escape takes back one thing per press, and one press too many would hide the book. So an Escape that is
// held counts once, and none hides within half a second after one that took something back. Times are
// IClock::Ticks().
class EscapeRule {
 public:
    static constexpr std::uint64_t kQuiet = 500;  // milliseconds

    // Every Escape that goes down, before anybody acts on it. False: it is held, and nobody is to act on it.
    bool Pressed(std::uint64_t now, bool held) {
        if (held) return false;
        // The one before did not come back as Hides: somebody took it.
        if (pending_) Ended(pressed_);
        pressed_ = now;
        pending_ = true;
        return true;
    }
    // A dialog, box or menu of ours ended at this time, as likely as not by an Escape that it kept.
    void Ended(std::uint64_t time) { quietUntil_ = std::max(quietUntil_, time + kQuiet); }
    // Nobody took the last one.
    bool Hides() {
        pending_ = false;
        return pressed_ >= quietUntil_;
    }

 private:
    std::uint64_t pressed_ = 0, quietUntil_ = 0;
    bool pending_ = false;
};

}  // namespace Dravel
