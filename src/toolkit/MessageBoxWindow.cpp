#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <span>
#include <string>

#include "toolkit/DialogBase.h"
#include "toolkit/Geometry.h"
#include "toolkit/MessageBox.h"
#include "toolkit/ModalLoop.h"

using namespace Dravel;

namespace {

constexpr std::uint32_t kButtonMask = 15, kIconMask = 0xF0, kNoIcon = 112, kDefaultMask = 0xF00;
constexpr std::uint32_t kRightAligned = 0x80000;
constexpr int kTextItem = 2001, kIconItem = 2002, kCheckItem = 2003;
// Sizes at 96 dpi.
constexpr int kMargin = 14, kGap = 10, kIconSize = 32, kTextWidth = 420, kButtonWidth = 84,
              kButtonHeight = 26, kButtonGap = 8, kTextHeight = 260;
constexpr std::size_t kLongText = 1500;  // characters: what is longer is scrolled through

struct Button {
    std::uint16_t id;
    const wchar_t* text;
};
constexpr Button kOk{1, L"OK"}, kCancel{2, L"Cancel"}, kAbort{3, L"&Abort"}, kRetry{4, L"&Retry"},
    kIgnore{5, L"&Ignore"}, kYes{6, L"&Yes"}, kNo{7, L"&No"}, kTryAgain{10, L"&Try Again"},
    kContinue{11, L"&Continue"};

// By the low bits of the style.
struct ButtonSet {
    int count;
    Button buttons[3];
};
constexpr ButtonSet kSets[] = {
    {1, {kOk}},       {2, {kOk, kCancel}},    {3, {kAbort, kRetry, kIgnore}},       {3, {kYes, kNo, kCancel}},
    {2, {kYes, kNo}}, {2, {kRetry, kCancel}}, {3, {kCancel, kTryAgain, kContinue}},
};

struct IconKind {
    std::uint32_t bits;
    const wchar_t* resource;
};
const IconKind kIcons[] = {{16, IDI_HAND}, {32, IDI_QUESTION}, {48, IDI_EXCLAMATION}, {64, IDI_ASTERISK}};

const wchar_t* OrEmpty(const wchar_t* text) {
    return text == nullptr ? L"" : text;
}

bool HasOwnButtons(const KRVP_MSGBOXPARAMS& params) {
    return (params.style & kOwnButtonsStyle) != 0 && params.ownCaptions[0] != nullptr &&
           params.ownCaptions[1] != nullptr;
}

// The name or number of the first icon group of a module.
BOOL CALLBACK TakeFirst(HMODULE, LPCWSTR, LPWSTR name, LONG_PTR found) {
    *reinterpret_cast<HICON*>(found) = nullptr;
    *reinterpret_cast<LPCWSTR*>(found) = IS_INTRESOURCE(name) ? name : IDI_APPLICATION;
    return FALSE;
}

LPCWSTR FirstIcon(void* instance) {
    LPCWSTR name = nullptr;
    EnumResourceNamesW(static_cast<HMODULE>(instance), RT_GROUP_ICON, &TakeFirst,
                       reinterpret_cast<LONG_PTR>(&name));
    return name;
}

HICON IconOf(const KRVP_MSGBOXPARAMS& params) {
    const std::uint32_t bits = params.style & kIconMask;
    for (const IconKind& kind : kIcons) {
        if (kind.bits == bits) return LoadIconW(nullptr, kind.resource);
    }
    const LPCWSTR name = bits == 128 ? FirstIcon(params.instance) : nullptr;
    return name == nullptr ? nullptr : LoadIconW(static_cast<HINSTANCE>(params.instance), name);
}

bool IsLong(const KRVP_MSGBOXPARAMS& params) {
    return std::wcslen(OrEmpty(params.text)) > kLongText;
}

// As a field wants them.
std::wstring WithCarriageReturns(std::wstring_view text) {
    std::wstring result;
    for (const wchar_t c : text)
        result.append(c == L'\n' ? L"\r\n" : std::wstring(1, c));
    return result;
}

// The box of our own: icon, text, check box, buttons.
class Box : public DialogBase {
 public:
    explicit Box(const KRVP_MSGBOXPARAMS& params) : params_(params), scrolls_(IsLong(params)) {
        if (HasOwnButtons(params)) {
            set_ = {2, {{kOwnButtonFirst, params.ownCaptions[0]}, {kOwnButtonSecond, params.ownCaptions[1]}}};
        } else {
            set_ = kSets[std::min<std::size_t>(params.style & kButtonMask, std::size(kSets) - 1)];
            default_ = std::min(static_cast<int>((params.style & kDefaultMask) >> 8), set_.count - 1);
        }
    }

    std::uint32_t Show(void* owner) {
        DialogTemplate shape(OrEmpty(params_.caption), 200, 80);
        shape.Add({.control = DialogControl::Static,
                   .text = L"",
                   .id = kIconItem,
                   .style = SS_ICON | style::Hidden});
        const std::uint32_t align = (params_.style & kRightAligned) != 0 ? SS_RIGHT : SS_LEFT;
        const std::wstring longText = scrolls_ ? WithCarriageReturns(params_.text) : std::wstring();
        if (scrolls_) {
            shape.Add({.control = DialogControl::Edit,
                       .text = longText.c_str(),
                       .id = kTextItem,
                       .style = align | style::EditMultiline | style::EditReadOnly | style::VScroll |
                                style::Border | style::TabStop});
        } else {
            shape.Add({.control = DialogControl::Static,
                       .text = OrEmpty(params_.text),
                       .id = kTextItem,
                       .style = align | SS_NOPREFIX | SS_EDITCONTROL});
        }
        if (params_.remember != 0) {
            shape.Add({.control = DialogControl::Button,
                       .text = OrEmpty(params_.checkText),
                       .id = kCheckItem,
                       .style = style::CheckBox | style::TabStop});
        }
        for (int index = 0; index < set_.count; ++index) {
            const Button& button = set_.buttons[index];
            shape.Add({.control = DialogControl::Button,
                       .text = button.text,
                       .id = button.id,
                       .style = style::TabStop | (index == default_ ? style::DefaultButton : 0)});
        }
        const std::intptr_t result = DoModal(owner, shape);
        return result < 0 ? 0 : static_cast<std::uint32_t>(result);
    }

 private:
    void OnInit() override;
    void OnDestroy() override {
        if (params_.window != nullptr) *params_.window = nullptr;
    }
    bool OnCommand(int id, int code) override {
        if (code != BN_CLICKED || !HasButton(id)) return false;
        Answer(id);
        return true;
    }
    void OnOk() override { OnCommand(HasButton(kOk.id) ? kOk.id : set_.buttons[default_].id, BN_CLICKED); }
    // Escape and the close box answer Cancel, or the only button; a question that must be answered stays.
    void OnCancel() override {
        if (HasButton(kCancel.id)) {
            Answer(kCancel.id);
        } else if (set_.count == 1) {
            Answer(set_.buttons[0].id);
        }
    }

    bool HasButton(int id) const {
        const auto end = set_.buttons + set_.count;
        return std::find_if(set_.buttons, end, [&](const Button& button) { return button.id == id; }) != end;
    }
    void Answer(int id) {
        if (params_.checked != nullptr && params_.remember != 0) *params_.checked = Checked(kCheckItem);
        End(id);
    }
    SIZE Measure(int item, int width) const;
    void Move(int item, int x, int y, int width, int height) const {
        SetWindowPos(static_cast<HWND>(Item(item)), nullptr, x, y, width, height,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
    int Pixels(int length) const {
        return Scale(length, static_cast<int>(GetDpiForWindow(static_cast<HWND>(Window()))));
    }
    void Resize(int width, int height) const;

    const KRVP_MSGBOXPARAMS& params_;
    const bool scrolls_;  // a text that would not fit on the screen
    ButtonSet set_{};
    int default_ = 0;
};

SIZE Box::Measure(int item, int width) const {
    const auto window = static_cast<HWND>(Item(item));
    const std::wstring text = Text(item);
    const HDC device = GetDC(window);
    const HGDIOBJ old =
        SelectObject(device, reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0)));
    RECT room{0, 0, width, 0};
    DrawTextW(device, text.c_str(), -1, &room, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX | DT_EDITCONTROL);
    SelectObject(device, old);
    ReleaseDC(window, device);
    return {room.right, room.bottom};
}

void Box::Resize(int width, int height) const {
    const auto window = static_cast<HWND>(Window());
    RECT frame{0, 0, width, height};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(window, GWL_EXSTYLE)));
    SetWindowPos(window, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Box::OnInit() {
    if (params_.window != nullptr) *params_.window = Window();
    const HICON icon = IconOf(params_);
    const int margin = Pixels(kMargin), gap = Pixels(kGap),
              iconSize = icon == nullptr ? 0 : Pixels(kIconSize);
    const int left = margin + (icon == nullptr ? 0 : iconSize + gap);
    const SIZE text =
        scrolls_ ? SIZE{Pixels(kTextWidth), Pixels(kTextHeight)} : Measure(kTextItem, Pixels(kTextWidth));
    const SIZE check = params_.remember != 0 ? Measure(kCheckItem, Pixels(kTextWidth)) : SIZE{};
    const int checkWidth = params_.remember != 0 ? static_cast<int>(check.cx) + Pixels(26) : 0;
    const int buttons = set_.count * Pixels(kButtonWidth) + (set_.count - 1) * Pixels(kButtonGap);
    const int inner =
        std::max({static_cast<int>(text.cx) + left - margin, checkWidth + left - margin, buttons});
    const int width = inner + 2 * margin;
    int y = margin;
    if (icon != nullptr) {
        SendMessageW(static_cast<HWND>(Item(kIconItem)), STM_SETICON, reinterpret_cast<WPARAM>(icon), 0);
        Move(kIconItem, margin, y, iconSize, iconSize);
        ShowWindow(static_cast<HWND>(Item(kIconItem)), SW_SHOWNA);
    }
    const int body = std::max(static_cast<int>(text.cy), iconSize);
    Move(kTextItem, left, y + (body - static_cast<int>(text.cy)) / 2, width - margin - left, text.cy);
    y += body + gap;
    if (params_.remember != 0) {
        Move(kCheckItem, left, y, checkWidth, check.cy + Pixels(4));
        Check(kCheckItem, params_.checked != nullptr && *params_.checked);
        y += check.cy + Pixels(4) + gap;
    }
    int x = width - margin - buttons;
    for (int index = 0; index < set_.count; ++index) {
        Move(set_.buttons[index].id, x, y, Pixels(kButtonWidth), Pixels(kButtonHeight));
        x += Pixels(kButtonWidth + kButtonGap);
    }
    Resize(width, y + Pixels(kButtonHeight) + margin);
    FocusItem(set_.buttons[default_].id);
    if (set_.count > 1 && !HasButton(kCancel.id)) {
        EnableMenuItem(GetSystemMenu(static_cast<HWND>(Window()), FALSE), SC_CLOSE, MF_BYCOMMAND | MF_GRAYED);
    }
    MessageBeep(params_.style & kIconMask & ~0x80u);
}

std::uint32_t SystemBox(void* owner, const KRVP_MSGBOXPARAMS& params) {
    MSGBOXPARAMSW request{};
    request.cbSize = sizeof request;
    request.hwndOwner = static_cast<HWND>(owner);
    request.lpszText = OrEmpty(params.text);
    request.lpszCaption = OrEmpty(params.caption);
    request.dwStyle = params.style;
    // The system has no icon 112.
    if ((params.style & kIconMask) == kNoIcon) request.dwStyle &= ~kIconMask;
    if ((params.style & kIconMask) == 128) {
        request.hInstance = static_cast<HINSTANCE>(params.instance);
        request.lpszIcon = FirstIcon(params.instance);
        if (request.lpszIcon == nullptr) request.dwStyle &= ~kIconMask;
    }
    const ModalLoop modal;
    const int answer = MessageBoxIndirectW(&request);
    // Not every system gives the only button for Escape.
    if (answer == kCancel.id && (params.style & kButtonMask) == 0) return kOk.id;
    return static_cast<std::uint32_t>(std::max(answer, 0));
}

}  // namespace

std::uint32_t KRVPMessageBoxIndirect(void* owner, const KRVP_MSGBOXPARAMS& params) {
    const bool own =
        params.remember != 0 || HasOwnButtons(params) || IsLong(params) || params.window != nullptr;
    return own ? Box(params).Show(owner) : SystemBox(owner, params);
}

void EndMessageBox(void* window) {
    if (window != nullptr) EndDialog(static_cast<HWND>(window), 0);
}
