// The one object through which the plug-in reaches the terminal, and asks the user something.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/HostCallbacks.h"

// Built while the library is loaded, from the exports of the executable that started the process; never
// rebuilt. The boxes are for the user-interface thread.
class CKRVDLLComman : public Dravel::HostCallbacks {
 public:
    CKRVDLLComman();
    CKRVDLLComman(const CKRVDLLComman&) = delete;
    CKRVDLLComman& operator=(const CKRVDLLComman&) = delete;

    // Modal, under a wait cursor. `owner` (HWND) may be null; `buttons` and `icon` are numbers of the enums
    // of host/User.h; `extraStyle` are further style bits; `remember` not 0 offers " Don't Ask Again", whose
    // state goes to `checked` (may be null); `window` as in KRVP_MSGBOXPARAMS. Returns the identifier of the
    // button pressed.
    std::uint32_t ShowMessageBox(void* owner, const wchar_t* text, const wchar_t* caption,
                                 std::uint32_t buttons, std::uint32_t icon, std::uint32_t extraStyle = 0,
                                 std::uint8_t remember = 0, bool* checked = nullptr, void** window = nullptr);

    // Captions of the two buttons of set 7.
    void SetOwnCaptions(std::wstring first, std::wstring second);
    void SetRightAligned(bool rightAligned) { rightAligned_ = rightAligned; }

 private:
    std::wstring ownCaptions_[2];
    bool rightAligned_ = false;
};

// The process-wide object.
CKRVDLLComman& DLLComman();
