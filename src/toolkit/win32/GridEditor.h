// The in-place editor of a grid's window: an edit field over the current cell, and its drop-down list.
#pragma once

#include <windows.h>

#include <string>

#include "toolkit/PGridCtrl.h"
#include "toolkit/win32/GridDropList.h"

// At most one at a time, always over the grid's current cell, so it stays on its row when rows come and go.
class GridEditor {
 public:
    explicit GridEditor(CKRVPGridCtrl& owner) : grid_(owner), list_([this] { TakeChosen(); }) {}
    GridEditor(const GridEditor&) = delete;
    GridEditor& operator=(const GridEditor&) = delete;

    bool Active() const { return field_ != nullptr; }
    // Over the current cell. `typed`: the character that opened it, in place of the cell's text; 0: none.
    // False: the cell is not to be edited.
    bool Open(wchar_t typed);
    void OpenWithList();  // the list only where there is one
    // False: the owner refused the text, the editor stays. `byKey`: the user ends it by a key of the editor.
    bool Close(bool commit, bool byKey = false);
    // The window goes, and nobody is asked or told.
    void Drop();
    void Layout();  // after the view moved
    void SetFont();
    bool Notify(int id, int code, HWND field);
    // A press on the button that opens the list; taken without the editor losing the focus.
    bool PressButton(int x, int y);
    // Where the button stands, empty without one.
    Dravel::Rect Button() const;
    void Refocus();
    bool EndsByKey() const { return byKey_; }

 private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                      DWORD_PTR editor) noexcept;
    LRESULT Message(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    bool Make(const std::wstring& text);
    bool KeyDown(WPARAM key, bool system);
    bool ListKey(WPARAM key);
    bool Leave(Dravel::GridEditMove move);
    void ToggleList();
    void OpenList();
    bool FetchChoices();
    void Changed();
    void TakeChosen();
    void SetText(const std::wstring& text, int selectFrom);
    std::wstring Text() const;
    std::string Bytes() const;
    bool HasButton() const { return kind_ == Dravel::GridEditKind::Choice; }

    CKRVPGridCtrl& grid_;
    GridDropList list_;
    HWND field_ = nullptr;
    RECT place_{};
    Dravel::GridEditKind kind_ = Dravel::GridEditKind::Text;
    std::string opened_;    // the cell's text as it was handed over
    std::wstring shown_;    // what the field made of it
    std::string typed_;     // what the user typed, without what type-ahead added
    bool fetched_ = false;  // the choices are those of typed_
    bool erasing_ = false;  // the last key took something away: no type-ahead
    bool writing_ = false;  // a text that the editor itself sets
    bool closing_ = false;
    bool byKey_ = false;  // the end that the owner is asked about
};
