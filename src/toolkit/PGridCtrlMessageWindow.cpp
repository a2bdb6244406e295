// The text that stands in the place of a grid's rows while there is something to be said about them.
#include "toolkit/AnsiText.h"
#include "toolkit/win32/GridColours.h"
#include "toolkit/win32/GridState.h"

using namespace Dravel;

void CKRVPGridCtrl::ShowInsteadOfRows(std::string_view text) {
    std::wstring wide = Widen(text);
    if (wide == state_->instead) return;
    state_->instead = std::move(wide);
    SetWindowTextW(static_cast<HWND>(window_), state_->instead.c_str());
    Redraw();
}

// In the upper third, where one looks first, and in lines as long as the room is wide.
void GridPaint::Instead(const CKRVPGridCtrl::State& state, HDC device, const RECT& rows) {
    if (state.instead.empty()) return;
    const GridColours palette;
    const LONG margin = 2 * Scale(kGridCellPadding, state.dpi);
    RECT room{rows.left + margin, rows.top + (rows.bottom - rows.top) / 4, rows.right - margin, rows.bottom};
    SetBkColor(device, palette.window);
    SetTextColor(device, palette.text);
    DrawTextW(device, state.instead.c_str(), static_cast<int>(state.instead.size()), &room,
              DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
}
