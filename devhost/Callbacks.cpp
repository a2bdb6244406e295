// The functions that the plug-in looks up by name in the executable. A build without callbacks exports none.
#ifndef DEVHOST_WITHOUT_CALLBACKS

#include <cstring>
#include <string>

#include "FrameText.h"
#include "Terminal.h"
#include "Text.h"

class CTagMessageWriter;
class CTagReceiveQueue;

namespace Dravel::DevHost {
namespace {

// A finished writer as its layout shows it, without its code: the frame is the finished buffer when there is
// one, else the working buffer.
struct WriterView {
    std::uint32_t capacity;
    const char* working;
    std::uint16_t finishedLength;
    const char* finished;
    std::uint16_t lengthField, encoding, position, headerLength;
};
static_assert(offsetof(WriterView, working) == 8 && offsetof(WriterView, finishedLength) == 16);
static_assert(offsetof(WriterView, finished) == 24 && offsetof(WriterView, lengthField) == 32 &&
              sizeof(WriterView) == 40);

std::string_view FrameOf(const CTagMessageWriter* writer) {
    WriterView view;
    std::memcpy(&view, writer, sizeof view);
    if (view.finished) return {view.finished, view.finishedLength};
    return view.working ? std::string_view(view.working, view.position) : std::string_view();
}

void LogFrame(EntryKind kind, const CTagMessageWriter* writer) {
    const std::string_view frame = FrameOf(writer);
    TheTerminal().Log().Add(kind, CodeOf(frame), frame);
}

std::string RequestText(const MasterRequest& request) {
    std::string text = "GetMasterRequest " + NumberText(request.kind) + '(';
    for (std::uint32_t i = 0; i < request.textCount && i < 6; ++i) {
        if (i) text += ", ";
        text += request.texts[i] ? request.texts[i] : "";
    }
    return text + ')';
}

std::string AnswerText(const MasterAnswer& answer) {
    if (answer.entry)
        return " -> contract " + std::string(answer.entry->securityID, strnlen(answer.entry->securityID, 48));
    return " -> " + NumberText(answer.count);
}

}  // namespace
}  // namespace Dravel::DevHost

using namespace Dravel::DevHost;

#define DEVHOST_EXPORT extern "C" __declspec(dllexport)

DEVHOST_EXPORT void GetMasterRequest(const MasterRequest* request, std::uint64_t, MasterAnswer* answer) {
    if (!request || !answer) return;
    TheTerminal().Mood().Arrive();
    *answer = TheTerminal().Master().Answer(*request);
    TheTerminal().Mood().Spoil(*answer);
    TheTerminal().Log().Add(EntryKind::Callback, static_cast<std::uint16_t>(request->kind),
                            RequestText(*request) + AnswerText(*answer));
    TheTerminal().Callbacks().Leave("GetMasterRequest");
}

DEVHOST_EXPORT void PluginDataSend(CTagMessageWriter* frame) {
    if (frame) LogFrame(EntryKind::FromPlugin, frame);
    TheTerminal().Callbacks().Leave("PluginDataSend");
}

DEVHOST_EXPORT void ApplicationFocus(HWND window, int flag) {
    wchar_t type[64] = L"no window";
    if (window) GetClassNameW(window, type, 64);
    TheTerminal().Log().Add(EntryKind::Callback, 0,
                            "ApplicationFocus(" + Narrow(type) + ", " + NumberText(flag) + ")");
    TheTerminal().Callbacks().Leave("ApplicationFocus");
}

// The terminal's own message entry. This one only writes down what was asked: the answer queue stays empty,
// as for any request that a terminal does not know.
DEVHOST_EXPORT void OnMessage(CTagMessageWriter* request, CTagReceiveQueue*) {
    if (!request) return;
    const std::string_view frame = FrameOf(request);
    TheTerminal().Log().Add(EntryKind::Callback, 0,
                            "OnMessage " + NumberText(CodeOf(frame)) + ' ' + FieldLine(frame));
}

DEVHOST_EXPORT std::uint32_t GetPluginBarID(const wchar_t* title, const wchar_t* key) {
    const std::uint32_t identifier = TheTerminal().BarID(title, key);
    TheTerminal().Callbacks().Leave("GetPluginBarID");
    return identifier;
}

#endif
