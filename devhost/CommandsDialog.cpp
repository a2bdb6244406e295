// Commands that look at and drive dialogs, message boxes and notices.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <fstream>

#include "Commands.h"
#include "Dialogs.h"
#include "Stage.h"
#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

constexpr int kImportCommand = 40004, kImportPath = 1001;

HWND Topmost() {
    const HWND dialog = FindDialog(L"");
    if (!dialog) Fail("no dialog is on the screen");
    return dialog;
}

// Control and Press wait: the dialog may be opened, or uncovered, by what was pressed just before.
HWND Control(Stage& stage, const std::string& name) {
    HWND control = nullptr;
    const auto found = [&] {
        const HWND dialog = FindDialog(L"");
        return dialog && (control = FindControl(dialog, name)) != nullptr;
    };
    if (!stage.Holds(found, stage.limit)) Fail("no control " + name + "; " + DescribeDialogs());
    return control;
}

// In `dialog`; null: in the topmost one.
void Press(Stage& stage, HWND dialog, const std::string& name) {
    std::string error;
    const auto pressed = [&] {
        const HWND in = dialog ? dialog : FindDialog(L"");
        error = in ? PressButton(in, name) : "nothing to press " + name + " in";
        return error.empty();
    };
    if (!stage.Holds(pressed, stage.limit)) Fail(error + "; " + DescribeDialogs());
}

// Topmost, as the commands that follow act on the topmost dialog: one that lies under a dialog which is still
// going is not there yet.
void WaitDialog(Stage& stage, const Words& words) {
    const std::wstring title = FromUtf8(words[0]);
    const auto topmost = [&title] {
        const HWND dialog = FindDialog(L"");
        return dialog && dialog == FindDialog(title);
    };
    if (!stage.Holds(topmost, stage.limit)) Fail("it does not come; " + DescribeDialogs());
}

// Presses and waits until the box is gone, so that the next command does not meet it again.
void Answer(Stage& stage, HWND box, const std::string& button) {
    Press(stage, box, button);
    stage.Until([box] { return !IsWindow(box) || !IsWindowVisible(box); }, "the box stays");
}

void ExpectBox(Stage& stage, const Words& words) {
    const std::wstring title = FromUtf8(words[0]), text = FromUtf8(words[1]);
    HWND box = nullptr;
    if (!stage.Holds([&] { return (box = FindBox(title, text)) != nullptr; }, stage.limit))
        Fail("it does not come; " + DescribeDialogs());
    if (words.size() > 2) Answer(stage, box, words[2]);
}

void AnswerBox(Stage& stage, const Words& words) {
    Answer(stage, Topmost(), words[0]);
}

void PrepareAnswer(Stage& stage, const Words& words) {
    stage.Watch().Prepare({FromUtf8(words[0]), FromUtf8(words[1]), words[2]});
}

void PressCommand(Stage& stage, const Words& words) {
    Press(stage, nullptr, words[0]);
}

void SetText(Stage& stage, const Words& words) {
    const HWND control = Control(stage, words[0]);
    const std::wstring text = FromUtf8(words[1]);
    DWORD_PTR result = 0;
    SendMessageTimeoutW(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()), SMTO_NORMAL, 5000,
                        &result);
}

void ExpectText(Stage& stage, const Words& words) {
    const HWND control = Control(stage, words[0]);
    const std::wstring pattern = FromUtf8(words[1]);
    if (!stage.Holds([&] { return Matches(pattern, ControlText(control)); }, stage.limit))
        Fail("it says \"" + ToUtf8(ControlText(control)) + '"');
}

void Select(Stage& stage, const Words& words) {
    const HWND list = Control(stage, words[0]);
    const std::wstring text = FromUtf8(words[1]);
    stage.Until([&] { return SelectRow(list, text); }, "no such row");
    stage.InputTaken();  // the dialog has heard of it
}

void ExpectRow(Stage& stage, const Words& words) {
    const HWND list = Control(stage, words[0]);
    const std::wstring pattern = FromUtf8(words[1]);
    stage.Until(
        [&] {
            const auto rows = ListRows(list);
            return std::any_of(rows.begin(), rows.end(),
                               [&](const auto& row) { return Matches(pattern, row); });
        },
        "no such row");
}

void DumpList(Stage& stage, const Words& words) {
    std::ofstream file(stage.File(words[1]), std::ios::binary);
    for (const std::wstring& row : ListRows(Control(stage, words[0])))
        file << ToUtf8(row) << '\n';
}

void Check(Stage& stage, const Words& words) {
    const HWND box = Control(stage, words[0]);
    if (words[1] != "on" && words[1] != "off") Fail("on or off");
    const LRESULT wanted = words[1] == "on" ? BST_CHECKED : BST_UNCHECKED;
    auto state = [box] { return SendMessageW(box, BM_GETCHECK, 0, 0); };
    if (state() != wanted) PostMessageW(box, BM_CLICK, 0, 0);
    stage.Until([&] { return state() == wanted; }, "it does not change");
}

void DumpDialog(Stage& stage, const Words& words) {
    std::ofstream(stage.File(words[0]), std::ios::binary) << DescribeDialog(Topmost());
}

void CloseDialog(Stage& stage, const Words&) {
    const HWND dialog = Topmost();
    PostMessageW(dialog, WM_CLOSE, 0, 0);
    stage.Until([dialog] { return !IsWindow(dialog) || !IsWindowVisible(dialog); }, "the dialog stays");
}

void NoDialogs(Stage& stage, const Words&) {
    if (!stage.Holds([] { return Dialogs().empty(); }, stage.limit)) Fail(DescribeDialogs());
}

void Import(Stage& stage, const Words& words) {
    stage.OnUi([] { PostMessageW(FindGrid(), WM_COMMAND, kImportCommand, 0); });
    WaitDialog(stage, {"Import Trades"});
    const auto path = std::filesystem::path(stage.scriptFolder / FromUtf8(words[0])).make_preferred();
    SetText(stage, {NumberText(kImportPath), ToUtf8(path.native())});
    PressCommand(stage, {"OK"});
}

bool Noticed(Stage& stage, const std::wstring& pattern) {
    const auto notices = stage.Watch().Notices();
    return std::any_of(notices.begin(), notices.end(),
                       [&](const auto& notice) { return Matches(pattern, notice); });
}

void WaitNotice(Stage& stage, const Words& words) {
    const std::wstring pattern = FromUtf8(words[0]);
    if (stage.Holds([&] { return Noticed(stage, pattern); }, stage.limit)) return;
    std::string seen;
    for (const auto& notice : stage.Watch().Notices())
        seen += " \"" + ToUtf8(notice) + '"';
    Fail("it does not come; seen:" + seen);
}

void ExpectNotice(Stage& stage, const Words& words) {
    if (!Noticed(stage, FromUtf8(words[0]))) Fail("it was not shown");
}

void NoNotice(Stage& stage, const Words& words) {
    if (Noticed(stage, FromUtf8(words[0]))) Fail("it was shown");
}

void ExpectNotices(Stage& stage, const Words& words) {
    std::size_t count = 0;
    if (!ParseNumber(words[0], count)) Fail("not a number");
    stage.Until([&] { return stage.Watch().Notices().size() == count; }, "another number of notices");
}

void ForgetNotices(Stage& stage, const Words&) {
    stage.Watch().ClearNotices();
}

constexpr CommandEntry kCommands[] = {
    {"wait-dialog", "TITLE", 1, 1, WaitDialog},
    {"expect-box", "TITLE TEXT [BUTTON]", 2, 3, ExpectBox},
    {"answer", "BUTTON", 1, 1, AnswerBox},
    {"prepare-answer", "TITLE TEXT BUTTON", 3, 3, PrepareAnswer},
    {"press", "BUTTON", 1, 1, PressCommand},
    {"set-text", "CONTROL TEXT", 2, 2, SetText},
    {"expect-text", "CONTROL TEXT", 2, 2, ExpectText},
    {"select", "CONTROL TEXT", 2, 2, Select},
    {"expect-row", "CONTROL TEXT", 2, 2, ExpectRow},
    {"dump-list", "CONTROL FILE", 2, 2, DumpList},
    {"check", "CONTROL on|off", 2, 2, Check},
    {"dump-dialog", "FILE", 1, 1, DumpDialog},
    {"close-dialog", "", 0, 0, CloseDialog},
    {"no-dialogs", "", 0, 0, NoDialogs},
    {"import", "FILE", 1, 1, Import},
    {"wait-notice", "TEXT", 1, 1, WaitNotice},
    {"expect-notice", "TEXT", 1, 1, ExpectNotice},
    {"no-notice", "TEXT", 1, 1, NoNotice},
    {"expect-notices", "COUNT", 1, 1, ExpectNotices},
    {"forget-notices", "", 0, 0, ForgetNotices},
};

}  // namespace

std::span<const CommandEntry> DialogCommands() {
    return kCommands;
}

}  // namespace Dravel::DevHost
