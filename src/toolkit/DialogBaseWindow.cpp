#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include <algorithm>

#include "platform/LibraryUse.h"
#include "toolkit/ActivationContext.h"
#include "toolkit/AnsiText.h"
#include "toolkit/DialogBase.h"
#include "toolkit/Geometry.h"
#include "toolkit/Guarded.h"
#include "toolkit/ModalLoop.h"
#include "toolkit/Module.h"

namespace Dravel {
namespace {

constexpr int kProgressRange = 1000;

HWND Handle(void* window) {
    return static_cast<HWND>(window);
}

INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    if (message == WM_INITDIALOG) SetWindowLongPtrW(window, DWLP_USER, lparam);
    auto* dialog = reinterpret_cast<DialogBase*>(GetWindowLongPtrW(window, DWLP_USER));
    if (dialog == nullptr) return FALSE;
    if (message == WM_NCDESTROY) SetWindowLongPtrW(window, DWLP_USER, 0);
    return Guarded("dialog", INT_PTR{FALSE},
                   [&] { return dialog->HandleDialog(window, message, wparam, lparam); });
}

void LoadControls() {
    const INITCOMMONCONTROLSEX controls{sizeof controls,
                                        ICC_STANDARD_CLASSES | ICC_PROGRESS_CLASS | ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
}

bool IsDialogKey(WPARAM key) {
    return key == VK_TAB || key == VK_ESCAPE || key == VK_RETURN;
}

// A child of a modeless dialog: hands the keys of the dialog to it, which a modal dialog's own message loop
// would do. IsDialogMessage sends on only what it does not take, and it takes all of these.
LRESULT CALLBACK DialogKeys(HWND control, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                            DWORD_PTR) noexcept;

LRESULT PassKeys(HWND control, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id) {
    const bool pressed = message == WM_KEYDOWN && IsDialogKey(wparam);
    if (pressed || (message == WM_SYSCHAR && wparam != VK_SPACE)) {
        MSG key{};
        key.hwnd = control;
        key.message = message;
        key.wParam = wparam;
        key.lParam = lparam;
        RemoveWindowSubclass(control, &DialogKeys, id);  // what comes back is the control's
        const BOOL taken = IsDialogMessageW(GetParent(control), &key);
        if (IsWindow(control)) SetWindowSubclass(control, &DialogKeys, id, 0);
        if (taken) return 0;
    }
    if (message == WM_CHAR && IsDialogKey(wparam)) return 0;
    if (message == WM_NCDESTROY) RemoveWindowSubclass(control, &DialogKeys, id);
    return DefSubclassProc(control, message, wparam, lparam);
}

LRESULT CALLBACK DialogKeys(HWND control, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                            DWORD_PTR) noexcept {
    return Guarded("dialog keys", LRESULT{0}, [&] { return PassKeys(control, message, wparam, lparam, id); });
}

// In the middle of its owner, but wholly on the owner's screen.
void Centre(HWND window, HWND owner) {
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    GetMonitorInfoW(MonitorFromWindow(owner != nullptr ? owner : window, MONITOR_DEFAULTTONEAREST), &screen);
    RECT around = screen.rcWork, place{};
    if (owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner)) GetWindowRect(owner, &around);
    GetWindowRect(window, &place);
    const LONG width = place.right - place.left, height = place.bottom - place.top;
    const LONG x = std::min((around.left + around.right - width) / 2, screen.rcWork.right - width);
    const LONG y = std::min((around.top + around.bottom - height) / 2, screen.rcWork.bottom - height);
    SetWindowPos(window, nullptr, std::max(x, screen.rcWork.left), std::max(y, screen.rcWork.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

DialogBase::~DialogBase() = default;

std::intptr_t DialogBase::DoModal(void* owner, const DialogTemplate& shape) {
    const ModalLoop modal;
    LoadControls();
    modeless_ = false;
    owner_ = owner == nullptr ? nullptr : GetAncestor(Handle(owner), GA_ROOT);
    return DialogBoxIndirectParamW(static_cast<HINSTANCE>(Module()),
                                   static_cast<LPCDLGTEMPLATEW>(shape.Data()), Handle(owner_), &Procedure,
                                   reinterpret_cast<LPARAM>(this));
}

bool DialogBase::ShowModeless(void* owner, const DialogTemplate& shape) {
    const ActivationScope scope;
    LoadControls();
    owner_ = owner == nullptr ? nullptr : GetAncestor(Handle(owner), GA_ROOTOWNER);
    modeless_ = true;
    const HWND window = CreateDialogIndirectParamW(static_cast<HINSTANCE>(Module()),
                                                   static_cast<LPCDLGTEMPLATEW>(shape.Data()), Handle(owner_),
                                                   &Procedure, reinterpret_cast<LPARAM>(this));
    if (window == nullptr) return false;
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        SetWindowSubclass(child, &DialogKeys, 0, 0);
    ShowWindow(window, SW_SHOW);
    return true;
}

std::intptr_t DialogBase::HandleDialog(void* window, std::uint32_t message, std::uintptr_t wparam,
                                       std::intptr_t lparam) {
    std::intptr_t result = 0;
    bool done = false;
    switch (message) {
        case WM_INITDIALOG:
            window_ = window;
            OnInit();
            Centre(Handle(window_), Handle(owner_));
            // Focus given by OnInit stays.
            return GetFocus() == nullptr || !IsChild(Handle(window_), GetFocus());
        case WM_COMMAND:
            if (const int id = LOWORD(wparam), code = HIWORD(wparam); id == IDOK && code == BN_CLICKED) {
                OnOk();
                return TRUE;
            } else if (id == IDCANCEL && code == BN_CLICKED) {
                OnCancel();
                return TRUE;
            } else {
                return OnCommand(id, code);
            }
        case WM_NOTIFY:
            done = OnNotify(static_cast<int>(wparam), reinterpret_cast<void*>(lparam), result);
            break;
        case WM_SIZE:
            OnSize(LOWORD(lparam), HIWORD(lparam));
            return FALSE;
        case WM_DESTROY:
            OnDestroy();
            return FALSE;
        case WM_NCDESTROY:
            window_ = nullptr;
            return FALSE;
        default:
            done = OnMessage(message, wparam, lparam, result);
            break;
    }
    if (done) SetWindowLongPtrW(Handle(window), DWLP_MSGRESULT, result);
    return done;
}

void DialogBase::End(std::intptr_t result) {
    if (window_ == nullptr) return;
    if (modeless_) {
        DestroyWindow(Handle(window_));
    } else {
        EndDialog(Handle(window_), result);
    }
}

void* DialogBase::Item(int id) const {
    return window_ == nullptr ? nullptr : GetDlgItem(Handle(window_), id);
}

std::wstring DialogBase::Text(int id) const {
    const HWND item = Handle(Item(id));
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(item)), L'\0');
    const int length =
        text.empty() ? 0 : GetWindowTextW(item, text.data(), static_cast<int>(text.size()) + 1);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string DialogBase::AnsiText(int id) const {
    return Narrow(Text(id));
}

void DialogBase::SetText(int id, const std::wstring& text) {
    SetWindowTextW(Handle(Item(id)), text.c_str());
}

void DialogBase::SetAnsiText(int id, std::string_view text) {
    SetText(id, Widen(text));
}

bool DialogBase::Checked(int id) const {
    return SendMessageW(Handle(Item(id)), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void DialogBase::Check(int id, bool checked) {
    SendMessageW(Handle(Item(id)), BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void DialogBase::Enable(int id, bool enable) {
    EnableWindow(Handle(Item(id)), enable);
}

// Through the dialog's own message, so that the default button follows.
void DialogBase::FocusItem(int id) {
    const HWND item = Handle(Item(id));
    if (item != nullptr) SendMessageW(Handle(window_), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(item), TRUE);
}

void DialogBase::ClearList(int id) {
    SendMessageW(Handle(Item(id)), CB_RESETCONTENT, 0, 0);
}

void DialogBase::AddString(int id, std::wstring_view text) {
    const std::wstring copy(text);
    SendMessageW(Handle(Item(id)), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(copy.c_str()));
}

int DialogBase::Selected(int id) const {
    const HWND item = Handle(Item(id));
    return item == nullptr ? -1 : static_cast<int>(SendMessageW(item, CB_GETCURSEL, 0, 0));
}

void DialogBase::Select(int id, int index) {
    SendMessageW(Handle(Item(id)), CB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

void DialogBase::AddColumn(int id, int index, const wchar_t* title, int width) {
    std::wstring text = title;
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.cx = width;
    column.pszText = text.data();
    SendMessageW(Handle(Item(id)), LVM_INSERTCOLUMNW, static_cast<WPARAM>(index),
                 reinterpret_cast<LPARAM>(&column));
}

void DialogBase::SetProgress(int id, int permille) {
    const HWND item = Handle(Item(id));
    SendMessageW(item, PBM_SETRANGE32, 0, kProgressRange);
    SendMessageW(item, PBM_SETPOS, static_cast<WPARAM>(std::clamp(permille, 0, kProgressRange)), 0);
}

void DialogBase::MapUnits(int& x, int& y) const {
    RECT units{0, 0, x, y};
    MapDialogRect(Handle(window_), &units);
    x = units.right;
    y = units.bottom;
}

}  // namespace Dravel
