// Commands that load the plug-in, open and close its book, and send it messages.
#include <fstream>
#include <stdexcept>

#include "Commands.h"
#include "Dialogs.h"
#include "FrameText.h"
#include "Stage.h"
#include "Text.h"
#include "WindowSearch.h"
#include "message/Tags.h"

namespace Dravel::DevHost {
namespace {

constexpr wchar_t kModule[] = L"Dravel64R.dll";

// Work that may answer with an error; one that opens a dialog has none yet.
void OnUiOrFail(Stage& stage, std::function<void(std::string&)> work) {
    const auto error = stage.AskUi<std::string>([work = std::move(work)] {
        std::string text;
        work(text);
        return text;
    });
    if (!error.empty()) Fail(error);
}

void Load(Stage& stage, const Words&) {
    OnUiOrFail(stage, [&](std::string& error) { stage.Host().LoadPlugin(error); });
}

// Does not wait until it is gone: a box of the library's may still be up.
void AskUnload(Stage& stage, const Words&) {
    stage.OnUi([&] { stage.Host().UnloadPlugin(); });
}

void Unload(Stage& stage, const Words& words) {
    AskUnload(stage, words);
    // The library may give its last reference back on a thread of the system's.
    stage.Until([] { return !GetModuleHandleW(kModule); }, "the library is not let go");
}

void Open(Stage& stage, const Words&) {
    OnUiOrFail(stage, [&](std::string& error) {
        if (!stage.Host().OpenBook()) error = "the plug-in registered no bar";
    });
}

// CODE FIELD=VALUE... of the words from `first` on, as work for the user-interface thread.
std::function<void(std::string&)> Sending(Stage& stage, const Words& words, std::size_t first,
                                          bool broadcast) {
    std::uint16_t code = 0;
    if (!ParseCode(words[first], code)) Fail("unknown message code");
    std::vector<std::string> fields;
    for (std::size_t i = first + 1; i < words.size(); ++i)
        fields.push_back(Narrow(FromUtf8(words[i])));
    return [&stage, code, fields, broadcast](std::string& error) {
        stage.Host().Send(code, fields, error, broadcast);
    };
}

void Send(Stage& stage, const Words& words, bool broadcast) {
    OnUiOrFail(stage, Sending(stage, words, 0, broadcast));
}

void SendMessageCommand(Stage& stage, const Words& words) {
    Send(stage, words, false);
}
void SendBroadcast(Stage& stage, const Words& words) {
    Send(stage, words, true);
}
// Whatever the digits say, frame or not.
void SendBytes(Stage& stage, const Words& words) {
    std::string bytes;
    for (const std::string& word : words) {
        std::uint64_t byte = 0;
        if (word.size() != 2 || !ParseHex(word, byte)) Fail("two hexadecimal digits a byte");
        bytes += static_cast<char>(byte);
    }
    OnUiOrFail(stage, [&stage, bytes](std::string& error) {
        if (!stage.Host().Loaded().SendMessage(bytes)) error = "the plug-in registered no entry for messages";
    });
}

void OpenByMessage(Stage& stage, const Words&) {
    Send(stage, {"ShowBar"}, false);
}

void SendTrade(Stage& stage, const Words& words) {
    std::uint32_t count = 1;
    if (!words.empty() && !ParseNumber(words[0], count)) Fail("not a number");
    OnUiOrFail(stage, [&stage, count](std::string& error) {
        for (std::uint32_t i = 0; i < count && error.empty(); ++i)
            stage.Host().SendTrade(error);
    });
}

void DestroyBar(Stage& stage, const Words&) {
    stage.OnUi([] {
        if (HWND bar = FindBar()) DestroyWindow(bar);
    });
}

void CloseFrameCommand(Stage& stage, const Words&) {
    CloseFrame(stage);
}

// Only asks; a box that comes up is the script's to answer.
void AskFrameToClose(Stage& stage, const Words&) {
    stage.OnUi([&] { PostMessageW(stage.Host().Frame(), WM_CLOSE, 0, 0); });
}

void NewFrame(Stage& stage, const Words&) {
    OnUiOrFail(stage, [&](std::string& error) {
        if (!stage.Host().CreateFrame()) error = "no main frame";
    });
}

void GetDllInfoCommand(Stage& stage, const Words& words) {
    std::uint8_t flag = 0;
    if (!ParseNumber(words[0], flag)) Fail("the flag is a byte");
    const auto frames =
        stage.AskUi<std::string>([&stage, flag] { return stage.Host().Loaded().Introduce(flag); });
    stage.Report("GetDllInfo with flag " + words[0] + ": " + NumberText(frames.size()) + " bytes");
    if (words.size() < 2) return stage.Report(Hex(frames));
    std::ofstream(stage.File(words[1]), std::ios::binary) << Hex(frames) << '\n';
}

// GetDllInfo with FLAG appends frames of just these codes, in this order.
void ExpectIntroduction(Stage& stage, const Words& words) {
    std::uint8_t flag = 0;
    if (!ParseNumber(words[0], flag)) Fail("the flag is a byte");
    const auto frames =
        stage.AskUi<std::string>([&stage, flag] { return stage.Host().Loaded().Introduce(flag); });
    std::string wanted, found;
    for (std::size_t i = 1; i < words.size(); ++i)
        wanted += ' ' + words[i];
    for (const std::string_view frame : SplitFrames(frames))
        found += ' ' + CodeName(CodeOf(frame));
    if (found != wanted) Fail("it appends" + found);
}

void Reenter(Stage& stage, const Words& words) {
    if (words[0] == "GetPluginBarID") return void(stage.OnUi([&] { stage.Host().reenterOnBarID = true; }));
    if (words[0] != "GetMasterRequest" || words.size() < 2) Fail("what is sent out of which callback?");
    const auto send = Sending(stage, words, 1, false);
    stage.OnUi([&stage, send] {
        stage.Host().Mood().Next([&stage, send] {
            std::string error;
            send(error);
            stage.Host().Log().Add(EntryKind::Note, 0, "sent out of GetMasterRequest " + error);
        });
    });
}

void MasterAnswers(Stage& stage, const Words& words) {
    std::uint32_t delay = 0;
    if (words.size() > 1 && !ParseNumber(words[1], delay)) Fail("not a number");
    const auto known = stage.AskUi<bool>([&stage, mood = words[0], delay] {
        stage.Host().Mood().SetDelay(delay);
        return stage.Host().Mood().Set(mood);
    });
    if (!known) Fail("no such mood");
}

void CallbacksEnd(Stage& stage, const Words& words) {
    const std::string name = words.size() > 1 ? words[1] : std::string();
    const auto known = stage.AskUi<bool>(
        [&stage, mood = words[0], name] { return stage.Host().Callbacks().Set(mood, name); });
    if (!known) Fail("no such mood");
}

void MakeContracts(Stage& stage, const Words& words) {
    std::uint32_t count = 0;
    if (!ParseNumber(words[0], count)) Fail("not a number");
    stage.OnUi([&stage, count] { stage.Host().Master().MakeContracts(count); });
}

// Each ends the program out of its main loop, where no window procedure of the system stands between.
void AccessViolation() {
    *static_cast<volatile int*>(nullptr) = 1;
}
void Throw() {
    throw std::runtime_error("crash throw");
}
// Called through a pointer that the compiler cannot see through. Large steps: the end is met by the probing
// in front of a step, with the step's room still free. Wine keeps no room free for the handlers of an
// overflow, as SetThreadStackGuarantee asks it to: after small steps it ends the thread before anybody hears
// of it.
int Recurse(int depth);
int (*volatile recurse)(int) = Recurse;
int Recurse(int depth) {
    volatile char step[64 * 1024];
    step[0] = static_cast<char>(depth);
    return recurse(depth + 1) + step[0];
}
void StackOverflow() {
    recurse(0);
}
// As the system does it: nobody in the process hears of it.
void Kill() {
    TerminateProcess(GetCurrentProcess(), 9);
}

// A terminal that ends without a WM_CLOSE: whoever asks something then gets no answer.
void DestroyFrameAfterQuit() {
    PostQuitMessage(0);
    HWND frame = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM found) -> BOOL {
            if (!IsWindowVisible(window) || GetWindow(window, GW_OWNER)) return TRUE;
            *reinterpret_cast<HWND*>(found) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&frame));
    DestroyWindow(frame);
    ExitProcess(6);
}

constexpr struct {
    std::string_view name;
    void (*crash)();
} kCrashes[] = {{"access-violation", AccessViolation},
                {"throw", Throw},
                {"stack-overflow", StackOverflow},
                {"kill", Kill},
                {"quit", DestroyFrameAfterQuit}};

void Crash(Stage& stage, const Words& words) {
    for (const auto& kind : kCrashes) {
        if (kind.name != words[0]) continue;
        stage.OnUi([&] { stage.Host().crash = kind.crash; });
        stage.Until([] { return false; }, "the program lives on");
    }
    Fail("no such crash");
}

constexpr CommandEntry kCommands[] = {
    {"load", "", 0, 0, Load},
    {"unload", "", 0, 0, Unload},
    {"ask-unload", "", 0, 0, AskUnload},
    {"open", "", 0, 0, Open},
    {"open-by-message", "", 0, 0, OpenByMessage},
    {"close", "", 0, 0, DestroyBar},
    {"close-frame", "", 0, 0, CloseFrameCommand},
    {"ask-close-frame", "", 0, 0, AskFrameToClose},
    {"new-frame", "", 0, 0, NewFrame},
    {"send", "CODE [FIELD=VALUE...]", 1, 99, SendMessageCommand},
    {"broadcast", "CODE [FIELD=VALUE...]", 1, 99, SendBroadcast},
    {"send-bytes", "HEX...", 1, 999, SendBytes},
    {"send-trade", "[COUNT]", 0, 1, SendTrade},
    {"getdllinfo", "FLAG [FILE]", 1, 2, GetDllInfoCommand},
    {"expect-frames-of-flag", "FLAG CODE...", 1, 99, ExpectIntroduction},
    {"reenter-on", "GetPluginBarID | GetMasterRequest CODE [FIELD=VALUE...]", 1, 99, Reenter},
    {"master-answers", "normal|nothing|no-list|nulls|long [MILLISECONDS]", 1, 2, MasterAnswers},
    {"callbacks", "work|throw|fault|round-up [NAME]", 1, 2, CallbacksEnd},
    {"make-contracts", "COUNT", 1, 1, MakeContracts},
    {"crash", "access-violation|throw|stack-overflow|kill|quit", 1, 1, Crash},
};

}  // namespace

std::span<const CommandEntry> PluginCommands() {
    return kCommands;
}

void CloseFrame(Stage& stage) {
    const HWND frame = stage.Host().Frame();
    if (!frame) return;
    // A posted WM_CLOSE reaches a frame under a modal dialog, a person's click does not.
    if (!IsWindowEnabled(frame)) Fail("the main frame is disabled; " + DescribeDialogs());
    PostMessageW(frame, WM_CLOSE, 0, 0);
    if (!stage.Holds([&] { return !IsWindow(frame); }, stage.limit))
        Fail("the main frame does not close within " + NumberText(stage.limit) + " ms; " + DescribeDialogs());
}

}  // namespace Dravel::DevHost
