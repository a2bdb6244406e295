// Base of the plug-in's dialogs: a real Win32 dialog made from a template in memory.
#pragma once

#include <cstdint>
#include <string>

#include "toolkit/DialogTemplate.h"

namespace Dravel {

inline constexpr int kDialogOk = 1, kDialogCancel = 2;

// User-interface thread. Tab order, mnemonics, Enter and Escape are the system's.
class DialogBase {
 public:
    DialogBase() = default;
    virtual ~DialogBase();
    DialogBase(const DialogBase&) = delete;
    DialogBase& operator=(const DialogBase&) = delete;

    // Shows the dialog until End() is called; returns its result, -1 when the dialog could not be made.
    std::intptr_t DoModal(void* owner, const DialogTemplate& shape);
    // Shows it beside the other windows, above `owner`'s frame, until End() is called or the frame goes; the
    // object must live as long. Tab, Enter, Escape and mnemonics work although the terminal's message loop
    // knows nothing of the dialog. False: it could not be made.
    bool ShowModeless(void* owner, const DialogTemplate& shape);
    void* Window() const { return window_; }

    // The window procedure's entry; not for callers.
    std::intptr_t HandleDialog(void* window, std::uint32_t message, std::uintptr_t wparam,
                               std::intptr_t lparam);

 protected:
    virtual void OnInit() {}
    virtual bool OnCommand(int /*id*/, int /*code*/) { return false; }  // not asked for OK and Cancel
    virtual void OnOk() { End(kDialogOk); }
    virtual void OnCancel() { End(kDialogCancel); }  // Cancel button, Escape, close box
    virtual bool OnNotify(int /*id*/, void* /*NMHDR*/, std::intptr_t& /*result*/) { return false; }
    virtual void OnSize(int /*width*/, int /*height*/) {}
    virtual bool OnMessage(std::uint32_t, std::uintptr_t, std::intptr_t, std::intptr_t& /*result*/) {
        return false;
    }
    virtual void OnDestroy() {}

    void End(std::intptr_t result);

    // Controls. An identifier that is not there reads as empty and takes nothing.
    void* Item(int id) const;
    std::wstring Text(int id) const;
    std::string AnsiText(int id) const;
    void SetText(int id, const std::wstring& text);
    void SetAnsiText(int id, std::string_view text);
    bool Checked(int id) const;
    void Check(int id, bool checked);
    void Enable(int id, bool enable);
    void FocusItem(int id);  // and selects the text of an edit
    // Combo box.
    void ClearList(int id);
    void AddString(int id, std::wstring_view text);
    int Selected(int id) const;  // -1: none
    void Select(int id, int index);
    // List with columns; `width` in pixels.
    void AddColumn(int id, int index, const wchar_t* title, int width);
    // Progress bar: 0 to 1000.
    void SetProgress(int id, int permille);
    // Pixels of a rectangle in dialog units.
    void MapUnits(int& x, int& y) const;

 private:
    void* window_ = nullptr;
    void* owner_ = nullptr;
    bool modeless_ = false;
};

// The class name of the progress bar, for DialogItem.
inline constexpr wchar_t kProgressClass[] = L"msctls_progress32";

}  // namespace Dravel
