// Draws a property list: the rows, and the description of the current one.
#include "toolkit/win32/PropertyListState.h"

using namespace Dravel;

namespace {

constexpr UINT kOneLine = DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX;

void Fill(HDC device, const RECT& place, int colour) {
    FillRect(device, &place, GetSysColorBrush(colour));
}

void Write(HDC device, RECT place, const std::wstring& text, int colour, UINT format = kOneLine) {
    SetTextColor(device, GetSysColor(colour));
    DrawTextW(device, text.c_str(), static_cast<int>(text.size()), &place, format);
}

RECT Square(const RECT& row, int left, int size) {
    const int top = (row.top + row.bottom - size) / 2;
    return {left, top, left + size, top + size};
}

// The box with a plus or minus in front of a group.
void DrawOpener(HDC device, const RECT& box, bool open) {
    FrameRect(device, &box, GetSysColorBrush(COLOR_WINDOWTEXT));
    const int x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2;
    const RECT across{box.left + 2, y, box.right - 2, y + 1}, down{x, box.top + 2, x + 1, box.bottom - 2};
    Fill(device, across, COLOR_WINDOWTEXT);
    if (!open) Fill(device, down, COLOR_WINDOWTEXT);
}

void DrawSwatch(HDC device, const RECT& box, std::uint32_t colour) {
    const HBRUSH brush = CreateSolidBrush(colour);
    FillRect(device, &box, brush);
    DeleteObject(brush);
    FrameRect(device, &box, GetSysColorBrush(COLOR_WINDOWTEXT));
}

// What stands left of the value's text; returns where the text begins.
int DrawSign(HDC device, const RECT& place, const PropertyItem& item, int dpi) {
    const int left = place.left + Scale(4, dpi);
    if (item.kind == PropertyKind::Check) {
        RECT box = Square(place, left, Scale(13, dpi));
        DrawFrameControl(device, &box, DFC_BUTTON,
                         DFCS_BUTTONCHECK | DFCS_FLAT | (item.value != 0 ? DFCS_CHECKED : 0u));
        return box.right + Scale(5, dpi);
    }
    if (item.kind == PropertyKind::Colour) {
        RECT box = Square(place, left, Scale(12, dpi));
        box.right += Scale(14, dpi);
        DrawSwatch(device, box, item.value);
        return box.right + Scale(5, dpi);
    }
    return left;
}

// The button that opens a picker, at the right end of the current row. Returns where it begins.
int DrawPickerButton(HDC device, RECT place, const PropertyItem& item) {
    if (item.kind != PropertyKind::Font && item.kind != PropertyKind::Colour) return place.right;
    place.left = place.right - (place.bottom - place.top);
    if (item.kind == PropertyKind::Colour) {
        DrawFrameControl(device, &place, DFC_SCROLL, DFCS_SCROLLCOMBOBOX);
    } else {
        DrawFrameControl(device, &place, DFC_BUTTON, DFCS_BUTTONPUSH);
        Write(device, place, L"...", COLOR_BTNTEXT, kOneLine | DT_CENTER);
    }
    return place.left;
}

}  // namespace

namespace {

void DrawHead(HDC device, CKRVPPropertyList& list, const RECT& row, int index, int indent, bool current) {
    const PropertyGroup& group = list.List().GroupOf(index);
    Fill(device, row, current ? COLOR_HIGHLIGHT : COLOR_BTNFACE);
    RECT box = Square(row, row.left + indent / 4, indent / 2);
    Fill(device, box, COLOR_WINDOW);
    DrawOpener(device, box, group.open);
    const RECT text{row.left + indent + 2, row.top, row.right, row.bottom};
    Write(device, text, group.name, current ? COLOR_HIGHLIGHTTEXT : COLOR_BTNTEXT);
}

}  // namespace

void PropertyPaint::Paint(CKRVPPropertyList& list, HDC device) {
    const HWND window = static_cast<HWND>(list.window_);
    const CKRVPPropertyList::State& state = *list.state_;
    const RECT client = state.Client(window), description = state.Description(window);
    const int indent = state.Indent(), split = state.Split(window);
    SetBkMode(device, TRANSPARENT);
    Fill(device, client, COLOR_WINDOW);
    const PropertyList& rows = list.list_;
    for (int i = state.top; i < rows.RowCount(); ++i) {
        const RECT row = state.Row(window, i);
        if (row.top >= description.top) break;
        const bool current = i == rows.Current() && state.focused;
        SelectObject(device, rows.IsHead(i) ? state.bold : state.font);
        if (rows.IsHead(i)) {
            DrawHead(device, list, row, i, indent, current);
        } else {
            const PropertyItem& item = *rows.Item(i);
            const RECT margin{row.left, row.top, row.left + indent, row.bottom};
            Fill(device, margin, COLOR_BTNFACE);
            const RECT name{row.left + indent, row.top, split, row.bottom};
            if (current) Fill(device, name, COLOR_HIGHLIGHT);
            Write(device, {name.left + Scale(4, state.dpi), name.top, name.right, name.bottom}, item.name,
                  current ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
            const RECT value = state.Value(window, i);
            const int from = DrawSign(device, value, item, state.dpi);
            const int to = i == rows.Current() ? DrawPickerButton(device, value, item) : value.right;
            Write(device, {from, value.top, to, value.bottom}, PropertyList::ValueText(item),
                  COLOR_WINDOWTEXT);
            const RECT upright{split, row.top, split + 1, row.bottom};
            Fill(device, upright, COLOR_BTNFACE);
        }
        const RECT line{row.left, row.bottom - 1, row.right, row.bottom};
        Fill(device, line, COLOR_BTNSHADOW);
    }
    Fill(device, description, COLOR_BTNFACE);
    const RECT edge{description.left, description.top, description.right, description.top + 1};
    Fill(device, edge, COLOR_BTNSHADOW);
    if (rows.RowCount() == 0) return;
    const PropertyItem* item = rows.Item(rows.Current());
    RECT text = description;
    InflateRect(&text, -Scale(6, state.dpi), -Scale(4, state.dpi));
    SelectObject(device, state.bold);
    Write(device, text, item ? item->name : rows.GroupOf(rows.Current()).name, COLOR_BTNTEXT,
          DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
    text.top += state.textHeight + Scale(2, state.dpi);
    SelectObject(device, state.font);
    if (item)
        Write(device, text, item->description, COLOR_BTNTEXT, DT_WORDBREAK | DT_END_ELLIPSIS | DT_NOPREFIX);
}
