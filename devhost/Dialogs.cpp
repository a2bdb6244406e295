// Finds dialogs and their buttons and says what is on the screen.
#include "Dialogs.h"

#include <algorithm>

#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

struct ButtonName {
    const char* name;
    int id;
};
constexpr ButtonName kButtons[] = {{"OK", IDOK},        {"Cancel", IDCANCEL}, {"Yes", IDYES},
                                   {"No", IDNO},        {"Retry", IDRETRY},   {"Abort", IDABORT},
                                   {"Ignore", IDIGNORE}};

std::wstring WithoutMnemonic(std::wstring text) {
    std::erase(text, L'&');
    return text;
}

bool SaysSo(HWND dialog, std::wstring_view text) {
    if (text.empty()) return true;
    for (HWND child : Descendants(dialog))
        if (IsWindowVisible(child) && Matches(text, KeptText(child))) return true;
    return false;
}

std::string State(HWND control) {
    std::string state = IsWindowVisible(control) ? "" : " hidden";
    if (!IsWindowEnabled(control)) state += " disabled";
    DWORD_PTR checked = 0;
    const bool button = ClassOf(control) == L"Button";
    if (button && SendMessageTimeoutW(control, BM_GETCHECK, 0, 0, SMTO_NORMAL, 1000, &checked) && checked)
        state += " checked";
    return state;
}

}  // namespace

HWND FindDialog(std::wstring_view title) {
    for (HWND dialog : Dialogs())
        if (title.empty() || Matches(title, KeptText(dialog))) return dialog;
    return nullptr;
}

HWND FindBox(std::wstring_view title, std::wstring_view text) {
    for (HWND dialog : Dialogs())
        if ((title.empty() || Matches(title, KeptText(dialog))) && SaysSo(dialog, text)) return dialog;
    return nullptr;
}

std::string DescribeDialogs() {
    std::string text;
    for (HWND dialog : Dialogs()) {
        text += (text.empty() ? "on the screen: \"" : ", \"") + ToUtf8(KeptText(dialog)) + '"';
        for (HWND child : Descendants(dialog))
            if (IsWindowVisible(child) && ClassOf(child) == L"Static" && !KeptText(child).empty())
                text += " \"" + ToUtf8(KeptText(child)) + '"';
    }
    return text.empty() ? "no dialog is on the screen" : text;
}

std::string DescribeDialog(HWND dialog) {
    std::string text = "\"" + ToUtf8(ControlText(dialog)) + "\"\n";
    for (HWND child : Descendants(dialog)) {
        text += NumberText(GetDlgCtrlID(child)) + ' ' + ToUtf8(ClassOf(child)) + State(child) + " \"" +
                ToUtf8(ControlText(child)) + "\"\n";
        for (const std::wstring& row : ListRows(child))
            text += "    " + ToUtf8(row) + '\n';
    }
    return text;
}

HWND FindControl(HWND dialog, std::string_view name) {
    int id = 0;
    if (ParseNumber(name, id)) {
        for (HWND child : Descendants(dialog))
            if (GetDlgCtrlID(child) == id) return child;
        return nullptr;
    }
    for (const ButtonName& button : kButtons)
        if (name == button.name)
            if (HWND child = GetDlgItem(dialog, button.id)) return child;
    const std::wstring caption = FromUtf8(name);
    for (HWND child : Descendants(dialog))
        if (WithoutMnemonic(KeptText(child)) == caption) return child;
    return nullptr;
}

std::string PressButton(HWND dialog, std::string_view name) {
    const HWND button = FindControl(dialog, name);
    if (!button) return "no button " + std::string(name);
    if (!IsWindowEnabled(button)) return "button " + std::string(name) + " is disabled";
    // What a click comes to; BM_CLICK itself is ignored in a dialog that is not the active one.
    if (ClassOf(button) == L"Button" && GetForegroundWindow() == dialog)
        return PostMessageW(button, BM_CLICK, 0, 0) ? "" : "the button is gone";
    const WPARAM clicked = MAKEWPARAM(GetDlgCtrlID(button), BN_CLICKED);
    return PostMessageW(GetParent(button), WM_COMMAND, clicked, reinterpret_cast<LPARAM>(button))
               ? ""
               : "the button is gone";
}

}  // namespace Dravel::DevHost
