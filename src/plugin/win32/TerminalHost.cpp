#include "plugin/win32/TerminalHost.h"

#include <windows.h>

#include <algorithm>

#include "message/TagMessageWriter.h"
#include "plugin/KRVDLLComman.h"

namespace Dravel {

MasterAnswer TerminalHost::Ask(std::uint32_t kind, std::span<const char* const> texts) {
    MasterAnswer answer{};
    const auto ask = DLLComman().GetMasterRequest();
    if (!ask) return answer;
    MasterRequest request{};
    request.kind = kind;
    request.textCount = static_cast<std::uint32_t>(std::min(texts.size(), std::size(request.texts)));
    std::copy_n(texts.begin(), request.textCount, request.texts);
    ask(&request, 0, &answer);
    if (!answer.list) answer.count = 0;
    return answer;
}

bool TerminalHost::HasSecurityMaster() const {
    return DLLComman().GetMasterRequest() != nullptr;
}

void TerminalHost::Send(CTagMessageWriter& frame) {
    const auto send = DLLComman().PluginDataSend();
    if (!send) return;
    frame.GetData();
    if (frame.GetLength() != 0) send(&frame);
}

bool TerminalHost::Listens() const {
    return DLLComman().PluginDataSend() != nullptr;
}

void TerminalHost::Focus(void* window, int flag) {
    if (const auto focus = DLLComman().ApplicationFocus()) focus(window, flag);
}

std::uint32_t TerminalHost::BarID(const wchar_t* title, const wchar_t* key) const {
    const auto give = DLLComman().GetPluginBarID();
    return give ? give(title, key) : 0;
}

void* TerminalHost::MainFrame() {
    HWND frame = nullptr;
    const auto look = [](HWND window, LPARAM found) -> BOOL {
        if (!IsWindowVisible(window) || GetWindow(window, GW_OWNER)) return TRUE;
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    };
    EnumThreadWindows(GetCurrentThreadId(), look, reinterpret_cast<LPARAM>(&frame));
    return frame;
}

}  // namespace Dravel
