#include "plugin/win32/ScreenUser.h"

#include <windows.h>

#include "plugin/KRVDLLComman.h"
#include "toolkit/AnsiText.h"
#include "toolkit/MessageBox.h"
#include "toolkit/PopupWindow.h"

namespace Dravel {

// A box belongs to the window in which the user is just working: a dialog of ours, else the bar's frame.
static HWND OwnerOfBox(void* bar) {
    if (const HWND active = GetActiveWindow()) return active;
    return bar ? GetAncestor(static_cast<HWND>(bar), GA_ROOT) : nullptr;
}

std::uint32_t ScreenUser::Box(std::string_view text, std::string_view caption, Buttons buttons, Icon icon,
                              std::uint8_t remember) {
    if (remember && answers_) {
        if (const auto answer = answers_->Find(caption, text)) return *answer;
    }
    bool dontAskAgain = false;
    const std::uint32_t button = DLLComman().ShowMessageBox(
        OwnerOfBox(window_), Widen(text).c_str(), Widen(caption).c_str(), static_cast<std::uint32_t>(buttons),
        static_cast<std::uint32_t>(icon), 0, remember, &dontAskAgain);
    if (dontAskAgain && answers_ && button != kAnswerCancel) answers_->Remember(caption, text, button);
    return button;
}

std::uint32_t ScreenUser::Ask(std::string_view text, Buttons buttons, QuestionEnd& end) {
    void* box = nullptr;
    end.Opened([&box] { EndMessageBox(box); });
    const std::uint32_t button = DLLComman().ShowMessageBox(
        OwnerOfBox(window_), Widen(text).c_str(), L"Dravel", static_cast<std::uint32_t>(buttons),
        static_cast<std::uint32_t>(Icon::Question), 0, 0, nullptr, &box);
    end.Closed();
    return button;
}

void ScreenUser::Notice(std::string_view text) {
    if (log_) log_->Line(LogLevel::Info, "Notice", text);
    if (notices_) notices_->Add(text);
    ShowPopup(window_, Widen(text).c_str());
}

void ScreenUser::Attach(void* window, ILog* log, RememberedAnswers* answers, NoticeList* notices) {
    window_ = window;
    log_ = log;
    answers_ = answers;
    notices_ = notices;
}

}  // namespace Dravel
