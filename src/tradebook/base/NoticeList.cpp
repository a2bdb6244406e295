#include "tradebook/base/NoticeList.h"

#include "formatset/DateFormat.h"

namespace Dravel {

void NoticeList::Add(std::string_view text) {
    if (notices_.size() == kMost) notices_.pop_front();
    notices_.push_back({FormatDate(clock_.Now(), "dd/MM/yyyy HH:mm:ss", clock_), std::string(text)});
    if (listener_) listener_();
}

}  // namespace Dravel
