#include "plugin/win32/TerminalHost.h"

#include <windows.h>

#include <algorithm>
#include <string>

#include "message/TagMessageWriter.h"
#include "platform/Clock.h"
#include "platform/ForeignCall.h"
#include "plugin/KRVDLLComman.h"
#include "toolkit/Module.h"

namespace Dravel {

static constexpr std::uint64_t kToldEvery = 60000;  // milliseconds

void TerminalHost::TellFailure(Callback callback, std::uint32_t code) const {
    const auto place = static_cast<std::size_t>(callback);
    const std::uint64_t now = SystemClock().Ticks() + 1;
    if (toldAt_[place] != 0 && now - toldAt_[place] < kToldEvery) return;
    toldAt_[place] = now;
    char what[96];
    wsprintfA(what, "The terminal's function ended with exception %08X. It counts as without an answer.",
              code);
    ReportFailure(kCallbackNames[place], what);
}

template <class Work>
bool TerminalHost::Call(Callback callback, const Work& work) const {
    const ForeignEnd end = CallForeign(work);
    if (!end.returned) TellFailure(callback, end.code);
    return end.returned;
}

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
    // What it wrote before it failed is no answer.
    if (!Call(Callback::GetMasterRequest, [&] { ask(&request, 0, &answer); })) return {};
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
    if (frame.GetLength() != 0) Call(Callback::PluginDataSend, [&] { send(&frame); });
}

bool TerminalHost::Listens() const {
    return DLLComman().PluginDataSend() != nullptr;
}

void TerminalHost::Focus(void* window, int flag) {
    const auto focus = DLLComman().ApplicationFocus();
    if (focus) Call(Callback::ApplicationFocus, [&] { focus(window, flag); });
}

std::uint32_t TerminalHost::BarID(const wchar_t* title, const wchar_t* key) const {
    const auto give = DLLComman().GetPluginBarID();
    std::uint32_t identifier = 0;
    if (give) Call(Callback::GetPluginBarID, [&] { identifier = give(title, key); });
    return identifier;
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
