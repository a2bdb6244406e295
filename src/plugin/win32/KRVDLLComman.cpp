#include "plugin/KRVDLLComman.h"

#include <windows.h>

#include <utility>

#include "host/User.h"
#include "plugin/MessageBoxStyle.h"
#include "toolkit/MessageBox.h"

namespace {

CKRVDLLComman theComman;  // holds no thread and needs no other static object

Dravel::HostCallbacks::Function LookUp(const char* name) {
    return reinterpret_cast<Dravel::HostCallbacks::Function>(GetProcAddress(GetModuleHandleW(nullptr), name));
}

class WaitCursor {
 public:
    WaitCursor() : before_(SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)))) {}
    ~WaitCursor() { SetCursor(before_); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

 private:
    HCURSOR before_;
};

}  // namespace

CKRVDLLComman& DLLComman() {
    return theComman;
}

CKRVDLLComman::CKRVDLLComman() : HostCallbacks(&LookUp) {}

void CKRVDLLComman::SetOwnCaptions(std::wstring first, std::wstring second) {
    ownCaptions_[0] = std::move(first);
    ownCaptions_[1] = std::move(second);
}

std::uint32_t CKRVDLLComman::ShowMessageBox(void* owner, const wchar_t* text, const wchar_t* caption,
                                            std::uint32_t buttons, std::uint32_t icon,
                                            std::uint32_t extraStyle, std::uint8_t remember, bool* checked,
                                            void** window) {
    const WaitCursor wait;
    bool state = false;
    KRVP_MSGBOXPARAMS params{};
    params.text = text;
    params.caption = caption;
    params.remember = remember;
    params.checkText = L" Don't Ask Again";  // with its leading blank
    params.checked = checked != nullptr ? checked : &state;
    params.instance = GetModuleHandleW(nullptr);
    params.window = window;
    params.style = Dravel::MessageBoxStyle(buttons, icon, extraStyle, rightAligned_);
    if (buttons == static_cast<std::uint32_t>(Dravel::Buttons::Own)) {
        params.ownCaptions[0] = ownCaptions_[0].c_str();
        params.ownCaptions[1] = ownCaptions_[1].c_str();
    }
    return KRVPMessageBoxIndirect(owner, params);
}
