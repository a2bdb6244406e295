#include "plugin/win32/TerminalHost.h"

#include <windows.h>

#include <algorithm>
#include <string>

#include "message/TagMessageWriter.h"
#include "plugin/KRVDLLComman.h"

namespace Dravel {

void TerminalHost::LoadMasterFile(IFiles& files, const std::filesystem::path& path, ILog& log) {
    using Outcome = SecurityMasterLoad::Outcome;
    constexpr char kContext[] = "TerminalHost::LoadMasterFile";
    if (DLLComman().GetMasterRequest() || !master_.Contracts().empty()) return;
    const SecurityMasterLoad load = master_.Load(files, path);
    if (load.outcome == Outcome::Missing) return;
    if (load.outcome == Outcome::NoMaster) {
        log.Line(LogLevel::Warning, kContext, "The first line names no columns of a security master.");
        return;
    }
    const bool whole = load.outcome == Outcome::Loaded && load.passedOver == 0;
    log.Line(whole ? LogLevel::Info : LogLevel::Warning, kContext,
             std::to_string(load.contracts) + " contracts, " + std::to_string(load.passedOver) +
                 " lines passed over" + (load.outcome == Outcome::CutShort ? ", not read to the end" : ""));
}

MasterAnswer TerminalHost::Ask(std::uint32_t kind, std::span<const char* const> texts) {
    MasterAnswer answer{};
    MasterRequest request{};
    request.kind = kind;
    request.textCount = static_cast<std::uint32_t>(std::min(texts.size(), std::size(request.texts)));
    std::copy_n(texts.begin(), request.textCount, request.texts);
    const auto ask = DLLComman().GetMasterRequest();
    if (!ask) return master_.Answer(request);
    ask(&request, 0, &answer);
    if (!answer.list) answer.count = 0;
    return answer;
}

bool TerminalHost::HasSecurityMaster() const {
    return DLLComman().GetMasterRequest() != nullptr || !master_.Contracts().empty();
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
