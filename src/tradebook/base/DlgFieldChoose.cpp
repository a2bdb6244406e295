#include <windows.h>

#include <algorithm>

#include "toolkit/AnsiText.h"
#include "tradebook/base/FieldChoose.h"
#include "tradebook/base/GridNames.h"

using namespace Dravel;

namespace {

enum Control : int { kShown = 1201, kHidden, kUp, kDown, kHide, kShow };

constexpr std::uint32_t kListStyle =
    style::TabStop | style::VScroll | style::ListNotify | style::ListNoIntegralHeight;
constexpr std::uint32_t kButtonStyle = style::TabStop;

// Each label stands in front of its list, so that its mnemonic goes there.
DialogTemplate Shape(const std::wstring& title) {
    const DialogItem items[] = {
        {DialogControl::Static, L"S&hown:", 0, 8, 6, 110, 9, 0},
        {DialogControl::ListBox, {}, kShown, 8, 16, 110, 150, kListStyle},
        {DialogControl::Button, L"&Up", kUp, 124, 30, 52, 14, kButtonStyle},
        {DialogControl::Button, L"&Down", kDown, 124, 48, 52, 14, kButtonStyle},
        {DialogControl::Button, L"H&ide >", kHide, 124, 78, 52, 14, kButtonStyle},
        {DialogControl::Button, L"< &Show", kShow, 124, 96, 52, 14, kButtonStyle},
        {DialogControl::Static, L"Hidd&en:", 0, 182, 6, 110, 9, 0},
        {DialogControl::ListBox, {}, kHidden, 182, 16, 110, 150, kListStyle},
        {DialogControl::Button, L"OK", IDOK, 182, 174, 52, 14, kButtonStyle | style::DefaultButton},
        {DialogControl::Button, L"Cancel", IDCANCEL, 240, 174, 52, 14, kButtonStyle},
    };
    DialogTemplate shape(title, 300, 196);
    for (const DialogItem& item : items)
        shape.Add(item);
    return shape;
}

}  // namespace

CFieldChoose::CFieldChoose(CKRVPGridCtrl& grid, int code)
    : grid_(grid), title_(Widen(std::string(GridNameOf(code)) + " - FieldChoose")), lists_(grid.Columns()) {}

void CFieldChoose::Open(void* owner) {
    DoModal(owner, Shape(title_));
}

void CFieldChoose::OnInit() {
    Fill(kShown, lists_.Shown(), lists_.Shown().empty() ? -1 : 0);
    Fill(kHidden, lists_.Hidden(), -1);
    EnableButtons();
    FocusItem(kShown);
}

void CFieldChoose::Fill(int list, const std::vector<int>& columns, int select) {
    const HWND box = static_cast<HWND>(Item(list));
    SendMessageW(box, WM_SETREDRAW, FALSE, 0);
    SendMessageW(box, LB_RESETCONTENT, 0, 0);
    for (const int column : columns) {
        const std::wstring header = Widen(grid_.Columns()[column].header);
        SendMessageW(box, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(header.c_str()));
    }
    SendMessageW(box, LB_SETCURSEL, static_cast<WPARAM>(select), 0);
    SendMessageW(box, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(box, nullptr, TRUE);
}

int CFieldChoose::SelectedIn(int list) const {
    return static_cast<int>(SendMessageW(static_cast<HWND>(Item(list)), LB_GETCURSEL, 0, 0));
}

bool CFieldChoose::OnCommand(int id, int code) {
    if (id == kShown || id == kHidden) {
        if (code == LBN_DBLCLK && id == kShown) Hide();
        if (code == LBN_DBLCLK && id == kHidden) Show();
        EnableButtons();
        return true;
    }
    if (code != BN_CLICKED) return false;
    switch (id) {
        case kUp:
            MoveShown(lists_.Up(SelectedIn(kShown)));
            break;
        case kDown:
            MoveShown(lists_.Down(SelectedIn(kShown)));
            break;
        case kHide:
            Hide();
            break;
        case kShow:
            Show();
            break;
        default:
            return false;
    }
    EnableButtons();
    return true;
}

void CFieldChoose::MoveShown(int to) {
    if (to >= 0) Fill(kShown, lists_.Shown(), to);
}

// The entry behind the one that went is selected, so that several can go one after another.
void CFieldChoose::Hide() {
    const int index = SelectedIn(kShown), column = lists_.Hide(index);
    if (column < 0) return;
    Fill(kShown, lists_.Shown(), std::min(index, static_cast<int>(lists_.Shown().size()) - 1));
    Fill(kHidden, lists_.Hidden(), 0);
    grid_.SetColumnVisible(column, false);
}

void CFieldChoose::Show() {
    const int index = SelectedIn(kHidden), column = lists_.Show(index);
    if (column < 0) return;
    Fill(kHidden, lists_.Hidden(), std::min(index, static_cast<int>(lists_.Hidden().size()) - 1));
    Fill(kShown, lists_.Shown(), static_cast<int>(lists_.Shown().size()) - 1);
    grid_.SetColumnVisible(column, true);
}

// A button that is switched off must not keep the keyboard: the dialog would be deaf.
void CFieldChoose::EnableButtons() {
    const int shown = SelectedIn(kShown), hidden = SelectedIn(kHidden);
    const struct {
        int id, list;
        bool enabled;
    } buttons[] = {{kUp, kShown, shown > 0},
                   {kDown, kShown, shown >= 0 && shown + 1 < static_cast<int>(lists_.Shown().size())},
                   {kHide, kShown, shown >= 0},
                   {kShow, kHidden, hidden >= 0}};
    for (const auto& button : buttons) {
        if (!button.enabled && GetFocus() == Item(button.id)) FocusItem(button.list);
        Enable(button.id, button.enabled);
    }
}

void CFieldChoose::OnOk() {
    grid_.SetColumnOrder(lists_.Order());
    End(kDialogOk);
}

void CFieldChoose::OnCancel() {
    grid_.SetColumnOrder(lists_.Before());
    End(kDialogCancel);
}
