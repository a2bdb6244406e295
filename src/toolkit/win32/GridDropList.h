// The window of a cell's drop-down list: below the cell, above everything, and never with the focus.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "toolkit/GridChoices.h"

class GridDropList {
 public:
    // `taken`: the user clicked on a choice, which is then the chosen one.
    explicit GridDropList(std::function<void()> taken) : taken_(std::move(taken)) {}
    ~GridDropList() { Close(); }
    GridDropList(const GridDropList&) = delete;
    GridDropList& operator=(const GridDropList&) = delete;

    Dravel::GridChoices& Choices() { return choices_; }
    // Below `field`, or above when there is no room. `cell` in its client pixels is what the list is as wide
    // as. False: there is nothing to show.
    bool Open(HWND field, const RECT& cell, HFONT font, int dpi);
    void Close();
    bool IsOpen() const { return window_ != nullptr; }
    HWND Window() const { return window_; }
    // After the choices, the chosen one or the view changed.
    void Changed();
    void Wheel(int delta);

    // The window procedure's entry; not for callers.
    std::intptr_t HandleMessage(void* window, std::uint32_t message, std::uintptr_t wparam,
                                std::intptr_t lparam);

 private:
    void Place(const RECT& cell);
    void Paint(HDC screen, const RECT& dirty);
    void Scroll(WPARAM wparam);
    void Hover(LPARAM lparam);
    void SetBar();
    std::size_t RowAt(LPARAM lparam) const;
    int WidthWanted(int atLeast) const;
    void CloseWhenMoved();

    std::function<void()> taken_;
    Dravel::GridChoices choices_;
    HWND window_ = nullptr;
    HWND field_ = nullptr;
    HFONT font_ = nullptr;
    RECT fieldAt_{};  // on the screen, when the list opened
    POINT pointer_{-1, -1};
    int dpi_ = 96, rowHeight_ = 16, wheel_ = 0;
    std::wstring text_;
};
