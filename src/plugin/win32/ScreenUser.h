// The person at the screen: real boxes and notices.
#pragma once

#include "host/User.h"
#include "support/Log.h"
#include "tradebook/base/NoticeList.h"
#include "tradebook/base/RememberedAnswers.h"

namespace Dravel {

// User-interface thread. Without a log and remembered answers (no bar lives) boxes are simply shown.
class ScreenUser final : public IUser {
 public:
    std::uint32_t Box(std::string_view text, std::string_view caption, Buttons buttons, Icon icon,
                      std::uint8_t remember) override;
    std::uint32_t Ask(std::string_view text, Buttons buttons, QuestionEnd& end) override;
    void Notice(std::string_view text) override;

    // Where notices are logged and listed and "Don't Ask Again" is kept, and the window (HWND) that they
    // belong to; all null when the bar goes.
    void Attach(void* window, ILog* log, RememberedAnswers* answers, NoticeList* notices);

 private:
    void* window_ = nullptr;
    ILog* log_ = nullptr;
    RememberedAnswers* answers_ = nullptr;
    NoticeList* notices_ = nullptr;
};

}  // namespace Dravel
