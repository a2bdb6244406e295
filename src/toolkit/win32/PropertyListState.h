// What a property list's window holds beside the list: fonts, scrolling, the field in which a number is
// typed.
#pragma once

#include <windows.h>

#include <algorithm>

#include "toolkit/PropertyListCtrl.h"

struct CKRVPPropertyList::State {
    HFONT font = nullptr;  // the dialog's
    HFONT bold = nullptr;  // ours
    HWND edit = nullptr;   // while a number is typed
    int editId = 0;
    int dpi = Dravel::kBaseDpi;
    int rowHeight = 20, textHeight = 13;
    int top = 0;  // first row in view
    bool focused = false;

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        if (bold) DeleteObject(bold);
    }

    // Where things stand, in client pixels.
    RECT Client(HWND window) const {
        RECT client;
        GetClientRect(window, &client);
        return client;
    }
    int Indent() const { return Dravel::Scale(18, dpi); }
    int Split(HWND window) const {
        const int width = Client(window).right - Indent();
        return Indent() + width * 11 / 20;
    }
    RECT Description(HWND window) const {
        RECT place = Client(window);
        place.top = std::max<LONG>(place.bottom - textHeight * 3 - Dravel::Scale(10, dpi), 0);
        return place;
    }
    int Visible(HWND window) const { return std::max<int>(Description(window).top / rowHeight, 1); }
    RECT Row(HWND window, int row) const {
        const int y = (row - top) * rowHeight;
        return {0, y, Client(window).right, y + rowHeight};
    }
    RECT Value(HWND window, int row) const {
        RECT place = Row(window, row);
        place.left = Split(window) + 1;
        return place;
    }
    int RowAt(HWND window, int y) const {
        return y < 0 || y >= Description(window).top ? -1 : top + y / rowHeight;
    }
};

struct PropertyPaint {
    static void Paint(CKRVPPropertyList& list, HDC device);
};

struct PropertyInput {
    explicit PropertyInput(CKRVPPropertyList& owner)
        : list(owner), state(*owner.state_), window(static_cast<HWND>(owner.window_)) {}

    bool KeyDown(WPARAM key);
    bool Char(WPARAM unit);
    void Press(int x, int y, bool twice);
    void Scroll(int rows);
    void GoTo(int row);
    void BeginEdit(const wchar_t* text);  // a number of the current item; null: its own
    void EndEdit(bool keep);
    bool ReadAsListBox(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);

    CKRVPPropertyList& list;
    CKRVPPropertyList::State& state;
    HWND window;

 private:
    void Act();
    void Pick(const Dravel::PropertyItem& item);
    int FindRow(const wchar_t* name) const;
};
