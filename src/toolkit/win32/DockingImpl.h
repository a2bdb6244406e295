// The window side of a docking bar: its floating frame, its place in the host's frame, its caption and
// splitter.
#pragma once

#include <windows.h>

#include "toolkit/DockingBar.h"

namespace Dravel {

enum class BarDrag : std::uint8_t { None, Splitter, Caption, Close };

}  // namespace Dravel

// The host's frame and the floating one, as the bar deals with them.
struct DockingFrame {
    explicit DockingFrame(CKRVPDockingControlBar& owner) : bar(owner) {}
    DockingFrame(const DockingFrame&) = delete;
    DockingFrame& operator=(const DockingFrame&) = delete;

    bool CreateMini(const wchar_t* name);
    void Attach();  // subclasses the host's frame
    void Detach() noexcept;
    void Release() noexcept;  // the bar's window is gone: the floating frame follows
    // Puts the bar and the window beside it in their places.
    void Layout();
    void MoveBetween();  // after the side changed: the bar goes into the frame that it now belongs to
    void ShowMini(bool show);
    void PlaceMini();
    HWND Host() const { return static_cast<HWND>(bar.frame_); }

    // Of the floating frame; its window procedure's entry.
    std::intptr_t HandleMessage(void* window, std::uint32_t message, std::uintptr_t wparam,
                                std::intptr_t lparam);

    CKRVPDockingControlBar& bar;
    HWND mini = nullptr;
    Dravel::Rect room;  // of the host's frame, that bar and content share; its client pixels

 private:
    static LRESULT CALLBACK FrameProcedure(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR) noexcept;
    bool FrameMessage(UINT message, WPARAM wparam);
    HWND FindFiller() const;
    void UpdateRoom();

    HWND filler_ = nullptr;  // the host's child that takes what the bar leaves
    Dravel::Rect given_;     // the place that it was given last
    SIZE client_{};          // of the host's frame at the last layout
    bool layingOut_ = false, miniDying_ = false, hostDying_ = false;
};

// Caption, splitter and their mouse.
struct DockingInput {
    explicit DockingInput(CKRVPDockingControlBar& owner) : bar(owner) {}

    bool Mouse(UINT message, int x, int y);
    bool SetCursorShape() const;
    void EndDrag();
    void Paint(HDC device) const;
    void UpdateFont();

    Dravel::Rect Client() const;
    Dravel::Rect Caption() const;
    Dravel::Rect Splitter() const;
    Dravel::Rect CloseButton() const;
    Dravel::Rect Content() const;

    CKRVPDockingControlBar& bar;
    HFONT font = nullptr;
    int textHeight = 13;
    Dravel::DockSide lastSide = Dravel::DockSide::Bottom;  // where a double click docks it again

 private:
    HWND Window() const { return static_cast<HWND>(bar.window_); }
    void Down(int x, int y);
    void Move(int x, int y);
    void Up(int x, int y);
    void DropCaption(POINT at);
    void SetHot(bool hot);
    void PaintClose(HDC device, COLORREF back, COLORREF text) const;

    Dravel::BarDrag drag_ = Dravel::BarDrag::None;
    POINT start_{};      // screen pixels
    RECT startPlace_{};  // of the floating frame
    bool moved_ = false, hot_ = false;
};

struct CKRVPDockingControlBar::Impl {
    explicit Impl(CKRVPDockingControlBar& bar) : frame(bar), input(bar) {}
    ~Impl() {
        if (input.font != nullptr) DeleteObject(input.font);
    }
    DockingFrame frame;
    DockingInput input;
    UINT tabClose = RegisterWindowMessageW(Dravel::kTabCloseMessage);
};
