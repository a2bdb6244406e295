// Controls of dialogs: rows of lists and their selection. Calls cross threads of one process, so plain
// pointers do.
#include <windows.h>

#include <commctrl.h>

#include "Dialogs.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

constexpr UINT kLimit = 5000;

LRESULT Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    DWORD_PTR result = 0;
    return SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kLimit, &result)
               ? static_cast<LRESULT>(result)
               : -1;
}

// Messages of the two kinds of list that hold plain strings.
struct ListKind {
    const wchar_t* type;
    UINT count, length, text, find, choose;
    WORD changed;
};
constexpr ListKind kKinds[] = {
    {L"ListBox", LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT, LB_FINDSTRINGEXACT, LB_SETCURSEL, LBN_SELCHANGE},
    {L"KRVPPropertyList", LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT, LB_FINDSTRINGEXACT, LB_SETCURSEL,
     LBN_SELCHANGE},
    {L"ComboBox", CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT, CB_FINDSTRINGEXACT, CB_SETCURSEL,
     CBN_SELCHANGE},
};

const ListKind* KindOf(HWND list) {
    for (const ListKind& kind : kKinds)
        if (ClassOf(list) == kind.type) return &kind;
    return nullptr;
}

bool IsListView(HWND list) {
    return ClassOf(list) == WC_LISTVIEWW;
}

std::wstring ViewCell(HWND list, int row, int column) {
    std::wstring text(1024, L'\0');
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    const LRESULT size =
        Ask(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return std::wstring(item.pszText, size > 0 ? static_cast<std::size_t>(size) : 0);
}

std::wstring ViewRow(HWND list, int row) {
    const auto header = reinterpret_cast<HWND>(Ask(list, LVM_GETHEADER));
    const int columns = header ? static_cast<int>(Ask(header, HDM_GETITEMCOUNT)) : 1;
    std::wstring text = ViewCell(list, row, 0);
    for (int column = 1; column < columns; ++column)
        text += L'\t' + ViewCell(list, row, column);
    return text;
}

std::wstring PlainRow(HWND list, const ListKind& kind, WPARAM row) {
    const LRESULT size = Ask(list, kind.length, row);
    if (size < 0) return {};
    std::wstring text(static_cast<std::size_t>(size) + 1, L'\0');
    Ask(list, kind.text, row, reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(size));
    return text;
}

bool SelectInView(HWND list, const std::wstring& text) {
    const int count = static_cast<int>(Ask(list, LVM_GETITEMCOUNT));
    for (int row = 0; row < count; ++row) {
        if (ViewCell(list, row, 0) != text) continue;
        LVITEMW item{};
        item.stateMask = item.state = LVIS_SELECTED | LVIS_FOCUSED;
        Ask(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
        return Ask(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item)) > 0;
    }
    return false;
}

}  // namespace

std::vector<std::wstring> ListRows(HWND list) {
    std::vector<std::wstring> rows;
    const ListKind* kind = KindOf(list);
    if (!kind && !IsListView(list)) return rows;
    const LRESULT count = Ask(list, kind ? kind->count : LVM_GETITEMCOUNT);
    for (LRESULT row = 0; row < count; ++row)
        rows.push_back(kind ? PlainRow(list, *kind, static_cast<WPARAM>(row))
                            : ViewRow(list, static_cast<int>(row)));
    return rows;
}

bool SelectRow(HWND list, const std::wstring& text) {
    if (IsListView(list)) return SelectInView(list, text);
    const ListKind* kind = KindOf(list);
    if (!kind) return false;
    const LRESULT row =
        Ask(list, kind->find, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
    if (row < 0) return false;
    Ask(list, kind->choose, static_cast<WPARAM>(row));
    const WPARAM changed = MAKEWPARAM(GetDlgCtrlID(list), kind->changed);
    return PostMessageW(GetParent(list), WM_COMMAND, changed, reinterpret_cast<LPARAM>(list)) != 0;
}

}  // namespace Dravel::DevHost
