// What the domain asks of the person at the screen. Implemented by `plugin` with real windows, by tests with
// answers prepared beforehand.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace Dravel {

// The button sets and icons of the plug-in's message box; the numbers are the box's own.
enum class Buttons : std::uint8_t {
    Ok = 0,
    YesNo = 1,
    OkCancel = 2,
    RetryCancel = 3,
    AbortRetryIgnore = 4,
    CancelTryContinue = 5,
    YesNoCancel = 6,
    Own = 7,  // two buttons with captions of the plug-in's own, results 1000 and 1001
};
enum class Icon : std::uint8_t {
    Error = 0,
    Warning = 1,
    Question = 2,
    Information = 3,
    User = 4,
    None = 5,
    Mask = 6
};

// Results of a box, the system's button identifiers.
inline constexpr std::uint32_t kAnswerOk = 1, kAnswerCancel = 2, kAnswerYes = 6, kAnswerNo = 7;

// Ends a question whose answer is no longer needed. Made by who asks, filled in by who shows the box.
class QuestionEnd {
 public:
    // The box goes, and Ask returns 0. Nothing when none is open.
    void Now() const {
        if (close_) close_();
    }
    void Opened(std::function<void()> close) { close_ = std::move(close); }
    void Closed() { close_ = nullptr; }

 private:
    std::function<void()> close_;
};

// All calls on the user-interface thread; texts in the ANSI code page.
class IUser {
 public:
    virtual ~IUser() = default;
    // Modal; returns the identifier of the button pressed. `remember` not 0 offers " Don't Ask Again".
    virtual std::uint32_t Box(std::string_view text, std::string_view caption, Buttons buttons, Icon icon,
                              std::uint8_t remember = 0) = 0;
    // A question, titled "Dravel", that `end` can take off the screen: then, and when no box could be shown,
    // the answer is 0.
    virtual std::uint32_t Ask(std::string_view text, Buttons buttons, QuestionEnd& end) {
        static_cast<void>(end);
        return Box(text, "Dravel", buttons, Icon::Question);
    }
    // A notice that needs no answer: pops up, leaves by itself, goes to the list of notices and to the log.
    virtual void Notice(std::string_view text) = 0;
};

}  // namespace Dravel
