// The toolkit's message box: the system's, and one of our own where a check box or own buttons are asked for,
// or where the text is so long that it must be scrolled through.
#pragma once

#include <cstdint>

// `style` is made of the system's MB_ numbers: buttons in the low four bits, one icon of 16, 32, 48, 64, 128
// (user icon: the instance's first) or 112 (none), default button 0x100 to 0x300, 0x80000 right-aligned. Own
// buttons (256, which the system would read as "second button is the default") are asked for by captions in
// ownCaptions; their identifiers are 1000 and 1001. Texts must live until the call returns.
struct KRVP_MSGBOXPARAMS {
    const wchar_t* text = nullptr;
    const wchar_t* caption = nullptr;
    std::uint32_t style = 0;
    std::uint8_t remember = 0;           // not 0: with the check box
    const wchar_t* checkText = nullptr;  // label of the check box
    bool* checked = nullptr;             // start state and, on return, the state; may be null
    void* instance = nullptr;            // HINSTANCE that the user icon comes from
    const wchar_t* ownCaptions[2] = {nullptr, nullptr};
    void** window = nullptr;  // not null: holds the box's window (HWND) while it is open, for EndMessageBox
};

inline constexpr std::uint32_t kOwnButtonFirst = 1000, kOwnButtonSecond = 1001;
inline constexpr std::uint32_t kOwnButtonsStyle = 256;

// Modal to `owner` (HWND, may be null); a real window of class #32770 whose title and text are the ones asked
// for. Returns the identifier of the button pressed (Escape: Cancel, or the only button); 0 when no box could
// be shown.
std::uint32_t KRVPMessageBoxIndirect(void* owner, const KRVP_MSGBOXPARAMS& params);

// Takes a box off the screen that was shown with `window`; its call returns 0, once the boxes above it are
// answered.
void EndMessageBox(void* window);
