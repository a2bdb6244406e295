// The list of the notices that were shown.
#pragma once

namespace Dravel {

class NoticeList;

// Modal to `owner` (HWND), the newest notice on top. Those that come while it is open are not in it.
void ShowNoticeList(void* owner, const NoticeList& notices);

}  // namespace Dravel
