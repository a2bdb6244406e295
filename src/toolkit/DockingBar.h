// A bar that docks on a side of the host's main frame or floats above it.
#pragma once

#include <cstdint>
#include <memory>

#include "toolkit/DockState.h"

namespace Dravel {
inline constexpr wchar_t kBarClass[] = L"KRVPDockingControlBar";
// Registered message by which a host's tab strip asks the bar to close.
inline constexpr wchar_t kTabCloseMessage[] = L"KRVP_TAB_CLOSE";
}  // namespace Dravel

// User-interface thread throughout. Windows are void* (HWND). The bar's window is a child of the frame while
// docked, of a small tool window of its own that the frame owns while floating. Its client area holds a
// caption strip, a splitter on the inner edge while docked, and the content, which belongs to the derived
// class. The window may be destroyed from outside (with the frame): OnDestroy, then OnNcDestroy, which is the
// last call and may delete the object.
class CKRVPDockingControlBar {
 public:
    CKRVPDockingControlBar();
    virtual ~CKRVPDockingControlBar();
    CKRVPDockingControlBar(const CKRVPDockingControlBar&) = delete;
    CKRVPDockingControlBar& operator=(const CKRVPDockingControlBar&) = delete;

    // `frame` null: floats without an owner. `floating` in screen pixels, also gives the docked extents.
    // Created hidden and floating.
    bool Create(void* frame, const wchar_t* name, const Dravel::Rect& floating, std::uint32_t id);
    void Destroy();
    void* Window() const { return window_; }
    std::uint32_t BarID() const { return id_; }
    // The bar of a window of kBarClass, or of one of its children; null: none.
    static CKRVPDockingControlBar* FromWindow(void* window);

    void Dock(Dravel::DockSide side);  // Floating floats; without a frame always floats
    bool Docked() const { return state_.side != Dravel::DockSide::Floating; }
    void Show(bool show);  // hidden it is disabled, so that it cannot have the keyboard
    bool Shown() const { return shown_; }
    void Focus();  // brings it to the front (floating) and gives it the keyboard
    Dravel::DockState State() const { return state_; }
    void SetState(const Dravel::DockState& state);  // brought into what is possible

    // What children tell the bar: Escape that none of them took, and that the focus moved (the caption shows
    // it).
    void PressEscape() { OnEscape(); }
    void FocusMoved();
    // Passes a key message through PreTranslateMessage. Children call it before they act on a key. True:
    // consumed.
    bool OfferKey(void* child, std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam) {
        return PreTranslateMessage(child, message, wparam, lparam);
    }

    // The room for the derived class, in the bar's client pixels.
    Dravel::Rect Content() const;
    int Dpi() const;
    void* BarFont() const;  // HFONT of the caption

    // The window procedures' entries; not for callers.
    std::intptr_t HandleMessage(void* window, std::uint32_t message, std::uintptr_t wparam,
                                std::intptr_t lparam);

 protected:
    virtual bool OnCreate() { return true; }                 // false: creation fails
    virtual void OnSize(const Dravel::Rect& /*content*/) {}  // place the children; also when shown again
    virtual void OnPaint(void* /*hdc*/, const Dravel::Rect& /*content*/) {
    }                             // what children leave of the content
    virtual void OnSetFocus() {}  // the bar got the keyboard: pass it on
    virtual void OnPressCloseButton() { Show(false); }
    virtual void OnTabCloseButton() { Show(false); }
    virtual void OnEscape() {}  // Escape that no child took
    virtual void OnShow(bool /*shown*/) {}
    // A key message on its way to `child` (or to the bar itself), before the child acts on it. True:
    // consumed.
    virtual bool PreTranslateMessage(void* /*child*/, std::uint32_t /*message*/, std::uintptr_t,
                                     std::intptr_t) {
        return false;
    }
    virtual bool OnCommand(std::uint32_t /*id*/, std::uint32_t /*code*/, void* /*control*/) { return false; }
    // The frame is asked to close, before the frame itself sees it. False: it stays open, and the frame is
    // not told.
    virtual bool OnFrameClose() { return true; }
    virtual void OnEndSession(bool /*ending*/) {}
    virtual void OnStateChanged() {}  // docked, floated, moved or resized by the user
    virtual void OnDestroy() {}       // children and window still exist
    virtual void OnNcDestroy() {}     // everything is gone; may delete this
    virtual bool OnMessage(std::uint32_t /*message*/, std::uintptr_t, std::intptr_t,
                           std::intptr_t& /*result*/) {
        return false;
    }

 private:
    friend struct DockingFrame;
    friend struct DockingInput;
    struct Impl;

    bool Dispatch(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam, std::intptr_t& result);
    void Destroyed(void* window);

    void* window_ = nullptr;
    void* frame_ = nullptr;
    std::uint32_t id_ = 0;
    Dravel::DockState state_;
    bool shown_ = false;
    std::unique_ptr<Impl> impl_;
};
