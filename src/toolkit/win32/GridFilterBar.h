// The filter bar of a grid's window: real edit fields that follow their columns.
#pragma once

#include <windows.h>

#include <vector>

#include "toolkit/PGridCtrl.h"

// Fields are children of the grid's window, made when their column is first shown while the bar is up and
// kept until the window goes; one whose column is out of view is hidden and costs scrolling nothing.
class GridFilterBar {
 public:
    explicit GridFilterBar(CKRVPGridCtrl& owner) : grid_(owner) {}
    ~GridFilterBar() { DropBrush(); }
    GridFilterBar(const GridFilterBar&) = delete;
    GridFilterBar& operator=(const GridFilterBar&) = delete;

    // After anything that may move, show or hide a field, and after another font.
    void Layout();
    // The columns are on the move under the user's hand: fields whose place changes hide, and the grid draws
    // what they say, until it is over. Moving windows at each step would cost more than drawing the rows.
    void BeginMoving();
    void EndMoving();
    bool Shows(int column) const;  // the field itself is on the screen
    void SetFont();
    void ShowText(int column);  // the model's text into the field
    void Focus(int column);
    // A field's notification; false: not a field's.
    bool Notify(int id, int code, HWND field);
    // WM_CTLCOLOREDIT of a field: the brush, null when it is not one.
    HBRUSH Colour(HDC device, HWND field);
    void ColoursChanged() { DropBrush(); }

 private:
    struct Field {
        HWND window = nullptr;
        RECT place{};
        bool shown = false;
    };

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                      DWORD_PTR bar) noexcept;
    LRESULT Message(HWND window, UINT message, WPARAM wparam, LPARAM lparam, int column);
    bool KeyDown(HWND window, WPARAM key, int column);
    bool LeaveKey(WPARAM key, int column);
    void PaintHint(HWND window, HDC device) const;
    int ColumnOf(HWND window) const;  // -1: not a field
    Field& At(int column);
    void Make(int column);
    void Place(int column, const Dravel::Rect& place, bool shown);
    void GoToRows(int column);
    void Walk(int column, bool back);
    void DropBrush();

    CKRVPGridCtrl& grid_;
    std::vector<Field> fields_;  // by column number
    HBRUSH brush_ = nullptr;     // of a field that filters
    bool writing_ = false;       // a text that comes from the model
    bool moving_ = false;
};
