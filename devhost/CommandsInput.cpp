// Commands for what a person does with the terminal itself: its own menu, keys held down, another window in
// front.
#include "Commands.h"
#include "Stage.h"
#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

constexpr wchar_t kModule[] = L"Dravel64R.dll";

std::wstring CaptionOf(HMENU menu, int item) {
    wchar_t text[128] = L"";
    GetMenuStringW(menu, static_cast<UINT>(item), text, 128, MF_BYPOSITION);
    std::wstring caption(text);
    std::erase(caption, L'&');
    return caption;
}

// A click on the title in the frame's menu bar, and one on the entry of the menu that opens.
void ClickMenu(Stage& stage, const Words& words) {
    const HWND frame = stage.Host().Frame();
    const HMENU bar = frame ? GetMenu(frame) : nullptr;
    RECT at{};
    for (int i = 0; bar && i < GetMenuItemCount(bar); ++i)
        if (CaptionOf(bar, i) == FromUtf8(words[0])) GetMenuItemRect(frame, bar, static_cast<UINT>(i), &at);
    if (IsRectEmpty(&at)) Fail("the frame has no such menu");
    if (!IsWindowEnabled(frame)) Fail("the main frame is disabled");
    stage.Send(ClickAt({(at.left + at.right) / 2, (at.top + at.bottom) / 2}, Click::Left));
    FindCommand("choose")->run(stage, {words[1]});
}

// As a finger that rests on the key: pressed COUNT times, let go once.
void HoldKey(Stage& stage, const Words& words) {
    std::uint32_t count = 0;
    if (!ParseNumber(words[1], count) || count == 0) Fail("COUNT is a number");
    const Input once = Chord(words[0]);
    if (once.size() != 2) Fail("one key, without others");
    Input events(count, once.front());
    events.push_back(once.back());
    stage.Send(std::move(events));
}

void Pause(Stage& stage, const Words& words) {
    std::uint32_t milliseconds = 0;
    if (!ParseNumber(words[0], milliseconds)) Fail("not a number");
    stage.Holds([] { return false; }, milliseconds);
}

void ExpectLibrary(Stage& stage, const Words& words) {
    if (words[0] != "loaded" && words[0] != "gone") Fail("loaded or gone");
    const bool wanted = words[0] == "loaded";
    stage.Until([&] { return (GetModuleHandleW(kModule) != nullptr) == wanted; }, "it is not so");
}

// Another program comes to the front and goes again.
void SwitchAway(Stage& stage, const Words&) {
    stage.OnUi([&stage] {
        const HWND frame = stage.Host().Frame();
        SendMessageW(frame, WM_ACTIVATE, WA_INACTIVE, 0);
        SendMessageW(frame, WM_ACTIVATE, WA_ACTIVE, 0);
    });
}

// As the system does when the user signs out, in the midst of whatever he does.
void EndSession(Stage& stage, const Words&) {
    stage.OnUi([&stage] {
        const HWND frame = stage.Host().Frame();
        if (SendMessageW(frame, WM_QUERYENDSESSION, 0, 0)) SendMessageW(frame, WM_ENDSESSION, TRUE, 0);
    });
}

constexpr CommandEntry kCommands[] = {
    {"menu", "TITLE ENTRY", 2, 2, ClickMenu}, {"hold-key", "KEY COUNT", 2, 2, HoldKey},
    {"pause", "MILLISECONDS", 1, 1, Pause},   {"expect-library", "loaded|gone", 1, 1, ExpectLibrary},
    {"switch-away", "", 0, 0, SwitchAway},    {"end-session", "", 0, 0, EndSession},
};

}  // namespace

std::span<const CommandEntry> InputCommands() {
    return kCommands;
}

}  // namespace Dravel::DevHost
