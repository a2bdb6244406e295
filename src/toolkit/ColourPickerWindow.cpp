#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include <iterator>

#include "platform/LibraryUse.h"
#include "toolkit/ColourPicker.h"
#include "toolkit/DialogBase.h"
#include "toolkit/Geometry.h"
#include "toolkit/Guarded.h"
#include "toolkit/ModalLoop.h"
#include "toolkit/win32/CommonDialogs.h"

namespace Dravel {
namespace {

enum Control : int { kDefault = 1302, kOther = 1303, kFirstCell = 1310 };

// The palette of the system's own dialogs, five rows of eight from dark to light.
constexpr COLORREF kPalette[] = {
    RGB(0, 0, 0),       RGB(153, 51, 0),    RGB(51, 51, 0),     RGB(0, 51, 0),      RGB(0, 51, 102),
    RGB(0, 0, 128),     RGB(51, 51, 153),   RGB(51, 51, 51),    RGB(128, 0, 0),     RGB(255, 102, 0),
    RGB(128, 128, 0),   RGB(0, 128, 0),     RGB(0, 128, 128),   RGB(0, 0, 255),     RGB(102, 102, 153),
    RGB(128, 128, 128), RGB(255, 0, 0),     RGB(255, 153, 0),   RGB(153, 204, 0),   RGB(51, 153, 102),
    RGB(51, 204, 204),  RGB(51, 102, 255),  RGB(128, 0, 128),   RGB(150, 150, 150), RGB(255, 0, 255),
    RGB(255, 204, 0),   RGB(255, 255, 0),   RGB(0, 255, 0),     RGB(0, 255, 255),   RGB(0, 204, 255),
    RGB(153, 51, 102),  RGB(192, 192, 192), RGB(255, 153, 204), RGB(255, 204, 153), RGB(255, 255, 153),
    RGB(204, 255, 204), RGB(204, 255, 255), RGB(153, 204, 255), RGB(204, 153, 255), RGB(255, 255, 255),
};
constexpr int kColumns = 8, kCellWidth = 16, kCellHeight = 13, kMargin = 6;
constexpr int kRows = static_cast<int>(std::size(kPalette)) / kColumns;

DialogTemplate Shape() {
    const int width = 2 * kMargin + kColumns * kCellWidth, below = kMargin + kRows * kCellHeight + 5;
    DialogTemplate shape(L"Color", width, below + 36);
    for (int i = 0; i < kRows * kColumns; ++i) {
        shape.Add({.control = DialogControl::Button,
                   .text = {},
                   .id = static_cast<std::uint16_t>(kFirstCell + i),
                   .x = kMargin + i % kColumns * kCellWidth,
                   .y = kMargin + i / kColumns * kCellHeight,
                   .width = kCellWidth - 2,
                   .height = kCellHeight - 2,
                   .style = static_cast<std::uint32_t>(BS_OWNERDRAW) |
                            (i == 0 ? style::TabStop | style::Group : 0)});
    }
    const struct {
        const wchar_t* text;
        int id, column, row;
    } kButtons[] = {{L"&Default", kDefault, 0, 0}, {L"&Other...", kOther, 1, 0}, {L"Cancel", IDCANCEL, 1, 1}};
    const int half = kColumns * kCellWidth / 2;
    for (const auto& button : kButtons) {
        shape.Add({.control = DialogControl::Button,
                   .text = button.text,
                   .id = static_cast<std::uint16_t>(button.id),
                   .x = kMargin + button.column * half,
                   .y = below + button.row * 16,
                   .width = half - 2,
                   .height = 14,
                   .style = style::TabStop | (button.id == kDefault ? style::Group : 0)});
    }
    return shape;
}

// The arrows go over the palette as it is seen, not from one control to the next.
LRESULT CALLBACK CellProcedure(HWND cell, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                               DWORD_PTR) noexcept;

LRESULT CellMessage(HWND cell, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id) {
    if (message == WM_NCDESTROY) RemoveWindowSubclass(cell, &CellProcedure, id);
    const LRESULT result = DefSubclassProc(cell, message, wparam, lparam);
    if (message == WM_GETDLGCODE) return result | DLGC_WANTARROWS;
    if (message != WM_KEYDOWN) return result;
    const int step = wparam == VK_LEFT    ? -1
                     : wparam == VK_RIGHT ? 1
                     : wparam == VK_UP    ? -kColumns
                     : wparam == VK_DOWN  ? kColumns
                                          : 0;
    const int to = static_cast<int>(id) - kFirstCell + step;
    if (step != 0 && to >= 0 && to < kRows * kColumns) SetFocus(GetDlgItem(GetParent(cell), kFirstCell + to));
    return result;
}

LRESULT CALLBACK CellProcedure(HWND cell, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                               DWORD_PTR) noexcept {
    return Guarded("colour", LRESULT{0}, [&] { return CellMessage(cell, message, wparam, lparam, id); });
}

class DlgColourPicker final : public DialogBase {
 public:
    explicit DlgColourPicker(COLORREF current) : current_(current) {}
    ColourChoice choice;

 private:
    void OnInit() override {
        int cell = 0;
        for (int i = 0; i < kRows * kColumns; ++i) {
            if (kPalette[i] == current_) cell = i;
            SetWindowSubclass(static_cast<HWND>(Item(kFirstCell + i)), &CellProcedure,
                              static_cast<UINT_PTR>(kFirstCell + i), 0);
        }
        FocusItem(kFirstCell + cell);
    }

    // Enter on a cell: there is no default button.
    void OnOk() override { OnCommand(GetDlgCtrlID(GetFocus()), BN_CLICKED); }

    bool OnCommand(int id, int code) override {
        if (code != BN_CLICKED && code != BN_DOUBLECLICKED) return false;
        if (id == kDefault) {
            choice.colour.reset();
            End(kDialogOk);
        } else if (id == kOther) {
            Other();
        } else if (id >= kFirstCell && id < kFirstCell + kRows * kColumns) {
            choice.colour = kPalette[id - kFirstCell];
            End(kDialogOk);
        } else {
            return false;
        }
        return true;
    }

    void Other() {
        static COLORREF custom[16] = {};  // as long as the library lives, as in other programs
        CHOOSECOLORW request{};
        request.lStructSize = sizeof request;
        request.hwndOwner = static_cast<HWND>(Window());
        request.rgbResult = current_;
        request.lpCustColors = custom;
        request.Flags = CC_RGBINIT | CC_FULLOPEN;
        const ModalLoop modal;
        if (!CommonDialogs().ChooseColor(request)) return;
        choice.colour = request.rgbResult;
        End(kDialogOk);
    }

    bool OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                   std::intptr_t& result) override {
        if (message != WM_DRAWITEM || wparam < kFirstCell) return false;
        Draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam), kPalette[wparam - kFirstCell]);
        result = TRUE;
        return true;
    }

    void Draw(const DRAWITEMSTRUCT& item, COLORREF colour) const {
        RECT place = item.rcItem;
        FillRect(item.hDC, &place, GetSysColorBrush(COLOR_BTNFACE));
        if (colour == current_) FrameRect(item.hDC, &place, GetSysColorBrush(COLOR_HIGHLIGHT));
        if (item.itemState & ODS_FOCUS) DrawFocusRect(item.hDC, &place);
        InflateRect(&place, -2, -2);
        const HBRUSH brush = CreateSolidBrush(colour);
        FillRect(item.hDC, &place, brush);
        DeleteObject(brush);
        FrameRect(item.hDC, &place, GetSysColorBrush(COLOR_WINDOWTEXT));
    }

    COLORREF current_;
};

}  // namespace

std::optional<ColourChoice> PickColour(void* owner, std::uint32_t current) {
    DlgColourPicker dialog(current & 0xFFFFFF);
    if (dialog.DoModal(owner, Shape()) != kDialogOk) return {};
    return dialog.choice;
}

}  // namespace Dravel
