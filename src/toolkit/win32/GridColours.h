// The colours of a grid, made of the system's so that high contrast works.
#pragma once

#include <windows.h>

namespace Dravel {

// `share` of 256 parts of `a`, the rest of `b`.
inline COLORREF Mix(COLORREF a, COLORREF b, int share) {
    const auto part = [&](int x, int y) { return static_cast<BYTE>((x * share + y * (256 - share)) / 256); };
    return RGB(part(GetRValue(a), GetRValue(b)), part(GetGValue(a), GetGValue(b)),
               part(GetBValue(a), GetBValue(b)));
}

inline bool HighContrast() {
    HIGHCONTRASTW setting{};
    setting.cbSize = sizeof setting;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof setting, &setting, 0) &&
           (setting.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

struct GridColours {
    bool contrast = HighContrast();  // then no colour is softened
    COLORREF window = GetSysColor(COLOR_WINDOW), text = GetSysColor(COLOR_WINDOWTEXT);
    COLORREF hint = GetSysColor(COLOR_GRAYTEXT);
    COLORREF face = GetSysColor(COLOR_BTNFACE), faceText = GetSysColor(COLOR_BTNTEXT);
    COLORREF highlight = GetSysColor(COLOR_HIGHLIGHT), highlightText = GetSysColor(COLOR_HIGHLIGHTTEXT);
    COLORREF line = Mix(text, window, contrast ? 128 : 28);
    COLORREF headerLine = Mix(faceText, face, contrast ? 200 : 60);
    COLORREF headerMark = contrast ? face : Mix(highlight, face, 48);  // face of a sorted column's header
    COLORREF mark = Mix(faceText, face, contrast ? 256 : 160);
    COLORREF group = contrast ? window : Mix(face, window, 176);       // head of a group
    COLORREF filter = contrast ? window : Mix(highlight, window, 32);  // field of a column that filters
    // The selection among rows with colours of their own, and while the keyboard is elsewhere.
    COLORREF strong = contrast ? highlight : Mix(highlight, RGB(0, 0, 0), 150);
    COLORREF idle = Mix(highlight, window, 72);
    COLORREF frame = Mix(highlightText, highlight, 176);
};

}  // namespace Dravel
